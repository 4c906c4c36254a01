// What a read says. It is answered per list: each entry that is named, or all, with everything that was selected
// anywhere in that list.
#include <libyang/libyang.h>

#include <algorithm>
#include <unordered_map>

#include "framework/models/models.hpp"
#include "framework/native/native_request.hpp"

namespace ocpsm::native {
namespace {

bool same_keys(const NativeNode &first, const NativeNode &second) {
    return std::equal(first.children.begin(), first.children.end(), second.children.begin(), second.children.end(),
                      [](const NativeNode &one, const NativeNode &other) { return one.value == other.value; });
}

bool names_nothing(const NativeNode &entry) {
    return std::none_of(entry.children.begin(), entry.children.end(),
                        [](const NativeNode &key) { return key.value.has_value(); });
}

std::size_t name_of(const NativeNode &entry) {
    std::size_t name = 0;
    for (const NativeNode &key : entry.children) {
        name = native::name_of(key.value, name);
    }
    return name;
}

// Of several nodes that are one the last counts that was added itself.
void take_origin(NativeNode &node, const auto &from) {
    if (from.added || !node.added) {
        node.added = from.added;
        node.origin = from.origin;
    }
}

// The same for entries with the same keys.
void join(NativeNode &entry, const NativeNode &from) {
    take_origin(entry, from);
    for (std::size_t key = 0; key < entry.children.size(); ++key) {
        take_origin(entry.children[key], from.children[key]);
    }
}

} // namespace

class NativeRequest::ReadUnion {
public:
    explicit ReadUnion(const NativeRequest &request) : request_(request) {}

    // The selections below all of these nodes of one schema node, joined.
    std::vector<NativeNode> below(const std::vector<DraftId> &nodes, const lysc_node *schema) const;

private:
    const Draft &at(DraftId id) const { return request_.nodes_.at(id); }

    std::vector<DraftId> children(const std::vector<DraftId> &nodes, const lysc_node *schema) const;
    std::vector<NativeNode> entries(const std::vector<DraftId> &nodes, const lysc_node *schema) const;
    bool selects_key(const std::vector<DraftId> &nodes) const;
    std::vector<NativeNode> named(const std::vector<DraftId> &nodes) const;
    NativeNode with_keys(DraftId entry) const;

    const NativeRequest &request_;
};

std::vector<DraftId> NativeRequest::ReadUnion::children(const std::vector<DraftId> &nodes,
                                                        const lysc_node *schema) const {
    std::vector<DraftId> found;
    for (const DraftId node : nodes) {
        const auto &all = schema->nodetype == LYS_LIST ? at(node).entries : at(node).singles;
        std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                     [&](DraftId child) { return at(child).schema == schema; });
    }
    return found;
}

std::vector<NativeNode> NativeRequest::ReadUnion::below(const std::vector<DraftId> &nodes,
                                                        const lysc_node *schema) const {
    std::vector<NativeNode> joined;
    for (const lysc_node *step : request_.schema_->children(schema)) {
        const std::vector<DraftId> same = lysc_is_key(step) ? std::vector<DraftId>() : children(nodes, step);
        if (same.empty()) {
            continue;
        }
        if (step->nodetype == LYS_LIST) {
            std::vector<NativeNode> list = entries(same, step);
            std::move(list.begin(), list.end(), std::back_inserter(joined));
        } else {
            NativeNode &node = joined.emplace_back(NativeNode{step});
            node.children = below(same, step);
            for (const DraftId each : same) {
                take_origin(node, at(each));
            }
        }
    }
    return joined;
}

std::vector<NativeNode> NativeRequest::ReadUnion::entries(const std::vector<DraftId> &nodes,
                                                          const lysc_node *schema) const {
    const std::vector<NativeNode> selections = below(nodes, schema);
    const bool selects = !selections.empty() || selects_key(nodes);
    std::vector<NativeNode> list = named(nodes);
    for (NativeNode &entry : list) {
        for (NativeNode &key : entry.children) {
            key.selected = selects && !key.value;
        }
        entry.children.insert(entry.children.end(), selections.begin(), selections.end());
    }
    return list;
}

// A key leaf that was added to be read, not to name an entry.
bool NativeRequest::ReadUnion::selects_key(const std::vector<DraftId> &nodes) const {
    return std::any_of(nodes.begin(), nodes.end(), [&](DraftId node) {
        const std::vector<DraftId> &leaves = at(node).singles;
        return std::any_of(leaves.begin(), leaves.end(), [&](DraftId leaf) {
            return lysc_is_key(at(leaf).schema) && at(leaf).value.value_or("").empty();
        });
    });
}

// An entry and its keys. A key without a value, or with the empty text, names nothing.
NativeNode NativeRequest::ReadUnion::with_keys(DraftId entry) const {
    NativeNode node{at(entry).schema};
    take_origin(node, at(entry));
    for (const lysc_node *key : models::key_leaves(*node.schema)) {
        NativeNode &leaf = node.children.emplace_back(NativeNode{key});
        if (const DraftId stands = request_.nodes_.single(entry, key); stands != draft_root) {
            leaf.value = at(stands).value.value_or("").empty() ? std::nullopt : at(stands).value;
            take_origin(leaf, at(stands));
        }
    }
    return node;
}

// The entries that have a key, each once; when none has, one for all of them.
std::vector<NativeNode> NativeRequest::ReadUnion::named(const std::vector<DraftId> &nodes) const {
    std::vector<NativeNode> found;
    std::unordered_multimap<std::size_t, std::size_t> names;
    NativeNode unnamed = with_keys(nodes.front());
    for (const DraftId node : nodes) {
        NativeNode entry = with_keys(node);
        const std::size_t name = name_of(entry);
        const auto [begin, end] = names.equal_range(name);
        const auto known =
            std::find_if(begin, end, [&](const auto &other) { return same_keys(found[other.second], entry); });
        if (known != end) {
            join(found[known->second], entry);
        } else if (names_nothing(entry)) {
            join(unnamed, entry);
        } else {
            names.emplace(name, found.size());
            found.push_back(std::move(entry));
        }
    }
    if (found.empty()) {
        found.push_back(std::move(unnamed));
    }
    return found;
}

std::vector<NativeNode> NativeRequest::net_of_read() const {
    return ReadUnion(*this).below({draft_root}, nullptr);
}

} // namespace ocpsm::native
