// The platform's services for a walk: hierarchy, current list entry, leafref check, instance-tree stack, error
// location.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "framework/host/allocation.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/request/instance_path.hpp"
#include "yfw_map.h"

using ocpsm::framework::MappingContext;
using ocpsm::framework::without_exceptions;

void yfw_map_add_to_node_hierarchy(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node, uint32_t kind) {
    if (MappingContext *context = MappingContext::of(ctx); context != nullptr && node != nullptr) {
        without_exceptions([&] { context->push_level(*node, kind); });
    }
}

void yfw_map_remove_from_node_hierarchy(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node) {
    if (MappingContext *context = MappingContext::of(ctx); context != nullptr && node != nullptr) {
        without_exceptions([&] { context->pop_level(*node); });
    }
}

kerrno yfw_map_update_current_list_node(yfw_map_ctx ctx, const char *list_path) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr || list_path == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        context->update_list_node(ocpsm::framework::without_prefixes(list_path));
        return KERR_SUCCESS;
    });
}

kerrno yfw_map_check_oc_leafref(yfw_map_ctx ctx, const char *list_path, const char *container,
                                const struct kidl_yfw_datatree *key, const struct kidl_yfw_datatree *entry) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr || list_path == nullptr || container == nullptr || key == nullptr || entry == nullptr ||
        key->tag == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    const auto key_value = ocpsm::framework::value_of(*key);
    const kidl_yfw_datatree *holder = ocpsm::framework::find_child(*entry, container);
    const kidl_yfw_datatree *target = holder == nullptr ? nullptr : ocpsm::framework::find_child(*holder, key->tag);
    if (!key_value || target == nullptr) {
        return KERR_SUCCESS;
    }
    const auto target_value = ocpsm::framework::value_of(*target);
    if (!target_value || *target_value == *key_value) {
        return KERR_SUCCESS;
    }
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        context->record_own_refusal(context->hierarchy_path() + "/" + key->tag);
        return ocpsm::framework::leafref_mismatch;
    });
}

uint16_t yfw_map_util_itree_stack_size(yfw_map_ctx ctx) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr) {
        return 0;
    }
    constexpr std::size_t most = std::numeric_limits<uint16_t>::max();
    return static_cast<uint16_t>(std::min(context->itree_stack().size(), most));
}

void yfw_map_util_itree_stack_push(yfw_map_ctx ctx, struct kidl_yfw_datatree *children, int32_t child_count,
                                   uint32_t /*reserved*/) {
    if (MappingContext *context = MappingContext::of(ctx)) {
        without_exceptions([&] { context->itree_stack().push_back({children, child_count}); });
    }
}

void yfw_map_util_itree_stack_pop(yfw_map_ctx ctx) {
    if (MappingContext *context = MappingContext::of(ctx); context != nullptr && !context->itree_stack().empty()) {
        context->itree_stack().pop_back();
    }
}

void yfw_map_util_itree_stack_peak(yfw_map_ctx ctx, struct yfw_map_itree_entry *top) {
    MappingContext *context = MappingContext::of(ctx);
    if (context != nullptr && top != nullptr && !context->itree_stack().empty()) {
        *top = context->itree_stack().back();
    }
}

void yfw_oc_error_path(yfw_map_ctx ctx) {
    if (MappingContext *context = MappingContext::of(ctx)) {
        without_exceptions([&] { context->record_error_path(); });
    }
}
