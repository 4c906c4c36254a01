#include "framework/native_origin.hpp"

#include <libyang/libyang.h>

#include <vector>

#include "framework/models/models.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/type.hpp"

namespace ocpsm::framework {

namespace {

bool lies_below(std::string_view path, std::string_view above) {
    return path.size() > above.size() && path.starts_with(above) &&
           (path[above.size()] == '/' || path[above.size()] == '[');
}

void add_leaves(const lysc_node &node, const std::string &path, std::vector<std::string> &leaves) {
    for (const lysc_node *child : models::Schema::openconfig().children(&node)) {
        const models::NodeInfo info = models::describe(*child);
        const std::string here = path + "/" + std::string(info.name);
        if (info.kind == models::NodeKind::leaf && info.config && !lysc_is_key(child)) {
            leaves.push_back(here);
        }
        add_leaves(*child, here, leaves);
    }
}

// Instance paths of all configuration leaves below a node.
std::vector<std::string> configuration_leaves(const std::string &location) {
    std::vector<std::string> leaves;
    if (const lysc_node *node = schema_of(location)) {
        add_leaves(*node, location, leaves);
    }
    return leaves;
}

// Native instance paths of what the removal of a leaf takes away; none where it cannot be removed alone.
std::vector<std::string> taken_away_with(Callback root, const std::string &leaf) {
    std::vector<std::string> paths;
    try {
        auto trees = hand_over_edit(type_request(deletion_of(leaf), Kind::edit, true), {});
        const Translation translation = translate_trees(root, std::move(trees), Kind::edit, {}, Adds::dropped);
        for (const HandedOver &handed : translation.handed_over) {
            for (const native::NativeOperation &operation : handed.native.net().operations()) {
                if (takes_away(operation.operation)) {
                    paths.push_back(operation.path);
                }
            }
        }
    } catch (const Error &) {
        paths.clear();
    }
    return paths;
}

// What is below a node that is taken away as a whole is walked without being named. Finds the configuration leaf below
// it whose own removal does something to the native node, the last one of several, by translating these removals;
// `location` itself when there is none.
std::string leaf_behind(Callback root, const std::string &location, std::string_view native_path) {
    std::string behind = location;
    std::size_t longest = 0;
    for (const std::string &leaf : configuration_leaves(location)) {
        for (const std::string &path : taken_away_with(root, leaf)) {
            const bool about_it = path == native_path || lies_below(native_path, path);
            if (about_it && path.size() >= longest) {
                behind = leaf;
                longest = path.size();
            }
        }
    }
    return behind;
}

} // namespace

std::string openconfig_origin(Callback root, const Origins &origins, const native::NetRequest &edit,
                              std::string_view native_path) {
    const native::Origin number = edit.origin_of(native_path);
    if (number == native::no_origin) {
        return {};
    }
    const Origin &origin = origins.at(number);
    return origin.spread ? leaf_behind(root, origin.location, native_path) : origin.location;
}

} // namespace ocpsm::framework
