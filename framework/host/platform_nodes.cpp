// The platform's questions about nodes.
#include <cstring>

#include "framework/host/mapping_context.hpp"
#include "yfw_map.h"

using ocpsm::framework::MappingContext;

int yfw_map_do_these_match(const char *first, const char *second) {
    return first != nullptr && second != nullptr && std::strcmp(first, second) == 0 ? 1 : 0;
}

int yfw_map_is_request_delete(const struct kidl_yfw_datatree *node) {
    MappingContext::note_question(node);
    return node != nullptr && (node->operation == YFW_OPERATION_DELETE || node->operation == YFW_OPERATION_REMOVE) ? 1
                                                                                                                   : 0;
}

int yfw_map_is_request_add(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node,
                           const struct kidl_yfw_datatree * /*destination*/) {
    if (ctx == nullptr || node == nullptr || ctx->request == nullptr || ctx->request->registration == nullptr) {
        return 0;
    }
    const bool edit = ctx->request->registration->operation_kind == YFW_KIND_EDIT_CONFIG;
    return edit && node->operation <= YFW_OPERATION_CREATE ? 1 : 0;
}
