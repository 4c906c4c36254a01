#include "high_support.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace high_test {
namespace {

constexpr char check[] = "check_controller_name_ots_is_good_by_port ";
constexpr std::size_t scripted_adds = 8;
constexpr std::size_t trace_size = 249;

// What these trace is not looked at here.
constexpr std::array<std::string_view, 17> readers = {
    "sysdb_get_data",
    "sysdb_get_psm_state_rx_attenuation",
    "sysdb_get_psm_state_tx_attenuation",
    "sysdb_get_psm_state_rx_instant_power",
    "sysdb_get_psm_state_tx_instant_power",
    "sysdb_get_psm_config_rx_attenuation",
    "sysdb_get_psm_config_tx_attenuation",
    "sysdb_get_psm_name_from_inventory",
    "sysdb_get_pm_30sec_power",
    "sysdb_get_rx_pm_30sec_avg_power",
    "sysdb_get_rx_pm_30sec_min_power",
    "sysdb_get_rx_pm_30sec_max_power",
    "sysdb_get_tx_pm_30sec_avg_power",
    "sysdb_get_tx_pm_30sec_min_power",
    "sysdb_get_tx_pm_30sec_max_power",
    "get_value_in_bag",
    "search_data_in_response",
};

bool begins(const std::string &line, std::string_view prefix) {
    return line.compare(0, prefix.size(), prefix) == 0;
}

std::string without_handle(const std::string &line) {
    constexpr std::string_view word = "handle ";
    const std::size_t position = line.find(word);
    if (!begins(line, "sysdb_") || position == std::string::npos) {
        return line;
    }
    std::size_t end = position + word.size();
    while (end < line.size() && line[end] >= '0' && line[end] <= '9') {
        ++end;
    }
    return line.substr(0, position) + "handle" + line.substr(end);
}

// A log line and its trace as one. The trace is the one with the function's name, and may be cut.
std::string message(const std::string &log, const fake::TraceRecord &trace) {
    const std::string level = log.substr(4, 3);
    const std::string text = log.substr(8);
    const bool is_same = trace.whole.size() < trace_size ? trace.text == text : begins(text, trace.text);
    if (trace.level != level || !is_same) {
        return "the channels differ: " + log + " | " + trace.whole;
    }
    return (level == "ERR" ? "ERROR " : "") + trace.function + " " + text;
}

bool is_reader(const std::string &function) {
    return std::find(readers.begin(), readers.end(), function) != readers.end();
}

template <class Object>
std::string bytes_of(const Object &object) {
    std::string bytes(sizeof object, '\0');
    std::memcpy(bytes.data(), &object, sizeof object);
    return bytes;
}

std::string inventory_item(const std::string &slot) {
    return "0%2f" + slot + "-PSM-OM/attrib/inv_basic_bag";
}

fake::Bag bag_of(std::vector<fake::Token> tokens) {
    fake::Bag bag;
    bag.tokens = std::move(tokens);
    bag.tokens.push_back(fake::mark_token(BAG_TOKEN_END));
    return bag;
}

// The record of a controller: attenuations and powers in hundredths, beside powers that no one asks for.
fake::Bag ots_info(std::int64_t rx_attenuation, std::int64_t tx_attenuation, std::int64_t rx_power,
                   std::int64_t tx_power) {
    using fake::mark_token;
    using fake::number_token;
    return bag_of({mark_token(BAG_TOKEN_STRUCT_START, "Ots_edm_info"),
                   number_token(BAG_TOKEN_INT32, "TxVoaAttenuation", tx_attenuation),
                   number_token(BAG_TOKEN_INT32, "RxVoaAttenuation", rx_attenuation), mark_token(BAG_TOKEN_STRUCT_END),
                   mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"), mark_token(BAG_TOKEN_STRUCT_START, "LaneData"),
                   number_token(BAG_TOKEN_INT32, "ReceivePowerDbm", 90001),
                   number_token(BAG_TOKEN_INT32, "ReceivePower", rx_power),
                   number_token(BAG_TOKEN_INT32, "TransmitPowerDbm", 90002),
                   number_token(BAG_TOKEN_INT32, "TransmitPower", tx_power), mark_token(BAG_TOKEN_STRUCT_END),
                   mark_token(BAG_TOKEN_STRUCT_END)});
}

// A history of 30 seconds: texts as the device stores them.
fake::Bag history(const std::array<const char *, 3> &received, const std::array<const char *, 3> &transmitted) {
    using fake::mark_token;
    using fake::text_token;
    return bag_of({mark_token(BAG_TOKEN_STRUCT_START, "pm_optics_paras"), mark_token(BAG_TOKEN_STRUCT_START, "OPR"),
                   text_token("Minimum", received[0]), text_token("Average", received[1]),
                   text_token("Maximum", received[2]), mark_token(BAG_TOKEN_STRUCT_END),
                   mark_token(BAG_TOKEN_STRUCT_START, "OPT"), text_token("Minimum", transmitted[0]),
                   text_token("Average", transmitted[1]), text_token("Maximum", transmitted[2]),
                   mark_token(BAG_TOKEN_STRUCT_END), mark_token(BAG_TOKEN_STRUCT_END)});
}

} // namespace

std::string node_info(const std::string &list_path, const std::string &key) {
    return "get_node_info(ctx, \"" + list_path + "\", \"" + key + "\")";
}

std::string add(const std::string &leaf, const std::string &value) {
    return "add(ctx, dest, \"/aps/aps-modules/aps-module/" + leaf + "\", ns=openconfig, value=\"" + value +
           "\", src=none, result=none, 0, 0)";
}

std::string stitch(const std::string &module, const std::string &leaf, const std::string &value) {
    return "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"" + value +
           "\", \"/aps/aps-modules/aps-module[name=" + module + "]/" + leaf + "\", \"/aps/aps-modules/aps-module/" +
           leaf + "\")";
}

Lines told_stitch(const std::string &module, const std::string &leaf, const std::string &value) {
    return {"@ psm_key:  " + module + " ", stitch(module, leaf, value)};
}

Lines told_add(const std::string &module, const std::string &leaf, const std::string &value) {
    return {"@ psm_key:  " + module + " ", add(leaf, value)};
}

Lines database_read(const std::string &bind_path, const std::string &item, unsigned type) {
    return {"sysdb_bind(\"" + bind_path + "\", 0)",
            "sysdb_item_get(handle, \"" + item + "\", type " + std::to_string(type) + ", 0)", "sysdb_unbind(handle)"};
}

Lines check_passes(const std::string &name, const std::string &slot) {
    const std::string key = "0/" + slot + "-PSM-OM";
    return lines(check + ("controller_name = " + name), check + ("psm_name = " + key),
                 database_read("/oper/inventory/gl/entity/", inventory_item(slot), 7), check + ("psm_name = " + key),
                 check + ("sys_psm_name = module " + slot));
}

Lines check_refuses_port(const std::string &name, const std::string &port) {
    return {check + ("controller_name = " + name), std::string("ERROR ") + check + "Invalid controller_name [" + name +
                                                       "] and port id [" + port + "], discard it!"};
}

Lines check_refuses_slot(const std::string &name, const std::string &slot) {
    return {check + ("controller_name = " + name), std::string("ERROR ") + check + "Invalid controller_name [" + name +
                                                       "] and slot id [" + slot + "], discard it!"};
}

Lines check_refuses_null() {
    return {std::string("ERROR ") + check + "controller_name is NULL !"};
}

Lines check_finds_no_module(const std::string &name, const std::string &slot) {
    const std::string key = "0/" + slot + "-PSM-OM";
    return lines(check + ("controller_name = " + name), check + ("psm_name = " + key),
                 database_read("/oper/inventory/gl/entity/", inventory_item(slot), 7),
                 std::string("ERROR ") + check + "Psm_name [" + key + "] not present in sysdb inventory, discard it!");
}

const std::vector<Selection> &selections() {
    static const std::vector<Selection> all = {{0, 0, false}, {0, 1, false},        {1, 0xffffffff, false},
                                               {2, 0, false}, {2, 1, true},         {2, 0x10000, true},
                                               {3, 1, false}, {2, 0x80000000, true}};
    return all;
}

std::string repeated(std::size_t count, char character) {
    return std::string(count, character);
}

const std::vector<Value> &tenths() {
    static const std::vector<Value> all = {{"-25", "-2.50"},
                                           {"35", "3.50"},
                                           {"0", "0.00"},
                                           {"-0", "-0.00"},
                                           {"7", "0.70"},
                                           {" 120", "12.00"},
                                           {"12.5", "1.25"},
                                           {"", "0.00"},
                                           {"abc", "0.00"},
                                           {"%s%n", "0.00"},
                                           {"-2147483648", "-214748364.80"},
                                           {repeated(5000, 'x'), "0.00"},
                                           {"-25" + repeated(5000, ' '), "-2.50"},
                                           {repeated(4999, '0') + "5", "0.00"},
                                           {repeated(5000, '1'), "111111111111111120."},
                                           {repeated(100000, '1'), "111111111111111120."}};
    return all;
}

const std::vector<Value> &hundredths() {
    static const std::vector<Value> all = {{"-1234", "-12.34"},
                                           {"350", "3.50"},
                                           {"0", "0.00"},
                                           {"-0", "-0.00"},
                                           {"7", "0.07"},
                                           {" 120", "1.20"},
                                           {"12.5", "0.12"},
                                           {"", "0.00"},
                                           {"abc", "0.00"},
                                           {"%s%n", "0.00"},
                                           {"-2147483648", "-21474836.48"},
                                           {repeated(5000, 'x'), "0.00"},
                                           {"-1234" + repeated(5000, ' '), "-12.34"},
                                           {repeated(4999, '0') + "5", "0.00"},
                                           {repeated(5000, '1'), "11111111111111112.0"},
                                           {repeated(100000, '1'), "11111111111111112.0"}};
    return all;
}

const std::vector<Value> &units() {
    static const std::vector<Value> all = {{"-12.34", "-12.34"},
                                           {"-3.5", "-3.50"},
                                           {"0", "0.00"},
                                           {"-40", "-40.00"},
                                           {"  -12.34  ", "-12.34"},
                                           {"", "0.00"},
                                           {"   ", "0.00"},
                                           {"abc", "0.00"},
                                           {"%s%n", "0.00"},
                                           {repeated(5000, 'x'), "0.00"},
                                           {" -12.34" + repeated(5000, ' '), "-12.34"},
                                           {repeated(4999, '0') + "5", "0.00"},
                                           {repeated(5000, '1'), "1111111111111111168"},
                                           {repeated(100000, '1'), "1111111111111111168"}};
    return all;
}

HighTest::HighTest() : registered_(fake::container("aps")) {
    request.state.request_root = registered_.root();
    platform.name(registered_.root(), "registered");
    for (std::size_t nth = 1; nth <= scripted_adds; ++nth) {
        platform.answer("add", add_result(nth), nth);
    }
    // What becomes of a stitched leaf is nobody's result.
    platform.answer("stitch", 0x0badbad0);
    for (const char *slot : {"0", "1", "2", "3"}) {
        put_inventory(slot);
    }
    put_ports_of_slot_2();
}

kidl_yfw_datatree *HighTest::leaf_with(const Text &value) {
    return build(value ? fake::leaf("leaf", *value) : fake::leaf("leaf"), "source").root();
}

void HighTest::set_selection(const Selection &selection) {
    request.state.selection_mode = selection.mode;
    request.state.leaf_selection = selection.bits;
}

HighTest::Outcome HighTest::run(const std::string &function, const kidl_yfw_datatree *source) {
    platform.forget();
    const kerrno result = fake::conversion(function)(request.ctx(), source, dest);
    return {result, told()};
}

void HighTest::expect_run(const std::string &function, const kidl_yfw_datatree *source, kerrno result,
                          const Lines &expected, const std::string &said_by) {
    const std::string source_before = bytes_of(*source);
    const std::string state_before = bytes_of(request.state);
    const std::string context_before = bytes_of(request.context);

    const Outcome outcome = run(function, source);

    Lines named = expected;
    for (std::string &line : named) {
        if (begins(line, "@")) {
            line.replace(0, 1, said_by.empty() ? function : said_by);
        }
    }
    EXPECT_EQ(outcome.lines, named) << function;
    EXPECT_EQ(outcome.result, result) << function;
    EXPECT_TRUE(bytes_of(*source) == source_before) << function << " changed the source";
    EXPECT_TRUE(bytes_of(request.state) == state_before) << function << " changed the request";
    EXPECT_TRUE(bytes_of(request.context) == context_before) << function << " changed the context";
}

Lines HighTest::told() const {
    Lines all;
    std::size_t traces = 0;
    for (const std::string &line :
         platform.calls(fake::Output | fake::Walk | fake::Questions | fake::Database | fake::Log)) {
        if (begins(line, "log ")) {
            if (traces == platform.traced().size()) {
                all.push_back("not traced: " + line);
                continue;
            }
            const fake::TraceRecord &trace = platform.traced()[traces++];
            const std::string text = message(line, trace);
            if (!is_reader(trace.function) || begins(text, "ERROR") || begins(text, "the channels")) {
                all.push_back(text);
            }
        } else if (!begins(line, "match(") && (!begins(line, "access(") || !platform.client_library_present)) {
            all.push_back(without_handle(line));
        }
    }
    if (traces != platform.traced().size()) {
        all.emplace_back("traced, but not logged");
    }
    return all;
}

void HighTest::without_client_library(const std::function<void()> &test) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a child that is started anew has not seen the library
    EXPECT_EXIT(
        {
            platform.client_library_present = false;
            test();
            std::_Exit(HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

void HighTest::put_inventory(const std::string &slot) {
    platform.items["/oper/inventory/gl/entity/" + inventory_item(slot)] =
        fake::bag_item(bag_of({fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                               fake::text_token("Description", "a module"), fake::text_token("Name", "module " + slot),
                               fake::mark_token(BAG_TOKEN_STRUCT_END)}));
}

void HighTest::put_ports_of_slot_2() {
    platform.items["/oper/ots/if/Ots0_2_0_2/ots_info"] = fake::bag_item(ots_info(350, 425, -1811, 322));
    platform.items["/oper/ots/if/Ots0_2_0_0/ots_info"] = fake::bag_item(ots_info(91000, 92000, 93000, -95));
    platform.items["/cfg/if/act/Ots0_2_0_2/Optics/rx_attenuation"] = fake::integer_item(47);
    platform.items["/cfg/if/act/Ots0_2_0_2/Optics/tx_attenuation"] = fake::integer_item(-3);
    const std::string histories = "/oper/perfmgmt/gl/periodic/optics/interface/";
    platform.items[histories + "Ots0_2_0_2/30sec/optics/1/timeline_rev/0x1"] =
        fake::bag_item(history({"  -18.30", "-18.2 ", "-18.10"}, {" 3.00 ", "3.1", "  3.25"}));
    platform.items[histories + "Ots0_2_0_0/30sec/optics/1/timeline_rev/0x1"] =
        fake::bag_item(history({"71", "72", "73"}, {"\t-1.5\n", "  -1.25  ", "-1"}));
}

} // namespace high_test
