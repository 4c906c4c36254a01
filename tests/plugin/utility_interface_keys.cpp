// The groups of native nodes that the conversions share: interface keys and selections.
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::container;
using fake::leaf;
using utility::Buffer;
using utility::call;
using utility::Lines;
using utility::lines_of;
using utility::repeated;
using utility::Steps;
using utility::trace;

// ---- build_interface_key ----

class BuildKeyTest : public utility::UtilityTest {
protected:
    void name_module(const std::string &name) { request.set_list_entry(container("aps-module", {leaf("name", name)})); }

    Buffer key{200};
};

TEST_F(BuildKeyTest, TheSlotIsThatOfTheModuleOfTheRequest) {
    name_module("0/2-PSM-OM");
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/1", key.data()), 1);
    EXPECT_EQ(key.text(), "Ots0/2/0/1");
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/2", key.data()), 1);
    EXPECT_EQ(key.text(), "Ots0/2/0/2");
    EXPECT_EQ(happened(), Lines{});
}

TEST_F(BuildKeyTest, WithoutANameTheSlotIsMinusOne) {
    request.set_list_entry(container("aps-module", {container("config", {leaf("name", "0/2-PSM-OM")})}));
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/1", key.data()), 0);
    EXPECT_EQ(key.text(), "Ots0/-1/0/1");

    request.set_list_entry(container("aps-module", {leaf("name")}));
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/2", key.data()), 0);
    EXPECT_EQ(key.text(), "Ots0/-1/0/2");

    request.set_list_entry(container("aps-module"));
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/1", key.data()), 0);
    EXPECT_EQ(key.text(), "Ots0/-1/0/1");
}

TEST_F(BuildKeyTest, WithoutACurrentEntryTheSlotIsMinusOne) {
    request.state.list_node = nullptr;
    EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/1", key.data()), 0);
    EXPECT_EQ(key.text(), "Ots0/-1/0/1");
}

TEST_F(BuildKeyTest, OnlyMinusOneCountsAsNotFound) {
    struct Found {
        std::string name;
        int result;
        std::string key;
    };
    for (const Found &expected : std::vector<Found>{{"PSM-1", 0, "Ots0/-1/0/1"},
                                                    {"", 0, "Ots0/-1/0/1"},
                                                    {"0/-1-PSM-OM", 0, "Ots0/-1/0/1"},
                                                    {"0/-2-PSM-OM", 1, "Ots0/-2/0/1"},
                                                    {"0/0-PSM-OM", 1, "Ots0/0/0/1"},
                                                    {"0/99-PSM-OM", 1, "Ots0/99/0/1"},
                                                    {"0/3", 1, "Ots0/3/0/1"},
                                                    {"0/1" + repeated(100000, 'x'), 1, "Ots0/1/0/1"},
                                                    {repeated(100000, '0'), 0, "Ots0/-1/0/1"}}) {
        SCOPED_TRACE(expected.name.substr(0, 40));
        name_module(expected.name);
        EXPECT_EQ(build_interface_key(request.ctx(), "Ots0/%d/0/1", key.data()), expected.result);
        EXPECT_EQ(key.text(), expected.key);
    }
}

TEST_F(BuildKeyTest, TheKeyStaysWithin200Bytes) {
    name_module("0/2-PSM-OM");
    const std::string format = repeated(250, 'f') + "%d";
    EXPECT_EQ(build_interface_key(request.ctx(), format.c_str(), key.data()), 1);
    EXPECT_EQ(key.text(), repeated(199, 'f'));
}

// ---- add_interface_key ----

class AddKeyTest : public utility::UtilityTest {
protected:
    kidl_yfw_datatree *source_with(std::uint32_t operation) {
        return build(leaf("primary-switch-threshold", "12.5").with_operation(operation), "src").root();
    }

    void add(kidl_yfw_datatree *source) { add_interface_key(request.ctx(), source, dest, "Ots0/2/0/1"); }

    using States = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    // Adds, and tells operation and flags of the source as each add saw them.
    States add_and_watch(kidl_yfw_datatree *source) {
        States states;
        watched_ = &states;
        if (!hooked_) {
            platform.before(
                "add", [this](const std::string &) { watched_->emplace_back(source_->operation, source_->flags); });
            hooked_ = true;
        }
        source_ = source;
        platform.forget();
        add(source);
        return states;
    }

    const Lines entry = {
        "add(ctx, dest, \"/interface-configurations/interface-configuration\", ns=ifmgr-cfg, value=null, src=src, "
        "result=none, 1, 0)",
        "add(ctx, dest, \"/interface-configurations/interface-configuration/interface-name\", ns=ifmgr-cfg, "
        "value=\"Ots0/2/0/1\", src=src, result=none, 0, 1)",
        "add(ctx, dest, \"/interface-configurations/interface-configuration/active\", ns=ifmgr-cfg, value=\"act\", "
        "src=none, result=none, 0, 1)",
        "add(ctx, dest, \"/interface-configurations/interface-configuration/optics\", ns=optics-cfg, value=null, "
        "src=src, result=none, 0, 1)",
    };

private:
    States *watched_ = nullptr;
    const kidl_yfw_datatree *source_ = nullptr;
    bool hooked_ = false;
};

TEST_F(AddKeyTest, AddsEntryNameActivityAndOptics) {
    add(source_with(YFW_OPERATION_MERGE));
    EXPECT_EQ(platform.calls(), entry);
    Steps steps = {trace("add_interface_key", "Start")};
    for (const std::string &line : entry) {
        steps.push_back(call(line));
    }
    steps.push_back(trace("add_interface_key", "End"));
    EXPECT_EQ(platform.calls(fake::Channels | fake::Output | fake::Walk), lines_of(steps));
}

constexpr std::uint32_t of_a_leaf = YFW_NODE_IN_USE | YFW_NODE_HAS_VALUE;

TEST_F(AddKeyTest, WhatIsNoDeleteKeepsItsOperationAndGetsTheFlag) {
    for (const std::uint32_t operation : {YFW_OPERATION_MERGE, YFW_OPERATION_REPLACE, YFW_OPERATION_CREATE}) {
        SCOPED_TRACE(operation);
        kidl_yfw_datatree *const source = source_with(operation);
        EXPECT_EQ(add_and_watch(source), States(4, {operation, of_a_leaf}));
        EXPECT_EQ(platform.calls(), entry);
        EXPECT_EQ(source->operation, operation);
        EXPECT_EQ(source->flags, of_a_leaf | YFW_NODE_OPERATION_REWRITTEN);
    }
}

TEST_F(AddKeyTest, ADeleteAddsPlainNodesAndGetsItsOperationBack) {
    for (const std::uint32_t operation : {YFW_OPERATION_DELETE, YFW_OPERATION_REMOVE}) {
        SCOPED_TRACE(operation);
        kidl_yfw_datatree *const source = source_with(operation);
        EXPECT_EQ(add_and_watch(source), States(4, {YFW_OPERATION_MERGE, of_a_leaf | YFW_NODE_OPERATION_REWRITTEN}));
        EXPECT_EQ(platform.calls(), entry);
        EXPECT_EQ(source->operation, operation);
        EXPECT_EQ(source->flags, of_a_leaf | YFW_NODE_OPERATION_REWRITTEN);
    }
}

TEST_F(AddKeyTest, FailingAddsStopNothing) {
    platform.answer("add", 0x77);
    kidl_yfw_datatree *const source = source_with(YFW_OPERATION_DELETE);
    add(source);
    EXPECT_EQ(platform.calls(), entry);
    EXPECT_EQ(source->operation, YFW_OPERATION_DELETE);
    EXPECT_EQ(messages(), (Lines{"log TRC Start", "log TRC End"}));
}

TEST_F(AddKeyTest, TheControllerIsHandedOnWhole) {
    const std::string controller = repeated(100000, 'c');
    add_interface_key(request.ctx(), source_with(YFW_OPERATION_MERGE), dest, controller.c_str());
    EXPECT_EQ(platform.calls()[1],
              "add(ctx, dest, \"/interface-configurations/interface-configuration/interface-name\", ns=ifmgr-cfg, "
              "value=\"" +
                  controller + "\", src=src, result=none, 0, 1)");
}

class AddKeyDeathTest : public AddKeyTest {};

TEST_F(AddKeyDeathTest, NeedsAContext) {
    kidl_yfw_datatree *const source = source_with(YFW_OPERATION_MERGE);
    EXPECT_DEATH(add_interface_key(nullptr, source, dest, "Ots0/2/0/1"),
                 utility::context_assertion("ymap_oc_opt_psm_openconfig_transport_line_protection_man",
                                            "void add_interface_key(yfw_map_ctx, const struct kidl_yfw_datatree *, "
                                            "struct kidl_yfw_datatree *, const char *)"));
}

// ---- selections ----

// One add with a value.
std::string valued(const std::string &path, const std::string &module, const std::string &value,
                   const std::string &source, const std::string &flags) {
    return "add(ctx, dest, \"" + path + "\", ns=" + module + ", value=\"" + value + "\", src=" + source +
           ", result=none, " + flags + ")";
}

// One selection without value and source.
std::string selected(const std::string &path, const std::string &module, const std::string &flags) {
    return "add(ctx, dest, \"" + path + "\", ns=" + module + ", value=null, src=none, result=none, " + flags + ")";
}

class SelectTest : public utility::UtilityTest {
protected:
    const kidl_yfw_datatree *source = build(leaf("name", "0/1-PSM-OM"), "src").root();

    const Lines operational = {
        selected("/ots-oper/ots-ports/ots-port", "ots-oper", "1, 0"),
        valued("/ots-oper/ots-ports/ots-port/name", "ots-oper", "Ots0/1/0/2", "src", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/lane-data/transmit-power", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/lane-data/receive-power", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/lane-data/transmit-power-dbm", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/lane-data/receive-power-dbm", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/tx-voa-attenuation", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/rx-voa-attenuation", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/port-status", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/rx-low-threshold", "ots-oper", "0, 1"),
        selected("/ots-oper/ots-ports/ots-port/ots-info/rx-thr-fail-low-delta-val", "ots-oper", "0, 1"),
    };

    const std::string entry = "/performance-management-history/global/periodic/optics-history/optics-port-histories/"
                              "optics-port-history";
    const std::string second30 = entry + "/optics-second30-history/optics-second30-optics-histories/"
                                         "optics-second30-optics-history";
    const std::string time_line = second30 + "/optics-second30-optics-time-line-instances/"
                                             "optics-second30-optics-time-line-instance";
    const Lines history = {
        selected(entry, "pmengine-oper", "1, 0"),
        selected(second30, "pmengine-oper", "1, 0"),
        valued(second30 + "/number", "pmengine-oper", "1", "none", "0, 0"),
        selected(time_line, "pmengine-oper", "1, 1"),
        valued(time_line + "/number", "pmengine-oper", "1", "none", "0, 1"),
        selected(time_line + "/opr/average", "pmengine-oper", "0, 0"),
        selected(time_line + "/opr/minimum", "pmengine-oper", "0, 0"),
        selected(time_line + "/opr/maximum", "pmengine-oper", "0, 0"),
        selected(time_line + "/opt/average", "pmengine-oper", "0, 0"),
        selected(time_line + "/opt/minimum", "pmengine-oper", "0, 0"),
        selected(time_line + "/opt/maximum", "pmengine-oper", "0, 0"),
        valued(entry + "/name", "pmengine-oper", "Ots0/1/0/2", "src", "0, 1"),
    };

    const Lines hardware = {
        valued("/active-nodes/active-node/node-name", "mda-cfg", "0/RP0/CPU0", "none", "1, 0"),
        selected("/active-nodes/active-node/slot/psm/revertive/enable", "ots-cfg", "1, 0"),
        selected("/active-nodes/active-node/slot/psm/revertive/wtr", "ots-cfg", "1, 0"),
        selected("/active-nodes/active-node/slot/psm/lockout-from", "ots-cfg", "1, 0"),
        selected("/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold",
                 "ots-cfg", "1, 0"),
        selected("/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold-offset",
                 "ots-cfg", "1, 0"),
    };

    // Adds and whatever else is done or said, local texts left aside.
    [[nodiscard]] Lines done() const { return platform.calls(fake::Everything & ~fake::Texts); }
};

TEST_F(SelectTest, OperationalFieldsOfAController) {
    EXPECT_EQ(add_ots_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    EXPECT_EQ(done(), operational);
}

TEST_F(SelectTest, OperationalFieldsGiveTheResultOfTheLastAdd) {
    platform.answer("add", 0x11, 11);
    platform.answer("add", 0x22);
    EXPECT_EQ(add_ots_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), 0x11u);
    EXPECT_EQ(done(), operational);
}

TEST_F(SelectTest, EarlierFailuresOfOperationalFieldsDoNotCount) {
    platform.answer("add", KERR_SUCCESS, 11);
    platform.answer("add", 0x22);
    EXPECT_EQ(add_ots_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    EXPECT_EQ(done(), operational);
}

TEST_F(SelectTest, HistoryOfAController) {
    EXPECT_EQ(add_pm_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    EXPECT_EQ(done(), history);
}

TEST_F(SelectTest, HistoryGivesTheResultOfTheLastAdd) {
    platform.answer("add", 0x11, 12);
    platform.answer("add", 0x22);
    EXPECT_EQ(add_pm_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), 0x11u);
    EXPECT_EQ(done(), history);
}

TEST_F(SelectTest, EarlierFailuresOfHistoryDoNotCount) {
    platform.answer("add", KERR_SUCCESS, 12);
    platform.answer("add", 0x22);
    EXPECT_EQ(add_pm_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    EXPECT_EQ(done(), history);
}

TEST_F(SelectTest, TheControllerIsHandedOnWhole) {
    const std::string controller = repeated(100000, 'c');
    EXPECT_EQ(add_ots_select_field(request.ctx(), source, dest, controller.c_str()), KERR_SUCCESS);
    EXPECT_EQ(platform.calls()[1], valued("/ots-oper/ots-ports/ots-port/name", "ots-oper", controller, "src", "0, 1"));
    platform.forget();
    EXPECT_EQ(add_pm_select_field(request.ctx(), source, dest, controller.c_str()), KERR_SUCCESS);
    EXPECT_EQ(platform.calls().back(), valued(entry + "/name", "pmengine-oper", controller, "src", "0, 1"));
}

TEST_F(SelectTest, TheSourceStaysAsItIs) {
    const kidl_yfw_datatree before = *source;
    EXPECT_EQ(add_ots_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    EXPECT_EQ(add_pm_select_field(request.ctx(), source, dest, "Ots0/1/0/2"), KERR_SUCCESS);
    add_hwmodule_select_field(request.ctx(), source, dest, 1);
    EXPECT_EQ(source->operation, before.operation);
    EXPECT_EQ(source->flags, before.flags);
}

TEST_F(SelectTest, HardwareSettingsAreTheSameWhateverTheNumber) {
    for (const int number : {1, 2, 3, 0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(number);
        platform.forget();
        add_hwmodule_select_field(request.ctx(), source, dest, number);
        EXPECT_EQ(done(), hardware);
    }
}

TEST_F(SelectTest, HardwareSettingsNeedNoSourceAndFailingAddsStopNothing) {
    platform.answer("add", 0x77);
    add_hwmodule_select_field(request.ctx(), nullptr, dest, 2);
    EXPECT_EQ(done(), hardware);
}

} // namespace
