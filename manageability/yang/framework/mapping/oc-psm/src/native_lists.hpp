// What the list callbacks of the native models do with an entry.
#ifndef OC_PSM_NATIVE_LISTS_HPP
#define OC_PSM_NATIVE_LISTS_HPP

#include "walk.hpp"

namespace ymap::native_list {

// Nothing: the entry is walked.
kerrno empty(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

// The operational entry of a line controller: opens the module of a primary port, accepts a secondary port, skips every
// other.
kerrno ots_port(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

// The history of a line controller: opens the module of a primary port, skips every other.
kerrno optics_port_history(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

// The interface entry of a controller.
kerrno interface_configuration(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination);

} // namespace ymap::native_list

#endif
