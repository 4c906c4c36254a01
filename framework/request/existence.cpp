#include "framework/request/existence.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

const lysc_node *known_schema(const RequestNode &node, const lysc_node *parent) {
    const lysc_node *schema = models::Schema::openconfig().child(parent, node.tag, node.namespace_uri);
    return schema != nullptr && node.namespace_uri == schema->module->ns ? schema : nullptr;
}

// An edit's node, and what is there of it; where it is is said only in a refusal.
struct Place {
    const Place *above; // null: a top node
    const RequestNode &node;
    const lysc_node &schema;
    const lyd_node *standing; // null: it is not there
};

std::string path_of(const Place &place) {
    return (place.above == nullptr ? std::string() : path_of(*place.above)) + path_step(place.node, &place.schema);
}

[[noreturn]] void refuse(const std::string &tag, const Place &place, const std::string &message,
                         std::string_view advice) {
    throw Error(Error::Source::refused, tag, path_of(place), message, std::string(advice));
}

std::string fitted_instead(std::string_view name, const std::vector<std::string> &fitted) {
    if (fitted.empty()) {
        return "no module is fitted";
    }
    const auto near = fitted.size() > 1 ? nearest(name, fitted) : std::nullopt;
    return (fitted.size() > 1 ? "fitted are " : "fitted is ") + listed(fitted) +
           (near ? "; the nearest is " + one_line(*near) : std::string());
}

// Modules are fitted, not configured.
void check_entry(const Place &place, const FittedModules &fitted) {
    if (place.schema.nodetype == LYS_LIST && place.standing == nullptr && place.node.operation != Operation::remove) {
        const std::string &name = *find_key(place.node, openconfig::key_name)->value;
        refuse("data-missing", place, "there is no module '" + one_line(name) + "'", fitted_instead(name, fitted()));
    }
}

void check_operation(const Place &place) {
    if (place.node.operation == Operation::create && place.standing != nullptr) {
        refuse("data-exists", place, place.node.tag + " is to be created, but is there already", "merge or replace it");
    }
    if (place.node.operation == Operation::delete_existing && place.standing == nullptr) {
        refuse("data-missing", place, place.node.tag + " is to be deleted, but is not there", remove_instead);
    }
}

// The list of modules.
const lysc_node *module_list() {
    return models::Schema::openconfig().find(openconfig::list_path);
}

bool is_around_modules(const lysc_node &schema) {
    return &schema == module_list()->parent || &schema == module_list()->parent->parent;
}

// The plug-in says what is wrong with an entry that is not named, with state, and with what the model does not know.
bool is_settled_here(const RequestNode &node, const lysc_node &schema) {
    const auto keys = models::key_names(schema);
    const lysc_node *const leaf = &schema;
    return (schema.flags & LYS_CONFIG_W) != 0 && !lysc_is_key(leaf) &&
           std::all_of(keys.begin(), keys.end(),
                       [&node](std::string_view key) { return find_key(node, key) != nullptr; });
}

// A replaced container of modules goes over to the modules that are there.
bool goes_below(const RequestNode &node, const lysc_node &schema) {
    return !takes_away(node.operation) && (node.operation != Operation::replace || is_around_modules(schema));
}

// An edit against what stands there.
class Settlement {
public:
    Settlement(const AnswerTree &standing, const FittedModules &fitted) : standing_(standing), fitted_(fitted) {}

    // `first` is the first of the siblings that stand where the nodes are; null: there are none.
    void settle_below(std::vector<RequestNode> &nodes, const Place *above, const lyd_node *first) const {
        // A node stays where it is until all are settled: refusals show the keys of the entry around them.
        std::vector<bool> stays;
        stays.reserve(nodes.size());
        for (RequestNode &node : nodes) {
            stays.push_back(settle(node, above, first));
        }
        auto settled = stays.begin();
        nodes.erase(std::remove_if(nodes.begin(), nodes.end(), [&settled](const RequestNode &) { return !*settled++; }),
                    nodes.end());
    }

private:
    // Returns whether the node stays in the edit.
    bool settle(RequestNode &node, const Place *above, const lyd_node *first) const {
        const lysc_node *schema = known_schema(node, above == nullptr ? nullptr : &above->schema);
        if (schema == nullptr || !is_settled_here(node, *schema)) {
            return true;
        }
        const Place place{above, node, *schema, find(first, node, *schema)};
        check_entry(place, fitted_);
        check_operation(place);
        if (schema == module_list() && place.standing == nullptr) {
            return false;
        }
        if (goes_below(node, *schema)) {
            settle_below(node.children, &place, place.standing == nullptr ? nullptr : lyd_child(place.standing));
        }
        return true;
    }

    // The entry with the key of an edited one, or the node with this schema.
    const lyd_node *find(const lyd_node *first, const RequestNode &node, const lysc_node &schema) const {
        return &schema == module_list() ? standing_.find_entry(*find_key(node, openconfig::key_name)->value)
                                        : find_sibling(first, schema);
    }

    const AnswerTree &standing_;
    const FittedModules &fitted_;
};

struct Names {
    std::vector<std::string> in_order;
    std::set<std::string> all;
};

void collect_names(const RequestNode &node, const lysc_node *parent, Names &names) {
    const lysc_node *schema = known_schema(node, parent);
    if (schema == nullptr) {
        return;
    }
    if (schema != module_list()) {
        for (const RequestNode &child : node.children) {
            collect_names(child, schema, names);
        }
        return;
    }
    const RequestNode *key = find_key(node, openconfig::key_name);
    if (key != nullptr && names.all.insert(*key->value).second) {
        names.in_order.push_back(*key->value);
    }
}

bool has_operation(const RequestNode &node, const lysc_node *parent) {
    const lysc_node *schema = known_schema(node, parent);
    return schema != nullptr && is_around_modules(*schema) &&
           (node.operation != Operation::merge ||
            std::any_of(node.children.begin(), node.children.end(),
                        [schema](const RequestNode &child) { return has_operation(child, schema); }));
}

} // namespace

std::vector<std::string> named_modules(const std::vector<RequestNode> &tops) {
    Names names;
    for (const RequestNode &top : tops) {
        collect_names(top, nullptr, names);
    }
    return std::move(names.in_order);
}

bool concerns_all_modules(const std::vector<RequestNode> &tops) {
    return std::any_of(tops.begin(), tops.end(), [](const RequestNode &top) { return has_operation(top, nullptr); });
}

void settle_existence(std::vector<RequestNode> &tops, const AnswerTree &standing, const FittedModules &fitted) {
    Settlement(standing, fitted).settle_below(tops, nullptr, standing.top());
}

} // namespace ocpsm::framework
