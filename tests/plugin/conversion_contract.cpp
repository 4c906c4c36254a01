// What every conversion towards the device shares: missing arguments, a missing context, and the two channels.
#include <gmock/gmock.h>

#include "conversion_support.hpp"

namespace {

using namespace conversion_test;

const std::vector<std::string> conversions = {
    "oc_aps_cfg_psm_list_to_low",
    "op_cfg_psm_key_to_low",
    "oc_psm_cfg_get_psm_key_to_low",
    "oc_opt_psm_state_get_psm_key_to_low",
    "oc_opt_psm_cfg_revertive_to_low",
    "oc_opt_psm_cfg_wtr_to_low",
    "oc_opt_psm_cfg_primary_th_to_low",
    "oc_opt_psm_cfg_primary_th_hyst_to_low",
    "oc_opt_psm_cfg_secondary_th_to_low",
    "oc_opt_psm_cfg_relative_switch_th_to_low",
    "oc_opt_psm_cfg_relative_switch_th_offset_to_low",
    "oc_opt_psm_cfg_force_to_port_to_low",
    "oc_opt_psm_cfg_primary_rx_attenuation_to_low",
    "oc_opt_psm_cfg_primary_tx_attenuation_to_low",
    "oc_opt_psm_cfg_secondary_rx_attenuation_to_low",
    "oc_opt_psm_cfg_secondary_tx_attenuation_to_low",
    "oc_opt_psm_state_revertive_to_low",
    "oc_opt_psm_state_wtr_to_low",
    "oc_opt_psm_state_primary_th_to_low",
    "oc_opt_psm_state_primary_th_hyst_to_low",
    "oc_opt_psm_state_secondary_th_to_low",
    "oc_opt_psm_state_relative_switch_th_to_low",
    "oc_opt_psm_state_relative_switch_th_offset_to_low",
    "oc_opt_psm_state_force_to_port_to_low",
    "oc_opt_psm_state_active_path_to_low",
    "oc_opt_psm_state_primary_rx_tagret_attenuation_to_low",
    "oc_opt_psm_state_primary_rx_attenuation_to_low",
    "oc_opt_psm_state_secondary_tx_target_attenuation_to_low",
    "oc_opt_psm_state_primary_tx_attenuation_to_low",
    "oc_opt_psm_state_secondary_tx_attenuation_to_low",
    "oc_opt_psm_state_primary_rx_instant_power_to_low",
    "oc_opt_psm_state_secondary_rx_instant_power_to_low",
    "oc_opt_psm_state_primary_tx_instant_power_to_low",
    "oc_opt_psm_state_secondary_tx_instant_power_to_low",
    "oc_opt_psm_state_com_tx_instant_power_to_low",
    "oc_opt_psm_state_primary_rx_avg_power_to_low",
    "oc_opt_psm_state_primary_rx_min_power_to_low",
    "oc_opt_psm_state_primary_rx_max_power_to_low",
    "oc_opt_psm_state_secondary_rx_avg_power_to_low",
    "oc_opt_psm_state_secondary_rx_min_power_to_low",
    "oc_opt_psm_state_secondary_rx_max_power_to_low",
    "oc_opt_psm_state_primary_tx_avg_power_to_low",
    "oc_opt_psm_state_primary_tx_min_power_to_low",
    "oc_opt_psm_state_primary_tx_max_power_to_low",
    "oc_opt_psm_state_secondary_tx_avg_power_to_low",
    "oc_opt_psm_state_secondary_tx_min_power_to_low",
    "oc_opt_psm_state_secondary_tx_max_power_to_low",
    "oc_opt_psm_state_common_tx_avg_power_to_low",
    "oc_opt_psm_state_common_tx_min_power_to_low",
    "oc_opt_psm_state_common_tx_max_power_to_low",
};

// The end of what glibc's assertion failure prints; the line number stands in the middle.
::testing::Matcher<const std::string &> assertion(const std::string &conversion) {
    return ::testing::AllOf(
        ::testing::HasSubstr(": manageability/yang/framework/mapping/oc-psm/src/"
                             "ymap_oc_opt_psm_openconfig_transport_line_protection_man:"),
        ::testing::HasSubstr(": kerrno " + conversion +
                             "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *): "
                             "Assertion `((void *)0) != ctx' failed."));
}

class ConversionContract : public ConversionTest {
protected:
    // Only one of node and destination, or neither, is there; whatever the kind of the request.
    void expect_refused(const std::string &conversion, const kidl_yfw_datatree *source,
                        kidl_yfw_datatree *destination) {
        const Lines expected = {conversion + " Start", "ERROR " + conversion + " Invalid arguments passed!",
                                "error_path(ctx)"};
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            platform.forget();
            EXPECT_EQ(fake::conversion(conversion)(request.ctx(), source, destination), 0xaaf2a000u) << conversion;
            EXPECT_EQ(told(), expected);
            EXPECT_EQ(request.error_node(), "none");
        }
    }

    // Everything but the messages, of a run per kind with these channels open.
    Lines added(const std::string &conversion, bool log_on, bool trace_on) {
        request.set_channels(log_on, trace_on);
        Lines all;
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            run(conversion, leaf_with("0/2-PSM-OM", 0));
            const Lines calls = platform.calls(fake::Output | fake::Walk);
            all.insert(all.end(), calls.begin(), calls.end());
            EXPECT_EQ(platform.logged().empty(), !log_on) << conversion;
            EXPECT_EQ(platform.traced().empty(), !trace_on) << conversion;
            EXPECT_EQ(platform.count("trace_index"), platform.traced().size()) << conversion;
        }
        return all;
    }
};

TEST_F(ConversionContract, RefusesAMissingNode) {
    for (const std::string &conversion : conversions) {
        expect_refused(conversion, nullptr, dest);
    }
}

TEST_F(ConversionContract, RefusesAMissingDestination) {
    kidl_yfw_datatree *const source = leaf_with("1", 0);
    for (const std::string &conversion : conversions) {
        expect_refused(conversion, source, nullptr);
    }
}

TEST_F(ConversionContract, RefusesWhenBothAreMissing) {
    for (const std::string &conversion : conversions) {
        expect_refused(conversion, nullptr, nullptr);
    }
}

// An error-node name that stands is none of the conversions' business.
TEST_F(ConversionContract, KeepsTheErrorNodeName) {
    request.set_error_node("earlier");
    for (const std::string &conversion : conversions) {
        fake::conversion(conversion)(request.ctx(), nullptr, dest);
        EXPECT_EQ(request.error_node(), "earlier") << conversion;
    }
}

TEST_F(ConversionContract, WorksWhateverIsListening) {
    for (const std::string &conversion : conversions) {
        SCOPED_TRACE(conversion);
        const Lines both = added(conversion, true, true);
        EXPECT_EQ(added(conversion, true, false), both);
        EXPECT_EQ(added(conversion, false, true), both);
        EXPECT_EQ(added(conversion, false, false), both);
    }
}

TEST_F(ConversionContract, NumbersItsTraceLinesInOrder) {
    for (const std::string &conversion : conversions) {
        run(conversion, leaf_with("0/2-PSM-OM", 0));
        ASSERT_GE(platform.traced().size(), 2u) << conversion;
        std::uint32_t sequence = platform.traced().front().sequence;
        for (const fake::TraceRecord &record : platform.traced()) {
            EXPECT_EQ(record.sequence, sequence++) << record.whole;
            EXPECT_NE(record.line, 0u) << record.whole;
        }
        EXPECT_EQ(platform.traced().front().function, conversion);
        EXPECT_EQ(platform.traced().front().text, "Start");
        EXPECT_EQ(platform.traced().back().function, conversion);
        EXPECT_EQ(platform.traced().back().text, "End");
    }
}

TEST_F(ConversionContract, LogsThroughTheHandleOfTheLevel) {
    for (const std::string &conversion : conversions) {
        platform.forget();
        fake::conversion(conversion)(request.ctx(), nullptr, dest);
        ASSERT_EQ(platform.logged().size(), 2u);
        EXPECT_EQ(platform.logged()[0].handle, request.context.trace_log);
        EXPECT_EQ(platform.logged()[0].format, "TRC: YFW: ctx=%p,Start");
        EXPECT_EQ(platform.logged()[0].first_value, 0xffffffffu);
        EXPECT_EQ(platform.logged()[1].handle, request.context.error_log);
        EXPECT_EQ(platform.logged()[1].format, "ERR: YFW: ctx=%p,Invalid arguments passed!");
        EXPECT_EQ(platform.logged()[1].first_value, 0xffffffffu);
        EXPECT_NE(platform.logged()[0].site, platform.logged()[1].site);
    }
}

// In a walk of a whole subtree the source is a container, of which nothing but its operation counts.
TEST_F(ConversionContract, AContainerStandsForALeafWithoutValue) {
    const fake::Node nameless = fake::container("x", {fake::leaf("revertive", "true")}).untagged().in_namespace({});
    for (const std::string &conversion : conversions) {
        if (conversion == "oc_aps_cfg_psm_list_to_low") {
            continue; // it searches the entry that it is given
        }
        for (const Situation &situation : {Situation{"get-config", 0, 0}, Situation{"get", 10, 0},
                                           Situation{"merge", 1, 0}, Situation{"delete", 1, 3}}) {
            request.set_kind(situation.kind);
            const Outcome leaf = run(conversion, leaf_with(nullptr, situation.operation));
            const Outcome container = run(conversion, build(nameless.with_operation(situation.operation), src).root());
            EXPECT_EQ(container.lines, leaf.lines) << conversion << ", " << situation;
            EXPECT_EQ(container.result, leaf.result);
            EXPECT_EQ(container.operations, leaf.operations);
        }
    }
}

using ConversionContractDeathTest = ConversionContract;

TEST_F(ConversionContractDeathTest, AssertsTheContextFirst) {
    kidl_yfw_datatree *const source = leaf_with("1", 0);
    for (const std::string &conversion : conversions) {
        EXPECT_DEATH(fake::conversion(conversion)(nullptr, source, dest), assertion(conversion)) << conversion;
    }
}

TEST_F(ConversionContractDeathTest, AssertsTheContextBeforeItLooksAtTheNodes) {
    for (const std::string &conversion : conversions) {
        EXPECT_DEATH(fake::conversion(conversion)(nullptr, nullptr, nullptr), assertion(conversion)) << conversion;
    }
}

} // namespace
