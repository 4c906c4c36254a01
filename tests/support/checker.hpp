// Watches that a walk leaves a request, its trees and the framework's stacks as it found them.
#ifndef TESTS_SUPPORT_CHECKER_HPP
#define TESTS_SUPPORT_CHECKER_HPP

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <yfw_map.h>

#include "fake_platform.hpp"

namespace fake {

// Takes a picture when it is made and compares later. What a walk may leave behind is not a difference:
// - flag 16 (operation rewritten) on a node that was to be replaced, and on the source of an interface key (the add of
//   the optics container tells which);
// - mark 1 and flag 512 on the key leaf of a list entry;
// - the hierarchy kind, together with its kind-set bit: 3 on a container, 4 on an entry, 1 or 6 on a leaf;
// - one more child `name` without a value, consumed, in an entry of a read that had other children but no key;
// - read-selection bits, in a read;
// - the operation of the list entry in the context, the error-node name, the mark that a context was printed.
// The framework's copy of the current list entry is its own and not looked at.
class Checker {
public:
    enum class Tolerance {
        walk,   // as above
        keys,   // of the above, mark 1 and flag 512, on any leaf
        nothing // not even those; the last three of the list are looked at too
    };

    explicit Checker(const Platform &platform, yfw_map_ctx ctx, Tolerance tolerance = Tolerance::walk);

    // Everything else that is not as it was, one line each: "aps/aps-modules: operation 1 -> 4".
    [[nodiscard]] std::vector<std::string> differences() const;

private:
    struct NodeState {
        const kidl_yfw_datatree *node = nullptr;
        kidl_yfw_datatree content{};
        bool is_entry = false; // of the list, by its tag
        bool is_key = false;
        bool has_key = false;
    };
    using Nodes = std::map<std::string, NodeState>;
    struct Picture {
        Nodes nodes;
        std::vector<std::string> hierarchy;
        std::vector<std::string> itree;
        yfw_map_request request{};
        yfw_map_context context{};
        std::uint32_t kind = 0;
        std::string error_node = "none"; // the text: the name may be released and its address used again
    };

    [[nodiscard]] Picture take() const;
    void visit(Nodes &nodes, const kidl_yfw_datatree &node, const std::string &path, bool in_entry) const;
    void compare_nodes(const Picture &now, std::vector<std::string> &found) const;
    void compare_node(const std::string &path, const NodeState &was, const NodeState &is,
                      std::vector<std::string> &found) const;
    [[nodiscard]] std::uint32_t allowed_flags(const NodeState &was) const;
    [[nodiscard]] bool got_its_key(const NodeState &was, const NodeState &is) const;
    [[nodiscard]] bool is_read() const;
    void compare_unlooked(const Picture &now, std::vector<std::string> &found) const;

    const Platform &platform_;
    yfw_map_ctx ctx_;
    Tolerance tolerance_;
    Picture before_;
};

} // namespace fake

#endif
