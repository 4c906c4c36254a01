// Protection settings of a slot on their way to OpenConfig: what they become in config and in state.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char slot_list[] = "/hardware-module/node/slot";
constexpr char lockout_slot_list[] = "/active-nodes/active-node/slot/slot-id"; // another one on purpose
constexpr kerrno no_entry = 0x00ba5e00;

const std::vector<Value> &texts() {
    static const std::vector<Value> all = {{"true", "true"},
                                           {"false", "false"},
                                           {"300000", "300000"},
                                           {"", ""},
                                           {"abc", "abc"},
                                           {" 12 ", " 12 "},
                                           {"%s%n", "%s%n"},
                                           {repeated(5000, 'x'), repeated(5000, 'x')},
                                           {repeated(100000, '1'), repeated(100000, '1')}};
    return all;
}

// A path that is locked out leaves the other one.
const std::vector<Value> &lockouts() {
    static const std::vector<Value> all = {
        {"working", "SECONDARY"}, {"protected", "PRIMARY"}, {"", "NONE"},
        {"none", "NONE"},         {"Working", "NONE"},      {"PROTECTED", "NONE"},
        {"working ", "NONE"},     {" protected", "NONE"},   {"workingworking", "NONE"},
        {"abc", "NONE"},          {"-25", "NONE"},          {"working" + repeated(5000, 'x'), "NONE"}};
    return all;
}

struct Row {
    const char *conversion;
    const char *list_path;
    const char *config;
    const char *state;
    const std::vector<Value> &values;
};

const std::vector<Row> &rows() {
    static const std::vector<Row> all = {
        {"oc_opt_psm_cfg_relative_switch_th_to_high", slot_list, "config/relative-switch-threshold",
         "state/relative-switch-threshold", tenths()},
        {"oc_opt_psm_cfg_relative_switch_th_offset_to_high", slot_list, "config/relative-switch-threshold-offset",
         "state/relative-switch-threshold-offset", tenths()},
        {"oc_opt_psm_cfg_revertive_to_high", slot_list, "config/revertive", "state/revertive", texts()},
        {"oc_opt_psm_cfg_wtr_to_high", slot_list, "config/wait-to-restore-time", "state/wait-to-restore-time", texts()},
        {"oc_opt_psm_cfg_lockout_from_to_high", lockout_slot_list, "config/force-to-port", "state/force-to-port",
         lockouts()}};
    return all;
}

std::string shown(const Text &text) {
    return text.value_or("(null)");
}

class SlotSettings : public HighTest {
protected:
    SlotSettings() { platform.node_info["slot-id"] = "2"; }

    // The look-up and its trace, and what follows.
    [[nodiscard]] Lines looked_up(const Row &row, const Text &input) {
        return {node_info(row.list_path, "slot-id"),
                "@ slot_id: " + shown(platform.node_info["slot-id"]) + ", input data " + shown(input)};
    }

    void expect_written(const Row &row, const Value &value, std::uint32_t kind, const Selection &selection) {
        SCOPED_TRACE(std::string(row.conversion) + ", \"" + value.given.substr(0, 40) + "\", kind " +
                     std::to_string(kind) + ", mode " + std::to_string(selection.mode) + ", bits " +
                     std::to_string(selection.bits));
        request.set_kind(kind);
        set_selection(selection);
        Lines expected = looked_up(row, value.given);
        kerrno result = KERR_SUCCESS;
        if (!selection.suppresses) {
            expected.push_back(add(row.config, value.written));
            result = add_result(1);
        }
        if (kind == YFW_KIND_GET) {
            expected.push_back(add(row.state, value.written));
            result = selection.suppresses ? add_result(1) : add_result(2);
        }
        expect_run(row.conversion, leaf_with(value.given), result, expected);
        drop_trees();
    }
};

TEST_F(SlotSettings, GoToConfigAndInAReadOfStateToStateToo) {
    for (const Row &row : rows()) {
        for (const Value &value : row.values) {
            for (const std::uint32_t kind : {0u, 10u, 1u, 8u}) {
                expect_written(row, value, kind, nothing_selected);
            }
        }
    }
}

TEST_F(SlotSettings, StayOutOfConfigWhenOnlyStateWasSelected) {
    for (const Row &row : rows()) {
        for (const Selection &selection : selections()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, row.values.front(), kind, selection);
                expect_written(row, row.values.back(), kind, selection);
            }
        }
    }
}

TEST_F(SlotSettings, ScaleByTen) {
    request.set_kind(YFW_KIND_GET);
    expect_run("oc_opt_psm_cfg_relative_switch_th_to_high", leaf_with("-25"), add_result(2),
               {"get_node_info(ctx, \"/hardware-module/node/slot\", \"slot-id\")", "@ slot_id: 2, input data -25",
                "add(ctx, dest, \"/aps/aps-modules/aps-module/config/relative-switch-threshold\", ns=openconfig, "
                "value=\"-2.50\", src=none, result=none, 0, 0)",
                "add(ctx, dest, \"/aps/aps-modules/aps-module/state/relative-switch-threshold\", ns=openconfig, "
                "value=\"-2.50\", src=none, result=none, 0, 0)"});
}

TEST_F(SlotSettings, ALockOutForcesToTheOtherPort) {
    expect_run("oc_opt_psm_cfg_lockout_from_to_high", leaf_with("working"), add_result(1),
               {"get_node_info(ctx, \"/active-nodes/active-node/slot/slot-id\", \"slot-id\")",
                "@ slot_id: 2, input data working",
                "add(ctx, dest, \"/aps/aps-modules/aps-module/config/force-to-port\", ns=openconfig, "
                "value=\"SECONDARY\", src=none, result=none, 0, 0)"});
}

TEST_F(SlotSettings, WithoutAValueAreLookedUpAndTracedOnly) {
    for (const Row &row : rows()) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            expect_run(row.conversion, leaf_with({}), KERR_SUCCESS, looked_up(row, {}));
            expect_run(row.conversion, build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), "source").root(),
                       KERR_SUCCESS, looked_up(row, {}));
        }
    }
}

// A text that the node does not count as its value.
TEST_F(SlotSettings, WithATextThatIsNoValueWriteNothing) {
    for (const Row &row : rows()) {
        request.set_kind(YFW_KIND_GET);
        const Outcome outcome =
            run(row.conversion, build(fake::leaf("leaf", "5").without_flags(YFW_NODE_HAS_VALUE), "source").root());
        EXPECT_EQ(platform.calls(fake::Output), Lines{node_info(row.list_path, "slot-id")}) << row.conversion;
        EXPECT_EQ(outcome.result, KERR_SUCCESS);
    }
}

TEST_F(SlotSettings, DependOnNoSlot) {
    for (const Text &slot : std::vector<Text>{"1", "0", "9", "-1", "abc", "", "%s%n", repeated(5000, '1'), Text()}) {
        platform.node_info["slot-id"] = slot;
        for (const Row &row : rows()) {
            expect_written(row, row.values.front(), YFW_KIND_GET_CONFIG, nothing_selected);
            expect_written(row, row.values.front(), YFW_KIND_GET, state_selected);
        }
    }
}

TEST_F(SlotSettings, GiveTheLookUpsResultWhenNothingIsAdded) {
    platform.node_info["slot-id"] = Text();
    platform.answer("get_node_info", no_entry);
    for (const Row &row : rows()) {
        request.set_kind(YFW_KIND_GET);
        expect_run(row.conversion, leaf_with({}), no_entry, looked_up(row, {}));
        request.set_kind(YFW_KIND_GET_CONFIG);
        set_selection(state_selected);
        const std::string given = row.values.front().given;
        expect_run(row.conversion, leaf_with(given), no_entry, looked_up(row, given));
    }
}

// The look-up's failure stops nothing, and the add's result counts.
TEST_F(SlotSettings, GiveTheLastAddsResultAlsoAfterAFailedLookUp) {
    platform.node_info["slot-id"] = Text();
    platform.answer("get_node_info", no_entry);
    for (const Row &row : rows()) {
        for (const std::uint32_t kind : {0u, 10u}) {
            expect_written(row, row.values.front(), kind, nothing_selected);
        }
    }
}

// No look at the database is needed for them.
TEST_F(SlotSettings, DoWithoutTheDatabase) {
    without_client_library([this] {
        for (const Row &row : rows()) {
            expect_written(row, row.values.front(), YFW_KIND_GET, nothing_selected);
        }
    });
}

} // namespace
