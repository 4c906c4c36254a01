// The base of the tests of the walk of native answers. It stands between the walkers and the callbacks that these call
// (the program is linked with --wrap for each), so that a test sees every call with its node and says what it returns,
// a container callback's result included, which the plug-in's own never makes fail.
#ifndef TESTS_PLUGIN_NATIVE_SUPPORT_HPP
#define TESTS_PLUGIN_NATIVE_SUPPORT_HPP

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "exports.hpp"
#include "fake_platform.hpp"
#include "native_rows.hpp"
#include "request.hpp"
#include "tree.hpp"

namespace native_test {

using fake::container;
using fake::leaf;
using fake::Node;
using fake::Tree;

inline constexpr kerrno invalid_arguments = 0xaaf2a000;
inline constexpr kerrno bad_tree = 0xaaf29e00;
inline constexpr kerrno skip = 0xaaf2f600;

// A code that no one but a test returns.
inline constexpr kerrno some_failure = 0x5151;

// All nodes of the description that were given no namespace of their own are put into this one.
[[nodiscard]] Node in_model(Node node, const std::string &namespace_uri);
// The node of a walker in its model's namespace. A leaf has the value 1.
[[nodiscard]] Node node_of(const Walker &walker, std::vector<Node> children = {});

// ---- expected stories (see NativeTest::story), written from the rules of the walk ----

// The walk of a node, `body` being what its children come to; a list entry and its scope.
[[nodiscard]] Lines container_story(const Walker &walker, const std::string &node, std::size_t children,
                                    const Lines &body = {});
[[nodiscard]] Lines list_story(const Walker &walker, const std::string &node, const Lines &body = {});
[[nodiscard]] Lines leaf_story(const Walker &walker, const std::string &node);
// The walk of a node of any of these kinds that has no children.
[[nodiscard]] Lines bare_story(const Walker &walker, const std::string &node);
[[nodiscard]] std::string unsupported(const Walker &walker, const std::string &tag);

void append(Lines &lines, const Lines &more);

class NativeTest : public fake::RequestTest {
public:
    ~NativeTest() override;

protected:
    NativeTest(); // a read of kind 10
    void TearDown() override;

    // Calls a walker with a node and "dest", and looks at what it leaves behind.
    kerrno walk(const std::string &suffix, const kidl_yfw_datatree *node);
    kerrno walk(const std::string &suffix, Tree &tree) { return walk(suffix, tree.root()); }

    // What the last walk changed: "slot/slot-id: key" for a key that was marked, "request: xpath error", and anything
    // else, which walk() itself takes as a failure.
    [[nodiscard]] const Lines &changes() const { return changes_; }

    // Leaf and list callbacks run for real, with their conversions. Else they merely return zero or what is scripted;
    // container callbacks always run.
    void use_conversions() { conversions_run_ = true; }
    // yfw_map_get_node_info finds the key of the innermost entry on the hierarchy, as the framework's does.
    void look_up_in_hierarchy();
    // yfw_map_get_node_info returns this although it gives a text.
    std::optional<kerrno> lookup_result;
    // Runs when a callback is called, before it.
    std::function<void(const std::string &callback)> on_callback;

    // What happened, in order: "+lvla_optics" and "-lvla_optics" (a walker's Start and End), "cont_lvla_optics(node,
    // 1)" (a callback with its node, a container's with the child count), the platform's walk and output operations
    // without their context, "ERR lvla_optics: text" and "TRC lvla_optics: text" (other messages of walkers).
    [[nodiscard]] Lines story() const;
    [[nodiscard]] Lines callbacks() const { return platform.calls(fake::Callbacks); }
    // The platform's output operations but the lookups, without their context.
    [[nodiscard]] Lines output() const;
    // Messages other than Start and End of walkers: "ERR lvla_optics: text".
    [[nodiscard]] Lines messages() const;
    [[nodiscard]] std::vector<std::string> levels() const; // of the hierarchy: "optics 1"

    // The database has a module in these slots.
    void put_inventory(const std::string &slot);

private:
    friend struct Between;
    friend struct Lookup;
    struct Picture {
        std::map<std::string, std::pair<const kidl_yfw_datatree *, kidl_yfw_datatree>> nodes;
        Lines levels;
        yfw_map_request request;
        yfw_map_context context;
    };
    [[nodiscard]] Picture take() const;
    [[nodiscard]] Lines differences(const Picture &before, const Picture &after) const;

    static NativeTest *current_;
    bool conversions_run_ = false;
    Lines changes_;
};

} // namespace native_test

#endif
