#include "framework/answer/instance_map.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/host/data_tree.hpp"

namespace ocpsm::framework {

namespace {

bool is_selected(const kidl_yfw_datatree &node, const native::NetNode &selection) {
    const lysc_node &schema = *selection.schema;
    if (!yfw_map_do_these_match(node.tag, schema.name) ||
        !yfw_map_do_these_match(node.namespace_uri, schema.module->ns)) {
        return false;
    }
    return std::all_of(selection.keys.begin(), selection.keys.end(), [&node](const native::NetKey &key) {
        const kidl_yfw_datatree *leaf = find_child(node, key.schema->name);
        return !key.value || (leaf != nullptr && value_of(*leaf) == *key.value);
    });
}

// A selection without anything below it selects all that is below it.
bool are_selected(std::span<const kidl_yfw_datatree *const> chain, const std::vector<native::NetNode> &selections) {
    if (chain.empty()) {
        return true;
    }
    return std::any_of(selections.begin(), selections.end(), [chain](const native::NetNode &selection) {
        return is_selected(*chain.front(), selection) &&
               (selection.children.empty() || are_selected(chain.subspan(1), selection.children));
    });
}

} // namespace

void InstanceMap::add(std::string instance, native::NetRequest read) {
    rows_.push_back({std::move(instance), std::move(read)});
}

std::optional<std::string> InstanceMap::instance_of(std::span<const kidl_yfw_datatree *const> chain) const {
    std::optional<std::string> instance;
    for (const Row &row : rows_) {
        if (!are_selected(chain, row.read.roots)) {
            continue;
        }
        if (instance) {
            return std::nullopt;
        }
        instance = row.instance;
    }
    return instance;
}

} // namespace ocpsm::framework
