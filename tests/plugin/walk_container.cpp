// A container's walker, step by step; the config container stands for all where they do not differ.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char config[] = "lvla_aps_apsmodule_config";

const Lines &configuration_containers() {
    static const Lines all{"lvla_aps",
                           "lvla_aps_apsmodules",
                           "lvla_aps_apsmodule_config",
                           "lvla_aps_apsmodule_ports",
                           "lvla_aps_ports_lineprimaryin",
                           "lvla_aps_lineprimaryin_config",
                           "lvla_aps_ports_lineprimaryout",
                           "lvla_aps_lineprimaryout_config",
                           "lvla_aps_ports_linesecondaryin",
                           "lvla_aps_linesecondaryin_config",
                           "lvla_aps_ports_linesecondaryout",
                           "lvla_aps_linesecondaryout_config",
                           "lvla_aps_ports_commonoutput"};
    return all;
}

const Lines &state_containers() {
    static const Lines all{
        "lvla_aps_apsmodule_state",      "lvla_aps_lineprimaryin_state",    "lvla_aps_state_opticalpower",
        "lvla_aps_lineprimaryout_state", "lvlb_aps_state_opticalpower",     "lvla_aps_linesecondaryin_state",
        "lvlc_aps_state_opticalpower",   "lvla_aps_linesecondaryout_state", "lvld_aps_state_opticalpower",
        "lvla_aps_commonoutput_state",   "lvle_aps_state_opticalpower"};
    return all;
}

Lines every_container() {
    Lines all = configuration_containers();
    all.insert(all.end(), state_containers().begin(), state_containers().end());
    return all;
}

class WalkContainer : public WalkTest {};

TEST_F(WalkContainer, AMergeWalksEachChildInTheOrderOfTheRequest) {
    request.set_kind(edit);
    Tree &tree = build(container("config", {leaf("wait-to-restore-time", "10"), leaf("revertive", "true")}));
    EXPECT_EQ(walk(config, tree), 0u);
    EXPECT_EQ(story(), (Lines{
                           "+lvla_aps_apsmodule_config",
                           "add_to_hierarchy(config, 1)",
                           "cont_lvla_aps_apsmodule_config(config, 2)",
                           "+lvla_aps_config_waittorestoretime",
                           "leaf_lvla_aps_config_waittorestoretime(config/wait-to-restore-time)",
                           "-lvla_aps_config_waittorestoretime",
                           "+lvla_aps_config_revertive",
                           "leaf_lvla_aps_config_revertive(config/revertive)",
                           "-lvla_aps_config_revertive",
                           "remove_from_hierarchy(config)",
                           "-lvla_aps_apsmodule_config",
                       }));
    EXPECT_EQ(tree.root()->hierarchy_kind, 3u);
    EXPECT_EQ(tree.root()->second_flags, 4u);
    EXPECT_EQ(tree.at("revertive")->hierarchy_kind, 1u);
    EXPECT_EQ(tree.at("revertive")->second_flags, 4u);
}

TEST_F(WalkContainer, OtherBitsOfTheSecondFlagWordStay) {
    request.set_kind(edit);
    Tree &tree = build(container("config"));
    tree.root()->second_flags = 0xf0;
    EXPECT_EQ(walk(config, tree), 0u);
    EXPECT_EQ(tree.root()->second_flags, 0xf4u);
}

TEST_F(WalkContainer, ANodeOnlyWalkOfEveryContainerInAMerge) {
    request.set_kind(edit);
    for (const std::string &suffix : every_container()) {
        SCOPED_TRACE(suffix);
        platform.forget();
        Tree &tree = build(container("node"));
        EXPECT_EQ(walk(suffix, tree), 0u);
        EXPECT_EQ(story(), (Lines{"+" + suffix, "add_to_hierarchy(node, 1)", "cont_" + suffix + "(node, 0)",
                                  "remove_from_hierarchy(node)", "-" + suffix}));
        EXPECT_EQ(tree.root()->hierarchy_kind, 3u);
    }
}

// ---- children that do not count ----

TEST_F(WalkContainer, ChildrenWithoutAnArrayAreABadTree) {
    Lines all = every_container();
    all.emplace_back("lvla_aps_apsmodules_apsmodule");
    for (const std::string &suffix : all) {
        for (const std::uint32_t kind : {get_config, edit, get}) {
            SCOPED_TRACE(suffix);
            platform.forget();
            request.set_kind(kind);
            EXPECT_EQ(walk(suffix, build(container("node").without_array(2))), 0xaaf29e00u);
            EXPECT_EQ(story(), (Lines{"+" + suffix, "ERR " + suffix + ": Failed to get subtrees!", "-" + suffix}));
            EXPECT_EQ(request.error_node(), "none");
        }
    }
}

TEST_F(WalkContainer, NoChildrenNeedNoArray) {
    request.set_kind(edit);
    EXPECT_EQ(walk(config, build(container("config").without_array(0))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 0)"}));
}

TEST_F(WalkContainer, ChildrenThatAreNotValidAreNone) {
    request.set_kind(edit);
    Tree &tree = build(container("config", {leaf("revertive", "true")}).without_flags(64));
    EXPECT_EQ(walk(config, tree), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 0)"}));
    platform.forget();
    EXPECT_EQ(walk(config, build(container("config").without_array(3).without_flags(64))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 0)"}));
}

TEST_F(WalkContainer, TheCallbackGetsTheCountOutsideAWholeSubtreeWalk) {
    // In an edit nothing takes the bit of a content-match container away.
    request.set_kind(edit);
    request.state.read_selection = 1;
    EXPECT_EQ(walk(config, build(container("config", {leaf("revertive", "true")}))), 0u);
    EXPECT_EQ(callbacks().front(), "cont_lvla_aps_apsmodule_config(config, 1)");
}

TEST_F(WalkContainer, ANegativeCountIsNone) {
    request.set_kind(edit);
    EXPECT_EQ(walk(config, build(container("config").without_array(-1))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 0)"}));
}

// ---- a delete that carries content ----

TEST_F(WalkContainer, ADeleteWithContentIsRefusedInConfiguration) {
    request.set_kind(edit);
    for (const std::string &suffix : configuration_containers()) {
        for (const std::uint32_t operation : {3u, 4u}) {
            SCOPED_TRACE(suffix);
            platform.forget();
            Tree &tree = build(container("node", {leaf("revertive")}).with_operation(operation));
            EXPECT_EQ(walk(suffix, tree), 0xaaf2a000u);
            EXPECT_EQ(story(),
                      (Lines{"+" + suffix, "TRC " + suffix + ": Delete request with subtree present", "-" + suffix}));
            EXPECT_EQ(tree.root()->hierarchy_kind, 0u);
            EXPECT_EQ(request.error_node(), "none");
        }
    }
}

TEST_F(WalkContainer, StateHasNoDeleteCheck) {
    request.set_kind(edit);
    for (const std::string &suffix : state_containers()) {
        SCOPED_TRACE(suffix);
        platform.forget();
        EXPECT_EQ(walk(suffix, build(container("node", {leaf("extra")}).with_operation(3))), 0xaaf2ee00u);
        EXPECT_EQ(story(), (Lines{"+" + suffix, "add_to_hierarchy(node, 1)", "cont_" + suffix + "(node, 1)",
                                  "ERR " + suffix + ": Unsupported tag `extra` is specified in the request.",
                                  "error_path()", "remove_from_hierarchy(node)", "-" + suffix}));
    }
}

TEST_F(WalkContainer, ADeleteWithContentIsWalkedWhileADeleteIsSpread) {
    request.set_kind(edit);
    for (const std::uint32_t running : {1u, 2u}) {
        platform.forget();
        request.state.delete_walk = running;
        EXPECT_EQ(walk("lvla_aps_lineprimaryin_config",
                       build(container("config", {leaf("target-attenuation")}).with_operation(3))),
                  0u);
        EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_lineprimaryin_config(config, 1)",
                                      "leaf_lvla_aps_config_targetattenuation(config/target-attenuation)"}));
    }
}

TEST_F(WalkContainer, ADeleteWithContentIsWalkedInAWholeSubtreeWalk) {
    request.set_kind(edit);
    request.state.whole_subtree_walk = 1;
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config",
                   build(container("config", {leaf("target-attenuation")}).with_operation(3))),
              0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_lineprimaryin_config", "cont_lvla_aps_lineprimaryin_config(config, 1)",
                              "+lvla_aps_config_targetattenuation",
                              "leaf_lvla_aps_config_targetattenuation(config/target-attenuation)",
                              "-lvla_aps_config_targetattenuation", "-lvla_aps_lineprimaryin_config"}));
}

// ---- what the container callback says ----

TEST_F(WalkContainer, ASkipEndsEveryContainerWithoutEnd) {
    for (const std::string &suffix : every_container()) {
        for (const std::uint32_t kind : {get_config, edit, get}) {
            SCOPED_TRACE(suffix);
            request.set_kind(kind);
            platform.forget();
            platform.answer("cont_" + suffix, 0xaaf2f600);
            EXPECT_EQ(walk(suffix, build(container("node", {leaf("extra")}))), 0u);
            EXPECT_EQ(story(), (Lines{"+" + suffix, "add_to_hierarchy(node, 1)", "cont_" + suffix + "(node, 1)",
                                      "remove_from_hierarchy(node)"}));
        }
    }
}

TEST_F(WalkContainer, ASkipInAWholeSubtreeWalkPopsNothing) {
    request.state.whole_subtree_walk = 1;
    platform.answer("cont_lvla_aps_apsmodule_config", 0xaaf2f600);
    EXPECT_EQ(walk(config, build(container("config"))), 0u);
    EXPECT_EQ(story(), (Lines{"+lvla_aps_apsmodule_config", "cont_lvla_aps_apsmodule_config(config, 0)"}));
}

TEST_F(WalkContainer, AFailureOfTheCallbackEndsThePass) {
    for (const std::string &suffix : every_container()) {
        SCOPED_TRACE(suffix);
        platform.forget();
        platform.answer("cont_" + suffix, some_failure);
        // Without children a read would be spread over the subtree.
        EXPECT_EQ(walk(suffix, build(container("node"))), some_failure);
        EXPECT_EQ(story(), (Lines{"+" + suffix, "add_to_hierarchy(node, 1)", "cont_" + suffix + "(node, 0)",
                                  "remove_from_hierarchy(node)", "-" + suffix}));
    }
}

// ---- children that stop the walk ----

TEST_F(WalkContainer, TheFirstFailureEndsTheWalkAndIsReturned) {
    request.set_kind(edit);
    platform.answer("leaf_lvla_aps_config_revertive", some_failure);
    EXPECT_EQ(walk("lvla_aps", build(aps({module("0/1-PSM-OM", {container("config", {leaf("revertive", "true"),
                                                                                     leaf("force-to-port", "NONE")}),
                                                                container("ports")}),
                                          module("0/2-PSM-OM")}))),
              some_failure);
    EXPECT_EQ(callbacks(), (Lines{
                               "cont_lvla_aps(aps, 1)",
                               "cont_lvla_aps_apsmodules(aps/aps-modules, 2)",
                               "list_lvla_aps_apsmodules_apsmodule(aps/aps-modules/aps-module)",
                               "leaf_lvla_aps_apsmodule_name(aps/aps-modules/aps-module/name)",
                               "cont_lvla_aps_apsmodule_config(aps/aps-modules/aps-module/config, 2)",
                               "leaf_lvla_aps_config_revertive(aps/aps-modules/aps-module/config/revertive)",
                           }));
    EXPECT_EQ(request.error_node(), "none");
}

TEST_F(WalkContainer, AChildWithoutATagIsABadTree) {
    for (const std::string &suffix : every_container()) {
        for (const std::uint32_t kind : {get_config, edit, get}) {
            SCOPED_TRACE(suffix);
            platform.forget();
            request.set_kind(kind);
            EXPECT_EQ(walk(suffix, build(container("node", {leaf("extra").untagged(), leaf("never")}))), 0xaaf29e00u);
            EXPECT_EQ(story(), (Lines{"+" + suffix, "add_to_hierarchy(node, 1)", "cont_" + suffix + "(node, 2)",
                                      "ERR " + suffix + ": Tag name is not available!", "remove_from_hierarchy(node)",
                                      "-" + suffix}));
            EXPECT_EQ(request.error_node(), "none");
        }
    }
}

TEST_F(WalkContainer, AnUnknownTagIsPassedOverInARead) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        request.set_kind(kind);
        EXPECT_EQ(walk(config, build(container("config", {leaf("hold-off-time"), leaf("revertive")}))), 0u);
        EXPECT_EQ(story(),
                  (Lines{"+lvla_aps_apsmodule_config", "add_to_hierarchy(config, 1)",
                         "cont_lvla_aps_apsmodule_config(config, 2)",
                         "ERR lvla_aps_apsmodule_config: Unsupported tag `hold-off-time` is specified in the request.",
                         "+lvla_aps_config_revertive", "leaf_lvla_aps_config_revertive(config/revertive)",
                         "-lvla_aps_config_revertive", "remove_from_hierarchy(config)", "-lvla_aps_apsmodule_config"}));
        EXPECT_EQ(request.error_node(), "none");
    }
}

TEST_F(WalkContainer, AnUnknownTagEndsEveryOtherRequest) {
    for (const std::uint32_t kind : {1u, 2u, 8u, 9u, 11u, 15u}) {
        SCOPED_TRACE(kind);
        platform.forget();
        request.set_error_node("earlier");
        request.set_kind(kind);
        EXPECT_EQ(walk(config, build(container("config", {leaf("hold-off-time", "1"), leaf("revertive")}))),
                  0xaaf2ee00u);
        EXPECT_EQ(story(),
                  (Lines{"+lvla_aps_apsmodule_config", "add_to_hierarchy(config, 1)",
                         "cont_lvla_aps_apsmodule_config(config, 2)",
                         "ERR lvla_aps_apsmodule_config: Unsupported tag `hold-off-time` is specified in the request.",
                         "error_path()", "remove_from_hierarchy(config)", "-lvla_aps_apsmodule_config"}));
        EXPECT_EQ(request.error_node(), "hold-off-time");
        // The name is recorded before the location is raised.
        EXPECT_EQ(
            platform.calls(fake::Heap | fake::Walk),
            (Lines{"add_to_hierarchy(ctx, config, 1)", "named_free(\"earlier\")",
                   "strdup(\"hold-off-time\", \"YFW MAP\")", "error_path(ctx)", "remove_from_hierarchy(ctx, config)"}));
    }
}

TEST_F(WalkContainer, ForeignDataIsPassedOverInAReadAndInADelete) {
    EXPECT_EQ(walk(config, build(container("config", {container("extra", {leaf("deep")}).in_namespace(fake::foreign),
                                                      leaf("revertive")}))),
              0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 2)",
                                  "lvla_aps_apsmodule_config_parse_augments(config/extra)",
                                  "leaf_lvla_aps_config_revertive(config/revertive)"}));
    platform.forget();
    request.set_kind(edit);
    EXPECT_EQ(walk(config, build(container("config", {leaf("extra").in_namespace(fake::foreign).with_operation(3)}))),
              0u);
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(WalkContainer, ForeignDataIsRefusedInAnAdd) {
    request.set_kind(edit);
    for (const std::uint32_t operation : {0u, 1u, 2u}) {
        platform.forget();
        request.set_error_node("earlier");
        EXPECT_EQ(walk(config, build(container(
                                   "config", {leaf("extra", "1").in_namespace(fake::foreign).with_operation(operation),
                                              leaf("revertive", "true")}))),
                  0xaaf2f800u);
        EXPECT_EQ(request.error_node(), "extra");
        EXPECT_EQ(platform.calls(fake::Heap | fake::Walk | fake::Callbacks),
                  (Lines{"add_to_hierarchy(ctx, config, 1)", "cont_lvla_aps_apsmodule_config(config, 2)",
                         "lvla_aps_apsmodule_config_parse_augments(config/extra)", "named_free(\"earlier\")",
                         "strdup(\"extra\", \"YFW MAP\")", "error_path(ctx)", "remove_from_hierarchy(ctx, config)"}));
    }
}

// ---- state containers ----

TEST_F(WalkContainer, StateIsPassedOverInAGetConfig) {
    EXPECT_EQ(walk("lvla_aps_apsmodule_state", build(container("state", {leaf("revertive"), leaf("active-path")}))),
              0u);
    EXPECT_EQ(story(), (Lines{
                           "+lvla_aps_apsmodule_state",
                           "add_to_hierarchy(state, 1)",
                           "cont_lvla_aps_apsmodule_state(state, 2)",
                           "ERR lvla_aps_apsmodule_state: Unsupported tag `revertive` is specified in the request.",
                           "ERR lvla_aps_apsmodule_state: Unsupported tag `active-path` is specified in the request.",
                           "remove_from_hierarchy(state)",
                           "-lvla_aps_apsmodule_state",
                       }));
}

TEST_F(WalkContainer, StateInAnEditStopsAtStateItself) {
    request.set_kind(edit);
    EXPECT_EQ(walk("lvla_aps_ports_lineprimaryin",
                   build(container("line-primary-in", {container("state", {leaf("attenuation", "1")})}))),
              0xaaf2ee00u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_ports_lineprimaryin(line-primary-in, 1)"}));
    EXPECT_EQ(request.error_node(), "state");
}

} // namespace
} // namespace walk
