// What the recording platform promises to the tests that rest on it.
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

#include <hvs_libc.h>

#include "request.hpp"

namespace {

using fake::container;
using fake::leaf;
using Lines = std::vector<std::string>;

class FakePlatformTest : public fake::RequestTest {};

TEST_F(FakePlatformTest, RecordsAnAddWithAllItsArguments) {
    fake::Tree &tree = build(leaf("revertive", "true"));
    kidl_yfw_datatree *result = tree.root();
    yfw_map_datatree_add_path_flagged(request.ctx(), dest, "/a/b", "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg",
                                      nullptr, tree.root(), nullptr, 1, 0);
    yfw_map_datatree_add_path_flagged(request.ctx(), dest, "/a", "urn:other", "", nullptr, &result, 0, 1);
    EXPECT_EQ(platform.calls(),
              (Lines{"add(ctx, dest, \"/a/b\", ns=ifmgr-cfg, value=null, src=revertive, result=none, 1, 0)",
                     "add(ctx, dest, \"/a\", ns=\"urn:other\", value=\"\", src=none, result=slot, 0, 1)"}));
    EXPECT_EQ(result, nullptr);
}

TEST_F(FakePlatformTest, ARelativeAddMovesTheChildren) {
    fake::Tree &tree = build(container("entry", {leaf("a", "1"), container("b", {leaf("c")})}));
    const kidl_yfw_datatree *const before = tree.root()->children;
    kidl_yfw_datatree *added = nullptr;
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(request.ctx(), tree.root(), "name", fake::openconfig, "x", nullptr,
                                                &added, 0, 0),
              0u);
    EXPECT_NE(tree.root()->children, before);
    EXPECT_EQ(tree.root()->child_count, 3);
    EXPECT_EQ(platform.name_of(added), "entry/name");
    EXPECT_EQ(platform.name_of(&tree.root()->children[1].children[0]), "entry/b/c");
    EXPECT_STREQ(added->value, "x");
    EXPECT_EQ(added->flags, 3u);
}

TEST_F(FakePlatformTest, AnswersAsScripted) {
    platform.answer("update_current_list", 7, 2);
    platform.answer("add", 9, 0, "\"/b\"");
    EXPECT_EQ(yfw_map_update_current_list_node(request.ctx(), "/x"), 0u);
    EXPECT_EQ(yfw_map_update_current_list_node(request.ctx(), "/x"), 7u);
    EXPECT_EQ(yfw_map_update_current_list_node(request.ctx(), "/x"), 0u);
    const auto add = [&](const char *path) {
        return yfw_map_datatree_add_path_flagged(request.ctx(), dest, path, nullptr, nullptr, nullptr, nullptr, 0, 0);
    };
    EXPECT_EQ(add("/a"), 0u);
    EXPECT_EQ(add("/b"), 9u);
}

TEST_F(FakePlatformTest, KeepsACopyOfTheCurrentEntry) {
    fake::Tree &tree = build(container("aps-module", {leaf("name", "0/1-PSM-OM")}));
    yfw_map_add_to_node_hierarchy(request.ctx(), tree.root(), 2);
    EXPECT_EQ(yfw_map_update_current_list_node(request.ctx(), "/aps/aps-modules/aps-module"), 0u);
    ASSERT_NE(request.state.list_node, nullptr);
    EXPECT_NE(request.state.list_node, tree.root());
    EXPECT_STREQ(request.state.list_node->children[0].value, "0/1-PSM-OM");
    yfw_map_remove_from_node_hierarchy(request.ctx(), tree.root());
    EXPECT_EQ(yfw_map_update_current_list_node(request.ctx(), "/aps/aps-modules/aps-module"), 0u);
    EXPECT_EQ(request.state.list_node, nullptr);
}

TEST_F(FakePlatformTest, NoticesWhatIsReleasedTwiceOrNever) {
    char *const text = yfw_strdup("text", "YFW MAP");
    EXPECT_EQ(platform.heap(), (Lines{"text (YFW MAP)"}));
    hvs_named_free(text);
    EXPECT_EQ(platform.heap(), Lines{});
    hvs_named_free(nullptr);
    EXPECT_EQ(platform.faults(), Lines{});
    platform.release(text);
    EXPECT_EQ(platform.take_faults(),
              (Lines{"hvs_named_free of something that yfw_strdup did not give, or a second time"}));
}

TEST_F(FakePlatformTest, NoticesAHierarchyThatIsNotLeftInOrder) {
    fake::Tree &tree = build(container("aps", {container("aps-modules")}));
    yfw_map_add_to_node_hierarchy(request.ctx(), tree.root(), 1);
    yfw_map_remove_from_node_hierarchy(request.ctx(), tree.at("aps-modules"));
    EXPECT_EQ(platform.take_faults(),
              (Lines{"a node was removed from the hierarchy that does not stand on top: aps/aps-modules"}));
    yfw_map_remove_from_node_hierarchy(request.ctx(), tree.root());
    yfw_map_util_itree_stack_pop(request.ctx());
    EXPECT_EQ(platform.take_faults(), (Lines{"the empty instance-tree stack was popped"}));
}

TEST_F(FakePlatformTest, NoticesMessagesThatBreakTheContract) {
    static std::uint32_t used = 5;
    _hvs_dt_log_filter_adv(request.context.error_log, 0, 0, 1, 0, 0, &used, "ERR: YFW: ctx=%p,x",
                           static_cast<void *>(request.ctx()));
    EXPECT_EQ(platform.take_faults(), (Lines{"a log line whose five numbers are not zero: ERR: YFW: ctx=%p,x",
                                             "the slot of a statement did not begin as all ones: ERR: YFW: ctx=%p,x"}));
    static std::uint32_t site = 0xffffffff;
    _hvs_dt_log_filter_adv(request.context.trace_log, 0, 0, 0, 0, 0, &site, "ERR: YFW: ctx=%p,x",
                           static_cast<void *>(request.ctx()));
    _hvs_dt_log_filter_adv(request.context.trace_log, 0, 0, 0, 0, 0, &site, "TRC: YFW: ctx=%p,y",
                           static_cast<void *>(request.ctx()));
    EXPECT_EQ(platform.take_faults().size(), 2u); // the handle of another level, one slot for two messages
    _lstrace(request.context.trace_buffer, 1, "no such form");
    EXPECT_EQ(platform.take_faults().size(), 2u); // the options, the form
    EXPECT_EQ(platform.logged().size(), 3u);
}

TEST_F(FakePlatformTest, NoticesAStitchRecordThatIsNotZeroBehindItsTexts) {
    yfw_map_stitch_entry entry{};
    entry.in_use = 1;
    EXPECT_EQ(yfw_map_stitch_list_to_list(request.ctx(), &entry), 0u);
    EXPECT_EQ(platform.faults(), Lines{});
    for (char *const text : {entry.namespace_uri, entry.value, entry.instance_path, entry.schema_path}) {
        text[3] = 'x';
        yfw_map_stitch_list_to_list(request.ctx(), &entry);
        EXPECT_EQ(platform.take_faults(), (Lines{"a stitch record that is not zero behind its texts"}));
        text[3] = '\0';
    }
}

// ---- database and bags ----

TEST_F(FakePlatformTest, HandsOutItemsAndFollowsTheirBags) {
    fake::Bag bag;
    bag.tokens = {fake::text_token("Name", "0/1-PSM-OM"),
                  {BAG_TOKEN_INT32, "Power", -5, std::nullopt},
                  fake::mark_token(BAG_TOKEN_END)};
    platform.items["/oper/x"] = fake::bag_item(bag);
    sysdb_handle_td handle = nullptr;
    EXPECT_EQ(_sysdb_bind(&handle, "/oper/", 0), 0u);
    sysdb_item_datatype_td type = 7;
    void *data = nullptr;
    std::uint32_t length = 0;
    EXPECT_EQ(sysdb_item_get(handle, "x", &type, &data, &length, 0), 0u);
    EXPECT_EQ(_sysdb_unbind(handle), 0u);
    bag_generic_state_td state = nullptr;
    EXPECT_EQ(bag_generic_init(data, length, &state), 0u);
    bag_token_td token{};
    EXPECT_EQ(bag_generic_token(state, &token), 0u);
    EXPECT_STREQ(token.value.text, "0/1-PSM-OM");
    EXPECT_EQ(platform.tokens_outstanding(), 1u);
    bag_generic_free_token_allocations(&token);
    EXPECT_EQ(bag_generic_token(state, &token), 0u);
    EXPECT_EQ(token.value.int32, -5);
    bag_generic_free_token_allocations(&token);
    EXPECT_EQ(platform.faults(), Lines{});
    bag_generic_free_token_allocations(&token);
    EXPECT_EQ(platform.take_faults(), (Lines{"a token was released a second time, or was never given"}));
    EXPECT_EQ(bag_generic_token(state, &token), 0u);
    bag_generic_destroy(state);
    EXPECT_EQ(platform.take_faults(), (Lines{"a decoder was destroyed while tokens were out"}));
    bag_generic_free_token_allocations(&token);
    // The database's data is the allocator's.
    std::free(data); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
}

TEST_F(FakePlatformTest, ABagWithoutAnEndFailsBehindItsLastToken) {
    const int data = 0;
    platform.bag_at(&data, fake::Bag{});
    bag_generic_state_td state = nullptr;
    EXPECT_EQ(bag_generic_init(&data, 4, &state), 0u);
    bag_token_td token{};
    EXPECT_EQ(bag_generic_token(state, &token), 0x1badba60u);
    bag_generic_destroy(state);
}

TEST_F(FakePlatformTest, ADatabaseItemThatIsNotThereHasACodeOfItsOwn) {
    sysdb_handle_td handle = nullptr;
    EXPECT_EQ(_sysdb_bind(&handle, "/oper/", 0), 0u);
    sysdb_item_datatype_td type = 7;
    void *data = nullptr;
    std::uint32_t length = 0;
    EXPECT_EQ(sysdb_item_get(handle, "x", &type, &data, &length, 0), 0x0a0b0c00u);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(_sysdb_unbind(handle), 0u);
    EXPECT_EQ(_sysdb_unbind(handle), 0u);
    EXPECT_EQ(platform.take_faults(), (Lines{"a database handle was released that is not bound"}));
}

// ---- texts ----

TEST_F(FakePlatformTest, BoundedCopiesCutAndTerminate) {
    std::array<char, 5> text{};
    EXPECT_EQ(yfw_strcpy_s(text.data(), text.size(), "abcd"), 0);
    EXPECT_STREQ(text.data(), "abcd");
    EXPECT_NE(yfw_strcpy_s(text.data(), text.size(), "abcdef"), 0);
    EXPECT_STREQ(text.data(), "abcd");
    EXPECT_EQ(yfw_strncpy_s(text.data(), text.size(), "xyz", 2), 0);
    EXPECT_STREQ(text.data(), "xy");
    EXPECT_EQ(yfw_strcat_s(text.data(), text.size(), "12"), 0);
    EXPECT_NE(yfw_strcat_s(text.data(), text.size(), "3"), 0);
    EXPECT_STREQ(text.data(), "xy12");
    EXPECT_EQ(memset_s(text.data(), 2, '-', 2), 0);
    EXPECT_NE(memset_s(text.data(), 3, '+', 9), 0);
    EXPECT_STREQ(text.data(), "+++2");
}

TEST_F(FakePlatformTest, AnswersForTheClientLibraryOnly) {
    EXPECT_EQ(::access("/", R_OK), 0);
    EXPECT_NE(::access("/no/such/file", R_OK), 0);
    EXPECT_EQ(platform.count("access"), 0u);
}

} // namespace
