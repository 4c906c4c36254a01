// What an edit amounts to: its adds in order, equal entries one, the net result.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

// Opens the interface entry of a controller.
void open_interface(Request &request, const char *name) {
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 1);
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
}

std::string entry(const char *name) {
    return "/interface-configurations/interface-configuration[active='act'][interface-name='" + std::string(name) +
           "']";
}

// The XML of a controller's interface entry with these optics settings.
std::string interface_xml(const char *name, const std::string &settings) {
    return config(R"(  <interface-configurations xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg">
    <interface-configuration>
      <active>act</active>
      <interface-name>)" +
                  std::string(name) + R"(</interface-name>
      <optics xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg">
)" + settings + R"(      </optics>
    </interface-configuration>
  </interface-configurations>
)");
}

TEST(AddingEdits, TheLaterAddsOperationAndValueCountTheEmptyTextIncluded) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(psm_path + "/lockout-from", ots, "working", create, false, 1);
    const Request::NodeId leaf = request.put(psm_path + "/lockout-from", ots, "", merge, false, 1);
    EXPECT_EQ(request.node(leaf).operation, merge);
    EXPECT_EQ(request.node(leaf).value, "");
    request.put(psm_path + "/revertive/wtr", ots, "5", merge, false, 1);
    request.put(psm_path + "/revertive/wtr", ots, none, erase, false, 1);
    request.put(psm_path + "/revertive/enable", ots, none, erase, false, 1);
    request.put(psm_path + "/revertive/enable", ots, "true", merge, false, 1);
    EXPECT_EQ(steps(request),
              "merge /active-nodes/active-node[node-name='n']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/revertive/enable = true\n"
              "delete /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/revertive/wtr\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from = \n");
}

TEST(AddingEdits, TheLaterOperationOfAnEntryCounts) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path, optics, none, create, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    request.put(threshold_path, optics, none, merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "merge " + entry("A") +
                                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']\n");
}

TEST(AddingEdits, ANullValueAndTheEmptyTextDiffer) {
    Request request = edit();
    open_interface(request, "A");
    const std::string name = optics_path + "/optics-ots-rx-voa-attenuation";
    const std::string other = optics_path + "/optics-ots-tx-voa-attenuation";
    EXPECT_EQ(request.node(request.put(name, optics, none, merge, false, 1)).value, std::nullopt);
    EXPECT_EQ(request.node(request.put(other, optics, "", merge, false, 1)).value, "");
    EXPECT_EQ(steps(request),
              "merge " + entry("A") + "\n" + "merge " + entry("A") + "/optics/optics-ots-tx-voa-attenuation = \n");
}

TEST(AddingEdits, ALeafThatIsGivenNoValueIsLeftAsItWas) {
    Request request = edit();
    open_interface(request, "A");
    const std::string set = optics_path + "/optics-ots-rx-voa-attenuation";
    const std::string taken = optics_path + "/optics-ots-tx-voa-attenuation";
    request.put(set, optics, "35", merge, false, 1);
    request.put(set, optics, none, merge, false, 1);
    request.put(taken, optics, none, erase, false, 1);
    request.put(taken, optics, none, merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "merge " + entry("A") +
                                  "/optics/optics-ots-rx-voa-attenuation = 35\n" + "delete " + entry("A") +
                                  "/optics/optics-ots-tx-voa-attenuation\n");
}

TEST(AddingEdits, EntriesWithEqualKeysUnderTheSameParentAreOne) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "1", merge, false, 1);
    open_interface(request, "B");
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "2", merge, false, 1);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "3", merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "merge " + entry("A") +
                                  "/optics/optics-ots-rx-voa-attenuation = 3\n" + "merge " + entry("A") +
                                  "/optics/optics-ots-tx-voa-attenuation = 2\n" + "merge " + entry("B") + "\n");
}

TEST(AddingEdits, EntriesWithEqualKeysUnderDifferentParentsAreTwo) {
    Request request = edit();
    for (const char *node : {"n1", "n2"}) {
        request.put(node_path + "/node-name", mda, node, merge, false, 0);
        request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    }
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n1']\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot[slot-id='1']\n"
                              "merge /active-nodes/active-node[node-name='n2']\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot[slot-id='1']\n");
}

TEST(AddingEdits, EntriesWithoutTheirKeysAreNotOne) {
    Request request = edit();
    for (int count = 0; count < 2; ++count) {
        request.put(interface_path, ifmgr, none, merge, true, 0);
        request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    }
    EXPECT_EQ(steps(request), "merge /interface-configurations/interface-configuration[active='act']\n"
                              "merge /interface-configurations/interface-configuration[active='act']\n");
}

TEST(AddingEdits, KeysAreReadWhenAllAddsAreMade) {
    Request request = edit();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(threshold_path + "/rx-threshold", optics, "-205", merge, false, 1);
    request.put(interface_path, ifmgr, none, merge, false, 0);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    request.put(interface_path + "/interface-name", ifmgr, "A", merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "merge " + entry("A") +
                                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']\n" + "merge " +
                                  entry("A") +
                                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold = -205\n");
}

TEST(AddingEdits, ADeletedEntryIsNamedByAKeyThatComesLater) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path, optics, none, erase, false, 1);
    request.put(threshold_path + "/rx-threshold", optics, "", erase, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", erase, false, 1);
    EXPECT_EQ(request.xml(), interface_xml("A", R"(        <rx-thresholds>
          <rx-threshold nc:operation="delete">
            <rx-threshold-type>low</rx-threshold-type>
          </rx-threshold>
        </rx-thresholds>
)"));
}

TEST(AddingEdits, AnEntryThatStandsAndIsDeletedKeepsItsName) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    request.put(threshold_path + "/rx-threshold", optics, "5", merge, false, 1);
    request.put(threshold_path, optics, none, erase, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "delete " + entry("A") +
                                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']\n");
}

TEST(AddingEdits, TheKeyOfADeletedEntryNamesItWhateverItsOperation) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path, optics, none, remove, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    EXPECT_EQ(request.xml(), interface_xml("A", R"(        <rx-thresholds>
          <rx-threshold nc:operation="remove">
            <rx-threshold-type>low</rx-threshold-type>
          </rx-threshold>
        </rx-thresholds>
)"));
}

TEST(AddingEdits, ADeleteTakesAwayWhatStandsBelowItAtThatMoment) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path + "/rx-threshold-type", optics, "high", merge, false, 1);
    request.put(threshold_path + "/rx-threshold", optics, "50", merge, false, 1);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "35", merge, false, 1);
    request.put(optics_path + "/rx-thresholds", optics, none, erase, false, 1);
    EXPECT_EQ(request.xml(), interface_xml("A", R"(        <rx-thresholds nc:operation="delete"/>
        <optics-ots-rx-voa-attenuation>35</optics-ots-rx-voa-attenuation>
)"));
}

TEST(AddingEdits, WhatIsAddedBelowLaterStays) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path + "/rx-threshold-type", optics, "high", merge, false, 1);
    request.put(optics_path + "/rx-thresholds", optics, none, remove, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    request.put(threshold_path + "/rx-threshold", optics, "-205", merge, false, 1);
    EXPECT_EQ(request.xml(), interface_xml("A", R"(        <rx-thresholds nc:operation="replace">
          <rx-threshold>
            <rx-threshold-type>low</rx-threshold-type>
            <rx-threshold>-205</rx-threshold>
          </rx-threshold>
        </rx-thresholds>
)"));
    EXPECT_EQ(steps(request),
              "merge " + entry("A") + "\n" + "replace " + entry("A") + "/optics/rx-thresholds\n" + "merge " +
                  entry("A") + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']\n" + "merge " + entry("A") +
                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold = -205\n");
}

TEST(AddingEdits, ADeleteTakesAwayFromEveryEntryWithTheSameKeys) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "1", merge, false, 1);
    open_interface(request, "A");
    request.put(optics_path, optics, none, remove, false, 1);
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "2", merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "replace " + entry("A") + "/optics\n" + "merge " +
                                  entry("A") + "/optics/optics-ots-tx-voa-attenuation = 2\n");
}

TEST(AddingEdits, AfterADeleteNothingBelowIsCurrent) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    const Request::NodeId taken = request.put(threshold_path, optics, none, merge, false, 1);
    request.put(optics_path + "/rx-thresholds", optics, none, erase, false, 1);
    EXPECT_EQ(request.add("rx-threshold", optics, "1", merge, false, 0, taken), ocpsm::native::add_stale_node);
    EXPECT_NE(request.put(threshold_path, optics, none, merge, false, 1), taken);
}

TEST(AddingEdits, ADeleteIgnoresItsValue) {
    Request with = edit();
    Request without = edit();
    for (Request *request : {&with, &without}) {
        open_interface(*request, "A");
        request->put(optics_path + "/optics-ots-rx-voa-attenuation", optics, request == &with ? Value("35") : none,
                     erase, false, 1);
    }
    EXPECT_EQ(with.xml(), without.xml());
    EXPECT_EQ(with.xml(), interface_xml("A", "        <optics-ots-rx-voa-attenuation nc:operation=\"delete\"/>\n"));
}

TEST(AddingEdits, ADeleteLeavesNoValueBehind) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "35", merge, false, 1);
    const auto leaf = request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, none, erase, false, 1);
    EXPECT_EQ(request.node(leaf).value, std::nullopt);
    EXPECT_EQ(request.node(leaf).operation, erase);
    EXPECT_EQ(request.xml(), interface_xml("A", "        <optics-ots-rx-voa-attenuation nc:operation=\"delete\"/>\n"));
}

TEST(AddingEdits, ADeleteIsNoErrorBelowWhatWasTakenAway) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/rx-thresholds", optics, none, erase, false, 1);
    request.put(threshold_path, optics, none, erase, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", erase, false, 1);
    request.put(threshold_path + "/rx-threshold", optics, "", erase, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "delete " + entry("A") + "/optics/rx-thresholds\n");
}

TEST(AddingEdits, ADeleteBelowWhatWasMadeAgainTakesThatAway) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path, optics, none, remove, false, 1);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "1", merge, false, 1);
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "2", merge, false, 1);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, none, erase, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "replace " + entry("A") + "/optics\n" + "merge " +
                                  entry("A") + "/optics/optics-ots-tx-voa-attenuation = 2\n");
}

TEST(AddingEdits, AnEntryThatIsOpenedAgainAfterItsDeleteIsReplaced) {
    Request request = edit();
    open_interface(request, "A");
    request.put(threshold_path, optics, none, remove, true, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", remove, false, 1);
    request.put(threshold_path, optics, none, merge, true, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "replace " + entry("A") +
                                  "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']\n");
}

TEST(AddingEdits, AValuedAddMakesTheStepsAboveIt) {
    Request request = edit();
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n']\n"
                              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']\n");
}

TEST(AddingEdits, ADeleteMakesNoStepsAboveIt) {
    Request request = edit();
    request.put(slot_path + "/psm/lockout-from", ots, none, remove, false, 0);
    EXPECT_EQ(steps(request), "remove /active-nodes/active-node/slot/psm/lockout-from\n");
}

TEST(AddingEdits, AContainerWithoutContentSaysNothing) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path, optics, none, merge, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n");
    EXPECT_EQ(request.xml().find("optics"), std::string::npos);
}

TEST(AddingEdits, AReplaceTakesAwayAndIsFollowedByWhatComesLater) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "1", merge, false, 1);
    request.put(optics_path, optics, none, replace, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "replace " + entry("A") + "/optics\n");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "2", replace, false, 1);
    EXPECT_EQ(steps(request), "merge " + entry("A") + "\n" + "replace " + entry("A") + "/optics\n" + "merge " +
                                  entry("A") + "/optics/optics-ots-tx-voa-attenuation = 2\n");
}

TEST(AddingEdits, CreateAndReplaceOfALeafAreKept) {
    Request request = edit();
    open_interface(request, "A");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "1", create, false, 1);
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "2", replace, false, 1);
    request.put(threshold_path, optics, none, create, false, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    EXPECT_EQ(request.xml(), interface_xml("A", R"(        <rx-thresholds>
          <rx-threshold nc:operation="create">
            <rx-threshold-type>low</rx-threshold-type>
          </rx-threshold>
        </rx-thresholds>
        <optics-ots-rx-voa-attenuation nc:operation="create">1</optics-ots-rx-voa-attenuation>
        <optics-ots-tx-voa-attenuation nc:operation="replace">2</optics-ots-tx-voa-attenuation>
)"));
}

TEST(CheckingEdits, EveryListOnTheWayNeedsItsKeys) {
    Request request = edit();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, "A", merge, false, 1);
    const auto check = [&] { request.net().check(); };
    EXPECT_EQ(
        error_of(check),
        "refused missing-element at '': /interface-configurations/interface-configuration[interface-name='A']: an "
        "entry of list interface-configuration needs its key active | name the entry by all of its keys");
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    EXPECT_EQ(error_of(check), "none");
    request.put(threshold_path + "/rx-threshold", optics, "5", merge, false, 1);
    EXPECT_EQ(error_of(check), "refused missing-element at '': " + entry("A") +
                                   "/optics/rx-thresholds/rx-threshold: an entry of list rx-threshold needs its key "
                                   "rx-threshold-type | name the entry by all of its keys");
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    EXPECT_EQ(error_of(check), "none");
    request.put(psm_path + "/lockout-from", ots, none, erase, false, 1);
    EXPECT_EQ(error_of(check), "refused missing-element at '': /active-nodes/active-node: an entry of list active-node "
                               "needs its key node-name | name the entry by all of its keys");
}

TEST(CheckingEdits, AValueMustBeOneOfItsLeaf) {
    const auto refusal = [](const std::string &path, const char *value) {
        Request request = edit();
        request.put(node_path + "/node-name", mda, "n", merge, false, 0);
        request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
        request.put(path, ots, value, merge, false, 1);
        return error_of([&] { request.net().check(); });
    };
    const std::string at =
        "refused invalid-value at '': /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/";
    EXPECT_EQ(refusal(psm_path + "/revertive/wtr", "-1"), at + "revertive/wtr: '-1' is no value of this leaf");
    EXPECT_EQ(refusal(psm_path + "/revertive/wtr", "4294967295"), "none");
    EXPECT_EQ(refusal(psm_path + "/revertive/wtr", "4294967296"),
              at + "revertive/wtr: '4294967296' is no value of this leaf");
    EXPECT_EQ(refusal(psm_path + "/revertive/enable", "yes"), at + "revertive/enable: 'yes' is no value of this leaf");
    EXPECT_EQ(refusal(psm_path + "/relative-switch-threshold/psm-relative-switch-threshold", ""),
              at + "relative-switch-threshold/psm-relative-switch-threshold: '' is no value of this leaf");
    EXPECT_EQ(refusal(psm_path + "/lockout-from", ""), "none");
}

TEST(CheckingEdits, AKeyMustBeOneOfItsLeaf) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "-1", merge, false, 0);
    EXPECT_EQ(
        error_of([&] { request.net().check(); }),
        "refused invalid-value at '': /active-nodes/active-node[node-name='n']/slot[slot-id='-1']/slot-id: '-1' is "
        "no value of this leaf");
}

TEST(CheckingEdits, OperationalStateCannotBeEdited) {
    Request request = edit();
    request.put(port_path + "/name", ots_oper, "A", merge, false, 0);
    EXPECT_EQ(error_of([&] { request.net().check(); }),
              "refused operation-not-supported at '': /ots-oper: operational state cannot be edited");
}

TEST(CheckingEdits, AReadIsNeverRefused) {
    Request request = read();
    request.put(psm_path + "/revertive/wtr", ots, "text", merge, false, 0);
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 0);
    EXPECT_EQ(error_of([&] { request.net().check(); }), "none");
}

} // namespace
} // namespace native_test
