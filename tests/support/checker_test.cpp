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

// A change and what it is called, one after the other on the same nodes.
struct Change {
    std::function<void()> make;
    Lines differences;
};

TEST_F(CheckerTest, NamesWhatAWalkMayNotLeaveOnANode) {
    const std::string of_config = "aps-module/1:config: ";
    const std::string of_leaf = "aps-module/1:config/0:revertive: ";
    for (const Change &change : std::vector<Change>{
             {[] {}, {}},
             {[&] { config.operation = 4; }, {of_config + "operation 0 -> 4"}},
             {[&] { revertive.flags = 0; }, {of_leaf + "flags 1 -> 0"}},
             {[&] { revertive.flags = 17; }, {of_leaf + "flags 0 -> 17"}},
             {[&] { revertive.value = key.value; }, {of_leaf + "value is another"}},
             {[&] { revertive.consumed_mark = 1; }, {of_leaf + "consumed mark 0 -> 1"}},
             {[&] { revertive.flags |= 512; }, {of_leaf + "flags 17 -> 529"}},
             {[&] { revertive.hierarchy_kind = 1; }, {of_leaf + "hierarchy kind 0 -> 1, second flags 0 -> 0"}},
             {[&] { config.hierarchy_kind = 9, config.second_flags = 4; },
              {of_config + "hierarchy kind 0 -> 9, second flags 0 -> 4"}},
             {[&] { config.children = nullptr, config.child_count = 0; },
              {of_config + "child count 1 -> 0", of_config + "children is another", of_leaf + "gone"}}}) {
        EXPECT_EQ(differences(change.make), change.differences);
    }
}

TEST_F(CheckerTest, NamesWhatAWalkMayNotLeaveOnTheRequest) {
    request.set_kind(1);
    yfw_map_request &state = request.state;
    for (const Change &change : std::vector<Change>{
             {[&] { state.whole_subtree_walk = 1; }, {"whole_subtree_walk 0 -> 1"}},
             {[&] { state.delete_walk = 2; }, {"delete_walk 0 -> 2"}},
             {[&] { state.replace_flags = 128; }, {"replace_flags 0 -> 128"}},
             {[&] { state.replace_marker = 1; }, {"replace_marker 0 -> 1"}},
             {[&] { state.read_selection = 2; }, {"read_selection 0 -> 2"}},
             {[&] { state.output_depth = 1; }, {"output_depth 0 -> 1"}},
             {[&] { request.context.trace_enabled = 0; }, {"trace_enabled 1 -> 0"}},
             {[&] { yfw_map_util_itree_stack_push(request.ctx(), entry.children, 2, 0); }, {"the instance-tree stack"}},
             {[&] { yfw_map_add_to_node_hierarchy(request.ctx(), &entry, 2); },
              {"the node hierarchy", "hierarchy_length 0 -> 1"}}}) {
        EXPECT_EQ(differences(change.make), change.differences);
    }
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
