#include "framework/host/codes.hpp"
#include "framework_fixture.hpp"

namespace {

constexpr char list_path[] = "/aps/aps-modules/aps-module";

class WalkServices : public FrameworkFixture {
protected:
    std::string location() {
        yfw_oc_error_path(&context);
        return context.error_path().value_or("none");
    }

    // The key of the current entry of a list, "none" without one; `listed` after an update for a list.
    std::string current() const {
        const kidl_yfw_datatree *entry = context.request->list_node;
        return entry == nullptr ? "none" : entry->children[0].value;
    }
    std::string listed(const char *path = list_path) {
        EXPECT_EQ(yfw_map_update_current_list_node(&context, path), KERR_SUCCESS);
        return current();
    }
};

TEST_F(WalkServices, TheHierarchyShowsItsLevels) {
    enter(0);
    const yfw_map_request &request = *context.request;
    ASSERT_EQ(request.hierarchy_length, 3U);
    EXPECT_EQ(request.hierarchy[0].node, &aps());
    EXPECT_EQ(request.hierarchy[0].kind, 1U);
    EXPECT_EQ(request.hierarchy[2].node, &entry(0));
    EXPECT_EQ(request.hierarchy[2].kind, 2U);
    EXPECT_EQ(context.current_node, &entry(0));
    EXPECT_EQ(context.parent_node, &modules());
    EXPECT_EQ(context.root_node, &aps());
    EXPECT_FALSE(context.at_rest());
    yfw_map_remove_from_node_hierarchy(&context, &entry(0));
    yfw_map_remove_from_node_hierarchy(&context, &modules());
    EXPECT_EQ(context.current_node, &aps());
    EXPECT_EQ(context.parent_node, nullptr);
    yfw_map_remove_from_node_hierarchy(&context, &aps());
    EXPECT_EQ(request.hierarchy_length, 0U);
    EXPECT_EQ(context.current_node, nullptr);
    EXPECT_TRUE(context.at_rest());
}

TEST_F(WalkServices, PoppingANodeThatIsNotThereDoesNothing) {
    yfw_map_add_to_node_hierarchy(&context, &aps(), 1);
    yfw_map_remove_from_node_hierarchy(&context, &modules());
    EXPECT_EQ(context.request->hierarchy_length, 1U);
}

TEST_F(WalkServices, NullArgumentsDoNothing) {
    yfw_map_add_to_node_hierarchy(nullptr, &aps(), 1);
    yfw_map_add_to_node_hierarchy(&context, nullptr, 1);
    yfw_map_remove_from_node_hierarchy(nullptr, &aps());
    yfw_map_remove_from_node_hierarchy(&context, nullptr);
    yfw_oc_error_path(nullptr);
    yfw_map_util_itree_stack_push(nullptr, nullptr, 0, 0);
    yfw_map_util_itree_stack_pop(nullptr);
    EXPECT_EQ(yfw_map_util_itree_stack_size(nullptr), 0);
    EXPECT_EQ(yfw_map_update_current_list_node(nullptr, list_path), ocpsm::framework::invalid_arguments);
    EXPECT_EQ(yfw_map_update_current_list_node(&context, nullptr), ocpsm::framework::invalid_arguments);
    EXPECT_TRUE(context.at_rest());
    EXPECT_FALSE(context.error_path());
}

TEST_F(WalkServices, TheErrorPathIsTheHierarchyWithTheKeysThatItHadWhenItWasPushed) {
    EXPECT_EQ(location(), "");
    enter(0);
    entry(0).children = nullptr;
    entry(0).child_count = 0;
    EXPECT_EQ(location(), "/aps/aps-modules/aps-module[name='one']");
    yfw_map_remove_from_node_hierarchy(&context, &entry(0));
    EXPECT_EQ(location(), "/aps/aps-modules");
    yfw_map_add_to_node_hierarchy(&context, &entry(1), 2);
    EXPECT_EQ(location(), "/aps/aps-modules/aps-module[name=\"it's\"]");
}

TEST_F(WalkServices, AnEntryWithoutKeyHasNoPredicate) {
    entry(0).children[0].flags = 1;
    enter(0);
    EXPECT_EQ(location(), "/aps/aps-modules/aps-module");
}

TEST_F(WalkServices, TheListNodeIsACopyOfTheCurrentEntry) {
    EXPECT_EQ(current(), "none");
    enter(1);
    EXPECT_EQ(listed(), "it's");
    EXPECT_NE(context.request->list_node, &entry(1));
    entry(1).children = nullptr;
    entry(1).child_count = 0;
    EXPECT_EQ(current(), "it's");
}

TEST_F(WalkServices, TheListNodeFollowsTheEntries) {
    enter(0);
    EXPECT_EQ(listed(), "one");
    yfw_map_remove_from_node_hierarchy(&context, &entry(0));
    EXPECT_EQ(current(), "none");
    yfw_map_add_to_node_hierarchy(&context, &entry(1), 2);
    EXPECT_EQ(listed(), "it's");
}

TEST_F(WalkServices, ThereIsNoListNodeWhereNoEntryOfTheListIsOnTop) {
    enter(0);
    EXPECT_EQ(listed("/aps/other"), "none");
    EXPECT_EQ(listed("/oc:aps/oc:aps-modules/x:aps-module"), "one"); // paths may have prefixes
    EXPECT_EQ(listed("/aps/other"), "none");
    yfw_map_remove_from_node_hierarchy(&context, &entry(0));
    EXPECT_EQ(listed(), "none");
}

TEST_F(WalkServices, ANodeThatWasNotPushedAsAnEntryIsNoCurrentEntry) {
    yfw_map_add_to_node_hierarchy(&context, &aps(), 1);
    yfw_map_add_to_node_hierarchy(&context, &modules(), 1);
    yfw_map_add_to_node_hierarchy(&context, &entry(0), 1);
    EXPECT_EQ(listed(), "none");
}

TEST_F(WalkServices, TheRequestRootIsADuplicateFromTheBeginning) {
    EXPECT_NE(context.request->request_root, &aps());
    modules().children = nullptr;
    modules().child_count = 0;
    aps().operation = 4;
    const kidl_yfw_datatree &root = *context.request->request_root;
    EXPECT_EQ(root.operation, 0U);
    EXPECT_STREQ(root.children[0].children[1].children[0].value, "it's");
    EXPECT_EQ(context.request->answer_root, nullptr);
}

TEST_F(WalkServices, TheInstanceTreeStackGivesBackWhatWasPushed) {
    yfw_map_itree_entry top{&aps(), 77};
    yfw_map_util_itree_stack_peak(&context, &top);
    EXPECT_EQ(top.children, &aps());
    yfw_map_util_itree_stack_pop(&context);
    EXPECT_EQ(yfw_map_util_itree_stack_size(&context), 0);
    yfw_map_util_itree_stack_push(&context, entry(0).children, 2, 0);
    yfw_map_util_itree_stack_push(&context, nullptr, 0, 0);
    EXPECT_EQ(yfw_map_util_itree_stack_size(&context), 2);
    yfw_map_util_itree_stack_peak(&context, &top);
    EXPECT_EQ(top.children, nullptr);
    EXPECT_EQ(top.child_count, 0);
    yfw_map_util_itree_stack_pop(&context);
    yfw_map_util_itree_stack_peak(&context, &top);
    EXPECT_EQ(top.children, entry(0).children);
    EXPECT_EQ(top.child_count, 2);
    EXPECT_FALSE(context.at_rest());
    yfw_map_util_itree_stack_pop(&context);
    EXPECT_TRUE(context.at_rest());
    yfw_map_util_itree_stack_peak(&context, nullptr);
}

class Leafref : public WalkServices {
protected:
    kerrno check() { return yfw_map_check_oc_leafref(&context, list_path, "config", &entry(0).children[0], &entry(0)); }
    kidl_yfw_datatree &key() { return entry(0).children[0]; }
    kidl_yfw_datatree &config() { return entry(0).children[1]; }
};

TEST_F(Leafref, HoldsWhenBothAreEqualOrOneOfThemHasNoValue) {
    EXPECT_EQ(check(), KERR_SUCCESS);
    config().children[0].flags = 1;
    EXPECT_EQ(check(), KERR_SUCCESS);
    config().child_count = 0;
    EXPECT_EQ(check(), KERR_SUCCESS);
    entry(0).child_count = 1;
    EXPECT_EQ(check(), KERR_SUCCESS);
}

TEST_F(Leafref, HoldsWhenTheKeyHasNoValue) {
    key().flags = 1;
    key().value = nullptr;
    EXPECT_EQ(check(), KERR_SUCCESS);
}

TEST_F(Leafref, FailsWithACodeOfTheFrameworkAndTheKeysLocation) {
    enter(0);
    char other[] = "other";
    config().children[0].value = other;
    EXPECT_EQ(check(), 0xaaf30200U);
    EXPECT_EQ(context.own_refusal(), "/aps/aps-modules/aps-module[name='one']/name");
    EXPECT_FALSE(context.error_path());
}

TEST_F(Leafref, NeedsItsArguments) {
    EXPECT_EQ(yfw_map_check_oc_leafref(nullptr, list_path, "config", &key(), &entry(0)), 0xaaf30400U);
    EXPECT_EQ(yfw_map_check_oc_leafref(&context, nullptr, "config", &key(), &entry(0)), 0xaaf30400U);
    EXPECT_EQ(yfw_map_check_oc_leafref(&context, list_path, nullptr, &key(), &entry(0)), 0xaaf30400U);
    EXPECT_EQ(yfw_map_check_oc_leafref(&context, list_path, "config", nullptr, &entry(0)), 0xaaf30400U);
    EXPECT_EQ(yfw_map_check_oc_leafref(&context, list_path, "config", &key(), nullptr), 0xaaf30400U);
}

} // namespace
