// Reads of protection modules: the adds that the mapping makes for them, made here by hand, and the whole net request.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

// The adds of a read of the module in one slot. A selection has no value or the empty text.
class ModuleRead {
public:
    explicit ModuleRead(const std::string &slot)
        : request_(read()), slot_(slot), primary_("Ots0/" + slot + "/0/1"), secondary_("Ots0/" + slot + "/0/2") {}

    const Request &request() const { return request_; }

    // The module's entry and key in a read of the configuration.
    void configuration_key() {
        interface_entry(primary_);
        add(node_path + "/node-name", mda, "0/RP0/CPU0", 1, 0);
        add(slot_path + "/slot-id", ots, slot_, 1, 0);
        interface_entry(secondary_);
    }

    // The same in a read that includes operational state.
    void key() {
        add(port_path, ots_oper, none, 1, 0);
        add(history_path, pm, none, 1, 0);
        add(time_line_path + "/number", pm, "1", 0, 0);
        interface_entry(primary_);
        add(node_path + "/node-name", mda, "0/RP0/CPU0", 1, 0);
        add(slot_path + "/slot-id", ots, slot_, 1, 0);
        add(port_path + "/name", ots_oper, primary_, 1, 0);
        add(history_path + "/name", pm, primary_, 1, 0);
        interface_entry(secondary_);
        add(port_path, ots_oper, none, 1, 0);
        add(port_path + "/name", ots_oper, secondary_, 1, 0);
    }

    // A value on config/name names the module once more.
    void configured_name() {
        add(interface_path + "/interface-name", ifmgr, primary_, 0, 1);
        add(interface_path + "/active", ifmgr, "act", 0, 1);
        add(slot_path + "/slot-id", ots, slot_, 0, 1);
        add(port_path + "/name", ots_oper, primary_, 0, 0);
        add(history_path + "/name", pm, primary_, 0, 0);
    }

    void add(const std::string &path, const char *namespace_uri, Value value, int first, std::uint32_t second) {
        request_.put(path, namespace_uri, value, merge, first != 0, second);
    }

    // Opens a controller's interface entry with its optics settings, as the settings below it do.
    void interface_key(const std::string &controller) {
        interface_entry(controller);
        add(optics_path, optics, none, 0, 1);
    }

private:
    void interface_entry(const std::string &controller) {
        add(interface_path, ifmgr, none, 1, 0);
        add(interface_path + "/interface-name", ifmgr, controller, 0, 1);
        add(interface_path + "/active", ifmgr, "act", 0, 1);
    }

    Request request_;
    std::string slot_;
    std::string primary_;
    std::string secondary_;
};

// Interface entries, each with the same settings of its optics container; without any it is answered whole.
std::string interfaces_xml(const std::vector<std::string> &controllers, const std::string &settings) {
    std::string out = "  <interface-configurations xmlns=\"http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg\">\n";
    for (const std::string &controller : controllers) {
        out += "    <interface-configuration>\n      <active>act</active>\n      <interface-name>" + controller +
               "</interface-name>\n";
        if (!settings.empty()) {
            out += "      <optics xmlns=\"http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg\">\n" +
                   settings + "      </optics>\n";
        }
        out += "    </interface-configuration>\n";
    }
    return out + "  </interface-configurations>\n";
}

std::string slot_xml(const std::string &slot, const std::string &settings) {
    return R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>0/RP0/CPU0</node-name>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>)" +
           slot + "</slot-id>\n" + settings + R"(      </slot>
    </active-node>
  </active-nodes>
)";
}

std::string ports_xml(const std::vector<std::string> &controllers, const std::string &selections) {
    std::string out = R"(  <ots-oper xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper">
    <ots-ports>
)";
    for (const std::string &controller : controllers) {
        out += "      <ots-port>\n        <name>" + controller + "</name>\n";
        out += selections.empty() ? "" : "        <ots-info>\n" + selections + "        </ots-info>\n";
        out += "      </ots-port>\n";
    }
    return out + "    </ots-ports>\n  </ots-oper>\n";
}

// Histories of controllers; `number` is the key of their 30-second history, named or selected.
std::string histories_xml(const std::vector<std::string> &controllers, const std::string &number,
                          const std::string &selections) {
    std::string out =
        R"(  <performance-management-history xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper">
    <global>
      <periodic>
        <optics-history>
          <optics-port-histories>
)";
    for (const std::string &controller : controllers) {
        out.append("            <optics-port-history>\n              <name>").append(controller);
        out.append(R"(</name>
              <optics-second30-history>
                <optics-second30-optics-histories>
                  <optics-second30-optics-history>
                    )");
        out.append(number).append(R"(
                    <optics-second30-optics-time-line-instances>
                      <optics-second30-optics-time-line-instance>
                        <number>1</number>
)");
        out.append(selections).append(R"(                      </optics-second30-optics-time-line-instance>
                    </optics-second30-optics-time-line-instances>
                  </optics-second30-optics-history>
                </optics-second30-optics-histories>
              </optics-second30-history>
            </optics-port-history>
)");
    }
    return out + R"(          </optics-port-histories>
        </optics-history>
      </periodic>
    </global>
  </performance-management-history>
)";
}

const std::vector<std::string> both_1 = {"Ots0/1/0/1", "Ots0/1/0/2"};

// A read of slot 1 that includes state, where only the given parts select something.
std::string state_xml(const std::string &settings, const std::string &slot, const std::string &ports,
                      const std::string &history) {
    return filter(interfaces_xml(both_1, settings) + slot_xml("1", slot) + ports_xml(both_1, ports) +
                  histories_xml({"Ots0/1/0/1"}, "<number/>", history));
}

TEST(ModuleReads, ASettingOfTheSlot) {
    ModuleRead module("1");
    module.configuration_key();
    module.add(psm_path + "/revertive/enable", ots, none, 0, 1);
    EXPECT_EQ(module.request().xml(), filter(interfaces_xml(both_1, "") + slot_xml("1", R"(        <psm>
          <revertive>
            <enable/>
          </revertive>
        </psm>
)")));
}

TEST(ModuleReads, AThreshold) {
    ModuleRead module("1");
    module.configuration_key();
    module.interface_key("Ots0/1/0/1");
    module.add(threshold_path + "/rx-threshold-type", optics, "low", 0, 1);
    module.add(threshold_path + "/rx-threshold", optics, "", 0, 1);
    EXPECT_EQ(module.request().xml(), filter(interfaces_xml(both_1, R"(        <rx-thresholds>
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold/>
          </rx-threshold>
        </rx-thresholds>
)") + slot_xml("1", "")));
}

TEST(ModuleReads, TheHysteresis) {
    ModuleRead module("1");
    module.configuration_key();
    module.interface_key("Ots0/1/0/1");
    module.add(optics_path + "/optics-ots-rx-low-threshold-delta", optics, "", 0, 1);
    EXPECT_EQ(module.request().xml(),
              filter(interfaces_xml(both_1, "        <optics-ots-rx-low-threshold-delta/>\n") + slot_xml("1", "")));
}

// The selection stands in the entry that is current, the secondary one, and holds for both.
TEST(ModuleReads, AnAttenuationOpensNoEntryOfItsOwn) {
    ModuleRead module("1");
    module.configuration_key();
    module.add(optics_path + "/optics-ots-rx-voa-attenuation", optics, "", 0, 1);
    EXPECT_EQ(module.request().xml(),
              filter(interfaces_xml(both_1, "        <optics-ots-rx-voa-attenuation/>\n") + slot_xml("1", "")));
}

TEST(ModuleReads, ANameInTheConfigurationNamesTheSameEntries) {
    ModuleRead module("1");
    module.key();
    const std::string without = module.request().xml();
    module.configured_name();
    EXPECT_EQ(module.request().xml(), without);
    EXPECT_EQ(without, state_xml("", "", "", ""));
    // It has selected the primary entries, so that this stands there.
    module.add(info_path + "/port-status", ots_oper, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "          <port-status/>\n", ""));
}

TEST(ModuleReads, ANameInTheState) {
    ModuleRead module("1");
    module.key();
    module.add(port_path + "/name", ots_oper, "Ots0/1/0/1", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "", ""));
}

TEST(ModuleReads, TheStateOfASettingOfTheSlot) {
    ModuleRead module("1");
    module.key();
    module.add(psm_path + "/relative-switch-threshold/psm-relative-switch-threshold", ots, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", R"(        <psm>
          <relative-switch-threshold>
            <psm-relative-switch-threshold/>
          </relative-switch-threshold>
        </psm>
)",
                                                "", ""));
}

TEST(ModuleReads, TheActivePath) {
    ModuleRead module("1");
    module.key();
    module.add(info_path + "/port-status", ots_oper, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "          <port-status/>\n", ""));
}

TEST(ModuleReads, AThresholdInTheStateWhateverTheValueThatItIsComparedWith) {
    ModuleRead module("1");
    module.key();
    module.add(info_path + "/rx-low-threshold", ots_oper, "12", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "          <rx-low-threshold/>\n", ""));
}

TEST(ModuleReads, AnAttenuationInTheState) {
    ModuleRead module("1");
    module.key();
    module.add(info_path + "/tx-voa-attenuation", ots_oper, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "          <tx-voa-attenuation/>\n", ""));
}

TEST(ModuleReads, ATargetAttenuationInTheState) {
    ModuleRead module("1");
    module.key();
    module.add(optics_path + "/optics-ots-tx-voa-attenuation", optics, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("        <optics-ots-tx-voa-attenuation/>\n", "", "", ""));
}

TEST(ModuleReads, AnInstantPower) {
    ModuleRead module("1");
    module.key();
    module.add(info_path + "/lane-data/receive-power", ots_oper, "", 0, 1);
    module.add(info_path + "/lane-data/receive-power-dbm", ots_oper, "", 0, 1);
    EXPECT_EQ(module.request().xml(), state_xml("", "", R"(          <lane-data>
            <receive-power/>
            <receive-power-dbm/>
          </lane-data>
)",
                                                ""));
}

TEST(ModuleReads, AHistoricPower) {
    ModuleRead module("1");
    module.key();
    module.add(time_line_path + "/opt/maximum", pm, none, 0, 0);
    module.add(time_line_path + "/number", pm, "1", 0, 0);
    EXPECT_EQ(module.request().xml(), state_xml("", "", "", R"(                        <opt>
                          <maximum/>
                        </opt>
)"));
}

// All modules, state included, with modules in slots 1 and 3: entries first, then the selections of each controller.
TEST(ModuleReads, AllModules) {
    ModuleRead modules("");
    for (const char *slot : {"1", "3"}) {
        for (const char *port : {"1", "2"}) {
            modules.add(interface_path, ifmgr, none, 1, 0);
            modules.add(interface_path + "/interface-name", ifmgr, "Ots0/" + std::string(slot) + "/0/" + port, 0, 1);
            modules.add(interface_path + "/active", ifmgr, "act", 0, 1);
            if (port[0] == '1') {
                modules.add(node_path + "/node-name", mda, "0/RP0/CPU0", 1, 0);
            }
        }
    }
    for (const char *name : {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}) {
        modules.add(port_path, ots_oper, none, 1, 0);
        modules.add(port_path + "/name", ots_oper, name, 0, 1);
        for (const char *leaf :
             {"/lane-data/transmit-power", "/lane-data/receive-power", "/lane-data/transmit-power-dbm",
              "/lane-data/receive-power-dbm", "/tx-voa-attenuation", "/rx-voa-attenuation", "/port-status",
              "/rx-low-threshold", "/rx-thr-fail-low-delta-val"}) {
            modules.add(info_path + leaf, ots_oper, none, 0, 1);
        }
        modules.add(history_path, pm, none, 1, 0);
        modules.add(second30_path, pm, none, 1, 0);
        modules.add(second30_path + "/number", pm, "1", 0, 0);
        modules.add(time_line_path, pm, none, 1, 1);
        modules.add(time_line_path + "/number", pm, "1", 0, 1);
        for (const char *leaf :
             {"/opr/average", "/opr/minimum", "/opr/maximum", "/opt/average", "/opt/minimum", "/opt/maximum"}) {
            modules.add(time_line_path + leaf, pm, none, 0, 0);
        }
        modules.add(history_path + "/name", pm, name, 0, 1);
    }
    const std::vector<std::string> all = {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"};
    const std::string powers = R"(                          <minimum/>
                          <average/>
                          <maximum/>
)";
    const std::string opt = "                        <opt>\n" + powers + "                        </opt>\n";
    const std::string opr = "                        <opr>\n" + powers + "                        </opr>\n";
    EXPECT_EQ(modules.request().xml(),
              filter(interfaces_xml(all, "") +
                     R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>0/RP0/CPU0</node-name>
    </active-node>
  </active-nodes>
)" + ports_xml(all, R"(          <lane-data>
            <transmit-power/>
            <receive-power/>
            <transmit-power-dbm/>
            <receive-power-dbm/>
          </lane-data>
          <tx-voa-attenuation/>
          <rx-voa-attenuation/>
          <port-status/>
          <rx-low-threshold/>
          <rx-thr-fail-low-delta-val/>
)") + histories_xml(all, "<number>1</number>", opt + opr)));
}

// What selects everything of the slots without naming one: each leaf opens what it needs, and all of it is one entry.
TEST(ModuleReads, EverySettingOfAllSlots) {
    ModuleRead modules("");
    modules.add(node_path + "/node-name", mda, "0/RP0/CPU0", 1, 0);
    for (const char *leaf : {"/revertive/enable", "/revertive/wtr", "/lockout-from",
                             "/relative-switch-threshold/psm-relative-switch-threshold",
                             "/relative-switch-threshold/psm-relative-switch-threshold-offset"}) {
        modules.add(psm_path + leaf, ots, none, 1, 0);
    }
    EXPECT_EQ(modules.request().xml(),
              filter(R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>0/RP0/CPU0</node-name>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id/>
        <psm>
          <relative-switch-threshold>
            <psm-relative-switch-threshold/>
            <psm-relative-switch-threshold-offset/>
          </relative-switch-threshold>
          <revertive>
            <enable/>
            <wtr/>
          </revertive>
          <lockout-from/>
        </psm>
      </slot>
    </active-node>
  </active-nodes>
)"));
}

} // namespace
} // namespace native_test
