// Edits of a protection module: the adds that the mapping makes for them, made here by hand, and the whole net request.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

bool is_delete(std::uint32_t operation) {
    return operation == erase || operation == remove;
}

// The adds of an edit of the module in one slot. A value is given as the mapping hands it over, in native units; a
// delete's is whatever the client wrote, none or the empty text as a rule.
class ModuleEdit {
public:
    explicit ModuleEdit(const std::string &slot)
        : request_(edit()), slot_(slot), primary_("Ots0/" + slot + "/0/1"), secondary_("Ots0/" + slot + "/0/2") {}

    const Request &request() const { return request_; }

    // The key of the module's entry; it carries merge, also in an entry that is deleted.
    void key() {
        add(interface_path, ifmgr, none, merge, 1, 0);
        add(interface_path + "/interface-name", ifmgr, primary_, merge, 0, 1);
        add(interface_path + "/active", ifmgr, "act", merge, 0, 1);
        add(node_path, mda, none, merge, 1, 0);
        add(node_path + "/node-name", mda, "0/RP0/CPU0", merge, 0, 0);
        add(slot_path, ots, none, merge, 1, 1);
        add(slot_path + "/slot-id", ots, slot_, merge, 0, 1);
    }

    void revertive(Value value, std::uint32_t operation) { slot_setting("/revertive/enable", value, operation); }
    void wait_to_restore(Value value, std::uint32_t operation) { slot_setting("/revertive/wtr", value, operation); }
    void relative_threshold(Value value, std::uint32_t operation) {
        slot_setting("/relative-switch-threshold/psm-relative-switch-threshold", value, operation);
    }
    void relative_offset(Value value, std::uint32_t operation) {
        slot_setting("/relative-switch-threshold/psm-relative-switch-threshold-offset", value, operation);
    }
    void lockout(Value value, std::uint32_t operation) { slot_setting("/lockout-from", value, operation); }

    void primary_threshold(Value value, std::uint32_t operation) {
        interface_key(primary_);
        if (is_delete(operation)) {
            add(optics_path + "/rx-thresholds", optics, none, operation, 0, 1);
            add(threshold_path, optics, none, operation, 0, 1);
            add(threshold_path + "/rx-threshold", optics, value, operation, 0, 1);
            add(threshold_path + "/rx-threshold-type", optics, "low", operation, 0, 1);
        } else {
            interface_key(primary_);
            add(threshold_path + "/rx-threshold-type", optics, "low", operation, 0, 1);
            add(threshold_path + "/rx-threshold", optics, value, operation, 0, 1);
        }
    }

    void secondary_threshold(Value value, std::uint32_t operation) {
        interface_key(secondary_);
        if (is_delete(operation)) {
            add(optics_path + "/rx-thresholds", optics, none, operation, 0, 1);
            add(threshold_path, optics, none, operation, 0, 1);
        }
        add(threshold_path + "/rx-threshold-type", optics, "low", operation, 0, 1);
        add(threshold_path + "/rx-threshold", optics, value, operation, 0, 1);
    }

    void hysteresis(Value value, std::uint32_t operation) {
        interface_key(primary_);
        add(optics_path + "/optics-ots-rx-low-threshold-delta", optics, is_delete(operation) ? none : value, operation,
            0, 1);
    }

    void primary_in(Value value, std::uint32_t operation) { attenuation(primary_, "rx", value, operation); }
    void primary_out(Value value, std::uint32_t operation) { attenuation(primary_, "tx", value, operation); }
    void secondary_in(Value value, std::uint32_t operation) { attenuation(secondary_, "rx", value, operation); }
    void secondary_out(Value value, std::uint32_t operation) { attenuation(secondary_, "tx", value, operation); }

    // Every setting of the `config` container, as when it is deleted whole.
    void remove_config() {
        revertive(none, remove);
        wait_to_restore(none, remove);
        primary_threshold("", remove);
        hysteresis(none, remove);
        secondary_threshold("", remove);
        relative_threshold(none, remove);
        relative_offset(none, remove);
        lockout(none, remove);
    }

    // Everything that the module can be told, as when its entry is deleted.
    void remove_all() {
        remove_config();
        primary_in("", remove);
        primary_out("", remove);
        secondary_in("", remove);
        secondary_out("", remove);
    }

private:
    void add(const std::string &path, const char *namespace_uri, Value value, std::uint32_t operation, int first,
             std::uint32_t second) {
        request_.put(path, namespace_uri, value, operation, first != 0, second);
    }

    // A setting of the slot; only a delete hands its source over.
    void slot_setting(const std::string &leaf, Value value, std::uint32_t operation) {
        const bool deletes = is_delete(operation);
        add(psm_path + leaf, ots, deletes ? none : value, deletes ? operation : merge, 0, 1);
    }

    void interface_key(const std::string &controller) {
        add(interface_path, ifmgr, none, merge, 1, 0);
        add(interface_path + "/interface-name", ifmgr, controller, merge, 0, 1);
        add(interface_path + "/active", ifmgr, "act", merge, 0, 1);
        add(optics_path, optics, none, merge, 0, 1);
    }

    void attenuation(const std::string &controller, const std::string &direction, Value value,
                     std::uint32_t operation) {
        interface_key(controller);
        add(optics_path + "/optics-ots-" + direction + "-voa-attenuation", optics, value,
            is_delete(operation) ? operation : merge, 0, 1);
    }

    Request request_;
    std::string slot_;
    std::string primary_;
    std::string secondary_;
};

// An interface entry of an edit; `settings` is what stands in its optics container, which is left out when empty.
std::string interface_entry(const std::string &controller, const std::string &settings) {
    std::string entry = "    <interface-configuration>\n      <active>act</active>\n      <interface-name>" +
                        controller + "</interface-name>\n";
    if (!settings.empty()) {
        entry += "      <optics xmlns=\"http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg\">\n" +
                 settings + "      </optics>\n";
    }
    return entry + "    </interface-configuration>\n";
}

// A whole edit: interface entries, and the slot with what stands in its psm container.
std::string edit_xml(const std::string &interfaces, const std::string &slot, const std::string &psm) {
    const std::string settings = psm.empty() ? "" : "        <psm>\n" + psm + "        </psm>\n";
    return config("  <interface-configurations xmlns=\"http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg\">\n" +
                  interfaces +
                  R"(  </interface-configurations>
  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>0/RP0/CPU0</node-name>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>)" +
                  slot + "</slot-id>\n" + settings + R"(      </slot>
    </active-node>
  </active-nodes>
)");
}

void expect_sendable(const ModuleEdit &module) {
    EXPECT_EQ(error_of([&] { module.request().net().check(); }), "none");
}

TEST(ModuleEdits, TheKeyAloneNamesThePrimaryInterfaceAndTheSlot) {
    ModuleEdit module("2");
    module.key();
    EXPECT_EQ(module.request().xml(), edit_xml(interface_entry("Ots0/2/0/1", ""), "2", ""));
    expect_sendable(module);
}

TEST(ModuleEdits, MergeOfAPrimaryThreshold) {
    ModuleEdit module("2");
    module.key();
    module.primary_threshold("125", merge);
    EXPECT_EQ(module.request().xml(), edit_xml(interface_entry("Ots0/2/0/1", R"(        <rx-thresholds>
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold>125</rx-threshold>
          </rx-threshold>
        </rx-thresholds>
)"),
                                               "2", ""));
    expect_sendable(module);
}

TEST(ModuleEdits, MergeOfAllLeaves) {
    ModuleEdit module("2");
    module.key();
    module.revertive("true", merge);
    module.wait_to_restore("300000", merge);
    module.primary_threshold("-205", merge);
    module.hysteresis("15", merge);
    module.secondary_threshold("-230", merge);
    module.relative_threshold("30", merge);
    module.relative_offset("-5", merge);
    module.lockout("protected", merge);
    module.primary_in("10", merge);
    module.primary_out("20", merge);
    module.secondary_in("30", merge);
    module.secondary_out("0", merge);
    EXPECT_EQ(module.request().xml(), edit_xml(interface_entry("Ots0/2/0/1", R"(        <rx-thresholds>
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold>-205</rx-threshold>
          </rx-threshold>
        </rx-thresholds>
        <optics-ots-rx-voa-attenuation>10</optics-ots-rx-voa-attenuation>
        <optics-ots-rx-low-threshold-delta>15</optics-ots-rx-low-threshold-delta>
        <optics-ots-tx-voa-attenuation>20</optics-ots-tx-voa-attenuation>
)") + interface_entry("Ots0/2/0/2", R"(        <rx-thresholds>
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold>-230</rx-threshold>
          </rx-threshold>
        </rx-thresholds>
        <optics-ots-rx-voa-attenuation>30</optics-ots-rx-voa-attenuation>
        <optics-ots-tx-voa-attenuation>0</optics-ots-tx-voa-attenuation>
)"),
                                               "2", R"(          <relative-switch-threshold>
            <psm-relative-switch-threshold>30</psm-relative-switch-threshold>
            <psm-relative-switch-threshold-offset>-5</psm-relative-switch-threshold-offset>
          </relative-switch-threshold>
          <revertive>
            <enable>true</enable>
            <wtr>300000</wtr>
          </revertive>
          <lockout-from>protected</lockout-from>
)"));
    expect_sendable(module);
    EXPECT_EQ(steps(module.request()),
              R"(merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold = -205
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']/optics/optics-ots-rx-voa-attenuation = 10
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']/optics/optics-ots-rx-low-threshold-delta = 15
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/1']/optics/optics-ots-tx-voa-attenuation = 20
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold = -230
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']/optics/optics-ots-rx-voa-attenuation = 30
merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/2/0/2']/optics/optics-ots-tx-voa-attenuation = 0
merge /active-nodes/active-node[node-name='0/RP0/CPU0']
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/relative-switch-threshold/psm-relative-switch-threshold = 30
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/relative-switch-threshold/psm-relative-switch-threshold-offset = -5
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/revertive/enable = true
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/revertive/wtr = 300000
merge /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/lockout-from = protected
)");
}

TEST(ModuleEdits, MergeOfNoLockoutSetsTheEmptyText) {
    ModuleEdit module("1");
    module.key();
    module.lockout("", merge);
    EXPECT_EQ(module.request().xml(), edit_xml(interface_entry("Ots0/1/0/1", ""), "1", "          <lockout-from/>\n"));
    expect_sendable(module);
}

TEST(ModuleEdits, DeleteOfThePrimaryThreshold) {
    ModuleEdit module("1");
    module.key();
    module.primary_threshold("", erase);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/1/0/1", "        <rx-thresholds nc:operation=\"delete\"/>\n"), "1", ""));
    expect_sendable(module);
}

TEST(ModuleEdits, DeleteOfTheSecondaryThreshold) {
    ModuleEdit module("1");
    module.key();
    module.secondary_threshold("", erase);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/1/0/1", "") +
                           interface_entry("Ots0/1/0/2", "        <rx-thresholds nc:operation=\"delete\"/>\n"),
                       "1", ""));
    expect_sendable(module);
}

TEST(ModuleEdits, DeleteOfAnAttenuation) {
    ModuleEdit module("3");
    module.key();
    module.secondary_out("", erase);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/3/0/1", "") +
                           interface_entry("Ots0/3/0/2",
                                           "        <optics-ots-tx-voa-attenuation nc:operation=\"delete\"/>\n"),
                       "3", ""));
    expect_sendable(module);
}

TEST(ModuleEdits, DeleteOfTheHysteresis) {
    ModuleEdit module("3");
    module.key();
    module.hysteresis("15", erase);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/3/0/1",
                                       "        <optics-ots-rx-low-threshold-delta nc:operation=\"delete\"/>\n"),
                       "3", ""));
}

TEST(ModuleEdits, DeleteOfRevertive) {
    ModuleEdit module("1");
    module.key();
    module.revertive(none, erase);
    EXPECT_EQ(module.request().xml(), edit_xml(interface_entry("Ots0/1/0/1", ""), "1", R"(          <revertive>
            <enable nc:operation="delete"/>
          </revertive>
)"));
    expect_sendable(module);
}

constexpr char all_slot_settings_removed[] = R"(          <relative-switch-threshold>
            <psm-relative-switch-threshold nc:operation="remove"/>
            <psm-relative-switch-threshold-offset nc:operation="remove"/>
          </relative-switch-threshold>
          <revertive>
            <enable nc:operation="remove"/>
            <wtr nc:operation="remove"/>
          </revertive>
          <lockout-from nc:operation="remove"/>
)";

TEST(ModuleEdits, DeleteOfAModule) {
    ModuleEdit module("2");
    module.key();
    module.remove_all();
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/2/0/1", R"(        <rx-thresholds nc:operation="remove"/>
        <optics-ots-rx-voa-attenuation nc:operation="remove"/>
        <optics-ots-rx-low-threshold-delta nc:operation="remove"/>
        <optics-ots-tx-voa-attenuation nc:operation="remove"/>
)") + interface_entry("Ots0/2/0/2", R"(        <rx-thresholds nc:operation="remove"/>
        <optics-ots-rx-voa-attenuation nc:operation="remove"/>
        <optics-ots-tx-voa-attenuation nc:operation="remove"/>
)"),
                       "2", all_slot_settings_removed));
    expect_sendable(module);
}

// A replace of `config` is walked twice: everything is removed, then what the client sent is merged.
TEST(ModuleEdits, ReplaceOfConfigWithTwoLeaves) {
    ModuleEdit module("1");
    module.key();
    module.remove_config();
    module.revertive("true", merge);
    module.primary_threshold("-205", merge);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/1/0/1", R"(        <rx-thresholds nc:operation="replace">
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold>-205</rx-threshold>
          </rx-threshold>
        </rx-thresholds>
        <optics-ots-rx-low-threshold-delta nc:operation="remove"/>
)") + interface_entry("Ots0/1/0/2", "        <rx-thresholds nc:operation=\"remove\"/>\n"),
                       "1", R"(          <relative-switch-threshold>
            <psm-relative-switch-threshold nc:operation="remove"/>
            <psm-relative-switch-threshold-offset nc:operation="remove"/>
          </relative-switch-threshold>
          <revertive>
            <enable>true</enable>
            <wtr nc:operation="remove"/>
          </revertive>
          <lockout-from nc:operation="remove"/>
)"));
    expect_sendable(module);
}

// A replace of a module is handed over as an entry that removes it and an entry that is walked twice, the first time
// without its contents.
TEST(ModuleEdits, ReplaceOfAModuleWithTwoLeaves) {
    ModuleEdit module("3");
    module.key();
    module.remove_all();
    module.key();
    module.key();
    module.wait_to_restore("60000", merge);
    module.secondary_in("12", merge);
    EXPECT_EQ(module.request().xml(),
              edit_xml(interface_entry("Ots0/3/0/1", R"(        <rx-thresholds nc:operation="remove"/>
        <optics-ots-rx-voa-attenuation nc:operation="remove"/>
        <optics-ots-rx-low-threshold-delta nc:operation="remove"/>
        <optics-ots-tx-voa-attenuation nc:operation="remove"/>
)") + interface_entry("Ots0/3/0/2", R"(        <rx-thresholds nc:operation="remove"/>
        <optics-ots-rx-voa-attenuation>12</optics-ots-rx-voa-attenuation>
        <optics-ots-tx-voa-attenuation nc:operation="remove"/>
)"),
                       "3", R"(          <relative-switch-threshold>
            <psm-relative-switch-threshold nc:operation="remove"/>
            <psm-relative-switch-threshold-offset nc:operation="remove"/>
          </relative-switch-threshold>
          <revertive>
            <enable nc:operation="remove"/>
            <wtr>60000</wtr>
          </revertive>
          <lockout-from nc:operation="remove"/>
)"));
    expect_sendable(module);
}

TEST(ModuleEdits, ANameThatIsNoModulesIsRefusedByItsSlot) {
    ModuleEdit module("-1");
    module.key();
    module.revertive("true", merge);
    EXPECT_EQ(
        error_of([&] { module.request().net().check(); }),
        "refused invalid-value at '': /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='-1']/slot-id: "
        "'-1' is no value of this leaf");
}

} // namespace
} // namespace native_test
