#include "framework/request/hand_over.hpp"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/instance_read.hpp"

namespace ocpsm::framework {

namespace {

// Whether the model's own namespace, that of the node above, is the node's too.
bool is_child(const RequestNode &node, const RequestNode &parent, std::string_view tag) {
    return node.tag == tag && node.namespace_uri == parent.namespace_uri;
}

RequestNode without_children(const RequestNode &node) {
    return {node.tag, node.namespace_uri, node.value, node.operation, {}};
}

bool is_key(const RequestNode &child, const RequestNode &entry) {
    return is_child(child, entry, openconfig::key_name);
}

// An entry with the keys of another one.
RequestNode keys_only(const RequestNode &entry, Operation operation) {
    RequestNode bare = without_children(entry);
    bare.operation = operation;
    std::copy_if(entry.children.begin(), entry.children.end(), std::back_inserter(bare.children),
                 [&entry](const RequestNode &child) { return is_key(child, entry); });
    return bare;
}

std::string entry_path(const RequestNode &entry) {
    const RequestNode *key = find_key(entry, openconfig::key_name);
    return key == nullptr ? std::string(openconfig::list_path) : instance_path(*key->value);
}

// ---- reads ----

// The trees for one container of modules: one per entry; what else it holds goes along with the first.
std::vector<RequestNode> split_modules(RequestNode modules) {
    const auto is_entry = [&modules](const RequestNode &child) {
        return is_child(child, modules, openconfig::list_name);
    };
    std::vector<RequestNode> split;
    std::vector<RequestNode> others;
    for (RequestNode &child : modules.children) {
        if (is_entry(child)) {
            split.push_back(without_children(modules));
            split.back().children.push_back(std::move(child));
        } else {
            others.push_back(std::move(child));
        }
    }
    if (split.empty()) {
        split.push_back(without_children(modules));
    }
    std::move(others.begin(), others.end(), std::back_inserter(split.front().children));
    return split;
}

// ---- edits ----

void settle_operations(RequestNode &node, const lysc_node *schema) {
    const bool leaf = schema != nullptr && models::describe(*schema).kind == models::NodeKind::leaf;
    if (node.operation == Operation::create || (leaf && node.operation == Operation::replace)) {
        node.operation = Operation::merge;
    }
    for (RequestNode &child : node.children) {
        const lysc_node *below =
            schema == nullptr ? nullptr : models::Schema::openconfig().child(schema, child.tag, child.namespace_uri);
        settle_operations(child, below);
    }
}

void check_reference(const RequestNode &entry) {
    for (const RequestNode &container : entry.children) {
        if (!is_child(container, entry, openconfig::referred_container)) {
            continue;
        }
        for (const RequestNode &leaf : container.children) {
            if (is_child(leaf, container, openconfig::key_name) && takes_away(leaf.operation)) {
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
    if (entry.operation == Operation::replace && std::any_of(entry.children.begin(), entry.children.end(), other)) {
        entries.push_back(keys_only(entry, Operation::remove));
    }
    entries.push_back(std::move(entry));
    return entries;
}

void settle_entries(RequestNode &modules) {
    std::vector<RequestNode> settled;
    for (RequestNode &child : modules.children) {
        if (!is_child(child, modules, openconfig::list_name)) {
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
void spread(RequestNode &modules, Operation operation, std::span<const std::string> fitted_modules) {
    std::set<std::string> named;
    for (RequestNode &child : modules.children) {
        if (!is_child(child, modules, openconfig::list_name)) {
            continue;
        }
        if (const RequestNode *key = find_key(child, openconfig::key_name)) {
            named.insert(*key->value);
        }
        if (child.operation == Operation::merge) {
            child.operation = operation;
        }
    }
    for (const std::string &name : fitted_modules) {
        if (!named.contains(name)) {
            const RequestNode key{std::string(openconfig::key_name), modules.namespace_uri, name};
            modules.children.push_back(
                {std::string(openconfig::list_name), modules.namespace_uri, std::nullopt, operation, {key}});
        }
    }
}

RequestNode &modules_below(RequestNode &top) {
    const auto found = std::find_if(top.children.begin(), top.children.end(), [&top](const RequestNode &child) {
        return is_child(child, top, openconfig::container_name);
    });
    if (found != top.children.end()) {
        return *found;
    }
    return top.children.emplace_back(RequestNode{std::string(openconfig::container_name), top.namespace_uri});
}

bool spreads(Operation operation) {
    return takes_away(operation) || operation == Operation::replace;
}

// An operation on the containers around the modules. A delete that names something below is left to the plug-in, which
// refuses it.
void spread_container_operation(RequestNode &top, std::span<const std::string> fitted_modules) {
    const auto is_modules = [&top](const RequestNode &child) {
        return is_child(child, top, openconfig::container_name);
    };
    const auto modules = std::find_if(top.children.begin(), top.children.end(), is_modules);
    const bool inner = modules != top.children.end() && spreads(modules->operation);
    const Operation operation = inner ? modules->operation : top.operation;
    const RequestNode &holder = inner ? *modules : top;
    if (!spreads(operation) || (takes_away(operation) && !holder.children.empty()) ||
        (inner && takes_away(top.operation))) {
        return;
    }
    if (operation == Operation::delete_existing && fitted_modules.empty()) {
        throw Error(Error::Source::refused, "data-missing",
                    std::string(inner ? openconfig::container_path : openconfig::top_path),
                    "there is no module to delete", std::string(remove_instead));
    }
    top.operation = Operation::merge;
    RequestNode &container = modules_below(top);
    container.operation = Operation::merge;
    spread(container, operation, fitted_modules);
}

} // namespace

std::vector<RequestNode> hand_over_read(std::vector<RequestNode> tops) {
    std::vector<RequestNode> trees;
    for (RequestNode &top : tops) {
        const RequestNode bare = without_children(top);
        if (top.children.empty()) {
            trees.push_back(bare);
        }
        for (RequestNode &child : top.children) {
            std::vector<RequestNode> parts;
            if (is_child(child, top, openconfig::container_name)) {
                parts = split_modules(std::move(child));
            } else {
                parts.push_back(std::move(child));
            }
            for (RequestNode &part : parts) {
                trees.push_back(bare);
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
            if (is_child(child, top, openconfig::container_name)) {
                settle_entries(child);
            }
        }
    }
    return tops;
}

} // namespace ocpsm::framework
