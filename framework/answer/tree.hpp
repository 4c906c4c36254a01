// An OpenConfig answer, on libyang's own data nodes.
#ifndef OCPSM_FRAMEWORK_ANSWER_TREE_HPP
#define OCPSM_FRAMEWORK_ANSWER_TREE_HPP

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/library.hpp"
#include "framework/service.hpp"

namespace ocpsm::framework {

/*
 * The top node with what is below it, or nothing. The children of a node stand in the order of the model, the keys of a
 * list entry first, the entries of the list in the order of their keys. Values are canonical. Several threads may read
 * one tree.
 */
class AnswerTree {
public:
    AnswerTree() = default;

    // Takes over a top node.
    explicit AnswerTree(OwnedNode top);

    bool empty() const noexcept { return top_ == nullptr; }
    const lyd_node *top() const noexcept { return top_.get(); } // null: nothing

    // Gives the top node away; nothing is left.
    OwnedNode release() noexcept;

    // Indented, with a line end behind it; nothing is no text in XML, "{}" in JSON (RFC 7951).
    std::string print(Format format) const;

    // Calls `visit` for every leaf in document order, with its instance path.
    void for_each_leaf(const std::function<void(const std::string &path, std::string_view value)> &visit) const;

    // The keys of the list's entries, in their order.
    std::vector<std::string> entry_names() const;

    // The entry with this key, or null.
    const lyd_node *find_entry(std::string_view key) const;

private:
    OwnedNode top_;
    std::vector<const lyd_node *> entries_; // of the only list of the model, in order
};

// All that is in any of the answers; where several have a leaf, the first of them counts.
AnswerTree join(std::vector<AnswerTree> parts);

// The leaves that differ, in document order.
std::vector<Change> changes_between(const AnswerTree &before, const AnswerTree &after);

// ---- single nodes ----

// The node with this schema among siblings (null: none), or null.
const lyd_node *find_sibling(const lyd_node *first, const lysc_node &schema);

// The canonical value of a leaf.
std::string_view leaf_value(const lyd_node &leaf);

// A node's step of an instance path, with a predicate for each of its keys: "/aps-module[name='0/1-PSM-OM']".
std::string answer_step(const lyd_node &node);

} // namespace ocpsm::framework

#endif
