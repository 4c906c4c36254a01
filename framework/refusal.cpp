#include "framework/refusal.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "framework/host/codes.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/companions.hpp"
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

Error refused(std::string tag, std::string path, const std::string &message, std::string advice = {}) {
    return {Error::Source::refused, std::move(tag), std::move(path), message, std::move(advice)};
}

Error unsupported(const MappingContext &context, const std::string &location, const std::string &name) {
    const lysc_node *schema = schema_of(location);
    if (schema == nullptr) {
        return refused("unknown-element", location, "the model has no node " + name + " here",
                       "check the name against the model");
    }
    if (is_edit(context) && !models::describe(*schema).config) {
        return refused("operation-not-supported", location, name + " is operational state and cannot be edited",
                       "leave it out, or read it");
    }
    if (const std::string read = read_with(location); !read.empty()) {
        return refused("operation-not-supported", location, name + " cannot be asked for by itself",
                       "a read of " + read + " has it");
    }
    return refused("operation-not-supported", location, name + " is not served by this device", "leave it out");
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
    for (const kidl_yfw_datatree &child : children_of(node)) {
        if (auto culprit = find_culprit(child, here, instance, test)) {
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

Error invalid_args(const MappingContext &context, const std::string &location) {
    if (const auto culprit = find_culprit(context.duplicate(), "", "", is_delete_with_content)) {
        return refused("operation-failed", culprit->path,
                       std::string(culprit->node->tag) + " is to be deleted, but something stands below it",
                       "delete it without content, or delete only what stands below it");
    }
    return refused("operation-failed", location, text_of(YMAP_ERR_INVALID_ARGS));
}

Error bad_tree(const MappingContext &context) {
    const auto culprit =
        is_edit(context) ? find_culprit(context.duplicate(), "", "", is_bare_entry) : std::optional<Culprit>();
    return culprit ? refused("missing-element", culprit->path, "the entry has no key", "name the entry")
                   : refused("operation-failed", "", text_of(YMAP_ERR_BAD_TREE));
}

// What the plug-in passed on from an operation of the framework.
Error passed_on(kerrno code, const MappingContext &context, std::span<const AddRecord> adds) {
    const auto add =
        std::find_if(adds.begin(), adds.end(), [code](const AddRecord &candidate) { return candidate.result == code; });
    return refused("operation-failed", context.own_refusal().value_or(""),
                   text_of(code) + (add == adds.end() ? std::string() : ": " + add->path));
}

Error leafref(const MappingContext &context) {
    return refused("data-missing", context.own_refusal().value_or(""),
                   "the key and the leaf that it refers to differ (instance-required)",
                   "give both the same value, or leave config/name out")
        .with_app_tag("instance-required");
}

Error error_of(kerrno code, const MappingContext &context, std::span<const AddRecord> adds, const std::string &name) {
    const std::string location = location_of(code, context, name);
    switch (code) {
    case YMAP_ERR_UNSUPPORTED:
        return unsupported(context, location, name);
    case YMAP_ERR_AUGMENT_UNSUPPORTED:
        return refused("unknown-namespace", location, name + " belongs to a model that is not served here",
                       "leave it out");
    case YMAP_ERR_LIST_KEY:
        return refused("missing-element", location, "an entry needs its key once, with a value", "name the entry once");
    case YMAP_ERR_KEY_DELETE:
        return refused("bad-attribute", location, "the key of an entry cannot be taken away",
                       "put the operation on the entry");
    case YMAP_ERR_INVALID_ARGS:
        return invalid_args(context, location);
    case YMAP_ERR_BAD_TREE:
        return bad_tree(context);
    case leafref_mismatch:
        return leafref(context);
    default:
        return passed_on(code, context, adds);
    }
}

} // namespace

Error refusal_of(kerrno code, const MappingContext &context, std::span<const AddRecord> adds) {
    const char *recorded = context.request->error_node_name;
    const std::string name = names_a_node(code) && recorded != nullptr ? recorded : "";
    return error_of(code, context, adds, name).of_node(name);
}

} // namespace ocpsm::framework
