// What the walks of both directions share.
#ifndef OC_PSM_WALK_HPP
#define OC_PSM_WALK_HPP

#include <algorithm>
#include <span>

#include "frame.hpp"

namespace ymap {

// The callback of a list or leaf, a walker, an augment hook, a conversion.
using Callback = kerrno(yfw_map_ctx, const Node *, Node *);

// The callback of a container: takes the number of children that the walker found before the destination.
using ContainerCallback = kerrno(yfw_map_ctx, const Node *, unsigned int, Node *);

// The children that a node says it has.
inline std::span<Node> children_of(const Node &node) {
    if (!has_flag(node, flag_children_valid) || held_children_of(node) == nullptr) {
        return {};
    }
    return {held_children_of(node), static_cast<std::size_t>(std::max(child_count_of(node), 0))};
}

// The node says that its children count, but there is no array of them. Whether that is malformed depends on the count:
// a request may hold a negative one, an answer may not.
inline bool lacks_children(const Node &node) {
    return has_flag(node, flag_children_valid) && held_children_of(node) == nullptr;
}

// Reports such a node, gives YMAP_ERR_BAD_TREE.
kerrno refuse_malformed(const Function &function, yfw_map_ctx ctx);

// Marks a list key as used.
inline void consume(Node &key) {
    set_consumed_mark(key, 1);
    add_flag(key, flag_key_consumed);
}

} // namespace ymap

#endif
