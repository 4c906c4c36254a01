// Requests through the real plug-in.
#include <gmock/gmock.h>

#include <optional>

#include "framework/error.hpp"
#include "framework/host/codes.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/temporary_state.hpp"
#include "translate.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::Options;
using ocpsm::framework::name_of;
using ocpsm::framework::Plugin;
using ocpsm::framework::Translation;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string interfaces = "/interface-configurations/interface-configuration";
const std::string primary = interfaces + "[active='act'][interface-name='Ots0/1/0/1']";
const std::string secondary = interfaces + "[active='act'][interface-name='Ots0/1/0/2']";
const std::string node = "/active-nodes/active-node[node-name='0/RP0/CPU0']";
const std::string slot = node + "/slot[slot-id='1']";
const std::string thresholds = "/optics/rx-thresholds";
const std::string threshold = thresholds + "/rx-threshold[rx-threshold-type='low']";
const std::string ports = "/ots-oper/ots-ports/ots-port";
const std::string histories = "/performance-management-history/global/periodic/optics-history/optics-port-histories/"
                              "optics-port-history[name='Ots0/1/0/1']";
const std::string second30 = "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
const std::string time_line = "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance";

std::string modules(const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
           content + "</aps-modules></aps>";
}

std::string module(const std::string &content) {
    return modules("<aps-module><name>0/1-PSM-OM</name>" + content + "</aps-module>");
}

std::string config(const std::string &content) {
    return module("<config>" + content + "</config>");
}

std::string port(const std::string &name, const std::string &content) {
    return module("<ports><" + name + ">" + content + "</" + name + "></ports>");
}

// What a tree that was handed over comes to: "operation path = value" each.
std::vector<std::string> net(const Translation &translation, std::size_t index = 0) {
    std::vector<std::string> lines;
    for (const auto &operation : translation.handed_over.at(index).native.net().operations()) {
        lines.push_back(std::string(ocpsm::operation_name(operation.operation)) + " " + operation.path +
                        (operation.value ? " = " + *operation.value : ""));
    }
    return lines;
}

class EndToEnd : public testing::Test {
protected:
    void SetUp() override {
        client_.emplace();
        state_.emplace(*client_);
    }

    static const Plugin &plugin() {
        static const Plugin loaded(PLUGIN);
        return loaded;
    }

    static Translation translate(const std::string &text, Kind kind, const Options &options = {},
                                 const std::vector<std::string> &fitted_modules = {}) {
        return ::translate(plugin().callback(ocpsm::framework::openconfig_root_walker), text, kind, options,
                           fitted_modules);
    }

    static std::vector<std::string> read(const std::string &text, Kind kind) {
        const Translation translation = translate(text, kind);
        EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
        EXPECT_THAT(translation.warnings, IsEmpty());
        return net(translation);
    }

    static std::vector<std::string> edit(const std::string &text) { return read(text, Kind::edit); }

    // "result|tag|location|offending node"
    static std::string refusal(const std::string &text, Kind kind) {
        const Translation translation = translate(text, kind);
        if (!translation.error) {
            return name_of(translation.result);
        }
        EXPECT_NE(translation.error->message(), "");
        EXPECT_THAT(translation.warnings, IsEmpty());
        return name_of(translation.result) + "|" + translation.error->tag + "|" + translation.error->path + "|" +
               translation.error->node;
    }

    std::optional<ocpsm::sysdb::Client> client_;
    std::optional<ocpsm::line_system::TemporaryState> state_;
};

// ---- reads ----

TEST_F(EndToEnd, ReadOfASetting) {
    EXPECT_THAT(read(config("<revertive/>"), Kind::get_config),
                ElementsAre("merge " + primary, "merge " + secondary, "merge " + slot + "/psm/revertive/enable"));
}

TEST_F(EndToEnd, ReadOfAThresholdAsksBothControllers) {
    EXPECT_THAT(read(config("<secondary-switch-threshold/>"), Kind::get_config),
                ElementsAre("merge " + primary + threshold + "/rx-threshold",
                            "merge " + secondary + threshold + "/rx-threshold", "merge " + slot));
}

TEST_F(EndToEnd, ReadOfAnAttenuationAsksBothControllers) {
    EXPECT_THAT(read(port("line-secondary-out", "<config><target-attenuation/></config>"), Kind::get_config),
                ElementsAre("merge " + primary + "/optics/optics-ots-tx-voa-attenuation",
                            "merge " + secondary + "/optics/optics-ots-tx-voa-attenuation", "merge " + slot));
}

// What a read of kind 10 selects of one module, with leaves of its operational port entries and of its history.
std::vector<std::string> operational_read(const std::vector<std::string> &port_leaves,
                                          const std::vector<std::string> &history_leaves) {
    std::vector<std::string> lines{"merge " + primary, "merge " + secondary, "merge " + slot};
    const auto select = [&lines](const std::string &entry, const std::vector<std::string> &leaves) {
        for (const std::string &leaf : leaves) {
            lines.emplace_back("merge ").append(entry).append("/").append(leaf);
        }
        if (leaves.empty()) {
            lines.push_back("merge " + entry);
        }
    };
    select(ports + "[name='Ots0/1/0/1']", port_leaves);
    select(ports + "[name='Ots0/1/0/2']", port_leaves);
    select(histories + second30 + time_line + "[number='1']", history_leaves);
    return lines;
}

TEST_F(EndToEnd, ReadOfTheActivePath) {
    EXPECT_EQ(read(module("<state><active-path/></state>"), Kind::get), operational_read({"ots-info/port-status"}, {}));
}

TEST_F(EndToEnd, ReadOfAnInstantPower) {
    EXPECT_EQ(read(port("line-primary-in", "<state><optical-power><instant/></optical-power></state>"), Kind::get),
              operational_read({"ots-info/lane-data/receive-power", "ots-info/lane-data/receive-power-dbm"}, {}));
}

TEST_F(EndToEnd, ReadOfAHistoricPower) {
    EXPECT_EQ(read(port("common-output", "<state><optical-power><max/></optical-power></state>"), Kind::get),
              operational_read({}, {"opt/maximum"}));
}

TEST_F(EndToEnd, EveryNamedInstanceIsReadByItself) {
    const Translation translation =
        translate(modules("<aps-module><name>0/1-PSM-OM</name><config><revertive/></config></aps-module>"
                          "<aps-module><name>0/3-PSM-OM</name><config><force-to-port/></config></aps-module>"),
                  Kind::get_config);
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_EQ(net(translation, 0).back(), "merge " + slot + "/psm/revertive/enable");
    EXPECT_EQ(net(translation, 1).back(), "merge " + node + "/slot[slot-id='3']/psm/lockout-from");
}

TEST_F(EndToEnd, ReadOfNothingThatIsSupported) {
    const Translation translation = translate(config("<hold-off-time/>"), Kind::get);
    EXPECT_TRUE(translation.handed_over.at(0).nothing_supported);
    EXPECT_THAT(translation.warnings,
                ElementsAre("nothing that was selected is supported, the answer is empty: "
                            "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/hold-off-time"));
}

TEST_F(EndToEnd, ReadOfAllModulesNamesThoseOfTheInventory) {
    const Translation translation = translate(modules("<aps-module/>"), Kind::get_config);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    EXPECT_THAT(translation.warnings, IsEmpty());
    std::vector<std::string> expected;
    for (const char *controller : {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}) {
        const std::string entry = "merge " + interfaces + "[active='act'][interface-name='" + controller + "']";
        expected.insert(expected.end(),
                        {entry + threshold + "/rx-threshold", entry + "/optics/optics-ots-rx-voa-attenuation",
                         entry + "/optics/optics-ots-rx-low-threshold-delta",
                         entry + "/optics/optics-ots-tx-voa-attenuation"});
    }
    const std::string psm = "merge " + node + "/slot/psm";
    expected.insert(expected.end(), {psm + "/relative-switch-threshold/psm-relative-switch-threshold",
                                     psm + "/relative-switch-threshold/psm-relative-switch-threshold-offset",
                                     psm + "/revertive/enable", psm + "/revertive/wtr", psm + "/lockout-from"});
    EXPECT_EQ(net(translation), expected);
}

TEST_F(EndToEnd, AReadWithoutKeyIsGivenOneByTheWalk) {
    const Translation translation =
        translate(modules("<aps-module><config><revertive/></config></aps-module>"), Kind::get_config);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    const auto &adds = translation.handed_over.at(0).adds;
    ASSERT_FALSE(adds.empty());
    EXPECT_TRUE(adds.back().relative);
    EXPECT_EQ(adds.back().path, "name");
    EXPECT_EQ(adds.back().value, std::nullopt);
}

// ---- edits ----

TEST_F(EndToEnd, MergeOfAThreshold) {
    EXPECT_THAT(edit(config("<primary-switch-threshold>12.5</primary-switch-threshold>")),
                ElementsAre("merge " + primary, "merge " + primary + threshold,
                            "merge " + primary + threshold + "/rx-threshold = 125", "merge " + node, "merge " + slot));
}

TEST_F(EndToEnd, MergeOfAllLeaves) {
    const auto attenuation = [](const std::string &name, const std::string &value) {
        return "<" + name + "><config><target-attenuation>" + value + "</target-attenuation></config></" + name + ">";
    };
    const std::string text =
        module("<config><name>0/1-PSM-OM</name><revertive>true</revertive>"
               "<wait-to-restore-time>300</wait-to-restore-time>"
               "<primary-switch-threshold>-20.5</primary-switch-threshold>"
               "<primary-switch-hysteresis>1.5</primary-switch-hysteresis>"
               "<secondary-switch-threshold>-21</secondary-switch-threshold>"
               "<relative-switch-threshold>3</relative-switch-threshold>"
               "<relative-switch-threshold-offset>-0.5</relative-switch-threshold-offset>"
               "<force-to-port>PRIMARY</force-to-port></config><ports>" +
               attenuation("line-primary-in", "1") + attenuation("line-primary-out", "2") +
               attenuation("line-secondary-in", "3") + attenuation("line-secondary-out", "-0.05") + "</ports>");
    EXPECT_THAT(
        edit(text),
        ElementsAre(
            "merge " + primary, "merge " + primary + threshold, "merge " + primary + threshold + "/rx-threshold = -205",
            "merge " + primary + "/optics/optics-ots-rx-voa-attenuation = 10",
            "merge " + primary + "/optics/optics-ots-rx-low-threshold-delta = 15",
            "merge " + primary + "/optics/optics-ots-tx-voa-attenuation = 20", "merge " + secondary,
            "merge " + secondary + threshold, "merge " + secondary + threshold + "/rx-threshold = -210",
            "merge " + secondary + "/optics/optics-ots-rx-voa-attenuation = 30",
            "merge " + secondary + "/optics/optics-ots-tx-voa-attenuation = 0", "merge " + node, "merge " + slot,
            "merge " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold = 30",
            "merge " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset = -5",
            "merge " + slot + "/psm/revertive/enable = true", "merge " + slot + "/psm/revertive/wtr = 300",
            "merge " + slot + "/psm/lockout-from = protected"));
}

TEST_F(EndToEnd, DeleteOfAThreshold) {
    EXPECT_THAT(edit(config("<primary-switch-threshold nc:operation='delete'/>")),
                ElementsAre("merge " + primary, "delete " + primary + thresholds, "merge " + node, "merge " + slot));
    EXPECT_THAT(edit(config("<secondary-switch-threshold nc:operation='delete'/>")),
                ElementsAre("merge " + primary, "merge " + secondary, "delete " + secondary + thresholds,
                            "merge " + node, "merge " + slot));
}

TEST_F(EndToEnd, DeleteOfAnAttenuation) {
    EXPECT_THAT(edit(port("line-secondary-out", "<config><target-attenuation nc:operation='delete'/></config>")),
                ElementsAre("merge " + primary, "merge " + secondary,
                            "delete " + secondary + "/optics/optics-ots-tx-voa-attenuation", "merge " + node,
                            "merge " + slot));
}

TEST_F(EndToEnd, DeleteOfRevertive) {
    const auto deleted =
        ElementsAre("merge " + primary, "merge " + node, "merge " + slot, "delete " + slot + "/psm/revertive/enable");
    EXPECT_THAT(edit(config("<revertive nc:operation='delete'/>")), deleted);
    EXPECT_THAT(edit(R"({"openconfig-transport-line-protection:aps":{"aps-modules":{"aps-module":[{"config":
                        {"revertive":[null],"@revertive":{"ietf-netconf:operation":"delete"}},
                        "name":"0/1-PSM-OM"}]}}})"),
                deleted);
}

// Everything that a module has is removed.
auto emptied(const std::string &number) {
    const std::string first = interfaces + "[active='act'][interface-name='Ots0/" + number + "/0/1']";
    const std::string second = interfaces + "[active='act'][interface-name='Ots0/" + number + "/0/2']";
    const std::string psm = node + "/slot[slot-id='" + number + "']/psm";
    return ElementsAre(
        "merge " + first, "remove " + first + thresholds, "remove " + first + "/optics/optics-ots-rx-voa-attenuation",
        "remove " + first + "/optics/optics-ots-rx-low-threshold-delta",
        "remove " + first + "/optics/optics-ots-tx-voa-attenuation", "merge " + second, "remove " + second + thresholds,
        "remove " + second + "/optics/optics-ots-rx-voa-attenuation",
        "remove " + second + "/optics/optics-ots-tx-voa-attenuation", "merge " + node,
        "merge " + node + "/slot[slot-id='" + number + "']",
        "remove " + psm + "/relative-switch-threshold/psm-relative-switch-threshold",
        "remove " + psm + "/relative-switch-threshold/psm-relative-switch-threshold-offset",
        "remove " + psm + "/revertive/enable", "remove " + psm + "/revertive/wtr", "remove " + psm + "/lockout-from");
}

TEST_F(EndToEnd, DeleteOfAModule) {
    EXPECT_THAT(edit(modules("<aps-module nc:operation='delete'><name>0/2-PSM-OM</name></aps-module>")), emptied("2"));
    EXPECT_THAT(edit(modules("<aps-module nc:operation='remove'><name>0/2-PSM-OM</name><config>"
                             "<revertive>true</revertive></config></aps-module>")),
                emptied("2"));
}

TEST_F(EndToEnd, DeleteOfAllModules) {
    const Translation translation =
        translate("<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
                  "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" nc:operation=\"delete\"/>",
                  Kind::edit, {}, {"0/3-PSM-OM"});
    EXPECT_THAT(net(translation), emptied("3"));
}

TEST_F(EndToEnd, ReplaceOfAModuleWithItsKeyOnly) {
    EXPECT_THAT(edit(modules("<aps-module nc:operation='replace'><name>0/3-PSM-OM</name></aps-module>")), emptied("3"));
}

TEST_F(EndToEnd, ReplaceOfConfigWithTwoLeaves) {
    EXPECT_THAT(edit(module("<config nc:operation='replace'><revertive>true</revertive>"
                            "<wait-to-restore-time>300</wait-to-restore-time></config>")),
                ElementsAre("merge " + primary, "remove " + primary + thresholds,
                            "remove " + primary + "/optics/optics-ots-rx-low-threshold-delta", "merge " + secondary,
                            "remove " + secondary + thresholds, "merge " + node, "merge " + slot,
                            "remove " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold",
                            "remove " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset",
                            "merge " + slot + "/psm/revertive/enable = true",
                            "merge " + slot + "/psm/revertive/wtr = 300", "remove " + slot + "/psm/lockout-from"));
}

TEST_F(EndToEnd, ReplaceOfAModuleWithTwoLeaves) {
    EXPECT_THAT(
        edit(modules("<aps-module nc:operation='replace'><name>0/1-PSM-OM</name><config><revertive>true</revertive>"
                     "<primary-switch-threshold>-20</primary-switch-threshold></config></aps-module>")),
        ElementsAre("merge " + primary, "replace " + primary + thresholds, "merge " + primary + threshold,
                    "merge " + primary + threshold + "/rx-threshold = -200",
                    "remove " + primary + "/optics/optics-ots-rx-voa-attenuation",
                    "remove " + primary + "/optics/optics-ots-rx-low-threshold-delta",
                    "remove " + primary + "/optics/optics-ots-tx-voa-attenuation", "merge " + secondary,
                    "remove " + secondary + thresholds, "remove " + secondary + "/optics/optics-ots-rx-voa-attenuation",
                    "remove " + secondary + "/optics/optics-ots-tx-voa-attenuation", "merge " + node, "merge " + slot,
                    "remove " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold",
                    "remove " + slot + "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset",
                    "merge " + slot + "/psm/revertive/enable = true", "remove " + slot + "/psm/revertive/wtr",
                    "remove " + slot + "/psm/lockout-from"));
}

// ---- refusals ----

TEST_F(EndToEnd, Refusals) {
    const std::string entry = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']";
    EXPECT_EQ(refusal(config("<hold-off-time>1</hold-off-time>"), Kind::edit),
              "YMAP_ERR_UNSUPPORTED|operation-not-supported|" + entry + "/config/hold-off-time|hold-off-time");
    EXPECT_EQ(refusal(config("<colour>1</colour>"), Kind::edit),
              "YMAP_ERR_UNSUPPORTED|unknown-element|" + entry + "/config/colour|colour");
    EXPECT_EQ(refusal(module("<state><active-path>PRIMARY</active-path></state>"), Kind::edit),
              "YMAP_ERR_UNSUPPORTED|operation-not-supported|" + entry + "/state|state");
    EXPECT_EQ(refusal(port("line-secondary-in", "<state><attenuation/></state>"), Kind::get),
              "YMAP_ERR_UNSUPPORTED|operation-not-supported|" + entry +
                  "/ports/line-secondary-in/state/attenuation|attenuation");
    EXPECT_EQ(refusal(config("<x xmlns='urn:x'/>"), Kind::edit),
              "YMAP_ERR_AUGMENT_UNSUPPORTED|unknown-namespace|" + entry + "/config/x|x");
    EXPECT_EQ(refusal(modules("<aps-module><name/><config/></aps-module>"), Kind::edit),
              "YMAP_ERR_LIST_KEY|missing-element|/aps/aps-modules/aps-module/name|name");
    EXPECT_EQ(refusal(module("<name>0/1-PSM-OM</name>"), Kind::edit),
              "YMAP_ERR_LIST_KEY|missing-element|" + entry + "/name|name");
    EXPECT_EQ(refusal(modules("<aps-module/>"), Kind::edit),
              "YMAP_ERR_BAD_TREE|missing-element|/aps/aps-modules/aps-module|");
    EXPECT_EQ(refusal(modules("<aps-module><name nc:operation='delete'>0/1-PSM-OM</name></aps-module>"), Kind::edit),
              "YMAP_ERR_KEY_DELETE|bad-attribute|" + entry + "|");
    EXPECT_EQ(refusal(module("<config nc:operation='delete'><revertive/></config>"), Kind::edit),
              "YMAP_ERR_INVALID_ARGS|operation-failed|" + entry + "/config|");
    EXPECT_EQ(refusal(config("<name>0/2-PSM-OM</name>"), Kind::edit),
              "YFW_ERR_LEAFREF|data-missing|" + entry + "/name|");
}

TEST_F(EndToEnd, WhatAReadDoesNotKnowIsPassedOver) {
    const Translation translation = translate(config("<revertive/><colour/><x xmlns='urn:x'/>"), Kind::get_config);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    EXPECT_THAT(translation.warnings,
                ElementsAre("not supported and left out: /aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/colour, "
                            "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/x"));
}

// ---- channels ----

TEST_F(EndToEnd, EveryAddBearsTheNamesOfItsFunctions) {
    Options options;
    options.trace = true;
    const Translation translation = translate(config("<force-to-port>SECONDARY</force-to-port>"), Kind::edit, options);
    const std::string walker = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps_";
    std::vector<std::string> lines;
    for (const auto &add : translation.handed_over.at(0).adds) {
        lines.push_back(add.walker + ">" + add.conversion + ">" + add.path + "=" + add.value.value_or("-"));
    }
    const std::string key = walker + "apsmodule_name>op_cfg_psm_key_to_low>";
    EXPECT_THAT(lines,
                ElementsAre(key + interfaces + "=-", key + interfaces + "/interface-name=Ots0/1/0/1",
                            key + interfaces + "/active=act", key + "/active-nodes/active-node=-",
                            key + "/active-nodes/active-node/node-name=0/RP0/CPU0",
                            key + "/active-nodes/active-node/slot=-", key + "/active-nodes/active-node/slot/slot-id=1",
                            walker + "config_forcetoport>oc_opt_psm_cfg_force_to_port_to_low>"
                                     "/active-nodes/active-node/slot/psm/lockout-from=working"));
}

TEST_F(EndToEnd, TheLogHoldsThePluginsErrors) {
    Options options;
    options.log = true;
    const Translation translation = translate(config("<colour>1</colour>"), Kind::edit, options);
    std::vector<std::string> errors;
    for (const auto &line : translation.log) {
        if (line.error) {
            errors.push_back(line.text.substr(line.text.find(',') + 1));
        }
    }
    EXPECT_THAT(errors, ElementsAre("Unsupported tag `colour` is specified in the request."));
    EXPECT_THAT(translation.trace, IsEmpty());
}

// ---- the database ----

TEST_F(EndToEnd, WithoutAnOpenDatabaseNoModuleIsFound) {
    state_.reset();
    const Translation translation = translate(modules("<aps-module/>"), Kind::get);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    for (const std::string &line : net(translation)) {
        EXPECT_EQ(line.find("interface-name"), std::string::npos) << line;
    }
}

} // namespace
