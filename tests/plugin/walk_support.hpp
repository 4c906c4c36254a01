// The base of the walk tests. It stands between the walkers and the callbacks that these call (the program is linked
// with --wrap for each), so that a test sees every call with its node and says what it returns, a container callback's
// result included, which the plug-in's own never makes fail.
#ifndef TESTS_PLUGIN_WALK_SUPPORT_HPP
#define TESTS_PLUGIN_WALK_SUPPORT_HPP

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "checker.hpp"
#include "exports.hpp"
#include "fake_platform.hpp"
#include "request.hpp"
#include "tree.hpp"

namespace walk {

using fake::container;
using fake::leaf;
using fake::Node;
using fake::Tree;
using Lines = std::vector<std::string>;

inline constexpr std::uint32_t get_config = 0;
inline constexpr std::uint32_t edit = 1;
inline constexpr std::uint32_t get = 10;

// A code that no one but a test returns.
inline constexpr kerrno some_failure = 0x5151;

// An entry of the list with its key first; without a key.
[[nodiscard]] Node module(std::string key, std::vector<Node> children = {});
[[nodiscard]] Node bare_module(std::vector<Node> children = {});
// aps/aps-modules with these entries.
[[nodiscard]] Node aps(std::vector<Node> modules);

// Every walker by the end of its name.
[[nodiscard]] const Lines &walker_suffixes();

class WalkTest : public fake::RequestTest {
public:
    ~WalkTest() override;

protected:
    WalkTest();
    void TearDown() override;

    // Calls a walker with a node and "dest", and lets the checker say what the walk should not have left behind.
    kerrno walk(const std::string &suffix, kidl_yfw_datatree *node);
    kerrno walk(const std::string &suffix, Tree &tree) { return walk(suffix, tree.root()); }

    // Leaf and list callbacks run for real, with their conversions. Else they merely return zero or what is scripted;
    // container callbacks and hooks always run.
    void use_conversions() { conversions_run_ = true; }

    // What happened, in order: "+lvla_aps" and "-lvla_aps" (a walker's Start and End), "cont_lvla_aps(aps, 1)" (a
    // callback with its node, a container's with the child count), "lvla_aps_parse_augments(aps)", the platform's walk
    // operations without their context, "ERR lvla_aps: text" and "TRC lvla_aps: text" (other messages of walkers).
    [[nodiscard]] Lines story() const;
    // The callbacks of the story alone; the adds.
    [[nodiscard]] Lines callbacks() const { return platform.calls(fake::Callbacks); }
    [[nodiscard]] Lines adds() const { return platform.calls(fake::Output); }
    // The platform's walk operations alone, without questions for the height of the stack.
    [[nodiscard]] Lines operations() const;
    // Messages other than Start and End of walkers: "ERR lvla_aps: text".
    [[nodiscard]] Lines messages() const;

    // From now on every callback leaves a line in `samples`: its name and the state of this node and of the request,
    // "cont_lvla_aps: op 4 rewritten children 0 | whole 0 delete 0 replace 64 marker 1 selection 0x0".
    void sample(const kidl_yfw_datatree *node) { sampled_ = node; }
    Lines samples;

private:
    friend struct Between;
    static WalkTest *current_;
    void note(const std::string &callback);

    bool conversions_run_ = false;
    const kidl_yfw_datatree *sampled_ = nullptr;
};

// A line of the story: "cont_lvla_aps(aps, 1)".
[[nodiscard]] std::string called(const std::string &callback, const std::string &arguments);
// A path and a step below it.
[[nodiscard]] std::string below(const std::string &path, const std::string &step);
// A line of `samples`.
[[nodiscard]] std::string sampled(const char *callback, const char *node, const char *request);

// Channels that say the same: each log line is followed by its twin on the trace.
[[nodiscard]] std::string channel_difference(const Lines &lines);

} // namespace walk

#endif
