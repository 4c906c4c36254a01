// What a read says. It is answered per list: each entry that is named, or all, with everything that was selected
// anywhere in that list.
#include <libyang/libyang.h>

#include <algorithm>

#include "framework/native/native_request.hpp"

namespace ocpsm::native {

class NativeRequest::ReadUnion {
public:
    explicit ReadUnion(const NativeRequest &request) : request_(request) {}

    // The selections below all of these nodes of one schema node, joined.
    std::vector<NetNode> below(const std::vector<NodeId> &nodes, const lysc_node *schema) const;

private:
    std::vector<NetNode> entries(const std::vector<NodeId> &nodes, const lysc_node *schema) const;
    bool selects_key(const std::vector<NodeId> &nodes) const;
    std::vector<std::vector<NetKey>> named(const std::vector<NodeId> &nodes) const;

    const NativeRequest &request_;
};

std::vector<NetNode> NativeRequest::ReadUnion::below(const std::vector<NodeId> &nodes, const lysc_node *schema) const {
    std::vector<NetNode> joined;
    for (const lysc_node *step : request_.schema_->children(schema)) {
        std::vector<NodeId> same;
        for (const NodeId node : nodes) {
            for (const NodeId child : request_.nodes_[node].children) {
                if (request_.nodes_[child].schema == step) {
                    same.push_back(child);
                }
            }
        }
        if (same.empty() || lysc_is_key(step)) {
            continue;
        }
        if (step->nodetype == LYS_LIST) {
            std::vector<NetNode> list = entries(same, step);
            std::move(list.begin(), list.end(), std::back_inserter(joined));
        } else {
            NetNode node;
            node.schema = step;
            node.children = below(same, step);
            joined.push_back(std::move(node));
        }
    }
    return joined;
}

std::vector<NetNode> NativeRequest::ReadUnion::entries(const std::vector<NodeId> &nodes,
                                                       const lysc_node *schema) const {
    NetNode entry;
    entry.schema = schema;
    entry.children = below(nodes, schema);
    const bool selects = !entry.children.empty() || selects_key(nodes);
    std::vector<std::vector<NetKey>> keys = named(nodes);
    if (keys.empty()) {
        keys.push_back(request_.keys_of(nodes.front()));
    }
    std::vector<NetNode> list;
    for (std::vector<NetKey> &each : keys) {
        for (NetKey &key : each) {
            if (key.value && key.value->empty()) {
                key.value.reset();
            }
            key.selected = selects && !key.value;
        }
        entry.keys = std::move(each);
        list.push_back(entry);
    }
    return list;
}

// A key leaf that was added to be read, not to name an entry.
bool NativeRequest::ReadUnion::selects_key(const std::vector<NodeId> &nodes) const {
    return std::any_of(nodes.begin(), nodes.end(), [&](NodeId node) {
        const std::vector<NodeId> &children = request_.nodes_[node].children;
        return std::any_of(children.begin(), children.end(), [&](NodeId child) {
            const Entry &leaf = request_.nodes_[child];
            return lysc_is_key(leaf.schema) && leaf.value.value_or("").empty();
        });
    });
}

// The keys of the entries that have one, each once. A key without a value, or with the empty text, names nothing.
std::vector<std::vector<NetKey>> NativeRequest::ReadUnion::named(const std::vector<NodeId> &nodes) const {
    std::vector<std::vector<NetKey>> found;
    for (const NodeId node : nodes) {
        std::vector<NetKey> keys = request_.keys_of(node);
        bool names = false;
        for (NetKey &key : keys) {
            if (key.value && key.value->empty()) {
                key.value.reset();
            }
            names = names || key.value.has_value();
        }
        const bool known = std::any_of(found.begin(), found.end(), [&](const std::vector<NetKey> &other) {
            return std::equal(keys.begin(), keys.end(), other.begin(),
                              [](const NetKey &one, const NetKey &two) { return one.value == two.value; });
        });
        if (names && !known) {
            found.push_back(std::move(keys));
        }
    }
    return found;
}

std::vector<NetNode> NativeRequest::net_of_read() const {
    return ReadUnion(*this).below({root}, nullptr);
}

} // namespace ocpsm::native
