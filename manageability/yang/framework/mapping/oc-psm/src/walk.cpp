#include "walk.hpp"

#include <algorithm>

namespace ymap {

std::span<Node> children_of(const Node &node) {
    if ((node.flags & YFW_NODE_CHILDREN_VALID) == 0 || node.children == nullptr) {
        return {};
    }
    return {node.children, static_cast<std::size_t>(std::max(node.child_count, 0))};
}

bool lacks_children(const Node &node) {
    return (node.flags & YFW_NODE_CHILDREN_VALID) != 0 && node.children == nullptr;
}

kerrno refuse_malformed(const Function &function, yfw_map_ctx ctx) {
    YMAP_ERROR(function, ctx, "Failed to get subtrees!");
    return YMAP_ERR_BAD_TREE;
}

void consume(Node &key) {
    key.consumed_mark = 1;
    key.flags |= YFW_NODE_KEY_CONSUMED;
}

} // namespace ymap
