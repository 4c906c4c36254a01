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

class EveryWalker : public WalkTest, public ::testing::WithParamInterface<std::string> {
protected:
    void expect_refused(kidl_yfw_datatree *node, kidl_yfw_datatree *destination) {
        const fake::Checker checker(platform, request.ctx());
        EXPECT_EQ(fake::walker(GetParam())(request.ctx(), node, destination), 0xaaf2a000u);
        EXPECT_EQ(checker.differences(), Lines{});
        // Start, the error, the location; no End.
        EXPECT_EQ(story(), (Lines{"+" + GetParam(), "ERR " + GetParam() + ": Invalid arguments passed!", "error_path()"}));
        EXPECT_EQ(platform.calls(fake::Log), (Lines{"log TRC Start", "log ERR Invalid arguments passed!"}));
        EXPECT_EQ(request.error_node(), "kept");
    }
};

TEST_P(EveryWalker, RefusesAMissingNode) {
    request.set_error_node("kept");
    expect_refused(nullptr, dest);
}

TEST_P(EveryWalker, RefusesAMissingDestination) {
    request.set_error_node("kept");
    expect_refused(build(container("node")).root(), nullptr);
}

TEST_P(EveryWalker, DrawsNoSequenceNumberWithoutTrace) {
    request.set_channels(true, false);
    EXPECT_EQ(fake::walker(GetParam())(request.ctx(), nullptr, dest), 0xaaf2a000u);
    EXPECT_EQ(platform.count("trace_index"), 0u);
    EXPECT_EQ(platform.calls(fake::Channels), (Lines{"log TRC Start", "log ERR Invalid arguments passed!"}));
}

TEST_P(EveryWalker, AbortsWithoutAContext) {
    const std::string prototype = "kerrno " + (fake::callback_prefix + GetParam()) +
                                  "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *)";
    const kidl_yfw_datatree *const node = build(container("node")).root();
    EXPECT_DEATH(static_cast<void>(fake::walker(GetParam())(nullptr, node, dest)),
                 escaped(parser) + ":[0-9]+: " + escaped(prototype + ": Assertion `((void *)0) != ctx' failed."));
}

std::string suffix_of(const ::testing::TestParamInfo<std::string> &info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(Walk, EveryWalker, ::testing::ValuesIn(walker_suffixes()), suffix_of);

} // namespace
} // namespace walk
