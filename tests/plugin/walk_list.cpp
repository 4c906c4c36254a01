// The walker of the list: keys, the list callback, the children of an entry.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char list[] = "lvla_aps_apsmodules_apsmodule";

// What the walk of an entry begins and ends with.
Lines framed(const Lines &inside) {
    Lines lines{"+lvla_aps_apsmodules_apsmodule", "add_to_hierarchy(aps-module, 2)",
                "update_current_list(\"/aps/aps-modules/aps-module\")"};
    lines.insert(lines.end(), inside.begin(), inside.end());
    lines.emplace_back("remove_from_hierarchy(aps-module)");
    lines.emplace_back("-lvla_aps_apsmodules_apsmodule");
    return lines;
}

constexpr char leafref[] = "check_leafref(\"/aps/aps-modules/aps-module\", \"config\", aps-module/name, aps-module)";
constexpr char list_called[] = "list_lvla_aps_apsmodules_apsmodule(aps-module)";
constexpr char key_called[] = "leaf_lvla_aps_apsmodule_name(aps-module/name)";
constexpr char no_keys[] = "ERR lvla_aps_apsmodules_apsmodule: No keys specified with a list node.";
constexpr char key_error[] = "ERR lvla_aps_apsmodules_apsmodule: List key node error.";

class WalkList : public WalkTest {};

Node with_config(std::vector<Node> before) {
    before.push_back(container("config", {leaf("revertive", "true")}));
    return container("aps-module", std::move(before));
}

// ---- a well-formed entry ----

TEST_F(WalkList, AMergeChecksTheKeyAndWalksTheEntry) {
    for (const std::uint32_t kind : {1u, 8u, 15u}) {
        SCOPED_TRACE(kind);
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        request.context.list_operation = 9;
        Tree &tree = build(module("0/2-PSM-OM", {container("config", {leaf("revertive", "true")})}));
        EXPECT_EQ(walk(list, tree), 0u);
        EXPECT_EQ(story(),
                  framed({leafref, list_called, "+lvla_aps_apsmodule_name", key_called, "-lvla_aps_apsmodule_name",
                          "+lvla_aps_apsmodule_config", "add_to_hierarchy(aps-module/config, 1)",
                          "cont_lvla_aps_apsmodule_config(aps-module/config, 1)", "+lvla_aps_config_revertive",
                          "leaf_lvla_aps_config_revertive(aps-module/config/revertive)", "-lvla_aps_config_revertive",
                          "remove_from_hierarchy(aps-module/config)", "-lvla_aps_apsmodule_config"}));
        EXPECT_EQ(tree.root()->hierarchy_kind, 4u);
        EXPECT_EQ(tree.root()->second_flags, 4u);
        EXPECT_EQ(tree.at("name")->consumed_mark, 1u);
        EXPECT_EQ(tree.at("name")->flags, 1u | 2u | 512u);
        EXPECT_EQ(tree.at("name")->hierarchy_kind, 1u);
        EXPECT_EQ(request.context.list_operation, 0u);
    }
}

TEST_F(WalkList, OtherKindsDoNotCheckTheKeyAgainstItsLeafref) {
    for (const std::uint32_t kind : {get_config, get, 2u, 9u}) {
        SCOPED_TRACE(kind);
        platform.forget();
        request.set_kind(kind);
        EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {container("config", {leaf("revertive")})}))), 0u);
        EXPECT_EQ(platform.count("check_leafref"), 0u);
        // A selection, so that the content is not asked for as a whole.
        EXPECT_EQ(callbacks(), (Lines{list_called, key_called, "cont_lvla_aps_apsmodule_config(aps-module/config, 1)",
                                      "leaf_lvla_aps_config_revertive(aps-module/config/revertive)"}));
    }
}

TEST_F(WalkList, ThePortsAndTheStateOfAnEntryAreWalkedInAGet) {
    request.set_kind(get);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM",
                                      {container("state", {leaf("active-path")}),
                                       container("ports", {container("common-output",
                                                                     {container("state", {leaf("attenuation")})})})}))),
              0u);
    EXPECT_EQ(callbacks(),
              (Lines{list_called, key_called, "cont_lvla_aps_apsmodule_state(aps-module/state, 1)",
                     "leaf_lvla_aps_state_activepath(aps-module/state/active-path)",
                     "cont_lvla_aps_apsmodule_ports(aps-module/ports, 1)",
                     "cont_lvla_aps_ports_commonoutput(aps-module/ports/common-output, 1)",
                     "cont_lvla_aps_commonoutput_state(aps-module/ports/common-output/state, 1)",
                     "leaf_lvle_aps_state_attenuation(aps-module/ports/common-output/state/attenuation)"}));
}

TEST_F(WalkList, TheKeyMayStandAnywhere) {
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(container("aps-module", {container("config", {leaf("revertive", "true")}),
                                                        leaf("name", "0/2-PSM-OM")}))),
              0u);
    EXPECT_EQ(callbacks(), (Lines{list_called, "cont_lvla_aps_apsmodule_config(aps-module/config, 1)",
                                  "leaf_lvla_aps_config_revertive(aps-module/config/revertive)", key_called}));
}

// ---- an entry without children ----

TEST_F(WalkList, AnEntryWithoutChildrenIsABadTreeInKeyCheckedKinds) {
    for (const std::uint32_t kind : {1u, 8u, 15u}) {
        for (const std::uint32_t operation : {0u, 3u}) {
            platform.forget();
            request.set_kind(kind);
            EXPECT_EQ(walk(list, build(bare_module().with_operation(operation))), 0xaaf29e00u);
            EXPECT_EQ(story(),
                      (Lines{"+lvla_aps_apsmodules_apsmodule", no_keys, no_keys, "-lvla_aps_apsmodules_apsmodule"}));
            EXPECT_EQ(platform.count("is_request_delete"), 0u);
            EXPECT_EQ(request.error_node(), "none");
        }
    }
}

TEST_F(WalkList, AnEntryWithoutChildrenIsWalkedWhileADeleteIsSpread) {
    request.set_kind(edit);
    request.state.delete_walk = 1;
    EXPECT_EQ(walk(list, build(bare_module())), 0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_apsmodules_apsmodule", no_keys, "add_to_hierarchy(aps-module, 2)",
                              "update_current_list(\"/aps/aps-modules/aps-module\")", list_called,
                              "remove_from_hierarchy(aps-module)", "-lvla_aps_apsmodules_apsmodule"}));
}

// ---- the current list entry ----

TEST_F(WalkList, AFailingUpdateGoesStraightToTheEnd) {
    for (const std::uint32_t kind : {get_config, edit, get}) {
        platform.forget();
        request.set_kind(kind);
        platform.answer("update_current_list", some_failure);
        // A replace without a key: neither passes nor key check nor the missing key's add.
        Tree &tree = build(with_config({}).with_operation(1));
        EXPECT_EQ(walk(list, tree), some_failure);
        EXPECT_EQ(story(), framed({}));
        EXPECT_EQ(tree.root()->flags & 16u, 0u);
        EXPECT_EQ(adds(), Lines{});
    }
}

TEST_F(WalkList, AFailingUpdateLeavesTheKeyUnused) {
    request.set_kind(edit);
    platform.answer("update_current_list", some_failure);
    Tree &tree = build(module("0/2-PSM-OM"));
    EXPECT_EQ(walk(list, tree), some_failure);
    EXPECT_EQ(tree.at("name")->consumed_mark, 0u);
    EXPECT_EQ(tree.at("name")->flags, 1u | 2u);
}

// ---- keys ----

TEST_F(WalkList, ALeafrefRefusalPopsTheEntryAndReturnsItsCode) {
    for (const std::uint32_t kind : {1u, 8u, 15u}) {
        platform.forget();
        request.set_kind(kind);
        platform.answer("check_leafref", 0xbeef0001);
        Tree &tree = build(module("0/2-PSM-OM", {container("config", {leaf("name", "0/3-PSM-OM")})}));
        EXPECT_EQ(walk(list, tree), 0xbeef0001u);
        EXPECT_EQ(story(), framed({leafref, "TRC lvla_aps_apsmodules_apsmodule: leafref value check fail"}));
        EXPECT_EQ(tree.at("name")->consumed_mark, 0u);
        EXPECT_EQ(request.error_node(), "none");
    }
}

TEST_F(WalkList, AWrongNumberOfKeysIsRefused) {
    const std::vector<std::pair<std::uint32_t, Node>> wrong{
        {edit, with_config({})},
        {edit, with_config({leaf("name")})},
        {edit, with_config({leaf("name", "0/1-PSM-OM"), leaf("name", "0/2-PSM-OM")})},
        {edit, with_config({leaf("name", "0/1-PSM-OM"), leaf("name")})},
        {edit, container("aps-module", {leaf("name")})},
        {8, with_config({})},
        {8, with_config({leaf("name")})},
        {15, with_config({})},
        {15, with_config({leaf("name")})},
        {get_config, with_config({leaf("name", "0/1-PSM-OM"), leaf("name", "0/2-PSM-OM")})},
        {get_config, with_config({leaf("name"), leaf("name")})},
        {get, with_config({leaf("name", "0/1-PSM-OM"), leaf("name", "0/2-PSM-OM")})},
        {2, with_config({leaf("name", "0/1-PSM-OM"), leaf("name")})},
    };
    for (const auto &[kind, entry] : wrong) {
        SCOPED_TRACE("kind " + std::to_string(kind) + ", children " + std::to_string(entry.children.size()));
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        request.set_error_node("earlier");
        EXPECT_EQ(walk(list, build(entry)), 0xaaf2f000u);
        EXPECT_EQ(request.error_node(), "name");
        EXPECT_EQ(callbacks(), Lines{});
        EXPECT_EQ(messages(), (Lines{key_error}));
        EXPECT_EQ(adds(), Lines{});
        const Lines calls = platform.calls(fake::Heap | fake::Walk);
        ASSERT_GE(calls.size(), 4u);
        EXPECT_EQ(Lines(calls.end() - 4, calls.end()),
                  (Lines{"named_free(\"earlier\")", "strdup(\"name\", \"YFW MAP\")", "error_path(ctx)",
                         "remove_from_hierarchy(ctx, aps-module)"}));
        EXPECT_EQ(story().back(), "-lvla_aps_apsmodules_apsmodule");
    }
}

TEST_F(WalkList, AReadNeedsNoKeyAndAcceptsAnEmptyOne) {
    for (const std::uint32_t kind : {get_config, get, 2u}) {
        SCOPED_TRACE(kind);
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        EXPECT_EQ(walk(list, build(with_config({leaf("name")}))), 0u);
        EXPECT_EQ(callbacks().front(), list_called);
        EXPECT_EQ(callbacks().at(1), key_called);
        EXPECT_EQ(walk(list, build(with_config({}))), 0u);
        EXPECT_EQ(messages(), Lines{});
    }
}

TEST_F(WalkList, TheKeyIsFoundInAnyNamespace) {
    request.set_kind(edit);
    for (const std::optional<std::string> &uri :
         {std::optional<std::string>(fake::foreign), std::optional<std::string>()}) {
        platform.forget();
        drop_trees();
        EXPECT_EQ(walk(list, build(container("aps-module", {leaf("name", "0/2-PSM-OM").in_namespace(uri)}))), 0u);
        EXPECT_EQ(callbacks(), (Lines{list_called, key_called}));
    }
}

TEST_F(WalkList, AnEmptyKeyIsRefusedWhereTheCountIsNotChecked) {
    for (const std::uint32_t kind : {1u, 8u, 15u}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        request.set_error_node("earlier");
        request.state.delete_walk = 1;
        EXPECT_EQ(walk(list, build(with_config({leaf("name")}))), 0xaaf2f000u);
        EXPECT_EQ(story(), framed({list_called, "ERR lvla_aps_apsmodules_apsmodule: Empty list key specified.",
                                   "error_path()"}));
        EXPECT_EQ(request.error_node(), "name");
        EXPECT_EQ(platform.calls(fake::Heap), (Lines{"named_free(\"earlier\")", "strdup(\"name\", \"YFW MAP\")"}));
    }
}

TEST_F(WalkList, AnEmptyKeyInAWholeSubtreeWalkIsRefusedInAnEditOnly) {
    request.state.whole_subtree_walk = 1;
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(with_config({leaf("name")}))), 0xaaf2f000u);
    EXPECT_EQ(messages(), (Lines{"ERR lvla_aps_apsmodules_apsmodule: Empty list key specified."}));
    platform.forget();
    request.set_kind(get_config);
    EXPECT_EQ(walk(list, build(with_config({leaf("name")}))), 0u);
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(WalkList, AKeyWithADeleteIsRefused) {
    for (const std::uint32_t kind : {1u, 8u, 15u}) {
        for (const std::uint32_t operation : {3u, 4u}) {
            platform.forget();
            drop_trees();
            request.set_kind(kind);
            request.set_error_node("earlier");
            EXPECT_EQ(walk(list, build(with_config({leaf("name", "0/2-PSM-OM").with_operation(operation)}))),
                      0xaaf2f200u);
            EXPECT_EQ(story(), framed({leafref, list_called,
                                       "ERR lvla_aps_apsmodules_apsmodule: The key node should not have delete "
                                       "operation.",
                                       "error_path()"}));
            // The location is raised, the name stays what it was.
            EXPECT_EQ(request.error_node(), "earlier");
        }
    }
}

TEST_F(WalkList, OtherOperationsOfAKeyAreAccepted) {
    request.set_kind(edit);
    for (const std::uint32_t operation : {0u, 1u, 2u}) {
        platform.forget();
        EXPECT_EQ(walk(list, build(with_config({leaf("name", "0/2-PSM-OM").with_operation(operation)}))), 0u);
    }
}

TEST_F(WalkList, AKeyWithADeleteIsWalkedInARead) {
    EXPECT_EQ(walk(list, build(with_config({leaf("name", "0/2-PSM-OM").with_operation(3)}))), 0u);
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(WalkList, AFailingKeyEndsTheEntry) {
    platform.answer("leaf_lvla_aps_apsmodule_name", some_failure);
    for (const std::uint32_t kind : {get_config, edit, get}) {
        platform.forget();
        request.set_kind(kind);
        // No whole-subtree walk after a failure.
        EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), some_failure);
        EXPECT_EQ(callbacks(), (Lines{list_called, key_called}));
    }
}

// ---- the list callback ----

TEST_F(WalkList, AFailureOfTheListCallbackEndsThePass) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", some_failure);
    request.context.list_operation = 9;
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), some_failure);
    EXPECT_EQ(story(), framed({list_called}));
    EXPECT_EQ(request.context.list_operation, 9u);
}

TEST_F(WalkList, ASkipOfTheListCallbackPassesTheEntryOver) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", 0xaaf2f600);
    for (const std::uint32_t kind : {get_config, edit, get}) {
        for (const std::uint32_t operation : {0u, 3u}) {
            platform.forget();
            drop_trees();
            request.context.list_operation = 9;
            request.set_kind(kind);
            EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(operation))), 0u);
            EXPECT_EQ(callbacks(), (Lines{list_called}));
            // Unlike a container, the list says where it ends.
            EXPECT_EQ(story().back(), "-lvla_aps_apsmodules_apsmodule");
            EXPECT_EQ(request.context.list_operation, 9u);
        }
    }
}

TEST_F(WalkList, ASkippedEntryWithoutChildrenIsNotSpread) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", 0xaaf2f600);
    EXPECT_EQ(walk(list, build(bare_module())), 0u);
    EXPECT_EQ(callbacks(), (Lines{list_called}));
}

TEST_F(WalkList, TheContextKeepsTheOperationOfARewrittenEntry) {
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(2).with_flags(16))), 0u);
    EXPECT_EQ(request.context.list_operation, 2u);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(2))), 0u);
    EXPECT_EQ(request.context.list_operation, 0u);
}

// ---- the instance-tree stack ----

class WalkListStack : public WalkList {
protected:
    // The list callback pushes these children.
    void push_in_callback(kidl_yfw_datatree *children, std::int32_t count) {
        platform.before("list_lvla_aps_apsmodules_apsmodule", [this, children, count](const std::string &) {
            platform.itree_stack.push_back({children, count});
        });
    }
};

TEST_F(WalkListStack, WhatTheListCallbackPushedIsPopped) {
    request.set_kind(edit);
    Tree &other = build(module("0/1-PSM-OM"), "other");
    push_in_callback(other.root()->children, 1);
    platform.itree_stack.push_back({other.root()->children, 1}); // of someone above
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_apsmodules_apsmodule", "add_to_hierarchy(aps-module, 2)",
                              "update_current_list(\"/aps/aps-modules/aps-module\")", leafref, list_called,
                              "itree_peak()", "+lvla_aps_apsmodule_name", key_called, "-lvla_aps_apsmodule_name",
                              "itree_pop()", "remove_from_hierarchy(aps-module)", "-lvla_aps_apsmodules_apsmodule"}));
    EXPECT_EQ(platform.itree_stack.size(), 1u);
}

TEST_F(WalkListStack, WhatASkippingOrFailingListCallbackPushedIsPoppedToo) {
    Tree &other = build(module("0/1-PSM-OM"), "other");
    push_in_callback(other.root()->children, 1);
    for (const kerrno result : {YMAP_ERR_SKIP, some_failure}) {
        platform.forget();
        platform.answer("list_lvla_aps_apsmodules_apsmodule", result, 1);
        static_cast<void>(walk(list, build(module("0/2-PSM-OM"))));
        EXPECT_EQ(story(), framed({list_called, "itree_peak()", "itree_pop()"}));
    }
}

TEST_F(WalkListStack, AnEmptyEntryStaysWithWhoeverPushedIt) {
    request.set_kind(edit);
    push_in_callback(nullptr, 0);
    Tree &tree = build(module("0/2-PSM-OM"));
    EXPECT_EQ(fake::walker(list)(request.ctx(), tree.root(), dest), 0u);
    EXPECT_EQ(platform.count("itree_peak"), 1u);
    EXPECT_EQ(platform.count("itree_pop"), 0u);
    EXPECT_EQ(platform.itree_stack.size(), 1u);
}

TEST_F(WalkListStack, AStackThatDidNotGrowIsLeftAlone) {
    request.set_kind(edit);
    Tree &other = build(module("0/1-PSM-OM"), "other");
    platform.itree_stack.push_back({other.root()->children, 1});
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(platform.count("itree_peak"), 0u);
    EXPECT_EQ(platform.count("itree_pop"), 0u);
}

// ---- children that are not known ----

TEST_F(WalkList, StateIsUnknownButInAGet) {
    constexpr char message[] = "ERR lvla_aps_apsmodules_apsmodule: Unsupported tag `state`is specified in the request.";
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {container("state", {leaf("revertive")})}))), 0u);
    EXPECT_EQ(messages(), (Lines{message}));
    EXPECT_EQ(request.error_node(), "none");
    for (const std::uint32_t kind : {1u, 8u, 15u, 2u}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {container("state", {leaf("revertive", "true")})}))),
                  0xaaf2ee00u);
        EXPECT_EQ(messages(), (Lines{message}));
        EXPECT_EQ(request.error_node(), "state");
        EXPECT_EQ(platform.count("error_path"), 1u);
    }
}

TEST_F(WalkList, AnUnknownTagIsNamedWithoutABlank) {
    constexpr char hold_off_time[] =
        "ERR lvla_aps_apsmodules_apsmodule: Unsupported tag `hold-off-time`is specified in the request.";
    const Node entry = module("0/2-PSM-OM", {leaf("hold-off-time", "5"), container("config", {leaf("revertive")})});
    EXPECT_EQ(walk(list, build(entry)), 0u);
    EXPECT_EQ(messages(), (Lines{hold_off_time}));
    EXPECT_EQ(platform.count("leaf_lvla_aps_config_revertive"), 1u);
    platform.forget();
    request.set_kind(edit);
    request.set_error_node("earlier");
    EXPECT_EQ(walk(list, build(entry)), 0xaaf2ee00u);
    EXPECT_EQ(request.error_node(), "hold-off-time");
    EXPECT_EQ(story(), framed({leafref, list_called, "+lvla_aps_apsmodule_name", key_called, "-lvla_aps_apsmodule_name",
                               hold_off_time, "error_path()"}));
}

TEST_F(WalkList, ForeignDataGoesToTheHook) {
    const Node entry = module("0/2-PSM-OM", {leaf("extra", "1").in_namespace(std::nullopt)});
    EXPECT_EQ(walk(list, build(entry)), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{list_called, key_called, "lvla_aps_apsmodules_apsmodule_parse_augments(aps-module/extra)"}));
    platform.forget();
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(entry)), 0xaaf2f800u);
    EXPECT_EQ(request.error_node(), "extra");
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(WalkList, AChildWithoutATagIsABadTree) {
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {leaf("x", "1").untagged(), container("config")}))), 0xaaf29e00u);
    EXPECT_EQ(callbacks(), (Lines{list_called, key_called}));
    EXPECT_EQ(messages(), (Lines{"ERR lvla_aps_apsmodules_apsmodule: Tag name is not available!"}));
    EXPECT_EQ(request.error_node(), "none");
    EXPECT_EQ(platform.count("error_path"), 0u);
}

// ---- the key that a read did not name ----

constexpr char key_added[] = "add(ctx, aps-module, \"name\", ns=openconfig, value=null, src=none, result=slot, 0, 0)";

TEST_F(WalkList, AReadOfLeavesWithoutAKeyGetsItAdded) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        Tree &tree = build(with_config({}));
        EXPECT_EQ(walk(list, tree), 0u);
        EXPECT_EQ(adds(), (Lines{key_added}));
        EXPECT_EQ(tree.root()->child_count, 2);
        EXPECT_EQ(tree.at("name")->consumed_mark, 1u);
        EXPECT_EQ(tree.at("name")->flags, 1u | 512u);
        // After the children, before the entry is left.
        const Lines calls = platform.calls(fake::Output | fake::Walk);
        EXPECT_EQ(Lines(calls.end() - 3, calls.end()), (Lines{"remove_from_hierarchy(ctx, aps-module/config)",
                                                              key_added, "remove_from_hierarchy(ctx, aps-module)"}));
    }
}

TEST_F(WalkList, TheKeyIsAddedInTheNamespaceOfTheEntry) {
    EXPECT_EQ(walk(list, build(with_config({}).in_namespace(std::nullopt))), 0u);
    EXPECT_EQ(adds(), (Lines{"add(ctx, aps-module, \"name\", ns=null, value=null, src=none, result=slot, 0, 0)"}));
}

TEST_F(WalkList, AnAddThatGivesNoNodeIsNoFailure) {
    platform.relative_add_gives_node = false;
    Tree &tree = build(with_config({}));
    const fake::Checker checker(platform, request.ctx());
    EXPECT_EQ(fake::walker(list)(request.ctx(), tree.root(), dest), 0u);
    EXPECT_EQ(tree.at("name")->consumed_mark, 0u);
    // Only the node that could not be marked.
    EXPECT_EQ(checker.differences(),
              (Lines{"aps-module: child count 1 -> 2", "aps-module: children is another", "aps-module/1:name: new"}));
}

TEST_F(WalkList, AFailingAddIsTheResultWhenTheWalkSucceeded) {
    platform.answer("add", 0xbad00001);
    EXPECT_EQ(walk(list, build(with_config({}))), 0xbad00001u);
    EXPECT_EQ(adds(), (Lines{key_added}));
    EXPECT_EQ(story().back(), "-lvla_aps_apsmodules_apsmodule");
}

TEST_F(WalkList, TheKeyIsAddedAfterAFailureAndItsOwnDoesNotCount) {
    platform.answer("leaf_lvla_aps_config_revertive", some_failure);
    EXPECT_EQ(walk(list, build(with_config({}))), some_failure);
    EXPECT_EQ(adds(), (Lines{key_added}));
    platform.forget();
    drop_trees();
    platform.answer("add", 0xbad00001);
    EXPECT_EQ(walk(list, build(with_config({}))), some_failure);
    EXPECT_EQ(adds(), (Lines{key_added}));
}

TEST_F(WalkList, TheKeyIsAddedToASkippedEntry) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", 0xaaf2f600);
    EXPECT_EQ(walk(list, build(with_config({}))), 0u);
    EXPECT_EQ(adds(), (Lines{key_added}));
}

TEST_F(WalkList, NoKeyIsAddedWhereThereIsOneOrNothingOrInAWholeSubtreeWalk) {
    EXPECT_EQ(walk(list, build(with_config({leaf("name")}))), 0u);
    EXPECT_EQ(walk(list, build(with_config({leaf("name", "0/2-PSM-OM")}))), 0u);
    EXPECT_EQ(walk(list, build(bare_module())), 0u);
    request.state.whole_subtree_walk = 1;
    EXPECT_EQ(walk(list, build(with_config({}))), 0u);
    EXPECT_EQ(adds(), Lines{});
}

TEST_F(WalkList, AReadOfAnEmptyKeyAloneIsNotSpread) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        request.set_kind(kind);
        EXPECT_EQ(walk(list, build(container("aps-module", {leaf("name")}))), 0u);
        EXPECT_EQ(callbacks(), (Lines{list_called, key_called}));
        EXPECT_EQ(adds(), Lines{});
    }
}

} // namespace
} // namespace walk
