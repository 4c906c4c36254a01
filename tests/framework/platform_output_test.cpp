#include "framework/host/codes.hpp"
#include "framework_fixture.hpp"

namespace {

using ocpsm::framework::AddRecord;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char mda[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg";

class Output : public FrameworkFixture {
protected:
    kerrno add(kidl_yfw_datatree *tree, const char *path, const char *value, const kidl_yfw_datatree *source = nullptr,
               kidl_yfw_datatree **result = nullptr, uint32_t first = 0, uint32_t second = 0) {
        return yfw_map_datatree_add_path_flagged(&context, tree, path, mda, value, source, result, first, second);
    }

    // A record as "path|value|source|flags|relative|result", "-" for what is absent.
    std::vector<std::string> records() {
        std::vector<std::string> lines;
        for (const AddRecord &add : context.take_adds()) {
            EXPECT_EQ(add.namespace_uri, mda);
            lines.push_back(add.path + "|" + add.value.value_or("-") + "|" +
                            (add.source_operation ? std::to_string(*add.source_operation) : "-") + "|" +
                            std::to_string(add.first_flag) + std::to_string(add.second_flag) +
                            (add.relative ? "|relative|" : "|absolute|") + ocpsm::framework::name_of(add.result));
        }
        return lines;
    }
};

TEST_F(Output, AnAbsolutePathGoesToTheNativeRequest) {
    kidl_yfw_datatree source{};
    source.operation = 4;
    kidl_yfw_datatree *slot = &source;
    EXPECT_EQ(add(&context.destination(), "/active-nodes/active-node", nullptr, nullptr, &slot, 1, 0), KERR_SUCCESS);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(add(&context.destination(), "/active-nodes/active-node/node-name", "0/RP0/CPU0", &source, nullptr, 0, 1),
              KERR_SUCCESS);
    EXPECT_EQ(add(&context.destination(), "/active-nodes/active-node/node-name", ""), KERR_SUCCESS);
    EXPECT_THAT(records(), ElementsAre("/active-nodes/active-node|-|-|10|absolute|KERR_SUCCESS",
                                       "/active-nodes/active-node/node-name|0/RP0/CPU0|4|01|absolute|KERR_SUCCESS",
                                       "/active-nodes/active-node/node-name||-|00|absolute|KERR_SUCCESS"));
    EXPECT_FALSE(native.empty());
}

TEST_F(Output, APathThatNoNativeModelHasIsRefusedAndRecorded) {
    yfw_map_add_to_node_hierarchy(&context, &aps(), 1);
    EXPECT_EQ(add(&context.destination(), "/active-nodes/nothing", "1"), 0xaaf2c100U);
    EXPECT_THAT(records(), ElementsAre("/active-nodes/nothing|1|-|00|absolute|NATIVE_ERR_UNKNOWN_PATH"));
    EXPECT_TRUE(native.empty());
    EXPECT_EQ(context.own_refusal(), "/aps");
}

TEST_F(Output, AnAbsolutePathNeedsTheDestination) {
    EXPECT_EQ(add(&aps(), "/active-nodes", nullptr), 0xaaf30400U);
    EXPECT_TRUE(native.empty());
}

TEST_F(Output, ARelativePathIsOneStepBelowANodeOfTheRequest) {
    kidl_yfw_datatree source{};
    source.operation = 3;
    kidl_yfw_datatree *added = nullptr;
    EXPECT_EQ(add(&entry(0), "extra", nullptr, nullptr, &added), KERR_SUCCESS);
    ASSERT_EQ(entry(0).child_count, 3);
    EXPECT_EQ(added, &entry(0).children[2]);
    EXPECT_STREQ(added->tag, "extra");
    EXPECT_STREQ(added->namespace_uri, mda);
    EXPECT_EQ(added->value, nullptr);
    EXPECT_EQ(added->flags, 1U);
    EXPECT_EQ(add(&entry(0), "p:other", "x", &source, &added), KERR_SUCCESS);
    EXPECT_STREQ(added->tag, "other");
    EXPECT_STREQ(added->value, "x");
    EXPECT_EQ(added->flags, 3U);
    EXPECT_EQ(added->operation, 3U);
    EXPECT_STREQ(entry(0).children[0].value, "one");
    EXPECT_THAT(records(), ElementsAre("extra|-|-|00|relative|KERR_SUCCESS", "p:other|x|3|00|relative|KERR_SUCCESS"));
}

TEST_F(Output, ARelativePathTakesAnEqualNodeThatStandsThere) {
    kidl_yfw_datatree *first = nullptr;
    kidl_yfw_datatree *second = nullptr;
    EXPECT_EQ(add(&entry(0), "extra", nullptr, nullptr, &first), KERR_SUCCESS);
    EXPECT_EQ(add(&entry(0), "extra", nullptr, nullptr, &second), KERR_SUCCESS);
    EXPECT_EQ(first, second);
    EXPECT_EQ(entry(0).child_count, 3);
}

TEST_F(Output, ARelativePathOfSeveralStepsIsRefused) {
    kidl_yfw_datatree *added = &aps();
    EXPECT_EQ(add(&entry(0), "a/b", nullptr, nullptr, &added), 0xaaf30400U);
    EXPECT_EQ(added, nullptr);
    EXPECT_EQ(add(&entry(0), "", nullptr), 0xaaf30400U);
    EXPECT_EQ(entry(0).child_count, 2);
}

TEST_F(Output, NullArgumentsAreRefused) {
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(nullptr, &aps(), "a", mda, nullptr, nullptr, nullptr, 0, 0),
              0xaaf30400U);
    EXPECT_EQ(add(nullptr, "a", nullptr), 0xaaf30400U);
    EXPECT_EQ(add(&aps(), nullptr, nullptr), 0xaaf30400U);
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(&context, &aps(), "a", nullptr, nullptr, nullptr, nullptr, 0, 0),
              0xaaf30400U);
    EXPECT_THAT(records(), IsEmpty());
}

TEST_F(Output, FunctionNamesComeFromTheTrace) {
    context.switch_channels(false, true);
    _lstrace(context.trace_buffer, 0, "#1: TRC: ymap_o2n_m_lvla_leaf:1 ctx=0x1,Start");
    _lstrace(context.trace_buffer, 0, "#2: TRC: leaf_to_low:1 ctx=0x1,Start");
    (void)add(&context.destination(), "/active-nodes", nullptr);
    _lstrace(context.trace_buffer, 0, "#3: TRC: leaf_to_low:1 ctx=0x1,End");
    (void)add(&context.destination(), "/active-nodes", nullptr);
    context.switch_channels(false, false);
    (void)add(&context.destination(), "/active-nodes", nullptr);
    const std::vector<AddRecord> adds = context.take_adds();
    ASSERT_EQ(adds.size(), 3U);
    EXPECT_EQ(adds[0].walker + "," + adds[0].conversion, "ymap_o2n_m_lvla_leaf,leaf_to_low");
    EXPECT_EQ(adds[1].walker + "," + adds[1].conversion, "ymap_o2n_m_lvla_leaf,");
    EXPECT_EQ(adds[2].walker + "," + adds[2].conversion, ",");
}

TEST_F(Output, ChannelsAreSwitchedOnAndOff) {
    EXPECT_EQ(context.trace_enabled, 0U);
    EXPECT_EQ(context.debug_log_filter.enabled_levels, 0U);
    context.switch_channels(true, true);
    EXPECT_NE(context.trace_enabled, 0U);
    EXPECT_NE(yfw_debug_should_log(&context.debug_log_filter, 0), 0);
    EXPECT_NE(yfw_debug_should_log(&context.debug_log_filter, 3), 0);
    context.switch_channels(false, false);
    EXPECT_EQ(context.trace_enabled, 0U);
    EXPECT_EQ(yfw_debug_should_log(&context.debug_log_filter, 0), 0);
}

TEST_F(Output, NodeInfoIsTheInnermostKeyOfThatName) {
    const char *text = "before";
    EXPECT_EQ(yfw_map_get_node_info(&context, "/any", "name", &text), KERR_SUCCESS);
    EXPECT_EQ(text, nullptr);
    enter(1);
    EXPECT_EQ(yfw_map_get_node_info(&context, "/any", "name", &text), KERR_SUCCESS);
    EXPECT_STREQ(text, "it's");
    EXPECT_EQ(yfw_map_get_node_info(&context, "/any", "other", &text), KERR_SUCCESS);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(yfw_map_get_node_info(nullptr, "/any", "name", &text), 0xaaf30400U);
    EXPECT_EQ(yfw_map_get_node_info(&context, "/any", nullptr, &text), 0xaaf30400U);
    EXPECT_EQ(yfw_map_get_node_info(&context, "/any", "name", nullptr), 0xaaf30400U);
}

TEST_F(Output, OutputScopesNest) {
    yfw_add_to_output_list_ctx(&context, &aps(), &context.destination());
    yfw_add_to_output_list_ctx(&context, &entry(0), &context.destination());
    EXPECT_EQ(context.request->output_depth, 2U);
    EXPECT_EQ(context.output_count, 2U);
    EXPECT_EQ(context.output[1].node, &context.destination());
    EXPECT_EQ(context.output[1].key, &entry(0));
    yfw_remove_from_output_list_ctx(&context, &entry(0), &context.destination());
    yfw_remove_from_output_list_ctx(&context, &aps(), &context.destination());
    yfw_remove_from_output_list_ctx(&context, &aps(), &context.destination());
    EXPECT_EQ(context.request->output_depth, 0U);
}

TEST_F(Output, WhatNeedsAnAnswerFailsInARequest) {
    yfw_map_stitch_entry stitch{};
    EXPECT_EQ(context.request->module_list, nullptr);
    EXPECT_EQ(yfw_map_stitch_list_to_list(&context, &stitch), 0xaaf30600U);
    EXPECT_EQ(yfw_map_search_or_add_list(&context, &context.destination(), nullptr, "/aps/aps-modules/aps-module",
                                         "one", "name", openconfig.c_str()),
              0xaaf30600U);
}

TEST_F(Output, ATreeIsPrintedToTheTraceUnderItsLabel) {
    yfw_map_print_datatree_internal(&context, &entry(0), "off");
    yfw_map_print_datatree_internal(nullptr, &entry(0), "no context");
    context.switch_channels(false, true);
    yfw_map_print_datatree_internal(&context, &entry(0), "node_data");
    yfw_map_print_datatree_internal(&context, nullptr, "plist");
    std::vector<std::string> lines;
    for (const auto &line : channels.take_trace()) {
        lines.push_back(line.text);
    }
    EXPECT_THAT(lines, ElementsAre("node_data: aps-module [" + openconfig + "]",
                                   "node_data:   name = \"one\" [" + openconfig + "]",
                                   "node_data:   config [" + openconfig + "]",
                                   "node_data:     name = \"one\" [" + openconfig + "]", "plist: (none)"));
}

TEST_F(Output, ATreeThatDoesNotFitInTheTraceIsCounted) {
    context.switch_channels(false, true);
    _lstrace(context.trace_buffer, 0, std::string(64U << 20, 'x').c_str());
    yfw_map_print_datatree_internal(&context, &entry(0), "node_data");
    entry(0).children[1].flags &= ~YFW_NODE_IN_USE;
    yfw_map_print_datatree_internal(&context, &entry(0), "node_data");
    yfw_map_print_datatree_internal(&context, nullptr, "plist");
    const auto lines = channels.take_trace();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, "9 more lines are not kept: there is room for 64 MiB"); // 1, 4, 3 and 1
}

// ---- where native nodes come from ----

class NativeOrigins : public Output {
protected:
    // The origin of an add with this source, "*" behind one that is spread.
    std::string origin(const kidl_yfw_datatree *source = nullptr) {
        const std::uint32_t number = context.origin(source);
        const ocpsm::framework::Origin found = context.take_origins().at(number);
        return found.location + (found.spread ? "*" : "");
    }
    kidl_yfw_datatree &name() { return entry(0).children[0]; }
};

TEST_F(NativeOrigins, TheSourceOfAnAddIsTheNodeThatIsWalked) {
    EXPECT_EQ(origin(), "");
    enter(0);
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']");
    EXPECT_EQ(origin(&name()), "/aps/aps-modules/aps-module[name='one']/name");
    EXPECT_EQ(origin(&entry(0)), "/aps/aps-modules/aps-module[name='one']");
    EXPECT_EQ(origin(&modules()), "/aps/aps-modules");
    EXPECT_EQ(origin(&entry(1)), "/aps/aps-modules/aps-module[name='one']"); // no part of what is walked
}

TEST_F(NativeOrigins, ANodeThatWasAskedAboutIsWalkedUntilTheWalkGoesOn) {
    enter(0);
    yfw_map_is_request_delete(&name());
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']/name");
    EXPECT_EQ(origin(&modules()), "/aps/aps-modules"); // a source says more than a question
    yfw_map_is_request_delete(&entry(0));
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']");
    yfw_map_is_request_delete(&name());
    yfw_map_add_to_node_hierarchy(&context, &entry(0).children[1], 1);
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']/config");
    yfw_map_remove_from_node_hierarchy(&context, &entry(0).children[1]);
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']");
}

TEST_F(NativeOrigins, ChildrenThatAreHiddenAreNotWalked) {
    enter(0);
    kidl_yfw_datatree &leaf = name();
    entry(0).children = nullptr;
    context.request->whole_subtree_walk = 1;
    EXPECT_EQ(origin(&leaf), "/aps/aps-modules/aps-module[name='one']*");
    EXPECT_EQ(origin(&entry(0)), "/aps/aps-modules/aps-module[name='one']*");
    context.request->whole_subtree_walk = 0;
    EXPECT_EQ(origin(&entry(0)), "/aps/aps-modules/aps-module[name='one']");
}

TEST_F(NativeOrigins, EachHasOneNumber) {
    enter(0);
    const std::uint32_t first = context.origin(&name());
    const std::uint32_t second = context.origin(&entry(0));
    EXPECT_NE(first, second);
    EXPECT_EQ(context.origin(&name()), first);
    EXPECT_EQ(context.origin(&entry(0)), second);
}

TEST_F(NativeOrigins, AQuestionInAnotherContextIsForgotten) {
    enter(0);
    yfw_map_is_request_delete(&name());
    const ocpsm::framework::MappingContext next(YFW_KIND_EDIT_CONFIG, container("aps", {}), channels, native);
    EXPECT_EQ(origin(), "/aps/aps-modules/aps-module[name='one']");
}

TEST_F(NativeOrigins, AddsThatAreNotKeptLeaveTheFirstFailureOfEachCode) {
    context.keep_adds(false);
    EXPECT_EQ(add(&context.destination(), "/active-nodes", nullptr), KERR_SUCCESS);
    EXPECT_NE(add(&context.destination(), "/active-nodes/nothing", nullptr), KERR_SUCCESS);
    EXPECT_NE(add(&context.destination(), "/active-nodes/neither", nullptr), KERR_SUCCESS);
    EXPECT_NE(add(&context.destination(), "/active-nodes", "1"), KERR_SUCCESS);
    EXPECT_THAT(records(), ElementsAre("/active-nodes/nothing|-|-|00|absolute|NATIVE_ERR_UNKNOWN_PATH",
                                       "/active-nodes|1|-|00|absolute|NATIVE_ERR_UNEXPECTED_VALUE"));
    EXPECT_FALSE(native.empty());
}

} // namespace
