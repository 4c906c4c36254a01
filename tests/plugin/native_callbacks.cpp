// The callbacks with work of the native models: which entries are a module's, and which conversion a leaf goes to.
#include <set>

#include "native_support.hpp"

namespace native_test {
namespace {

constexpr kerrno lookup_code = 0x00100c00;
constexpr kerrno open_code = 0x0000be40;

constexpr char ports[] = "lvla_otsoper_otsports_otsport";
constexpr char histories[] = "lvla_performancemanagementhistory_opticsporthistories_opticsporthistory";
constexpr char interfaces[] = "lvla_interfaceconfigurations_interfaceconfiguration";

fake::Callback call(const std::string &name) {
    return fake::function<fake::Callback>(name);
}

class NativeCallback : public NativeTest {
protected:
    NativeCallback() {
        for (const char *slot : {"1", "2"}) { // slots 0 and 3 are empty
            put_inventory(slot);
        }
        // The list of entries is the framework's; its address is all that a callback sees.
        request.state.module_list = reinterpret_cast<yfw_map_module_list *>(&module_list_);
        platform.name(&module_list_, "modules");
    }

    // What was told on the log as an error.
    [[nodiscard]] Lines errors() const {
        Lines lines;
        for (const std::string &line : platform.calls(fake::Log)) {
            if (line.compare(0, 8, "log ERR ") == 0) {
                lines.push_back(line.substr(8));
            }
        }
        return lines;
    }

    // Calls that leave something behind, or ask for it.
    [[nodiscard]] Lines done() const { return platform.calls(fake::Output | fake::Walk); }

private:
    int module_list_ = 0;
};

// ---- entries of ports and histories ----

struct Entry {
    std::optional<std::string> name;
    bool is_primary;
    bool is_secondary;
    Lines errors;        // of the check for port 1
    Lines second_errors; // of that for port 2
    std::string module;
};

std::string wrong_port(const std::string &name, const std::string &port) {
    return "Invalid controller_name [" + name + "] and port id [" + port + "], discard it!";
}

std::string wrong_slot(const std::string &name, const std::string &slot) {
    return "Invalid controller_name [" + name + "] and slot id [" + slot + "], discard it!";
}

std::string no_module(const std::string &key) {
    return "Psm_name [" + key + "] not present in sysdb inventory, discard it!";
}

const std::vector<Entry> &entries() {
    static const std::string endless(5000, 'x');
    static const std::vector<Entry> all{
        {"Ots0/1/0/1", true, false, {}, {}, "0/1-PSM-OM"},
        {"Ots0/2/0/1", true, false, {}, {}, "0/2-PSM-OM"},
        {"Ots0/1/0/2", false, true, {wrong_port("Ots0/1/0/2", "2")}, {}, ""},
        {"Ots0/2/0/2", false, true, {wrong_port("Ots0/2/0/2", "2")}, {}, ""},
        {"Ots0/1/0/0", false, false, {wrong_port("Ots0/1/0/0", "0")}, {wrong_port("Ots0/1/0/0", "0")}, ""},
        {"Ots0/1/0/3", false, false, {wrong_port("Ots0/1/0/3", "3")}, {wrong_port("Ots0/1/0/3", "3")}, ""},
        {"Ots0/3/0/1", false, false, {no_module("0/3-PSM-OM")}, {wrong_port("Ots0/3/0/1", "1")}, ""},
        {"Ots0/3/0/2", false, false, {wrong_port("Ots0/3/0/2", "2")}, {no_module("0/3-PSM-OM")}, ""},
        {"Ots0/0/0/1", false, false, {no_module("0/0-PSM-OM")}, {wrong_port("Ots0/0/0/1", "1")}, ""},
        {"Ots0/4/0/1", false, false, {wrong_slot("Ots0/4/0/1", "4")}, {wrong_port("Ots0/4/0/1", "1")}, ""},
        {"Ots0/4/0/2", false, false, {wrong_port("Ots0/4/0/2", "2")}, {wrong_slot("Ots0/4/0/2", "4")}, ""},
        {"Ots0/-1/0/1", false, false, {wrong_slot("Ots0/-1/0/1", "-1")}, {wrong_port("Ots0/-1/0/1", "1")}, ""},
        {"abc", false, false, {wrong_port("abc", "-1")}, {wrong_port("abc", "-1")}, ""},
        {"", false, false, {wrong_port("", "-1")}, {wrong_port("", "-1")}, ""},
        {"0/1-PSM-OM", false, false, {wrong_port("0/1-PSM-OM", "-1")}, {wrong_port("0/1-PSM-OM", "-1")}, ""},
        {endless, false, false, {wrong_port(endless, "-1")}, {wrong_port(endless, "-1")}, ""},
        {std::nullopt, false, false, {"controller_name is NULL !"}, {"controller_name is NULL !"}, ""},
    };
    return all;
}

struct List {
    const char *suffix;
    const char *path;
    bool accepts_secondary;
};

constexpr List lists[] = {
    {ports, "/ots-oper/ots-ports/ots-port", true},
    {histories,
     "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history", false},
};

class NativeListCallback : public NativeCallback {
protected:
    kerrno run(const List &list, const Entry &entry) {
        platform.node_info["name"] = entry.name;
        platform.forget();
        kidl_yfw_datatree *const node = build(container("entry", {leaf("name", "none of these")})).root();
        const kerrno result = call(walker(list.suffix).callback())(request.ctx(), node, dest);
        return result;
    }

    static std::string lookup(const List &list) {
        return std::string("get_node_info(ctx, \"") + list.path + "\", \"name\")";
    }

    static std::string opening(const Entry &entry) {
        return "search_or_add_list(ctx, dest, modules, \"/aps/aps-modules/aps-module\", \"" + entry.module +
               "\", \"name\", ns=openconfig)";
    }

    static Lines expected_errors(const List &list, const Entry &entry) {
        Lines lines = entry.errors;
        if (list.accepts_secondary) {
            append(lines, entry.second_errors);
        }
        return lines;
    }

    // What a list makes of an entry, the opening returning `opened` and the lookup `looked_up`.
    static kerrno expected(const List &list, const Entry &entry, bool opens, kerrno opened, kerrno looked_up) {
        if (entry.is_primary) {
            return opens ? opened : looked_up;
        }
        return entry.is_secondary && list.accepts_secondary ? looked_up : skip;
    }

    void expect_entries(std::uint32_t kind, kerrno opened, kerrno looked_up) {
        request.set_kind(kind);
        for (const List &list : lists) {
            for (const Entry &entry : entries()) {
                SCOPED_TRACE(std::string(list.suffix) + " " + entry.name.value_or("none").substr(0, 20) + " kind " +
                             std::to_string(kind));
                const bool opens = kind == YFW_KIND_GET;
                EXPECT_EQ(run(list, entry), expected(list, entry, opens, opened, looked_up));
                Lines calls{lookup(list)};
                if (entry.is_primary && opens) {
                    calls.push_back(opening(entry));
                }
                EXPECT_EQ(done(), calls);
                EXPECT_EQ(errors(), expected_errors(list, entry));
                // Its own traces: Start, and nothing else.
                std::vector<std::string> own;
                for (const fake::TraceRecord &record : platform.traced()) {
                    if (record.function == walker(list.suffix).callback()) {
                        own.push_back(record.level + " " + record.text);
                    }
                }
                EXPECT_EQ(own, Lines{"TRC Start"});
                EXPECT_EQ(platform.traced().front().function, walker(list.suffix).callback());
                drop_trees();
            }
        }
    }
};

TEST_F(NativeListCallback, OpensTheModuleOfItsFirstPortInTheReadOfState) {
    expect_entries(YFW_KIND_GET, 0, 0);
}

TEST_F(NativeListCallback, OpensNothingInOtherRequests) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 15u}) {
        expect_entries(kind, 0, 0);
    }
}

TEST_F(NativeListCallback, ReturnsWhatTheOpeningReturns) {
    platform.answer("search_or_add_list", open_code);
    expect_entries(YFW_KIND_GET, open_code, 0);
    expect_entries(YFW_KIND_GET_CONFIG, open_code, 0);
}

TEST_F(NativeListCallback, PassesASkipOfTheOpeningOn) {
    platform.answer("search_or_add_list", skip);
    expect_entries(YFW_KIND_GET, skip, 0);
}

// The lookup's result counts where nothing else is done.
TEST_F(NativeListCallback, ReturnsTheLookupsResultWhereItOpensNothing) {
    lookup_result = lookup_code;
    expect_entries(YFW_KIND_GET, 0, lookup_code);
    expect_entries(YFW_KIND_GET_CONFIG, 0, lookup_code);
}

TEST_F(NativeListCallback, SkipsAnEntryWhoseKeyIsNotFound) {
    platform.answer("get_node_info", lookup_code); // with no text
    for (const List &list : lists) {
        EXPECT_EQ(run(list, entries().front()), skip);
        EXPECT_EQ(done(), Lines{lookup(list)});
        EXPECT_EQ(errors(), Lines(list.accepts_secondary ? 2 : 1, "controller_name is NULL !"));
    }
}

// The name is the framework's to say, not the node's.
TEST_F(NativeListCallback, AsksForItsKeyWhateverItsNodeHolds) {
    for (const List &list : lists) {
        for (const Node &node : {container("other"), leaf("name", "Ots0/2/0/1"), leaf("x").untagged(),
                                 container("entry").without_array(3)}) {
            platform.node_info["name"] = "Ots0/1/0/1";
            platform.forget();
            EXPECT_EQ(call(walker(list.suffix).callback())(request.ctx(), build(node).root(), dest), 0u);
            EXPECT_EQ(done(), (Lines{lookup(list), opening(entries().front())}));
        }
        drop_trees();
    }
}

TEST_F(NativeListCallback, HandsOnARequestWithoutModules) {
    request.state.module_list = nullptr;
    EXPECT_EQ(run(lists[0], entries().front()), 0u);
    EXPECT_EQ(done().back(), "search_or_add_list(ctx, dest, null, \"/aps/aps-modules/aps-module\", \"0/1-PSM-OM\", "
                             "\"name\", ns=openconfig)");
}

// Each check looks into the inventory by itself, and only when name, port and slot are right.
TEST_F(NativeListCallback, ReadsTheInventoryOncePerGoodName) {
    struct Case {
        const char *name;
        std::size_t ports;
        std::size_t histories;
    };
    for (const Case &given : {Case{"Ots0/1/0/1", 1, 1}, Case{"Ots0/1/0/2", 1, 0}, Case{"Ots0/1/0/0", 0, 0},
                              Case{"Ots0/3/0/1", 1, 1}, Case{"Ots0/3/0/2", 1, 0}, Case{"Ots0/4/0/1", 0, 0}}) {
        const Entry entry{given.name, false, false, {}, {}, ""};
        run(lists[0], entry);
        EXPECT_EQ(platform.count("sysdb_item_get"), given.ports) << given.name;
        run(lists[1], entry);
        EXPECT_EQ(platform.count("sysdb_item_get"), given.histories) << given.name;
    }
}

// ---- what a callback returns is what its conversion returns ----

class NativeForward : public NativeCallback {
protected:
    NativeForward() {
        // The look for the client library's file comes once in a process.
        platform.node_info["name"] = "Ots0/1/0/1";
        call(walker(ports).callback())(request.ctx(), build(leaf("x")).root(), dest);
        drop_trees();
        platform.forget();
    }

    // Everything that was done and said since the last time, but for numbers that go on counting.
    [[nodiscard]] Lines everything() const {
        Lines lines;
        for (std::string line : platform.calls(fake::Everything & ~fake::Filter)) {
            for (const char *const mark : {" #", "handle "}) {
                const std::size_t found = line.find(mark);
                if (found != std::string::npos && (line[0] == 't' || line.compare(0, 5, "sysdb") == 0)) {
                    line.erase(found, line.find_first_of(",) ", found + std::string(mark).size()) - found);
                }
            }
            lines.push_back(line);
        }
        return lines;
    }

    // The functions whose name says that they convert, as far as they have traced something.
    [[nodiscard]] std::set<std::string> converting() const {
        std::set<std::string> names;
        for (const fake::TraceRecord &record : platform.traced()) {
            const std::string end = "_to_high";
            if (record.function.size() > end.size() &&
                record.function.compare(record.function.size() - end.size(), end.size(), end) == 0) {
                names.insert(record.function);
            }
        }
        return names;
    }

    // Callback and conversion with the same arguments; a callback may trace Start in front.
    void expect_same(const std::string &callback, const std::string &conversion, const kidl_yfw_datatree *source,
                     bool starts) {
        platform.forget();
        const kerrno direct = call(conversion)(request.ctx(), source, dest);
        const Lines expected = everything();
        platform.forget();
        EXPECT_EQ(call(callback)(request.ctx(), source, dest), direct) << callback;
        Lines lines = everything();
        if (starts) {
            ASSERT_GE(lines.size(), 2u);
            EXPECT_EQ(lines[0], "log TRC Start");
            EXPECT_EQ(lines[1], "trace TRC " + callback + " Start");
            lines.erase(lines.begin(), lines.begin() + 2);
        }
        EXPECT_EQ(lines, expected) << callback;
    }
};

struct Leaf {
    const char *suffix;
    const char *conversion;
    const char *first_written; // for the first port of a module, below the module
};

const std::vector<Leaf> &leaves() {
    static const std::vector<Leaf> all{
        {"lvla_slot_relativeswitchthreshold_psmrelativeswitchthreshold", "oc_opt_psm_cfg_relative_switch_th_to_high",
         "config/relative-switch-threshold"},
        {"lvla_slot_relativeswitchthreshold_psmrelativeswitchthresholdoffset",
         "oc_opt_psm_cfg_relative_switch_th_offset_to_high", "config/relative-switch-threshold-offset"},
        {"lvla_slot_revertive_enable", "oc_opt_psm_cfg_revertive_to_high", "config/revertive"},
        {"lvla_slot_revertive_wtr", "oc_opt_psm_cfg_wtr_to_high", "config/wait-to-restore-time"},
        {"lvla_slot_psm_lockoutfrom", "oc_opt_psm_cfg_lockout_from_to_high", "config/force-to-port"},

        {"lvla_optics_rxthreshold_rxthreshold", "oc_opt_psm_cfg_th_to_high", "config/primary-switch-threshold"},
        {"lvla_optics_opticsotsrxvoaattenuation", "oc_opt_psm_cfg_rx_attenuation_to_high",
         "ports/line-primary-in/config/target-attenuation"},
        {"lvla_optics_opticsotsrxlowthresholddelta", "oc_opt_psm_cfg_th_hyst_to_high",
         "config/primary-switch-hysteresis"},
        {"lvla_optics_opticsotstxvoaattenuation", "oc_opt_psm_cfg_tx_attenuation_to_high",
         "ports/line-primary-out/config/target-attenuation"},

        {"lvla_otsoper_lanedata_receivepower", "oc_opt_psm_state_rx_instant_power_to_high",
         "ports/line-primary-in/state/optical-power/instant"},
        {"lvla_otsoper_lanedata_transmitpower", "oc_opt_psm_state_tx_instant_power_to_high",
         "ports/line-primary-out/state/optical-power/instant"},
        {"lvla_otsoper_otsinfo_rxvoaattenuation", "oc_opt_psm_state_rx_attenuation_to_high",
         "ports/line-primary-in/state/attenuation"},
        {"lvla_otsoper_otsinfo_txvoaattenuation", "oc_opt_psm_state_tx_attenuation_to_high",
         "ports/line-primary-out/state/attenuation"},
        {"lvla_otsoper_otsinfo_portstatus", "oc_opt_psm_state_active_path_to_high", "state/active-path"},
        {"lvla_otsoper_otsinfo_rxlowthreshold", "oc_opt_psm_state_th_to_high", "state/primary-switch-threshold"},
        {"lvla_otsoper_otsinfo_rxthrfaillowdeltaval", "oc_opt_psm_state_th_hyst_to_high",
         "state/primary-switch-hysteresis"},
        {"lvla_otsoper_otsport_name", "oc_opt_psm_state_get_psm_key_to_high", "state/name"},
        {"lvla_opticsoper_opticsport_name", "oc_opt_psm_state_get_psm_key_to_high", "state/name"},

        {"lvla_performancemanagementhistory_opt_minimum", "oc_opt_psm_state_tx_min_power_to_high",
         "ports/line-primary-out/state/optical-power/min"},
        {"lvla_performancemanagementhistory_opt_average", "oc_opt_psm_state_tx_avg_power_to_high",
         "ports/line-primary-out/state/optical-power/avg"},
        {"lvla_performancemanagementhistory_opt_maximum", "oc_opt_psm_state_tx_max_power_to_high",
         "ports/line-primary-out/state/optical-power/max"},
        {"lvla_performancemanagementhistory_opr_minimum", "oc_opt_psm_state_rx_min_power_to_high",
         "ports/line-primary-in/state/optical-power/min"},
        {"lvla_performancemanagementhistory_opr_average", "oc_opt_psm_state_rx_avg_power_to_high",
         "ports/line-primary-in/state/optical-power/avg"},
        {"lvla_performancemanagementhistory_opr_maximum", "oc_opt_psm_state_rx_max_power_to_high",
         "ports/line-primary-in/state/optical-power/max"},

        {"lvla_interfaceconfigurations_interfaceconfiguration_interfacename", "interface_psm_key_to_high", "name"},
    };
    return all;
}

class NativeLeafCallback : public NativeForward {
protected:
    void set_controller(const std::optional<std::string> &name) {
        platform.node_info["name"] = name;
        platform.node_info["interface-name"] = name;
        platform.node_info["slot-id"] = "2";
    }

    kidl_yfw_datatree *source(const std::optional<std::string> &value) {
        drop_trees();
        return build(value ? leaf("leaf", *value) : leaf("leaf"), "source").root();
    }

    [[nodiscard]] std::string first_write() const {
        for (const std::string &line : platform.calls(fake::Output)) {
            if (line.compare(0, 4, "add(") == 0 || line.compare(0, 7, "stitch(") == 0) {
                return line;
            }
        }
        return "nothing was written";
    }
};

TEST_F(NativeLeafCallback, GoesToItsConversion) {
    std::size_t rows = 0;
    for (const Leaf &row : leaves()) {
        ++rows;
        set_controller("Ots0/2/0/1");
        // Leaves that are keys carry the name themselves.
        const std::string suffix = row.suffix;
        const bool is_name = suffix.compare(suffix.size() - 4, 4, "name") == 0;
        kidl_yfw_datatree *const node = source(is_name ? "Ots0/2/0/1" : "-25");
        platform.forget();
        EXPECT_EQ(call(walker(suffix).callback())(request.ctx(), node, dest), 0u) << suffix;
        EXPECT_EQ(converting(), std::set<std::string>{row.conversion}) << suffix;
        EXPECT_NE(first_write().find(std::string("\"/aps/aps-modules/aps-module/") + row.first_written + "\""),
                  std::string::npos)
            << suffix << ": " << first_write();
    }
    EXPECT_EQ(rows, walkers_of(Kind::leaf).size() - 5) << "those of preconfigured nodes have none";
}

TEST_F(NativeLeafCallback, ReturnsWhatItsConversionReturns) {
    platform.answer("add", 0x5a1); // whatever becomes of the leaf
    for (const Leaf &row : leaves()) {
        for (const auto &name : {std::optional<std::string>("Ots0/2/0/1"), std::optional<std::string>("Ots0/2/0/2"),
                                 std::optional<std::string>("Ots0/2/0/0"), std::optional<std::string>("Ots0/3/0/1"),
                                 std::optional<std::string>()}) {
            set_controller(name);
            for (const std::uint32_t kind : {0u, 10u}) {
                request.set_kind(kind);
                for (const auto &value : {std::optional<std::string>("-25"), name, std::optional<std::string>()}) {
                    lookup_result = lookup_code;
                    expect_same(walker(row.suffix).callback(), row.conversion, source(value), false);
                    lookup_result.reset();
                    expect_same(walker(row.suffix).callback(), row.conversion, source(value), false);
                }
            }
        }
    }
}

// The key of an interface has a callback between the generated one and the conversion.
TEST_F(NativeLeafCallback, OfAnInterfaceNameIsTheHandWrittenOne) {
    const std::string name = walker("lvla_interfaceconfigurations_interfaceconfiguration_interfacename").callback();
    const std::string hand_written = "ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_"
                                     "interfaceconfiguration_interfacename";
    for (const char *value : {"Ots0/2/0/1", "Ots0/2/0/2", "Ots0/5/0/1", "GigE0"}) {
        expect_same(name, hand_written, source(value), false);
    }
}

// What glibc prints of the assertion that a leaf's conversion makes, since the callback makes none.
using NativeLeafCallbackDeathTest = NativeLeafCallback;

TEST_F(NativeLeafCallbackDeathTest, ReachesItsConversionWithoutAContext) {
    kidl_yfw_datatree *const node = source("-25");
    for (const Leaf &row : leaves()) {
        EXPECT_DEATH(call(walker(row.suffix).callback())(nullptr, node, dest),
                     ::testing::HasSubstr(std::string(": kerrno ") + row.conversion +
                                          "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree "
                                          "*): Assertion `((void *)0) != ctx' failed."))
            << row.suffix;
    }
}

// ---- interfaces ----

class NativeInterfaceCallback : public NativeForward {
protected:
    // An entry on top of the hierarchy, below the container of all.
    kidl_yfw_datatree *entry(const std::string &name) {
        drop_trees();
        Tree &tree = build(container("interface-configurations",
                                     {container("interface-configuration", {leaf("interface-name", name)})}));
        request.state.answer_root = tree.root();
        platform.hierarchy.clear();
        yfw_map_add_to_node_hierarchy(request.ctx(), tree.root(), 1);
        yfw_map_add_to_node_hierarchy(request.ctx(), tree.at("interface-configuration"), 2);
        return tree.at("interface-configuration");
    }
};

TEST_F(NativeInterfaceCallback, ReturnsWhatItsConversionReturns) {
    platform.answer("add", 0x5a1, 1);
    platform.answer("add", 0x5a2, 2);
    Tree request_for_another(
        container("aps", {container("aps-modules", {container("aps-module", {leaf("name", "0/3-PSM-OM")})})}));
    for (const bool filtered : {false, true}) {
        request.state.request_root = filtered ? request_for_another.root() : nullptr;
        for (const std::uint32_t kind : {0u, 1u, 10u}) {
            request.set_kind(kind);
            for (const char *name : {"Ots0/2/0/1", "Ots0/2/0/2", "Ots0/2/0/0", "Ots0/3/0/1", "GigE0/0/0/0", ""}) {
                expect_same(walker(interfaces).callback(), "oc_opt_psm_if_list_cfg_to_high", entry(name), true);
                EXPECT_EQ(converting(), std::set<std::string>{"oc_opt_psm_if_list_cfg_to_high"});
            }
        }
    }
}

TEST_F(NativeInterfaceCallback, ThreeResultsByHand) {
    platform.answer("add", 0x5a1, 1);
    platform.answer("add", 0x5a2, 2);
    const fake::Callback callback = call(walker(interfaces).callback());
    platform.forget();
    EXPECT_EQ(callback(request.ctx(), entry("Ots0/2/0/1"), dest), 0x5a1u) << "the add of the module";
    request.set_kind(YFW_KIND_GET_CONFIG);
    platform.forget();
    EXPECT_EQ(callback(request.ctx(), entry("Ots0/2/0/1"), dest), 0x5a2u) << "that of its name";
    Tree request_for_another(
        container("aps", {container("aps-modules", {container("aps-module", {leaf("name", "0/1-PSM-OM")})})}));
    request.state.request_root = request_for_another.root();
    EXPECT_EQ(callback(request.ctx(), entry("Ots0/2/0/1"), dest), skip) << "another module is asked for";
}

} // namespace
} // namespace native_test
