// Whole answers of every native model, with modules in slots 1 and 3: the exact list of what is written, in order.
#include "native_support.hpp"

namespace native_test {
namespace {

constexpr char ots_cfg[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
constexpr char mda_cfg[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg";
constexpr char ifmgr_cfg[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";
constexpr char optics_cfg[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg";
constexpr char ots_oper[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper";
constexpr char optics_oper[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-oper";
constexpr char pmengine_oper[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper";

constexpr char module_1[] = "0/1-PSM-OM";
constexpr char module_3[] = "0/3-PSM-OM";

std::string stitch(const std::string &module, const std::string &leaf, const std::string &value) {
    return "stitch(in_use=1, dest, kind=3, ns=openconfig, value=\"" + value +
           "\", \"/aps/aps-modules/aps-module[name=" + module + "]/" + leaf + "\", \"/aps/aps-modules/aps-module/" +
           leaf + "\")";
}

std::string add(const std::string &leaf, const std::string &value) {
    return "add(dest, \"/aps/aps-modules/aps-module/" + leaf + "\", ns=openconfig, value=\"" + value +
           "\", src=none, result=none, 0, 0)";
}

std::string add_module() {
    return "add(dest, \"/aps/aps-modules/aps-module\", ns=openconfig, value=null, src=none, result=none, 1, 0)";
}

std::string open_module(const std::string &module) {
    return "search_or_add_list(dest, modules, \"/aps/aps-modules/aps-module\", \"" + module +
           "\", \"name\", ns=openconfig)";
}

std::string printed() {
    return "print_datatree(registered, \"reg_dup_datatree\")";
}

std::string push(const std::string &entry) {
    return "output_push(" + entry + ", dest)";
}

std::string pop(const std::string &entry) {
    return "output_pop(" + entry + ", dest)";
}

fake::Bag bag_of(std::vector<fake::Token> tokens) {
    fake::Bag bag;
    bag.tokens = std::move(tokens);
    bag.tokens.push_back(fake::mark_token(BAG_TOKEN_END));
    return bag;
}

class NativeAnswer : public NativeTest {
protected:
    NativeAnswer() : registered_(container("aps")) {
        use_conversions();
        look_up_in_hierarchy();
        put_inventory("1");
        put_inventory("3");
        request.state.module_list = reinterpret_cast<yfw_map_module_list *>(&module_list_);
        platform.name(&module_list_, "modules");
        request.state.request_root = registered_.root();
        platform.name(registered_.root(), "registered");
    }

    // Walks a whole answer of a model, and lets the checker say what it leaves behind.
    kerrno answer(const std::string &entry, const Node &node, const std::string &model) {
        Tree &tree = build(in_model(node, model), "answer");
        request.state.answer_root = tree.root();
        return walk(entry, tree);
    }

    // Records of slot 1 only: hundredths, and configured tenths.
    void put_records_of_slot_1() {
        using fake::mark_token;
        using fake::number_token;
        using fake::text_token;
        const auto info = [](std::int64_t rx_attenuation, std::int64_t tx_attenuation, std::int64_t rx,
                             std::int64_t tx) {
            return fake::bag_item(bag_of(
                {mark_token(BAG_TOKEN_STRUCT_START, "Ots_edm_info"),
                 number_token(BAG_TOKEN_INT32, "RxVoaAttenuation", rx_attenuation),
                 number_token(BAG_TOKEN_INT32, "TxVoaAttenuation", tx_attenuation), mark_token(BAG_TOKEN_STRUCT_END),
                 mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"), mark_token(BAG_TOKEN_STRUCT_START, "LaneData"),
                 number_token(BAG_TOKEN_INT32, "ReceivePower", rx), number_token(BAG_TOKEN_INT32, "TransmitPower", tx),
                 mark_token(BAG_TOKEN_STRUCT_END), mark_token(BAG_TOKEN_STRUCT_END)}));
        };
        platform.items["/oper/ots/if/Ots0_1_0_2/ots_info"] = info(250, 125, -1811, 322);
        platform.items["/oper/ots/if/Ots0_1_0_0/ots_info"] = info(0, 0, 0, -95);
        platform.items["/cfg/if/act/Ots0_1_0_2/Optics/rx_attenuation"] = fake::integer_item(47);
        platform.items["/cfg/if/act/Ots0_1_0_2/Optics/tx_attenuation"] = fake::integer_item(-3);
        const auto history = [](const char *rx, const char *tx) {
            return fake::bag_item(bag_of(
                {mark_token(BAG_TOKEN_STRUCT_START, "pm_optics_paras"), mark_token(BAG_TOKEN_STRUCT_START, "OPR"),
                 text_token("Minimum", rx), text_token("Average", rx), text_token("Maximum", rx),
                 mark_token(BAG_TOKEN_STRUCT_END), mark_token(BAG_TOKEN_STRUCT_START, "OPT"), text_token("Minimum", tx),
                 text_token("Average", tx), text_token("Maximum", tx), mark_token(BAG_TOKEN_STRUCT_END),
                 mark_token(BAG_TOKEN_STRUCT_END)}));
        };
        const std::string histories = "/oper/perfmgmt/gl/periodic/optics/interface/";
        platform.items[histories + "Ots0_1_0_2/30sec/optics/1/timeline_rev/0x1"] = history("  -18.3 ", "3.10");
        platform.items[histories + "Ots0_1_0_0/30sec/optics/1/timeline_rev/0x1"] = history("70", "-1.5");
    }

private:
    Tree registered_;
    int module_list_ = 0;
};

// ---- Vexlo-ORBIT-controller-tlm2200-ots-oper ----

Node ots_port(const std::string &name, const std::string &status, const std::string &threshold) {
    return container(
        "ots-port",
        {leaf("name", name),
         container("ots-info", {leaf("rx-voa-attenuation", "350"), leaf("tx-voa-attenuation", "-7"),
                                leaf("port-status", status), leaf("rx-low-threshold", threshold),
                                leaf("rx-thr-fail-low-delta-val", "15"), leaf("led-color", "green"),
                                container("lane-data", {leaf("lane-index", "1"), leaf("receive-power", "-1234"),
                                                        leaf("transmit-power", "305")})})});
}

Node ots_answer() {
    return container(
        "ots-oper", {container("ots-ports",
                               {ots_port("Ots0/1/0/0", "active", "-100"), ots_port("Ots0/1/0/1", "active", "-250"),
                                ots_port("Ots0/1/0/2", "standby", "-255"), ots_port("Ots0/3/0/0", "active", "-100"),
                                ots_port("Ots0/3/0/1", "standby", "-300"), ots_port("Ots0/3/0/2", "active", "-305")})});
}

TEST_F(NativeAnswer, OfLinePorts) {
    put_records_of_slot_1();
    EXPECT_EQ(answer("lvla_otsoper", ots_answer(), ots_oper), 0u);
    const std::string at = "answer/ots-ports/ots-port";
    EXPECT_EQ(output(),
              (Lines{// slot 1, port 1: the module's own values, and those of its other ports from the database
                     open_module(module_1), push(at + "[2]"), printed(), stitch(module_1, "state/name", module_1),
                     stitch(module_1, "ports/line-primary-in/state/attenuation", "3.50"),
                     stitch(module_1, "ports/line-secondary-in/state/attenuation", "2.50"),
                     add("ports/line-secondary-in/config/target-attenuation", "4.70"),
                     stitch(module_1, "ports/line-secondary-in/state/target-attenuation", "4.70"),
                     stitch(module_1, "ports/line-primary-out/state/attenuation", "-0.07"),
                     stitch(module_1, "ports/line-secondary-out/state/attenuation", "1.25"),
                     add("ports/line-secondary-out/config/target-attenuation", "-0.30"),
                     stitch(module_1, "ports/line-secondary-out/state/target-attenuation", "-0.30"),
                     stitch(module_1, "state/active-path", "PRIMARY"),
                     stitch(module_1, "state/primary-switch-threshold", "-25.00"),
                     stitch(module_1, "state/primary-switch-hysteresis", "1.50"),
                     stitch(module_1, "ports/line-primary-in/state/optical-power/instant", "-12.34"),
                     stitch(module_1, "ports/line-secondary-in/state/optical-power/instant", "-18.11"),
                     stitch(module_1, "ports/line-primary-out/state/optical-power/instant", "3.05"),
                     stitch(module_1, "ports/line-secondary-out/state/optical-power/instant", "3.22"),
                     stitch(module_1, "ports/common-output/state/optical-power/instant", "-0.95"), pop(at + "[2]"),
                     // port 2: its threshold alone
                     push(at + "[3]"), printed(), stitch(module_1, "state/secondary-switch-threshold", "-25.50"),
                     pop(at + "[3]"),
                     // slot 3: nothing in the database
                     open_module(module_3), push(at + "[5]"), printed(), stitch(module_3, "state/name", module_3),
                     stitch(module_3, "ports/line-primary-in/state/attenuation", "3.50"),
                     stitch(module_3, "ports/line-primary-out/state/attenuation", "-0.07"),
                     stitch(module_3, "state/active-path", "SECONDARY"),
                     stitch(module_3, "state/primary-switch-threshold", "-30.00"),
                     stitch(module_3, "state/primary-switch-hysteresis", "1.50"),
                     stitch(module_3, "ports/line-primary-in/state/optical-power/instant", "-12.34"),
                     stitch(module_3, "ports/line-primary-out/state/optical-power/instant", "3.05"), pop(at + "[5]"),
                     push(at + "[6]"), printed(), stitch(module_3, "state/secondary-switch-threshold", "-30.50"),
                     pop(at + "[6]")}));
    // All keys are marked, those of rejected entries too.
    EXPECT_EQ(changes(), (Lines{at + "/name: key", at + "[2]/name: key", at + "[3]/name: key", at + "[4]/name: key",
                                at + "[5]/name: key", at + "[6]/name: key"}));
    Lines expected;
    for (int entry = 0; entry < 4; ++entry) {
        expected.push_back("TRC lvla_otsoper_otsport_otsinfo: Unsupported tag `led-color`. Ignoring.");
        expected.push_back("TRC lvla_otsoper_otsinfo_lanedata: Unsupported tag `lane-index`. Ignoring.");
    }
    EXPECT_EQ(messages(), expected) << "of the entries that are walked";
}

// In other requests the answer is accepted, and no child is reached.
TEST_F(NativeAnswer, OfLinePortsToAnotherRequest) {
    put_records_of_slot_1();
    for (const std::uint32_t kind : {0u, 1u, 8u}) {
        request.set_kind(kind);
        platform.forget();
        EXPECT_EQ(answer("lvla_otsoper", ots_answer(), ots_oper), 0u);
        EXPECT_EQ(story(), (Lines{"+lvla_otsoper", "add_to_hierarchy(answer, 1)", "cont_lvla_otsoper(answer, 1)",
                                  "TRC lvla_otsoper: Unsupported tag `ots-ports`. Ignoring.",
                                  "remove_from_hierarchy(answer)", "-lvla_otsoper"}));
        EXPECT_EQ(changes(), Lines{});
        drop_trees();
    }
}

// Modules whose equipment is gone leave nothing.
TEST_F(NativeAnswer, OfLinePortsOfAModuleThatWasPulled) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f3-PSM-OM/attrib/inv_basic_bag");
    EXPECT_EQ(answer("lvla_otsoper", ots_answer(), ots_oper), 0u);
    for (const std::string &line : output()) {
        EXPECT_EQ(line.find("0/3-PSM-OM"), std::string::npos) << line;
    }
    EXPECT_EQ(platform.count("search_or_add_list"), 1u);
    EXPECT_EQ(platform.count("output_push"), 2u);
    EXPECT_EQ(platform.count("output_pop"), 2u);
}

TEST_F(NativeAnswer, OfLinePortsWithAnXpathError) {
    Tree &tree = build(in_model(ots_answer(), ots_oper), "answer");
    kidl_yfw_datatree *const error = tree.at("ots-ports/ots-port[2]/ots-info/port-status");
    error->hierarchy_kind = 5;
    error->second_flags = 4;
    EXPECT_EQ(walk("lvla_otsoper", tree), 0u);
    EXPECT_EQ(changes().back(), "request: xpath error");
    const Lines written = output();
    EXPECT_EQ(std::count(written.begin(), written.end(), stitch(module_1, "state/active-path", "PRIMARY")), 1);
    EXPECT_EQ(std::count(written.begin(), written.end(), stitch(module_3, "state/active-path", "SECONDARY")), 1);
}

// ---- Vexlo-ORBIT-controller-optics-oper ----

TEST_F(NativeAnswer, OfOpticsPorts) {
    std::vector<Node> entries;
    for (const char *name :
         {"Ots0/1/0/0", "Ots0/1/0/1", "Ots0/1/0/2", "GigE0", "Ots0/2/0/1", "Ots0/3/0/2", "Ots0/3/0/1"}) {
        entries.push_back(container("optics-port", {leaf("name", name), container("optics-info", {leaf("x", "1")})}));
    }
    EXPECT_EQ(answer("lvla_opticsoper", container("optics-oper", {container("optics-ports", entries)}), optics_oper),
              0u);
    const std::string at = "answer/optics-ports/optics-port";
    EXPECT_EQ(output(), (Lines{push(at),         printed(),
                               pop(at),          push(at + "[2]"),
                               printed(),        stitch(module_1, "state/name", module_1),
                               pop(at + "[2]"),  push(at + "[3]"),
                               printed(),        pop(at + "[3]"),
                               push(at + "[4]"), printed(),
                               pop(at + "[4]"),  push(at + "[5]"),
                               printed(),        pop(at + "[5]"),
                               push(at + "[6]"), printed(),
                               pop(at + "[6]"),  push(at + "[7]"),
                               printed(),        stitch(module_3, "state/name", module_3),
                               pop(at + "[7]")}));
    // Those that the key's conversion accepts go on to their other children.
    EXPECT_EQ(messages(),
              Lines(4, "TRC lvla_opticsoper_opticsports_opticsport: Unsupported tag `optics-info`. Ignoring."));
}

// ---- Vexlo-ORBIT-pmengine-oper ----

Node powers(const char *tag, const char *minimum, const char *average, const char *maximum) {
    return container(tag, {leaf("minimum", minimum), leaf("average", average), leaf("maximum", maximum)});
}

Node port_history(const std::string &name, const std::vector<Node> &instances) {
    return container(
        "optics-port-history",
        {leaf("name", name),
         container("optics-second30-history",
                   {container("optics-second30-optics-histories",
                              {container("optics-second30-optics-history",
                                         {leaf("number", "1"),
                                          container("optics-second30-optics-time-line-instances", instances)})})})});
}

Node instance(const Node &opt, const Node &opr) {
    return container("optics-second30-optics-time-line-instance", {leaf("number", "1"), opt, opr});
}

Node histories(const std::vector<Node> &ports) {
    return container(
        "performance-management-history",
        {container("global", {container("periodic",
                                        {container("optics-history", {container("optics-port-histories", ports)})})})});
}

TEST_F(NativeAnswer, OfHistories) {
    put_records_of_slot_1();
    const Node one = instance(powers("opt", "  1.5 ", "2", "2.25"), powers("opr", "-12.3", "-12.25", " -12"));
    std::vector<Node> ports;
    for (const char *name : {"Ots0/1/0/0", "Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/0", "Ots0/3/0/1", "Ots0/3/0/2"}) {
        ports.push_back(port_history(name, {one}));
    }
    EXPECT_EQ(answer("lvla_performancemanagementhistory", histories(ports), pmengine_oper), 0u);

    const std::string at = "answer/global/periodic/optics-history/optics-port-histories/optics-port-history";
    const std::string in = "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
    const std::string deep =
        in + "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance";
    const std::string power = "/state/optical-power/";
    Lines expected{open_module(module_1), push(at + "[2]"), push(at + "[2]" + in), push(at + "[2]" + deep)};
    const struct {
        const char *leaf;
        const char *transmitted;
        const char *received;
    } rows[] = {{"min", "1.50", "-12.30"}, {"avg", "2.00", "-12.25"}, {"max", "2.25", "-12.00"}};
    for (const auto &row : rows) {
        append(expected, {stitch(module_1, "ports/line-primary-out" + power + row.leaf, row.transmitted),
                          stitch(module_1, "ports/line-secondary-out" + power + row.leaf, "3.10"),
                          stitch(module_1, "ports/common-output" + power + row.leaf, "-1.50")});
    }
    for (const auto &row : rows) {
        append(expected, {stitch(module_1, "ports/line-primary-in" + power + row.leaf, row.received),
                          stitch(module_1, "ports/line-secondary-in" + power + row.leaf, "-18.30")});
    }
    append(expected, {pop(at + "[2]" + deep), pop(at + "[2]" + in), pop(at + "[2]"), open_module(module_3),
                      push(at + "[5]"), push(at + "[5]" + in), push(at + "[5]" + deep)});
    for (const auto &row : rows) {
        expected.push_back(stitch(module_3, "ports/line-primary-out" + power + row.leaf, row.transmitted));
    }
    for (const auto &row : rows) {
        expected.push_back(stitch(module_3, "ports/line-primary-in" + power + row.leaf, row.received));
    }
    append(expected, {pop(at + "[5]" + deep), pop(at + "[5]" + in), pop(at + "[5]")});
    EXPECT_EQ(output(), expected);
    EXPECT_EQ(changes().size(), 6u + 2u + 2u) << "the names of all, the numbers below the two that are walked";
}

// The controller's name is found above the numbers of the lists in between; ports 0 and 2 are dropped whole.
TEST_F(NativeAnswer, OfHistoriesOfPortsThatAreNoModulesFirst) {
    std::vector<Node> ports;
    for (const char *name : {"Ots0/1/0/2", "Ots0/1/0/0", "Ots0/2/0/1", "abc"}) {
        ports.push_back(port_history(name, {instance(powers("opt", "1", "2", "3"), powers("opr", "1", "2", "3"))}));
    }
    EXPECT_EQ(answer("lvla_performancemanagementhistory", histories(ports), pmengine_oper), 0u);
    EXPECT_EQ(output(), Lines{});
    EXPECT_EQ(changes().size(), 4u);
}

// ---- Vexlo-ORBIT-ifmgr-cfg ----

Node interface(const char *active, const char *name) {
    return container("interface-configuration",
                     {leaf("active", active), leaf("interface-name", name), leaf("description", "a line")});
}

Node interfaces_answer() {
    return container("interface-configurations",
                     {interface("act", "Ots0/1/0/0"), interface("act", "Ots0/1/0/1"), interface("act", "Ots0/1/0/2"),
                      interface("act", "MgmtEth0/RP0/CPU0/0"), interface("act", "Ots0/3/0/2")});
}

TEST_F(NativeAnswer, OfInterfacesToAReadOfTheConfiguration) {
    request.set_kind(YFW_KIND_GET_CONFIG);
    EXPECT_EQ(answer("lvla_interfaceconfigurations", interfaces_answer(), ifmgr_cfg), 0u);
    const std::string at = "answer/interface-configuration";
    EXPECT_EQ(output(),
              (Lines{// port 0: the entry is accepted, its name is not
                     push(at), pop(at),
                     // port 1: the module, named by the entry and again by its key
                     add_module(), stitch(module_1, "name", module_1), add("config/name", module_1), push(at + "[2]"),
                     stitch(module_1, "name", module_1), add("config/name", module_1), pop(at + "[2]"),
                     // port 2 of it adds nothing
                     push(at + "[3]"), pop(at + "[3]"),
                     // another interface
                     push(at + "[4]"), pop(at + "[4]"),
                     // slot 3 has port 2 only: the module comes from that
                     add_module(), stitch(module_3, "name", module_3), add("config/name", module_3), push(at + "[5]"),
                     pop(at + "[5]")}));
    Lines keys;
    for (const char *entry : {"", "[2]", "[3]", "[4]", "[5]"}) {
        keys.push_back(at + entry + "/active: key");
        keys.push_back(at + entry + "/interface-name: key");
    }
    EXPECT_EQ(changes(), keys);
}

TEST_F(NativeAnswer, OfInterfacesToTheReadOfState) {
    EXPECT_EQ(answer("lvla_interfaceconfigurations", interfaces_answer(), ifmgr_cfg), 0u);
    const std::string at = "answer/interface-configuration";
    EXPECT_EQ(output(), (Lines{push(at), pop(at), add_module(), push(at + "[2]"), stitch(module_1, "name", module_1),
                               add("config/name", module_1), pop(at + "[2]"), push(at + "[3]"), pop(at + "[3]"),
                               push(at + "[4]"), pop(at + "[4]"), push(at + "[5]"), pop(at + "[5]")}));
}

// A leaf behind a name that is rejected is not walked: the skip ends its entry.
TEST_F(NativeAnswer, OfInterfacesPassesOverTheRestOfAnEntryThatIsSkipped) {
    EXPECT_EQ(answer("lvla_interfaceconfigurations", interfaces_answer(), ifmgr_cfg), 0u);
    const std::string list = "TRC lvla_interfaceconfigurations_interfaceconfiguration: Unsupported tag `";
    Lines expected;
    for (const bool goes_on : {false, true, true, false, true}) {
        expected.push_back(list + "active`. Ignoring.");
        if (goes_on) {
            expected.push_back(list + "description`. Ignoring.");
        }
    }
    EXPECT_EQ(messages(), expected);
}

TEST_F(NativeAnswer, OfInterfacesToARequestForOneModule) {
    Tree wanted(container("aps", {container("aps-modules", {container("aps-module", {leaf("name", module_3)})})}));
    request.set_kind(YFW_KIND_GET_CONFIG);
    request.state.request_root = wanted.root();
    EXPECT_EQ(answer("lvla_interfaceconfigurations", interfaces_answer(), ifmgr_cfg), 0u);
    const std::string at = "answer/interface-configuration";
    EXPECT_EQ(output(), (Lines{push(at), pop(at), push(at + "[3]"), pop(at + "[3]"), push(at + "[4]"), pop(at + "[4]"),
                               add_module(), stitch(module_3, "name", module_3), add("config/name", module_3),
                               push(at + "[5]"), pop(at + "[5]")}))
        << "the entry of the other module opens no scope";
}

// ---- the augmenting subtrees ----

Node optics(const std::vector<Node> &thresholds) {
    return container("optics",
                     {leaf("optics-ots-rx-voa-attenuation", "35"), leaf("optics-ots-rx-low-threshold-delta", "20"),
                      container("rx-thresholds", thresholds), leaf("optics-ots-tx-voa-attenuation", "-5")});
}

Node threshold(const char *type, const char *value) {
    return container("rx-threshold", {leaf("rx-threshold-type", type), leaf("rx-threshold", value)});
}

TEST_F(NativeAnswer, OfOpticsSettings) {
    struct Case {
        const char *name;
        Lines before; // the attenuation to the line's end and the hysteresis
        std::string threshold;
        Lines after;
    };
    for (const Case &given : {Case{"Ots0/1/0/1",
                                   {add("ports/line-primary-in/config/target-attenuation", "3.50"),
                                    stitch(module_1, "ports/line-primary-in/state/target-attenuation", "3.50"),
                                    add("config/primary-switch-hysteresis", "2.00")},
                                   "config/primary-switch-threshold",
                                   {add("ports/line-primary-out/config/target-attenuation", "-0.50"),
                                    stitch(module_1, "ports/line-primary-out/state/target-attenuation", "-0.50")}},
                              Case{"Ots0/3/0/2",
                                   {add("ports/line-secondary-in/config/target-attenuation", "3.50"),
                                    stitch(module_3, "ports/line-secondary-in/state/target-attenuation", "3.50")},
                                   "config/secondary-switch-threshold",
                                   {add("ports/line-secondary-out/config/target-attenuation", "-0.50"),
                                    stitch(module_3, "ports/line-secondary-out/state/target-attenuation", "-0.50")}},
                              Case{"Ots0/3/0/0", {}, "", {}}}) {
        // The entry that the subtree augments stands on the hierarchy, as the framework keeps it.
        Tree &above =
            build(in_model(container("interface-configuration", {leaf("interface-name", given.name)}), ifmgr_cfg));
        yfw_map_add_to_node_hierarchy(request.ctx(), above.root(), 2);
        platform.forget();
        EXPECT_EQ(answer("augment_lvla_interface_configuration",
                         optics({threshold("low", "-125"), threshold("high", "130")}), optics_cfg),
                  0u);
        const std::string at = "answer/rx-thresholds/rx-threshold";
        Lines expected = given.before;
        expected.push_back(push(at));
        if (!given.threshold.empty()) {
            expected.push_back(add(given.threshold, "-12.50"));
        }
        append(expected, {pop(at), push(at + "[2]")});
        if (!given.threshold.empty()) {
            expected.push_back(add(given.threshold, "13.00"));
        }
        expected.push_back(pop(at + "[2]"));
        append(expected, given.after);
        EXPECT_EQ(output(), expected) << given.name;
        EXPECT_EQ(changes(), (Lines{at + "/rx-threshold-type: key", at + "[2]/rx-threshold-type: key"}));
        EXPECT_EQ(levels(), Lines{"interface-configuration 2"});
        yfw_map_remove_from_node_hierarchy(request.ctx(), above.root());
        drop_trees();
    }
}

Node slot(const char *number) {
    return container(
        "slot",
        {leaf("slot-id", number),
         container("psm", {container("relative-switch-threshold", {leaf("psm-relative-switch-threshold", "-25"),
                                                                   leaf("psm-relative-switch-threshold-offset", "5")}),
                           container("revertive", {leaf("enable", "true"), leaf("wtr", "300000")}),
                           leaf("lockout-from", "working"), leaf("uv-fault", "1")}),
         leaf("card-type", "PSM").in_namespace(fake::foreign)});
}

TEST_F(NativeAnswer, OfSlotSettings) {
    for (const char *number : {"1", "3"}) {
        platform.forget();
        EXPECT_EQ(answer("augment_lvla_active_node", slot(number), ots_cfg), 0u);
        EXPECT_EQ(output(),
                  (Lines{push("answer"), add("config/relative-switch-threshold", "-2.50"),
                         add("state/relative-switch-threshold", "-2.50"),
                         add("config/relative-switch-threshold-offset", "0.50"),
                         add("state/relative-switch-threshold-offset", "0.50"), add("config/revertive", "true"),
                         add("state/revertive", "true"), add("config/wait-to-restore-time", "300000"),
                         add("state/wait-to-restore-time", "300000"), add("config/force-to-port", "SECONDARY"),
                         add("state/force-to-port", "SECONDARY"), pop("answer")}));
        EXPECT_EQ(messages(), (Lines{"TRC augment_lvla_active_node: Processing tag 'slot'",
                                     "TRC lvla_slot: Unsupported tag `slot-id`. Ignoring.",
                                     "TRC lvla_slot_psm: Unsupported tag `uv-fault`. Ignoring."}));
        EXPECT_EQ(changes(), Lines{"answer/slot-id: key"});
        drop_trees();
    }
}

TEST_F(NativeAnswer, OfSlotSettingsToAReadOfTheConfiguration) {
    request.set_kind(YFW_KIND_GET_CONFIG);
    EXPECT_EQ(answer("augment_lvla_active_node", slot("3"), ots_cfg), 0u);
    EXPECT_EQ(output(), (Lines{push("answer"), add("config/relative-switch-threshold", "-2.50"),
                               add("config/relative-switch-threshold-offset", "0.50"), add("config/revertive", "true"),
                               add("config/wait-to-restore-time", "300000"), add("config/force-to-port", "SECONDARY"),
                               pop("answer")}));
}

TEST_F(NativeAnswer, OfPreconfiguredSlotsIsWalkedAndWritesNothing) {
    for (const std::uint32_t kind : {0u, 10u}) {
        request.set_kind(kind);
        platform.forget();
        EXPECT_EQ(answer("augment_lvla_preconfigured_node", slot("1"), ots_cfg), 0u);
        EXPECT_EQ(output(), (Lines{push("answer"), pop("answer")}));
        EXPECT_EQ(platform.count("get_node_info"), 0u);
        EXPECT_EQ(callbacks().size(), 1u + 3u + 5u) << "list, containers, leaves";
        EXPECT_EQ(changes(), Lines{"answer/slot-id: key"});
        drop_trees();
    }
}

// ---- Vexlo-ORBIT-config-mda-cfg ----

// The slots below are the other model's: they are the framework's to hand over, and accepted here.
TEST_F(NativeAnswer, OfActiveNodesOpensScopesAndWritesNothing) {
    const auto node = [](const char *name) {
        return container("active-node", {leaf("node-name", name), leaf("note", "1"),
                                         in_model(slot("1"), ots_cfg).in_namespace(ots_cfg)});
    };
    EXPECT_EQ(answer("lvla_activenodes", container("active-nodes", {node("0/RP0/CPU0"), node("0/1")}), mda_cfg), 0u);
    EXPECT_EQ(output(), (Lines{push("answer/active-node"), pop("answer/active-node"), push("answer/active-node[2]"),
                               pop("answer/active-node[2]")}));
    const std::string list = "TRC lvla_activenodes_activenode: Unsupported tag `";
    EXPECT_EQ(messages(), (Lines{list + "node-name`. Ignoring.", list + "note`. Ignoring.",
                                 list + "node-name`. Ignoring.", list + "note`. Ignoring."}));
    EXPECT_EQ(changes(), (Lines{"answer/active-node/node-name: key", "answer/active-node[2]/node-name: key"}));
}

// ---- size ----

// Every fourth port is the first of a module in place, every fourth a second; the others are none.
TEST_F(NativeAnswer, OfTwoThousandPorts) {
    constexpr std::size_t quarter = 500;
    std::vector<Node> entries;
    Lines expected;
    for (std::size_t i = 0; i < quarter; ++i) {
        for (const char *name : {"Ots0/1/0/0", "Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1"}) {
            entries.push_back(
                container("ots-port", {leaf("name", name), container("ots-info", {leaf("rx-low-threshold", "-250")})}));
        }
        const std::string at = "answer/ots-ports/ots-port[";
        const std::string first = at + std::to_string(4 * i + 2) + "]";
        const std::string second = at + std::to_string(4 * i + 3) + "]";
        append(expected, {open_module(module_1), push(first), printed(), stitch(module_1, "state/name", module_1),
                          stitch(module_1, "state/primary-switch-threshold", "-25.00"), pop(first), push(second),
                          printed(), stitch(module_1, "state/secondary-switch-threshold", "-25.00"), pop(second)});
    }
    EXPECT_EQ(answer("lvla_otsoper", container("ots-oper", {container("ots-ports", entries)}), ots_oper), 0u);
    EXPECT_TRUE(output() == expected);
    EXPECT_EQ(changes().size(), 4 * quarter) << "all keys are marked";
    EXPECT_EQ(platform.count("list_lvla_otsoper_otsports_otsport"), 4 * quarter);
    EXPECT_EQ(platform.count("leaf_lvla_otsoper_otsinfo_rxlowthreshold"), 2 * quarter);
}

} // namespace
} // namespace native_test
