// What an edit says: its adds, one after the other, each on what the adds before it have left.
#include <libyang/libyang.h>

#include <algorithm>

#include "framework/models/models.hpp"
#include "framework/native/native_request.hpp"

namespace ocpsm::native {

class NativeRequest::EditReplay {
public:
    explicit EditReplay(const NativeRequest &request) : request_(request), places_(request.nodes_.size(), draft_root) {}

    std::vector<NativeNode> run() {
        for (const EditAdd &add : request_.edit_adds_) {
            apply(add);
        }
        return finish(draft_root, nullptr, false);
    }

private:
    DraftId place_that_stands(DraftId id) const;
    DraftId locate(DraftId id);
    DraftId locate_entry(DraftId id, DraftId parent);
    bool below_taken(DraftId id) const;
    void mark_made(DraftId id);
    void take_away(DraftId id, Operation operation);

    void apply(const EditAdd &add);
    void apply_to_key(DraftId entry, const lysc_node *key, const EditAdd &add);
    void apply_to_leaf(DraftId id, const EditAdd &add);
    void apply_to_inner(DraftId id, Operation operation);

    std::vector<NativeNode> finish(DraftId id, const lysc_node *schema, bool taken) const;
    std::optional<NativeNode> finish_node(DraftId id, bool taken) const;

    const NativeRequest &request_;
    DraftTree net_;               // entries with equal keys are one, one without all of its keys is like no other
    std::vector<DraftId> places_; // in `net_`, of each node that was added; the root: not looked for yet
};

// Where an added node is in what the edit comes to; the root when it was not needed yet or has been taken away.
DraftId NativeRequest::EditReplay::place_that_stands(DraftId id) const {
    return net_.at(places_[id]).gone ? draft_root : places_[id];
}

DraftId NativeRequest::EditReplay::locate(DraftId id) {
    if (id == draft_root || place_that_stands(id) != draft_root) {
        return places_[id];
    }
    const lysc_node *schema = request_.nodes_.at(id).schema;
    const DraftId parent = locate(request_.nodes_.at(id).parent);
    DraftId place = draft_root;
    if (schema->nodetype == LYS_LIST) {
        place = locate_entry(id, parent);
    } else if (place = net_.single(parent, schema); place == draft_root) {
        place = net_.make(parent, schema);
    }
    places_[id] = place;
    return place;
}

DraftId NativeRequest::EditReplay::locate_entry(DraftId id, DraftId parent) {
    const lysc_node *list = request_.nodes_.at(id).schema;
    const std::vector<const lysc_node *> keys = models::key_leaves(*list);
    const auto value = [&](const lysc_node *key) -> const std::optional<std::string> & {
        return request_.nodes_.key_value(id, key);
    };
    const bool named = std::all_of(keys.begin(), keys.end(), [&](const lysc_node *key) { return value(key); });
    std::size_t name = 0;
    for (const lysc_node *key : keys) {
        name = name_of(value(key), name);
    }
    const auto has_these_keys = [&](DraftId entry) {
        return std::all_of(keys.begin(), keys.end(),
                           [&](const lysc_node *key) { return net_.key_value(entry, key) == value(key); });
    };
    const DraftId found = named ? net_.find(parent, list, name, has_these_keys) : draft_root;
    if (found != draft_root) {
        return found;
    }
    const DraftId made = net_.make(parent, list);
    for (const lysc_node *key : keys) {
        net_.at(net_.make(made, key)).value = value(key);
    }
    if (named) {
        net_.index(made, list, name);
    }
    return made;
}

bool NativeRequest::EditReplay::below_taken(DraftId id) const {
    for (DraftId above = id; above != draft_root;) {
        above = net_.at(above).parent;
        if (net_.at(above).taken) {
            return true;
        }
    }
    return false;
}

void NativeRequest::EditReplay::mark_made(DraftId id) {
    for (; id != draft_root; id = net_.at(id).parent) {
        net_.at(id).made = true;
    }
}

// Takes away what stands at a node; below what is gone already there is nothing left to take.
void NativeRequest::EditReplay::take_away(DraftId id, Operation operation) {
    if (operation != Operation::replace && below_taken(id)) {
        net_.drop(id);
        return;
    }
    net_.clear(id);
    Draft &draft = net_.at(id);
    draft.taken = operation;
    draft.operation = Operation::merge;
    draft.made = false;
    draft.value.reset();
}

void NativeRequest::EditReplay::apply(const EditAdd &add) {
    const Draft &node = request_.nodes_.at(add.node);
    if (lysc_is_key(node.schema)) {
        apply_to_key(node.parent, node.schema, add);
        return;
    }
    const DraftId place = locate(add.node);
    net_.came_from(place, add.origin);
    if (node.schema->nodetype == LYS_LEAF) {
        apply_to_leaf(place, add);
    } else {
        apply_to_inner(place, add.operation);
    }
}

// A key that sets makes its entry; one that only names it changes nothing.
void NativeRequest::EditReplay::apply_to_key(DraftId entry, const lysc_node *key, const EditAdd &add) {
    const bool sets = add.value && !takes_away(add.operation) && !add.names_only;
    const DraftId place = sets ? locate(entry) : place_that_stands(entry);
    if (sets) {
        mark_made(place);
    }
    if (place != draft_root) {
        net_.came_from(net_.single(place, key), add.origin);
    }
}

// A leaf that is given no value is left as the adds before have left it.
void NativeRequest::EditReplay::apply_to_leaf(DraftId id, const EditAdd &add) {
    if (takes_away(add.operation)) {
        take_away(id, add.operation);
    } else if (add.value) {
        Draft &draft = net_.at(id);
        draft.value = add.value;
        draft.operation = add.operation;
        draft.taken.reset();
        mark_made(draft.parent);
    }
}

void NativeRequest::EditReplay::apply_to_inner(DraftId id, Operation operation) {
    if (operation == Operation::merge) {
        if (net_.at(id).schema->nodetype == LYS_LIST) {
            mark_made(id);
        }
        net_.at(id).operation = Operation::merge;
    } else if (operation == Operation::create) {
        mark_made(id);
        net_.at(id).operation = operation;
    } else {
        take_away(id, operation);
        if (operation == Operation::replace) {
            mark_made(id);
        }
    }
}

std::vector<NativeNode> NativeRequest::EditReplay::finish(DraftId id, const lysc_node *schema, bool taken) const {
    std::vector<NativeNode> nodes;
    const auto add = [&](DraftId child) {
        if (auto node = finish_node(child, taken)) {
            nodes.push_back(std::move(*node));
        }
    };
    for (const lysc_node *step : request_.schema_->children(schema)) {
        if (step->nodetype == LYS_LIST) {
            for (const DraftId entry : net_.at(id).entries) {
                if (net_.at(entry).schema == step && !net_.at(entry).gone) {
                    add(entry);
                }
            }
        } else if (const DraftId single = net_.single(id, step); single != draft_root) {
            add(single);
        }
    }
    return nodes;
}

// Nothing for a node that says nothing. What was taken away and made again has been replaced; below it all is new, so
// that nothing needs an operation of its own.
std::optional<NativeNode> NativeRequest::EditReplay::finish_node(DraftId id, bool taken) const {
    const Draft &draft = net_.at(id);
    NativeNode node{draft.schema, draft.value};
    node.operation = taken ? Operation::merge : draft.operation;
    node.added = draft.added;
    node.origin = draft.origin;
    if (draft.schema->nodetype == LYS_LEAF) {
        node.operation = draft.taken.value_or(node.operation);
        const bool says = draft.taken || draft.value || lysc_is_key(draft.schema);
        return says ? std::optional(std::move(node)) : std::nullopt;
    }
    node.children = finish(id, draft.schema, taken || draft.taken.has_value());
    node.made = draft.schema->nodetype == LYS_LIST && draft.made;
    const bool stands = node.made || !others(node).empty();
    if (draft.taken && !taken) {
        node.operation = stands ? Operation::replace : *draft.taken;
        return node;
    }
    return stands || node.operation != Operation::merge ? std::optional(std::move(node)) : std::nullopt;
}

std::vector<NativeNode> NativeRequest::net_of_edit() const {
    return EditReplay(*this).run();
}

} // namespace ocpsm::native
