#include "openconfig_model.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/models/models.hpp"

namespace ocpsm {
namespace {

void append(std::vector<SchemaNode> &nodes, const lysc_node &node, const std::vector<std::string_view> &parent_keys) {
    const models::NodeInfo info = models::describe(node);
    const bool is_key = std::find(parent_keys.begin(), parent_keys.end(), info.name) != parent_keys.end();
    nodes.push_back({models::schema_path(node), info.kind, is_key, info.config, std::string(info.units)});
    for (const lysc_node *child = lysc_node_child(&node); child != nullptr; child = child->next) {
        append(nodes, *child, info.keys);
    }
}

} // namespace

std::vector<SchemaNode> read_openconfig_model() {
    std::vector<SchemaNode> nodes;
    for (const lysc_node *top : models::Schema::openconfig().top_nodes()) {
        append(nodes, *top, {});
    }
    return nodes;
}

bool is_native_node(std::string_view module, std::string_view path, NodeKind kind) {
    const auto info = models::Schema::native().describe(path);
    return info && info->kind == kind && info->module == module;
}

} // namespace ocpsm
