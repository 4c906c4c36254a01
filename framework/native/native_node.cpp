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

bool says_nothing(const NativeNode &node) {
    return lysc_is_key(node.schema) && !node.value && !node.selected;
}

} // namespace ocpsm::native
