#include "framework/request/existence.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <string_view>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

bool takes_away(uint32_t operation) {
    return operation == YFW_OPERATION_DELETE || operation == YFW_OPERATION_REMOVE;
}

const lysc_node *schema_of(const RequestNode &node, const lysc_node *parent) {
    const lysc_node *schema = models::Schema::openconfig().child(parent, node.tag, node.namespace_uri);
    return schema != nullptr && node.namespace_uri == schema->module->ns ? schema : nullptr;
}

// A key of an entry as the edit gives it; none where it does not, or without a value.
std::optional<std::string> key_of(const RequestNode &entry, std::string_view key) {
    const auto found = std::find_if(entry.children.begin(), entry.children.end(), [&](const RequestNode &child) {
        return child.tag == key && child.namespace_uri == entry.namespace_uri;
    });
    const bool named = found != entry.children.end() && found->value && !found->value->empty();
    return named ? found->value : std::nullopt;
}

// An edit's node, what is there of it, and where.
struct Place {
    const RequestNode &node;
    const lysc_node &schema;
    const AnswerNode *standing; // null: it is not there
    std::string path;
};

// The entry with the keys of an edited one, or the node with this schema.
const AnswerNode *find_standing(const std::vector<AnswerNode> &nodes, const RequestNode &node,
                                const lysc_node &schema) {
    const auto keys = models::key_names(schema);
    const auto is_it = [&](const AnswerNode &candidate) {
        return candidate.schema == &schema && std::all_of(keys.begin(), keys.end(), [&](std::string_view key) {
                   const AnswerNode *leaf = find_child(candidate, key);
                   return leaf != nullptr && leaf->value == key_of(node, key);
               });
    };
    const auto found = std::find_if(nodes.begin(), nodes.end(), is_it);
    return found == nodes.end() ? nullptr : &*found;
}

std::string path_of(const RequestNode &node, const lysc_node &schema, const std::string &above) {
    std::string path = above + "/" + node.tag;
    for (const std::string_view key : models::key_names(schema)) {
        if (const auto value = key_of(node, key)) {
            path += key_predicate(key, *value);
        }
    }
    return path;
}

[[noreturn]] void refuse(const std::string &tag, const Place &place, const std::string &message,
                         const std::string &advice) {
    throw Error(Error::Source::refused, tag, place.path, message, advice);
}

// Modules are fitted, not configured.
void check_entry(const Place &place) {
    if (place.schema.nodetype == LYS_LIST && place.standing == nullptr &&
        place.node.operation != YFW_OPERATION_REMOVE) {
        const std::string name = key_of(place.node, models::key_names(place.schema).front()).value_or("");
        refuse("data-missing", place, "there is no module '" + one_line(name) + "'",
               "name one that is fitted, exactly as a read shows it");
    }
}

void check_operation(const Place &place) {
    if (place.node.operation == YFW_OPERATION_CREATE && place.standing != nullptr) {
        refuse("data-exists", place, place.node.tag + " is to be created, but is there already", "merge or replace it");
    }
    if (place.node.operation == YFW_OPERATION_DELETE && place.standing == nullptr) {
        refuse("data-missing", place, place.node.tag + " is to be deleted, but is not there",
               "use the operation remove if that is no error");
    }
}

// The list of modules.
const lysc_node *module_list() {
    return models::Schema::openconfig().find("/aps/aps-modules/aps-module");
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
                       [&node](std::string_view key) { return key_of(node, key).has_value(); });
}

// A replaced container of modules goes over to the modules that are there.
bool goes_below(const RequestNode &node, const lysc_node &schema) {
    return !takes_away(node.operation) && (node.operation != YFW_OPERATION_REPLACE || is_around_modules(schema));
}

void settle_below(std::vector<RequestNode> &nodes, const lysc_node *parent, const std::vector<AnswerNode> &standing,
                  const std::string &above) {
    std::vector<RequestNode> kept;
    for (RequestNode &node : nodes) {
        const lysc_node *schema = schema_of(node, parent);
        if (schema != nullptr && is_settled_here(node, *schema)) {
            const Place place{node, *schema, find_standing(standing, node, *schema), path_of(node, *schema, above)};
            check_entry(place);
            check_operation(place);
            if (schema == module_list() && place.standing == nullptr) {
                continue;
            }
            if (goes_below(node, *schema)) {
                settle_below(node.children, schema,
                             place.standing == nullptr ? std::vector<AnswerNode>() : place.standing->children,
                             place.path);
            }
        }
        kept.push_back(std::move(node));
    }
    nodes = std::move(kept);
}

void collect_names(const RequestNode &node, const lysc_node *parent, std::vector<std::string> &names) {
    const lysc_node *schema = schema_of(node, parent);
    if (schema == nullptr) {
        return;
    }
    if (schema != module_list()) {
        for (const RequestNode &child : node.children) {
            collect_names(child, schema, names);
        }
        return;
    }
    const auto name = key_of(node, models::key_names(*schema).front());
    if (name && std::find(names.begin(), names.end(), *name) == names.end()) {
        names.push_back(*name);
    }
}

bool has_operation(const RequestNode &node, const lysc_node *parent) {
    const lysc_node *schema = schema_of(node, parent);
    return schema != nullptr && is_around_modules(*schema) &&
           (node.operation != YFW_OPERATION_MERGE ||
            std::any_of(node.children.begin(), node.children.end(),
                        [schema](const RequestNode &child) { return has_operation(child, schema); }));
}

} // namespace

std::vector<std::string> named_modules(const std::vector<RequestNode> &tops) {
    std::vector<std::string> names;
    for (const RequestNode &top : tops) {
        collect_names(top, nullptr, names);
    }
    return names;
}

bool concerns_all_modules(const std::vector<RequestNode> &tops) {
    return std::any_of(tops.begin(), tops.end(), [](const RequestNode &top) { return has_operation(top, nullptr); });
}

void settle_existence(std::vector<RequestNode> &tops, const std::vector<AnswerNode> &standing) {
    settle_below(tops, nullptr, standing, "");
}

} // namespace ocpsm::framework
