#include "native/shown_data.hpp"

#include <libyang/libyang.h>

namespace native_test {
namespace {

void show(const std::vector<ocpsm::native::NativeNode> &nodes, const std::string &indent, std::string &out) {
    for (const ocpsm::native::NativeNode &node : nodes) {
        out.append(indent).append(node.schema->name);
        out.append(node.value ? "=|" + *node.value + "|" : "").append("\n");
        show(node.children, indent + "  ", out);
    }
}

} // namespace

std::string shown(const ocpsm::native::NativeData &data) {
    std::string out;
    show(data.roots, "", out);
    return out;
}

} // namespace native_test
