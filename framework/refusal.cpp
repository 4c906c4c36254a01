#include "framework/refusal.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "framework/host/codes.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

bool is_edit(const MappingContext &context) {
    return context.kind() != YFW_KIND_GET && context.kind() != YFW_KIND_GET_CONFIG;
}

// The codes with which the plug-in records the refused node's tag and raises the location of the node around it.
bool names_a_node(kerrno code) {
    return code == YMAP_ERR_UNSUPPORTED || code == YMAP_ERR_LIST_KEY || code == YMAP_ERR_AUGMENT_UNSUPPORTED;
}

std::string location_of(kerrno code, const MappingContext &context, const std::string &node_name) {
    std::string location = context.error_path().value_or("");
    if (names_a_node(code) && !node_name.empty()) {
        location += "/" + node_name;
    }
    return location;
}

// The schema node of an instance path; null when the model has none.
const lysc_node *schema_of(const std::string &instance_path) {
    std::string path;
    char quote = '\0';
    bool predicate = false;
    for (const char c : instance_path) {
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (predicate) {
            quote = c == '\'' || c == '"' ? c : '\0';
            predicate = c != ']';
        } else if (c == '[') {
            predicate = true;
        } else {
            path += c;
        }
    }
    return models::Schema::openconfig().find(path);
}

Refusal unsupported(const MappingContext &context, const std::string &location, const std::string &name) {
    Refusal refusal;
    refusal.location = location;
    const lysc_node *schema = schema_of(location);
    if (schema == nullptr) {
        refusal.tag = "unknown-element";
        refusal.message = "the model has no node " + name + " here";
        refusal.advice = "check the name against the model";
        return refusal;
    }
    refusal.tag = "operation-not-supported";
    if (is_edit(context) && !models::describe(*schema).config) {
        refusal.message = name + " is operational state and cannot be edited";
        refusal.advice = "leave it out, or read it";
    } else {
        refusal.message = name + " is not served by this device";
        refusal.advice = "leave it out";
    }
    return refusal;
}

// A node of the registered request that the plug-in refuses without saying where.
struct Culprit {
    const kidl_yfw_datatree *node = nullptr;
    std::string path;
};

// The first node, in document order, for which `test` holds.
template <typename Test>
std::optional<Culprit> find_culprit(const kidl_yfw_datatree &node, const std::string &schema_path,
                                    const std::string &path, Test test) {
    const models::Schema &schema = models::Schema::openconfig();
    const std::string here = schema_path + "/" + (node.tag == nullptr ? "" : node.tag);
    const std::string instance = path + instance_step(schema, here, node);
    const lysc_node *known = schema.find(here);
    if (known != nullptr && test(node, models::describe(*known))) {
        return Culprit{&node, instance};
    }
    for (const kidl_yfw_datatree *child : children_of(node)) {
        if (auto culprit = find_culprit(*child, here, instance, test)) {
            return culprit;
        }
    }
    return std::nullopt;
}

bool is_delete_with_content(const kidl_yfw_datatree &node, const models::NodeInfo &info) {
    return info.kind == models::NodeKind::container && yfw_map_is_request_delete(&node) != 0 && node.child_count > 0;
}

bool is_bare_entry(const kidl_yfw_datatree &node, const models::NodeInfo &info) {
    return info.kind == models::NodeKind::list && node.child_count == 0;
}

Refusal invalid_args(const MappingContext &context, const std::string &location) {
    Refusal refusal;
    refusal.tag = "operation-failed";
    if (const auto culprit = find_culprit(context.duplicate(), "", "", is_delete_with_content)) {
        refusal.location = culprit->path;
        refusal.message = std::string(culprit->node->tag) + " is to be deleted, but something stands below it";
        refusal.advice = "delete it without content, or delete only what stands below it";
    } else {
        refusal.location = location;
        refusal.message = text_of(YMAP_ERR_INVALID_ARGS);
    }
    return refusal;
}

Refusal bad_tree(const MappingContext &context) {
    Refusal refusal;
    const auto culprit =
        is_edit(context) ? find_culprit(context.duplicate(), "", "", is_bare_entry) : std::optional<Culprit>();
    refusal.tag = culprit ? "missing-element" : "operation-failed";
    refusal.message = culprit ? "the entry has no key" : text_of(YMAP_ERR_BAD_TREE);
    refusal.location = culprit ? culprit->path : "";
    refusal.advice = culprit ? "name the entry" : "";
    return refusal;
}

// What the plug-in passed on from an operation of the framework.
Refusal passed_on(kerrno code, const MappingContext &context, std::span<const AddRecord> adds) {
    Refusal refusal;
    refusal.tag = "operation-failed";
    refusal.message = text_of(code);
    refusal.location = context.own_refusal().value_or("");
    const auto add =
        std::find_if(adds.begin(), adds.end(), [code](const AddRecord &candidate) { return candidate.result == code; });
    if (add != adds.end()) {
        refusal.message += ": " + add->path;
    }
    return refusal;
}

Refusal leafref(const MappingContext &context) {
    return {"data-missing", "the key and the leaf that it refers to differ (instance-required)",
            context.own_refusal().value_or(""), "", "give both the same value, or leave config/name out"};
}

} // namespace

Refusal refusal_of(kerrno code, const MappingContext &context, std::span<const AddRecord> adds) {
    const char *recorded = context.request->error_node_name;
    const std::string name = names_a_node(code) && recorded != nullptr ? recorded : "";
    const std::string location = location_of(code, context, name);
    Refusal refusal;
    switch (code) {
    case YMAP_ERR_UNSUPPORTED:
        refusal = unsupported(context, location, name);
        break;
    case YMAP_ERR_AUGMENT_UNSUPPORTED:
        refusal = {"unknown-namespace", name + " belongs to a model that is not served here", location, "",
                   "leave it out"};
        break;
    case YMAP_ERR_LIST_KEY:
        refusal = {"missing-element", "an entry needs its key once, with a value", location, "", "name the entry once"};
        break;
    case YMAP_ERR_KEY_DELETE:
        refusal = {"bad-attribute", "the key of an entry cannot be taken away", location, "",
                   "put the operation on the entry"};
        break;
    case YMAP_ERR_INVALID_ARGS:
        refusal = invalid_args(context, location);
        break;
    case YMAP_ERR_BAD_TREE:
        refusal = bad_tree(context);
        break;
    case leafref_mismatch:
        refusal = leafref(context);
        break;
    default:
        refusal = passed_on(code, context, adds);
        break;
    }
    refusal.offending_node = name;
    return refusal;
}

} // namespace ocpsm::framework
