// A request that names no module: the modules of the device are found through the inventory of the system database.
#include <cstdlib>

#include "conversion_support.hpp"

namespace {

using namespace conversion_test;

constexpr char list_conversion[] = "oc_aps_cfg_psm_list_to_low";
constexpr char node_message[] = "@ strlen(key) == 0, set /active-nodes/active-node/node-name";

Lines interface_of(const char *controller) {
    return {add(interface_entry, "ifmgr-cfg", nullptr, src, 1, 0),
            add(interface_name, "ifmgr-cfg", controller, src, 0, 1),
            add(interface_active, "ifmgr-cfg", "act", src, 0, 1)};
}

Lines node_of_slot() {
    return {node_message, add(node_name, "mda-cfg", "0/RP0/CPU0", none, 1, 0)};
}

Lines port_selection(const char *controller) {
    const auto field = [](const char *path) { return add(port_info(path), "ots-oper", nullptr, none, 0, 1); };
    return {add(port_entry, "ots-oper", nullptr, none, 1, 0),
            add(port_name, "ots-oper", controller, src, 0, 1),
            field("/lane-data/transmit-power"),
            field("/lane-data/receive-power"),
            field("/lane-data/transmit-power-dbm"),
            field("/lane-data/receive-power-dbm"),
            field("/tx-voa-attenuation"),
            field("/rx-voa-attenuation"),
            field("/port-status"),
            field("/rx-low-threshold"),
            field("/rx-thr-fail-low-delta-val")};
}

Lines history_selection(const char *controller) {
    const std::string history =
        "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
    const std::string second30 =
        history + "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
    const auto field = [](const char *path) { return add(time_line(path), "pmengine-oper", nullptr, none, 0, 0); };
    return {add(history, "pmengine-oper", nullptr, none, 1, 0),
            add(second30, "pmengine-oper", nullptr, none, 1, 0),
            add(second30 + "/number", "pmengine-oper", "1", none, 0, 0),
            add(time_line(""), "pmengine-oper", nullptr, none, 1, 1),
            add(time_line("/number"), "pmengine-oper", "1", none, 0, 1),
            field("/opr/average"),
            field("/opr/minimum"),
            field("/opr/maximum"),
            field("/opt/average"),
            field("/opt/minimum"),
            field("/opt/maximum"),
            add(history + "/name", "pmengine-oper", controller, src, 0, 1)};
}

Lines slot_selection() {
    const auto field = [](const char *path) {
        return add(std::string("/active-nodes/active-node/slot/psm") + path, "ots-cfg", nullptr, none, 1, 0);
    };
    return {add(node_name, "mda-cfg", "0/RP0/CPU0", none, 1, 0),
            field("/revertive/enable"),
            field("/revertive/wtr"),
            field("/lockout-from"),
            field("/relative-switch-threshold/psm-relative-switch-threshold"),
            field("/relative-switch-threshold/psm-relative-switch-threshold-offset")};
}

Lines operational_selection(const char *controller) {
    return lines(port_selection(controller), history_selection(controller));
}

class AllModules : public ConversionTest {
protected:
    void fit(const char *item) {
        fake::Bag bag;
        bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                      fake::text_token("Name", "a module"), fake::mark_token(BAG_TOKEN_STRUCT_END),
                      fake::mark_token(BAG_TOKEN_END)};
        platform.items[std::string("/oper/inventory/gl/entity/") + item + "/attrib/inv_basic_bag"] =
            fake::bag_item(bag);
    }

    void fit_slots_1_and_3() {
        fit("0%2f1-PSM-OM");
        fit("0%2f3-PSM-OM");
    }

    // The run of an entry without a key. Of the messages only the conversion's own and the errors stay.
    Outcome run_all(std::uint32_t kind, std::uint32_t operation = 0,
                    const fake::Node &entry = fake::container("aps-module")) {
        request.set_kind(kind);
        Outcome outcome = run(list_conversion, build(entry.with_operation(operation), src).root());
        std::erase_if(outcome.lines, [](const std::string &line) {
            return line.compare(0, 4, "add(") != 0 && line.compare(0, 6, "ERROR ") != 0 &&
                   line.compare(0, 27, "oc_aps_cfg_psm_list_to_low ") != 0;
        });
        EXPECT_EQ(platform.count("error_path"), 0u);
        return outcome;
    }

    static Lines expected(const Lines &all) { return filled(all, list_conversion, {nullptr, nullptr}); }
};

std::string not_present(const char *module) {
    return std::string("ERROR check_controller_name_ots_is_good_by_port Psm_name [") + module +
           "] not present in sysdb inventory, discard it!";
}

// Two controllers of one module are refused one after the other.
Lines absent(const char *module) {
    return {not_present(module), not_present(module)};
}

Lines configured_1_and_3() {
    return lines(interface_of("Ots0/1/0/1"), node_of_slot(), interface_of("Ots0/1/0/2"), absent("0/2-PSM-OM"),
                 interface_of("Ots0/3/0/1"), node_of_slot(), interface_of("Ots0/3/0/2"));
}

TEST_F(AllModules, AGetConfigSelectsTheInterfacesOfTheFittedModules) {
    fit_slots_1_and_3();
    const Outcome outcome = run_all(YFW_KIND_GET_CONFIG);
    EXPECT_EQ(outcome.lines, expected(lines("@ Start", "@ key ", "@ merge request", configured_1_and_3(), "@ End")));
    EXPECT_EQ(outcome.result, add_result(14)) << "the last controller's activity";
}

// The node entries of the first round stand for the selection of the slots.
TEST_F(AllModules, AGetSelectsPortsAndHistoriesToo) {
    fit_slots_1_and_3();
    const Outcome outcome = run_all(YFW_KIND_GET);
    EXPECT_EQ(
        outcome.lines,
        expected(lines("@ Start", "@ key ", "@ merge request", configured_1_and_3(), "@ IS_REQUEST_GET",
                       operational_selection("Ots0/1/0/1"), operational_selection("Ots0/1/0/2"), absent("0/2-PSM-OM"),
                       operational_selection("Ots0/3/0/1"), operational_selection("Ots0/3/0/2"), "@ End")));
    EXPECT_EQ(outcome.result, add_result(14)) << "the result of the first round";
}

// Every controller is looked up in both rounds, in the order of slots and ports.
TEST_F(AllModules, TheInventoryIsReadForEveryController) {
    fit_slots_1_and_3();
    run_all(YFW_KIND_GET);
    Lines fetched;
    for (const std::string &call : platform.calls(fake::Database)) {
        const std::size_t item = call.find(", \"");
        if (call.compare(0, 14, "sysdb_item_get") == 0) {
            fetched.push_back(call.substr(item + 2));
        }
    }
    const Lines round = {
        "\"0%2f1-PSM-OM/attrib/inv_basic_bag\", type 7, 0)", "\"0%2f1-PSM-OM/attrib/inv_basic_bag\", type 7, 0)",
        "\"0%2f2-PSM-OM/attrib/inv_basic_bag\", type 7, 0)", "\"0%2f2-PSM-OM/attrib/inv_basic_bag\", type 7, 0)",
        "\"0%2f3-PSM-OM/attrib/inv_basic_bag\", type 7, 0)", "\"0%2f3-PSM-OM/attrib/inv_basic_bag\", type 7, 0)"};
    EXPECT_EQ(fetched, lines(round, round));
}

TEST_F(AllModules, AMergeOfAllModulesOpensTheirEntries) {
    fit("0%2f2-PSM-OM");
    for (const std::uint32_t operation : {0u, 1u, 2u}) {
        const Outcome outcome = run_all(YFW_KIND_EDIT_CONFIG, operation);
        EXPECT_EQ(outcome.lines, expected(lines("@ Start", "@ key ", "@ merge request", absent("0/1-PSM-OM"),
                                                interface_of("Ots0/2/0/1"), node_of_slot(), interface_of("Ots0/2/0/2"),
                                                absent("0/3-PSM-OM"), "@ End")));
        EXPECT_EQ(outcome.result, add_result(7));
    }
}

TEST_F(AllModules, EveryFittedModuleIsNamed) {
    fit_slots_1_and_3();
    fit("0%2f2-PSM-OM");
    const Outcome outcome = run_all(YFW_KIND_GET_CONFIG);
    EXPECT_EQ(outcome.lines, expected(lines("@ Start", "@ key ", "@ merge request", interface_of("Ots0/1/0/1"),
                                            node_of_slot(), interface_of("Ots0/1/0/2"), interface_of("Ots0/2/0/1"),
                                            node_of_slot(), interface_of("Ots0/2/0/2"), interface_of("Ots0/3/0/1"),
                                            node_of_slot(), interface_of("Ots0/3/0/2"), "@ End")));
    EXPECT_EQ(outcome.result, add_result(21));
}

TEST_F(AllModules, AModuleWhoseInventoryIsMissingIsPassedOver) {
    fit("0%2f3-PSM-OM");
    const Outcome outcome = run_all(YFW_KIND_GET);
    EXPECT_EQ(outcome.lines,
              expected(lines("@ Start", "@ key ", "@ merge request", absent("0/1-PSM-OM"), absent("0/2-PSM-OM"),
                             interface_of("Ots0/3/0/1"), node_of_slot(), interface_of("Ots0/3/0/2"), "@ IS_REQUEST_GET",
                             absent("0/1-PSM-OM"), absent("0/2-PSM-OM"), operational_selection("Ots0/3/0/1"),
                             operational_selection("Ots0/3/0/2"), "@ End")));
    EXPECT_EQ(outcome.result, add_result(7));
}

// A module counts as fitted when its inventory can be read, whatever name stands in it.
TEST_F(AllModules, AnInventoryWithoutNameWillDo) {
    fake::Bag bag;
    bag.tokens = {fake::mark_token(BAG_TOKEN_END)};
    platform.items["/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag"] = fake::bag_item(bag);
    EXPECT_EQ(run_all(YFW_KIND_GET_CONFIG).result, add_result(7));
}

TEST_F(AllModules, AnInventoryThatCannotBeDecodedIsMissing) {
    fit("0%2f1-PSM-OM");
    platform.answer("bag_header_info", 0x77);
    const Outcome outcome = run_all(YFW_KIND_GET_CONFIG);
    EXPECT_EQ(outcome.operations.size(), 0u);
    EXPECT_EQ(outcome.result, KERR_SUCCESS);
}

// The plug-in remembers for ever that it has found the client library, so this takes a process of its own.
class AllModulesDeathTest : public AllModules {
protected:
    void run_without_database() {
        platform.client_library_present = false;
        const Lines nothing = lines(absent("0/1-PSM-OM"), absent("0/2-PSM-OM"), absent("0/3-PSM-OM"));
        const Outcome get = run_all(YFW_KIND_GET);
        EXPECT_EQ(get.lines, expected(lines("@ Start", "@ key ", "@ merge request", nothing, "@ IS_REQUEST_GET",
                                            nothing, "@ End")));
        EXPECT_EQ(get.result, KERR_SUCCESS);
        const Outcome get_config = run_all(YFW_KIND_GET_CONFIG);
        EXPECT_EQ(get_config.lines, expected(lines("@ Start", "@ key ", "@ merge request", nothing, "@ End")));
        EXPECT_EQ(get_config.result, KERR_SUCCESS);
        EXPECT_EQ(platform.count("sysdb_bind"), 0u);
        // The library's file is looked for again every time.
        platform.client_library_present = true;
        EXPECT_EQ(run_all(YFW_KIND_GET_CONFIG).result, add_result(14));
    }
};

TEST_F(AllModulesDeathTest, WithoutADatabaseNothingIsAdded) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    fit_slots_1_and_3();
    EXPECT_EXIT(
        {
            run_without_database();
            std::exit(HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(AllModules, ADatabaseThatRefusesToBindGivesNothing) {
    fit_slots_1_and_3();
    platform.answer("sysdb_bind", 0x77);
    EXPECT_EQ(run_all(YFW_KIND_GET).operations.size(), 0u);
}

// A bind without a handle leaves no data, and without data there is no inventory.
TEST_F(AllModules, ADatabaseWithoutHandleGivesNothing) {
    fit_slots_1_and_3();
    platform.bind_gives_handle = false;
    EXPECT_EQ(run_all(YFW_KIND_GET).operations.size(), 0u);
}

// A delete passes the first round over; only then do the slots select themselves, once for both of their controllers.
TEST_F(AllModules, ADeletedEntryInAGetSelectsTheSlotsOnce) {
    fit_slots_1_and_3();
    for (const std::uint32_t operation : {3u, 4u}) {
        const Outcome outcome = run_all(YFW_KIND_GET, operation);
        EXPECT_EQ(outcome.lines,
                  expected(lines("@ Start", "@ key ", "@ IS_REQUEST_GET", operational_selection("Ots0/1/0/1"),
                                 slot_selection(), operational_selection("Ots0/1/0/2"), absent("0/2-PSM-OM"),
                                 operational_selection("Ots0/3/0/1"), slot_selection(),
                                 operational_selection("Ots0/3/0/2"), "@ End")));
        EXPECT_EQ(outcome.result, KERR_SUCCESS) << "the first round added nothing";
    }
}

// The booleans of the slots are those of one call.
TEST_F(AllModules, TheNodeIsNamedAgainInTheNextCall) {
    fit_slots_1_and_3();
    const Lines first = run_all(YFW_KIND_GET).lines;
    EXPECT_EQ(run_all(YFW_KIND_GET).lines, first);
}

// A module that is pulled between the rounds is not asked for its operational data.
TEST_F(AllModules, EachRoundAsksTheInventoryAfresh) {
    fit("0%2f1-PSM-OM");
    platform.before(
        "add", [this](const std::string &) { platform.items.clear(); },
        "interface-name\", ns=ifmgr-cfg, value=\"Ots0/1/0/2\"");
    const Outcome outcome = run_all(YFW_KIND_GET);
    EXPECT_EQ(outcome.operations.size(), 7u);
    EXPECT_EQ(outcome.result, add_result(7));
}

TEST_F(AllModules, AnEmptyOrHiddenKeyIsNone) {
    fit("0%2f1-PSM-OM");
    for (const fake::Node &name :
         {fake::leaf("name", ""), fake::leaf("name"), fake::leaf("name", "0/2-PSM-OM").without_flags(YFW_NODE_IN_USE),
          fake::leaf("name", "0/2-PSM-OM").without_flags(YFW_NODE_HAS_VALUE), fake::leaf("names", "0/2-PSM-OM")}) {
        const Outcome outcome = run_all(YFW_KIND_GET_CONFIG, 0, fake::container("aps-module", {name}));
        EXPECT_EQ(outcome.lines.at(1), "oc_aps_cfg_psm_list_to_low key ");
        EXPECT_EQ(outcome.result, add_result(7));
    }
}

} // namespace
