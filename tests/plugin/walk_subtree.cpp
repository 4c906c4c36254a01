// Whole-subtree walks: a node that names nothing below it stands for everything below it.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char list[] = "lvla_aps_apsmodules_apsmodule";
constexpr char no_keys[] = "ERR lvla_aps_apsmodules_apsmodule: No keys specified with a list node.";

Lines joined(const std::vector<Lines> &pieces) {
    Lines lines;
    for (const Lines &piece : pieces) {
        lines.insert(lines.end(), piece.begin(), piece.end());
    }
    return lines;
}

// The callbacks of a node's content, each called with the node itself.
Lines config_of(const std::string &node) {
    const std::string call = "(" + node + ")";
    return {
        "cont_lvla_aps_apsmodule_config(" + node + ", 0)",
        "leaf_lvla_aps_config_name" + call,
        "leaf_lvla_aps_config_revertive" + call,
        "leaf_lvla_aps_config_waittorestoretime" + call,
        "leaf_lvla_aps_config_primaryswitchthreshold" + call,
        "leaf_lvla_aps_config_primaryswitchhysteresis" + call,
        "leaf_lvla_aps_config_secondaryswitchthreshold" + call,
        "leaf_lvla_aps_config_relativeswitchthreshold" + call,
        "leaf_lvla_aps_config_relativeswitchthresholdoffset" + call,
        "leaf_lvla_aps_config_forcetoport" + call,
        "lvla_aps_apsmodule_config_parse_augments" + call,
    };
}

Lines state_of(const std::string &node) {
    const std::string call = "(" + node + ")";
    return {
        "cont_lvla_aps_apsmodule_state(" + node + ", 0)",
        "leaf_lvla_aps_state_name" + call,
        "leaf_lvla_aps_state_revertive" + call,
        "leaf_lvla_aps_state_waittorestoretime" + call,
        "leaf_lvla_aps_state_primaryswitchthreshold" + call,
        "leaf_lvla_aps_state_primaryswitchhysteresis" + call,
        "leaf_lvla_aps_state_secondaryswitchthreshold" + call,
        "leaf_lvla_aps_state_relativeswitchthreshold" + call,
        "leaf_lvla_aps_state_relativeswitchthresholdoffset" + call,
        "leaf_lvla_aps_state_forcetoport" + call,
        "leaf_lvla_aps_state_activepath" + call,
        "lvla_aps_apsmodule_state_parse_augments" + call,
    };
}

Lines port_config_of(const std::string &level, const std::string &port, const std::string &node) {
    const std::string call = "(" + node + ")";
    return {
        "cont_lvla_aps_" + port + "_config(" + node + ", 0)",
        "leaf_" + level + "_aps_config_targetattenuation" + call,
        "lvla_aps_" + port + "_config_parse_augments" + call,
    };
}

Lines port_state_of(const std::string &level, const std::string &port, const std::string &node) {
    const std::string call = "(" + node + ")";
    return {
        "cont_lvla_aps_" + port + "_state(" + node + ", 0)",
        "leaf_" + level + "_aps_state_targetattenuation" + call,
        "leaf_" + level + "_aps_state_attenuation" + call,
        "cont_" + level + "_aps_state_opticalpower(" + node + ", 0)",
        "leaf_" + level + "_aps_opticalpower_instant" + call,
        "leaf_" + level + "_aps_opticalpower_avg" + call,
        "leaf_" + level + "_aps_opticalpower_min" + call,
        "leaf_" + level + "_aps_opticalpower_max" + call,
        level + "_aps_state_opticalpower_parse_augments" + call,
        "lvla_aps_" + port + "_state_parse_augments" + call,
    };
}

Lines ports_of(const std::string &node, bool with_state) {
    const std::vector<std::pair<std::string, std::string>> ports{{"lvla", "lineprimaryin"},
                                                                 {"lvlb", "lineprimaryout"},
                                                                 {"lvlc", "linesecondaryin"},
                                                                 {"lvld", "linesecondaryout"},
                                                                 {"lvle", "commonoutput"}};
    Lines lines{"cont_lvla_aps_apsmodule_ports(" + node + ", 0)"};
    for (const auto &[level, port] : ports) {
        lines = joined({lines,
                        {called("cont_lvla_aps_ports_" + port, node + ", 0")},
                        level == "lvle" ? Lines{} : port_config_of(level, port, node),
                        with_state ? port_state_of(level, port, node) : Lines{},
                        {called("lvla_aps_ports_" + port + "_parse_augments", node)}});
    }
    lines.push_back("lvla_aps_apsmodule_ports_parse_augments(" + node + ")");
    return lines;
}

class WalkSubtree : public WalkTest {};

// ---- an entry that carries nothing but its key ----

const Lines &key_first() {
    static const Lines lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)",
                             "leaf_lvla_aps_apsmodule_name(aps-module/name)"};
    return lines;
}

const Lines &hook_last() {
    static const Lines lines{"lvla_aps_apsmodules_apsmodule_parse_augments(aps-module)"};
    return lines;
}

TEST_F(WalkSubtree, AGetConfigOfAKeyedEntry) {
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(callbacks(), joined({key_first(), config_of("aps-module"), ports_of("aps-module", false), hook_last()}));
    // Containers of a whole-subtree walk do not stand on the hierarchy; the key is kept on the stack meanwhile.
    EXPECT_EQ(operations(), (Lines{"add_to_hierarchy(ctx, aps-module, 2)",
                                   "update_current_list(ctx, \"/aps/aps-modules/aps-module\")",
                                   "itree_push(ctx, children of aps-module, 1, 0)", "itree_pop(ctx)",
                                   "remove_from_hierarchy(ctx, aps-module)"}));
    EXPECT_EQ(messages(), Lines{});
    EXPECT_EQ(request.state.read_selection, 0u);
}

TEST_F(WalkSubtree, AGetOfAKeyedEntry) {
    request.set_kind(get);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(callbacks(), joined({key_first(), config_of("aps-module"), state_of("aps-module"),
                                   ports_of("aps-module", true), hook_last()}));
}

TEST_F(WalkSubtree, TheStoryOfOneLeafOfAKeyedRead) {
    EXPECT_EQ(walk("lvla_aps_ports_lineprimaryin", build(container("line-primary-in"))), 0u);
    EXPECT_EQ(story(),
              (Lines{"+lvla_aps_ports_lineprimaryin", "add_to_hierarchy(line-primary-in, 1)",
                     "cont_lvla_aps_ports_lineprimaryin(line-primary-in, 0)", "+lvla_aps_lineprimaryin_config",
                     "cont_lvla_aps_lineprimaryin_config(line-primary-in, 0)", "+lvla_aps_config_targetattenuation",
                     "leaf_lvla_aps_config_targetattenuation(line-primary-in)", "-lvla_aps_config_targetattenuation",
                     "lvla_aps_lineprimaryin_config_parse_augments(line-primary-in)", "-lvla_aps_lineprimaryin_config",
                     "lvla_aps_ports_lineprimaryin_parse_augments(line-primary-in)",
                     "remove_from_hierarchy(line-primary-in)", "-lvla_aps_ports_lineprimaryin"}));
}

TEST_F(WalkSubtree, ADeleteOfAKeyedEntry) {
    request.set_kind(edit);
    for (const std::uint32_t operation : {3u, 4u}) {
        platform.forget();
        drop_trees();
        EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(operation))), 0u);
        EXPECT_EQ(callbacks(),
                  joined({key_first(), config_of("aps-module"), ports_of("aps-module", false), hook_last()}));
    }
}

TEST_F(WalkSubtree, TheStateOfTheRequestWhileAKeyedEntryIsDeleted) {
    request.set_kind(edit);
    Tree &tree = build(module("0/2-PSM-OM").with_operation(3));
    sample(tree.root());
    EXPECT_EQ(walk(list, tree), 0u);
    ASSERT_EQ(samples.size(), 2u + 11u + 24u + 1u);
    EXPECT_EQ(samples[0], sampled("list_lvla_aps_apsmodules_apsmodule", "op 3 children 1",
                                  "whole 0 delete 2 replace 0 marker 0 selection 0x0"));
    EXPECT_EQ(samples[1], sampled("leaf_lvla_aps_apsmodule_name", "op 3 children 1",
                                  "whole 0 delete 0 replace 0 marker 0 selection 0x0"));
    for (std::size_t i = 2; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].substr(samples[i].find(':')),
                  ": op 4 children 0 hidden | whole 1 delete 1 replace 0 marker 0 selection 0x0")
            << samples[i];
    }
    // Operation 3 was put back without flag 16.
    EXPECT_EQ(tree.root()->flags, 1u | 64u);
    EXPECT_EQ(request.context.list_operation, 0u);
}

TEST_F(WalkSubtree, AMergeOfAKeyedEntryIsNotSpread) {
    for (const std::uint32_t kind : {1u, 8u, 15u, 2u}) {
        for (const std::uint32_t operation : {0u, 2u}) {
            platform.forget();
            drop_trees();
            request.set_kind(kind);
            EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(operation))), 0u);
            EXPECT_EQ(callbacks(), key_first());
        }
    }
}

TEST_F(WalkSubtree, FailuresWhileAnEntryIsSpreadDoNotCount) {
    request.set_kind(edit);
    platform.answer("leaf_lvla_aps_config_revertive", some_failure);
    platform.answer("cont_lvla_aps_apsmodule_ports", some_failure);
    platform.answer("lvla_aps_apsmodules_apsmodule_parse_augments", some_failure);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(3))), 0u);
    EXPECT_EQ(
        callbacks(),
        joined({key_first(), config_of("aps-module"), {"cont_lvla_aps_apsmodule_ports(aps-module, 0)"}, hook_last()}));
}

TEST_F(WalkSubtree, AContainerThatIsSkippedInASpreadIsPassedOver) {
    platform.answer("cont_lvla_aps_apsmodule_config", 0xaaf2f600);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(callbacks(), joined({key_first(),
                                   {"cont_lvla_aps_apsmodule_config(aps-module, 0)"},
                                   ports_of("aps-module", false),
                                   hook_last()}));
}

TEST_F(WalkSubtree, AMergeDoesNotFailOnItsOwnHook) {
    // The hooks are asked in a whole-subtree walk, where they look at the entry itself.
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(3))), 0u);
    EXPECT_EQ(request.error_node(), "none");
    EXPECT_EQ(platform.count("error_path"), 0u);
}

TEST_F(WalkSubtree, ADeleteOfAnEntryWithContentIsWalkedAsItStands) {
    // Not the key alone: nothing is spread, and the container under it is no delete of its own.
    request.set_kind(edit);
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM", {container("config", {leaf("revertive").with_operation(3)})})
                                   .with_operation(3))),
              0u);
    EXPECT_EQ(callbacks(), joined({key_first(),
                                   {"cont_lvla_aps_apsmodule_config(aps-module/config, 1)",
                                    "leaf_lvla_aps_config_revertive(aps-module/config/revertive)"}}));
}

TEST_F(WalkSubtree, AKeyedEntryInAWholeSubtreeWalkOrADeleteWalkIsNotSpreadAgain) {
    request.state.whole_subtree_walk = 1;
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(callbacks(), key_first());
    request.state.whole_subtree_walk = 0;
    request.state.delete_walk = 1;
    request.set_kind(edit);
    platform.forget();
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM").with_operation(3))), 0u);
    EXPECT_EQ(callbacks(), key_first());
}

TEST_F(WalkSubtree, TheListCallbacksChildrenStayBelowTheSpreadOnTheStack) {
    Tree &other = build(module("0/1-PSM-OM"), "other");
    platform.before("list_lvla_aps_apsmodules_apsmodule", [&](const std::string &) {
        platform.itree_stack.push_back({other.root()->children, 1});
    });
    std::size_t height = 0;
    platform.before("cont_lvla_aps_apsmodule_config",
                    [&](const std::string &) { height = platform.itree_stack.size(); });
    EXPECT_EQ(walk(list, build(module("0/2-PSM-OM"))), 0u);
    EXPECT_EQ(height, 2u);
    EXPECT_EQ(operations(), (Lines{"add_to_hierarchy(ctx, aps-module, 2)",
                                   "update_current_list(ctx, \"/aps/aps-modules/aps-module\")", "itree_peak(ctx)",
                                   "itree_push(ctx, children of aps-module, 1, 0)", "itree_pop(ctx)", "itree_pop(ctx)",
                                   "remove_from_hierarchy(ctx, aps-module)"}));
}

// ---- an entry without children ----

TEST_F(WalkSubtree, AReadOfTheWholeList) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        EXPECT_EQ(walk(list, build(bare_module())), 0u);
        // The key first, state last.
        EXPECT_EQ(callbacks(), joined({{"list_lvla_aps_apsmodules_apsmodule(aps-module)",
                                        "leaf_lvla_aps_apsmodule_name(aps-module)"},
                                       config_of("aps-module"),
                                       ports_of("aps-module", kind == get),
                                       kind == get ? state_of("aps-module") : Lines{},
                                       hook_last()}));
        EXPECT_EQ(messages(), (Lines{no_keys}));
        EXPECT_EQ(platform.count("itree_push"), 0u);
        EXPECT_EQ(adds(), Lines{});
    }
}

TEST_F(WalkSubtree, TheStateOfTheRequestWhileTheWholeListIsRead) {
    Tree &tree = build(bare_module());
    sample(tree.root());
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(samples[0], sampled("list_lvla_aps_apsmodules_apsmodule", "op 0 children 0 hidden",
                                  "whole 0 delete 0 replace 0 marker 0 selection 0x0"));
    for (std::size_t i = 1; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].substr(samples[i].find(':')),
                  ": op 0 children 0 hidden | whole 1 delete 0 replace 0 marker 0 selection 0x0")
            << samples[i];
    }
}

TEST_F(WalkSubtree, ADeleteOfTheWholeListInAKindThatNeedsNoKeys) {
    request.set_kind(2);
    Tree &tree = build(bare_module().with_operation(3));
    sample(tree.root());
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(callbacks(),
              joined({{"list_lvla_aps_apsmodules_apsmodule(aps-module)", "leaf_lvla_aps_apsmodule_name(aps-module)"},
                      config_of("aps-module"),
                      ports_of("aps-module", false),
                      hook_last()}));
    EXPECT_EQ(samples[0], sampled("list_lvla_aps_apsmodules_apsmodule", "op 3 children 0 hidden",
                                  "whole 0 delete 0 replace 0 marker 0 selection 0x0"));
    for (std::size_t i = 1; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].substr(samples[i].find(':')),
                  ": op 4 children 0 hidden | whole 1 delete 1 replace 0 marker 0 selection 0x0")
            << samples[i];
    }
    EXPECT_EQ(tree.root()->flags, 1u);
}

TEST_F(WalkSubtree, AnAddOfAnEntryWithoutChildrenIsNotSpread) {
    request.set_kind(2);
    EXPECT_EQ(walk(list, build(bare_module())), 0u);
    EXPECT_EQ(callbacks(), (Lines{"list_lvla_aps_apsmodules_apsmodule(aps-module)"}));
}

// ---- aps itself ----

Lines whole_aps(bool with_state) {
    return joined({{"cont_lvla_aps(aps, 0)", "cont_lvla_aps_apsmodules(aps, 0)",
                    "list_lvla_aps_apsmodules_apsmodule(aps)", "leaf_lvla_aps_apsmodule_name(aps)"},
                   config_of("aps"),
                   ports_of("aps", with_state),
                   with_state ? state_of("aps") : Lines{},
                   {"lvla_aps_apsmodules_apsmodule_parse_augments(aps)", "lvla_aps_apsmodules_parse_augments(aps)",
                    "lvla_aps_parse_augments(aps)"}});
}

TEST_F(WalkSubtree, AReadOfApsIsAReadOfEverything) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        EXPECT_EQ(walk("lvla_aps", build(container("aps"))), 0u);
        EXPECT_EQ(callbacks(), whole_aps(kind == get));
        EXPECT_EQ(messages(), (Lines{no_keys}));
        EXPECT_EQ(operations(),
                  (Lines{"add_to_hierarchy(ctx, aps, 1)", "update_current_list(ctx, \"/aps/aps-modules/aps-module\")",
                         "remove_from_hierarchy(ctx, aps)"}));
    }
}

TEST_F(WalkSubtree, ADeleteOfApsIsADeleteOfEverything) {
    request.set_kind(edit);
    Tree &tree = build(container("aps").with_operation(3));
    sample(tree.root());
    EXPECT_EQ(walk("lvla_aps", tree), 0u);
    EXPECT_EQ(callbacks(), whole_aps(false));
    EXPECT_EQ(messages(), (Lines{no_keys}));
    EXPECT_EQ(samples[0],
              sampled("cont_lvla_aps", "op 3 children 0 hidden", "whole 0 delete 0 replace 0 marker 0 selection 0x0"));
    EXPECT_EQ(samples[1], sampled("cont_lvla_aps_apsmodules", "op 4 children 0 hidden",
                                  "whole 1 delete 0 replace 0 marker 0 selection 0x0"));
    // From the list callback to the list's hook a delete is being spread.
    for (std::size_t i = 2; i + 2 < samples.size(); ++i) {
        EXPECT_EQ(samples[i].substr(samples[i].find(':')),
                  ": op 4 children 0 hidden | whole 1 delete 1 replace 0 marker 0 selection 0x0")
            << samples[i];
    }
    EXPECT_EQ(samples[samples.size() - 2], sampled("lvla_aps_apsmodules_parse_augments", "op 4 children 0 hidden",
                                                   "whole 1 delete 0 replace 0 marker 0 selection 0x0"));
    EXPECT_EQ(samples.back(), sampled("lvla_aps_parse_augments", "op 4 children 0 hidden",
                                      "whole 1 delete 0 replace 0 marker 0 selection 0x0"));
    EXPECT_EQ(tree.root()->flags, 1u);
}

TEST_F(WalkSubtree, AMergeOfApsAloneIsNoMoreThanThat) {
    request.set_kind(edit);
    EXPECT_EQ(walk("lvla_aps", build(container("aps"))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps(aps, 0)"}));
}

TEST_F(WalkSubtree, AReadOfApsModules) {
    EXPECT_EQ(walk("lvla_aps", build(aps({}))), 0u);
    EXPECT_EQ(callbacks().at(0), "cont_lvla_aps(aps, 1)");
    EXPECT_EQ(callbacks().at(1), "cont_lvla_aps_apsmodules(aps/aps-modules, 0)");
    EXPECT_EQ(callbacks().at(2), "list_lvla_aps_apsmodules_apsmodule(aps/aps-modules)");
    EXPECT_EQ(callbacks().back(), "lvla_aps_apsmodules_parse_augments(aps/aps-modules)");
}

TEST_F(WalkSubtree, AReplaceOfApsRemovesEverythingFirst) {
    request.set_kind(edit);
    EXPECT_EQ(walk("lvla_aps", build(aps({module("0/2-PSM-OM")}).with_operation(1))), 0u);
    EXPECT_EQ(callbacks(), joined({whole_aps(false),
                                   {"cont_lvla_aps(aps, 1)", "cont_lvla_aps_apsmodules(aps/aps-modules, 1)",
                                    "list_lvla_aps_apsmodules_apsmodule(aps/aps-modules/aps-module)",
                                    "leaf_lvla_aps_apsmodule_name(aps/aps-modules/aps-module/name)"}}));
}

// ---- single containers ----

TEST_F(WalkSubtree, ReadsOfSingleContainers) {
    request.set_kind(get);
    EXPECT_EQ(walk("lvla_aps_apsmodule_config", build(container("config"))), 0u);
    EXPECT_EQ(callbacks(), config_of("config"));
    platform.forget();
    EXPECT_EQ(walk("lvla_aps_apsmodule_state", build(container("state"))), 0u);
    EXPECT_EQ(callbacks(), state_of("state"));
    platform.forget();
    EXPECT_EQ(walk("lvla_aps_apsmodule_ports", build(container("ports"))), 0u);
    EXPECT_EQ(callbacks(), ports_of("ports", true));
}

TEST_F(WalkSubtree, AGetConfigOfAStateContainerAsksItsHookOnly) {
    EXPECT_EQ(walk("lvla_aps_apsmodule_state", build(container("state"))), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_apsmodule_state(state, 0)", "lvla_aps_apsmodule_state_parse_augments(state)"}));
    platform.forget();
    EXPECT_EQ(walk("lvle_aps_state_opticalpower", build(container("optical-power"))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvle_aps_state_opticalpower(optical-power, 0)",
                                  "lvle_aps_state_opticalpower_parse_augments(optical-power)"}));
}

TEST_F(WalkSubtree, AStateContainerIsNeverDeleted) {
    request.set_kind(edit);
    EXPECT_EQ(walk("lvla_aps_apsmodule_state", build(container("state").with_operation(3))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_state(state, 0)"}));
}

TEST_F(WalkSubtree, ADeleteOfAPort) {
    request.set_kind(edit);
    Tree &tree = build(container("line-secondary-out").with_operation(3));
    sample(tree.root());
    EXPECT_EQ(walk("lvla_aps_ports_linesecondaryout", tree), 0u);
    EXPECT_EQ(callbacks(), joined({{"cont_lvla_aps_ports_linesecondaryout(line-secondary-out, 0)"},
                                   port_config_of("lvld", "linesecondaryout", "line-secondary-out"),
                                   {"lvla_aps_ports_linesecondaryout_parse_augments(line-secondary-out)"}}));
    EXPECT_EQ(samples.front().substr(samples.front().find(':')),
              ": op 3 children 0 hidden | whole 0 delete 0 replace 0 marker 0 selection 0x0");
    EXPECT_EQ(samples.back().substr(samples.back().find(':')),
              ": op 4 children 0 hidden | whole 1 delete 0 replace 0 marker 0 selection 0x0");
    EXPECT_EQ(tree.root()->operation, 3u);
    EXPECT_EQ(tree.root()->flags, 1u);
}

TEST_F(WalkSubtree, AWholeSubtreeWalkOfSomeoneAboveIsNotEnded) {
    request.state.whole_subtree_walk = 1;
    EXPECT_EQ(walk("lvla_aps_apsmodule_config", build(container("config"))), 0u);
    EXPECT_EQ(request.state.whole_subtree_walk, 1u);
    EXPECT_EQ(callbacks(), config_of("config"));
}

} // namespace
} // namespace walk
