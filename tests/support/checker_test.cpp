// The checker must be able to fail: every change that a walk may not leave behind is named, and no allowed one is.
#include <gtest/gtest.h>

#include "checker.hpp"
#include "request.hpp"

namespace {

using fake::container;
using fake::leaf;
using Lines = std::vector<std::string>;

class CheckerTest : public fake::RequestTest {
protected:
    CheckerTest()
        : tree(build(container("aps-module", {leaf("name", "0/1-PSM-OM"), container("config", {leaf("revertive")})}))),
          entry(*tree.root()), key(*tree.at("name")), config(*tree.at("config")),
          revertive(*tree.at("config/revertive")) {}

    Lines differences(const std::function<void()> &change) {
        const fake::Checker checker(platform, request.ctx());
        change();
        return checker.differences();
    }

    fake::Tree &tree;
    kidl_yfw_datatree &entry;
    kidl_yfw_datatree &key;
    kidl_yfw_datatree &config;
    kidl_yfw_datatree &revertive;
};

TEST_F(CheckerTest, NamesWhatAWalkMayNotLeaveOnANode) {
    EXPECT_EQ(differences([] {}), Lines{});
    EXPECT_EQ(differences([&] { config.operation = 4; }), (Lines{"aps-module/1:config: operation 0 -> 4"}));
    EXPECT_EQ(differences([&] { revertive.flags = 0; }), (Lines{"aps-module/1:config/0:revertive: flags 1 -> 0"}));
    EXPECT_EQ(differences([&] { revertive.flags = 17; }), (Lines{"aps-module/1:config/0:revertive: flags 0 -> 17"}));
    EXPECT_EQ(differences([&] { revertive.value = key.value; }),
              (Lines{"aps-module/1:config/0:revertive: value is another"}));
    EXPECT_EQ(differences([&] { revertive.consumed_mark = 1; }),
              (Lines{"aps-module/1:config/0:revertive: consumed mark 0 -> 1"}));
    EXPECT_EQ(differences([&] { revertive.flags |= 512; }),
              (Lines{"aps-module/1:config/0:revertive: flags 17 -> 529"}));
    EXPECT_EQ(differences([&] { revertive.hierarchy_kind = 1; }),
              (Lines{"aps-module/1:config/0:revertive: hierarchy kind 0 -> 1, second flags 0 -> 0"}));
    EXPECT_EQ(differences([&] {
                  config.hierarchy_kind = 9;
                  config.second_flags = 4;
              }),
              (Lines{"aps-module/1:config: hierarchy kind 0 -> 9, second flags 0 -> 4"}));
    EXPECT_EQ(differences([&] {
                  config.children = nullptr;
                  config.child_count = 0;
              }),
              (Lines{"aps-module/1:config: child count 1 -> 0", "aps-module/1:config: children is another",
                     "aps-module/1:config/0:revertive: gone"}));
}

TEST_F(CheckerTest, NamesWhatAWalkMayNotLeaveOnTheRequest) {
    request.set_kind(1);
    yfw_map_request &state = request.state;
    EXPECT_EQ(differences([&] { state.whole_subtree_walk = 1; }), (Lines{"whole_subtree_walk 0 -> 1"}));
    EXPECT_EQ(differences([&] { state.delete_walk = 2; }), (Lines{"delete_walk 0 -> 2"}));
    EXPECT_EQ(differences([&] { state.replace_flags = 128; }), (Lines{"replace_flags 0 -> 128"}));
    EXPECT_EQ(differences([&] { state.replace_marker = 1; }), (Lines{"replace_marker 0 -> 1"}));
    EXPECT_EQ(differences([&] { state.read_selection = 2; }), (Lines{"read_selection 0 -> 2"}));
    EXPECT_EQ(differences([&] { state.output_depth = 1; }), (Lines{"output_depth 0 -> 1"}));
    EXPECT_EQ(differences([&] { request.context.trace_enabled = 0; }), (Lines{"trace_enabled 1 -> 0"}));
    EXPECT_EQ(differences([&] { yfw_map_util_itree_stack_push(request.ctx(), entry.children, 2, 0); }),
              (Lines{"the instance-tree stack"}));
    EXPECT_EQ(differences([&] { yfw_map_add_to_node_hierarchy(request.ctx(), &entry, 2); }),
              (Lines{"the node hierarchy", "hierarchy_length 0 -> 1"}));
}

TEST_F(CheckerTest, LetsPassWhatAWalkLeaves) {
    EXPECT_EQ(differences([&] {
                  key.consumed_mark = 1;
                  key.flags |= 512;
                  key.hierarchy_kind = 1;
                  key.second_flags |= 4;
                  entry.hierarchy_kind = 4;
                  entry.second_flags |= 4;
                  config.hierarchy_kind = 3;
                  config.second_flags |= 4;
                  revertive.hierarchy_kind = 6;
                  revertive.second_flags |= 4;
                  request.state.read_selection = 0x10006;
                  request.context.list_operation = 4;
                  request.context.data_printed = 1;
                  request.set_error_node("state");
              }),
              Lines{});
}

TEST_F(CheckerTest, KnowsWhereAnOperationMayHaveBeenRewritten) {
    config.operation = 1;
    EXPECT_EQ(differences([&] { config.flags |= 16; }), Lines{});
    EXPECT_EQ(differences([&] { revertive.flags |= 16; }), (Lines{"aps-module/1:config/0:revertive: flags 1 -> 17"}));
    revertive.flags = 1;
    EXPECT_EQ(differences([&] {
                  yfw_map_datatree_add_path_flagged(request.ctx(), dest,
                                                    "/interface-configurations/interface-configuration/optics",
                                                    "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg",
                                                    nullptr, &revertive, nullptr, 0, 1);
                  revertive.flags |= 16;
              }),
              Lines{});
}

TEST_F(CheckerTest, KnowsTheKeyThatAReadGotAdded) {
    fake::Tree &bare = build(container("aps-module", {container("config")}), "bare");
    const auto add_key = [&] {
        kidl_yfw_datatree *added = nullptr;
        yfw_map_datatree_add_path_flagged(request.ctx(), bare.root(), "name", nullptr, nullptr, nullptr, &added, 0, 0);
        added->consumed_mark = 1;
        added->flags |= 512;
    };
    EXPECT_EQ(differences(add_key), Lines{});
    // A second one is one too many.
    EXPECT_EQ(differences(add_key),
              (Lines{"bare: child count 2 -> 3", "bare: children is another", "bare/2:name: new"}));
}

TEST_F(CheckerTest, AnEditGetsNoKeyAdded) {
    request.set_kind(1);
    fake::Tree &bare = build(container("aps-module", {container("config")}), "bare");
    EXPECT_EQ(differences([&] {
                  yfw_map_datatree_add_path_flagged(request.ctx(), bare.root(), "name", nullptr, nullptr, nullptr,
                                                    nullptr, 0, 0);
              }),
              (Lines{"bare: child count 1 -> 2", "bare: children is another", "bare/1:name: new"}));
}

TEST_F(CheckerTest, TellsTreesOfOneNameApart) {
    fake::Tree &other = build(container("aps-module", {leaf("name", "0/2-PSM-OM")}));
    const Lines found = differences([&] { other.root()->operation = 3; });
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].substr(found[0].find(':')), ": operation 0 -> 3");
}

} // namespace
