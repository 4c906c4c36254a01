// What the list callbacks of the native models do with an entry.
#ifndef OC_PSM_NATIVE_LISTS_HPP
#define OC_PSM_NATIVE_LISTS_HPP

#include "node_callbacks.hpp"

namespace ymap::native_list {

// Nothing: the entry is walked.
kerrno empty(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

// The operational entry of a line controller: opens the module of a primary port, accepts a secondary port, skips every
// other.
kerrno ots_port(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

// The history of a line controller: opens the module of a primary port, skips every other.
kerrno optics_port_history(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

using ListCallback = kerrno(const Function &, yfw_map_ctx, const Node *, Node *);

// What a node table names for a list: one of the above, or a conversion, to which the entry is handed.
inline kerrno run(ListCallback &callback, const Function &function, yfw_map_ctx ctx, const Node *source,
                  Node *destination) {
    return callback(function, ctx, source, destination);
}
inline kerrno run(Callback &conversion, const Function &function, yfw_map_ctx ctx, const Node *source,
                  Node *destination) {
    return list_callback(function, conversion, ctx, source, destination);
}

} // namespace ymap::native_list

#endif
