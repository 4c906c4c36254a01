// Edits: from the request to what has changed.
#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/kept.hpp"
#include "framework/models/models.hpp"
#include "framework/native_origin.hpp"
#include "framework/openconfig.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/requests.hpp"

namespace ocpsm::framework {

namespace {

// The key of an entry; null for any other node.
const RequestNode *key_of(const RequestNode &node) {
    return node.tag == openconfig::list_name ? find_key(node, openconfig::key_name) : nullptr;
}

// Whether two nodes of an edit by paths are one.
bool is_same(const RequestNode &one, const RequestNode &other) {
    const RequestNode *key = key_of(one);
    const RequestNode *other_key = key_of(other);
    const bool same_entry = key == nullptr || other_key == nullptr ? key == other_key : key->value == other_key->value;
    return one.tag == other.tag && one.namespace_uri == other.namespace_uri && one.operation == Operation::merge &&
           other.operation == Operation::merge && !one.value && !other.value && same_entry;
}

// Puts what a path says to what those before it have said. What is said twice is refused where the edit is typed.
void put(Tree &nodes, RequestNode &&node) {
    const auto same =
        std::find_if(nodes.begin(), nodes.end(), [&](const RequestNode &other) { return is_same(other, node); });
    if (same == nodes.end()) {
        nodes.push_back(std::move(node));
        return;
    }
    const RequestNode *key = key_of(node);
    for (RequestNode &child : node.children) {
        if (&child != key) {
            put(same->children, std::move(child));
        }
    }
}

// The nodes of an edit as it was written.
struct Written {
    Tree operator()(const PathEdits &edits) const {
        check_number_of_paths(edits.size());
        Tree tops;
        for (const PathEdit &edit : edits) {
            const bool takes = takes_away(edit.operation);
            for (RequestNode &top :
                 takes ? deletion_of(edit.path, edit.operation) : setting_of(edit.path, edit.value)) {
                put(tops, std::move(top));
            }
        }
        return tops;
    }
    Tree operator()(const Text &text) const {
        Content content = parse_request(text.text, Kind::edit);
        default_operation = content.default_operation.value_or(default_operation);
        return std::move(content.tops);
    }
    Tree operator()(const Tree &tree) const { return tree; }

    DefaultOperation &default_operation;
};

bool has_own_operation(const RequestNode &node) {
    return node.operation != Operation::merge ||
           std::any_of(node.attributes.begin(), node.attributes.end(),
                       [](const RequestAttribute &attribute) { return attribute.name == "operation"; });
}

// Without an operation nothing happens to a node: of the nodes around those that have one only the keys count.
void keep_operations(Tree &nodes, const lysc_node *parent) {
    const auto says_nothing = [parent](RequestNode &node) {
        const lysc_node *schema = models::Schema::openconfig().child(parent, node.tag, node.namespace_uri);
        if (has_own_operation(node) || lysc_is_key(schema)) {
            return false;
        }
        if (schema != nullptr) {
            keep_operations(node.children, schema);
        }
        return holds_only_keys(node, schema);
    };
    nodes.erase(std::remove_if(nodes.begin(), nodes.end(), says_nothing), nodes.end());
}

void apply_default(Tree &tops, DefaultOperation operation) {
    if (operation == DefaultOperation::none) {
        keep_operations(tops, nullptr);
    } else if (operation == DefaultOperation::replace) {
        for (RequestNode &top : tops) {
            top.operation = has_own_operation(top) ? top.operation : Operation::replace;
        }
    }
}

// The native request, carried out in the transaction.
native::NetRequest apply_all(Callback root, const std::vector<HandedOver> &all, DeviceTransaction &device,
                             std::vector<std::string> &warnings) {
    native::NetRequest request{native::RequestKind::edit, {}};
    for (const HandedOver &handed : all) {
        request = handed.native.net();
        try {
            require_in_range(handed, request);
            request.check();
            const std::vector<std::string> dangers = device.apply(request);
            const std::vector<std::string> cut = cut_numbers(handed, request);
            warnings.insert(warnings.end(), cut.begin(), cut.end());
            warnings.insert(warnings.end(), dangers.begin(), dangers.end());
        } catch (Error &error) {
            if (!error.native_path.empty()) {
                error.path = openconfig_origin(root, handed.origins, request, error.native_path);
            }
            throw;
        }
    }
    return request;
}

} // namespace

Tree typed(const Edit &edit, const EditOptions &options) {
    DefaultOperation default_operation = options.default_operation; // what the text says comes first
    Tree tops = std::visit(Written{default_operation}, edit);
    apply_default(tops, default_operation);
    return type_request(std::move(tops), Kind::edit, options.check_values);
}

EditResult carry_out(const Plugin &plugin, Tree tops, DeviceTransaction &device, const EditOptions &options) {
    EditResult result;
    try {
        const auto modules = concerns_all_modules(tops) ? std::nullopt : std::optional(named_modules(tops));
        const Answer before = configuration(plugin, device, modules);
        settle_existence(tops, tree_of(before),
                         [&] { return tree_of(configuration(plugin, device, std::nullopt)).entry_names(); });
        const Callback root = plugin.callback(openconfig_root_walker);
        Translation translation = translate_trees(root, hand_over_edit(std::move(tops), tree_of(before).entry_names()),
                                                  Kind::edit, options, Adds::dropped);
        take_messages(result, translation);
        if (result.error) {
            return result;
        }
        result.native = DeviceRequest(
            std::make_shared<native::NetRequest>(apply_all(root, translation.handed_over, device, result.warnings)));
        const Answer after = configuration(plugin, device, modules);
        result.changes = changes_between(tree_of(before), tree_of(after));
    } catch (const Error &error) {
        result.error = error;
    }
    return result;
}

} // namespace ocpsm::framework
