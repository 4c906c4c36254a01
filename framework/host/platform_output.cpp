// The platform's services for output: paths are added to native requests or to OpenConfig answers.
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "framework/host/allocation.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/request/instance_path.hpp"
#include "yfw_map.h"

using ocpsm::framework::AddRecord;
using ocpsm::framework::MappingContext;
using ocpsm::framework::without_exceptions;

namespace {

AddRecord record_of(const char *path, const char *namespace_uri, const char *value, const kidl_yfw_datatree *source,
                    uint32_t first_flag, uint32_t second_flag) {
    AddRecord add;
    add.path = path;
    add.namespace_uri = namespace_uri;
    if (value != nullptr) {
        add.value = value;
    }
    if (source != nullptr) {
        add.source_operation = source->operation;
    }
    add.first_flag = first_flag;
    add.second_flag = second_flag;
    add.relative = !add.path.starts_with('/');
    return add;
}

// The one step of a relative path, without prefix; empty when it is not one step.
std::string single_step(const std::string &path) {
    return path.find('/') == std::string::npos ? ocpsm::framework::without_prefixes(path) : std::string();
}

// Adds what the record says, and puts into it what comes of it.
void add_to(MappingContext &context, kidl_yfw_datatree &tree, const kidl_yfw_datatree *source, AddRecord &add,
            kidl_yfw_datatree **result) {
    const bool to_destination = &tree == &context.destination();
    if (!add.relative) {
        // Neither requests nor answers are data trees: there is no node for the slot.
        add.result = to_destination ? context.add_absolute(add, source) : ocpsm::framework::invalid_arguments;
        return;
    }
    const std::string tag = single_step(add.path);
    if (tag.empty() || to_destination) {
        add.result = ocpsm::framework::invalid_arguments;
        return;
    }
    kidl_yfw_datatree &node =
        context.add_below(tree, {tag, add.namespace_uri, add.value,
                                 static_cast<ocpsm::Operation>(add.source_operation.value_or(YFW_OPERATION_MERGE))});
    if (result != nullptr) {
        *result = &node;
    }
}

} // namespace

kerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx ctx, struct kidl_yfw_datatree *tree, const char *path,
                                         const char *namespace_uri, const char *value,
                                         const struct kidl_yfw_datatree *source, struct kidl_yfw_datatree **result,
                                         uint32_t first_flag, uint32_t second_flag) {
    MappingContext *context = MappingContext::of(ctx);
    if (result != nullptr) {
        *result = nullptr;
    }
    if (context == nullptr || tree == nullptr || path == nullptr || namespace_uri == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        AddRecord add = record_of(path, namespace_uri, value, source, first_flag, second_flag);
        add_to(*context, *tree, source, add, result);
        if (add.result != KERR_SUCCESS) {
            context->record_own_refusal(context->hierarchy_path());
        }
        const kerrno code = add.result;
        context->record(std::move(add));
        return code;
    });
}

kerrno yfw_map_get_node_info(yfw_map_ctx ctx, const char * /*list_path*/, const char *key_name, const char **text) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr || key_name == nullptr || text == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        *text = context->innermost_key(key_name);
        return KERR_SUCCESS;
    });
}

kerrno yfw_map_search_or_add_list(yfw_map_ctx ctx, struct kidl_yfw_datatree *destination,
                                  struct yfw_map_module_list *list, const char *list_path, const char *key_value,
                                  const char *key_name, const char *namespace_uri) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr || list_path == nullptr || key_value == nullptr || key_name == nullptr ||
        namespace_uri == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    if (context->answer() == nullptr) {
        return ocpsm::framework::not_served;
    }
    if (destination != &context->destination() || list != context->answer()->module_list()) {
        return ocpsm::framework::invalid_arguments;
    }
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        return context->answer()->search_or_add(list_path, key_name, key_value, namespace_uri);
    });
}

kerrno yfw_map_stitch_list_to_list(yfw_map_ctx ctx, struct yfw_map_stitch_entry *entry) {
    MappingContext *context = MappingContext::of(ctx);
    if (context == nullptr || entry == nullptr) {
        return ocpsm::framework::invalid_arguments;
    }
    if (context->answer() == nullptr) {
        return ocpsm::framework::not_served;
    }
    const bool placed = entry->destination == &context->destination();
    return without_exceptions(ocpsm::framework::out_of_memory, [&] {
        const kerrno result = placed ? context->answer()->stitch(*entry) : ocpsm::framework::invalid_arguments;
        if (result != KERR_SUCCESS && !context->own_refusal()) {
            context->answer()->note_failure(result);
            context->record_own_refusal(context->hierarchy_path());
        }
        return result;
    });
}

void yfw_add_to_output_list_ctx(yfw_map_ctx ctx, const struct kidl_yfw_datatree *source,
                                struct kidl_yfw_datatree *destination) {
    if (MappingContext *context = MappingContext::of(ctx)) {
        without_exceptions([&] { context->push_output(source, destination); });
    }
}

void yfw_remove_from_output_list_ctx(yfw_map_ctx ctx, const struct kidl_yfw_datatree * /*source*/,
                                     struct kidl_yfw_datatree * /*destination*/) {
    if (MappingContext *context = MappingContext::of(ctx)) {
        context->pop_output();
    }
}

void yfw_map_print_datatree_internal(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node, const char *label) {
    if (ctx == nullptr || ctx->trace_enabled == 0) {
        return;
    }
    if (ctx->trace_buffer->lines.full()) {
        ctx->trace_buffer->lines.drop(node == nullptr ? 1 : ocpsm::framework::line_count(*node));
        return;
    }
    without_exceptions([&] {
        const std::string prefix = std::string(label == nullptr ? "" : label) + ": ";
        if (node == nullptr) {
            _lstrace(ctx->trace_buffer, 0, (prefix + "(none)").c_str());
            return;
        }
        for (const std::string &line : ocpsm::framework::print(*node)) {
            _lstrace(ctx->trace_buffer, 0, (prefix + line).c_str());
        }
    });
}
