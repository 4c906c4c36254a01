#include "framework/request/hand_over.hpp"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

// The list of modules, and the leaf that its key refers to.
constexpr std::string_view list_container = "aps-modules";
constexpr std::string_view list_name = "aps-module";
constexpr std::string_view key_name = "name";
constexpr std::string_view referred_container = "config";

bool takes_away(uint32_t operation) {
    return operation == YFW_OPERATION_DELETE || operation == YFW_OPERATION_REMOVE;
}

// Whether the model's own namespace, that of the node above, is the node's too.
bool is_child(const RequestNode &node, const RequestNode &parent, std::string_view tag) {
    return node.tag == tag && node.namespace_uri == parent.namespace_uri;
}

RequestNode without_children(const RequestNode &node) {
    return {node.tag, node.namespace_uri, node.value, node.operation, {}};
}

const RequestNode *key_of(const RequestNode &entry) {
    const auto found = std::find_if(entry.children.begin(), entry.children.end(),
                                    [&entry](const RequestNode &child) { return is_child(child, entry, key_name); });
    return found == entry.children.end() ? nullptr : &*found;
}

bool is_key(const RequestNode &child, const RequestNode &entry) {
    return is_child(child, entry, key_name);
}

// An entry with the keys of another one.
RequestNode keys_only(const RequestNode &entry, uint32_t operation) {
    RequestNode bare = without_children(entry);
    bare.operation = operation;
    std::copy_if(entry.children.begin(), entry.children.end(), std::back_inserter(bare.children),
                 [&entry](const RequestNode &child) { return is_key(child, entry); });
    return bare;
}

std::string entry_path(const RequestNode &entry) {
    std::string path = "/aps/aps-modules/aps-module";
    const RequestNode *key = key_of(entry);
    return key != nullptr && key->value ? path + key_predicate(key_name, *key->value) : path;
}

// ---- reads ----

// The trees for one container of modules: one per entry; what else it holds goes along with the first.
std::vector<RequestNode> split_modules(const RequestNode &modules) {
    std::vector<RequestNode> others;
    std::vector<RequestNode> split;
    for (const RequestNode &child : modules.children) {
        if (!is_child(child, modules, list_name)) {
            others.push_back(child);
            continue;
        }
        split.push_back(without_children(modules));
        split.back().children.push_back(child);
    }
    if (split.empty()) {
        return {modules};
    }
    auto &first = split.front().children;
    first.insert(first.end(), others.begin(), others.end());
    return split;
}

// ---- edits ----

void settle_operations(RequestNode &node, const lysc_node *schema) {
    const bool leaf = schema != nullptr && models::describe(*schema).kind == models::NodeKind::leaf;
    if (node.operation == YFW_OPERATION_CREATE || (leaf && node.operation == YFW_OPERATION_REPLACE)) {
        node.operation = YFW_OPERATION_MERGE;
    }
    for (RequestNode &child : node.children) {
        const lysc_node *below =
            schema == nullptr ? nullptr : models::Schema::openconfig().child(schema, child.tag, child.namespace_uri);
        settle_operations(child, below);
    }
}

void check_reference(const RequestNode &entry) {
    for (const RequestNode &container : entry.children) {
        if (!is_child(container, entry, referred_container)) {
            continue;
        }
        for (const RequestNode &leaf : container.children) {
            if (is_child(leaf, container, key_name) && takes_away(leaf.operation)) {
                throw Error(Error::Source::refused, "data-missing",
                            entry_path(entry) + "/" + container.tag + "/" + leaf.tag,
                            "the key of the entry refers to this leaf (instance-required)",
                            "delete the whole entry, or leave the name");
            }
        }
    }
}

// What an entry becomes: itself, its keys, or a removal and itself.
std::vector<RequestNode> settle_entry(RequestNode entry) {
    if (takes_away(entry.operation)) {
        return {keys_only(entry, entry.operation)};
    }
    check_reference(entry);
    std::vector<RequestNode> entries;
    const auto other = [&entry](const RequestNode &child) { return !is_key(child, entry); };
    if (entry.operation == YFW_OPERATION_REPLACE && std::any_of(entry.children.begin(), entry.children.end(), other)) {
        entries.push_back(keys_only(entry, YFW_OPERATION_REMOVE));
    }
    entries.push_back(std::move(entry));
    return entries;
}

void settle_entries(RequestNode &modules) {
    std::vector<RequestNode> settled;
    for (RequestNode &child : modules.children) {
        if (!is_child(child, modules, list_name)) {
            settled.push_back(std::move(child));
            continue;
        }
        std::vector<RequestNode> entries = settle_entry(std::move(child));
        std::move(entries.begin(), entries.end(), std::back_inserter(settled));
    }
    modules.children = std::move(settled);
}

// Puts an operation on all modules: those that the edit names keep their place and an operation of their own, the other
// fitted ones follow.
void spread(RequestNode &modules, uint32_t operation, std::span<const std::string> fitted_modules) {
    std::set<std::string> named;
    for (RequestNode &child : modules.children) {
        if (!is_child(child, modules, list_name)) {
            continue;
        }
        if (const RequestNode *key = key_of(child); key != nullptr && key->value) {
            named.insert(*key->value);
        }
        if (child.operation == YFW_OPERATION_MERGE) {
            child.operation = operation;
        }
    }
    for (const std::string &name : fitted_modules) {
        if (!named.contains(name)) {
            const RequestNode key{std::string(key_name), modules.namespace_uri, name, YFW_OPERATION_MERGE, {}};
            modules.children.push_back({std::string(list_name), modules.namespace_uri, std::nullopt, operation, {key}});
        }
    }
}

RequestNode &modules_below(RequestNode &top) {
    const auto found = std::find_if(top.children.begin(), top.children.end(),
                                    [&top](const RequestNode &child) { return is_child(child, top, list_container); });
    if (found != top.children.end()) {
        return *found;
    }
    return top.children.emplace_back(RequestNode{std::string(list_container), top.namespace_uri});
}

bool spreads(uint32_t operation) {
    return takes_away(operation) || operation == YFW_OPERATION_REPLACE;
}

// An operation on the containers around the modules. A delete that names something below is left to the plug-in, which
// refuses it.
void spread_container_operation(RequestNode &top, std::span<const std::string> fitted_modules) {
    const auto is_modules = [&top](const RequestNode &child) { return is_child(child, top, list_container); };
    const auto modules = std::find_if(top.children.begin(), top.children.end(), is_modules);
    const bool inner = modules != top.children.end() && spreads(modules->operation);
    const uint32_t operation = inner ? modules->operation : top.operation;
    const RequestNode &holder = inner ? *modules : top;
    if (!spreads(operation) || (takes_away(operation) && !holder.children.empty()) ||
        (inner && takes_away(top.operation))) {
        return;
    }
    if (operation == YFW_OPERATION_DELETE && fitted_modules.empty()) {
        throw Error(Error::Source::refused, "data-missing", inner ? "/aps/aps-modules" : "/aps",
                    "there is no module to delete", "use the operation remove if that is no error");
    }
    top.operation = YFW_OPERATION_MERGE;
    RequestNode &container = modules_below(top);
    container.operation = YFW_OPERATION_MERGE;
    spread(container, operation, fitted_modules);
}

} // namespace

std::vector<RequestNode> hand_over_read(const std::vector<RequestNode> &tops) {
    std::vector<RequestNode> trees;
    for (const RequestNode &top : tops) {
        if (top.children.empty()) {
            trees.push_back(top);
            continue;
        }
        for (const RequestNode &child : top.children) {
            std::vector<RequestNode> parts{child};
            if (is_child(child, top, list_container)) {
                parts = split_modules(child);
            }
            for (RequestNode &part : parts) {
                trees.push_back(without_children(top));
                trees.back().children.push_back(std::move(part));
            }
        }
    }
    return trees;
}

std::vector<RequestNode> hand_over_edit(std::vector<RequestNode> tops, std::span<const std::string> fitted_modules) {
    for (RequestNode &top : tops) {
        settle_operations(top, models::Schema::openconfig().child(nullptr, top.tag, top.namespace_uri));
        spread_container_operation(top, fitted_modules);
        for (RequestNode &child : top.children) {
            if (is_child(child, top, list_container)) {
                settle_entries(child);
            }
        }
    }
    return tops;
}

} // namespace ocpsm::framework
