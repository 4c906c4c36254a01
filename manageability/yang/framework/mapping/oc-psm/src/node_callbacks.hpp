// The node callbacks that both directions share.
#ifndef OC_PSM_NODE_CALLBACKS_HPP
#define OC_PSM_NODE_CALLBACKS_HPP

#include "walk.hpp"

namespace ymap {

// A container: its arguments are checked, nothing else is done.
inline kerrno container_callback(const Function &function, yfw_map_ctx ctx, const Node *source,
                                 const Node *destination) {
    start(function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return KERR_SUCCESS;
}

// A list entry that is handed to a conversion.
inline kerrno list_callback(const Function &function, Callback &conversion, yfw_map_ctx ctx, const Node *source,
                            Node *destination) {
    start(function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return conversion(ctx, source, destination);
}

// A leaf: with its nodes in place it goes straight to its conversion.
inline kerrno leaf_callback(const Function &function, Callback &conversion, yfw_map_ctx ctx, const Node *source,
                            Node *destination) {
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return conversion(ctx, source, destination);
}

} // namespace ymap

#endif
