// Whole requests end to end: walkers, callbacks and conversions together, every native add compared.
#include <map>
#include <set>

#include "walk_support.hpp"

namespace walk {
namespace {

constexpr char list[] = "lvla_aps_apsmodules_apsmodule";
constexpr char interface_path[] = "/interface-configurations/interface-configuration";
constexpr char optics_path[] = "/interface-configurations/interface-configuration/optics";
constexpr char node_path[] = "/active-nodes/active-node";
constexpr char slot_path[] = "/active-nodes/active-node/slot";
constexpr char psm_path[] = "/active-nodes/active-node/slot/psm";

// An add as the platform records it; flags "0, 1" and the like.
std::string add(const std::string &path, const std::string &ns, const std::string &value, const std::string &source,
                const std::string &flags) {
    return "add(ctx, dest, \"" + path + "\", ns=" + ns + ", value=" + value + ", src=" + source + ", result=none, " +
           flags + ")";
}

// The interface entry of a controller.
Lines interface_entry(const std::string &controller, const std::string &source, const std::string &entry_source) {
    const std::string path = interface_path;
    return {
        add(path, "ifmgr-cfg", "null", entry_source, "1, 0"),
        add(path + "/interface-name", "ifmgr-cfg", "\"" + controller + "\"", source, "0, 1"),
        add(path + "/active", "ifmgr-cfg", "\"act\"", source, "0, 1"),
    };
}

// The interface entry and its optics, as a configuration leaf of a controller adds them before its own.
Lines interface_key(const std::string &controller, const std::string &source) {
    const std::string path = interface_path;
    return {
        add(path, "ifmgr-cfg", "null", source, "1, 0"),
        add(path + "/interface-name", "ifmgr-cfg", "\"" + controller + "\"", source, "0, 1"),
        add(path + "/active", "ifmgr-cfg", "\"act\"", "none", "0, 1"),
        add(optics_path, "optics-cfg", "null", source, "0, 1"),
    };
}

std::string optics_leaf(const std::string &path, const std::string &value, const std::string &source) {
    return add(optics_path + path, "optics-cfg", value, source, "0, 1");
}

std::string psm_leaf(const std::string &path, const std::string &value, const std::string &source) {
    return add(psm_path + path, "ots-cfg", value, source, "0, 1");
}

Lines joined(const std::vector<Lines> &pieces) {
    Lines lines;
    for (const Lines &piece : pieces) {
        lines.insert(lines.end(), piece.begin(), piece.end());
    }
    return lines;
}

class WalkRequests : public WalkTest {
protected:
    WalkRequests() { use_conversions(); }

    [[nodiscard]] Lines native() const {
        Lines lines = adds();
        std::erase_if(lines, [](const std::string &line) { return line.compare(0, 4, "add(") != 0; });
        return lines;
    }
};

// What the key leaf of an entry of slot 2 adds in an edit.
Lines key_of_edit(const std::string &key) {
    const std::string node = node_path;
    const std::string slot = slot_path;
    return joined({interface_entry("Ots0/2/0/1", key, key),
                   {
                       add(node, "mda-cfg", "null", key, "1, 0"),
                       add(node + "/node-name", "mda-cfg", "\"0/RP0/CPU0\"", key, "0, 0"),
                       add(slot, "ots-cfg", "null", key, "1, 1"),
                       add(slot + "/slot-id", "ots-cfg", "\"2\"", key, "0, 1"),
                   }});
}

TEST_F(WalkRequests, ADeleteOfAModule) {
    request.set_kind(edit);
    Tree &tree = build(module("0/2-PSM-OM").with_operation(3));
    EXPECT_EQ(walk(list, tree), 0u);
    const std::string entry = "aps-module";
    EXPECT_EQ(
        native(),
        joined({
            key_of_edit("aps-module/name"),
            {psm_leaf("/revertive/enable", "null", entry), psm_leaf("/revertive/wtr", "null", entry)},
            interface_key("Ots0/2/0/1", entry),
            {optics_leaf("/rx-thresholds", "null", entry), optics_leaf("/rx-thresholds/rx-threshold", "null", entry),
             optics_leaf("/rx-thresholds/rx-threshold/rx-threshold", "\"\"", entry),
             optics_leaf("/rx-thresholds/rx-threshold/rx-threshold-type", "\"low\"", entry)},
            interface_key("Ots0/2/0/1", entry),
            {optics_leaf("/optics-ots-rx-low-threshold-delta", "null", entry)},
            interface_key("Ots0/2/0/2", entry),
            {optics_leaf("/rx-thresholds", "null", entry), optics_leaf("/rx-thresholds/rx-threshold", "null", entry),
             optics_leaf("/rx-thresholds/rx-threshold/rx-threshold-type", "\"low\"", entry),
             optics_leaf("/rx-thresholds/rx-threshold/rx-threshold", "\"\"", entry)},
            {psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold", "null", entry),
             psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold-offset", "null", entry),
             psm_leaf("/lockout-from", "null", entry)},
            // Every attenuation stands under its own controller.
            interface_key("Ots0/2/0/1", entry),
            {optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", entry)},
            interface_key("Ots0/2/0/1", entry),
            {optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", entry)},
            interface_key("Ots0/2/0/2", entry),
            {optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", entry)},
            interface_key("Ots0/2/0/2", entry),
            {optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", entry)},
        }));
    // The interface keys have left their mark on the entry; its operation is what it was.
    EXPECT_EQ(tree.root()->operation, 3u);
    EXPECT_EQ(tree.root()->flags, 1u | 16u | 64u);
}

TEST_F(WalkRequests, InADeleteTheKeyNodesAreAddedAsPlainNodesAndTheLeavesAsRemovals) {
    request.set_kind(edit);
    Tree &tree = build(module("0/2-PSM-OM").with_operation(3));
    std::map<std::string, std::set<std::uint32_t>> operations;
    platform.before("add", [&](const std::string &line) {
        if (line.find("src=aps-module,") != std::string::npos) {
            const bool of_key = line.find("/interface-name\"") != std::string::npos ||
                                line.find("/optics\"") != std::string::npos ||
                                line.find("interface-configuration\", ns") != std::string::npos;
            operations[of_key ? "interface key" : "leaf"].insert(tree.root()->operation);
        }
    });
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(operations, (std::map<std::string, std::set<std::uint32_t>>{{"interface key", {0}}, {"leaf", {4}}}));
}

// What a read of the key adds in both kinds, up to the primary controller's entries.
Lines primary_of_read(const std::string &key) {
    return joined({interface_entry("Ots0/2/0/1", key, "none"),
                   {add(std::string(node_path) + "/node-name", "mda-cfg", "\"0/RP0/CPU0\"", "none", "1, 0"),
                    add(std::string(slot_path) + "/slot-id", "ots-cfg", "\"2\"", "none", "1, 0")}});
}

// What a read asks for as the configuration of an entry that names no leaf.
Lines whole_configuration(const std::string &entry) {
    return joined({
        {psm_leaf("/revertive/enable", "null", "none"), psm_leaf("/revertive/wtr", "null", "none")},
        interface_key("Ots0/2/0/1", entry),
        {optics_leaf("/rx-thresholds/rx-threshold/rx-threshold-type", "\"low\"", entry),
         optics_leaf("/rx-thresholds/rx-threshold/rx-threshold", "\"\"", entry)},
        interface_key("Ots0/2/0/1", entry),
        {optics_leaf("/optics-ots-rx-low-threshold-delta", "\"\"", "none")},
        interface_key("Ots0/2/0/2", entry),
        {optics_leaf("/rx-thresholds/rx-threshold/rx-threshold-type", "\"low\"", entry),
         optics_leaf("/rx-thresholds/rx-threshold/rx-threshold", "\"\"", entry)},
        {psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold", "\"\"", "none"),
         psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold-offset", "\"\"", "none"),
         psm_leaf("/lockout-from", "\"\"", "none")},
    });
}

TEST_F(WalkRequests, AGetConfigOfAModule) {
    Tree &tree = build(module("0/2-PSM-OM"));
    EXPECT_EQ(walk(list, tree), 0u);
    EXPECT_EQ(native(), joined({
                            primary_of_read("aps-module/name"),
                            interface_entry("Ots0/2/0/2", "aps-module/name", "aps-module/name"),
                            whole_configuration("aps-module"),
                            // Attenuations go into the interface entry that is current.
                            {optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", "none"),
                             optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", "none"),
                             optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", "none"),
                             optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", "none")},
                        }));
}

constexpr char port_path[] = "/ots-oper/ots-ports/ots-port";
constexpr char history_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
constexpr char time_line_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history/"
    "optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history/"
    "optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance";

std::string port_leaf(const std::string &path) {
    return add(std::string(port_path) + "/ots-info" + path, "ots-oper", "\"\"", "none", "0, 1");
}

Lines powers(const std::string &instant, const std::string &history) {
    Lines lines{port_leaf("/lane-data/" + instant), port_leaf("/lane-data/" + instant + "-dbm")};
    for (const std::string leaf : {"average", "minimum", "maximum"}) {
        lines.push_back(add(below(below(time_line_path, history), leaf), "pmengine-oper", "null", "none", "0, 0"));
        lines.push_back(add(std::string(time_line_path) + "/number", "pmengine-oper", "\"1\"", "none", "0, 0"));
    }
    return lines;
}

TEST_F(WalkRequests, AGetOfAModule) {
    request.set_kind(get);
    Tree &tree = build(module("0/2-PSM-OM"));
    EXPECT_EQ(walk(list, tree), 0u);
    const std::string port = port_path;
    const std::string history = history_path;
    const Lines rx = powers("receive-power", "opr");
    const Lines tx = powers("transmit-power", "opt");
    EXPECT_EQ(
        native(),
        joined({
            // the entry
            {add(port, "ots-oper", "null", "none", "1, 0"), add(history, "pmengine-oper", "null", "none", "1, 0"),
             add(std::string(time_line_path) + "/number", "pmengine-oper", "\"1\"", "none", "0, 0")},
            // the key
            primary_of_read("aps-module/name"),
            {add(port + "/name", "ots-oper", "\"Ots0/2/0/1\"", "none", "1, 0"),
             add(history + "/name", "pmengine-oper", "\"Ots0/2/0/1\"", "none", "1, 0")},
            interface_entry("Ots0/2/0/2", "aps-module/name", "aps-module/name"),
            {add(port, "ots-oper", "null", "none", "1, 0"),
             add(port + "/name", "ots-oper", "\"Ots0/2/0/2\"", "none", "1, 0")},
            // config
            whole_configuration("aps-module"),
            // state
            {psm_leaf("/revertive/enable", "null", "none"), psm_leaf("/revertive/wtr", "null", "none"),
             port_leaf("/rx-low-threshold"), port_leaf("/rx-thr-fail-low-delta-val"), port_leaf("/rx-low-threshold"),
             psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold", "\"\"", "none"),
             psm_leaf("/relative-switch-threshold/psm-relative-switch-threshold-offset", "\"\"", "none"),
             psm_leaf("/lockout-from", "\"\"", "none"), port_leaf("/port-status")},
            // line-primary-in
            {optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", "none"),
             optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", "none"), port_leaf("/rx-voa-attenuation")},
            rx,
            // line-primary-out
            {optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", "none"),
             optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", "none"), port_leaf("/tx-voa-attenuation")},
            tx,
            // line-secondary-in: both attenuations of its state are refused
            {optics_leaf("/optics-ots-rx-voa-attenuation", "\"\"", "none")},
            rx,
            // line-secondary-out: the target attenuation of its state is refused
            {optics_leaf("/optics-ots-tx-voa-attenuation", "\"\"", "none"), port_leaf("/tx-voa-attenuation")},
            tx,
            // common-output
            tx,
        }));
    // The refusals inside the spread raise the location and leave the last name.
    EXPECT_EQ(platform.count("error_path"), 5u);
    EXPECT_EQ(request.error_node(), "aps-module");
}

TEST_F(WalkRequests, AMergeOfAThreshold) {
    request.set_kind(edit);
    Tree &tree = build(aps({module("0/2-PSM-OM", {container("config", {leaf("primary-switch-threshold", "12.5")})})}));
    EXPECT_EQ(walk("lvla_aps", tree), 0u);
    const std::string entry = "aps/aps-modules/aps-module";
    const std::string threshold = entry + "/config/primary-switch-threshold";
    EXPECT_EQ(native(), joined({
                            key_of_edit(entry + "/name"),
                            interface_key("Ots0/2/0/1", threshold),
                            interface_key("Ots0/2/0/1", threshold),
                            {optics_leaf("/rx-thresholds/rx-threshold/rx-threshold-type", "\"low\"", threshold),
                             optics_leaf("/rx-thresholds/rx-threshold/rx-threshold", "\"125\"", threshold)},
                        }));
    EXPECT_EQ(tree.at("aps-modules/aps-module/config/primary-switch-threshold")->flags, 1u | 2u | 16u);
}

TEST_F(WalkRequests, AReadOfOneStateLeaf) {
    request.set_kind(get);
    Tree &tree = build(aps({module("0/1-PSM-OM", {container("state", {leaf("active-path")})})}));
    EXPECT_EQ(walk("lvla_aps", tree), 0u);
    EXPECT_EQ(native().back(), port_leaf("/port-status"));
    EXPECT_EQ(operations().front(), "add_to_hierarchy(ctx, aps, 1)");
    EXPECT_EQ(operations().back(), "remove_from_hierarchy(ctx, aps)");
}

TEST_F(WalkRequests, AReadThatNamesARefusedLeafFailsThere) {
    request.set_kind(get);
    Tree &tree = build(aps(
        {module("0/1-PSM-OM",
                {container("ports", {container("line-secondary-in", {container("state", {leaf("attenuation")})})})})}));
    std::string innermost;
    platform.before("error_path",
                    [&](const std::string &) { innermost = platform.name_of(platform.hierarchy.back().node); });
    EXPECT_EQ(walk("lvla_aps", tree), 0xaaf2ee00u);
    EXPECT_EQ(request.error_node(), "attenuation");
    EXPECT_EQ(innermost, "aps/aps-modules/aps-module/ports/line-secondary-in/state");
}

TEST_F(WalkRequests, AFailingAddReachesTheTop) {
    request.set_kind(edit);
    platform.answer("add", 0xadd00001, 0, "/psm/revertive/wtr\"");
    EXPECT_EQ(walk("lvla_aps", build(aps({module("0/2-PSM-OM", {container("config", {leaf("wait-to-restore-time", "10"),
                                                                                     leaf("revertive", "true")})}),
                                          module("0/3-PSM-OM")}))),
              0xadd00001u);
    EXPECT_EQ(native().back().find("revertive/enable"), std::string::npos);
    EXPECT_EQ(platform.count("list_lvla_aps_apsmodules_apsmodule"), 1u);
}

TEST_F(WalkRequests, TwoEntriesOfOneEditAreWalkedOneAfterTheOther) {
    request.set_kind(edit);
    Tree &tree = build(aps({module("0/1-PSM-OM", {container("config", {leaf("revertive", "true")})}),
                            module("0/3-PSM-OM", {container("config", {leaf("revertive", "false")})})}));
    EXPECT_EQ(walk("lvla_aps", tree), 0u);
    EXPECT_EQ(native().size(), 2u * 8u);
    EXPECT_EQ(native()[7], psm_leaf("/revertive/enable", "\"true\"", "none"));
    EXPECT_EQ(native()[14], add(std::string(slot_path) + "/slot-id", "ots-cfg", "\"3\"",
                                "aps/aps-modules/aps-module[2]/name", "0, 1"));
    EXPECT_EQ(native()[15], psm_leaf("/revertive/enable", "\"false\"", "none"));
}

} // namespace
} // namespace walk
