// Reads that name no module: the inventory decides which modules are asked for.
#include <cstdlib>

#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char interface_path[] = "/interface-configurations/interface-configuration";
constexpr char optics_path[] = "/interface-configurations/interface-configuration/optics";
constexpr char node_name_path[] = "/active-nodes/active-node/node-name";
constexpr char psm_path[] = "/active-nodes/active-node/slot/psm";
constexpr char port_path[] = "/ots-oper/ots-ports/ots-port";
constexpr char history_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
constexpr char thirty_seconds_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history/"
    "optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
constexpr char time_line_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history/"
    "optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history/"
    "optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance";
constexpr char entry[] = "aps/aps-modules/aps-module";

std::string add(const std::string &path, const std::string &ns, const std::string &value, const std::string &source,
                const std::string &flags) {
    return "add(ctx, dest, \"" + path + "\", ns=" + ns + ", value=" + value + ", src=" + source + ", result=none, " +
           flags + ")";
}

Lines joined(const std::vector<Lines> &pieces) {
    Lines lines;
    for (const Lines &piece : pieces) {
        lines.insert(lines.end(), piece.begin(), piece.end());
    }
    return lines;
}

Lines interface_entry(const std::string &controller) {
    const std::string path = interface_path;
    return {
        add(path, "ifmgr-cfg", "null", entry, "1, 0"),
        add(path + "/interface-name", "ifmgr-cfg", "\"" + controller + "\"", entry, "0, 1"),
        add(path + "/active", "ifmgr-cfg", "\"act\"", entry, "0, 1"),
    };
}

Lines node_entry() {
    return {add(node_name_path, "mda-cfg", "\"0/RP0/CPU0\"", "none", "1, 0")};
}

// The port entry of a controller with all that a read asks of it.
Lines port_selection(const std::string &controller) {
    const std::string path = port_path;
    Lines lines{add(path, "ots-oper", "null", "none", "1, 0"),
                add(path + "/name", "ots-oper", "\"" + controller + "\"", entry, "0, 1")};
    for (const std::string leaf :
         {"lane-data/transmit-power", "lane-data/receive-power", "lane-data/transmit-power-dbm",
          "lane-data/receive-power-dbm", "tx-voa-attenuation", "rx-voa-attenuation", "port-status", "rx-low-threshold",
          "rx-thr-fail-low-delta-val"}) {
        lines.push_back(add(below(path + "/ots-info", leaf), "ots-oper", "null", "none", "0, 1"));
    }
    return lines;
}

// Its history entry.
Lines history_selection(const std::string &controller) {
    const std::string line = time_line_path;
    const std::string interval = thirty_seconds_path;
    Lines lines{
        add(history_path, "pmengine-oper", "null", "none", "1, 0"),
        add(interval, "pmengine-oper", "null", "none", "1, 0"),
        add(interval + "/number", "pmengine-oper", "\"1\"", "none", "0, 0"),
        add(line, "pmengine-oper", "null", "none", "1, 1"),
        add(line + "/number", "pmengine-oper", "\"1\"", "none", "0, 1"),
    };
    for (const std::string leaf :
         {"opr/average", "opr/minimum", "opr/maximum", "opt/average", "opt/minimum", "opt/maximum"}) {
        lines.push_back(add(below(line, leaf), "pmengine-oper", "null", "none", "0, 0"));
    }
    lines.push_back(add(std::string(history_path) + "/name", "pmengine-oper", "\"" + controller + "\"", entry, "0, 1"));
    return lines;
}

// What the configuration leaves ask for when no module is named: no interface entry of their own.
Lines module_leaves() {
    const std::string optics = optics_path;
    const std::string psm = psm_path;
    const std::string type = optics + "/rx-thresholds/rx-threshold/rx-threshold-type";
    const std::string threshold = optics + "/rx-thresholds/rx-threshold/rx-threshold";
    const std::string relative = psm + "/relative-switch-threshold/psm-relative-switch-threshold";
    return {
        add(psm + "/revertive/enable", "ots-cfg", "null", "none", "0, 1"),
        add(psm + "/revertive/wtr", "ots-cfg", "null", "none", "0, 1"),
        add(type, "optics-cfg", "\"low\"", entry, "0, 1"),
        add(threshold, "optics-cfg", "\"\"", entry, "0, 1"),
        add(optics + "/optics-ots-rx-low-threshold-delta", "optics-cfg", "\"\"", "none", "0, 1"),
        add(type, "optics-cfg", "\"low\"", entry, "0, 1"),
        add(threshold, "optics-cfg", "\"\"", entry, "0, 1"),
        add(relative, "ots-cfg", "\"\"", "none", "0, 1"),
        add(relative + "-offset", "ots-cfg", "\"\"", "none", "0, 1"),
        add(psm + "/lockout-from", "ots-cfg", "\"\"", "none", "0, 1"),
    };
}

Lines attenuation_leaves() {
    const std::string optics = optics_path;
    return {
        add(optics + "/optics-ots-rx-voa-attenuation", "optics-cfg", "\"\"", "none", "0, 1"),
        add(optics + "/optics-ots-tx-voa-attenuation", "optics-cfg", "\"\"", "none", "0, 1"),
        add(optics + "/optics-ots-rx-voa-attenuation", "optics-cfg", "\"\"", "none", "0, 1"),
        add(optics + "/optics-ots-tx-voa-attenuation", "optics-cfg", "\"\"", "none", "0, 1"),
    };
}

class WalkEverything : public WalkTest {
protected:
    WalkEverything() { use_conversions(); }

    void fit(int slot) {
        fake::Bag bag;
        bag.type_name = "inv_phy_entity_basic_info";
        bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                      fake::text_token("Name", "0/" + std::to_string(slot) + "-PSM-OM"),
                      fake::mark_token(BAG_TOKEN_STRUCT_END), fake::mark_token(BAG_TOKEN_END)};
        platform.items["/oper/inventory/gl/entity/0%2f" + std::to_string(slot) + "-PSM-OM/attrib/inv_basic_bag"] =
            fake::bag_item(bag);
    }

    Lines native_of_read(std::uint32_t kind) {
        request.set_kind(kind);
        EXPECT_EQ(walk("lvla_aps", build(aps({bare_module()}))), 0u);
        Lines lines = adds();
        std::erase_if(lines, [](const std::string &line) { return line.compare(0, 4, "add(") != 0; });
        return lines;
    }

    // The first adds of a read of kind 10, which come from the entry itself.
    Lines beginning(const Lines &native, std::size_t count) {
        EXPECT_GT(native.size(), count);
        return {native.begin(), native.begin() + static_cast<std::ptrdiff_t>(std::min(count, native.size()))};
    }
};

TEST_F(WalkEverything, AGetConfigOfTheModulesInSlots1And3) {
    fit(1);
    fit(3);
    EXPECT_EQ(native_of_read(get_config),
              joined({interface_entry("Ots0/1/0/1"), node_entry(), interface_entry("Ots0/1/0/2"),
                      interface_entry("Ots0/3/0/1"), node_entry(), interface_entry("Ots0/3/0/2"), module_leaves(),
                      attenuation_leaves()}));
}

TEST_F(WalkEverything, AGetOfTheModulesInSlots1And3) {
    fit(1);
    fit(3);
    const Lines expected =
        joined({interface_entry("Ots0/1/0/1"), node_entry(), interface_entry("Ots0/1/0/2"),
                interface_entry("Ots0/3/0/1"), node_entry(), interface_entry("Ots0/3/0/2"),
                // No hardware module selection: the node entries above stand in its place.
                port_selection("Ots0/1/0/1"), history_selection("Ots0/1/0/1"), port_selection("Ots0/1/0/2"),
                history_selection("Ots0/1/0/2"), port_selection("Ots0/3/0/1"), history_selection("Ots0/3/0/1"),
                port_selection("Ots0/3/0/2"), history_selection("Ots0/3/0/2"), module_leaves()});
    const Lines native = native_of_read(get);
    EXPECT_EQ(beginning(native, expected.size()), expected);
    // The 4 attenuations of the configuration, 9 leaves of state and, of the states of the ports, 2 target
    // attenuations, 3 attenuations, 5 times 2 instant powers and 15 history values with their number.
    EXPECT_EQ(native.size(), expected.size() + 4 + 9 + 5 + 10 + 30);
}

TEST_F(WalkEverything, AModuleWhoseInventoryIsMissingIsLeftOut) {
    fit(3);
    EXPECT_EQ(native_of_read(get_config),
              joined({interface_entry("Ots0/3/0/1"), node_entry(), interface_entry("Ots0/3/0/2"), module_leaves(),
                      attenuation_leaves()}));
    platform.forget();
    drop_trees();
    const Lines expected = joined({interface_entry("Ots0/3/0/1"), node_entry(), interface_entry("Ots0/3/0/2"),
                                   port_selection("Ots0/3/0/1"), history_selection("Ots0/3/0/1"),
                                   port_selection("Ots0/3/0/2"), history_selection("Ots0/3/0/2"), module_leaves()});
    EXPECT_EQ(beginning(native_of_read(get), expected.size()), expected);
}

TEST_F(WalkEverything, WithoutAModuleOnlyLeavesAreAskedFor) {
    EXPECT_EQ(native_of_read(get_config), joined({module_leaves(), attenuation_leaves()}));
}

// The plug-in never forgets that it has found the database, so this needs a process of its own.
TEST_F(WalkEverything, WithoutADatabaseTheReadSucceedsWithoutModules) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto read = [this] {
        fit(1);
        platform.client_library_present = false;
        EXPECT_EQ(native_of_read(get_config), joined({module_leaves(), attenuation_leaves()}));
        EXPECT_EQ(platform.count("sysdb_bind"), 0u);
        // The file is looked for again for every controller.
        EXPECT_EQ(platform.count("access"), 6u);
        std::_Exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(read(), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace walk
