#include "dump.hpp"

#include <sstream>
#include <stdexcept>

namespace {

using ocpsm::Operation;
using ocpsm::RequestNode;

constexpr std::string_view model = "http://openconfig.net/yang/optical-transport-line-protection";

void dump_below(const std::vector<RequestNode> &nodes, std::size_t depth, std::string &text) {
    for (const RequestNode &node : nodes) {
        text.append(depth * 2, ' ').append(node.tag);
        if (node.namespace_uri != model) {
            text.append(" {").append(node.namespace_uri).append("}");
        }
        if (node.value) {
            text.append(" = ").append(*node.value);
        }
        if (node.operation != Operation::merge) {
            text.append(" ").append(operation_name(node.operation));
        }
        text.append("\n");
        dump_below(node.children, depth + 1, text);
    }
}

// Takes off a text what stands behind the last occurrence of `begin`, and that.
std::optional<std::string> take_behind(std::string &text, const std::string &begin) {
    const std::size_t at = text.rfind(begin);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    std::string taken = text.substr(at + begin.size());
    text.erase(at);
    return taken;
}

RequestNode node_of(std::string line) {
    RequestNode node;
    if (const auto operation = ocpsm::operation_named(line.substr(line.rfind(' ') + 1))) {
        node.operation = *operation;
        take_behind(line, " ");
    }
    node.value = take_behind(line, " = ");
    auto space = take_behind(line, " {");
    if (space) {
        space->pop_back();
    }
    node.namespace_uri = space.value_or(std::string(model));
    node.tag = line;
    return node;
}

} // namespace

std::string dump(const std::vector<RequestNode> &nodes) {
    std::string text;
    dump_below(nodes, 0, text);
    return text;
}

std::vector<RequestNode> read_dump(const std::string &text) {
    RequestNode root;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
        std::vector<RequestNode> *siblings = &root.children;
        for (std::size_t depth = 0; depth < blanks / 2; ++depth) {
            if (siblings->empty()) {
                throw std::invalid_argument("no node stands above: " + line);
            }
            siblings = &siblings->back().children;
        }
        siblings->push_back(node_of(line.substr(blanks)));
    }
    return std::move(root.children);
}
