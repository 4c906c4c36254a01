// The node callbacks and augment hooks: whom they call, what they refuse, and their contract.
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "callback_names.hpp"
#include "exports.hpp"
#include "request.hpp"

namespace {

using namespace callback_test;
using Lines = std::vector<std::string>;

constexpr kerrno invalid_arguments = 0xaaf2a000;
constexpr kerrno unsupported = 0xaaf2ee00;
constexpr kerrno skip = 0xaaf2f600;
constexpr kerrno augment_unsupported = 0xaaf2f800;

std::string whole(const std::string &suffix) {
    return "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_" + suffix;
}

class CallbackTest : public fake::RequestTest {
protected:
    CallbackTest() : leaf_(build(fake::leaf("the-leaf", "0/2-PSM-OM"), "source").root()) {
        request.set_list_entry(fake::container("aps-module", {fake::leaf("name", "0/2-PSM-OM")}));
    }

    // Both channels: a line each.
    static Lines traced(const std::string &function, const std::string &text, unsigned number) {
        return {"log TRC " + text, "trace TRC #" + std::to_string(number) + " " + function + " " + text};
    }

    static Lines refused_arguments(const std::string &function, unsigned number) {
        return {"log ERR Invalid arguments passed!",
                "trace ERR #" + std::to_string(number) + " " + function + " Invalid arguments passed!",
                "error_path(ctx)"};
    }

    static void append(Lines &lines, const Lines &more) { lines.insert(lines.end(), more.begin(), more.end()); }

    // Every call since the last one, the numbers of the trace counted from one.
    void start() {
        platform.forget();
        first_number_ = platform.last_sequence_number() + 1;
    }

    [[nodiscard]] unsigned number(unsigned nth) const { return first_number_ + nth - 1; }

    // All calls but the questions for the filter and a release of nothing.
    [[nodiscard]] Lines calls() const {
        Lines all;
        for (const std::string &line : platform.calls(fake::Everything & ~fake::Filter)) {
            if (line != "named_free(null)") {
                all.push_back(line);
            }
        }
        return all;
    }

    kidl_yfw_datatree *leaf_;

private:
    unsigned first_number_ = 1;
};

// ---- containers ----

TEST_F(CallbackTest, AContainerIsTracedAndThatIsAll) {
    for (const char *suffix : containers) {
        for (const unsigned children : {0u, 1u, std::numeric_limits<unsigned>::max()}) {
            start();
            EXPECT_EQ(fake::container_callback(suffix)(request.ctx(), leaf_, children, dest), KERR_SUCCESS) << suffix;
            EXPECT_EQ(calls(), traced(whole(suffix), "Start", number(1)));
        }
    }
    EXPECT_EQ(dest->child_count, 0);
}

TEST_F(CallbackTest, AContainerWithoutNodeOrDestinationIsRefused) {
    struct Arguments {
        const kidl_yfw_datatree *source;
        kidl_yfw_datatree *destination;
    };
    for (const char *suffix : containers) {
        for (const Arguments &given : {Arguments{nullptr, dest}, Arguments{leaf_, nullptr}, Arguments{}}) {
            start();
            EXPECT_EQ(fake::container_callback(suffix)(request.ctx(), given.source, 1, given.destination),
                      invalid_arguments)
                << suffix;
            Lines expected = traced(whole(suffix), "Start", number(1));
            append(expected, refused_arguments(whole(suffix), number(2)));
            EXPECT_EQ(calls(), expected);
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

// ---- the list ----

class ListCallback : public CallbackTest {
protected:
    kidl_yfw_datatree *entry(std::uint32_t operation = 0) {
        return build(fake::container("aps-module", {fake::leaf("name", "0/2-PSM-OM")}).with_operation(operation),
                     "entry")
            .root();
    }

    [[nodiscard]] Lines spoken() const { return platform.calls(fake::Trace | fake::Questions | fake::Output); }

    [[nodiscard]] std::string traced_by(const std::string &function, const std::string &text, unsigned nth) const {
        return "trace TRC #" + std::to_string(number(nth)) + " " + function + " " + text;
    }

    // A result other than zero ends the callback: the entry is not asked for its operation.
    void expect_passed_on(kerrno failure) {
        request.set_kind(YFW_KIND_GET);
        platform.answer("add", failure, 0, "/number\"");
        start();
        EXPECT_EQ(fake::callback(list)(request.ctx(), entry(), dest), failure);
        EXPECT_EQ(platform.count("is_request_delete"), 1u) << "the conversion's own question, and no other";
        EXPECT_EQ(platform.count("error_path"), 0u);
        EXPECT_EQ(spoken().back(), traced_by("oc_aps_cfg_psm_list_to_low", "End", 6));
    }
};

TEST_F(ListCallback, TheEntryGoesToItsConversionAndIsAskedForItsOperation) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    platform.answer("is_request_delete", 0, 1);
    platform.answer("is_request_delete", 1, 2);
    start();
    EXPECT_EQ(fake::callback(list)(request.ctx(), entry(), dest), KERR_SUCCESS);
    EXPECT_EQ(spoken(), (Lines{traced_by(whole(list), "Start", 1), traced_by("oc_aps_cfg_psm_list_to_low", "Start", 2),
                               traced_by("oc_aps_cfg_psm_list_to_low", "key 0/2-PSM-OM", 3), "is_request_delete(entry)",
                               traced_by("oc_aps_cfg_psm_list_to_low", "merge request", 4),
                               traced_by("oc_aps_cfg_psm_list_to_low", "End", 5), "is_request_delete(entry)"}));
}

TEST_F(ListCallback, AFailureOfTheConversionIsPassedOnUnchanged) {
    expect_passed_on(0x12345678);
}

TEST_F(ListCallback, ASkipIsPassedOnToTheWalk) {
    expect_passed_on(skip);
}

TEST_F(ListCallback, WithoutNodeOrDestinationItIsRefused) {
    kidl_yfw_datatree *const there = entry();
    struct Arguments {
        const kidl_yfw_datatree *source;
        kidl_yfw_datatree *destination;
    };
    for (const Arguments &given : {Arguments{nullptr, dest}, Arguments{there, nullptr}, Arguments{}}) {
        start();
        EXPECT_EQ(fake::callback(list)(request.ctx(), given.source, given.destination), invalid_arguments);
        Lines expected = traced(whole(list), "Start", number(1));
        append(expected, refused_arguments(whole(list), number(2)));
        EXPECT_EQ(calls(), expected);
    }
}

// ---- leaves ----

class LeafCallback : public CallbackTest {};

// The conversion is known by the function name of its messages; it gets the callback's own arguments.
TEST_F(LeafCallback, AMappedLeafGoesToItsConversion) {
    for (const MappedLeaf &leaf : mapped_leaves) {
        SCOPED_TRACE(leaf.callback);
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            platform.forget();
            EXPECT_EQ(fake::callback(leaf.callback)(request.ctx(), leaf_, dest), KERR_SUCCESS);
            ASSERT_GE(platform.traced().size(), 2u);
            EXPECT_EQ(platform.traced().front().function, leaf.conversion);
            EXPECT_EQ(platform.traced().front().text, "Start");
            EXPECT_EQ(platform.traced().back().function, leaf.conversion);
            EXPECT_EQ(platform.traced().back().text, "End");
            const Lines through_callback = platform.calls(fake::Everything & ~(fake::Trace | fake::Filter));
            platform.forget();
            leaf_->flags &= ~YFW_NODE_OPERATION_REWRITTEN;
            fake::conversion(leaf.conversion)(request.ctx(), leaf_, dest);
            EXPECT_EQ(platform.calls(fake::Everything & ~(fake::Trace | fake::Filter)), through_callback);
        }
    }
}

TEST_F(LeafCallback, TheResultOfTheConversionIsPassedOnUnchanged) {
    platform.answer("add", 0x12345678);
    for (const MappedLeaf &leaf : mapped_leaves) {
        platform.forget();
        EXPECT_EQ(fake::callback(leaf.callback)(request.ctx(), leaf_, dest), 0x12345678u) << leaf.callback;
        EXPECT_EQ(platform.count("error_path"), 0u);
        EXPECT_EQ(request.error_node(), "none");
    }
}

TEST_F(LeafCallback, WithoutNodeOrDestinationEveryLeafIsRefused) {
    std::vector<std::string> all(refused_leaves.begin(), refused_leaves.end());
    for (const MappedLeaf &leaf : mapped_leaves) {
        all.emplace_back(leaf.callback);
    }
    ASSERT_EQ(all.size(), 54u);
    struct Arguments {
        const kidl_yfw_datatree *source;
        kidl_yfw_datatree *destination;
    };
    for (const std::string &suffix : all) {
        for (const Arguments &given : {Arguments{nullptr, dest}, Arguments{leaf_, nullptr}, Arguments{}}) {
            start();
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), given.source, given.destination), invalid_arguments);
            EXPECT_EQ(calls(), refused_arguments(whole(suffix), number(1)));
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

// ---- refused leaves ----

class RefusedLeaf : public CallbackTest {};

TEST_F(RefusedLeaf, RaisesTheLocationThenNamesTheLeaf) {
    for (const char *suffix : refused_leaves) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            request.set_error_node("earlier");
            start();
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), unsupported) << suffix;
            EXPECT_EQ(calls(),
                      (Lines{"error_path(ctx)", "named_free(\"earlier\")", "strdup(\"the-leaf\", \"the-leaf\")"}));
            EXPECT_EQ(request.error_node(), "the-leaf");
            EXPECT_EQ(platform.heap(), Lines{"the-leaf (the-leaf)"});
        }
    }
}

TEST_F(RefusedLeaf, NamesTheLeafWhereNoNameStands) {
    for (const char *suffix : refused_leaves) {
        platform.release(std::exchange(request.state.error_node_name, nullptr));
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), unsupported) << suffix;
        EXPECT_EQ(calls(), (Lines{"error_path(ctx)", "strdup(\"the-leaf\", \"the-leaf\")"}));
        EXPECT_EQ(request.error_node(), "the-leaf");
    }
}

TEST_F(RefusedLeaf, ALeafWithoutTagClearsTheName) {
    kidl_yfw_datatree *const untagged = build(fake::leaf("x", "1").untagged(), "untagged").root();
    for (const char *suffix : refused_leaves) {
        request.set_error_node("earlier");
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), untagged, dest), unsupported) << suffix;
        EXPECT_EQ(calls(), (Lines{"error_path(ctx)", "named_free(\"earlier\")"}));
        EXPECT_EQ(request.error_node(), "none");
    }
}

TEST_F(RefusedLeaf, ATagMayHaveAnyLength) {
    const std::string tag = std::string(5000, 't') + "%s";
    kidl_yfw_datatree *const tagged = build(fake::leaf(tag, "1"), "tagged").root();
    for (const char *suffix : refused_leaves) {
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), tagged, dest), unsupported) << suffix;
        EXPECT_EQ(request.error_node(), tag);
    }
}

TEST_F(RefusedLeaf, WithoutRequestOrContextOnlyTheLocationIsRaised) {
    request.context.request = nullptr;
    for (const char *suffix : refused_leaves) {
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), unsupported) << suffix;
        EXPECT_EQ(calls(), Lines{"error_path(ctx)"});
        start();
        EXPECT_EQ(fake::callback(suffix)(nullptr, leaf_, dest), unsupported) << suffix;
        EXPECT_EQ(calls(), Lines{"error_path(null)"});
    }
    request.context.request = &request.state;
}

// ---- augment hooks ----

class AugmentHook : public CallbackTest {};

TEST_F(AugmentHook, AReadPassesAugmentingDataOver) {
    for (const char *suffix : hooks) {
        for (const std::uint32_t kind : {0u, 10u}) {
            request.set_kind(kind);
            start();
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), KERR_SUCCESS) << suffix;
            EXPECT_EQ(calls(), Lines{"is_request_add(ctx, source, dest)"});
        }
    }
}

TEST_F(AugmentHook, ADeletePassesAugmentingDataOver) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    for (const std::uint32_t operation : {3u, 4u}) {
        leaf_->operation = operation;
        for (const char *suffix : hooks) {
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), KERR_SUCCESS) << suffix;
            EXPECT_EQ(request.error_node(), "none");
        }
    }
}

TEST_F(AugmentHook, AnAddIsRefusedByNameThenByLocation) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    for (const char *suffix : hooks) {
        for (const std::uint32_t operation : {0u, 1u, 2u}) {
            leaf_->operation = operation;
            request.set_error_node("earlier");
            start();
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), augment_unsupported) << suffix;
            EXPECT_EQ(calls(), (Lines{"is_request_add(ctx, source, dest)", "named_free(\"earlier\")",
                                      "strdup(\"the-leaf\", \"YFW MAP\")", "error_path(ctx)"}));
            EXPECT_EQ(platform.heap(), Lines{"the-leaf (YFW MAP)"});
        }
    }
}

TEST_F(AugmentHook, NamesTheNodeWhereNoNameStands) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    for (const char *suffix : hooks) {
        platform.release(std::exchange(request.state.error_node_name, nullptr));
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), augment_unsupported) << suffix;
        EXPECT_EQ(calls(),
                  (Lines{"is_request_add(ctx, source, dest)", "strdup(\"the-leaf\", \"YFW MAP\")", "error_path(ctx)"}));
        EXPECT_EQ(request.error_node(), "the-leaf");
    }
}

TEST_F(AugmentHook, ANodeWithoutTagClearsTheName) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    kidl_yfw_datatree *const untagged = build(fake::leaf("x", "1").untagged(), "untagged").root();
    for (const char *suffix : hooks) {
        request.set_error_node("earlier");
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), untagged, dest), augment_unsupported) << suffix;
        EXPECT_EQ(calls(),
                  (Lines{"is_request_add(ctx, untagged, dest)", "named_free(\"earlier\")", "error_path(ctx)"}));
        EXPECT_EQ(request.error_node(), "none");
    }
}

TEST_F(AugmentHook, ATagMayHaveAnyLength) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    const std::string tag(5000, 't');
    kidl_yfw_datatree *const tagged = build(fake::leaf(tag, "1"), "tagged").root();
    for (const char *suffix : hooks) {
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), tagged, dest), augment_unsupported) << suffix;
        EXPECT_EQ(request.error_node(), tag);
    }
}

// Whether the request adds is the framework's to say, also where it has no context or no record of the request.
TEST_F(AugmentHook, WithoutRequestOrContextOnlyTheLocationIsRaised) {
    platform.answer("is_request_add", 1);
    request.context.request = nullptr;
    for (const char *suffix : hooks) {
        start();
        EXPECT_EQ(fake::callback(suffix)(request.ctx(), leaf_, dest), augment_unsupported) << suffix;
        EXPECT_EQ(calls(), (Lines{"is_request_add(ctx, source, dest)", "error_path(ctx)"}));
        start();
        EXPECT_EQ(fake::callback(suffix)(nullptr, leaf_, dest), augment_unsupported) << suffix;
        EXPECT_EQ(calls(), (Lines{"is_request_add(null, source, dest)", "error_path(null)"}));
    }
    request.context.request = &request.state;
}

TEST_F(AugmentHook, WithoutContextNoEditIsKnown) {
    for (const char *suffix : hooks) {
        start();
        EXPECT_EQ(fake::callback(suffix)(nullptr, leaf_, dest), KERR_SUCCESS) << suffix;
        EXPECT_EQ(calls(), Lines{"is_request_add(null, source, dest)"});
    }
}

TEST_F(AugmentHook, WithoutNodeOrDestinationItIsRefused) {
    struct Arguments {
        const kidl_yfw_datatree *source;
        kidl_yfw_datatree *destination;
    };
    for (const char *suffix : hooks) {
        for (const Arguments &given : {Arguments{nullptr, dest}, Arguments{leaf_, nullptr}, Arguments{}}) {
            start();
            EXPECT_EQ(fake::callback(suffix)(request.ctx(), given.source, given.destination), invalid_arguments);
            EXPECT_EQ(calls(), refused_arguments(whole(suffix), number(1)));
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

// ---- channels ----

class CallbackChannels : public CallbackTest {};

TEST_F(CallbackChannels, ARefusalIsSilentWhenNothingListens) {
    request.set_channels(false, false);
    start();
    EXPECT_EQ(fake::callback("leaf_lvla_aps_config_name")(request.ctx(), nullptr, dest), invalid_arguments);
    EXPECT_EQ(fake::callback("lvla_aps_parse_augments")(request.ctx(), nullptr, dest), invalid_arguments);
    EXPECT_EQ(fake::callback(list)(request.ctx(), nullptr, dest), invalid_arguments);
    EXPECT_EQ(fake::container_callback("cont_lvla_aps")(request.ctx(), nullptr, 0, dest), invalid_arguments);
    EXPECT_EQ(calls(), (Lines{"error_path(ctx)", "error_path(ctx)", "error_path(ctx)", "error_path(ctx)"}));
    EXPECT_EQ(platform.count("trace_index"), 0u);
}

TEST_F(CallbackChannels, EachChannelSpeaksForItself) {
    request.set_channels(true, false);
    start();
    fake::callback("leaf_lvla_aps_config_name")(request.ctx(), nullptr, dest);
    EXPECT_EQ(calls(), (Lines{"log ERR Invalid arguments passed!", "error_path(ctx)"}));
    EXPECT_EQ(platform.count("trace_index"), 0u);
    EXPECT_EQ(platform.logged().front().format, "ERR: YFW: ctx=%p,Invalid arguments passed!");
    EXPECT_EQ(platform.logged().front().handle, request.context.error_log);
    request.set_channels(false, true);
    start();
    fake::callback("leaf_lvla_aps_config_name")(request.ctx(), nullptr, dest);
    EXPECT_EQ(calls(), (Lines{"trace ERR #" + std::to_string(number(1)) + " " + whole("leaf_lvla_aps_config_name") +
                                  " Invalid arguments passed!",
                              "error_path(ctx)"}));
    EXPECT_EQ(platform.count("trace_index"), 1u);
}

// ---- a missing context ----

// The whole of what glibc prints behind the program's name, but for the line number.
::testing::Matcher<const std::string &> assertion(const std::string &file, const std::string &prototype) {
    return ::testing::AllOf(::testing::HasSubstr(": manageability/yang/framework/mapping/oc-psm/src/"
                                                 "ymap_oc_opt_psm_openconfig_transport_line_protection_" +
                                                 file + ":"),
                            ::testing::HasSubstr(": kerrno " + prototype + ": Assertion `((void *)0) != ctx' failed."));
}

std::string plain_prototype(const std::string &function) {
    return function + "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *)";
}

std::string container_prototype(const std::string &function) {
    return function + "(yfw_map_ctx, const struct kidl_yfw_datatree *, unsigned int, struct kidl_yfw_datatree *)";
}

using CallbackDeathTest = CallbackTest;

TEST_F(CallbackDeathTest, AContainerAssertsItsContextFirst) {
    for (const char *suffix : containers) {
        const auto expected = assertion("auto", container_prototype(whole(suffix)));
        EXPECT_DEATH(fake::container_callback(suffix)(nullptr, leaf_, 0, dest), expected) << suffix;
        EXPECT_DEATH(fake::container_callback(suffix)(nullptr, nullptr, 0, nullptr), expected) << suffix;
    }
}

TEST_F(CallbackDeathTest, TheListAssertsItsContextFirst) {
    const auto expected = assertion("auto", plain_prototype(whole(list)));
    EXPECT_DEATH(fake::callback(list)(nullptr, leaf_, dest), expected);
    EXPECT_DEATH(fake::callback(list)(nullptr, nullptr, nullptr), expected);
}

// A leaf callback does not look at the context: its conversion does.
TEST_F(CallbackDeathTest, AMappedLeafReachesItsConversionWithoutAContext) {
    for (const MappedLeaf &leaf : mapped_leaves) {
        EXPECT_DEATH(fake::callback(leaf.callback)(nullptr, leaf_, dest),
                     assertion("man", plain_prototype(leaf.conversion)))
            << leaf.callback;
    }
}

TEST_F(CallbackDeathTest, ALeafWithoutNodeAssertsItsContext) {
    for (const MappedLeaf &leaf : mapped_leaves) {
        EXPECT_DEATH(fake::callback(leaf.callback)(nullptr, nullptr, dest),
                     assertion("auto", plain_prototype(whole(leaf.callback))))
            << leaf.callback;
    }
    for (const char *suffix : refused_leaves) {
        const auto expected = assertion("auto", plain_prototype(whole(suffix)));
        EXPECT_DEATH(fake::callback(suffix)(nullptr, nullptr, dest), expected) << suffix;
        EXPECT_DEATH(fake::callback(suffix)(nullptr, leaf_, nullptr), expected) << suffix;
    }
}

TEST_F(CallbackDeathTest, AHookWithoutNodeAssertsItsContext) {
    for (const char *suffix : hooks) {
        const auto expected = assertion("augment_man", plain_prototype(whole(suffix)));
        EXPECT_DEATH(fake::callback(suffix)(nullptr, nullptr, dest), expected) << suffix;
        EXPECT_DEATH(fake::callback(suffix)(nullptr, leaf_, nullptr), expected) << suffix;
    }
}

} // namespace
