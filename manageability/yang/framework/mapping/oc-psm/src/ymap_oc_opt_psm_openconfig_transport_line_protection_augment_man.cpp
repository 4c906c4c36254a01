// The augment hooks of the OpenConfig model. No augmentation of it is supported: a read passes augmenting data over, a
// request that adds some is refused.
#include "openconfig_callbacks.hpp"

namespace {

using namespace ymap;

kerrno parse_augments(const Function &function, yfw_map_ctx ctx, const Node *source, const Node *destination) {
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    if (yfw_map_is_request_add(ctx, source, destination) == 0) {
        return KERR_SUCCESS;
    }
    record_error_node(ctx, tag_of(*source), allocation_tag);
    yfw_oc_error_path(ctx);
    return YMAP_ERR_AUGMENT_UNSUPPORTED;
}

} // namespace

extern "C" {

#define YMAP_CONTAINER(suffix, parent, tag, access)                                                                    \
    kerrno YMAP_AUGMENT_HOOK(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                         \
        static constexpr Function function{YMAP_STRING(YMAP_AUGMENT_HOOK(suffix)),                                     \
                                           YMAP_CALLBACK_PROTOTYPE(YMAP_AUGMENT_HOOK(suffix)),                         \
                                           YMAP_OPENCONFIG_SOURCE("augment_man")};                                     \
        return parse_augments(function, ctx, source, destination);                                                     \
    }
#define YMAP_LIST(suffix, parent, tag, access, conversion) YMAP_CONTAINER(suffix, parent, tag, access)
#define YMAP_KEY(suffix, parent, tag, access, conversion)
#define YMAP_LEAF(suffix, parent, tag, access, conversion)
#define YMAP_REFUSED(suffix, parent, tag, access)
#include "openconfig_table.inc"

} // extern "C"
