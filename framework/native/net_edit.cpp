// What an edit says: its adds, one after the other, each on what the adds before it have left.
#include <libyang/libyang.h>

#include <algorithm>
#include <memory>

#include "framework/native/native_request.hpp"

namespace ocpsm::native {
namespace {

// A node of the edit as it is after some of the adds. Entries of a list that have the same keys are one.
struct Draft {
    const lysc_node *schema = nullptr;
    Draft *parent = nullptr;
    std::vector<NetKey> keys;
    std::optional<NativeRequest::NodeId> unnamed; // an entry without all of its keys is like no other
    std::optional<Operation> taken;               // delete, remove or replace: what stood here before is gone
    Operation own = Operation::merge;             // replace or create, as it was asked for
    bool made = false;                            // something was set here or below since it was taken away
    std::optional<std::string> value;
    std::vector<std::unique_ptr<Draft>> children;
};

bool same_keys(const std::vector<NetKey> &first, const std::vector<NetKey> &second) {
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](const NetKey &one, const NetKey &other) { return one.value == other.value; });
}

bool named(const std::vector<NetKey> &keys) {
    return std::all_of(keys.begin(), keys.end(), [](const NetKey &key) { return key.value.has_value(); });
}

bool below_taken(const Draft &draft) {
    for (const Draft *above = draft.parent; above != nullptr; above = above->parent) {
        if (above->taken) {
            return true;
        }
    }
    return false;
}

void mark_made(Draft *draft) {
    for (; draft != nullptr; draft = draft->parent) {
        draft->made = true;
    }
}

void forget(Draft &draft) {
    std::vector<std::unique_ptr<Draft>> &siblings = draft.parent->children;
    siblings.erase(std::find_if(siblings.begin(), siblings.end(),
                                [&](const std::unique_ptr<Draft> &sibling) { return sibling.get() == &draft; }));
}

// Takes away what stands at a node; below what is gone already there is nothing left to take.
void take_away(Draft &draft, Operation operation) {
    if (operation != Operation::replace && below_taken(draft)) {
        forget(draft);
        return;
    }
    draft.taken = operation;
    draft.own = Operation::merge;
    draft.made = false;
    draft.value.reset();
    draft.children.clear();
}

} // namespace

class NativeRequest::EditReplay {
public:
    explicit EditReplay(const NativeRequest &request) : request_(request) {}

    std::vector<NetNode> run() {
        for (const Event &event : request_.events_) {
            apply(event);
        }
        return finish(top_, nullptr, false);
    }

private:
    Draft &locate(NodeId id);
    void apply(const Event &event);
    static void apply_to_leaf(Draft &draft, Operation operation, const Event &event);
    static void apply_to_inner(Draft &draft, Operation operation);
    std::vector<NetNode> finish(const Draft &draft, const lysc_node *schema, bool taken) const;
    std::optional<NetNode> finish_node(const Draft &draft, bool taken) const;

    const NativeRequest &request_;
    Draft top_;
};

Draft &NativeRequest::EditReplay::locate(NodeId id) {
    if (id == root) {
        return top_;
    }
    const Entry &entry = request_.nodes_[id];
    Draft &parent = locate(entry.parent);
    const std::vector<NetKey> keys = request_.keys_of(id);
    const std::optional<NodeId> unnamed = named(keys) ? std::nullopt : std::optional(id);
    for (const std::unique_ptr<Draft> &child : parent.children) {
        if (child->schema == entry.schema && child->unnamed == unnamed && (unnamed || same_keys(child->keys, keys))) {
            return *child;
        }
    }
    Draft &made = *parent.children.emplace_back(std::make_unique<Draft>());
    made.schema = entry.schema;
    made.parent = &parent;
    made.keys = keys;
    made.unnamed = unnamed;
    return made;
}

void NativeRequest::EditReplay::apply(const Event &event) {
    const auto operation = static_cast<Operation>(event.operation);
    const Entry &entry = request_.nodes_[event.node];
    if (lysc_is_key(entry.schema)) {
        const bool sets = operation != Operation::delete_existing && operation != Operation::remove && event.value;
        if (sets && !event.names_only) {
            mark_made(&locate(entry.parent));
        }
    } else if (entry.schema->nodetype == LYS_LEAF) {
        apply_to_leaf(locate(event.node), operation, event);
    } else {
        apply_to_inner(locate(event.node), operation);
    }
}

// A leaf that is given no value is left as the adds before have left it.
void NativeRequest::EditReplay::apply_to_leaf(Draft &draft, Operation operation, const Event &event) {
    if (operation == Operation::delete_existing || operation == Operation::remove) {
        take_away(draft, operation);
    } else if (event.value) {
        draft.value = event.value;
        draft.own = operation;
        draft.taken.reset();
        mark_made(draft.parent);
    }
}

void NativeRequest::EditReplay::apply_to_inner(Draft &draft, Operation operation) {
    if (operation == Operation::merge) {
        if (draft.schema->nodetype == LYS_LIST) {
            mark_made(&draft);
        }
        draft.own = Operation::merge;
    } else if (operation == Operation::create) {
        mark_made(&draft);
        draft.own = operation;
    } else {
        take_away(draft, operation);
        if (operation == Operation::replace) {
            mark_made(&draft);
        }
    }
}

std::vector<NetNode> NativeRequest::EditReplay::finish(const Draft &draft, const lysc_node *schema, bool taken) const {
    std::vector<NetNode> nodes;
    for (const lysc_node *step : request_.schema_->children(schema)) {
        for (const std::unique_ptr<Draft> &child : draft.children) {
            std::optional<NetNode> node = child->schema == step ? finish_node(*child, taken) : std::nullopt;
            if (node) {
                nodes.push_back(std::move(*node));
            }
        }
    }
    return nodes;
}

// Nothing for a node that says nothing. What was taken away and made again has been replaced; below it all is new, so
// that nothing needs an operation of its own.
std::optional<NetNode> NativeRequest::EditReplay::finish_node(const Draft &draft, bool taken) const {
    NetNode node;
    node.schema = draft.schema;
    node.keys = draft.keys;
    node.value = draft.value;
    node.operation = taken ? Operation::merge : draft.own;
    if (draft.schema->nodetype == LYS_LEAF) {
        if (draft.taken) {
            node.operation = *draft.taken;
        }
        return draft.taken || draft.value ? std::optional(std::move(node)) : std::nullopt;
    }
    node.children = finish(draft, draft.schema, taken || draft.taken.has_value());
    node.made = draft.schema->nodetype == LYS_LIST && draft.made;
    const bool stands = node.made || !node.children.empty();
    if (draft.taken && !taken) {
        node.operation = stands ? Operation::replace : *draft.taken;
        return node;
    }
    return stands || node.operation != Operation::merge ? std::optional(std::move(node)) : std::nullopt;
}

std::vector<NetNode> NativeRequest::net_of_edit() const {
    return EditReplay(*this).run();
}

} // namespace ocpsm::native
