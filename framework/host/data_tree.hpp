// Data trees of the mapping framework, with the storage that they live in.
#ifndef OCPSM_FRAMEWORK_HOST_DATA_TREE_HPP
#define OCPSM_FRAMEWORK_HOST_DATA_TREE_HPP

#include <cstdint>
#include <deque>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "framework/request_tree.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

/*
 * A tree that owns all its texts and child arrays, also those that a walk has hidden from its nodes. Nodes keep their
 * addresses, except that add_child may move the children of the node it adds to.
 */
class DataTree {
public:
    // Every node is in use; flags tell of values and children where there are any.
    explicit DataTree(const RequestNode &root);

    // A copy of a subtree, every member as it stands; hidden children are not part of it.
    explicit DataTree(const kidl_yfw_datatree &root);

    DataTree(DataTree &&) = default;
    DataTree &operator=(DataTree &&) = default;
    DataTree(const DataTree &) = delete;
    DataTree &operator=(const DataTree &) = delete;
    ~DataTree() = default;

    kidl_yfw_datatree &root() { return blocks_.front().front(); }
    const kidl_yfw_datatree &root() const { return blocks_.front().front(); }

    // Appends a leaf to the children of a node of this tree and returns it.
    kidl_yfw_datatree &add_child(kidl_yfw_datatree &parent, const RequestNode &leaf);

private:
    using Block = std::vector<kidl_yfw_datatree>;
    using Kept = std::unordered_map<const char *, char *>; // namespaces, which many nodes share, by the original text

    char *keep(std::string_view text);
    char *keep_namespace(std::string_view text, Kept &kept);
    kidl_yfw_datatree build(const RequestNode &node, Kept &kept);
    kidl_yfw_datatree copy(const kidl_yfw_datatree &node, Kept &kept);
    void give_children(kidl_yfw_datatree &node, Block &block);

    std::deque<std::string> texts_;
    std::list<Block> blocks_;                                      // each a child array; the first holds the root
    std::unordered_map<const kidl_yfw_datatree *, Block *> grown_; // those that add_child has made, by their array
};

// The children of a node that are not hidden; empty where the count is not above zero. A view of the node's own array.
std::span<const kidl_yfw_datatree> children_of(const kidl_yfw_datatree &node);

// The first child with this tag, or null.
const kidl_yfw_datatree *find_child(const kidl_yfw_datatree &node, std::string_view tag);

// A leaf's value, none when the node does not carry one (flag and text).
std::optional<std::string_view> value_of(const kidl_yfw_datatree &node);

// How many lines `print` gives.
std::size_t line_count(const kidl_yfw_datatree &node);

// A line per node, indented by two blanks per level; a node that is not in use with its whole subtree says so.
std::vector<std::string> print(const kidl_yfw_datatree &node);

} // namespace ocpsm::framework

#endif
