#include "framework/native/draft_tree.hpp"

#include <libyang/libyang.h>

#include <limits>

namespace ocpsm::native {

DraftId DraftTree::make(DraftId parent, const lysc_node *schema) {
    const auto id = static_cast<DraftId>(nodes_.size());
    Draft &made = nodes_.emplace_back();
    made.schema = schema;
    made.parent = parent;
    Draft &above = at(parent);
    (schema->nodetype == LYS_LIST ? above.entries : above.singles).push_back(id);
    return id;
}

DraftId DraftTree::single(DraftId parent, const lysc_node *schema) const {
    for (const DraftId child : at(parent).singles) {
        if (at(child).schema == schema) {
            return child;
        }
    }
    return draft_root;
}

const std::optional<std::string> &DraftTree::key_value(DraftId entry, const lysc_node *key) const {
    return at(single(entry, key)).value; // the root has none
}

void DraftTree::clear(DraftId id) {
    Draft &node = at(id);
    for (const DraftId entry : node.entries) {
        mark_gone(entry);
    }
    node.entries.clear();
    std::erase_if(node.singles, [this](DraftId child) {
        const bool goes = !lysc_is_key(at(child).schema);
        if (goes) {
            mark_gone(child);
        }
        return goes;
    });
}

// Each node goes only once; what is below one that is gone needs no second look.
void DraftTree::mark_gone(DraftId id) {
    Draft &node = at(id);
    if (node.gone) {
        return;
    }
    node.gone = true;
    for (const auto *children : {&node.singles, &node.entries}) {
        for (const DraftId child : *children) {
            mark_gone(child);
        }
    }
}

void DraftTree::drop(DraftId id) {
    mark_gone(id);
    std::erase(at(at(id).parent).singles, id);
}

void DraftTree::came_from(DraftId id, Origin origin) {
    at(id).origin = origin;
    at(id).added = true;
    for (DraftId above = at(id).parent; above != draft_root; above = at(above).parent) {
        if (!at(above).added) {
            at(above).origin = origin;
        }
    }
}

void DraftTree::index(DraftId entry, const lysc_node *schema, std::size_t name) {
    names_.insert({at(entry).parent, schema, name, entry});
}

DraftId DraftTree::find(DraftId parent, const lysc_node *schema, std::size_t name,
                        const std::function<bool(DraftId entry)> &is_it) {
    auto after = names_.upper_bound({parent, schema, name, std::numeric_limits<DraftId>::max()});
    while (after != names_.begin()) {
        const auto found = std::prev(after);
        if (found->parent != parent || found->schema != schema || found->name != name) {
            break;
        }
        if (at(found->entry).gone) {
            after = names_.erase(found);
        } else if (is_it(found->entry)) {
            return found->entry;
        } else {
            after = found;
        }
    }
    return draft_root;
}

std::size_t name_of(const std::optional<std::string> &key_value, std::size_t before) {
    constexpr std::size_t spread = 0x9e3779b97f4a7c15;
    return (before + (key_value ? std::hash<std::string>{}(*key_value) : 1)) * spread;
}

} // namespace ocpsm::native
