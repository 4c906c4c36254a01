// The proof of coverage, tried with a small model and with tables that are wrong in one place each.
#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "coverage.hpp"
#include "native_entries.hpp"

namespace ocpsm {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string prefix = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";
constexpr char module[] = "/aps/aps-modules/aps-module";
constexpr char attenuation[] = "/aps/aps-modules/aps-module/state/attenuation";
constexpr char hold_off_time[] = "/aps/aps-modules/aps-module/state/hold-off-time";

// A small model, and tables that agree with it.
struct Tables {
    static AnswerRow written(std::string_view conversion, std::string_view path, std::string_view value) {
        return {conversion, path, "slot", "answer", value, "always", "added", "keep"};
    }

    std::vector<SchemaNode> model = {
        {"/aps", NodeKind::container, false, true, ""},
        {"/aps/aps-modules", NodeKind::container, false, true, ""},
        {module, NodeKind::list, false, true, ""},
        {std::string(module) + "/name", NodeKind::leaf, true, true, ""},
        {std::string(module) + "/state", NodeKind::container, false, false, ""},
        {std::string(module) + "/state/revertive", NodeKind::leaf, false, false, ""},
        {attenuation, NodeKind::leaf, false, false, "dB"},
        {hold_off_time, NodeKind::leaf, false, false, "milliseconds"},
    };
    std::vector<NodeRow> nodes = {
        {NodeKind::container, false, true, "a", "none", "aps", ""},
        {NodeKind::container, false, true, "b", "a", "aps-modules", ""},
        {NodeKind::list, false, true, "c", "b", "aps-module", "list_to_low"},
        {NodeKind::leaf, true, true, "d", "c", "name", "key_to_low"},
        {NodeKind::container, false, false, "e", "c", "state", ""},
        {NodeKind::leaf, false, false, "f", "e", "revertive", "revertive_to_low"},
        {NodeKind::leaf, false, false, "g", "e", "attenuation", ""},
    };
    std::vector<ConversionRow> conversions = {
        {"revertive_to_low", "state_leaf", "text", "none", "native", "/slots/slot/revertive"},
    };
    std::vector<UnsupportedRow> unsupported = {{"state/hold-off-time", "there is none"}};
    std::vector<NativeRow> native = {
        {"native", "nat", NativeKind::container, "n", "none", "slots", "", ""},
        {"native", "nat", NativeKind::list, "o", "n", "slot", "slot_to_high", ""},
        {"native", "nat", NativeKind::leaf, "p", "o", "revertive", "revertive_to_high", ""},
    };
    std::vector<AnswerRow> answers = {
        written("slot_to_high", "/aps/aps-modules/aps-module", "module"),
        written("slot_to_high", "/aps/aps-modules/aps-module/name", "module"),
        written("revertive_to_high", "/aps/aps-modules/aps-module/state/revertive", "text"),
    };
    std::set<std::string> missing_names;
    // In the order of the kinds: container, list, leaf.
    std::array<std::set<std::string>, 3> native_nodes = {
        {{"native:/slots"}, {"native:/slots/slot"}, {"native:/slots/slot/revertive"}}};

    CoverageResult check() {
        return check_coverage({model, nodes, conversions, unsupported, native, answers,
                               [this](const std::string &name) { return !missing_names.contains(name); },
                               [this](std::string_view model_name, std::string_view path, NodeKind kind) {
                                   return native_nodes.at(static_cast<size_t>(kind))
                                       .contains(std::string(model_name).append(":").append(path));
                               }});
    }
};

TEST(Coverage, AcceptsTablesThatAgreeWithTheModel) {
    const CoverageResult result = Tables().check();
    EXPECT_THAT(result.findings, IsEmpty());
    EXPECT_EQ(result.mapped, 6U);
    EXPECT_EQ(result.refused, 1U);
    EXPECT_EQ(result.unsupported, 1U);
    // Three for a container, four for the list, three for a converted leaf, two for a refused one.
    // Of the native ones three for the container, four for the list and the leaf, which are converted.
    EXPECT_EQ(result.callbacks, 3U * 3U + 4U + 2U * 3U + 2U + 3U + 2U * 4U);
    EXPECT_EQ(result.native, 3U);
}

// What is wrong in a place, and what is said of it, "module" standing for the path of the list.
struct Wrong {
    const char *what;
    void (*change)(Tables &tables);
    std::vector<std::string> findings;
};

const std::string not_exported = ", which the plug-in does not export";
const std::string native_prefix = "ymap_n2o_oc_opt_psm_nat_";

const std::vector<Wrong> wrongs = {
    {"a node in no table",
     [](Tables &tables) { tables.nodes.erase(tables.nodes.begin() + 5); },
     {"module/state/revertive is neither mapped nor refused nor listed as unsupported",
      "module/state/revertive is written by revertive_to_high but is not in the mapping table"}},
    {"a node in both tables",
     [](Tables &tables) {
         tables.unsupported.push_back({"state/revertive", "by mistake"});
     },
     {"module/state/revertive is listed as unsupported although the plug-in knows it"}},
    {"a row that is not in the model",
     [](Tables &tables) {
         tables.nodes.push_back({NodeKind::leaf, false, false, "h", "e", "active-pth", ""});
     },
     {"module/state/active-pth is in the mapping table but not in the model"}},
    {"an unsupported node that is not in the model",
     [](Tables &tables) {
         tables.unsupported.push_back({"state/hold-of-time", "misspelt"});
     },
     {"module/state/hold-of-time is listed as unsupported but is not in the model"}},
    {"rows that stand twice",
     [](Tables &tables) {
         tables.nodes.push_back({NodeKind::leaf, false, false, "h", "e", "attenuation", ""});
         tables.unsupported.push_back(tables.unsupported.front());
     },
     {"module/state/attenuation is in the mapping table twice",
      "module/state/hold-off-time is listed as unsupported twice"}},
    {"a row below a parent that is not there",
     [](Tables &tables) { tables.nodes.at(6).parent = "x"; },
     {"module/state/attenuation is neither mapped nor refused nor listed as unsupported",
      "/attenuation is in the mapping table but not in the model"}},
    {"rows of another kind or access",
     [](Tables &tables) {
         tables.nodes.at(3).is_key = false;
         tables.nodes.at(4).kind = NodeKind::list;
         tables.nodes.at(5).is_configuration = true;
     },
     {"module/name is of another kind in the mapping table than in the model",
      "module/state is of another kind in the mapping table than in the model",
      "module/state/revertive is state in the model but not in the mapping table"}},
    {"callbacks that are not exported",
     [](Tables &tables) {
         for (const char *name : {"b", "cont_a", "list_c", "leaf_g", "e_parse_augments"}) {
             tables.missing_names.insert(prefix + name);
         }
         tables.missing_names.insert({"key_to_low", "revertive_to_low"});
     },
     {"/aps needs " + prefix + "cont_a" + not_exported, "/aps/aps-modules needs " + prefix + "b" + not_exported,
      "module needs " + prefix + "list_c" + not_exported, "module/name needs key_to_low" + not_exported,
      "module/state needs " + prefix + "e_parse_augments" + not_exported,
      "module/state/revertive needs revertive_to_low" + not_exported,
      "module/state/attenuation needs " + prefix + "leaf_g" + not_exported}},
    {"a conversion without a row",
     [](Tables &tables) { tables.conversions.clear(); },
     {"module/state/revertive is converted by revertive_to_low, which writes no native leaf"}},
    {"a native leaf that is in no native model",
     [](Tables &tables) { tables.conversions.front().path = "/slots/slot/revert"; },
     {"module/state/revertive is written to /slots/slot/revert, which native does not have"}},

    // ---- the way back ----
    {"a leaf that no answer writes",
     [](Tables &tables) { tables.answers.pop_back(); },
     {"module/state is written by no answer conversion", "module/state/revertive is written by no answer conversion",
      "native:/slots/slot/revertive is converted by revertive_to_high, which writes no OpenConfig leaf"}},
    {"a list entry that no answer opens",
     [](Tables &tables) { tables.answers.erase(tables.answers.begin()); },
     {"module is written by no answer conversion"}},
    {"a brother of a container is written, and does not count for it",
     [](Tables &tables) { tables.answers.back().path = "/aps/aps-modules/aps-module/state-of-things/revertive"; },
     {"module/state is written by no answer conversion", "module/state/revertive is written by no answer conversion",
      "module/state-of-things/revertive is written by revertive_to_high but is not in the mapping table"}},
    {"an answer to an unsupported node",
     [](Tables &tables) { tables.answers.push_back(Tables::written("revertive_to_high", hold_off_time, "text")); },
     {"module/state/hold-off-time is written by revertive_to_high but is not in the mapping table"}},
    {"an answer to a refused leaf, which is accepted",
     [](Tables &tables) { tables.answers.push_back(Tables::written("revertive_to_high", attenuation, "text")); },
     {}},
    {"an answer conversion that no native node calls",
     [](Tables &tables) { tables.native.back().conversion = ""; },
     {"module/state is written by no answer conversion", "module/state/revertive is written by no answer conversion",
      "module/state/revertive is written by revertive_to_high, which no native node calls"}},
    {"a native row that is not in its model",
     [](Tables &tables) { tables.native.back().tag = "revert"; },
     {"native:/slots/slot/revert is in the native tables but not in the native model"}},
    {"a native row of another kind",
     [](Tables &tables) { tables.native.front().kind = NativeKind::list; },
     {"native:/slots is in the native tables but not in the native model"}},
    {"a native row that stands twice",
     [](Tables &tables) { tables.native.push_back(tables.native.back()); },
     {"native:/slots/slot/revertive is in the native tables twice"}},
    {"native functions that are not exported",
     [](Tables &tables) {
         for (const char *name : {"n", "cont_n", "o_parse_augments", "list_o", "leaf_p"}) {
             tables.missing_names.insert(native_prefix + name);
         }
         tables.missing_names.insert("revertive_to_high");
     },
     {"native:/slots needs " + native_prefix + "n" + not_exported,
      "native:/slots needs " + native_prefix + "cont_n" + not_exported,
      "native:/slots/slot needs " + native_prefix + "o_parse_augments" + not_exported,
      "native:/slots/slot needs " + native_prefix + "list_o" + not_exported,
      "native:/slots/slot/revertive needs " + native_prefix + "leaf_p" + not_exported,
      "native:/slots/slot/revertive needs revertive_to_high" + not_exported}},
};

TEST(Coverage, NamesWhatIsWrong) {
    for (const auto &[what, change, findings] : wrongs) {
        Tables tables;
        change(tables);
        std::vector<std::string> found;
        for (const auto &[path, problem] : tables.check().findings) {
            const bool below = path.starts_with(module);
            found.push_back((below ? "module" + path.substr(sizeof module - 1) : path) + " " + problem);
        }
        EXPECT_EQ(found, findings) << what;
    }
}

TEST(AnswerTable, HasEveryNodeWithAWalker) {
    const auto count = [](NativeKind kind) {
        return std::count_if(native_rows().begin(), native_rows().end(),
                             [kind](const NativeRow &row) { return row.kind == kind; });
    };
    EXPECT_EQ(count(NativeKind::augment), 3);
    EXPECT_EQ(count(NativeKind::list), 10);
    EXPECT_EQ(count(NativeKind::container), 26);
    EXPECT_EQ(count(NativeKind::leaf), 30);
}

// Tops of answers first; a subtree's walker with the list that it adds to.
TEST(NativeEntries, AreTheWalkersThatTheFrameworkCalls) {
    std::vector<std::string> entries;
    entries.reserve(ymap::native_entries.size());
    for (const ymap::NativeEntry &entry : ymap::native_entries) {
        entries.push_back(std::string(entry.list).append("/").append(entry.tag).append(" ").append(entry.walker));
    }
    const std::string start = "ymap_n2o_oc_opt_psm_";
    EXPECT_THAT(
        entries,
        ElementsAre("/interface-configurations " + start + "vexloorbitifmgrcfg_lvla_interfaceconfigurations",
                    "/active-nodes " + start + "vexloorbitconfigmdacfg_lvla_activenodes",
                    "/ots-oper " + start + "vexloorbitcontrollertlm2200otsoper_lvla_otsoper",
                    "/optics-oper " + start + "vexloorbitcontrolleropticsoper_lvla_opticsoper",
                    "/performance-management-history " + start +
                        "vexloorbitpmengineoper_lvla_performancemanagementhistory",
                    "/active-nodes/active-node/slot " + start + "vexloorbittlm2200otscfg_augment_lvla_active_node",
                    "/preconfigured-nodes/preconfigured-node/slot " + start +
                        "vexloorbittlm2200otscfg_augment_lvla_preconfigured_node",
                    "/interface-configurations/interface-configuration/optics " + start +
                        "vexloorbitcontrolleropticscfg_augment_lvla_interface_configuration"));
}

// What each conversion writes, below an aps-module.
TEST(AnswerTable, KnowsAllThatIsWritten) {
    const auto written = [](std::string_view conversion) {
        std::vector<std::string> paths;
        for (const AnswerRow &row : answer_rows()) {
            if (row.conversion == conversion) {
                std::string text(row.path.substr(sizeof module - 1));
                for (const std::string_view word :
                     {row.source, row.reader, row.value, row.kinds, row.manner, row.others}) {
                    text.append(" ").append(word);
                }
                paths.push_back(text);
            }
        }
        return paths;
    };
    EXPECT_THAT(written("oc_opt_psm_cfg_lockout_from_to_high"),
                ElementsAre("/config/force-to-port slot answer lockout unless_state_only added keep",
                            "/state/force-to-port slot answer lockout with_state added keep"));
    EXPECT_THAT(written("oc_opt_psm_cfg_th_hyst_to_high"),
                ElementsAre("/config/primary-switch-hysteresis primary answer tenths always added keep"));
    EXPECT_THAT(
        written("oc_opt_psm_cfg_tx_attenuation_to_high"),
        ElementsAre(
            "/ports/line-primary-out/config/target-attenuation primary answer tenths unless_state_only added keep",
            "/ports/line-primary-out/state/target-attenuation primary answer tenths with_state stitched keep",
            "/ports/line-secondary-out/config/target-attenuation secondary answer tenths unless_state_only added keep",
            "/ports/line-secondary-out/state/target-attenuation secondary answer tenths with_state stitched keep"));
    EXPECT_THAT(written("oc_opt_psm_state_rx_attenuation_to_high"),
                ElementsAre("/ports/line-primary-in/state/attenuation primary answer hundredths always stitched "
                            "keep_secondary",
                            "/ports/line-secondary-in/state/attenuation secondary sysdb_get_psm_state_rx_attenuation "
                            "hundredths always stitched keep_secondary",
                            "/ports/line-secondary-in/config/target-attenuation secondary "
                            "sysdb_get_psm_config_rx_attenuation tenths unless_state_only added keep_secondary",
                            "/ports/line-secondary-in/state/target-attenuation secondary "
                            "sysdb_get_psm_config_rx_attenuation tenths with_state stitched keep_secondary"));
    EXPECT_THAT(written("oc_opt_psm_state_tx_max_power_to_high"),
                ElementsAre("/ports/line-primary-out/state/optical-power/max primary answer units always stitched skip",
                            "/ports/line-secondary-out/state/optical-power/max secondary "
                            "sysdb_get_tx_pm_30sec_max_power units always stitched skip",
                            "/ports/common-output/state/optical-power/max common "
                            "sysdb_get_tx_pm_30sec_max_power units always stitched skip"));
    EXPECT_THAT(written("oc_opt_psm_state_active_path_to_high"),
                ElementsAre("/state/active-path primary answer status always stitched keep_secondary"));
    EXPECT_THAT(written("oc_opt_psm_state_th_to_high"),
                ElementsAre("/state/primary-switch-threshold primary answer tenths always stitched keep",
                            "/state/secondary-switch-threshold secondary answer tenths always stitched keep"));
    EXPECT_THAT(written("oc_opt_psm_state_get_psm_key_to_high"),
                ElementsAre("/state/name primary answer module with_state stitched keep_secondary"));
    EXPECT_THAT(written("oc_opt_psm_if_list_cfg_to_high"),
                ElementsAre(" controller answer module always opened keep",
                            "/name controller answer module without_state stitched keep",
                            "/config/name controller answer module without_state added keep"));
}

TEST(AnswerTable, TellsUnitAndScalingOfAValue) {
    EXPECT_EQ(describe_answer_value("tenths", "dBm"), "0.1 dBm, /10");
    EXPECT_EQ(describe_answer_value("hundredths", "dB"), "0.01 dB, /100");
    EXPECT_EQ(describe_answer_value("text", "milliseconds"), "milliseconds, as it stands");
    EXPECT_EQ(describe_answer_value("text", ""), "as it stands");
    EXPECT_EQ(describe_answer_value("lockout", ""), "protected: PRIMARY, working: SECONDARY, else NONE");
    EXPECT_EQ(describe_answer_value("units", "dBm"), "1 dBm, /1");
    EXPECT_EQ(describe_answer_value("status", ""), "active: PRIMARY, else SECONDARY");
    EXPECT_EQ(describe_answer_value("module", ""), "the module of the controller");
}

TEST(MappingTable, HasTheWholeOfTheSystemsNodes) {
    const auto count = [](auto &&is_counted) {
        return std::count_if(node_rows().begin(), node_rows().end(), is_counted);
    };
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::container; }), 24);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::list; }), 1);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::leaf; }), 54);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::leaf && row.conversion.empty(); }), 5);
    EXPECT_EQ(conversion_rows().size(), 46U);
    EXPECT_EQ(unsupported_rows().size(), 39U);
}

TEST(MappingTable, TellsUnitAndScalingOfAValue) {
    const auto described = [](std::string_view value, std::string_view units) {
        return describe_value({"x", "state_leaf", value, "none", "m", "/p"}, units);
    };
    EXPECT_EQ(described("tenths", "dBm"), "0.1 dBm, x10");
    EXPECT_EQ(described("hundredths", "dBm"), "0.01 dBm, x100");
    EXPECT_EQ(described("text", "milliseconds"), "milliseconds, as it stands");
    EXPECT_EQ(described("text", ""), "as it stands");
    EXPECT_EQ(described("lockout", ""), "PRIMARY: protected, SECONDARY: working, NONE: empty");
    EXPECT_EQ(described("empty", ""), "selection only");
}

} // namespace
} // namespace ocpsm
