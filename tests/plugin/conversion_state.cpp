// The state of a module: what each conversion selects in a read, and that it adds nothing in any other request.
#include <cstring>

#include "conversion_support.hpp"

namespace {

using namespace conversion_test;

struct State {
    const char *conversion;
    Scale scale;
    Lines read;
    Lines other = {"@ Start", "@ End"};
};

std::ostream &operator<<(std::ostream &out, const State &state) {
    return out << state.conversion;
}

State selection(const char *conversion, Scale scale, const std::string &path, const char *native_namespace) {
    return {conversion, scale, lines("@ Start", add(path, native_namespace, "$", none, 0, 1), "@ End")};
}

State port_power(const char *conversion, const char *first, const char *second) {
    return {conversion, Scale::hundredths,
            lines("@ Start", add(port_info(first), "ots-oper", "$", none, 0, 1),
                  add(port_info(second), "ots-oper", "$", none, 0, 1), "@ End")};
}

State history(const char *conversion, const char *path) {
    return {conversion, Scale::text,
            lines("@ Start", add(time_line(path), "pmengine-oper", "$", none, 0, 0),
                  add(time_line("/number"), "pmengine-oper", "1", none, 0, 0), "@ End")};
}

std::vector<State> states() {
    const char *const slot = "/active-nodes/active-node/slot";
    const char *const optics = "/interface-configurations/interface-configuration/optics";
    const char *const received = "/lane-data/receive-power";
    const char *const received_dbm = "/lane-data/receive-power-dbm";
    const char *const sent = "/lane-data/transmit-power";
    const char *const sent_dbm = "/lane-data/transmit-power-dbm";
    const auto in_slot = [&](const char *rest) { return std::string(slot) + rest; };
    const auto in_optics = [&](const char *rest) { return std::string(optics) + rest; };
    return {
        selection("oc_opt_psm_state_revertive_to_low", Scale::text, in_slot("/psm/revertive/enable"), "ots-cfg"),
        selection("oc_opt_psm_state_wtr_to_low", Scale::text, in_slot("/psm/revertive/wtr"), "ots-cfg"),
        selection("oc_opt_psm_state_primary_th_to_low", Scale::tenths, port_info("/rx-low-threshold"), "ots-oper"),
        selection("oc_opt_psm_state_primary_th_hyst_to_low", Scale::tenths, port_info("/rx-thr-fail-low-delta-val"),
                  "ots-oper"),
        selection("oc_opt_psm_state_secondary_th_to_low", Scale::tenths, port_info("/rx-low-threshold"), "ots-oper"),
        selection("oc_opt_psm_state_relative_switch_th_to_low", Scale::tenths,
                  in_slot("/psm/relative-switch-threshold/psm-relative-switch-threshold"), "ots-cfg"),
        selection("oc_opt_psm_state_relative_switch_th_offset_to_low", Scale::tenths,
                  in_slot("/psm/relative-switch-threshold/psm-relative-switch-threshold-offset"), "ots-cfg"),
        {"oc_opt_psm_state_force_to_port_to_low", Scale::lockout,
         lines("@ Start", "@ get_data ^ ", add(in_slot("/psm/lockout-from"), "ots-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", "@ get_data ^ ", "@ End")},
        selection("oc_opt_psm_state_active_path_to_low", Scale::empty, port_info("/port-status"), "ots-oper"),

        selection("oc_opt_psm_state_primary_rx_tagret_attenuation_to_low", Scale::tenths,
                  in_optics("/optics-ots-rx-voa-attenuation"), "optics-cfg"),
        selection("oc_opt_psm_state_primary_rx_attenuation_to_low", Scale::tenths, port_info("/rx-voa-attenuation"),
                  "ots-oper"),
        selection("oc_opt_psm_state_secondary_tx_target_attenuation_to_low", Scale::tenths,
                  in_optics("/optics-ots-tx-voa-attenuation"), "optics-cfg"),
        selection("oc_opt_psm_state_primary_tx_attenuation_to_low", Scale::tenths, port_info("/tx-voa-attenuation"),
                  "ots-oper"),
        selection("oc_opt_psm_state_secondary_tx_attenuation_to_low", Scale::tenths, port_info("/tx-voa-attenuation"),
                  "ots-oper"),

        port_power("oc_opt_psm_state_primary_rx_instant_power_to_low", received, received_dbm),
        port_power("oc_opt_psm_state_secondary_rx_instant_power_to_low", received, received_dbm),
        port_power("oc_opt_psm_state_primary_tx_instant_power_to_low", sent, sent_dbm),
        port_power("oc_opt_psm_state_secondary_tx_instant_power_to_low", sent, sent_dbm),
        port_power("oc_opt_psm_state_com_tx_instant_power_to_low", sent, sent_dbm),

        history("oc_opt_psm_state_primary_rx_avg_power_to_low", "/opr/average"),
        history("oc_opt_psm_state_primary_rx_min_power_to_low", "/opr/minimum"),
        history("oc_opt_psm_state_primary_rx_max_power_to_low", "/opr/maximum"),
        history("oc_opt_psm_state_secondary_rx_avg_power_to_low", "/opr/average"),
        history("oc_opt_psm_state_secondary_rx_min_power_to_low", "/opr/minimum"),
        history("oc_opt_psm_state_secondary_rx_max_power_to_low", "/opr/maximum"),
        history("oc_opt_psm_state_primary_tx_avg_power_to_low", "/opt/average"),
        history("oc_opt_psm_state_primary_tx_min_power_to_low", "/opt/minimum"),
        history("oc_opt_psm_state_primary_tx_max_power_to_low", "/opt/maximum"),
        history("oc_opt_psm_state_secondary_tx_avg_power_to_low", "/opt/average"),
        history("oc_opt_psm_state_secondary_tx_min_power_to_low", "/opt/minimum"),
        history("oc_opt_psm_state_secondary_tx_max_power_to_low", "/opt/maximum"),
        history("oc_opt_psm_state_common_tx_avg_power_to_low", "/opt/average"),
        history("oc_opt_psm_state_common_tx_min_power_to_low", "/opt/minimum"),
        history("oc_opt_psm_state_common_tx_max_power_to_low", "/opt/maximum"),
    };
}

class StateConversion : public ConversionTest, public ::testing::WithParamInterface<State> {
protected:
    void expect_everywhere(const std::vector<Situation> &situations, const Lines &expected) {
        for (const Situation &situation : situations) {
            for (const Value &value : values(GetParam().scale)) {
                expect_run(GetParam().conversion, situation, value, expected);
            }
        }
    }
};

TEST_P(StateConversion, SelectsTheNativeLeafInARead) {
    expect_everywhere(reads(), GetParam().read);
}

TEST_P(StateConversion, AddsNothingInAMerge) {
    expect_everywhere(merges(), GetParam().other);
}

TEST_P(StateConversion, AddsNothingInADelete) {
    expect_everywhere(deletes(), GetParam().other);
}

// Outside reads the value is prepared first and the leaf is asked for its operation then; the answer does not count.
TEST_P(StateConversion, PreparesTheValueAndAsksForTheOperationOutsideReads) {
    const bool scaled = GetParam().scale == Scale::tenths || GetParam().scale == Scale::hundredths;
    const bool mapped = GetParam().scale == Scale::lockout;
    Lines expected;
    if (scaled) {
        expected.emplace_back("strcpy_s(200, \"12.5\")");
    } else if (mapped) {
        expected.emplace_back("strcpy_s(20, \"working\")");
    }
    expected.emplace_back("is_request_delete(source)");
    platform.answer("is_request_delete", 1);
    for (const Situation &situation : {Situation{"merge", 1, 0}, Situation{"delete", 1, 3}}) {
        request.set_kind(situation.kind);
        const Outcome outcome = run(GetParam().conversion, leaf_with(mapped ? "SECONDARY" : "12.5", 0));
        Lines told;
        for (const std::string &line : platform.calls(fake::Texts | fake::Questions)) {
            if (line.find("memset_s") == std::string::npos) {
                told.push_back(line);
            }
        }
        EXPECT_EQ(told, expected) << situation;
        EXPECT_EQ(outcome.result, KERR_SUCCESS);
        EXPECT_EQ(platform.count("add"), 0u);
    }
}

std::string conversion_name(const ::testing::TestParamInfo<State> &info) {
    return info.param.conversion;
}

INSTANTIATE_TEST_SUITE_P(States, StateConversion, ::testing::ValuesIn(states()), conversion_name);

// ---- single facts ----

class StateValues : public ConversionTest {
protected:
    void expect_added(const std::string &conversion, kidl_yfw_datatree *source, const Lines &expected) {
        EXPECT_EQ(run(conversion, source).lines, filled(expected, conversion, {nullptr, nullptr}));
    }
};

TEST_F(StateValues, AnInstantPowerIsInHundredths) {
    struct Case {
        const char *given;
        const char *written;
    };
    for (const Case &power : {Case{"0.29", "28"}, Case{"-0.09", "-9"}, Case{"-40.00", "-4000"},
                              Case{"1e300", "-2147483648"}, Case{"nan", "-2147483648"}, Case{"inf", "-2147483648"},
                              Case{"21474836.48", "-2147483648"}, Case{"  -1.5 ", "-150"}, Case{"\n", "0"}}) {
        SCOPED_TRACE(power.given);
        expect_added(
            "oc_opt_psm_state_com_tx_instant_power_to_low", leaf_with(power.given, 0),
            lines("@ Start", add(port_info("/lane-data/transmit-power"), "ots-oper", power.written, none, 0, 1),
                  add(port_info("/lane-data/transmit-power-dbm"), "ots-oper", power.written, none, 0, 1), "@ End"));
    }
}

TEST_F(StateValues, AThresholdIsInTenths) {
    expect_added("oc_opt_psm_state_primary_th_to_low", leaf_with("1.25", 0),
                 lines("@ Start", add(port_info("/rx-low-threshold"), "ots-oper", "12", none, 0, 1), "@ End"));
}

TEST_F(StateValues, ASelectedInstantPowerCarriesTheEmptyText) {
    expect_added("oc_opt_psm_state_primary_rx_instant_power_to_low", leaf_with(nullptr, 0),
                 lines("@ Start", add(port_info("/lane-data/receive-power"), "ots-oper", "", none, 0, 1),
                       add(port_info("/lane-data/receive-power-dbm"), "ots-oper", "", none, 0, 1), "@ End"));
}

TEST_F(StateValues, ASelectedHistoryCarriesNoText) {
    expect_added("oc_opt_psm_state_common_tx_max_power_to_low", leaf_with(nullptr, 0),
                 lines("@ Start", add(time_line("/opt/maximum"), "pmengine-oper", nullptr, none, 0, 0),
                       add(time_line("/number"), "pmengine-oper", "1", none, 0, 0), "@ End"));
}

TEST_F(StateValues, TextsMayHaveAnyLength) {
    const std::string digits(5000, '9');
    expect_added(
        "oc_opt_psm_state_primary_rx_attenuation_to_low", leaf_with(digits.c_str(), 0),
        lines("@ Start", add(port_info("/rx-voa-attenuation"), "ots-oper", "-2147483648", none, 0, 1), "@ End"));
    expect_added("oc_opt_psm_state_primary_rx_min_power_to_low", leaf_with(digits.c_str(), 0),
                 lines("@ Start", add(time_line("/opr/minimum"), "pmengine-oper", digits.c_str(), none, 0, 0),
                       add(time_line("/number"), "pmengine-oper", "1", none, 0, 0), "@ End"));
    expect_added("oc_opt_psm_state_active_path_to_low", leaf_with(digits.c_str(), 0),
                 lines("@ Start", add(port_info("/port-status"), "ots-oper", "", none, 0, 1), "@ End"));
}

TEST_F(StateValues, ForceToPortTakesTextsOfAnyLength) {
    const std::string text(5000, 'P');
    const Outcome outcome = run("oc_opt_psm_state_force_to_port_to_low", leaf_with(text.c_str(), 0));
    EXPECT_EQ(outcome.lines[2], add("/active-nodes/active-node/slot/psm/lockout-from", "ots-cfg", "", none, 0, 1));
    EXPECT_EQ(platform.traced()[1].whole.size(), 249u);
    const std::string &logged = platform.logged()[1].text;
    EXPECT_EQ(logged.substr(logged.find(',') + 1), "get_data " + text + " ");
}

TEST_F(StateValues, ScalesOnlyAValueThatIsFlaggedAndThere) {
    const Lines expected = lines("@ Start", add(port_info("/rx-low-threshold"), "ots-oper", "", none, 0, 1), "@ End");
    expect_added("oc_opt_psm_state_secondary_th_to_low",
                 build(fake::leaf("leaf", "12.5").without_flags(YFW_NODE_HAS_VALUE), src).root(), expected);
    expect_added("oc_opt_psm_state_secondary_th_to_low",
                 build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), src).root(), expected);
}

// State does not depend on the module: its entries come with the key.
TEST_F(StateValues, NoListEntryIsNeeded) {
    request.state.list_node = nullptr;
    request.state.request_root = nullptr;
    for (const State &state : states()) {
        EXPECT_NE(run(state.conversion, leaf_with(nullptr, 0)).result, KERR_SUCCESS) << state.conversion;
        EXPECT_EQ(platform.count("is_request_delete"), 0u) << state.conversion;
    }
}

} // namespace
