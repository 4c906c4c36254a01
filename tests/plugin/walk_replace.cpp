// A replace: first what stands is removed, then what the request holds is merged.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char config[] = "lvla_aps_apsmodule_config";
constexpr char port_config[] = "lvla_aps_lineprimaryin_config";
constexpr char list[] = "lvla_aps_apsmodules_apsmodule";

class WalkReplace : public WalkTest {
protected:
    WalkReplace() { request.set_kind(edit); }
};

Node replaced_port_config() {
    return container("config", {leaf("target-attenuation", "1.5")}).with_operation(1);
}

TEST_F(WalkReplace, AContainerIsRemovedWholeAndThenMerged) {
    Tree &tree =
        build(container("config", {leaf("revertive", "true"), leaf("force-to-port", "NONE")}).with_operation(1));
    EXPECT_EQ(walk(config, tree), 0u);
    EXPECT_EQ(callbacks(), (Lines{
                               "cont_lvla_aps_apsmodule_config(config, 0)",
                               "leaf_lvla_aps_config_name(config)",
                               "leaf_lvla_aps_config_revertive(config)",
                               "leaf_lvla_aps_config_waittorestoretime(config)",
                               "leaf_lvla_aps_config_primaryswitchthreshold(config)",
                               "leaf_lvla_aps_config_primaryswitchhysteresis(config)",
                               "leaf_lvla_aps_config_secondaryswitchthreshold(config)",
                               "leaf_lvla_aps_config_relativeswitchthreshold(config)",
                               "leaf_lvla_aps_config_relativeswitchthresholdoffset(config)",
                               "leaf_lvla_aps_config_forcetoport(config)",
                               "lvla_aps_apsmodule_config_parse_augments(config)",
                               "cont_lvla_aps_apsmodule_config(config, 2)",
                               "leaf_lvla_aps_config_revertive(config/revertive)",
                               "leaf_lvla_aps_config_forcetoport(config/force-to-port)",
                           }));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(tree.root()->flags, 1u | 16u | 64u);
    EXPECT_EQ(tree.root()->child_count, 2);
    EXPECT_EQ(request.state.replace_flags, 0u);
    EXPECT_EQ(request.state.replace_marker, 0u);
}

TEST_F(WalkReplace, BothPassesStandInOneFrame) {
    EXPECT_EQ(walk(port_config, build(replaced_port_config())), 0u);
    EXPECT_EQ(story(), (Lines{
                           "+lvla_aps_lineprimaryin_config",
                           "add_to_hierarchy(config, 1)",
                           "cont_lvla_aps_lineprimaryin_config(config, 0)",
                           "+lvla_aps_config_targetattenuation",
                           "leaf_lvla_aps_config_targetattenuation(config)",
                           "-lvla_aps_config_targetattenuation",
                           "lvla_aps_lineprimaryin_config_parse_augments(config)",
                           "cont_lvla_aps_lineprimaryin_config(config, 1)",
                           "+lvla_aps_config_targetattenuation",
                           "leaf_lvla_aps_config_targetattenuation(config/target-attenuation)",
                           "-lvla_aps_config_targetattenuation",
                           "remove_from_hierarchy(config)",
                           "-lvla_aps_lineprimaryin_config",
                       }));
}

TEST_F(WalkReplace, ThePassesAreToldByOperationBitsAndMarker) {
    Tree &tree = build(replaced_port_config());
    sample(tree.root());
    EXPECT_EQ(walk(port_config, tree), 0u);
    EXPECT_EQ(samples, (Lines{
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 4 rewritten children 0 hidden",
                                   "whole 0 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 4 rewritten children 0 hidden",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("lvla_aps_lineprimaryin_config_parse_augments", "op 4 rewritten children 0 hidden",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 0 rewritten children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 0 rewritten children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"),
                       }));
}

TEST_F(WalkReplace, AFailingFirstPassEndsTheWalk) {
    platform.answer("cont_lvla_aps_lineprimaryin_config", some_failure, 1);
    Tree &tree = build(replaced_port_config());
    EXPECT_EQ(walk(port_config, tree), some_failure);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_lineprimaryin_config(config, 0)"}));
    EXPECT_EQ(story().back(), "-lvla_aps_lineprimaryin_config");
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(tree.root()->flags, 1u | 16u | 64u);
}

TEST_F(WalkReplace, AFailureWhileTheFirstPassIsSpreadDoesNotCount) {
    platform.answer("leaf_lvla_aps_config_targetattenuation", some_failure, 1);
    EXPECT_EQ(walk(port_config, build(replaced_port_config())), 0u);
    EXPECT_EQ(platform.count("leaf_lvla_aps_config_targetattenuation"), 2u);
}

TEST_F(WalkReplace, AFailingSecondPassRestoresToo) {
    platform.answer("leaf_lvla_aps_config_targetattenuation", some_failure, 2);
    Tree &tree = build(replaced_port_config());
    EXPECT_EQ(walk(port_config, tree), some_failure);
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(story().back(), "-lvla_aps_lineprimaryin_config");
}

TEST_F(WalkReplace, ASkippedFirstPassIsFollowedByTheSecond) {
    platform.answer("cont_lvla_aps_lineprimaryin_config", 0xaaf2f600, 1);
    EXPECT_EQ(walk(port_config, build(replaced_port_config())), 0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_lineprimaryin_config", "add_to_hierarchy(config, 1)",
                              "cont_lvla_aps_lineprimaryin_config(config, 0)",
                              "cont_lvla_aps_lineprimaryin_config(config, 1)", "+lvla_aps_config_targetattenuation",
                              "leaf_lvla_aps_config_targetattenuation(config/target-attenuation)",
                              "-lvla_aps_config_targetattenuation", "remove_from_hierarchy(config)",
                              "-lvla_aps_lineprimaryin_config"}));
}

TEST_F(WalkReplace, ASkippedSecondPassRestoresAndPopsWithoutEnd) {
    platform.answer("cont_lvla_aps_lineprimaryin_config", 0xaaf2f600, 2);
    Tree &tree = build(replaced_port_config());
    EXPECT_EQ(walk(port_config, tree), 0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_lineprimaryin_config", "add_to_hierarchy(config, 1)",
                              "cont_lvla_aps_lineprimaryin_config(config, 0)", "+lvla_aps_config_targetattenuation",
                              "leaf_lvla_aps_config_targetattenuation(config)", "-lvla_aps_config_targetattenuation",
                              "lvla_aps_lineprimaryin_config_parse_augments(config)",
                              "cont_lvla_aps_lineprimaryin_config(config, 1)", "remove_from_hierarchy(config)"}));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(request.state.replace_marker, 0u);
}

TEST_F(WalkReplace, AnUnknownTagIsMetInTheSecondPassOnly) {
    EXPECT_EQ(walk(port_config, build(container("config", {leaf("extra", "1")}).with_operation(1))), 0xaaf2ee00u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_lineprimaryin_config(config, 0)", "leaf_lvla_aps_config_targetattenuation(config)",
                     "lvla_aps_lineprimaryin_config_parse_augments(config)",
                     "cont_lvla_aps_lineprimaryin_config(config, 1)"}));
    EXPECT_EQ(request.error_node(), "extra");
}

TEST_F(WalkReplace, AStateContainerIsWalkedTwiceAndNeverSpread) {
    EXPECT_EQ(walk("lvla_aps_apsmodule_state", build(container("state").with_operation(1))), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_apsmodule_state(state, 0)", "cont_lvla_aps_apsmodule_state(state, 0)"}));
}

// ---- nested ----

TEST_F(WalkReplace, AReplaceInAReplaceKeepsTheBitsOfTheOuterOne) {
    Tree &tree = build(container("line-primary-in", {replaced_port_config()}).with_operation(1));
    sample(tree.at("config"));
    EXPECT_EQ(walk("lvla_aps_ports_lineprimaryin", tree), 0u);
    EXPECT_EQ(samples, (Lines{
                           // The outer first pass: the inner node is out of sight.
                           sampled("cont_lvla_aps_ports_lineprimaryin", "op 1 children 1",
                                   "whole 0 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 1 children 1",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 1 children 1",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("lvla_aps_lineprimaryin_config_parse_augments", "op 1 children 1",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           sampled("lvla_aps_ports_lineprimaryin_parse_augments", "op 1 children 1",
                                   "whole 1 delete 0 replace 64 marker 1 selection 0x0"),
                           // The outer second pass, with both passes of the inner node.
                           sampled("cont_lvla_aps_ports_lineprimaryin", "op 1 children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"),
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 4 rewritten children 0 hidden",
                                   "whole 0 delete 0 replace 192 marker 1 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 4 rewritten children 0 hidden",
                                   "whole 1 delete 0 replace 192 marker 1 selection 0x0"),
                           sampled("lvla_aps_lineprimaryin_config_parse_augments", "op 4 rewritten children 0 hidden",
                                   "whole 1 delete 0 replace 192 marker 1 selection 0x0"),
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 0 rewritten children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 0 rewritten children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"),
                       }));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(tree.at("config")->operation, 1u);
}

TEST_F(WalkReplace, AfterAnInnerReplaceTheOuterPassGoesOnAsItWas) {
    Tree &tree = build(
        container("ports", {container("line-primary-in", {replaced_port_config()}), container("line-primary-out")})
            .with_operation(1));
    sample(tree.at("line-primary-out"));
    EXPECT_EQ(walk("lvla_aps_apsmodule_ports", tree), 0u);
    EXPECT_EQ(samples.back(), sampled("cont_lvla_aps_ports_lineprimaryout", "op 0 children 0 hidden",
                                      "whole 0 delete 0 replace 128 marker 1 selection 0x0"));
}

TEST_F(WalkReplace, AnInnerFailureRestoresBoth) {
    platform.answer("cont_lvla_aps_lineprimaryin_config", some_failure, 3); // the inner merge pass
    Tree &tree = build(container("line-primary-in", {replaced_port_config()}).with_operation(1));
    EXPECT_EQ(walk("lvla_aps_ports_lineprimaryin", tree), some_failure);
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(tree.at("config")->operation, 1u);
}

TEST_F(WalkReplace, BitsThatStoodBeforeStandAfterwards) {
    request.state.replace_flags = 0x21;
    request.state.replace_marker = 7;
    EXPECT_EQ(walk(port_config, build(replaced_port_config())), 0u);
    EXPECT_EQ(request.state.replace_flags, 0x21u);
    EXPECT_EQ(request.state.replace_marker, 7u);
}

// ---- the list entry ----

Node replaced_entry() {
    return module("0/2-PSM-OM", {container("config", {leaf("revertive", "true")}), container("ports")})
        .with_operation(1);
}

TEST_F(WalkReplace, TheFirstPassOverAnEntryPassesItsContainersOver) {
    Tree &tree = build(replaced_entry());
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(story(), (Lines{
                           "+lvla_aps_apsmodules_apsmodule",
                           "add_to_hierarchy(aps-module, 2)",
                           "update_current_list(\"/aps/aps-modules/aps-module\")",
                           "check_leafref(\"/aps/aps-modules/aps-module\", \"config\", aps-module/name, aps-module)",
                           "list_lvla_aps_apsmodules_apsmodule(aps-module)",
                           "+lvla_aps_apsmodule_name",
                           "leaf_lvla_aps_apsmodule_name(aps-module/name)",
                           "-lvla_aps_apsmodule_name",
                           "list_lvla_aps_apsmodules_apsmodule(aps-module)",
                           "+lvla_aps_apsmodule_name",
                           "leaf_lvla_aps_apsmodule_name(aps-module/name)",
                           "-lvla_aps_apsmodule_name",
                           "+lvla_aps_apsmodule_config",
                           "add_to_hierarchy(aps-module/config, 1)",
                           "cont_lvla_aps_apsmodule_config(aps-module/config, 1)",
                           "+lvla_aps_config_revertive",
                           "leaf_lvla_aps_config_revertive(aps-module/config/revertive)",
                           "-lvla_aps_config_revertive",
                           "remove_from_hierarchy(aps-module/config)",
                           "-lvla_aps_apsmodule_config",
                           "+lvla_aps_apsmodule_ports",
                           "add_to_hierarchy(aps-module/ports, 1)",
                           "cont_lvla_aps_apsmodule_ports(aps-module/ports, 0)",
                           "remove_from_hierarchy(aps-module/ports)",
                           "-lvla_aps_apsmodule_ports",
                           "remove_from_hierarchy(aps-module)",
                           "-lvla_aps_apsmodules_apsmodule",
                       }));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(tree.root()->flags, 1u | 16u | 64u);
}

TEST_F(WalkReplace, TheChildrenOfAnEntryStayInSight) {
    Tree &tree = build(replaced_entry());
    sample(tree.root());
    EXPECT_EQ(walk(list, tree), 0u);
    ASSERT_EQ(samples.size(), 7u);
    EXPECT_EQ(samples[0], sampled("list_lvla_aps_apsmodules_apsmodule", "op 4 rewritten children 3",
                                  "whole 0 delete 0 replace 64 marker 1 selection 0x0"));
    EXPECT_EQ(samples[1], sampled("leaf_lvla_aps_apsmodule_name", "op 4 rewritten children 3",
                                  "whole 0 delete 0 replace 64 marker 1 selection 0x0"));
    EXPECT_EQ(samples[2], sampled("list_lvla_aps_apsmodules_apsmodule", "op 0 rewritten children 3",
                                  "whole 0 delete 0 replace 128 marker 1 selection 0x0"));
    EXPECT_EQ(samples[4], sampled("cont_lvla_aps_apsmodule_config", "op 0 rewritten children 3",
                                  "whole 0 delete 0 replace 128 marker 1 selection 0x0"));
}

TEST_F(WalkReplace, TheContextKeepsTheOperationOfEachPass) {
    std::vector<std::uint32_t> kept;
    platform.before("leaf_lvla_aps_apsmodule_name",
                    [&](const std::string &) { kept.push_back(request.context.list_operation); });
    EXPECT_EQ(walk(list, build(replaced_entry())), 0u);
    EXPECT_EQ(kept, (std::vector<std::uint32_t>{4, 0}));
}

TEST_F(WalkReplace, AnEntryThatIsNothingButItsKeyIsDeletedAndMade) {
    Tree &tree = build(module("0/2-PSM-OM").with_operation(1));
    sample(tree.root());
    EXPECT_EQ(walk(list, tree), 0u);
    const Lines called = callbacks();
    // list, key, the whole content from config to the hook, then list and key again.
    ASSERT_EQ(called.size(), 2u + 11u + 24u + 1u + 2u);
    EXPECT_EQ(called[2], "cont_lvla_aps_apsmodule_config(aps-module, 0)");
    EXPECT_EQ(called[13], "cont_lvla_aps_apsmodule_ports(aps-module, 0)");
    EXPECT_EQ(called[37], "lvla_aps_apsmodules_apsmodule_parse_augments(aps-module)");
    EXPECT_EQ(samples[0], sampled("list_lvla_aps_apsmodules_apsmodule", "op 4 rewritten children 1",
                                  "whole 0 delete 2 replace 64 marker 1 selection 0x0"));
    EXPECT_EQ(samples[1], sampled("leaf_lvla_aps_apsmodule_name", "op 4 rewritten children 1",
                                  "whole 0 delete 0 replace 64 marker 1 selection 0x0"));
    EXPECT_EQ(samples[2], sampled("cont_lvla_aps_apsmodule_config", "op 4 rewritten children 0 hidden",
                                  "whole 1 delete 1 replace 64 marker 1 selection 0x0"));
    EXPECT_EQ(samples[38], sampled("list_lvla_aps_apsmodules_apsmodule", "op 0 rewritten children 1",
                                   "whole 0 delete 0 replace 128 marker 1 selection 0x0"));
}

TEST_F(WalkReplace, AFailingFirstPassOverAnEntryEndsTheWalk) {
    platform.answer("leaf_lvla_aps_apsmodule_name", some_failure, 1);
    Tree &tree = build(replaced_entry());
    EXPECT_EQ(walk(list, tree), some_failure);
    EXPECT_EQ(callbacks(), (Lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)",
                                  "leaf_lvla_aps_apsmodule_name(aps-module/name)"}));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(story().back(), "-lvla_aps_apsmodules_apsmodule");
}

TEST_F(WalkReplace, ASkippedFirstPassOverAnEntryIsFollowedByTheSecond) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", 0xaaf2f600, 1);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {container("ports")}).with_operation(1))), 0u);
    EXPECT_EQ(
        callbacks(),
        (Lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)", "list_lvla_aps_apsmodules_apsmodule(aps-module)",
               "leaf_lvla_aps_apsmodule_name(aps-module/name)", "cont_lvla_aps_apsmodule_ports(aps-module/ports, 0)"}));
}

TEST_F(WalkReplace, ASkippedSecondPassOverAnEntryRestores) {
    platform.answer("list_lvla_aps_apsmodules_apsmodule", 0xaaf2f600, 2);
    Tree &tree = build(replaced_entry());
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)", "leaf_lvla_aps_apsmodule_name(aps-module/name)",
                     "list_lvla_aps_apsmodules_apsmodule(aps-module)"}));
    EXPECT_EQ(tree.root()->operation, 1u);
    EXPECT_EQ(story().back(), "-lvla_aps_apsmodules_apsmodule");
}

TEST_F(WalkReplace, StateIsUnknownInTheFirstPassToo) {
    EXPECT_EQ(
        walk(list, build(module("0/2-PSM-OM", {container("state", {leaf("revertive", "true")})}).with_operation(1))),
        0xaaf2ee00u);
    EXPECT_EQ(callbacks(), (Lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)",
                                  "leaf_lvla_aps_apsmodule_name(aps-module/name)"}));
    EXPECT_EQ(messages(),
              (Lines{"ERR lvla_aps_apsmodules_apsmodule: Unsupported tag `state`is specified in the request."}));
    EXPECT_EQ(request.error_node(), "state");
}

TEST_F(WalkReplace, ForeignDataIsARemovalInTheFirstPassOfItsOwnOperation) {
    // The hook looks at the foreign node's own operation, which no pass rewrites.
    EXPECT_EQ(
        walk(list, build(module("0/2-PSM-OM", {leaf("extra", "1").in_namespace(fake::foreign)}).with_operation(1))),
        0xaaf2f800u);
    EXPECT_EQ(platform.count("list_lvla_aps_apsmodules_apsmodule"), 1u);
    EXPECT_EQ(request.error_node(), "extra");
}

} // namespace
} // namespace walk
