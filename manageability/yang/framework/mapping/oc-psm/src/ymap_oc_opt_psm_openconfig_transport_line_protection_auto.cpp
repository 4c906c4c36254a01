// The node callbacks of the OpenConfig model: what the walkers call for each container, list entry and leaf.
#include "node_callbacks.hpp"
#include "openconfig_callbacks.hpp"
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

namespace {

using namespace ymap;

kerrno list(const Function &function, Callback &conversion, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const kerrno result = list_callback(function, conversion, ctx, source, destination);
    if (result == KERR_SUCCESS) {
        yfw_map_is_request_delete(source); // the framework counts on the question, not on its answer
    }
    return result;
}

// A leaf that the system cannot serve: the location is raised before the name is recorded, and the name's memory is
// accounted under the tag itself.
kerrno refused(const Function &function, yfw_map_ctx ctx, const Node *source, const Node *destination) {
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    yfw_oc_error_path(ctx);
    record_error_node(ctx, tag_of(*source), tag_of(*source));
    return YMAP_ERR_UNSUPPORTED;
}

} // namespace

#define YMAP_AUTO_FUNCTION(callback, prototype)                                                                        \
    static constexpr Function function {                                                                               \
        YMAP_STRING(callback), prototype(callback), YMAP_OPENCONFIG_SOURCE("auto")                                     \
    }

extern "C" {

#define YMAP_CONTAINER(suffix, parent, tag, access)                                                                    \
    kerrno YMAP_CONTAINER_CALLBACK(suffix)(yfw_map_ctx ctx, const Node *source, unsigned int, Node *destination) {     \
        YMAP_AUTO_FUNCTION(YMAP_CONTAINER_CALLBACK(suffix), YMAP_CONTAINER_CALLBACK_PROTOTYPE);                        \
        return container_callback(function, ctx, source, destination);                                                 \
    }
#define YMAP_LIST(suffix, parent, tag, access, conversion)                                                             \
    kerrno YMAP_LIST_CALLBACK(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                        \
        YMAP_AUTO_FUNCTION(YMAP_LIST_CALLBACK(suffix), YMAP_CALLBACK_PROTOTYPE);                                       \
        return list(function, conversion, ctx, source, destination);                                                   \
    }
#define YMAP_KEY(suffix, parent, tag, access, conversion) YMAP_LEAF(suffix, parent, tag, access, conversion)
#define YMAP_LEAF(suffix, parent, tag, access, conversion)                                                             \
    kerrno YMAP_LEAF_CALLBACK(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                        \
        YMAP_AUTO_FUNCTION(YMAP_LEAF_CALLBACK(suffix), YMAP_CALLBACK_PROTOTYPE);                                       \
        return leaf_callback(function, conversion, ctx, source, destination);                                          \
    }
#define YMAP_REFUSED(suffix, parent, tag, access)                                                                      \
    kerrno YMAP_LEAF_CALLBACK(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                        \
        YMAP_AUTO_FUNCTION(YMAP_LEAF_CALLBACK(suffix), YMAP_CALLBACK_PROTOTYPE);                                       \
        return refused(function, ctx, source, destination);                                                            \
    }
#include "openconfig_table.inc"

} // extern "C"
