#include "framework/native/native_data.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/native/draft_tree.hpp"

namespace ocpsm::native {
namespace {

const std::optional<std::string> *key_value(const NativeNode &entry, const lysc_node *key) {
    const auto all = keys(entry);
    const auto found = std::find_if(all.begin(), all.end(), [&](const NativeNode &each) { return each.schema == key; });
    return found == all.end() ? nullptr : &found->value;
}

// Whether a selection means this node; a key that it does not name may have any value.
bool means(const NativeNode &selection, const NativeNode &node) {
    const auto named = keys(selection);
    return selection.schema == node.schema && std::all_of(named.begin(), named.end(), [&](const NativeNode &key) {
               const std::optional<std::string> *value = key_value(node, key.schema);
               return !key.value || (value != nullptr && *value == key.value);
           });
}

// Sibling selections, to be found by what they mean. Those in one list that name different entries select the same
// leaves, so any that means an entry is as good as any other.
class Selections {
public:
    explicit Selections(std::span<const NativeNode> selections) {
        for (const NativeNode &selection : selections) {
            Pattern pattern{selection.schema, {}};
            for (const NativeNode &key : keys(selection)) {
                if (key.value) {
                    pattern.second.push_back(key.schema);
                }
            }
            by_name_.emplace_back(name(selection, pattern), &selection);
            if (std::find(patterns_.begin(), patterns_.end(), pattern) == patterns_.end()) {
                patterns_.push_back(std::move(pattern));
            }
        }
        std::stable_sort(by_name_.begin(), by_name_.end(),
                         [](const Named &one, const Named &other) { return one.first < other.first; });
    }

    // The selection that means a node; null when there is none.
    const NativeNode *find(const NativeNode &node) const {
        for (const Pattern &pattern : patterns_) {
            if (pattern.first != node.schema) {
                continue;
            }
            const std::size_t wanted = name(node, pattern);
            auto found = std::lower_bound(by_name_.begin(), by_name_.end(), wanted,
                                          [](const Named &one, std::size_t other) { return one.first < other; });
            for (; found != by_name_.end() && found->first == wanted; ++found) {
                if (means(*found->second, node)) {
                    return found->second;
                }
            }
        }
        return nullptr;
    }

private:
    using Pattern = std::pair<const lysc_node *, std::vector<const lysc_node *>>; // a node and which keys are named
    using Named = std::pair<std::size_t, const NativeNode *>;

    static std::size_t name(const NativeNode &node, const Pattern &pattern) {
        std::size_t name = name_of(node.schema->name);
        for (const lysc_node *key : pattern.second) {
            const std::optional<std::string> *value = key_value(node, key);
            name = name_of(value == nullptr ? std::nullopt : *value, name);
        }
        return name;
    }

    std::vector<Pattern> patterns_; // few: as many as a list has ways to leave keys out
    std::vector<Named> by_name_;
};

std::vector<NativeNode> answer_below(std::span<const NativeNode> held, std::span<const NativeNode> selections);

NativeNode answer_entry(const NativeNode &entry, const NativeNode &selection) {
    const auto wanted = keys(selection);
    if (others(selection).empty() &&
        std::none_of(wanted.begin(), wanted.end(), [](const NativeNode &key) { return key.selected; })) {
        return entry;
    }
    NativeNode answered{entry.schema};
    answered.children.assign(keys(entry).begin(), keys(entry).end());
    std::vector<NativeNode> below = answer_below(others(entry), others(selection));
    std::move(below.begin(), below.end(), std::back_inserter(answered.children));
    return answered;
}

std::optional<NativeNode> answer_node(const NativeNode &node, const NativeNode &selection) {
    if (node.schema->nodetype == LYS_LIST) {
        return answer_entry(node, selection);
    }
    if (selection.children.empty()) {
        return node;
    }
    NativeNode answered{node.schema};
    answered.children = answer_below(node.children, selection.children);
    return answered.children.empty() ? std::nullopt : std::optional(std::move(answered));
}

std::vector<NativeNode> answer_below(std::span<const NativeNode> held, std::span<const NativeNode> selections) {
    const Selections all(selections);
    std::vector<NativeNode> answered;
    for (const NativeNode &node : held) {
        const NativeNode *selection = all.find(node);
        auto found = selection == nullptr ? std::nullopt : answer_node(node, *selection);
        if (found) {
            answered.push_back(std::move(*found));
        }
    }
    return answered;
}

} // namespace

NativeData answer(const NativeData &held, const NetRequest &read) {
    return {answer_below(held.roots, read.roots)};
}

} // namespace ocpsm::native
