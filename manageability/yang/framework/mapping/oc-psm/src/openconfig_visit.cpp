#include "openconfig_visit.hpp"

#include <array>
#include <cstddef>
#include <iterator>

namespace ymap {

namespace {

// The read-selection bits that survive the entry into a container or list.
constexpr std::uint32_t read_selection_mask = 0x11111110;

constexpr Walker walkers[] = {
#define YMAP_WALKER_FUNCTION(suffix)                                                                                   \
    { YMAP_STRING(YMAP_WALKER(suffix)), YMAP_CALLBACK_PROTOTYPE(YMAP_WALKER(suffix)), YMAP_OPENCONFIG_SOURCE("parser") }
#define YMAP_CONTAINER(suffix, parent, tag, access)                                                                    \
    {NodeId::suffix,                                                                                                   \
     NodeId::parent,                                                                                                   \
     RowKind::container,                                                                                               \
     Access::access,                                                                                                   \
     tag,                                                                                                              \
     YMAP_WALKER_FUNCTION(suffix),                                                                                     \
     YMAP_WALKER(suffix),                                                                                              \
     YMAP_CONTAINER_CALLBACK(suffix),                                                                                  \
     nullptr,                                                                                                          \
     YMAP_AUGMENT_HOOK(suffix)},
#define YMAP_LIST(suffix, parent, tag, access, conversion)                                                             \
    {NodeId::suffix,                                                                                                   \
     NodeId::parent,                                                                                                   \
     RowKind::list,                                                                                                    \
     Access::access,                                                                                                   \
     tag,                                                                                                              \
     YMAP_WALKER_FUNCTION(suffix),                                                                                     \
     YMAP_WALKER(suffix),                                                                                              \
     nullptr,                                                                                                          \
     YMAP_LIST_CALLBACK(suffix),                                                                                       \
     YMAP_AUGMENT_HOOK(suffix)},
#define YMAP_LEAF_ROW(suffix, parent, kind, tag, access)                                                               \
    {NodeId::suffix,                                                                                                   \
     NodeId::parent,                                                                                                   \
     RowKind::kind,                                                                                                    \
     Access::access,                                                                                                   \
     tag,                                                                                                              \
     YMAP_WALKER_FUNCTION(suffix),                                                                                     \
     YMAP_WALKER(suffix),                                                                                              \
     nullptr,                                                                                                          \
     YMAP_LEAF_CALLBACK(suffix),                                                                                       \
     nullptr},
#define YMAP_KEY(suffix, parent, tag, access, conversion) YMAP_LEAF_ROW(suffix, parent, key, tag, access)
#define YMAP_LEAF(suffix, parent, tag, access, conversion) YMAP_LEAF_ROW(suffix, parent, leaf, tag, access)
#define YMAP_REFUSED(suffix, parent, tag, access) YMAP_LEAF_ROW(suffix, parent, leaf, tag, access)
#include "openconfig_table.inc"
};

constexpr std::size_t node_count = std::size(walkers);

// The table's rows ordered by parent, and where each parent's children begin.
struct Families {
    std::array<NodeId, node_count> children{};
    std::array<std::size_t, node_count + 1> begins{};
};

constexpr Families families = [] {
    Families result;
    std::size_t next = 0;
    for (std::size_t parent = 0; parent < node_count; ++parent) {
        result.begins[parent] = next;
        for (const Walker &row : walkers) {
            if (row.parent == walkers[parent].id) {
                result.children[next++] = row.id;
            }
        }
    }
    result.begins[node_count] = next;
    return result;
}();

} // namespace

const Walker &walker_of(NodeId id) {
    return walkers[static_cast<std::size_t>(id)];
}

std::span<const NodeId> children_of(NodeId id) {
    const auto index = static_cast<std::size_t>(id);
    return std::span(families.children)
        .subspan(families.begins[index], families.begins[index + 1] - families.begins[index]);
}

void Visit::enter() {
    const bool list = self.kind == RowKind::list;
    yfw_map_add_to_node_hierarchy(ctx, &node, list ? 2 : 1);
    set_hierarchy_kind(list ? kind_list : kind_container);
    if (is_read(ctx)) {
        clear_read_selection(request, ~read_selection_mask);
    }
}

void Visit::leave() {
    yfw_map_remove_from_node_hierarchy(ctx, &node);
}

void Visit::set_hierarchy_kind(std::uint32_t kind) {
    ymap::set_hierarchy_kind(node, kind);
    add_second_flag(node, second_flag_kind_set);
}

const Walker *Visit::known_child(const char *tag) const {
    for (const NodeId id : children_of(self.id)) {
        const Walker &walker = walker_of(id);
        if (match(tag, walker.tag)) {
            const bool served = walker.access == Access::configuration || is_operational_read(ctx);
            return served ? &walker : nullptr;
        }
    }
    return nullptr;
}

kerrno Visit::dispatch(Node &child) {
    const Walker *known = tag_of(child) != nullptr ? known_child(tag_of(child)) : nullptr;
    return known != nullptr ? known->walker(ctx, &child, destination) : dispatch_unknown(child);
}

kerrno Visit::dispatch_unknown(Node &child) {
    if (tag_of(child) == nullptr) {
        YMAP_ERROR(self.function, ctx, "Tag name is not available!");
        return YMAP_ERR_BAD_TREE;
    }
    if (!match(namespace_of(child), openconfig)) {
        return self.hook(ctx, &child, destination);
    }
    if (self.kind == RowKind::list) {
        YMAP_ERROR(self.function, ctx, "Unsupported tag `%s`is specified in the request.", tag_of(child));
    } else {
        YMAP_ERROR(self.function, ctx, "Unsupported tag `%s` is specified in the request.", tag_of(child));
    }
    if (is_read(ctx)) {
        return KERR_SUCCESS;
    }
    record_error_node(ctx, tag_of(child), allocation_tag);
    yfw_oc_error_path(ctx);
    return YMAP_ERR_UNSUPPORTED;
}

void Visit::spread_to(NodeId child) {
    const Walker &walker = walker_of(child);
    if (walker.access == Access::configuration || is_operational_read(ctx)) {
        walker.walker(ctx, &node, destination);
    }
}

void Visit::settle_content_matches() {
    if (has_read_selection(request, read_content_match_leaf) && !has_read_selection(request, read_selection_leaf)) {
        clear_read_selection(request, read_content_match_leaf);
        add_read_selection(request, read_content_match_only);
    }
}

void Visit::forget_read_selection() {
    clear_read_selection(request, ~read_selection_mask);
}

Replacement::Replacement(const Visit &visit)
    : node_(visit.node), request_(visit.request), operation_(operation_of(node_)), flags_(replace_flags_of(request_)),
      marker_(replace_marker_of(request_)) {
    rewrite_operation(operation_remove);
    add_replace_flag(request_, replace_remove_pass);
    set_replace_marker(request_, 1);
}

Replacement::~Replacement() {
    rewrite_operation(operation_);
    set_replace_flags(request_, flags_);
    set_replace_marker(request_, marker_);
}

void Replacement::begin_merge() {
    rewrite_operation(operation_merge);
    clear_replace_flag(request_, replace_remove_pass);
    add_replace_flag(request_, replace_merge_pass);
}

void Replacement::rewrite_operation(std::uint32_t operation) {
    set_operation(node_, operation);
    add_flag(node_, flag_operation_rewritten);
}

} // namespace ymap
