#include <array>
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

namespace ocpsm::line_system {
namespace {

using namespace native_test; // NOLINT(google-build-using-namespace): the words of requests
using native_test::remove;   // not that of files

// A node of an edit that stands below an entry; a line's nodes below its optics are of a model of their own.
void put(Request &request, const std::string &path, Value value, std::uint32_t operation = merge) {
    const bool of_line = path.starts_with(interface_path);
    request.put(path, of_line ? optics : ots, value, operation, false, 0);
}

// Begins the entry of a slot of the node, or of an interface.
void begin_slot(Request &request, const char *slot, const char *node = "0/RP0/CPU0") {
    request.put(node_path + "/node-name", mda, node, merge, true, 0);
    request.put(slot_path + "/slot-id", ots, slot, merge, true, 0);
}

void begin_interface(Request &request, const char *name, const char *active = "act", std::uint32_t operation = merge) {
    request.put(interface_path, ifmgr, none, operation, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 0);
    request.put(interface_path + "/active", ifmgr, active, merge, false, 0);
}

// An edit in such an entry.
Request at_slot(const char *slot, const char *node = "0/RP0/CPU0") {
    Request request = edit();
    begin_slot(request, slot, node);
    return request;
}

Request at_interface(const char *name, const char *active = "act", std::uint32_t operation = merge) {
    Request request = edit();
    begin_interface(request, name, active, operation);
    return request;
}

// The instances that these name.
std::string slot_instance(const std::string &slot, const std::string &node = "0/RP0/CPU0") {
    return "/active-nodes/active-node[node-name='" + node + "']/slot[slot-id='" + slot + "']";
}

std::string line_instance(const std::string &name, const std::string &active = "act") {
    return "/interface-configurations/interface-configuration[active='" + active + "'][interface-name='" + name + "']";
}

// "tag at path: message", or "none".
std::string refusal(const LineSystem &system, const Request &request) {
    try {
        static_cast<void>(apply(system, request.net()));
    } catch (const Error &refused) {
        return refused.tag + " at " + refused.native_path + ": " + refused.message();
    }
    return "none";
}

std::string not_fitted(const std::string &instance) {
    return "data-missing at " + instance + ": the hardware is not fitted";
}
std::string not_there(const std::string &instance) {
    return "data-missing at " + instance + ": it is not there";
}
std::string there_already(const std::string &instance) {
    return "data-exists at " + instance + ": it is there already";
}

LineSystem blank() {
    return with_modules(std::array{2});
}

const std::string line2 = line_instance("Ots0/2/0/2");

LineSystem after(const LineSystem &system, const Request &request) {
    return apply(system, request.net());
}

// The line system with one of its slots changed.
template <class Change>
LineSystem changed(LineSystem system, int number, Change change) {
    change(slot(system, number));
    return system;
}

// A leaf of slot 2 or of its secondary line, two values of it, and what a value is in the line system.
struct Setting {
    bool of_slot;
    std::string path; // below the slot or the interface
    std::string one;
    std::string other;
    void (*set)(Slot &slot, const std::string &value);

    bool is_threshold() const { return path == "/optics/rx-thresholds/rx-threshold/rx-threshold"; }
    Request with(std::uint32_t operation, Value value) const {
        Request request = of_slot ? at_slot("2") : at_interface("Ots0/2/0/2");
        if (is_threshold()) {
            put(request, threshold_path + "/rx-threshold-type", "low");
        }
        put(request, (of_slot ? slot_path : interface_path) + path, value, operation);
        return request;
    }
    std::string instance() const {
        return of_slot          ? slot_instance("2") + path
               : is_threshold() ? line2 + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold"
                                : line2 + path;
    }
    LineSystem having(const std::string &value) const {
        return changed(blank(), 2, [&](Slot &slot) { set(slot, value); });
    }
};

int number(const std::string &text) {
    return std::stoi(text);
}

const std::vector<Setting> settings = {
    {true, "/psm/relative-switch-threshold/psm-relative-switch-threshold", "15", "-400",
     [](Slot &slot, const auto &value) { slot.settings.relative_threshold = number(value); }},
    {true, "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset", "-400", "400",
     [](Slot &slot, const auto &value) { slot.settings.relative_offset = number(value); }},
    {true, "/psm/revertive/enable", "true", "false",
     [](Slot &slot, const auto &value) { slot.settings.revertive = value == "true"; }},
    {true, "/psm/revertive/wtr", "0", "4294967295",
     [](Slot &slot, const auto &value) { slot.settings.wait_to_restore = value == "0" ? 0 : 4294967295; }},
    {true, "/psm/lockout-from", "working", "",
     [](Slot &slot, const auto &value) { slot.settings.lockout_from = value; }},
    {false, "/optics/rx-thresholds/rx-threshold/rx-threshold", "-400", "300",
     [](Slot &slot, const auto &value) { slot.lines[1].rx_thresholds["low"] = number(value); }},
    {false, "/optics/optics-ots-rx-low-threshold-delta", "0", "300",
     [](Slot &slot, const auto &value) { slot.lines[1].rx_low_threshold_delta = number(value); }},
    {false, "/optics/optics-ots-rx-voa-attenuation", "300", "35",
     [](Slot &slot, const auto &value) {
         slot.lines[1].rx_attenuation = number(value);
         slot.module->attenuators[1].rx = 10 * number(value);
     }},
    {false, "/optics/optics-ots-tx-voa-attenuation", "300", "0",
     [](Slot &slot, const auto &value) {
         slot.lines[1].tx_attenuation = number(value);
         slot.module->attenuators[1].tx = 10 * number(value);
     }},
};

TEST(NativeEdit, SetsEachSettingByEachOperation) {
    for (const Setting &setting : settings) {
        const LineSystem one = setting.having(setting.one);
        const LineSystem other = setting.having(setting.other);
        EXPECT_TRUE(after(blank(), setting.with(merge, setting.one)) == one) << setting.path;
        EXPECT_TRUE(after(one, setting.with(merge, setting.other)) == other) << setting.path;
        EXPECT_TRUE(after(one, setting.with(merge, setting.one)) == one) << setting.path;
        EXPECT_TRUE(after(blank(), setting.with(replace, setting.one)) == one) << setting.path;
        EXPECT_TRUE(after(one, setting.with(replace, setting.other)) == other) << setting.path;
        EXPECT_TRUE(after(blank(), setting.with(create, setting.other)) == other) << setting.path;
        EXPECT_EQ(refusal(one, setting.with(create, setting.other)), there_already(setting.instance()));
    }
}

TEST(NativeEdit, TakesEachSettingAway) {
    for (const Setting &setting : settings) {
        const LineSystem one = setting.having(setting.one);
        LineSystem without = blank();
        // The entry of a threshold stays when only its value goes.
        if (setting.is_threshold()) {
            slot(without, 2).lines[1].rx_thresholds["low"] = std::nullopt;
        }
        EXPECT_TRUE(after(one, setting.with(erase, none)) == without) << setting.path;
        EXPECT_TRUE(after(one, setting.with(erase, setting.other)) == without) << setting.path;
        EXPECT_TRUE(after(one, setting.with(remove, none)) == without) << setting.path;
        EXPECT_TRUE(after(without, setting.with(remove, none)) == without) << setting.path;
        EXPECT_EQ(refusal(without, setting.with(erase, none)), not_there(setting.instance()));
    }
}

TEST(NativeEdit, RefusesValuesThatNoControllerCanBeSetTo) {
    const auto refused = [](std::size_t index, const char *value) {
        const Setting &setting = settings.at(index);
        const std::string text = refusal(blank(), setting.with(merge, value));
        const std::string start = "invalid-value at " + setting.instance() + ": ";
        return text.substr(0, start.size()) == start ? text.substr(start.size()) : text;
    };
    EXPECT_EQ(refused(0, "-401"), "'-401' is no value of this leaf");
    EXPECT_EQ(refused(0, "401"), "'401' is no value of this leaf");
    EXPECT_EQ(refused(1, "-401"), "'-401' is no value of this leaf");
    EXPECT_EQ(refused(1, "401"), "'401' is no value of this leaf");
    EXPECT_EQ(refused(2, "yes"), "'yes' is no value of this leaf");
    EXPECT_EQ(refused(3, "-1"), "'-1' is no value of this leaf");
    EXPECT_EQ(refused(3, "4294967296"), "'4294967296' is no value of this leaf");
    EXPECT_EQ(refused(4, "Working"), "'Working' is none of 'working', 'protected' and the empty text");
    EXPECT_EQ(refused(4, "a\nb"), "'a\\x0ab' is none of 'working', 'protected' and the empty text");
    EXPECT_EQ(refused(5, "-401"), "'-401' is no value of this leaf");
    EXPECT_EQ(refused(5, "301"), "'301' is no value of this leaf");
    EXPECT_EQ(refused(6, "-1"), "'-1' is no value of this leaf");
    EXPECT_EQ(refused(6, "301"), "'301' is no value of this leaf");
    EXPECT_EQ(refused(7, "-1"), "'-1' is no value of this leaf");
    EXPECT_EQ(refused(7, "301"), "'301' is no value of this leaf");
    EXPECT_EQ(refused(8, "-1"), "'-1' is no value of this leaf");
    EXPECT_EQ(refused(8, "2147483647"), "'2147483647' is no value of this leaf");
    EXPECT_EQ(refused(8, "2147483648"), "'2147483648' is no value of this leaf");
    EXPECT_EQ(refused(8, ""), "'' is no value of this leaf");
    EXPECT_EQ(refused(8, "3.5"), "'3.5' is no value of this leaf");
}

TEST(NativeEdit, TakesNumbersInAnyWriting) {
    const Setting &threshold = settings.at(5);
    EXPECT_TRUE(after(blank(), threshold.with(merge, "-025")) == threshold.having("-25"));
    Request request = at_slot("02");
    put(request, psm_path + "/revertive/wtr", "+7");
    EXPECT_TRUE(after(blank(), request) == changed(blank(), 2, [](Slot &slot) { slot.settings.wait_to_restore = 7; }));
}

TEST(NativeEdit, NeedsFittedHardware) {
    EXPECT_EQ(refusal(blank(), at_slot("1")), not_fitted(slot_instance("1")));
    EXPECT_EQ(refusal(blank(), at_slot("4")), not_fitted(slot_instance("4")));
    EXPECT_EQ(refusal(blank(), at_slot("2", "0/RP1/CPU0")),
              not_fitted("/active-nodes/active-node[node-name='0/RP1/CPU0']"));
    for (const char *name : {"Ots0/1/0/1", "Ots0/2/0/0", "Ots0/2/0/3"}) {
        EXPECT_EQ(refusal(blank(), at_interface(name)), not_fitted(line_instance(name)));
    }
    EXPECT_EQ(refusal(blank(), at_interface("Ots0/2/0/1", "pre")), not_fitted(line_instance("Ots0/2/0/1", "pre")));
}

TEST(NativeEdit, LeavesAloneWhatIsConfiguredInAdvance) {
    const LineSystem pulled = pull(example(), 1);
    for (const char *active : {"act", "pre"}) {
        EXPECT_EQ(refusal(pulled, at_interface("Ots0/1/0/1", active)), not_fitted(line_instance("Ots0/1/0/1", active)));
    }
    Request request = edit();
    request.put("/preconfigured-nodes/preconfigured-node", mda, none, merge, true, 0);
    request.put("/preconfigured-nodes/preconfigured-node/node-name", mda, "0/RP0/CPU0", merge, false, 0);
    EXPECT_EQ(refusal(pulled, request), not_fitted("/preconfigured-nodes/preconfigured-node[node-name='0/RP0/CPU0']"));
}

TEST(NativeEdit, ChangesNothingWhereItOnlyNamesWhatIsFitted) {
    EXPECT_TRUE(after(example(), at_slot("1")) == example());
    EXPECT_TRUE(after(example(), at_interface("Ots0/3/0/2")) == example());
    EXPECT_TRUE(after(example(), edit()) == example());
}

// Operations on the entries themselves.
Request on_slot(std::uint32_t operation, const char *slot) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "0/RP0/CPU0", merge, true, 0);
    request.put(slot_path, ots, none, operation, true, 0);
    put(request, slot_path + "/slot-id", slot);
    return request;
}

Request on_interface(std::uint32_t operation, const char *name) {
    return at_interface(name, "act", operation);
}

TEST(NativeEdit, ClearsAModulesSettingsAndKeepsTheModule) {
    const LineSystem no_slot_settings = changed(example(), 1, [](Slot &slot) { slot.settings = {}; });
    const LineSystem no_line_settings = changed(example(), 1, [](Slot &slot) {
        slot.lines[1] = {};
        slot.module->attenuators[1] = {0, 0};
    });
    for (const std::uint32_t operation : {erase, remove, replace}) {
        EXPECT_TRUE(after(example(), on_slot(operation, "1")) == no_slot_settings) << operation;
        EXPECT_TRUE(after(no_slot_settings, on_slot(operation, "1")) == no_slot_settings) << operation;
        EXPECT_TRUE(after(example(), on_interface(operation, "Ots0/1/0/2")) == no_line_settings) << operation;
    }
    EXPECT_EQ(refusal(example(), on_slot(create, "1")), there_already(slot_instance("1")));
}

TEST(NativeEdit, RemovesQuietlyWhatIsNotFitted) {
    EXPECT_TRUE(after(blank(), on_slot(remove, "1")) == blank());
    EXPECT_TRUE(after(blank(), on_interface(remove, "Ots0/1/0/2")) == blank());
    for (const std::uint32_t operation : {erase, create, replace}) {
        EXPECT_EQ(refusal(blank(), on_slot(operation, "1")), not_fitted(slot_instance("1"))) << operation;
    }
}

TEST(NativeEdit, ReplacesAnEntryByWhatItCarries) {
    Request request = on_slot(replace, "1");
    put(request, psm_path + "/revertive/wtr", "500");
    EXPECT_TRUE(after(example(), request) ==
                changed(example(), 1, [](Slot &slot) { slot.settings = {.wait_to_restore = 500}; }));
}

TEST(NativeEdit, ClearsContainers) {
    struct Row {
        std::string container; // below slot 1 or its primary line
        void (*clear)(Slot &slot);
    };
    const std::vector<Row> rows = {
        {"/psm/revertive",
         [](Slot &slot) {
             slot.settings.revertive.reset();
             slot.settings.wait_to_restore.reset();
         }},
        {"/psm", [](Slot &slot) { slot.settings = {}; }},
        {"/optics/rx-thresholds", [](Slot &slot) { slot.lines[0].rx_thresholds.clear(); }},
        {"/optics",
         [](Slot &slot) {
             slot.lines[0] = {};
             slot.module->attenuators[0] = {0, 0};
         }},
    };
    for (const auto &[container, clear] : rows) {
        const bool of_slot = container.starts_with("/psm");
        const std::string instance = (of_slot ? slot_instance("1") : line_instance("Ots0/1/0/1")) + container;
        const auto by = [&, &path = container](std::uint32_t operation) {
            Request request = of_slot ? at_slot("1") : at_interface("Ots0/1/0/1");
            put(request, (of_slot ? slot_path : interface_path) + path, none, operation);
            return request;
        };
        const LineSystem cleared = changed(example(), 1, clear);
        for (const std::uint32_t operation : {erase, remove, replace}) {
            EXPECT_TRUE(after(example(), by(operation)) == cleared) << container << " " << operation;
        }
        EXPECT_TRUE(after(cleared, by(remove)) == cleared) << container;
        EXPECT_TRUE(after(cleared, by(create)) == cleared) << container;
        EXPECT_EQ(refusal(cleared, by(erase)), not_there(instance));
        EXPECT_EQ(refusal(example(), by(create)), there_already(instance));
    }
}

// An operation on the entry of a threshold, and one on the value of an entry that is removed.
Request on_threshold(std::uint32_t operation, const char *type, Value value = none) {
    Request request = at_interface("Ots0/2/0/2");
    request.put(threshold_path, optics, none, operation, true, 0);
    put(request, threshold_path + "/rx-threshold-type", type);
    if (value) {
        put(request, threshold_path + "/rx-threshold", value);
    }
    return request;
}

Request on_removed_threshold(std::uint32_t operation) {
    Request request = at_interface("Ots0/2/0/2");
    put(request, threshold_path + "/rx-threshold-type", "high", remove);
    put(request, threshold_path + "/rx-threshold", none, operation);
    return request;
}

TEST(NativeEdit, MakesThresholdsAsTheyAreNamed) {
    const auto having = [](const Thresholds &thresholds) {
        return changed(blank(), 2, [&](Slot &slot) { slot.lines[1].rx_thresholds = thresholds; });
    };
    const std::string strange(5000, '\'');
    LineSystem system = after(blank(), on_threshold(merge, "high", "25"));
    EXPECT_TRUE(system == having({{"high", 25}}));
    system = after(system, on_threshold(create, strange.c_str()));
    EXPECT_TRUE(system == having({{"high", 25}, {strange, std::nullopt}}));
    system = after(system, on_threshold(replace, "high"));
    EXPECT_TRUE(system == having({{"high", std::nullopt}, {strange, std::nullopt}}));
    system = after(system, on_threshold(erase, "high"));
    EXPECT_TRUE(system == having({{strange, std::nullopt}}));
    EXPECT_TRUE(after(system, on_threshold(remove, "high")) == system);
    const std::string high = line2 + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='high']";
    EXPECT_EQ(refusal(system, on_threshold(erase, "high")), not_there(high));
    EXPECT_EQ(refusal(blank(), on_removed_threshold(erase)), not_there(high + "/rx-threshold"));
    // Nothing is made to take something away from it.
    EXPECT_TRUE(after(system, on_removed_threshold(remove)) == system);
    const LineSystem with_high = after(blank(), on_threshold(merge, "high"));
    EXPECT_EQ(refusal(with_high, on_threshold(create, "high")), there_already(high));
}

TEST(NativeEdit, KnowsNoErrorBelowWhatItHasTakenAwayItself) {
    Request request = at_slot("1");
    put(request, psm_path + "/revertive", none, erase);
    put(request, psm_path + "/revertive/wtr", none, erase);
    put(request, psm_path + "/revertive/enable", "true");
    EXPECT_TRUE(after(example(), request) ==
                changed(example(), 1, [](Slot &slot) { slot.settings.wait_to_restore.reset(); }));
}

TEST(NativeEdit, IsCarriedOutWhole) {
    Request request = at_interface("Ots0/1/0/1");
    put(request, optics_path + "/optics-ots-tx-voa-attenuation", "50");
    begin_interface(request, "Ots0/3/0/2");
    put(request, optics_path + "/optics-ots-rx-voa-attenuation", "20");
    begin_slot(request, "3");
    put(request, psm_path + "/lockout-from", "protected");
    LineSystem expected = example();
    slot(expected, 1).lines[0].tx_attenuation = 50;
    slot(expected, 1).module->attenuators[0].tx = 500;
    slot(expected, 3).lines[1].rx_attenuation = 20;
    slot(expected, 3).module->attenuators[1].rx = 200;
    slot(expected, 3).settings.lockout_from = "protected";
    EXPECT_TRUE(after(example(), request) == expected);
    EXPECT_TRUE(slot(tick(expected, 100), 3).module->protection.active == Path::primary);

    put(request, psm_path + "/revertive/enable", none, erase);
    request.put(slot_path + "/slot-id", ots, "2", merge, true, 0);
    EXPECT_EQ(refusal(example(), request), not_fitted(slot_instance("2")));
}

// The receiving attenuator of the secondary line stands at 0.75 dB, and is set to 0.8.
TEST(NativeEdit, MovesAnAttenuatorOnlyWhenItsSettingChanges) {
    Request same = at_interface("Ots0/3/0/2");
    put(same, optics_path + "/optics-ots-rx-voa-attenuation", "8");
    EXPECT_TRUE(after(example(), same) == example());
    Request other = at_interface("Ots0/3/0/2");
    put(other, optics_path + "/optics-ots-tx-voa-attenuation", "1");
    EXPECT_TRUE(after(example(), other) == changed(example(), 3, [](Slot &slot) {
                    slot.lines[1].tx_attenuation = 1;
                    slot.module->attenuators[1].tx = 10;
                }));
}

TEST(NativeEdit, ShowsInPowersAndDatabaseItems) {
    Request request = at_interface("Ots0/1/0/1");
    put(request, optics_path + "/optics-ots-tx-voa-attenuation", none, erase);
    put(request, optics_path + "/optics-ots-rx-voa-attenuation", "35");
    put(request, optics_path + "/rx-thresholds", none, erase);
    const LineSystem edited = after(example(), request);
    const auto now = powers(slot(edited, 1));
    EXPECT_EQ(now[1].received, -1234);
    EXPECT_EQ(now[1].transmitted, -115);  // 405 - 0 - 520
    EXPECT_EQ(now[0].transmitted, -1582); // -1234 - 350 + 2
    std::vector<std::string> items = shown(database_items(edited));
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
} // namespace ocpsm::line_system
