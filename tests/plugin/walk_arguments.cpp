// What every walker does before it looks at anything: the context, the node, the destination.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char parser[] = "manageability/yang/framework/mapping/oc-psm/src/"
                          "ymap_oc_opt_psm_openconfig_transport_line_protection_parser";

std::string escaped(const std::string &text) {
    std::string result;
    for (const char character : text) {
        if (std::string("()*+.[]?{}|^$\\").find(character) != std::string::npos) {
            result += '\\';
        }
        result += character;
    }
    return result;
}

TEST(WalkNames, AreAllWalkersOfTheModel) {
    EXPECT_EQ(walker_suffixes().size(), 79u);
}

class WalkArguments : public WalkTest {
protected:
    void expect_refused(const std::string &suffix, kidl_yfw_datatree *node, kidl_yfw_datatree *destination) {
        SCOPED_TRACE(suffix);
        request.set_error_node("kept");
        platform.forget();
        const fake::Checker checker(platform, request.ctx());
        EXPECT_EQ(fake::walker(suffix)(request.ctx(), node, destination), 0xaaf2a000u);
        EXPECT_EQ(checker.differences(), Lines{});
        // Start, the error, the location; no End.
        EXPECT_EQ(story(), (Lines{"+" + suffix, "ERR " + suffix + ": Invalid arguments passed!", "error_path()"}));
        EXPECT_EQ(platform.calls(fake::Log), (Lines{"log TRC Start", "log ERR Invalid arguments passed!"}));
        EXPECT_EQ(request.error_node(), "kept");
    }
};

TEST_F(WalkArguments, MissingNodeIsRefusedByEveryWalker) {
    for (const std::string &suffix : walker_suffixes()) {
        expect_refused(suffix, nullptr, dest);
    }
}

TEST_F(WalkArguments, MissingDestinationIsRefusedByEveryWalker) {
    kidl_yfw_datatree *const node = build(container("node")).root();
    for (const std::string &suffix : walker_suffixes()) {
        expect_refused(suffix, node, nullptr);
    }
}

TEST_F(WalkArguments, NoSequenceNumberIsDrawnWithoutTrace) {
    request.set_channels(true, false);
    for (const std::string &suffix : walker_suffixes()) {
        SCOPED_TRACE(suffix);
        platform.forget();
        EXPECT_EQ(fake::walker(suffix)(request.ctx(), nullptr, dest), 0xaaf2a000u);
        EXPECT_EQ(platform.count("trace_index"), 0u);
        EXPECT_EQ(platform.calls(fake::Channels), (Lines{"log TRC Start", "log ERR Invalid arguments passed!"}));
    }
}

TEST_F(WalkArguments, MissingContextAbortsEveryWalker) {
    kidl_yfw_datatree *const node = build(container("node")).root();
    for (const std::string &suffix : walker_suffixes()) {
        SCOPED_TRACE(suffix);
        const std::string prototype = "kerrno " + (fake::callback_prefix + suffix) +
                                      "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *)";
        const std::string message =
            escaped(parser) + ":[0-9]+: " + escaped(prototype + ": Assertion `((void *)0) != ctx' failed.");
        EXPECT_DEATH(static_cast<void>(fake::walker(suffix)(nullptr, node, dest)), message);
        // The context is looked at before the node.
        EXPECT_DEATH(static_cast<void>(fake::walker(suffix)(nullptr, nullptr, dest)), message);
    }
}

} // namespace
} // namespace walk
