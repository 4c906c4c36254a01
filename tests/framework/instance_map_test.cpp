// Which native entries belong to which module.
#include "framework/answer/instance_map.hpp"

#include "framework/host/data_tree.hpp"
#include "framework/native/native_request.hpp"
#include "gmock/gmock.h"

namespace {

using ocpsm::RequestNode;
using ocpsm::framework::DataTree;
using ocpsm::framework::InstanceMap;

const std::string nodes_space = "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg";
const std::string slots_space = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";

// A read of some slots of the only node.
ocpsm::native::NetRequest read_of(const std::vector<std::string> &slots) {
    ocpsm::native::NativeRequest read(ocpsm::native::RequestKind::read);
    read.add("/active-nodes/active-node/node-name", nodes_space, "0/RP0/CPU0", 0, true, 0);
    for (const std::string &slot : slots) {
        read.add("/active-nodes/active-node/slot/slot-id", slots_space, slot, 0, true, 0);
        read.add("/active-nodes/active-node/slot/psm/lockout-from", slots_space, "", 0, false, 0);
    }
    return read.net();
}

class Map : public testing::Test {
protected:
    // The instance of the slot with this number, and of what is below it.
    std::string slot(const std::string &number, std::size_t levels = 3) {
        const RequestNode psm{
            "psm", slots_space, std::nullopt, ocpsm::Operation::merge, {{"lockout-from", slots_space, ""}}};
        DataTree tree(RequestNode{"active-nodes",
                                  nodes_space,
                                  std::nullopt,
                                  ocpsm::Operation::merge,
                                  {{"active-node",
                                    nodes_space,
                                    std::nullopt,
                                    ocpsm::Operation::merge,
                                    {{"node-name", nodes_space, "0/RP0/CPU0"},
                                     {"slot",
                                      slots_space,
                                      std::nullopt,
                                      ocpsm::Operation::merge,
                                      {{"slot-id", slots_space, number}, psm}}}}}});
        const kidl_yfw_datatree &node = tree.root().children[0];
        const kidl_yfw_datatree &entry = node.children[1];
        const std::vector<const kidl_yfw_datatree *> chain{&tree.root(), &node, &entry, &entry.children[1]};
        return map.instance_of(std::span(chain).first(levels)).value_or("(none)");
    }

    InstanceMap map;
};

TEST_F(Map, AnEntryBelongsToTheInstanceWhoseReadNamesIt) {
    map.add("one", read_of({"1"}));
    map.add("two", read_of({"2", "3"}));
    EXPECT_EQ(slot("1"), "one");
    EXPECT_EQ(slot("2"), "two");
    EXPECT_EQ(slot("3"), "two");
    EXPECT_EQ(slot("1", 4), "one");
}

TEST_F(Map, AnEntryOfNoInstanceHasNone) {
    EXPECT_EQ(slot("1"), "(none)");
    map.add("one", read_of({"1"}));
    EXPECT_EQ(slot("2"), "(none)");
}

TEST_F(Map, AnEntryOfSeveralInstancesHasNone) {
    map.add("one", read_of({"1", "2"}));
    map.add("two", read_of({"2"}));
    EXPECT_EQ(slot("2"), "(none)");
    EXPECT_EQ(slot("1"), "one");
    EXPECT_EQ(slot("1", 2), "(none)"); // the node of all slots
}

TEST_F(Map, AnEntryWithoutKeyInTheReadIsEveryEntry) {
    map.add("all", read_of({""}));
    EXPECT_EQ(slot("7"), "all");
}

TEST_F(Map, WhatTheReadSelectsWholeBelongsToIt) {
    ocpsm::native::NativeRequest read(ocpsm::native::RequestKind::read);
    read.add("/active-nodes/active-node/node-name", nodes_space, "0/RP0/CPU0", 0, true, 0);
    map.add("node", read.net());
    EXPECT_EQ(slot("7", 4), "node");
}

TEST(NativeNodes, AreNamedByTheKeysThatAreKnown) {
    using ocpsm::native::NativeRequest;
    NativeRequest edit(ocpsm::native::RequestKind::edit);
    NativeRequest::NodeId slot = NativeRequest::root;
    NativeRequest::NodeId leaf = NativeRequest::root;
    edit.add("/active-nodes/active-node/slot", slots_space, std::nullopt, 0, true, 0, NativeRequest::root, &slot);
    edit.add("/active-nodes/active-node/slot/psm/lockout-from", slots_space, "", 0, false, 0, NativeRequest::root,
             &leaf);
    EXPECT_EQ(edit.instance_path(leaf), "/active-nodes/active-node/slot/psm/lockout-from");
    edit.add("/active-nodes/active-node/slot/slot-id", slots_space, "2", 0, false, 0);
    edit.add("/active-nodes/active-node/node-name", nodes_space, "0/RP0/CPU0", 0, false, 0);
    EXPECT_EQ(edit.instance_path(leaf),
              "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']/psm/lockout-from");
    EXPECT_EQ(edit.instance_path(slot), "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']");
    EXPECT_EQ(edit.instance_path(NativeRequest::root), "");
}

} // namespace
