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

    DraftId place(const std::optional<std::string> &value, bool opens);
    void write(DraftId id, const std::optional<std::string> &value, Operation operation, Origin origin);

private:
    bool reads() const { return request_.kind_ == RequestKind::read; }

    DraftId existing(DraftId parent, const lysc_node *schema) const;
    DraftId current(DraftId parent, const lysc_node *list) const;
    DraftId make(DraftId parent, const lysc_node *schema);
    DraftId enter(DraftId parent, const lysc_node *schema);
    bool target_stands() const;
    DraftId entry_for_key(DraftId entry, const std::string &value);
    bool agrees(DraftId entry, DraftId with, const std::string &value) const;
    void set_value(DraftId id, const std::optional<std::string> &value, Operation operation);

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

// The node through which a path with this step runs; the root when there is none.
DraftId NativeRequest::Adding::existing(DraftId parent, const lysc_node *schema) const {
    return is_list(schema) ? current(parent, schema) : nodes_.single(parent, schema);
}

DraftId NativeRequest::Adding::current(DraftId parent, const lysc_node *list) const {
    const auto found = request_.current_.find({parent, list});
    if (found == request_.current_.end() || nodes_.at(found->second.entry).gone) {
        return draft_root;
    }
    for (DraftId above = parent; above != draft_root; above = nodes_.at(above).parent) {
        const auto selected = request_.selected_.find(above);
        if (selected != request_.selected_.end() && selected->second > found->second.since) {
            return draft_root;
        }
    }
    return found->second.entry;
}

DraftId NativeRequest::Adding::make(DraftId parent, const lysc_node *schema) {
    const DraftId id = nodes_.make(parent, schema);
    if (is_list(schema)) {
        request_.current_[{parent, schema}] = {id, ++request_.clock_};
    }
    return id;
}

DraftId NativeRequest::Adding::enter(DraftId parent, const lysc_node *schema) {
    const DraftId id = existing(parent, schema);
    return id == draft_root ? make(parent, schema) : id;
}

bool NativeRequest::Adding::target_stands() const {
    DraftId node = draft_root;
    for (const lysc_node *step : steps_) {
        node = existing(node, step);
        if (node == draft_root) {
            return false;
        }
    }
    return true;
}

// Finds or makes the node that the add is for, and the steps on its way.
DraftId NativeRequest::Adding::place(const std::optional<std::string> &value, bool opens) {
    const auto list = std::find_if(steps_.rbegin(), steps_.rend(), is_list);
    const lysc_node *opened = nullptr;
    if (opens && list != steps_.rend() && (is_list(target()) || (is_leaf(target()) && target_stands()))) {
        opened = *list;
    }
    DraftId node = draft_root;
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
DraftId NativeRequest::Adding::entry_for_key(DraftId entry, const std::string &value) {
    const std::optional<std::string> &key = nodes_.key_value(entry, target());
    if (!key || key == value || (reads() && (value.empty() || key->empty()))) {
        return entry;
    }
    const DraftId parent = nodes_.at(entry).parent;
    const lysc_node *list = nodes_.at(entry).schema;
    const DraftId found =
        nodes_.find(parent, target(), name_of(value), [&](DraftId other) { return agrees(other, entry, value); });
    if (found == draft_root) {
        return make(parent, list);
    }
    request_.selected_[found] = ++request_.clock_;
    request_.current_[{parent, list}] = {found, ++request_.clock_};
    return found;
}

// Whether an entry has the value for the key that is added and no other key unlike the entry `with`: with several keys,
// one equal key alone does not make it the entry that is meant.
bool NativeRequest::Adding::agrees(DraftId entry, DraftId with, const std::string &value) const {
    for (const DraftId child : nodes_.at(entry).singles) {
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
void NativeRequest::Adding::set_value(DraftId id, const std::optional<std::string> &value, Operation operation) {
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

void NativeRequest::Adding::write(DraftId id, const std::optional<std::string> &value, Operation operation,
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
                          std::uint32_t operation, bool opens, Origin origin) {
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
    const DraftId id = adding.place(text, opens);
    adding.write(id, text, static_cast<Operation>(operation), origin);
    return KERR_SUCCESS;
}

NetRequest NativeRequest::net() const {
    return {kind_, kind_ == RequestKind::edit ? net_of_edit() : net_of_read()};
}

} // namespace ocpsm::native
