// Builds data trees for tests: described by value, owned until the tree goes.
#ifndef TESTS_SUPPORT_TREE_HPP
#define TESTS_SUPPORT_TREE_HPP

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <yfw_map.h>

namespace fake {

// The namespaces that occur, written out here once more so that the tables under test are not their own judge.
inline constexpr char openconfig[] = "http://openconfig.net/yang/optical-transport-line-protection";
inline constexpr char foreign[] = "http://example.com/ns/foreign";

// The description of one node. Every modifier returns the description again.
struct Node {
    std::optional<std::string> tag;
    std::optional<std::string> namespace_uri = openconfig;
    std::optional<std::string> value;
    std::uint32_t operation = YFW_OPERATION_MERGE;
    std::uint32_t flags = YFW_NODE_IN_USE; // 2 and 64 come with the value and with the children
    std::vector<Node> children;
    bool with_children = false;                // the child array counts, be it empty
    std::optional<std::int32_t> claimed_count; // a count that does not belong to the array
    bool hide_array = false;                   // a count without an array
    std::uint32_t cleared_flags = 0;           // the ones that the builder sets, too

    [[nodiscard]] Node with_operation(std::uint32_t new_operation) const;
    [[nodiscard]] Node untagged() const;
    [[nodiscard]] Node without_array(std::int32_t count) const; // says that it has children, but has no array
};

// A leaf with a value; a leaf without (null, no flag 2); a container or list entry (an empty one has no children).
[[nodiscard]] Node leaf(std::string tag, std::optional<std::string> value = std::nullopt);
[[nodiscard]] Node container(std::string tag, std::vector<Node> children = {});

// A tree on the heap. Every array and every text is an allocation of its own, of its exact size.
class Tree {
public:
    explicit Tree(const Node &description);
    // A deep copy of a node that someone else owns.
    static std::unique_ptr<Tree> copy_of(const kidl_yfw_datatree &node);

    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;
    ~Tree() = default;

    [[nodiscard]] kidl_yfw_datatree *root() { return root_.get(); }
    [[nodiscard]] const kidl_yfw_datatree *root() const { return root_.get(); }
    // The node at a path of tags below the root ("config/revertive", "" is the root; the second of equal siblings is
    // "aps-module[2]"). Throws std::out_of_range when it is not there.
    [[nodiscard]] kidl_yfw_datatree *at(std::string_view path);
    // The path of a node with the root's name in front ("aps-module/config"); empty when it is not of this tree.
    [[nodiscard]] std::string path_of(const void *node) const;
    [[nodiscard]] bool owns(const void *node) const { return !path_of(node).empty(); }
    // The owner of a child array, hidden or not, as a path; empty when no node of this tree has it.
    [[nodiscard]] std::string owner_of_array(const void *array) const;
    void rename(std::string name);

    // Appends a child. The array of the children moves.
    kidl_yfw_datatree *add_child(kidl_yfw_datatree *parent, std::string_view tag, const char *namespace_uri,
                                 const char *value, std::uint32_t operation);

private:
    Tree() = default;
    void fill(kidl_yfw_datatree &node, const Node &description);
    void copy(kidl_yfw_datatree &to, const kidl_yfw_datatree &from);
    kidl_yfw_datatree *new_array(std::size_t count);
    char *new_text(std::string_view text);
    char *new_text(const std::optional<std::string> &text);
    void index(const kidl_yfw_datatree &node, const std::string &path);

    std::unique_ptr<kidl_yfw_datatree> root_;
    std::string name_;
    std::vector<std::unique_ptr<kidl_yfw_datatree[]>> arrays_;
    std::vector<std::unique_ptr<char[]>> texts_;
    std::map<const void *, std::string> paths_;
    std::map<const void *, std::string> array_owners_;
};

} // namespace fake

#endif
