// The operations of the mapping framework, recorded.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

#include <yfw_map.h>

#include "fake_platform.hpp"

namespace {

using fake::Platform;
using fake::quoted;

std::string named(const void *object) {
    return Platform::current().name_of(object);
}

std::string named_or_none(const void *object) {
    return object == nullptr ? "none" : named(object);
}

std::string number(std::uint64_t value) {
    return std::to_string(value);
}

template <class... Parts>
std::string joined(const std::string &first, const Parts &...rest) {
    std::string line = first;
    ((line += ", ", line += rest), ...);
    return line;
}

void show_hierarchy(yfw_map_ctx ctx) {
    Platform &platform = Platform::current();
    if (ctx == nullptr || ctx->request == nullptr) {
        return;
    }
    ctx->request->hierarchy_length = static_cast<std::uint32_t>(platform.hierarchy.size());
    ctx->request->hierarchy = platform.hierarchy.empty() ? nullptr : platform.hierarchy.data();
    // The framework's own nodes are writable; callers merely see them as const.
    ctx->current_node =
        platform.hierarchy.empty() ? nullptr : const_cast<kidl_yfw_datatree *>(platform.hierarchy.back().node);
}

// The value of a leaf of the innermost entry that has it.
const char *key_in_hierarchy(std::string_view key) {
    const auto &levels = Platform::current().hierarchy;
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        for (std::int32_t i = 0; level->kind == 2 && i < level->node->child_count; ++i) {
            const kidl_yfw_datatree &child = level->node->children[i];
            if (child.value != nullptr && child.tag == key) {
                return child.value;
            }
        }
    }
    return nullptr;
}

// The framework copies the record as it stands: what lies behind the terminators of its texts must not be chance.
template <std::size_t size>
bool is_zero_behind(const char (&text)[size]) {
    const auto *const terminator = std::find(std::begin(text), std::end(text), '\0');
    return terminator != std::end(text) && std::all_of(terminator, std::end(text), [](char c) { return c == '\0'; });
}

int bounded(char *dest, std::size_t size, std::size_t used, std::string_view source) {
    if (size == 0) {
        return 1;
    }
    const std::size_t room = size - 1 - std::min(used, size - 1);
    const std::size_t taken = std::min(room, source.size());
    std::copy_n(source.data(), taken, dest + used);
    dest[used + taken] = '\0';
    return taken == source.size() ? 0 : 1;
}

} // namespace

extern "C" {

int yfw_map_do_these_match(const char *first, const char *second) {
    const auto scripted = Platform::current().record(fake::Questions, "match", joined(quoted(first), quoted(second)));
    const bool equal = first != nullptr && second != nullptr && std::strcmp(first, second) == 0;
    return static_cast<int>(scripted.value_or(equal ? 1 : 0));
}

int yfw_map_is_request_delete(const kidl_yfw_datatree *node) {
    const auto scripted = Platform::current().record(fake::Questions, "is_request_delete", named(node));
    if (node == nullptr) {
        Platform::current().fault("yfw_map_is_request_delete of a null node");
        return 0;
    }
    return static_cast<int>(scripted.value_or(node->operation == 3 || node->operation == 4 ? 1 : 0));
}

int yfw_map_is_request_add(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const kidl_yfw_datatree *destination) {
    const auto scripted = Platform::current().record(fake::Questions, "is_request_add",
                                                     joined(named(ctx), named(node), named(destination)));
    if (node == nullptr) {
        Platform::current().fault("yfw_map_is_request_add of a null node");
        return 0;
    }
    const bool edit = ctx != nullptr && ctx->request != nullptr && ctx->request->registration != nullptr &&
                      ctx->request->registration->operation_kind == 1;
    return static_cast<int>(scripted.value_or(edit && node->operation <= 2 ? 1 : 0));
}

void yfw_map_add_to_node_hierarchy(yfw_map_ctx ctx, const kidl_yfw_datatree *node, uint32_t kind) {
    Platform &platform = Platform::current();
    platform.record(fake::Walk, "add_to_hierarchy", joined(named(ctx), named(node), number(kind)));
    yfw_map_hierarchy_level &level = platform.hierarchy.emplace_back();
    level.node = node;
    level.kind = kind;
    show_hierarchy(ctx);
}

void yfw_map_remove_from_node_hierarchy(yfw_map_ctx ctx, const kidl_yfw_datatree *node) {
    Platform &platform = Platform::current();
    platform.record(fake::Walk, "remove_from_hierarchy", joined(named(ctx), named(node)));
    if (platform.hierarchy.empty() || platform.hierarchy.back().node != node) {
        platform.fault("a node was removed from the hierarchy that does not stand on top: " + named(node));
        return;
    }
    platform.hierarchy.pop_back();
    show_hierarchy(ctx);
}

kerrno yfw_map_update_current_list_node(yfw_map_ctx ctx, const char *list_path) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Walk, "update_current_list", joined(named(ctx), quoted(list_path)));
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    platform.keep_current_entry(ctx, list_path);
    return KERR_SUCCESS;
}

kerrno yfw_map_check_oc_leafref(yfw_map_ctx ctx, const char *list_path, const char *container,
                                const kidl_yfw_datatree *key, const kidl_yfw_datatree *entry) {
    const auto scripted =
        Platform::current().record(fake::Walk, "check_leafref",
                                   joined(named(ctx), quoted(list_path), quoted(container), named(key), named(entry)));
    return scripted.value_or(KERR_SUCCESS);
}

uint16_t yfw_map_util_itree_stack_size(yfw_map_ctx ctx) {
    Platform &platform = Platform::current();
    platform.record(fake::Walk, "itree_size", named(ctx));
    return static_cast<uint16_t>(platform.itree_stack.size());
}

void yfw_map_util_itree_stack_push(yfw_map_ctx ctx, kidl_yfw_datatree *children, int32_t child_count,
                                   uint32_t reserved) {
    Platform &platform = Platform::current();
    platform.record(
        fake::Walk, "itree_push",
        joined(named(ctx), platform.array_name_of(children), std::to_string(child_count), number(reserved)));
    platform.itree_stack.push_back({children, child_count});
}

void yfw_map_util_itree_stack_pop(yfw_map_ctx ctx) {
    Platform &platform = Platform::current();
    platform.record(fake::Walk, "itree_pop", named(ctx));
    if (platform.itree_stack.empty()) {
        platform.fault("the empty instance-tree stack was popped");
        return;
    }
    platform.itree_stack.pop_back();
}

void yfw_map_util_itree_stack_peak(yfw_map_ctx ctx, yfw_map_itree_entry *top) {
    Platform &platform = Platform::current();
    platform.record(fake::Walk, "itree_peak", named(ctx));
    if (!platform.itree_stack.empty()) {
        top->children = platform.itree_stack.back().children;
        top->child_count = platform.itree_stack.back().count;
    }
}

void yfw_oc_error_path(yfw_map_ctx ctx) {
    Platform::current().record(fake::Walk, "error_path", named(ctx));
}

kerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx ctx, kidl_yfw_datatree *tree, const char *path,
                                         const char *namespace_uri, const char *value, const kidl_yfw_datatree *source,
                                         kidl_yfw_datatree **result, uint32_t first_flag, uint32_t second_flag) {
    Platform &platform = Platform::current();
    const auto scripted =
        platform.record(fake::Output, "add",
                        joined(named(ctx), named(tree), quoted(path), "ns=" + fake::namespace_name(namespace_uri),
                               "value=" + quoted(value), "src=" + named_or_none(source),
                               std::string("result=") + (result == nullptr ? "none" : "slot"), number(first_flag),
                               number(second_flag)));
    if (result != nullptr) {
        *result = nullptr;
    }
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    fake::Tree *const owner = platform.tree_of(tree);
    if (path != nullptr && path[0] != '/' && owner != nullptr) {
        kidl_yfw_datatree *const added =
            owner->add_child(tree, path, namespace_uri, value, source == nullptr ? 0 : source->operation);
        if (result != nullptr && platform.relative_add_gives_node) {
            *result = added;
        }
    }
    return KERR_SUCCESS;
}

kerrno yfw_map_get_node_info(yfw_map_ctx ctx, const char *list_path, const char *key_name, const char **text) {
    Platform &platform = Platform::current();
    const auto scripted =
        platform.record(fake::Output, "get_node_info", joined(named(ctx), quoted(list_path), quoted(key_name)));
    *text = nullptr;
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    if (platform.node_info_from_hierarchy) {
        *text = key_in_hierarchy(key_name);
    } else if (const auto found = platform.node_info.find(key_name);
               found != platform.node_info.end() && found->second) {
        *text = found->second->c_str();
    }
    return platform.node_info_result;
}

kerrno yfw_map_search_or_add_list(yfw_map_ctx ctx, kidl_yfw_datatree *destination, yfw_map_module_list *list,
                                  const char *list_path, const char *key_value, const char *key_name,
                                  const char *namespace_uri) {
    const auto scripted = Platform::current().record(fake::Output, "search_or_add_list",
                                                     joined(named(ctx), named(destination), named(list),
                                                            quoted(list_path), quoted(key_value), quoted(key_name),
                                                            "ns=" + fake::namespace_name(namespace_uri)));
    return scripted.value_or(KERR_SUCCESS);
}

kerrno yfw_map_stitch_list_to_list(yfw_map_ctx ctx, yfw_map_stitch_entry *entry) {
    const auto scripted = Platform::current().record(
        fake::Output, "stitch",
        joined(named(ctx), "in_use=" + number(entry->in_use), named(entry->destination),
               "kind=" + number(entry->value_kind), "ns=" + fake::namespace_name(entry->namespace_uri),
               "value=" + quoted(entry->value), quoted(entry->instance_path), quoted(entry->schema_path)));
    if (!is_zero_behind(entry->namespace_uri) || !is_zero_behind(entry->value) ||
        !is_zero_behind(entry->instance_path) || !is_zero_behind(entry->schema_path)) {
        Platform::current().fault("a stitch record that is not zero behind its texts");
    }
    return scripted.value_or(KERR_SUCCESS);
}

void yfw_add_to_output_list_ctx(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination) {
    Platform::current().record(fake::Output, "output_push", joined(named(ctx), named(source), named(destination)));
    if (ctx != nullptr && ctx->request != nullptr) {
        ++ctx->request->output_depth;
    }
}

void yfw_remove_from_output_list_ctx(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination) {
    Platform::current().record(fake::Output, "output_pop", joined(named(ctx), named(source), named(destination)));
    if (ctx != nullptr && ctx->request != nullptr && ctx->request->output_depth != 0) {
        --ctx->request->output_depth;
    }
}

void yfw_map_print_datatree_internal(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *label) {
    Platform::current().record(fake::Output, "print_datatree", joined(named(ctx), named(node), quoted(label)));
}

char *yfw_strdup(const char *text, const char *allocation_tag) {
    Platform &platform = Platform::current();
    platform.record(fake::Heap, "strdup", joined(quoted(text), quoted(allocation_tag)));
    if (text == nullptr) {
        platform.fault("yfw_strdup of a null text");
        return nullptr;
    }
    return platform.duplicate(text, allocation_tag);
}

void hvs_named_free(void *allocation) {
    Platform &platform = Platform::current();
    platform.record(fake::Heap, "named_free", quoted(static_cast<const char *>(allocation)));
    platform.release(allocation);
}

int yfw_strcpy_s(char *dest, size_t size, const char *source) {
    Platform::current().record(fake::Texts, "strcpy_s", joined(number(size), quoted(source)));
    return bounded(dest, size, 0, source);
}

int yfw_strcat_s(char *dest, size_t size, const char *source) {
    Platform::current().record(fake::Texts, "strcat_s", joined(number(size), quoted(source)));
    return bounded(dest, size, ::strnlen(dest, size), source);
}

int yfw_strncpy_s(char *dest, size_t size, const char *source, size_t count) {
    const std::string taken(source, ::strnlen(source, count));
    Platform::current().record(fake::Texts, "strncpy_s", joined(number(size), quoted(taken.c_str()), number(count)));
    return bounded(dest, size, 0, taken);
}

} // extern "C"
