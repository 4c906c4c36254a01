// What a read amounts to: per list, the entries that are named and everything that was selected in it.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

std::string ports(const std::string &entries) {
    return filter(R"(  <ots-oper xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper">
    <ots-ports>
)" + entries + R"(    </ots-ports>
  </ots-oper>
)");
}

void open_port(Request &request, const char *name) {
    request.put(port_path, ots_oper, none, merge, true, 0);
    request.put(port_path + "/name", ots_oper, name, merge, false, 1);
}

TEST(AddingReads, AnEmptyOrAbsentValueLeavesTheStandingOne) {
    Request request = read();
    const Request::NodeId leaf = request.put(info_path + "/port-status", ots_oper, "active", merge, false, 1);
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 1);
    EXPECT_EQ(request.node(leaf).value, "active");
    request.put(info_path + "/port-status", ots_oper, none, merge, false, 1);
    EXPECT_EQ(request.node(leaf).value, "active");
    request.put(info_path + "/port-status", ots_oper, "standby", merge, false, 1);
    EXPECT_EQ(request.node(leaf).value, "standby");
}

TEST(AddingReads, AnEmptyOrAbsentValueLeavesAKeyAndItsEntry) {
    Request request = read();
    request.put(port_path + "/name", ots_oper, "A", merge, false, 1);
    const Request::NodeId entry = request.put(port_path, ots_oper, none, merge, false, 0);
    const Request::NodeId key = request.put(port_path + "/name", ots_oper, "", merge, false, 1);
    request.put(port_path + "/name", ots_oper, none, merge, false, 1);
    EXPECT_EQ(request.put(port_path, ots_oper, none, merge, false, 0), entry);
    EXPECT_EQ(request.node(key).value, "A");
}

TEST(AddingReads, ANullValueAndTheEmptyTextDiffer) {
    Request request = read();
    EXPECT_EQ(request.node(request.put(info_path + "/port-status", ots_oper, none, merge, false, 1)).value,
              std::nullopt);
    EXPECT_EQ(request.node(request.put(info_path + "/rx-low-threshold", ots_oper, "", merge, false, 1)).value, "");
}

TEST(AddingReads, AKeyThatWasOnlySelectedTakesAValue) {
    Request request = read();
    const Request::NodeId key = request.put(port_path + "/name", ots_oper, "", merge, false, 1);
    EXPECT_EQ(request.put(port_path + "/name", ots_oper, "A", merge, false, 1), key);
    EXPECT_EQ(request.node(key).value, "A");
}

TEST(AddingReads, EveryNamedInstanceIsAnsweredWithTheUnionOfTheSelections) {
    Request request = read();
    open_port(request, "Ots0/1/0/1");
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 1);
    open_port(request, "Ots0/1/0/2");
    request.put(info_path + "/lane-data/receive-power", ots_oper, "", merge, false, 1);
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name>Ots0/1/0/1</name>
        <ots-info>
          <lane-data>
            <receive-power/>
          </lane-data>
          <port-status/>
        </ots-info>
      </ots-port>
      <ots-port>
        <name>Ots0/1/0/2</name>
        <ots-info>
          <lane-data>
            <receive-power/>
          </lane-data>
          <port-status/>
        </ots-info>
      </ots-port>
)"));
    const std::string one = "/ots-oper/ots-ports/ots-port[name='Ots0/1/0/1']/ots-info/";
    const std::string two = "/ots-oper/ots-ports/ots-port[name='Ots0/1/0/2']/ots-info/";
    EXPECT_EQ(steps(request), "merge " + one + "lane-data/receive-power\n" + "merge " + one + "port-status\n" +
                                  "merge " + two + "lane-data/receive-power\n" + "merge " + two + "port-status\n");
}

TEST(AddingReads, AnEntryWithoutAKeySelectsForThoseThatAreNamed) {
    Request request = read();
    request.put(port_path, ots_oper, none, merge, true, 0);
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 1);
    open_port(request, "A");
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name>A</name>
        <ots-info>
          <port-status/>
        </ots-info>
      </ots-port>
)"));
}

TEST(AddingReads, EntriesWithEqualKeysAreOne) {
    Request request = read();
    open_port(request, "A");
    open_port(request, "B");
    open_port(request, "A");
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name>A</name>
      </ots-port>
      <ots-port>
        <name>B</name>
      </ots-port>
)"));
}

TEST(AddingReads, AllInstancesAreAnsweredWhenNoneIsNamedTheirKeysFirst) {
    Request request = read();
    request.put(info_path + "/port-status", ots_oper, none, merge, false, 1);
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name/>
        <ots-info>
          <port-status/>
        </ots-info>
      </ots-port>
)"));
    EXPECT_EQ(steps(request), "merge /ots-oper/ots-ports/ots-port/ots-info/port-status\n");
}

TEST(AddingReads, AnEntryWithoutASelectionIsAnsweredWhole) {
    Request unnamed = read();
    unnamed.put(port_path, ots_oper, none, merge, true, 0);
    EXPECT_EQ(unnamed.xml(), ports("      <ots-port/>\n"));
    Request named = read();
    open_port(named, "A");
    EXPECT_EQ(named.xml(), ports(R"(      <ots-port>
        <name>A</name>
      </ots-port>
)"));
    EXPECT_EQ(steps(named), "merge /ots-oper/ots-ports/ots-port[name='A']\n");
}

TEST(AddingReads, ASelectedKeyIsASelection) {
    Request request = read();
    request.put(port_path + "/name", ots_oper, "", merge, false, 1);
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name/>
      </ots-port>
)"));
}

TEST(AddingReads, ValuesOnSelectionsDoNotFilter) {
    Request request = read();
    open_port(request, "A");
    request.put(info_path + "/rx-low-threshold", ots_oper, "12", merge, false, 1);
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name>A</name>
        <ots-info>
          <rx-low-threshold/>
        </ots-info>
      </ots-port>
)"));
}

TEST(AddingReads, OperationsMeanNothing) {
    Request request = read();
    open_port(request, "A");
    request.put(info_path + "/port-status", ots_oper, none, merge, false, 1);
    request.put(info_path, ots_oper, none, erase, false, 1);
    EXPECT_EQ(request.xml(), ports(R"(      <ots-port>
        <name>A</name>
        <ots-info>
          <port-status/>
        </ots-info>
      </ots-port>
)"));
}

TEST(AddingReads, ListsInListsAreJoinedAcrossTheirParents) {
    Request request = read();
    for (const char *node : {"n1", "n2"}) {
        request.put(node_path + "/node-name", mda, node, merge, false, 0);
        request.put(slot_path + "/slot-id", ots, node[1] == '1' ? "1" : "2", merge, true, 0);
    }
    request.put(psm_path + "/lockout-from", ots, "", merge, false, 1);
    const std::string slots = R"(      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>1</slot-id>
        <psm>
          <lockout-from/>
        </psm>
      </slot>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>2</slot-id>
        <psm>
          <lockout-from/>
        </psm>
      </slot>
)";
    EXPECT_EQ(request.xml(), filter(R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>n1</node-name>
)" + slots + R"(    </active-node>
    <active-node>
      <node-name>n2</node-name>
)" + slots + R"(    </active-node>
  </active-nodes>
)"));
}

TEST(AddingReads, OfSeveralKeysOneMayBeNamed) {
    Request request = read();
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "", merge, false, 1);
    EXPECT_EQ(request.xml(),
              filter(R"(  <interface-configurations xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg">
    <interface-configuration>
      <active>act</active>
      <interface-name/>
      <optics xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg">
        <optics-ots-rx-voa-attenuation/>
      </optics>
    </interface-configuration>
  </interface-configurations>
)"));
}

} // namespace
} // namespace native_test
