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

bool takes_away(std::uint32_t operation) {
    return operation != static_cast<std::uint32_t>(Operation::merge) &&
           operation != static_cast<std::uint32_t>(Operation::create);
}

bool deletes(std::uint32_t operation) {
    return operation >= static_cast<std::uint32_t>(Operation::delete_existing);
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
    case add_stale_node:
        return "the native node to add below is not part of the request";
    default:
        return {};
    }
}

// One add: the steps of its path are looked up first, so that a failing one changes nothing.
class NativeRequest::Adding {
public:
    Adding(NativeRequest &request, NodeId tree) : request_(request), tree_(tree) {}

    kerrno resolve(std::string_view path, std::string_view namespace_uri);
    const lysc_node *target() const { return steps_.back(); }

    NodeId place(std::optional<std::string_view> value, bool opens);
    void write(NodeId id, std::optional<std::string_view> value, std::uint32_t operation, std::uint32_t second_flag);

private:
    Entry &at(NodeId id) { return request_.nodes_[id]; }
    bool reads() const { return request_.kind_ == RequestKind::read; }

    NodeId existing(NodeId parent, const lysc_node *schema);
    NodeId make(NodeId parent, const lysc_node *schema);
    NodeId enter(NodeId parent, const lysc_node *schema);
    bool target_stands();
    NodeId entry_for_key(NodeId entry, std::string_view value);
    bool agrees(NodeId entry, NodeId with, std::string_view value);
    void forget_current(NodeId id);
    void take_away_below(NodeId id);
    void detach(NodeId id);
    void record(NodeId id, std::optional<std::string_view> value, std::uint32_t operation);

    NativeRequest &request_;
    NodeId tree_;
    std::vector<const lysc_node *> steps_;
    bool fresh_ = false; // the node that was placed did not stand before
};

kerrno NativeRequest::Adding::resolve(std::string_view path, std::string_view namespace_uri) {
    const bool absolute = !path.empty() && path.front() == '/';
    const lysc_node *node = absolute ? nullptr : at(tree_).schema;
    if (absolute) {
        path.remove_prefix(1);
        tree_ = root;
    } else if (path.find('/') != std::string_view::npos) {
        return add_unknown_path;
    }
    for (bool more = true; more;) {
        const std::string_view step = path.substr(0, path.find('/'));
        more = step.size() < path.size();
        path.remove_prefix(more ? step.size() + 1 : step.size());
        node = request_.schema_->child(node, step, namespace_uri);
        if (node == nullptr) {
            return add_unknown_path;
        }
        steps_.push_back(node);
    }
    return namespace_uri == node->module->ns ? KERR_SUCCESS : add_wrong_namespace;
}

// The node through which a path with this step runs: the current instance of a list; root when there is none.
NativeRequest::NodeId NativeRequest::Adding::existing(NodeId parent, const lysc_node *schema) {
    if (is_list(schema)) {
        const auto found = at(parent).current.find(schema);
        return found == at(parent).current.end() ? root : found->second;
    }
    for (const NodeId child : at(parent).children) {
        if (at(child).schema == schema) {
            return child;
        }
    }
    return root;
}

NativeRequest::NodeId NativeRequest::Adding::make(NodeId parent, const lysc_node *schema) {
    const auto id = static_cast<NodeId>(request_.nodes_.size());
    Entry &entry = request_.nodes_.emplace_back();
    entry.schema = schema;
    entry.parent = parent;
    at(parent).children.push_back(id);
    if (is_list(schema)) {
        at(parent).current[schema] = id;
    }
    return id;
}

NativeRequest::NodeId NativeRequest::Adding::enter(NodeId parent, const lysc_node *schema) {
    const NodeId id = existing(parent, schema);
    fresh_ = id == root;
    return fresh_ ? make(parent, schema) : id;
}

bool NativeRequest::Adding::target_stands() {
    NodeId node = tree_;
    for (const lysc_node *step : steps_) {
        node = existing(node, step);
        if (node == root) {
            return false;
        }
    }
    return true;
}

// Finds or makes the node that the add is for, and the steps on its way.
NativeRequest::NodeId NativeRequest::Adding::place(std::optional<std::string_view> value, bool opens) {
    const auto list = std::find_if(steps_.rbegin(), steps_.rend(), is_list);
    const lysc_node *opened = nullptr;
    if (opens && list != steps_.rend() && (is_list(target()) || (is_leaf(target()) && target_stands()))) {
        opened = *list;
    }
    NodeId node = tree_;
    for (const lysc_node *step : steps_) {
        if (step == opened) {
            node = make(node, step);
            fresh_ = true;
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
NativeRequest::NodeId NativeRequest::Adding::entry_for_key(NodeId entry, std::string_view value) {
    const NodeId key = existing(entry, target());
    if (key == root || !at(key).value || at(key).value == value ||
        (reads() && (value.empty() || at(key).value->empty()))) {
        return entry;
    }
    const NodeId parent = at(entry).parent;
    const std::vector<NodeId> &siblings = at(parent).children;
    const auto found =
        std::find_if(siblings.rbegin(), siblings.rend(), [&](NodeId sibling) { return agrees(sibling, entry, value); });
    if (found == siblings.rend()) {
        return make(parent, at(entry).schema);
    }
    forget_current(*found);
    at(parent).current[at(entry).schema] = *found;
    return *found;
}

// Whether an entry has the value for the key that is added and no other key unlike the entry `with`: with several keys,
// one equal key alone does not make it the entry that is meant.
bool NativeRequest::Adding::agrees(NodeId entry, NodeId with, std::string_view value) {
    if (at(entry).schema != at(with).schema) {
        return false;
    }
    const std::vector<NetKey> keys = request_.keys_of(entry);
    const std::vector<NetKey> others = request_.keys_of(with);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        const std::optional<std::string> &key = keys[index].value;
        const std::optional<std::string> &other = others[index].value;
        if (keys[index].schema == target() ? key != value : (key && other && key != other)) {
            return false;
        }
    }
    return true;
}

void NativeRequest::Adding::forget_current(NodeId id) {
    at(id).current.clear();
    for (const NodeId child : at(id).children) {
        forget_current(child);
    }
}

// The keys of a list entry stay: they say which entry it is.
void NativeRequest::Adding::take_away_below(NodeId id) {
    std::vector<NodeId> kept;
    for (const NodeId child : at(id).children) {
        if (lysc_is_key(at(child).schema)) {
            kept.push_back(child);
        } else {
            detach(child);
        }
    }
    at(id).children = std::move(kept);
    at(id).current.clear();
}

void NativeRequest::Adding::detach(NodeId id) {
    at(id).attached = false;
    for (const NodeId child : at(id).children) {
        detach(child);
    }
}

void NativeRequest::Adding::write(NodeId id, std::optional<std::string_view> value, std::uint32_t operation,
                                  std::uint32_t second_flag) {
    Entry &entry = at(id);
    entry.operation = operation;
    entry.second_flag = second_flag;
    const bool key = lysc_is_key(entry.schema);
    const bool nothing_new = !value || (reads() && value->empty()) || (key && entry.value && !entry.value->empty());
    const bool cleared = !reads() && !key && deletes(operation);
    if (!entry.value || !nothing_new || cleared) {
        entry.value = value ? std::optional(std::string(*value)) : std::nullopt;
    }
    if (!reads()) {
        if (takes_away(operation)) {
            take_away_below(id);
        }
        record(id, value, operation);
    }
}

void NativeRequest::Adding::record(NodeId id, std::optional<std::string_view> value, std::uint32_t operation) {
    const bool names_only = lysc_is_key(at(id).schema) && deletes(at(at(id).parent).operation);
    request_.events_.push_back({id, operation, value ? std::optional(std::string(*value)) : std::nullopt, names_only});
}

NativeRequest::NativeRequest(RequestKind kind, const models::Schema &schema)
    : kind_(kind), schema_(&schema), nodes_(1) {}

kerrno NativeRequest::add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
                          std::uint32_t operation, bool first_flag, std::uint32_t second_flag, NodeId tree,
                          NodeId *result) {
    if (operation > static_cast<std::uint32_t>(Operation::remove)) {
        return add_unknown_operation;
    }
    if (tree >= nodes_.size() || !nodes_[tree].attached) {
        return add_stale_node;
    }
    Adding adding(*this, tree);
    const kerrno resolved = adding.resolve(path, namespace_uri);
    if (resolved != KERR_SUCCESS) {
        return resolved;
    }
    if (value && !is_leaf(adding.target())) {
        return add_unexpected_value;
    }
    const NodeId id = adding.place(value, first_flag);
    adding.write(id, value, operation, second_flag);
    if (result != nullptr) {
        *result = id;
    }
    return KERR_SUCCESS;
}

NativeRequest::Node NativeRequest::node(NodeId id) const {
    const Entry &entry = nodes_.at(id);
    return {models::schema_path(*entry.schema), entry.operation, entry.value, entry.second_flag};
}

std::string NativeRequest::instance_path(NodeId id) const {
    if (id == root) {
        return {};
    }
    const Entry &entry = nodes_.at(id);
    NetNode step;
    step.schema = entry.schema;
    if (is_list(entry.schema)) {
        step.keys = keys_of(id);
    }
    return instance_path(entry.parent) + "/" + path_step(step);
}

std::vector<NetKey> NativeRequest::keys_of(NodeId list_entry) const {
    std::vector<NetKey> keys;
    for (const lysc_node *child : schema_->children(nodes_[list_entry].schema)) {
        if (lysc_is_key(child)) {
            keys.push_back({child, std::nullopt});
        }
    }
    for (const NodeId child : nodes_[list_entry].children) {
        for (NetKey &key : keys) {
            if (nodes_[child].schema == key.schema) {
                key.value = nodes_[child].value;
            }
        }
    }
    return keys;
}

NetRequest NativeRequest::net() const {
    return {kind_, kind_ == RequestKind::edit ? net_of_edit() : net_of_read()};
}

} // namespace ocpsm::native
