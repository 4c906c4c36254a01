// Which walker a child goes to: by its tag alone, state only in the read that includes it.
#include <algorithm>
#include <set>

#include "walk_support.hpp"

namespace walk {
namespace {

struct Child {
    std::string tag;
    std::string walker;
};

struct Row {
    std::string walker;
    bool is_state;
    std::vector<Child> children;
};

// Written from the model, not from the plug-in's tables.
const std::vector<Row> &rows() {
    static const std::vector<Row> all{
        {"lvla_aps", false, {{"aps-modules", "lvla_aps_apsmodules"}}},
        {"lvla_aps_apsmodules", false, {{"aps-module", "lvla_aps_apsmodules_apsmodule"}}},
        {"lvla_aps_apsmodule_config",
         false,
         {{"name", "lvla_aps_config_name"},
          {"revertive", "lvla_aps_config_revertive"},
          {"wait-to-restore-time", "lvla_aps_config_waittorestoretime"},
          {"primary-switch-threshold", "lvla_aps_config_primaryswitchthreshold"},
          {"primary-switch-hysteresis", "lvla_aps_config_primaryswitchhysteresis"},
          {"secondary-switch-threshold", "lvla_aps_config_secondaryswitchthreshold"},
          {"relative-switch-threshold", "lvla_aps_config_relativeswitchthreshold"},
          {"relative-switch-threshold-offset", "lvla_aps_config_relativeswitchthresholdoffset"},
          {"force-to-port", "lvla_aps_config_forcetoport"}}},
        {"lvla_aps_apsmodule_state",
         true,
         {{"name", "lvla_aps_state_name"},
          {"revertive", "lvla_aps_state_revertive"},
          {"wait-to-restore-time", "lvla_aps_state_waittorestoretime"},
          {"primary-switch-threshold", "lvla_aps_state_primaryswitchthreshold"},
          {"primary-switch-hysteresis", "lvla_aps_state_primaryswitchhysteresis"},
          {"secondary-switch-threshold", "lvla_aps_state_secondaryswitchthreshold"},
          {"relative-switch-threshold", "lvla_aps_state_relativeswitchthreshold"},
          {"relative-switch-threshold-offset", "lvla_aps_state_relativeswitchthresholdoffset"},
          {"force-to-port", "lvla_aps_state_forcetoport"},
          {"active-path", "lvla_aps_state_activepath"}}},
        {"lvla_aps_apsmodule_ports",
         false,
         {{"line-primary-in", "lvla_aps_ports_lineprimaryin"},
          {"line-primary-out", "lvla_aps_ports_lineprimaryout"},
          {"line-secondary-in", "lvla_aps_ports_linesecondaryin"},
          {"line-secondary-out", "lvla_aps_ports_linesecondaryout"},
          {"common-output", "lvla_aps_ports_commonoutput"}}},

        {"lvla_aps_ports_lineprimaryin",
         false,
         {{"config", "lvla_aps_lineprimaryin_config"}, {"state", "lvla_aps_lineprimaryin_state"}}},
        {"lvla_aps_lineprimaryin_config", false, {{"target-attenuation", "lvla_aps_config_targetattenuation"}}},
        {"lvla_aps_lineprimaryin_state",
         true,
         {{"target-attenuation", "lvla_aps_state_targetattenuation"},
          {"attenuation", "lvla_aps_state_attenuation"},
          {"optical-power", "lvla_aps_state_opticalpower"}}},
        {"lvla_aps_state_opticalpower",
         true,
         {{"instant", "lvla_aps_opticalpower_instant"},
          {"avg", "lvla_aps_opticalpower_avg"},
          {"min", "lvla_aps_opticalpower_min"},
          {"max", "lvla_aps_opticalpower_max"}}},

        {"lvla_aps_ports_lineprimaryout",
         false,
         {{"config", "lvla_aps_lineprimaryout_config"}, {"state", "lvla_aps_lineprimaryout_state"}}},
        {"lvla_aps_lineprimaryout_config", false, {{"target-attenuation", "lvlb_aps_config_targetattenuation"}}},
        {"lvla_aps_lineprimaryout_state",
         true,
         {{"target-attenuation", "lvlb_aps_state_targetattenuation"},
          {"attenuation", "lvlb_aps_state_attenuation"},
          {"optical-power", "lvlb_aps_state_opticalpower"}}},
        {"lvlb_aps_state_opticalpower",
         true,
         {{"instant", "lvlb_aps_opticalpower_instant"},
          {"avg", "lvlb_aps_opticalpower_avg"},
          {"min", "lvlb_aps_opticalpower_min"},
          {"max", "lvlb_aps_opticalpower_max"}}},

        {"lvla_aps_ports_linesecondaryin",
         false,
         {{"config", "lvla_aps_linesecondaryin_config"}, {"state", "lvla_aps_linesecondaryin_state"}}},
        {"lvla_aps_linesecondaryin_config", false, {{"target-attenuation", "lvlc_aps_config_targetattenuation"}}},
        {"lvla_aps_linesecondaryin_state",
         true,
         {{"target-attenuation", "lvlc_aps_state_targetattenuation"},
          {"attenuation", "lvlc_aps_state_attenuation"},
          {"optical-power", "lvlc_aps_state_opticalpower"}}},
        {"lvlc_aps_state_opticalpower",
         true,
         {{"instant", "lvlc_aps_opticalpower_instant"},
          {"avg", "lvlc_aps_opticalpower_avg"},
          {"min", "lvlc_aps_opticalpower_min"},
          {"max", "lvlc_aps_opticalpower_max"}}},

        {"lvla_aps_ports_linesecondaryout",
         false,
         {{"config", "lvla_aps_linesecondaryout_config"}, {"state", "lvla_aps_linesecondaryout_state"}}},
        {"lvla_aps_linesecondaryout_config", false, {{"target-attenuation", "lvld_aps_config_targetattenuation"}}},
        {"lvla_aps_linesecondaryout_state",
         true,
         {{"target-attenuation", "lvld_aps_state_targetattenuation"},
          {"attenuation", "lvld_aps_state_attenuation"},
          {"optical-power", "lvld_aps_state_opticalpower"}}},
        {"lvld_aps_state_opticalpower",
         true,
         {{"instant", "lvld_aps_opticalpower_instant"},
          {"avg", "lvld_aps_opticalpower_avg"},
          {"min", "lvld_aps_opticalpower_min"},
          {"max", "lvld_aps_opticalpower_max"}}},

        {"lvla_aps_ports_commonoutput", false, {{"state", "lvla_aps_commonoutput_state"}}},
        {"lvla_aps_commonoutput_state",
         true,
         {{"target-attenuation", "lvle_aps_state_targetattenuation"},
          {"attenuation", "lvle_aps_state_attenuation"},
          {"optical-power", "lvle_aps_state_opticalpower"}}},
        {"lvle_aps_state_opticalpower",
         true,
         {{"instant", "lvle_aps_opticalpower_instant"},
          {"avg", "lvle_aps_opticalpower_avg"},
          {"min", "lvle_aps_opticalpower_min"},
          {"max", "lvle_aps_opticalpower_max"}}},
    };
    return all;
}

std::set<std::string> every_tag() {
    std::set<std::string> tags{"aps", "ports", "hold-off-time", "enabled", "common-in", "interval"};
    for (const Row &row : rows()) {
        for (const Child &child : row.children) {
            tags.insert(child.tag);
        }
    }
    return tags;
}

class WalkDispatch : public WalkTest {
protected:
    // The story of a container with one child of this tag, up to and with the first step after its callback.
    std::string first_step(const Row &row, std::uint32_t kind, const Node &child, kerrno &result) {
        platform.forget();
        drop_trees();
        request.set_kind(kind);
        Tree &tree = build(container("node", {child}));
        result = walk(row.walker, tree);
        const Lines lines = story();
        EXPECT_GE(lines.size(), 4u);
        EXPECT_EQ(lines.at(0), "+" + row.walker);
        EXPECT_EQ(lines.at(1), "add_to_hierarchy(node, 1)");
        EXPECT_EQ(lines.at(2), "cont_" + row.walker + "(node, 1)");
        return lines.at(3);
    }
};

TEST_F(WalkDispatch, CoversEveryContainer) {
    EXPECT_EQ(rows().size(), 24u);
}

TEST_F(WalkDispatch, EveryChildGoesToItsWalker) {
    for (const Row &row : rows()) {
        for (const Child &child : row.children) {
            for (const std::uint32_t kind : {get_config, edit, get}) {
                SCOPED_TRACE(row.walker + " " + child.tag + " kind " + std::to_string(kind));
                const bool is_known = kind == get || (!row.is_state && child.tag != "state");
                // A leaf for the child: none of its own children is asked for. Aps-module needs its key.
                const Node node = child.tag == "aps-module" ? module("0/1-PSM-OM") : leaf(child.tag, "1");
                kerrno result = some_failure;
                const std::string step = first_step(row, kind, node, result);
                if (is_known) {
                    EXPECT_EQ(step, "+" + child.walker);
                    EXPECT_EQ(result, 0u);
                } else {
                    EXPECT_EQ(step, "ERR " + row.walker + ": Unsupported tag `" + child.tag +
                                        "` is specified in the request.");
                    EXPECT_EQ(result, kind == edit ? 0xaaf2ee00u : 0u);
                }
            }
        }
    }
}

TEST_F(WalkDispatch, EveryOtherTagIsUnknown) {
    for (const Row &row : rows()) {
        for (const std::string &tag : every_tag()) {
            const bool known = std::any_of(row.children.begin(), row.children.end(),
                                           [&](const Child &child) { return child.tag == tag; });
            if (known) {
                continue;
            }
            SCOPED_TRACE(row.walker + " " + tag);
            kerrno result = some_failure;
            const std::string message =
                "ERR " + row.walker + ": Unsupported tag `" + tag + "` is specified in the request.";
            EXPECT_EQ(first_step(row, get, leaf(tag), result), message);
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(first_step(row, edit, leaf(tag), result), message);
            EXPECT_EQ(result, 0xaaf2ee00u);
            EXPECT_EQ(request.error_node(), tag);
        }
    }
}

TEST_F(WalkDispatch, AKnownTagIsKnownInEveryNamespace) {
    for (const Row &row : rows()) {
        for (const std::optional<std::string> &uri :
             {std::optional<std::string>(fake::foreign), std::optional<std::string>()}) {
            SCOPED_TRACE(row.walker);
            const Child &child = row.children.front();
            const Node node = child.tag == "aps-module" ? module("0/1-PSM-OM") : leaf(child.tag);
            kerrno result = some_failure;
            EXPECT_EQ(first_step(row, get, node.in_namespace(uri), result), "+" + child.walker);
            EXPECT_EQ(result, 0u);
        }
    }
}

TEST_F(WalkDispatch, AForeignTagGoesToTheHookOfItsContainer) {
    for (const Row &row : rows()) {
        SCOPED_TRACE(row.walker);
        const std::string hook = row.walker + "_parse_augments(node/extra)";
        kerrno result = some_failure;
        EXPECT_EQ(first_step(row, get, leaf("extra").in_namespace(fake::foreign), result), hook);
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(first_step(row, get, leaf("extra").in_namespace(std::nullopt), result), hook);
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(first_step(row, edit, leaf("extra").in_namespace(fake::foreign), result), hook);
        EXPECT_EQ(result, 0xaaf2f800u);
        EXPECT_EQ(request.error_node(), "extra");
    }
}

TEST_F(WalkDispatch, ANamespaceIsComparedWhole) {
    for (const std::string &uri :
         {std::string(fake::openconfig) + "/", std::string(fake::openconfig, 20), std::string()}) {
        kerrno result = some_failure;
        EXPECT_EQ(first_step(rows().front(), get, leaf("extra").in_namespace(uri), result),
                  "lvla_aps_parse_augments(node/extra)");
    }
}

} // namespace
} // namespace walk
