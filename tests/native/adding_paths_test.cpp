// Where an add goes: steps, current instances, opening, keys.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

TEST(AddingPaths, APathWithoutALeadingSlashIsOneStepBelowTheTree) {
    Request request = edit();
    const Request::NodeId first = request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path, ifmgr, none, merge, true, 0);
    Request::NodeId key = Request::root;
    EXPECT_EQ(request.add("interface-name", ifmgr, "Ots0/1/0/1", merge, false, 0, first, &key), KERR_SUCCESS);
    EXPECT_EQ(request.add("active", ifmgr, "act", merge, false, 0, first), KERR_SUCCESS);
    EXPECT_EQ(request.node(key).path, "/interface-configurations/interface-configuration/interface-name");
    EXPECT_EQ(steps(request),
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']\n"
              "merge /interface-configurations/interface-configuration\n");
    EXPECT_EQ(request.add("optics/rx-thresholds", optics, none, merge, false, 0, first),
              ocpsm::native::add_unknown_path);
}

TEST(AddingPaths, TheResultSlotReceivesTheNode) {
    Request request = edit();
    Request::NodeId top = Request::root;
    Request::NodeId leaf = Request::root;
    ASSERT_EQ(request.add("active-nodes", mda, none, merge, false, 0, Request::root, &top), KERR_SUCCESS);
    ASSERT_EQ(request.add(psm_path + "/lockout-from", ots, "working", create, false, 7, Request::root, &leaf),
              KERR_SUCCESS);
    EXPECT_EQ(request.node(top).path, "/active-nodes");
    const Request::Node node = request.node(leaf);
    EXPECT_EQ(node.path, "/active-nodes/active-node/slot/psm/lockout-from");
    EXPECT_EQ(node.value, "working");
    EXPECT_EQ(node.operation, create);
    EXPECT_EQ(node.second_flag, 7u);
    Request::NodeId untouched = 77;
    EXPECT_NE(request.add("/nowhere", mda, none, merge, false, 0, Request::root, &untouched), KERR_SUCCESS);
    EXPECT_EQ(untouched, 77u);
}

TEST(AddingPaths, AnAbsolutePathRunsThroughTheInstanceOpenedLast) {
    Request request = edit();
    for (const char *name : {"Ots0/1/0/1", "Ots0/1/0/2"}) {
        request.put(interface_path, ifmgr, none, merge, true, 0);
        request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 1);
        request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    }
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "35", merge, false, 1);
    EXPECT_EQ(steps(request),
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']\n"
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/2']\n"
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/2']"
              "/optics/optics-ots-rx-voa-attenuation = 35\n");
}

TEST(AddingPaths, AnAbsolutePathRunsThroughTheInstanceSelectedLast) {
    Request request = edit();
    for (const char *slot : {"1", "2", "1"}) {
        request.put(slot_path + "/slot-id", ots, slot, merge, false, 0);
    }
    request.put(psm_path + "/lockout-from", ots, "working", merge, false, 1);
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    EXPECT_EQ(steps(request),
              "merge /active-nodes/active-node[node-name='n']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from = working\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='2']\n");
}

TEST(AddingPaths, OpeningAnOuterInstanceLeavesNoCurrentInnerOne) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n1", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(node_path, mda, none, merge, true, 0);
    request.put(node_path + "/node-name", mda, "n2", merge, false, 0);
    request.put(psm_path + "/lockout-from", ots, "", merge, false, 0);
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n1']\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot[slot-id='1']\n"
                              "merge /active-nodes/active-node[node-name='n2']\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot/psm/lockout-from = \n");
}

TEST(AddingPaths, SelectingAnOuterInstanceLeavesNoCurrentInnerOne) {
    Request request = edit();
    for (const char *node : {"n1", "n2", "n1"}) {
        request.put(node_path + "/node-name", mda, node, merge, false, 0);
        request.put(psm_path + "/lockout-from", ots, node, merge, false, 0);
    }
    // The slot of the third round is a new one beside that of the first.
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n1']\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot/psm/lockout-from = n1\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot/psm/lockout-from = n1\n"
                              "merge /active-nodes/active-node[node-name='n2']\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot/psm/lockout-from = n2\n");
}

TEST(AddingPaths, MissingStepsAreMadeWithOperation0InTheNamespaceOfTheirModule) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(psm_path + "/revertive/enable", ots, none, erase, false, 1);
    EXPECT_EQ(request.xml(), config(R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>n</node-name>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>1</slot-id>
        <psm>
          <revertive>
            <enable nc:operation="delete"/>
          </revertive>
        </psm>
      </slot>
    </active-node>
  </active-nodes>
)"));
}

TEST(AddingPaths, FirstFlag1OpensANewEntryOfAList) {
    Request request = edit();
    const Request::NodeId first = request.put(interface_path, ifmgr, none, merge, true, 0);
    EXPECT_NE(request.put(interface_path, ifmgr, none, merge, true, 0), first);
}

TEST(AddingPaths, FirstFlag0UsesTheCurrentEntryOfAList) {
    Request request = edit();
    const Request::NodeId made = request.put(interface_path, ifmgr, none, merge, false, 0);
    EXPECT_EQ(request.put(interface_path, ifmgr, none, merge, false, 0), made);
    const Request::NodeId opened = request.put(interface_path, ifmgr, none, merge, true, 0);
    EXPECT_EQ(request.put(interface_path, ifmgr, none, merge, false, 0), opened);
}

TEST(AddingPaths, FirstFlag1OnALeafThatStandsOpensAnInstanceOfItsInnermostList) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "working", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "protected", merge, true, 0);
    request.put(slot_path + "/slot-id", ots, "2", merge, true, 0);
    EXPECT_EQ(steps(request),
              "merge /active-nodes/active-node[node-name='n']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from = working\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='2']\n"
              "merge /active-nodes/active-node[node-name='n']/slot[slot-id='2']/psm/lockout-from = protected\n");
}

TEST(AddingPaths, FirstFlag1OnAKeyThatStandsOpensAlsoForTheSameValue) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "working", merge, false, 0);
    const Request::NodeId first = request.put(node_path, mda, none, merge, false, 0);
    request.put(node_path + "/node-name", mda, "n", merge, true, 0);
    EXPECT_NE(request.put(node_path, mda, none, merge, false, 0), first);
}

TEST(AddingPaths, FirstFlag1OnALeafThatDoesNotStandUsesTheCurrentInstance) {
    Request request = edit();
    const Request::NodeId entry = request.put(port_path, ots_oper, none, merge, true, 0);
    request.put(port_path + "/name", ots_oper, "Ots0/1/0/1", merge, true, 0);
    EXPECT_EQ(request.put(port_path, ots_oper, none, merge, false, 0), entry);
}

TEST(AddingPaths, FirstFlag1OnAContainerUsesTheOneThatStands) {
    Request request = edit();
    const Request::NodeId optics_node = request.put(optics_path, optics, none, merge, true, 0);
    EXPECT_EQ(request.put(optics_path, optics, none, merge, true, 0), optics_node);
}

TEST(AddingPaths, TheSecondFlagIsKeptAndChangesNothing) {
    Request plain = edit();
    Request flagged = edit();
    std::vector<Request::NodeId> nodes;
    for (const std::uint32_t flag : {0u, 1u}) {
        Request &request = flag == 0 ? plain : flagged;
        nodes.push_back(request.put(slot_path, ots, none, merge, true, flag));
        nodes.push_back(request.put(slot_path + "/slot-id", ots, "1", merge, false, flag));
    }
    EXPECT_EQ(plain.node(nodes[0]).second_flag, 0u);
    EXPECT_EQ(plain.node(nodes[1]).second_flag, 0u);
    EXPECT_EQ(flagged.node(nodes[2]).second_flag, 1u);
    EXPECT_EQ(flagged.node(nodes[3]).second_flag, 1u);
    EXPECT_EQ(plain.xml(), flagged.xml());
}

TEST(AddingPaths, AKeyIsNeverOverwrittenTheInstanceThatHasTheValueIsSelected) {
    Request request = read();
    const Request::NodeId first = request.put(port_path, ots_oper, none, merge, true, 0);
    request.put(port_path + "/name", ots_oper, "Ots0/1/0/1", merge, false, 0);
    const Request::NodeId second = request.put(port_path, ots_oper, none, merge, true, 0);
    request.put(port_path + "/name", ots_oper, "Ots0/1/0/2", merge, false, 0);
    EXPECT_EQ(request.put(port_path, ots_oper, none, merge, false, 0), second);
    request.put(port_path + "/name", ots_oper, "Ots0/1/0/1", merge, false, 0);
    EXPECT_EQ(request.put(port_path, ots_oper, none, merge, false, 0), first);
}

TEST(AddingPaths, AKeyIsNeverOverwrittenAnInstanceIsOpenedForAValueThatNoneHas) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "n1", merge, false, 0);
    const Request::NodeId first = request.put(node_path, mda, none, merge, false, 0);
    request.put(node_path + "/node-name", mda, "n2", merge, false, 0);
    EXPECT_NE(request.put(node_path, mda, none, merge, false, 0), first);
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n1']\n"
                              "merge /active-nodes/active-node[node-name='n2']\n");
}

TEST(AddingPaths, SelectingStaysUnderTheSameParent) {
    Request request = edit();
    for (const char *node : {"n1", "n2"}) {
        request.put(node_path + "/node-name", mda, node, merge, false, 0);
        request.put(slot_path + "/slot-id", ots, node[1] == '1' ? "1" : "2", merge, false, 0);
    }
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    EXPECT_EQ(steps(request), "merge /active-nodes/active-node[node-name='n1']\n"
                              "merge /active-nodes/active-node[node-name='n1']/slot[slot-id='1']\n"
                              "merge /active-nodes/active-node[node-name='n2']\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot[slot-id='2']\n"
                              "merge /active-nodes/active-node[node-name='n2']/slot[slot-id='1']\n");
}

TEST(AddingPaths, OfSeveralKeysOneEqualKeyDoesNotSelectAnEntryWithAnotherUnlike) {
    Request request = edit();
    const auto name = [&](const char *value) {
        request.put(interface_path + "/interface-name", ifmgr, value, merge, false, 1);
    };
    const auto active = [&](const char *value) {
        request.put(interface_path + "/active", ifmgr, value, merge, false, 1);
    };
    name("Ots0/1/0/1");
    active("pre");
    name("Ots0/1/0/2");
    active("act");
    name("Ots0/1/0/1");
    active("act");
    EXPECT_EQ(steps(request),
              "merge /interface-configurations/interface-configuration[active='pre'][interface-name='Ots0/1/0/1']\n"
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/2']\n"
              "merge /interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']\n");
}

TEST(AddingPaths, WhatNoModelHasIsRefusedAndNothingIsAdded) {
    Request request = edit();
    const auto code = [&](const char *path, const char *namespace_uri, Value value = none, std::uint32_t operation = 0,
                          Request::NodeId tree = Request::root) {
        return request.add(path, namespace_uri, value, operation, true, 0, tree);
    };
    EXPECT_EQ(code("", mda), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("/", mda), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("/active-nodes/", mda), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("/active-nodes/active-node/slots", ots), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("/active-nodes/active-node[node-name='n']", mda), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("active-nodes/active-node", mda), ocpsm::native::add_unknown_path);
    EXPECT_EQ(code("/active-nodes/active-node/slot", mda), ocpsm::native::add_wrong_namespace);
    EXPECT_EQ(code("/active-nodes", ""), ocpsm::native::add_wrong_namespace);
    EXPECT_EQ(code("/active-nodes", mda, ""), ocpsm::native::add_unexpected_value);
    EXPECT_EQ(code("/active-nodes/active-node", mda, "n"), ocpsm::native::add_unexpected_value);
    EXPECT_EQ(code("/active-nodes", mda, none, 5), ocpsm::native::add_unknown_operation);
    EXPECT_EQ(code("active-node", mda, none, 0, 1), ocpsm::native::add_stale_node);
    EXPECT_TRUE(request.empty());
    EXPECT_EQ(request.xml(), "<nc:config xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"/>\n");
}

TEST(AddingPaths, EveryCodeHasAText) {
    EXPECT_EQ(ocpsm::native::add_error_text(ocpsm::native::add_unknown_path),
              "no native model has a node with this path");
    EXPECT_EQ(ocpsm::native::add_error_text(ocpsm::native::add_wrong_namespace),
              "the native node belongs to another namespace");
    EXPECT_EQ(ocpsm::native::add_error_text(ocpsm::native::add_unexpected_value),
              "a native container or list was given a value");
    EXPECT_EQ(ocpsm::native::add_error_text(ocpsm::native::add_unknown_operation),
              "a native node was given an unknown operation");
    EXPECT_EQ(ocpsm::native::add_error_text(ocpsm::native::add_stale_node),
              "the native node to add below is not part of the request");
    EXPECT_EQ(ocpsm::native::add_error_text(KERR_SUCCESS), "");
}

} // namespace
} // namespace native_test
