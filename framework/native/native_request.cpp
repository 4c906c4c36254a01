#include "framework/native/native_request.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/native/native_path.hpp"

namespace ocpsm::native {
namespace {

bool is_list(const lysc_node *schema) {
    return schema->nodetype == LYS_LIST;
}
bool is_leaf(const lysc_node *schema) {
    return schema->nodetype == LYS_LEAF;
}

} // namespace

std::string_view add_error_text(kerrno code) {
    switch (code) {
    case add_unknown_path:
        return "no native model has a node with this path";
    case add_wrong_namespace:
        return "the native node belongs to another namespace";
    case add_unexpected_value:
        return "a native container or list was given a value";
    case add_unknown_operation:
        return "a native node was given an unknown operation";
    default:
        return {};
    }
}

// One add: the steps of its path are looked up first, so that a failing one changes nothing.
class NativeRequest::Adding {
public:
    explicit Adding(NativeRequest &request) : request_(request), nodes_(request.nodes_) {}

    kerrno resolve(std::string_view path, std::string_view namespace_uri);
    const lysc_node *target() const { return steps_.back(); }

    NodeId place(const std::optional<std::string> &value, bool opens);
    void write(NodeId id, const std::optional<std::string> &value, Operation operation, Origin origin);

private:
    bool reads() const { return request_.kind_ == RequestKind::read; }

    NodeId existing(NodeId parent, const lysc_node *schema) const;
    NodeId current(NodeId parent, const lysc_node *list) const;
    NodeId make(NodeId parent, const lysc_node *schema);
    NodeId enter(NodeId parent, const lysc_node *schema);
    bool target_stands() const;
    NodeId entry_for_key(NodeId entry, const std::string &value);
    bool agrees(NodeId entry, NodeId with, const std::string &value) const;
    void set_value(NodeId id, const std::optional<std::string> &value, Operation operation);

    NativeRequest &request_;
    DraftTree &nodes_;
    std::vector<const lysc_node *> steps_;
};

kerrno NativeRequest::Adding::resolve(std::string_view path, std::string_view namespace_uri) {
    const lysc_node *node = nullptr;
    do {
        if (!path.starts_with('/')) {
            return add_unknown_path;
        }
        path.remove_prefix(1);
        const std::string_view step = path.substr(0, path.find('/'));
        path.remove_prefix(step.size());
        node = request_.schema_->child(node, step, namespace_uri);
        if (node == nullptr) {
            return add_unknown_path;
        }
        steps_.push_back(node);
    } while (!path.empty());
    return namespace_uri == node->module->ns ? KERR_SUCCESS : add_wrong_namespace;
}

// The node through which a path with this step runs; root when there is none.
NativeRequest::NodeId NativeRequest::Adding::existing(NodeId parent, const lysc_node *schema) const {
    return is_list(schema) ? current(parent, schema) : nodes_.single(parent, schema);
}

NativeRequest::NodeId NativeRequest::Adding::current(NodeId parent, const lysc_node *list) const {
    const auto found = request_.current_.find({parent, list});
    if (found == request_.current_.end() || nodes_.at(found->second.entry).gone) {
        return root;
    }
    for (NodeId above = parent; above != root; above = nodes_.at(above).parent) {
        const auto selected = request_.selected_.find(above);
        if (selected != request_.selected_.end() && selected->second > found->second.since) {
            return root;
        }
    }
    return found->second.entry;
}

NativeRequest::NodeId NativeRequest::Adding::make(NodeId parent, const lysc_node *schema) {
    const NodeId id = nodes_.make(parent, schema);
    if (is_list(schema)) {
        request_.current_[{parent, schema}] = {id, ++request_.clock_};
    }
    return id;
}

NativeRequest::NodeId NativeRequest::Adding::enter(NodeId parent, const lysc_node *schema) {
    const NodeId id = existing(parent, schema);
    return id == root ? make(parent, schema) : id;
}

bool NativeRequest::Adding::target_stands() const {
    NodeId node = root;
    for (const lysc_node *step : steps_) {
        node = existing(node, step);
        if (node == root) {
            return false;
        }
    }
    return true;
}

// Finds or makes the node that the add is for, and the steps on its way.
NativeRequest::NodeId NativeRequest::Adding::place(const std::optional<std::string> &value, bool opens) {
    const auto list = std::find_if(steps_.rbegin(), steps_.rend(), is_list);
    const lysc_node *opened = nullptr;
    if (opens && list != steps_.rend() && (is_list(target()) || (is_leaf(target()) && target_stands()))) {
        opened = *list;
    }
    NodeId node = root;
    for (const lysc_node *step : steps_) {
        if (step == opened) {
            node = make(node, step);
        } else if (lysc_is_key(step) && value) {
            node = enter(entry_for_key(node, *value), step);
        } else {
            node = enter(node, step);
        }
    }
    return node;
}

// The entry in which a key may take this value: the given one unless its key has another value already; then the entry
// beside it that has the value, or a new one.
NativeRequest::NodeId NativeRequest::Adding::entry_for_key(NodeId entry, const std::string &value) {
    const std::optional<std::string> &key = nodes_.key_value(entry, target());
    if (!key || key == value || (reads() && (value.empty() || key->empty()))) {
        return entry;
    }
    const NodeId parent = nodes_.at(entry).parent;
    const lysc_node *list = nodes_.at(entry).schema;
    const NodeId found =
        nodes_.find(parent, target(), name_of(value), [&](NodeId other) { return agrees(other, entry, value); });
    if (found == root) {
        return make(parent, list);
    }
    request_.selected_[found] = ++request_.clock_;
    request_.current_[{parent, list}] = {found, ++request_.clock_};
    return found;
}

// Whether an entry has the value for the key that is added and no other key unlike the entry `with`: with several keys,
// one equal key alone does not make it the entry that is meant.
bool NativeRequest::Adding::agrees(NodeId entry, NodeId with, const std::string &value) const {
    for (const NodeId child : nodes_.at(entry).singles) {
        const Draft &leaf = nodes_.at(child);
        if (!lysc_is_key(leaf.schema) || !leaf.value || leaf.schema == target()) {
            continue;
        }
        const std::optional<std::string> &other = nodes_.key_value(with, leaf.schema);
        if (other && leaf.value != other) {
            return false;
        }
    }
    return nodes_.key_value(entry, target()) == value;
}

// A key that has a value keeps it. In a read the empty text is no value.
void NativeRequest::Adding::set_value(NodeId id, const std::optional<std::string> &value, Operation operation) {
    Draft &node = nodes_.at(id);
    const bool key = lysc_is_key(node.schema);
    const bool nothing_new = !value || (reads() && value->empty()) || (key && node.value && !node.value->empty());
    const bool cleared = !reads() && !key && takes_away(operation);
    if (node.value && nothing_new && !cleared) {
        return;
    }
    node.value = value;
    if (key && value) {
        nodes_.index(node.parent, node.schema, name_of(value));
    }
}

void NativeRequest::Adding::write(NodeId id, const std::optional<std::string> &value, Operation operation,
                                  Origin origin) {
    nodes_.at(id).operation = operation;
    set_value(id, value, operation);
    nodes_.came_from(id, origin);
    if (reads()) {
        return;
    }
    if (takes_away(operation) || operation == Operation::replace) {
        nodes_.clear(id);
    }
    const Draft &node = nodes_.at(id);
    const bool names_only = lysc_is_key(node.schema) && takes_away(nodes_.at(node.parent).operation);
    request_.edit_adds_.push_back({id, operation, origin, names_only, value});
}

NativeRequest::NativeRequest(RequestKind kind, const models::Schema &schema) : kind_(kind), schema_(&schema) {}

kerrno NativeRequest::add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
                          std::uint32_t operation, bool opens, Origin origin, NodeId *result) {
    if (operation > static_cast<std::uint32_t>(Operation::remove)) {
        return add_unknown_operation;
    }
    Adding adding(*this);
    const kerrno resolved = adding.resolve(path, namespace_uri);
    if (resolved != KERR_SUCCESS) {
        return resolved;
    }
    if (value && !is_leaf(adding.target())) {
        return add_unexpected_value;
    }
    const auto text = value ? std::optional<std::string>(*value) : std::nullopt;
    const NodeId id = adding.place(text, opens);
    adding.write(id, text, static_cast<Operation>(operation), origin);
    if (result != nullptr) {
        *result = id;
    }
    return KERR_SUCCESS;
}

std::string NativeRequest::instance_path(NodeId id) const {
    if (id == root) {
        return {};
    }
    const Draft &node = nodes_.at(id);
    NativeNode step{node.schema};
    for (const lysc_node *key : key_leaves(*node.schema)) {
        step.children.push_back({key, nodes_.key_value(id, key)});
    }
    return instance_path(node.parent) + "/" + path_step(step);
}

NetRequest NativeRequest::net() const {
    return {kind_, kind_ == RequestKind::edit ? net_of_edit() : net_of_read()};
}

} // namespace ocpsm::native
