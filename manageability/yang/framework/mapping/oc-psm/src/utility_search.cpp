// Searches of request and answer trees by tag path, and the dump of a context.
#include "utility.hpp"

#include <cstring>
#include <span>

using namespace ymap;

namespace {

bool is_in_use(const Node *node) {
    return node != nullptr && has_flag(*node, flag_in_use);
}

std::span<const Node> children_of(const Node &node) {
    if (held_children_of(node) == nullptr || child_count_of(node) < 1) {
        return {};
    }
    return {held_children_of(node), static_cast<std::size_t>(child_count_of(node))};
}

void append_tag(char *path, const Node &node) {
    if (tag_of(node) != nullptr) {
        yfw_strcat_s(path, path_size, tag_of(node));
    }
}

bool is_equal(const char *first, const char *second) {
    return std::strcmp(first, second) == 0;
}

// A node that is looked at; what is too deep is passed over like what is not in use.
bool is_visited(const Node *node, int depth) {
    return is_in_use(node) && depth <= search_depth;
}

// Paths only grow on the way down, so that nothing below a node is found unless its path begins what is looked for.
bool leads_to(const char *path, const char *path_to_find) {
    return std::strncmp(path, path_to_find, std::strlen(path)) == 0;
}

// Searches the children with `search(child)`, each with the path of its parent and a slash in the same buffer, which is
// given back as it was.
template <typename Search>
int search_children(const Node &node, char *path, Search search) {
    for (const Node &child : children_of(node)) {
        char parent_path[path_size] = {};
        yfw_strcpy_s(parent_path, path_size, path);
        yfw_strcat_s(path, path_size, "/");
        if (search(child) == 1) {
            return 1;
        }
        yfw_strcpy_s(path, path_size, parent_path);
    }
    return 0;
}

int find_value(const Node *node, const char *path_to_find, char *path, char *value, int depth) {
    if (!is_visited(node, depth)) {
        return 0;
    }
    append_tag(path, *node);
    if (has_value(*node) && is_equal(path, path_to_find)) {
        yfw_strcpy_s(value, 200, held_value_of(*node));
        return 1;
    }
    yfw_strcat_s(path, path_size, "/");
    if (!leads_to(path, path_to_find)) {
        return 0;
    }
    for (const Node &child : children_of(*node)) {
        char child_path[path_size] = {};
        yfw_strcpy_s(child_path, path_size, path);
        if (find_value(&child, path_to_find, child_path, value, depth + 1) == 1) {
            return 1;
        }
    }
    return 0;
}

bool holds_data(const Function &function, yfw_map_ctx ctx, const Node &node, const char *path_to_find, const char *path,
                const char *value_to_find) {
    if (!has_value(node)) {
        return false;
    }
    YMAP_TRACE(function, ctx, "data %s", held_value_of(node));
    YMAP_TRACE(function, ctx, "path        : <%s>", path);
    YMAP_TRACE(function, ctx, "path_to_find: <%s>", path_to_find);
    YMAP_TRACE(function, ctx, "data_to_find: <%s>", value_to_find);
    if (!is_equal(path, path_to_find) || !is_equal(held_value_of(node), value_to_find)) {
        return false;
    }
    YMAP_TRACE(function, ctx, "data found !");
    return true;
}

int find_data(const Function &function, yfw_map_ctx ctx, const Node *node, const char *path_to_find, char *path,
              const char *value_to_find, int depth) {
    if (!is_visited(node, depth)) {
        return 0;
    }
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "TAG <%s>", shown(tag_of(*node)));
    append_tag(path, *node);
    if (holds_data(function, ctx, *node, path_to_find, path, value_to_find)) {
        return 1;
    }
    YMAP_TRACE(function, ctx, "subtree_count %d", child_count_of(*node));
    return search_children(*node, path, [&](const Node &child) {
        return find_data(function, ctx, &child, path_to_find, path, value_to_find, depth + 1);
    });
}

int find_path(const Node *node, const char *path_to_find, char *path, int depth) {
    if (!is_visited(node, depth)) {
        return 0;
    }
    append_tag(path, *node);
    if (is_equal(path, path_to_find)) {
        return 1;
    }
    if (!leads_to(path, path_to_find)) {
        return 0;
    }
    return search_children(*node, path,
                           [&](const Node &child) { return find_path(&child, path_to_find, path, depth + 1); });
}

int refuse_no_node(const Function &function, yfw_map_ctx ctx) {
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_ERROR(function, ctx, "return, req is NULL");
    return 0;
}

} // namespace

extern "C" {

int compare_path(yfw_map_ctx, const Node *node, const char *path_to_find, char *path, char *value) {
    return find_value(node, path_to_find, path, value, 0);
}

int search_data_in_response(yfw_map_ctx ctx, const Node *node, const char *path_to_find, char *path,
                            const char *value_to_find) {
    static constexpr Function function{"search_data_in_response",
                                       "int search_data_in_response(yfw_map_ctx, const struct kidl_yfw_datatree *, "
                                       "const char *, char *, const char *)",
                                       YMAP_SOURCE("utility")};
    if (node == nullptr) {
        return refuse_no_node(function, ctx);
    }
    return find_data(function, ctx, node, path_to_find, path, value_to_find, 0);
}

int check_request_type_3(yfw_map_ctx ctx, const Node *node, const char *path_to_find, char *path) {
    static constexpr Function function{
        "check_request_type_3",
        "int check_request_type_3(yfw_map_ctx, const struct kidl_yfw_datatree *, const char *, char *)",
        YMAP_SOURCE("utility")};
    if (node == nullptr) {
        return refuse_no_node(function, ctx);
    }
    return find_path(node, path_to_find, path, 0);
}

int check_request_type(yfw_map_ctx ctx, const Node *node, const char *path_to_find) {
    char path[path_size] = {};
    return check_request_type_3(ctx, node, path_to_find, path);
}

void print_data(yfw_map_ctx ctx) {
    static constexpr Function function{"print_data", "void print_data(yfw_map_ctx)", YMAP_SOURCE("utility")};
    if (ctx != nullptr) {
        set_data_printed(ctx, 1);
    }
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, " list index %d", static_cast<int>(output_count_of(ctx)));
    for (const OutputEntry &entry : std::span(output_of(ctx), output_count_of(ctx))) {
        yfw_map_print_datatree_internal(ctx, node_of(entry), "output list node");
        yfw_map_print_datatree_internal(ctx, key_of(entry), "output list key");
    }
    const Request &request = *request_of(ctx);
    YMAP_TRACE(function, ctx, " hierarchy_len  %d", static_cast<int>(hierarchy_length_of(request)));
    int iteration = 0;
    for (const HierarchyLevel &level : std::span(hierarchy_of(request), hierarchy_length_of(request))) {
        YMAP_TRACE(function, ctx, "iteration %d", iteration);
        yfw_map_print_datatree_internal(ctx, node_of(level), "node_data");
        ++iteration;
    }
    yfw_map_print_datatree_internal(ctx, root_node_of(ctx), "root_node");
    yfw_map_print_datatree_internal(ctx, parent_node_of(ctx), "parent_node");
    yfw_map_print_datatree_internal(ctx, current_node_of(ctx), "current_node");
    yfw_map_print_datatree_internal(ctx, request_root_of(request), "reg_dup_datatree");
    yfw_map_print_datatree_internal(ctx, pending_list_of(ctx), "plist");
    int index = 0;
    for (const char *xpath : std::span(xpaths_of(ctx), xpath_count_of(ctx))) {
        YMAP_TRACE(function, ctx, "xpath[%d]: %s", index, shown(xpath));
        ++index;
    }
}

} // extern "C"
