#include <array>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "framework/error.hpp"
#include "native/native_test.hpp"
#include "shown_item.hpp"
#include "simulator/line_system/controllers.hpp"
#include "simulator/line_system/database_items.hpp"
#include "simulator/line_system/native_side.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using native_test::create;
using native_test::edit;
using native_test::erase;
using native_test::ifmgr;
using native_test::interface_path;
using native_test::mda;
using native_test::merge;
using native_test::node_path;
using native_test::none;
using native_test::optics;
using native_test::optics_path;
using native_test::ots;
using native_test::psm_path;
using native_test::remove;
using native_test::replace;
using native_test::Request;
using native_test::slot_path;
using native_test::threshold_path;
using native_test::Value;
using ocpsm::line_system::apply;
using ocpsm::line_system::example;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::Path;
using ocpsm::line_system::pull;
using ocpsm::line_system::Slot;
using ocpsm::line_system::SlotSettings;
using ocpsm::line_system::with_modules;
using testing::ElementsAre;

// An edit that stands in the entry of a slot of the node, or in that of an interface.
Request at_slot(const char *slot, const char *node = "0/RP0/CPU0") {
    Request request = edit();
    request.put(node_path + "/node-name", mda, node, merge, true, 0);
    request.put(slot_path + "/slot-id", ots, slot, merge, true, 0);
    return request;
}

Request at_interface(const char *name, const char *active = "act") {
    Request request = edit();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 0);
    request.put(interface_path + "/active", ifmgr, active, merge, false, 0);
    return request;
}

// "tag at path: message", or "none".
std::string refusal(const LineSystem &system, const Request &request) {
    try {
        static_cast<void>(apply(system, request.net()));
    } catch (const ocpsm::Error &refused) {
        return refused.tag + " at " + refused.native_path + ": " + refused.message();
    }
    return "none";
}

LineSystem blank() {
    return with_modules(std::array{2});
}

const std::string slot2 = "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']";
const std::string line2 =
    "/interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']";

// A leaf of slot 2 or of its secondary line, and what two values of it are in the line system.
struct Setting {
    bool of_slot;
    std::string path; // below the slot or the interface
    std::string one;
    std::string other;
    std::function<void(Slot &)> set_one;
    std::function<void(Slot &)> set_other;

    Request at() const { return of_slot ? at_slot("2") : at_interface("Ots0/2/0/2"); }
    Request with(std::uint32_t operation, Value value) const {
        Request request = at();
        const bool threshold = path == "/optics/rx-thresholds/rx-threshold/rx-threshold";
        if (threshold) {
            request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 0);
        }
        request.put((of_slot ? slot_path : interface_path) + path, of_slot ? ots : optics, value, operation, false, 0);
        return request;
    }
    std::string instance() const {
        return of_slot ? slot2 + path
               : path == "/optics/rx-thresholds/rx-threshold/rx-threshold"
                   ? line2 + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold"
                   : line2 + path;
    }
};

LineSystem having(const std::function<void(Slot &)> &set) {
    LineSystem system = blank();
    set(slot(system, 2));
    return system;
}

std::vector<Setting> settings() {
    return {
        {true, "/psm/relative-switch-threshold/psm-relative-switch-threshold", "15", "-400",
         [](Slot &slot) { slot.settings.relative_threshold = 15; },
         [](Slot &slot) { slot.settings.relative_threshold = -400; }},
        {true, "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset", "-400", "400",
         [](Slot &slot) { slot.settings.relative_offset = -400; },
         [](Slot &slot) { slot.settings.relative_offset = 400; }},
        {true, "/psm/revertive/enable", "true", "false", [](Slot &slot) { slot.settings.revertive = true; },
         [](Slot &slot) { slot.settings.revertive = false; }},
        {true, "/psm/revertive/wtr", "0", "4294967295", [](Slot &slot) { slot.settings.wait_to_restore = 0; },
         [](Slot &slot) { slot.settings.wait_to_restore = 4294967295; }},
        {true, "/psm/lockout-from", "working", "", [](Slot &slot) { slot.settings.lockout_from = "working"; },
         [](Slot &slot) { slot.settings.lockout_from = ""; }},
        {false, "/optics/rx-thresholds/rx-threshold/rx-threshold", "-400", "300",
         [](Slot &slot) { slot.lines[1].rx_thresholds["low"] = -400; },
         [](Slot &slot) { slot.lines[1].rx_thresholds["low"] = 300; }},
        {false, "/optics/optics-ots-rx-low-threshold-delta", "0", "300",
         [](Slot &slot) { slot.lines[1].rx_low_threshold_delta = 0; },
         [](Slot &slot) { slot.lines[1].rx_low_threshold_delta = 300; }},
        {false, "/optics/optics-ots-rx-voa-attenuation", "300", "35",
         [](Slot &slot) {
             slot.lines[1].rx_attenuation = 300;
             slot.module->attenuators[1].rx = 3000;
         },
         [](Slot &slot) {
             slot.lines[1].rx_attenuation = 35;
             slot.module->attenuators[1].rx = 350;
         }},
        {false, "/optics/optics-ots-tx-voa-attenuation", "300", "0",
         [](Slot &slot) {
             slot.lines[1].tx_attenuation = 300;
             slot.module->attenuators[1].tx = 3000;
         },
         [](Slot &slot) {
             slot.lines[1].tx_attenuation = 0;
             slot.module->attenuators[1].tx = 0;
         }},
    };
}

TEST(NativeEdit, SetsEachSettingByEachOperation) {
    for (const Setting &setting : settings()) {
        const LineSystem one = having(setting.set_one);
        const LineSystem other = having(setting.set_other);
        EXPECT_TRUE(apply(blank(), setting.with(merge, setting.one).net()) == one) << setting.path;
        EXPECT_TRUE(apply(one, setting.with(merge, setting.other).net()) == other) << setting.path;
        EXPECT_TRUE(apply(one, setting.with(merge, setting.one).net()) == one) << setting.path;
        EXPECT_TRUE(apply(blank(), setting.with(replace, setting.one).net()) == one) << setting.path;
        EXPECT_TRUE(apply(one, setting.with(replace, setting.other).net()) == other) << setting.path;
        EXPECT_TRUE(apply(blank(), setting.with(create, setting.other).net()) == other) << setting.path;
        EXPECT_EQ(refusal(one, setting.with(create, setting.other)),
                  "data-exists at " + setting.instance() + ": it is there already");
    }
}

TEST(NativeEdit, TakesEachSettingAway) {
    for (const Setting &setting : settings()) {
        const LineSystem one = having(setting.set_one);
        LineSystem without = blank();
        // The entry of a threshold stays when only its value goes.
        if (setting.path == "/optics/rx-thresholds/rx-threshold/rx-threshold") {
            slot(without, 2).lines[1].rx_thresholds["low"] = std::nullopt;
        }
        EXPECT_TRUE(apply(one, setting.with(erase, none).net()) == without) << setting.path;
        EXPECT_TRUE(apply(one, setting.with(erase, setting.other).net()) == without) << setting.path;
        EXPECT_TRUE(apply(one, setting.with(remove, none).net()) == without) << setting.path;
        EXPECT_TRUE(apply(without, setting.with(remove, none).net()) == without) << setting.path;
        EXPECT_EQ(refusal(without, setting.with(erase, none)),
                  "data-missing at " + setting.instance() + ": it is not there");
    }
}

TEST(NativeEdit, RefusesValuesThatNoControllerCanBeSetTo) {
    const auto refused = [](std::size_t index, const char *value) {
        const Setting setting = settings().at(index);
        const std::string text = refusal(blank(), setting.with(merge, value));
        const std::string start = "invalid-value at " + setting.instance() + ": ";
        return text.substr(0, start.size()) == start ? text.substr(start.size()) : text;
    };
    EXPECT_EQ(refused(0, "-401"), "-401 is not within -400 to 400 tenths of a dB");
    EXPECT_EQ(refused(0, "401"), "401 is not within -400 to 400 tenths of a dB");
    EXPECT_EQ(refused(1, "-401"), "-401 is not within -400 to 400 tenths of a dB");
    EXPECT_EQ(refused(1, "401"), "401 is not within -400 to 400 tenths of a dB");
    EXPECT_EQ(refused(2, "yes"), "'yes' is no value of this leaf");
    EXPECT_EQ(refused(3, "-1"), "'-1' is no value of this leaf");
    EXPECT_EQ(refused(3, "4294967296"), "'4294967296' is no value of this leaf");
    EXPECT_EQ(refused(4, "Working"), "'Working' is none of 'working', 'protected' and the empty text");
    EXPECT_EQ(refused(4, "a\nb"), "'a\\x0ab' is none of 'working', 'protected' and the empty text");
    EXPECT_EQ(refused(5, "-401"), "-401 is not within -400 to 300 tenths of a dBm");
    EXPECT_EQ(refused(5, "301"), "301 is not within -400 to 300 tenths of a dBm");
    EXPECT_EQ(refused(6, "-1"), "-1 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(6, "301"), "301 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(7, "-1"), "-1 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(7, "301"), "301 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(8, "-1"), "-1 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(8, "2147483647"), "2147483647 is not within 0 to 300 tenths of a dB");
    EXPECT_EQ(refused(8, "2147483648"), "'2147483648' is no value of this leaf");
    EXPECT_EQ(refused(8, ""), "'' is no value of this leaf");
    EXPECT_EQ(refused(8, "3.5"), "'3.5' is no value of this leaf");
}

TEST(NativeEdit, TakesNumbersInAnyWriting) {
    const Setting setting = settings().at(5);
    LineSystem expected = blank();
    slot(expected, 2).lines[1].rx_thresholds["low"] = -25;
    EXPECT_TRUE(apply(blank(), setting.with(merge, "-025").net()) == expected);
    Request request = at_slot("02");
    request.put(psm_path + "/revertive/wtr", ots, "+7", merge, false, 0);
    LineSystem waiting = blank();
    slot(waiting, 2).settings.wait_to_restore = 7;
    EXPECT_TRUE(apply(blank(), request.net()) == waiting);
}

TEST(NativeEdit, NeedsFittedHardware) {
    const std::string missing = ": the hardware is not fitted";
    EXPECT_EQ(refusal(blank(), at_slot("1")),
              "data-missing at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']" + missing);
    EXPECT_EQ(refusal(blank(), at_slot("4")),
              "data-missing at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='4']" + missing);
    EXPECT_EQ(refusal(blank(), at_slot("2", "0/RP1/CPU0")),
              "data-missing at /active-nodes/active-node[node-name='0/RP1/CPU0']" + missing);
    const std::string interface = "data-missing at /interface-configurations/interface-configuration";
    EXPECT_EQ(refusal(blank(), at_interface("Ots0/1/0/1")),
              interface + "[active='act'][interface-name='Ots0/1/0/1']" + missing);
    EXPECT_EQ(refusal(blank(), at_interface("Ots0/2/0/0")),
              interface + "[active='act'][interface-name='Ots0/2/0/0']" + missing);
    EXPECT_EQ(refusal(blank(), at_interface("Ots0/2/0/3")),
              interface + "[active='act'][interface-name='Ots0/2/0/3']" + missing);
    EXPECT_EQ(refusal(blank(), at_interface("Ots0/2/0/1", "pre")),
              interface + "[active='pre'][interface-name='Ots0/2/0/1']" + missing);
}

TEST(NativeEdit, LeavesAloneWhatIsConfiguredInAdvance) {
    const LineSystem pulled = pull(example(), 1);
    const std::string missing = ": the hardware is not fitted";
    EXPECT_EQ(refusal(pulled, at_interface("Ots0/1/0/1")),
              "data-missing at /interface-configurations/interface-configuration[active='act']"
              "[interface-name='Ots0/1/0/1']" +
                  missing);
    EXPECT_EQ(refusal(pulled, at_interface("Ots0/1/0/1", "pre")),
              "data-missing at /interface-configurations/interface-configuration[active='pre']"
              "[interface-name='Ots0/1/0/1']" +
                  missing);
    Request request = edit();
    request.put("/preconfigured-nodes/preconfigured-node", mda, none, merge, true, 0);
    request.put("/preconfigured-nodes/preconfigured-node/node-name", mda, "0/RP0/CPU0", merge, false, 0);
    EXPECT_EQ(refusal(pulled, request),
              "data-missing at /preconfigured-nodes/preconfigured-node[node-name='0/RP0/CPU0']" + missing);
}

TEST(NativeEdit, ChangesNothingWhereItOnlyNamesWhatIsFitted) {
    EXPECT_TRUE(apply(example(), at_slot("1").net()) == example());
    EXPECT_TRUE(apply(example(), at_interface("Ots0/3/0/2").net()) == example());
    EXPECT_TRUE(apply(example(), edit().net()) == example());
}

// An operation on the entry of a slot or an interface of slot 2.
Request on_entry(bool of_slot, std::uint32_t operation, const char *name) {
    Request request = edit();
    if (of_slot) {
        request.put(node_path + "/node-name", mda, "0/RP0/CPU0", merge, true, 0);
        request.put(slot_path, ots, none, operation, true, 0);
        request.put(slot_path + "/slot-id", ots, name, merge, false, 0);
    } else {
        request.put(interface_path, ifmgr, none, operation, true, 0);
        request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 0);
        request.put(interface_path + "/active", ifmgr, "act", merge, false, 0);
    }
    return request;
}

TEST(NativeEdit, ClearsAModulesSettingsAndKeepsTheModule) {
    LineSystem no_slot_settings = example();
    slot(no_slot_settings, 1).settings = {};
    LineSystem no_line_settings = example();
    slot(no_line_settings, 1).lines[1] = {};
    slot(no_line_settings, 1).module->attenuators[1] = {0, 0};
    for (const std::uint32_t operation : {erase, remove, replace}) {
        EXPECT_TRUE(apply(example(), on_entry(true, operation, "1").net()) == no_slot_settings) << operation;
        EXPECT_TRUE(apply(no_slot_settings, on_entry(true, operation, "1").net()) == no_slot_settings) << operation;
        EXPECT_TRUE(apply(example(), on_entry(false, operation, "Ots0/1/0/2").net()) == no_line_settings) << operation;
    }
    EXPECT_EQ(
        refusal(example(), on_entry(true, create, "1")),
        "data-exists at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']: it is there already");
}

TEST(NativeEdit, RemovesQuietlyWhatIsNotFitted) {
    EXPECT_TRUE(apply(blank(), on_entry(true, remove, "1").net()) == blank());
    EXPECT_TRUE(apply(blank(), on_entry(false, remove, "Ots0/1/0/2").net()) == blank());
    EXPECT_EQ(
        refusal(blank(), on_entry(true, erase, "1")),
        "data-missing at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']: the hardware is not "
        "fitted");
    EXPECT_EQ(
        refusal(blank(), on_entry(true, create, "1")),
        "data-missing at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']: the hardware is not "
        "fitted");
    EXPECT_EQ(
        refusal(blank(), on_entry(true, replace, "1")),
        "data-missing at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']: the hardware is not "
        "fitted");
}

TEST(NativeEdit, ReplacesAnEntryByWhatItCarries) {
    Request request = on_entry(true, replace, "1");
    request.put(psm_path + "/revertive/wtr", ots, "500", merge, false, 0);
    LineSystem expected = example();
    slot(expected, 1).settings = SlotSettings{.wait_to_restore = 500};
    EXPECT_TRUE(apply(example(), request.net()) == expected);
}

TEST(NativeEdit, ClearsContainers) {
    const auto at_container = [](bool of_slot, const std::string &path, std::uint32_t operation) {
        Request request = of_slot ? at_slot("1") : at_interface("Ots0/1/0/1");
        request.put(path, of_slot ? ots : optics, none, operation, false, 0);
        return request;
    };
    LineSystem no_revertive = example();
    slot(no_revertive, 1).settings.revertive.reset();
    slot(no_revertive, 1).settings.wait_to_restore.reset();
    LineSystem no_psm = example();
    slot(no_psm, 1).settings = {};
    LineSystem no_thresholds = example();
    slot(no_thresholds, 1).lines[0].rx_thresholds.clear();
    LineSystem no_optics = example();
    slot(no_optics, 1).lines[0] = {};
    slot(no_optics, 1).module->attenuators[0] = {0, 0};
    const std::string slot1 = "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']";
    const std::string line1 =
        "/interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']";
    struct Row {
        bool of_slot;
        std::string path;
        LineSystem cleared;
        std::string instance;
    };
    const std::vector<Row> rows = {
        {true, psm_path + "/revertive", no_revertive, slot1 + "/psm/revertive"},
        {true, psm_path, no_psm, slot1 + "/psm"},
        {false, optics_path + "/rx-thresholds", no_thresholds, line1 + "/optics/rx-thresholds"},
        {false, optics_path, no_optics, line1 + "/optics"},
    };
    for (const Row &row : rows) {
        for (const std::uint32_t operation : {erase, remove, replace}) {
            EXPECT_TRUE(apply(example(), at_container(row.of_slot, row.path, operation).net()) == row.cleared)
                << row.path << " " << operation;
        }
        EXPECT_TRUE(apply(row.cleared, at_container(row.of_slot, row.path, remove).net()) == row.cleared) << row.path;
        EXPECT_TRUE(apply(row.cleared, at_container(row.of_slot, row.path, create).net()) == row.cleared) << row.path;
        EXPECT_EQ(refusal(row.cleared, at_container(row.of_slot, row.path, erase)),
                  "data-missing at " + row.instance + ": it is not there");
        EXPECT_EQ(refusal(example(), at_container(row.of_slot, row.path, create)),
                  "data-exists at " + row.instance + ": it is there already");
    }
}

// An operation on the entry of a threshold.
Request on_threshold(std::uint32_t operation, const char *type, Value value = none) {
    Request request = at_interface("Ots0/2/0/2");
    request.put(threshold_path, optics, none, operation, true, 0);
    request.put(threshold_path + "/rx-threshold-type", optics, type, merge, false, 0);
    if (value) {
        request.put(threshold_path + "/rx-threshold", optics, value, merge, false, 0);
    }
    return request;
}

TEST(NativeEdit, MakesThresholdsAsTheyAreNamed) {
    LineSystem expected = blank();
    auto &thresholds = slot(expected, 2).lines[1].rx_thresholds;
    thresholds["high"] = 25;
    LineSystem after = apply(blank(), on_threshold(merge, "high", "25").net());
    EXPECT_TRUE(after == expected);
    const std::string strange(5000, '\'');
    thresholds[strange] = std::nullopt;
    after = apply(after, on_threshold(create, strange.c_str()).net());
    EXPECT_TRUE(after == expected);
    thresholds["high"] = std::nullopt;
    after = apply(after, on_threshold(replace, "high").net());
    EXPECT_TRUE(after == expected);
    thresholds.erase("high");
    after = apply(after, on_threshold(erase, "high").net());
    EXPECT_TRUE(after == expected);
    EXPECT_TRUE(apply(after, on_threshold(remove, "high").net()) == expected);
    const std::string high = line2 + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='high']";
    EXPECT_EQ(refusal(after, on_threshold(erase, "high")), "data-missing at " + high + ": it is not there");
    EXPECT_EQ(refusal(blank(),
                      [] {
                          Request request = at_interface("Ots0/2/0/2");
                          request.put(threshold_path + "/rx-threshold-type", optics, "high", remove, false, 0);
                          request.put(threshold_path + "/rx-threshold", optics, none, erase, false, 0);
                          return request;
                      }()),
              "data-missing at " + high + "/rx-threshold: it is not there");
    // Nothing is made to take something away from it.
    EXPECT_TRUE(apply(after,
                      [] {
                          Request request = at_interface("Ots0/2/0/2");
                          request.put(threshold_path + "/rx-threshold-type", optics, "high", remove, false, 0);
                          request.put(threshold_path + "/rx-threshold", optics, none, remove, false, 0);
                          return request;
                      }()
                          .net()) == after);
    const LineSystem with_high = apply(blank(), on_threshold(merge, "high").net());
    EXPECT_EQ(refusal(with_high, on_threshold(create, "high")), "data-exists at " + high + ": it is there already");
}

TEST(NativeEdit, KnowsNoErrorBelowWhatItHasTakenAwayItself) {
    Request request = at_slot("1");
    request.put(psm_path + "/revertive", ots, none, erase, false, 0);
    request.put(psm_path + "/revertive/wtr", ots, none, erase, false, 0);
    request.put(psm_path + "/revertive/enable", ots, "true", merge, false, 0);
    LineSystem expected = example();
    slot(expected, 1).settings.wait_to_restore.reset();
    EXPECT_TRUE(apply(example(), request.net()) == expected);
}

TEST(NativeEdit, IsCarriedOutWhole) {
    Request request = at_interface("Ots0/1/0/1");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "50", merge, false, 0);
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, "Ots0/3/0/2", merge, false, 0);
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 0);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "20", merge, false, 0);
    request.put(node_path + "/node-name", mda, "0/RP0/CPU0", merge, true, 0);
    request.put(slot_path + "/slot-id", ots, "3", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "protected", merge, false, 0);
    LineSystem expected = example();
    slot(expected, 1).lines[0].tx_attenuation = 50;
    slot(expected, 1).module->attenuators[0].tx = 500;
    slot(expected, 3).lines[1].rx_attenuation = 20;
    slot(expected, 3).module->attenuators[1].rx = 200;
    slot(expected, 3).settings.lockout_from = "protected";
    const LineSystem after = apply(example(), request.net());
    EXPECT_TRUE(after == expected);
    EXPECT_TRUE(slot(tick(after, 100), 3).module->protection.active == Path::primary);

    request.put(psm_path + "/revertive/enable", ots, none, erase, false, 0);
    request.put(slot_path + "/slot-id", ots, "2", merge, true, 0);
    EXPECT_EQ(refusal(example(), request), "data-missing at " + slot2 + ": the hardware is not fitted");
}

// The receiving attenuator of the secondary line stands at 0.75 dB, and is set to 0.8.
TEST(NativeEdit, MovesAnAttenuatorOnlyWhenItsSettingChanges) {
    Request same = at_interface("Ots0/3/0/2");
    same.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "8", merge, false, 0);
    EXPECT_TRUE(apply(example(), same.net()) == example());
    Request other = at_interface("Ots0/3/0/2");
    other.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "1", merge, false, 0);
    LineSystem expected = example();
    slot(expected, 3).lines[1].tx_attenuation = 1;
    slot(expected, 3).module->attenuators[1].tx = 10;
    EXPECT_TRUE(apply(example(), other.net()) == expected);
}

TEST(NativeEdit, ShowsInPowersAndDatabaseItems) {
    Request request = at_interface("Ots0/1/0/1");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, none, erase, false, 0);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "35", merge, false, 0);
    request.put(optics_path + "/rx-thresholds", optics, none, erase, false, 0);
    const LineSystem after = apply(example(), request.net());
    const auto powers = ocpsm::line_system::powers(slot(after, 1));
    EXPECT_EQ(powers[1].received, -1234);
    EXPECT_EQ(powers[1].transmitted, -115);  // 105 - 0 - 220
    EXPECT_EQ(powers[0].transmitted, -1582); // -1234 - 350 + 2
    std::vector<std::string> items = shown(ocpsm::line_system::database_items(after));
    std::erase_if(items, [](const std::string &item) { return item.find("Ots0_1_0_1") == std::string::npos; });
    EXPECT_THAT(items, testing::UnorderedElementsAre(
                           "/oper/ots/if/Ots0_1_0_1/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { "
                           "ReceivePower=-1234 ReceivePowerDbm=-1234 TransmitPower=-115 TransmitPowerDbm=-115 } ] } "
                           "Ots_edm_info{ RxVoaAttenuation=350 TxVoaAttenuation=0 }",
                           "/cfg/if/act/Ots0_1_0_1/Optics/rx_attenuation: 35",
                           "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_1_0_1/30sec/optics/1/timeline_rev/0x1: "
                           "pm_optics_paras 1.0 pm_optics_paras{ OPR{ Average='   -12.30 ' Minimum='   -12.51 ' "
                           "Maximum='   -12.18 ' } OPT{ Average='    -2.14 ' Minimum='    -2.20 ' Maximum='    -2.09 ' "
                           "} }"));
}

TEST(NativeEdit, ClearsEverythingAtOnce) {
    Request request = edit();
    request.put("/interface-configurations", ifmgr, none, remove, false, 0);
    request.put("/active-nodes", mda, none, erase, false, 0);
    LineSystem expected = example();
    for (const int number : {1, 3}) {
        slot(expected, number).settings = {};
        slot(expected, number).lines = {};
        slot(expected, number).module->attenuators = {};
    }
    EXPECT_TRUE(apply(example(), request.net()) == expected);
}

} // namespace
