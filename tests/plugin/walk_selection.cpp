// What a read selects: leaves without a value, leaves that are only matched, or a container as a whole.
#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char config[] = "lvla_aps_apsmodule_config";
constexpr char port_state[] = "lvla_aps_lineprimaryin_state";

class WalkSelection : public WalkTest {
protected:
    [[nodiscard]] std::uint32_t selection() const { return request.state.read_selection; }
};

Lines whole_config(const std::string &node) {
    return {
        "leaf_lvla_aps_config_name(" + node + ")",
        "leaf_lvla_aps_config_revertive(" + node + ")",
        "leaf_lvla_aps_config_waittorestoretime(" + node + ")",
        "leaf_lvla_aps_config_primaryswitchthreshold(" + node + ")",
        "leaf_lvla_aps_config_primaryswitchhysteresis(" + node + ")",
        "leaf_lvla_aps_config_secondaryswitchthreshold(" + node + ")",
        "leaf_lvla_aps_config_relativeswitchthreshold(" + node + ")",
        "leaf_lvla_aps_config_relativeswitchthresholdoffset(" + node + ")",
        "leaf_lvla_aps_config_forcetoport(" + node + ")",
        "lvla_aps_apsmodule_config_parse_augments(" + node + ")",
    };
}

Lines joined(Lines first, const Lines &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(WalkSelection, ContentMatchesAloneSelectTheWholeContainer) {
    for (const std::uint32_t kind : {get_config, get}) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        request.state.read_selection = 0;
        EXPECT_EQ(walk(config, build(container("config", {leaf("revertive", "true"), leaf("force-to-port", "NONE")}))),
                  0u);
        EXPECT_EQ(callbacks(), joined({"cont_lvla_aps_apsmodule_config(config, 2)",
                                       "leaf_lvla_aps_config_revertive(config/revertive)",
                                       "leaf_lvla_aps_config_forcetoport(config/force-to-port)"},
                                      whole_config("config")));
        EXPECT_EQ(selection(), 0x10000u);
    }
}

TEST_F(WalkSelection, TheBitsWhileAContainerIsWalkedWhole) {
    Tree &tree = build(container("config", {leaf("target-attenuation", "1")}));
    sample(tree.root());
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config", tree), 0u);
    EXPECT_EQ(samples, (Lines{
                           sampled("cont_lvla_aps_lineprimaryin_config", "op 0 children 1",
                                   "whole 0 delete 0 replace 0 marker 0 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 0 children 1",
                                   "whole 0 delete 0 replace 0 marker 0 selection 0x0"),
                           sampled("leaf_lvla_aps_config_targetattenuation", "op 0 children 1",
                                   "whole 1 delete 0 replace 0 marker 0 selection 0x10001"),
                           sampled("lvla_aps_lineprimaryin_config_parse_augments", "op 0 children 1",
                                   "whole 1 delete 0 replace 0 marker 0 selection 0x10001"),
                       }));
}

TEST_F(WalkSelection, AnEmptyTextIsAContentMatch) {
    EXPECT_EQ(walk(config, build(container("config", {leaf("revertive", "")}))), 0u);
    EXPECT_EQ(callbacks().size(), 2u + 10u);
}

TEST_F(WalkSelection, SelectionsAloneSelectThemselves) {
    EXPECT_EQ(walk(config, build(container("config", {leaf("revertive"), leaf("force-to-port")}))), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_apsmodule_config(config, 2)", "leaf_lvla_aps_config_revertive(config/revertive)",
                     "leaf_lvla_aps_config_forcetoport(config/force-to-port)"}));
    EXPECT_EQ(selection(), 0x2u);
}

TEST_F(WalkSelection, AMixtureSelectsWhatIsNamedInEitherOrder) {
    EXPECT_EQ(walk(config, build(container("config", {leaf("revertive", "true"), leaf("force-to-port")}))), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_apsmodule_config(config, 2)", "leaf_lvla_aps_config_revertive(config/revertive)",
                     "leaf_lvla_aps_config_forcetoport(config/force-to-port)"}));
    EXPECT_EQ(selection(), 0x10006u);
    platform.forget();
    EXPECT_EQ(walk(config, build(container("config", {leaf("force-to-port"), leaf("revertive", "true")}))), 0u);
    EXPECT_EQ(platform.count("leaf_lvla_aps_config_name"), 0u);
    EXPECT_EQ(selection(), 0x10006u);
}

TEST_F(WalkSelection, AnEditSelectsNothing) {
    request.set_kind(edit);
    request.state.read_selection = 0xffffffff;
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config", build(container("config", {leaf("target-attenuation", "1")}))), 0u);
    EXPECT_EQ(selection(), 0xffffffffu);
}

TEST_F(WalkSelection, OnlyUnknownTagsSelectNothing) {
    EXPECT_EQ(walk(config, build(container("config", {leaf("hold-off-time"), leaf("x").in_namespace(fake::foreign)}))),
              0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_apsmodule_config(config, 2)",
                                  "lvla_aps_apsmodule_config_parse_augments(config/x)"}));
}

TEST_F(WalkSelection, AFailingContentMatchStillSelectsTheWholeContainer) {
    platform.answer("leaf_lvla_aps_config_revertive", some_failure, 1);
    EXPECT_EQ(walk(config, build(container("config", {leaf("revertive", "true"), leaf("force-to-port")}))),
              some_failure);
    EXPECT_EQ(callbacks(),
              joined({"cont_lvla_aps_apsmodule_config(config, 2)", "leaf_lvla_aps_config_revertive(config/revertive)"},
                     whole_config("config")));
}

// ---- entering a container or an entry ----

TEST_F(WalkSelection, EnteringMasksTheBits) {
    std::vector<std::uint32_t> seen;
    platform.before("cont_lvla_aps_apsmodule_config", [&](const std::string &) { seen.push_back(selection()); });
    platform.before("list_lvla_aps_apsmodules_apsmodule", [&](const std::string &) { seen.push_back(selection()); });
    for (const std::uint32_t kind : {get_config, get}) {
        request.set_kind(kind);
        request.state.read_selection = 0xffffffff;
        EXPECT_EQ(walk(config, build(container("config", {leaf("revertive")}))), 0u);
        EXPECT_EQ(selection(), 0x11111112u);
        request.state.read_selection = 0xffffffff;
        EXPECT_EQ(walk("lvla_aps_apsmodules_apsmodule", build(container("aps-module", {leaf("name")}))), 0u);
        EXPECT_EQ(selection(), 0x11111110u);
    }
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{0x11111110, 0x11111110, 0x11111110, 0x11111110}));
}

TEST_F(WalkSelection, AWholeSubtreeWalkMasksWhenItEndsOnly) {
    std::vector<std::uint32_t> seen;
    platform.before("cont_lvla_aps_lineprimaryin_config", [&](const std::string &) { seen.push_back(selection()); });
    request.state.whole_subtree_walk = 1;
    request.state.read_selection = 0xfffffffe;
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config", build(container("config"))), 0u);
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{0xfffffffe}));
    EXPECT_EQ(selection(), 0x11111110u);
}

TEST_F(WalkSelection, AContentMatchAnywhereIsRemembered) {
    EXPECT_EQ(
        walk("lvla_aps", build(aps({module("0/1-PSM-OM", {container("config", {leaf("revertive", "true")}),
                                                          container("ports", {container("line-primary-in")})})}))),
        0u);
    EXPECT_EQ(selection(), 0x10000u);
}

TEST_F(WalkSelection, AContainerWithoutChildrenIsSelectedAsAWhole) {
    request.set_kind(get_config);
    request.state.read_selection = 0;
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config", build(container("config"))), 0u);
    EXPECT_EQ(callbacks(),
              (Lines{"cont_lvla_aps_lineprimaryin_config(config, 0)", "leaf_lvla_aps_config_targetattenuation(config)",
                     "lvla_aps_lineprimaryin_config_parse_augments(config)"}));
    EXPECT_EQ(selection(), 0u);
}

// ---- containers in containers: what is seen depends on the order ----

TEST_F(WalkSelection, AContentMatchBeforeAContainerIsForgottenWhenItIsEntered) {
    request.set_kind(get);
    EXPECT_EQ(walk(port_state, build(container("state", {leaf("attenuation", "5"),
                                                         container("optical-power", {leaf("instant")})}))),
              0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_lineprimaryin_state(state, 2)",
                                  "leaf_lvla_aps_state_attenuation(state/attenuation)",
                                  "cont_lvla_aps_state_opticalpower(state/optical-power, 1)",
                                  "leaf_lvla_aps_opticalpower_instant(state/optical-power/instant)"}));
    EXPECT_EQ(selection(), 0x10002u);
}

TEST_F(WalkSelection, AContentMatchBehindASelectionInAContainerIsAMixture) {
    request.set_kind(get);
    EXPECT_EQ(walk(port_state, build(container("state", {container("optical-power", {leaf("instant")}),
                                                         leaf("attenuation", "5")}))),
              0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_lineprimaryin_state(state, 2)",
                                  "cont_lvla_aps_state_opticalpower(state/optical-power, 1)",
                                  "leaf_lvla_aps_opticalpower_instant(state/optical-power/instant)",
                                  "leaf_lvla_aps_state_attenuation(state/attenuation)"}));
    EXPECT_EQ(selection(), 0x10006u);
}

const Lines &power_of_match() {
    static const Lines lines{
        "cont_lvla_aps_state_opticalpower(state/optical-power, 1)",
        "leaf_lvla_aps_opticalpower_instant(state/optical-power/instant)",
        // as a whole
        "leaf_lvla_aps_opticalpower_instant(state/optical-power)",
        "leaf_lvla_aps_opticalpower_avg(state/optical-power)",
        "leaf_lvla_aps_opticalpower_min(state/optical-power)",
        "leaf_lvla_aps_opticalpower_max(state/optical-power)",
        "lvla_aps_state_opticalpower_parse_augments(state/optical-power)",
    };
    return lines;
}

TEST_F(WalkSelection, AContentMatchBeforeAContainerWithOneOfItsOwnSelectsThatContainerOnly) {
    request.set_kind(get);
    EXPECT_EQ(walk(port_state, build(container("state", {leaf("attenuation", "5"),
                                                         container("optical-power", {leaf("instant", "1")})}))),
              0u);
    EXPECT_EQ(callbacks(), joined({"cont_lvla_aps_lineprimaryin_state(state, 2)",
                                   "leaf_lvla_aps_state_attenuation(state/attenuation)"},
                                  power_of_match()));
    EXPECT_EQ(selection(), 0x10000u);
}

TEST_F(WalkSelection, AContentMatchBehindAContainerWithOneOfItsOwnSelectsBoth) {
    request.set_kind(get);
    Tree &tree =
        build(container("state", {container("optical-power", {leaf("instant", "1")}), leaf("attenuation", "5")}));
    EXPECT_EQ(walk(port_state, tree), 0u);
    EXPECT_EQ(callbacks(),
              joined(joined({"cont_lvla_aps_lineprimaryin_state(state, 2)"}, power_of_match()),
                     {
                         "leaf_lvla_aps_state_attenuation(state/attenuation)",
                         // State as a whole; the containers in it are called with state and count no children.
                         "leaf_lvla_aps_state_targetattenuation(state)",
                         "leaf_lvla_aps_state_attenuation(state)",
                         "cont_lvla_aps_state_opticalpower(state, 0)",
                         "leaf_lvla_aps_opticalpower_instant(state)",
                         "leaf_lvla_aps_opticalpower_avg(state)",
                         "leaf_lvla_aps_opticalpower_min(state)",
                         "leaf_lvla_aps_opticalpower_max(state)",
                         "lvla_aps_state_opticalpower_parse_augments(state)",
                         "lvla_aps_lineprimaryin_state_parse_augments(state)",
                     }));
    // Although the count is zero the children of state are looked at, and are none of optical-power's.
    EXPECT_EQ(messages(),
              (Lines{"ERR lvla_aps_state_opticalpower: Unsupported tag `optical-power` is specified in the request.",
                     "ERR lvla_aps_state_opticalpower: Unsupported tag `attenuation` is specified in the request."}));
    EXPECT_EQ(selection(), 0x10000u);
}

TEST_F(WalkSelection, ContentMatchesOfOnePortDoNotSelectAnother) {
    EXPECT_EQ(walk("lvla_aps_apsmodule_ports",
                   build(container(
                       "ports", {container("line-primary-in", {container("config", {leaf("target-attenuation", "1")})}),
                                 container("line-primary-out", {container("config", {leaf("target-attenuation")})})}))),
              0u);
    EXPECT_EQ(
        callbacks(),
        (Lines{"cont_lvla_aps_apsmodule_ports(ports, 2)", "cont_lvla_aps_ports_lineprimaryin(ports/line-primary-in, 1)",
               "cont_lvla_aps_lineprimaryin_config(ports/line-primary-in/config, 1)",
               "leaf_lvla_aps_config_targetattenuation(ports/line-primary-in/config/target-attenuation)",
               "leaf_lvla_aps_config_targetattenuation(ports/line-primary-in/config)",
               "lvla_aps_lineprimaryin_config_parse_augments(ports/line-primary-in/config)",
               "cont_lvla_aps_ports_lineprimaryout(ports/line-primary-out, 1)",
               "cont_lvla_aps_lineprimaryout_config(ports/line-primary-out/config, 1)",
               "leaf_lvlb_aps_config_targetattenuation(ports/line-primary-out/config/target-attenuation)"}));
}

TEST_F(WalkSelection, TheBitOfAContentMatchContainerThatStoodBeforeSpreadsAContainer) {
    // In a whole-subtree walk nothing masks the bit of the container above.
    request.state.whole_subtree_walk = 1;
    request.state.read_selection = 1;
    EXPECT_EQ(walk("lvla_aps_lineprimaryin_config", build(container("config", {leaf("target-attenuation")}))), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_aps_lineprimaryin_config(config, 0)",
                                  "leaf_lvla_aps_config_targetattenuation(config/target-attenuation)",
                                  "leaf_lvla_aps_config_targetattenuation(config)",
                                  "lvla_aps_lineprimaryin_config_parse_augments(config)"}));
    EXPECT_EQ(selection(), 0u);
}

} // namespace
} // namespace walk
