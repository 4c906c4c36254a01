#include "framework/native/native_data.hpp"

#include <libyang/libyang.h>

#include <algorithm>

namespace ocpsm::native {
namespace {

using Selections = std::vector<NetNode>;

const std::optional<std::string> *key_value(const DataNode &entry, const lysc_node *key) {
    const auto found = std::find_if(entry.children.begin(), entry.children.end(),
                                    [&](const DataNode &child) { return child.schema == key; });
    return found == entry.children.end() ? nullptr : &found->value;
}

// Whether a selection means this entry; a key that it does not name may have any value.
bool means(const NetNode &selection, const DataNode &entry) {
    return std::all_of(selection.keys.begin(), selection.keys.end(), [&](const NetKey &key) {
        if (!key.value) {
            return true;
        }
        const std::optional<std::string> *value = key_value(entry, key.schema);
        return value != nullptr && *value == key.value;
    });
}

bool selects_key(const NetNode &selection) {
    return std::any_of(selection.keys.begin(), selection.keys.end(), [](const NetKey &key) { return key.selected; });
}

std::vector<DataNode> answer_below(const std::vector<DataNode> &held, const Selections &selections);

std::optional<DataNode> answer_entry(const DataNode &entry, const NetNode &selection) {
    if (selection.children.empty() && !selects_key(selection)) {
        return entry;
    }
    DataNode answered{entry.schema};
    for (const DataNode &child : entry.children) {
        if (lysc_is_key(child.schema)) {
            answered.children.push_back(child);
        }
    }
    std::vector<DataNode> others = answer_below(entry.children, selection.children);
    std::move(others.begin(), others.end(), std::back_inserter(answered.children));
    return answered;
}

std::optional<DataNode> answer_node(const DataNode &node, const NetNode &selection) {
    if (node.schema->nodetype == LYS_LIST) {
        return answer_entry(node, selection);
    }
    if (selection.children.empty()) {
        return node;
    }
    DataNode answered{node.schema};
    answered.children = answer_below(node.children, selection.children);
    return answered.children.empty() ? std::nullopt : std::optional(std::move(answered));
}

// The selections in one list that name different entries select the same leaves, so the first that means an entry is
// as good as any.
std::vector<DataNode> answer_below(const std::vector<DataNode> &held, const Selections &selections) {
    std::vector<DataNode> answered;
    for (const DataNode &node : held) {
        const auto selection = std::find_if(selections.begin(), selections.end(), [&](const NetNode &each) {
            return each.schema == node.schema && means(each, node);
        });
        if (selection != selections.end()) {
            if (auto found = answer_node(node, *selection)) {
                answered.push_back(std::move(*found));
            }
        }
    }
    return answered;
}

} // namespace

NativeData answer(const NativeData &held, const NetRequest &read) {
    return {answer_below(held.roots, read.roots)};
}

} // namespace ocpsm::native
