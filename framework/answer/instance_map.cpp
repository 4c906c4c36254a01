#include "framework/answer/instance_map.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "framework/host/data_tree.hpp"

namespace ocpsm::framework {

namespace {

// The values of these keys of a node, each with its end; none when one of them is missing.
std::optional<std::string> values_of(const kidl_yfw_datatree &node, const std::vector<const lysc_node *> &keys) {
    std::string values;
    for (const lysc_node *key : keys) {
        const kidl_yfw_datatree *leaf = find_child(node, key->name);
        const auto value = leaf == nullptr ? std::nullopt : value_of(*leaf);
        if (!value) {
            return std::nullopt;
        }
        values.append(*value).push_back('\0');
    }
    return values;
}

bool is_of(const kidl_yfw_datatree &node, const lysc_node &schema) {
    return yfw_map_do_these_match(node.tag, schema.name) != 0 &&
           yfw_map_do_these_match(node.namespace_uri, schema.module->ns) != 0;
}

} // namespace

InstanceMap::Owner InstanceMap::both(Owner one, Owner other) {
    if (one == nobody || one == other) {
        return other;
    }
    return other == nobody ? one : several;
}

InstanceMap::Selection &InstanceMap::find_or_add(Selection &above, const native::NativeNode &node) {
    std::vector<const lysc_node *> keys;
    std::string values;
    for (const native::NativeNode &key : native::keys(node)) {
        if (key.value) {
            keys.push_back(key.schema);
            values.append(*key.value).push_back('\0');
        }
    }
    auto family = std::find_if(above.below.begin(), above.below.end(), [&](const Family &candidate) {
        return candidate.schema == node.schema && candidate.keys == keys;
    });
    if (family == above.below.end()) {
        family = above.below.insert(family, Family{node.schema, std::move(keys), {}});
    }
    Selection *&selection = family->by_values[std::move(values)];
    if (selection == nullptr) {
        selection = &selections_.emplace_back();
    }
    return *selection;
}

void InstanceMap::add_below(Selection &above, std::span<const native::NativeNode> nodes, Owner owner) {
    for (const native::NativeNode &node : nodes) {
        Selection &selection = find_or_add(above, node);
        selection.owner = both(selection.owner, owner);
        if (native::others(node).empty()) {
            selection.whole = both(selection.whole, owner);
        }
        add_below(selection, native::others(node), owner);
    }
}

void InstanceMap::add(std::string instance, const native::NetRequest &read) {
    const Owner owner = instances_.size();
    instances_.push_back(std::move(instance));
    Selection &top = selections_.front();
    top.owner = both(top.owner, owner);
    add_below(top, read.roots, owner);
}

InstanceMap::Place InstanceMap::top() const {
    Place place;
    place.selections_.push_back(&selections_.front());
    return place;
}

InstanceMap::Place InstanceMap::below(const Place &above, const kidl_yfw_datatree &node) const {
    Place place;
    place.around_ = above.around_;
    for (const Selection *selection : above.selections_) {
        place.around_ = both(place.around_, selection->whole);
        for (const Family &family : selection->below) {
            const auto values = is_of(node, *family.schema) ? values_of(node, family.keys) : std::nullopt;
            const auto found = values ? family.by_values.find(*values) : family.by_values.end();
            if (found != family.by_values.end()) {
                place.selections_.push_back(found->second);
            }
        }
    }
    return place;
}

const std::string *InstanceMap::instance_of(const Place &place) const {
    Owner owner = place.around_;
    for (const Selection *selection : place.selections_) {
        owner = both(owner, selection->owner);
    }
    return owner == nobody || owner == several ? nullptr : &instances_[owner];
}

} // namespace ocpsm::framework
