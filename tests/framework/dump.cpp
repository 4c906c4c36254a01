#include "dump.hpp"

#include <array>

namespace {

using ocpsm::framework::RequestNode;

void dump_below(const std::vector<RequestNode> &nodes, std::size_t depth, std::string &text) {
    constexpr std::array names{"", " replace", " create", " delete", " remove"};
    for (const RequestNode &node : nodes) {
        text.append(depth * 2, ' ').append(node.tag);
        if (node.namespace_uri != "http://openconfig.net/yang/optical-transport-line-protection") {
            text.append(" {").append(node.namespace_uri).append("}");
        }
        if (node.value) {
            text.append(" = ").append(*node.value);
        }
        text.append(node.operation < names.size() ? names.at(node.operation) : " ?").append("\n");
        dump_below(node.children, depth + 1, text);
    }
}

} // namespace

std::string dump(const std::vector<RequestNode> &nodes) {
    std::string text;
    dump_below(nodes, 0, text);
    return text;
}
