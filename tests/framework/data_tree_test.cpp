#include "framework/host/data_tree.hpp"

#include <gmock/gmock.h>

namespace {

using ocpsm::Operation;
using ocpsm::RequestNode;
using ocpsm::framework::children_of;
using ocpsm::framework::DataTree;
using ocpsm::framework::print;
using testing::ElementsAre;

RequestNode sample() {
    const RequestNode two{"two", "", {}, Operation::merge, {{"leaf", "urn:b", ""}}};
    return {"aps", "urn:a", {}, Operation::merge, {{"one", "urn:a", "1", Operation::delete_existing}, two}};
}

TEST(DataTree, FlagsSayWhatANodeHas) {
    DataTree tree(sample());
    const kidl_yfw_datatree &root = tree.root();
    EXPECT_EQ(root.flags, 1U | 64U);
    EXPECT_EQ(root.child_count, 2);
    EXPECT_STREQ(root.tag, "aps");
    EXPECT_STREQ(root.namespace_uri, "urn:a");
    EXPECT_EQ(root.value, nullptr);
    EXPECT_EQ(root.children[0].flags, 1U | 2U);
    EXPECT_STREQ(root.children[0].value, "1");
    EXPECT_EQ(root.children[0].operation, 3U);
    EXPECT_EQ(root.children[0].children, nullptr);
    EXPECT_EQ(root.children[1].namespace_uri, nullptr);
    EXPECT_STREQ(root.children[1].children[0].value, "");
    EXPECT_EQ(root.children[1].children[0].flags, 1U | 2U);
}

TEST(DataTree, ACopyHasEveryMemberAsItStands) {
    DataTree tree(sample());
    kidl_yfw_datatree &one = tree.root().children[0];
    one.flags |= 16U | 512U;
    one.second_flags = 4;
    one.hierarchy_kind = 6;
    one.consumed_mark = 1;
    DataTree copy(tree.root());
    const kidl_yfw_datatree &copied = copy.root().children[0];
    EXPECT_NE(&copied, &one);
    EXPECT_NE(copied.tag, one.tag);
    EXPECT_STREQ(copied.tag, "one");
    EXPECT_STREQ(copied.value, "1");
    EXPECT_EQ(copied.operation, 3U);
    EXPECT_EQ(copied.flags, 1U | 2U | 16U | 512U);
    EXPECT_EQ(copied.second_flags, 4U);
    EXPECT_EQ(copied.hierarchy_kind, 6U);
    EXPECT_EQ(copied.consumed_mark, 1);
}

TEST(DataTree, HidingChildrenInTheTreeDoesNotHideThemInTheCopy) {
    DataTree tree(sample());
    DataTree copy(tree.root());
    tree.root().children = nullptr;
    tree.root().child_count = 0;
    EXPECT_THAT(print(copy.root()),
                ElementsAre("aps [urn:a]", "  one = \"1\" [urn:a] operation 3", "  two", "    leaf = \"\" [urn:b]"));
}

TEST(DataTree, HiddenChildrenAreNotCopiedAndNotLeaked) {
    DataTree tree(sample());
    tree.root().children = nullptr;
    tree.root().child_count = 0;
    DataTree copy(tree.root());
    EXPECT_THAT(print(copy.root()), ElementsAre("aps [urn:a]"));
}

TEST(DataTree, AnAddedChildMayMoveTheArrayAndKeepsWhatIsBelow) {
    DataTree tree(sample());
    for (int i = 0; i < 100; ++i) {
        const kidl_yfw_datatree &added = tree.add_child(tree.root(), {"new", "urn:n", std::to_string(i)});
        EXPECT_STREQ(added.value, std::to_string(i).c_str());
    }
    EXPECT_EQ(tree.root().child_count, 102);
    EXPECT_STREQ(tree.root().children[1].children[0].tag, "leaf");
    EXPECT_STREQ(tree.root().children[101].value, "99");
}

TEST(DataTree, AChildCanBeAddedToALeaf) {
    DataTree tree(sample());
    tree.add_child(tree.root().children[0], {"below", "urn:n"});
    EXPECT_EQ(tree.root().children[0].flags, 1U | 2U | 64U);
    EXPECT_THAT(print(tree.root().children[0]), ElementsAre("one = \"1\" [urn:a] operation 3", "  below [urn:n]"));
}

TEST(DataTree, PrintingSaysWhatIsNotInUse) {
    DataTree tree(sample());
    tree.root().children[0].flags = 0;
    tree.root().children[1].tag = nullptr;
    EXPECT_THAT(print(tree.root()),
                ElementsAre("aps [urn:a]", "  one (not in use)", "  (no tag)", "    leaf = \"\" [urn:b]"));
}

TEST(DataTree, AValueNeedsItsFlagAndItsText) {
    DataTree tree(sample());
    kidl_yfw_datatree &one = tree.root().children[0];
    EXPECT_EQ(ocpsm::framework::value_of(one), "1");
    one.flags = 1;
    EXPECT_EQ(ocpsm::framework::value_of(one), std::nullopt);
    one.flags = 3;
    one.value = nullptr;
    EXPECT_EQ(ocpsm::framework::value_of(one), std::nullopt);
}

TEST(DataTree, ANegativeCountIsNoChildren) {
    DataTree tree(sample());
    tree.root().child_count = -1;
    EXPECT_TRUE(children_of(tree.root()).empty());
    EXPECT_EQ(ocpsm::framework::find_child(tree.root(), "one"), nullptr);
}

} // namespace
