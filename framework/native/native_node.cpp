#include "framework/native/native_node.hpp"

#include <libyang/libyang.h>

#include <algorithm>

namespace ocpsm::native {

std::span<const NativeNode> keys(const NativeNode &node) {
    const auto end = std::find_if(node.children.begin(), node.children.end(),
                                  [](const NativeNode &child) { return !lysc_is_key(child.schema); });
    return {node.children.begin(), end};
}

std::span<const NativeNode> others(const NativeNode &node) {
    return std::span(node.children).subspan(keys(node).size());
}

// libyang sorts keys to the front.
std::vector<const lysc_node *> key_leaves(const lysc_node &list) {
    std::vector<const lysc_node *> leaves;
    if (list.nodetype == LYS_LIST) {
        for (const lysc_node *child = lysc_node_child(&list); lysc_is_key(child); child = child->next) {
            leaves.push_back(child);
        }
    }
    return leaves;
}

bool says_nothing(const NativeNode &node) {
    return lysc_is_key(node.schema) && !node.value && !node.selected;
}

} // namespace ocpsm::native
