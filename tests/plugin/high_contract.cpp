// What every conversion towards OpenConfig shares: missing arguments, a missing context, and the two channels.
#include <gmock/gmock.h>

#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char slot_settings[] = "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man";
constexpr char optics_settings[] = "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man";
constexpr char line_state[] = "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man";
constexpr char history[] = "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_man";
constexpr char interfaces[] = "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_man";

constexpr char key_conversion[] = "interface_psm_key_to_high";
constexpr char list_conversion[] = "oc_opt_psm_if_list_cfg_to_high";
constexpr char leaf_callback[] = "ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_"
                                 "interfaceconfiguration_interfacename";

struct Function {
    const char *name;
    const char *file;
};

const std::vector<Function> functions = {
    {"oc_opt_psm_cfg_relative_switch_th_to_high", slot_settings},
    {"oc_opt_psm_cfg_relative_switch_th_offset_to_high", slot_settings},
    {"oc_opt_psm_cfg_revertive_to_high", slot_settings},
    {"oc_opt_psm_cfg_wtr_to_high", slot_settings},
    {"oc_opt_psm_cfg_lockout_from_to_high", slot_settings},
    {"oc_opt_psm_cfg_th_to_high", optics_settings},
    {"oc_opt_psm_cfg_th_hyst_to_high", optics_settings},
    {"oc_opt_psm_cfg_rx_attenuation_to_high", optics_settings},
    {"oc_opt_psm_cfg_tx_attenuation_to_high", optics_settings},
    {"oc_opt_psm_state_rx_instant_power_to_high", line_state},
    {"oc_opt_psm_state_tx_instant_power_to_high", line_state},
    {"oc_opt_psm_state_rx_attenuation_to_high", line_state},
    {"oc_opt_psm_state_tx_attenuation_to_high", line_state},
    {"oc_opt_psm_state_active_path_to_high", line_state},
    {"oc_opt_psm_state_th_to_high", line_state},
    {"oc_opt_psm_state_th_hyst_to_high", line_state},
    {"oc_opt_psm_state_get_psm_key_to_high", line_state},
    {"oc_opt_psm_state_tx_min_power_to_high", history},
    {"oc_opt_psm_state_tx_avg_power_to_high", history},
    {"oc_opt_psm_state_tx_max_power_to_high", history},
    {"oc_opt_psm_state_rx_min_power_to_high", history},
    {"oc_opt_psm_state_rx_avg_power_to_high", history},
    {"oc_opt_psm_state_rx_max_power_to_high", history},
    {key_conversion, interfaces},
    {list_conversion, interfaces},
    {leaf_callback, interfaces},
};

bool is(const Function &function, const char *name) {
    return std::string(function.name) == name;
}

// The end of what glibc's assertion failure prints; the line number stands in the middle.
::testing::Matcher<const std::string &> assertion(const Function &function) {
    return ::testing::AllOf(
        ::testing::HasSubstr(std::string(": manageability/yang/framework/mapping/oc-psm/src/") + function.file + ":"),
        ::testing::HasSubstr(std::string(": kerrno ") + function.name +
                             "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *): "
                             "Assertion `((void *)0) != ctx' failed."));
}

class HighContract : public HighTest {
protected:
    HighContract() {
        platform.node_info["name"] = "Ots0/2/0/1";
        platform.node_info["interface-name"] = "Ots0/2/0/1";
        platform.node_info["slot-id"] = "2";
    }

    // A source that every function works on: a leaf, or an entry on top of the hierarchy.
    kidl_yfw_datatree *good_source() {
        kidl_yfw_datatree *const source =
            build(fake::container("interface-configuration", {fake::leaf("interface-name", "Ots0/2/0/1")}), "source")
                .root();
        source->value = source->children[0].value;
        source->flags |= YFW_NODE_HAS_VALUE;
        platform.hierarchy.clear();
        yfw_map_add_to_node_hierarchy(request.ctx(), source, 1);
        yfw_map_add_to_node_hierarchy(request.ctx(), source, 2);
        return source;
    }

    // One of node and destination, or both, is missing; whatever the kind of the request.
    void expect_refused(const Function &function, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination) {
        const std::string name = function.name;
        Lines expected = {"ERROR " + name + " Invalid arguments passed!", "error_path(ctx)"};
        if (is(function, key_conversion)) {
            expected.insert(expected.begin(), name + " Start");
        }
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            platform.forget();
            EXPECT_EQ(fake::conversion(name)(request.ctx(), source, destination), invalid_arguments) << name;
            EXPECT_EQ(told(), expected) << name;
            EXPECT_EQ(request.error_node(), "none");
        }
    }

    // What is done in all kinds of requests, without the messages and the numbers of handles.
    Lines done(const Function &function, bool log_on, bool trace_on) {
        request.set_channels(log_on, trace_on);
        Lines all;
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            platform.next_number = 1;
            const kidl_yfw_datatree *const source = good_source();
            platform.forget();
            const kerrno result = fake::conversion(function.name)(request.ctx(), source, dest);
            append(all, platform.calls(fake::Output | fake::Walk | fake::Database));
            append(all, "result " + std::to_string(result));
            EXPECT_EQ(platform.logged().empty(), !log_on) << function.name;
            EXPECT_EQ(platform.traced().empty(), !trace_on) << function.name;
            EXPECT_EQ(platform.count("trace_index"), platform.traced().size()) << function.name;
        }
        return all;
    }
};

TEST_F(HighContract, RefusesAMissingNode) {
    for (const Function &function : functions) {
        expect_refused(function, nullptr, dest);
    }
}

TEST_F(HighContract, RefusesAMissingDestination) {
    kidl_yfw_datatree *const source = good_source();
    for (const Function &function : functions) {
        expect_refused(function, source, nullptr);
    }
}

TEST_F(HighContract, RefusesWhenBothAreMissing) {
    for (const Function &function : functions) {
        expect_refused(function, nullptr, nullptr);
    }
}

// An error-node name that stands is none of the conversions' business.
TEST_F(HighContract, KeepsTheErrorNodeName) {
    request.set_error_node("earlier");
    for (const Function &function : functions) {
        fake::conversion(function.name)(request.ctx(), nullptr, dest);
        EXPECT_EQ(request.error_node(), "earlier") << function.name;
    }
}

TEST_F(HighContract, WorksWhateverIsListening) {
    // The look for the client library's file comes once in a process.
    run("oc_opt_psm_state_active_path_to_high", good_source());
    for (const Function &function : functions) {
        SCOPED_TRACE(function.name);
        const Lines both = done(function, true, true);
        EXPECT_GE(both.size(), 4u);
        EXPECT_EQ(done(function, true, false), both);
        EXPECT_EQ(done(function, false, true), both);
        EXPECT_EQ(done(function, false, false), both);
    }
}

TEST_F(HighContract, NumbersItsTraceLinesInOrder) {
    for (const Function &function : functions) {
        run(function.name, good_source());
        ASSERT_GE(platform.traced().size(), 1u) << function.name;
        std::uint32_t sequence = platform.traced().front().sequence;
        for (const fake::TraceRecord &record : platform.traced()) {
            EXPECT_EQ(record.sequence, sequence++) << record.whole;
            EXPECT_NE(record.line, 0u) << record.whole;
        }
    }
}

// The others trace what they convert, and no more.
TEST_F(HighContract, OnlyInterfacesTellWhereTheyStartAndEnd) {
    for (const Function &function : functions) {
        run(function.name, good_source());
        Lines told_words;
        for (const fake::TraceRecord &record : platform.traced()) {
            if (record.function != "get_value_in_bag" && (record.text == "Start" || record.text == "End")) {
                told_words.push_back(record.function + " " + record.text);
            }
        }
        Lines expected;
        if (is(function, key_conversion) || is(function, leaf_callback)) {
            expected = {"interface_psm_key_to_high Start", "interface_psm_key_to_high End"};
        } else if (is(function, list_conversion)) {
            expected = {"oc_opt_psm_if_list_cfg_to_high End"};
        }
        EXPECT_EQ(told_words, expected) << function.name;
    }
}

TEST_F(HighContract, LogsThroughTheHandleOfTheLevel) {
    for (const Function &function : functions) {
        platform.forget();
        fake::conversion(function.name)(request.ctx(), nullptr, dest);
        ASSERT_GE(platform.logged().size(), 1u);
        const fake::LogRecord &error = platform.logged().back();
        EXPECT_EQ(error.handle, request.context.error_log);
        EXPECT_EQ(error.format, "ERR: YFW: ctx=%p,Invalid arguments passed!");
        EXPECT_EQ(error.first_value, 0xffffffffu);
        run(function.name, good_source());
        for (const fake::LogRecord &record : platform.logged()) {
            EXPECT_EQ(record.handle,
                      record.format.compare(0, 3, "TRC") == 0 ? request.context.trace_log : request.context.error_log);
            EXPECT_EQ(record.first_value, 0xffffffffu) << record.format;
        }
    }
}

// Texts of the answer are never a format.
TEST_F(HighContract, HandsTextsToTheChannelsAsArguments) {
    platform.node_info["slot-id"] = "%s%n";
    run("oc_opt_psm_cfg_wtr_to_high", leaf_with("%2f%n"));
    ASSERT_EQ(platform.logged().size(), 1u);
    EXPECT_EQ(platform.logged()[0].format, "TRC: YFW: ctx=%p,slot_id: %s, input data %s");
    platform.node_info["interface-name"] = "%s";
    run("oc_opt_psm_cfg_th_to_high", leaf_with("-25"));
    ASSERT_EQ(platform.logged().size(), 3u);
    EXPECT_EQ(platform.logged()[0].format, "TRC: YFW: ctx=%p,controller_name: %s");
    EXPECT_EQ(platform.logged()[1].format, "TRC: YFW: ctx=%p,value: %s");
    EXPECT_EQ(platform.logged()[2].format, "TRC: YFW: ctx=%p,psm_key:  %s ");
}

using HighContractDeathTest = HighContract;

TEST_F(HighContractDeathTest, AssertsTheContextFirst) {
    kidl_yfw_datatree *const source = good_source();
    for (const Function &function : functions) {
        // The callback looks at its context only when it refuses; the conversion that it calls asserts its own.
        const Function asserting = is(function, leaf_callback) ? Function{key_conversion, interfaces} : function;
        EXPECT_DEATH(fake::conversion(function.name)(nullptr, source, dest), assertion(asserting)) << function.name;
    }
}

TEST_F(HighContractDeathTest, AssertsTheContextBeforeItRefuses) {
    kidl_yfw_datatree *const source = good_source();
    for (const Function &function : functions) {
        EXPECT_DEATH(fake::conversion(function.name)(nullptr, nullptr, nullptr), assertion(function)) << function.name;
        EXPECT_DEATH(fake::conversion(function.name)(nullptr, nullptr, dest), assertion(function)) << function.name;
        EXPECT_DEATH(fake::conversion(function.name)(nullptr, source, nullptr), assertion(function)) << function.name;
    }
}

} // namespace
