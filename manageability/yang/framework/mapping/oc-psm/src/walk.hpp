// What the walks of both directions share.
#ifndef OC_PSM_WALK_HPP
#define OC_PSM_WALK_HPP

#include <span>

#include "frame.hpp"

namespace ymap {

// The callback of a list or leaf, a walker, an augment hook, a conversion.
using Callback = kerrno(yfw_map_ctx, const Node *, Node *);

// The callback of a container: takes the number of children that the walker found before the destination.
using ContainerCallback = kerrno(yfw_map_ctx, const Node *, unsigned int, Node *);

// The children that a node says it has.
std::span<Node> children_of(const Node &node);

// Reports a node that says it has children but has none.
bool is_malformed(const Function &function, yfw_map_ctx ctx, const Node &node);

// Marks a list key as used.
void consume(Node &key);

} // namespace ymap

#endif
