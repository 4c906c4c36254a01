// What the plug-in writes to an answer, operation by operation.
#include "framework/answer/tree.hpp"

#include <functional>

#include "framework/host/mapping_context.hpp"
#include "session_fixture.hpp"

namespace {

using ocpsm::RequestNode;
using ocpsm::framework::AnswerTree;
using ocpsm::framework::DataTree;
using ocpsm::framework::MappingContext;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string space = "http://openconfig.net/yang/optical-transport-line-protection";
const std::string list = "/aps/aps-modules/aps-module";
const std::string revertive = list + "/config/revertive";
const std::string timer = list + "/config/wait-to-restore-time";

// A context of an answer to a read of all modules.
class Answering : public testing::Test {
protected:
    kerrno add(const std::string &path, const char *value, uint32_t first_flag = 0) {
        return yfw_map_datatree_add_path_flagged(&context, &context.destination(), path.c_str(), space.c_str(), value,
                                                 nullptr, nullptr, first_flag, 0);
    }
    kerrno open() { return add(list, nullptr, 1); }

    kerrno search(const char *name, const char *key = "name") {
        return yfw_map_search_or_add_list(&context, &context.destination(), context.request->module_list, list.c_str(),
                                          name, key, space.c_str());
    }

    yfw_map_stitch_entry stitched(const std::string &name, const std::string &leaf, const std::string &value) {
        yfw_map_stitch_entry entry{};
        entry.in_use = 1;
        entry.destination = &context.destination();
        entry.value_kind = YFW_STITCH_VALUE_TEXT;
        yfw_strcpy_s(entry.namespace_uri, sizeof entry.namespace_uri, space.c_str());
        yfw_strcpy_s(entry.value, sizeof entry.value, value.c_str());
        yfw_strcpy_s(entry.instance_path, sizeof entry.instance_path, (list + "[name=" + name + "]" + leaf).c_str());
        yfw_strcpy_s(entry.schema_path, sizeof entry.schema_path, (list + leaf).c_str());
        return entry;
    }
    kerrno stitch(const std::string &name, const std::string &leaf, const std::string &value) {
        yfw_map_stitch_entry entry = stitched(name, leaf, value);
        return yfw_map_stitch_list_to_list(&context, &entry);
    }

    void open_scope() { yfw_add_to_output_list_ctx(&context, &context.request_tree(), &context.destination()); }
    void close_scope() { yfw_remove_from_output_list_ctx(&context, &context.request_tree(), &context.destination()); }

    Lines written() { return leaves_of(tree.answer()); }

    ocpsm::framework::Channels channels;
    AnswerTree tree;
    MappingContext context{YFW_KIND_GET, {"aps", space}, channels, tree};
};

// ---- the current module ----

TEST_F(Answering, WithoutACurrentModuleWhatIsAddedIsDropped) {
    EXPECT_EQ(add(revertive, "true"), KERR_SUCCESS);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Answering, ASearchFindsOrMakesAModuleAndMakesItCurrent) {
    EXPECT_EQ(search("0/1-PSM-OM"), KERR_SUCCESS);
    add(revertive, "true");
    EXPECT_EQ(search("0/2-PSM-OM"), KERR_SUCCESS);
    add(revertive, "false");
    EXPECT_EQ(search("0/1-PSM-OM"), KERR_SUCCESS);
    add(timer, "5");
    EXPECT_THAT(written(),
                ElementsAre("1/name = 0/1-PSM-OM", "1/config/revertive = true", "1/config/wait-to-restore-time = 5",
                            "2/name = 0/2-PSM-OM", "2/config/revertive = false"));
    EXPECT_THAT(tree.names(), ElementsAre("0/1-PSM-OM", "0/2-PSM-OM"));
}

TEST_F(Answering, AnOpenedModuleWithoutNameIsDropped) {
    EXPECT_EQ(open(), KERR_SUCCESS);
    add(revertive, "true");
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Answering, AnOpenedModuleTakesItsNameFromItsKey) {
    open();
    add(revertive, "true");
    EXPECT_EQ(add(list + "/name", "0/1-PSM-OM"), KERR_SUCCESS);
    add(timer, "5");
    open();
    add(list + "/name", "0/1-PSM-OM"); // the one that is there
    add(timer, "6");
    add(list + "/name", "0/2-PSM-OM"); // never a second name
    add(timer, "7");
    EXPECT_THAT(written(),
                ElementsAre("1/name = 0/1-PSM-OM", "1/config/revertive = true", "1/config/wait-to-restore-time = 6",
                            "2/name = 0/2-PSM-OM", "2/config/wait-to-restore-time = 7"));
}

TEST_F(Answering, AStitchMakesItsModuleCurrent) {
    EXPECT_EQ(stitch("0/3-PSM-OM", "/name", "0/3-PSM-OM"), KERR_SUCCESS);
    add(revertive, "true");
    EXPECT_EQ(stitch("0/3-PSM-OM", "/state/active-path", "PRIMARY"), KERR_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre("3/name = 0/3-PSM-OM", "3/config/revertive = true", "3/state/active-path = PRIMARY"));
}

TEST_F(Answering, AStitchOfAnotherLeafDoesNotNameTheModule) {
    EXPECT_EQ(stitch("0/3-PSM-OM", "/state/active-path", "PRIMARY"), KERR_SUCCESS);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(tree.names(), IsEmpty());
    search("0/3-PSM-OM");
    EXPECT_THAT(written(), ElementsAre("3/name = 0/3-PSM-OM", "3/state/active-path = PRIMARY"));
}

TEST_F(Answering, TheMapPointsAndNeverCreates) {
    tree.point_to("0/1-PSM-OM");
    add(revertive, "true");
    tree.point_to(std::nullopt);
    add(timer, "5");
    EXPECT_THAT(written(), IsEmpty());
    search("0/1-PSM-OM");
    EXPECT_THAT(written(), ElementsAre("1/name = 0/1-PSM-OM", "1/config/revertive = true"));
}

TEST_F(Answering, ScopesGiveTheModuleBackThatWasCurrentAroundThem) {
    search("0/1-PSM-OM");
    open_scope();
    EXPECT_EQ(context.request->output_depth, 1U);
    search("0/2-PSM-OM");
    open_scope();
    EXPECT_EQ(context.request->output_depth, 2U);
    stitch("0/3-PSM-OM", "/name", "0/3-PSM-OM");
    add(timer, "3");
    close_scope();
    EXPECT_EQ(context.request->output_depth, 1U);
    add(timer, "1");
    close_scope();
    EXPECT_EQ(context.request->output_depth, 0U);
    add(timer, "0"); // no module is current outside of all scopes
    close_scope();
    EXPECT_THAT(written(),
                ElementsAre("1/name = 0/1-PSM-OM", "1/config/wait-to-restore-time = 1", "2/name = 0/2-PSM-OM",
                            "3/name = 0/3-PSM-OM", "3/config/wait-to-restore-time = 3"));
}

// ---- values ----

TEST_F(Answering, TheLastValueCountsUnlessItIsAbsentOrEmpty) {
    search("0/1-PSM-OM");
    add(timer, "5");
    add(timer, "5");
    add(timer, "6");
    add(timer, "");
    add(timer, nullptr);
    stitch("0/1-PSM-OM", "/config/revertive", "true");
    stitch("0/1-PSM-OM", "/config/revertive", "false");
    EXPECT_THAT(written(),
                ElementsAre("1/name = 0/1-PSM-OM", "1/config/revertive = false", "1/config/wait-to-restore-time = 6"));
}

TEST_F(Answering, TheAnswerStandsInTheOrderOfTheModelAndOfTheKeys) {
    search("0/2-PSM-OM");
    stitch("0/2-PSM-OM", "/ports/common-output/state/optical-power/min", "-1.00");
    stitch("0/2-PSM-OM", "/state/name", "0/2-PSM-OM");
    add(timer, "5");
    add(revertive, "true");
    search("0/1-PSM-OM");
    EXPECT_THAT(written(), ElementsAre("1/name = 0/1-PSM-OM", "2/name = 0/2-PSM-OM", "2/config/revertive = true",
                                       "2/config/wait-to-restore-time = 5", "2/state/name = 0/2-PSM-OM",
                                       "2/ports/common-output/state/optical-power/min = -1.00"));
}

TEST_F(Answering, PathsMayHavePrefixes) {
    search("0/1-PSM-OM");
    EXPECT_EQ(add("/a:aps/a:aps-modules/a:aps-module/a:config/a:revertive", "true"), KERR_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("1/name = 0/1-PSM-OM", "1/config/revertive = true"));
}

// ---- what is refused ----

constexpr kerrno invalid = 0xaaf30400;
constexpr kerrno unknown = 0xaaf30800;

TEST_F(Answering, WhatTheModelDoesNotHaveIsNotAdded) {
    search("0/1-PSM-OM");
    EXPECT_EQ(add(list + "/config/colour", "red"), unknown);
    EXPECT_EQ(add(list + "/config", "red"), 0xaaf30a00U);
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(&context, &context.destination(), revertive.c_str(), "urn:other",
                                                "true", nullptr, nullptr, 0, 0),
              unknown);
    EXPECT_EQ(add("config", "red"), invalid); // a step below the answer itself
    EXPECT_EQ(add(list + "/config", nullptr), KERR_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("1/name = 0/1-PSM-OM"));
}

TEST_F(Answering, ASearchNeedsTheModulesOfThisRequest) {
    EXPECT_EQ(search("0/1-PSM-OM", "revertive"), unknown);
    EXPECT_EQ(search(nullptr), invalid);
    EXPECT_EQ(
        yfw_map_search_or_add_list(&context, &context.destination(), nullptr, list.c_str(), "x", "name", space.c_str()),
        invalid);
    EXPECT_EQ(yfw_map_search_or_add_list(&context, &context.request_tree(), context.request->module_list, list.c_str(),
                                         "x", "name", space.c_str()),
              invalid);
    EXPECT_EQ(yfw_map_search_or_add_list(&context, &context.destination(), context.request->module_list, "/aps", "x",
                                         "name", space.c_str()),
              unknown);
    EXPECT_EQ(yfw_map_search_or_add_list(&context, &context.destination(), context.request->module_list, list.c_str(),
                                         "x", "name", "urn:other"),
              unknown);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Answering, AStitchThatFailsIsKept) {
    const auto refused = [this](const std::function<void(yfw_map_stitch_entry &)> &spoil) {
        yfw_map_stitch_entry entry = stitched("0/1-PSM-OM", "/config/revertive", "true");
        spoil(entry);
        return yfw_map_stitch_list_to_list(&context, &entry);
    };
    EXPECT_EQ(refused([](auto &) {}), KERR_SUCCESS);
    EXPECT_EQ(tree.failure(), KERR_SUCCESS);
    EXPECT_EQ(refused([](auto &entry) { entry.namespace_uri[0] = 'x'; }), unknown);
    EXPECT_EQ(tree.failure(), unknown);
    EXPECT_EQ(refused([](auto &entry) { entry.in_use = 0; }), invalid);
    EXPECT_EQ(refused([](auto &entry) { entry.value_kind = 2; }), invalid);
    EXPECT_EQ(refused([](auto &entry) { entry.destination = nullptr; }), invalid);
    EXPECT_EQ(refused([](auto &entry) { entry.schema_path[0] = '\0'; }), invalid);
    EXPECT_EQ(refused([](auto &entry) { entry.instance_path[0] = '\0'; }), invalid);
    EXPECT_EQ(stitch("0/1-PSM-OM", "/config/colour", "red"), unknown);
    EXPECT_EQ(stitch("0/1-PSM-OM", "/config", "red"), unknown);
    EXPECT_EQ(stitch("0/1-PSM-OM", "/name", "0/2-PSM-OM"), invalid);
    EXPECT_EQ(yfw_map_stitch_list_to_list(&context, nullptr), invalid);
    EXPECT_EQ(yfw_map_stitch_list_to_list(nullptr, nullptr), invalid);
    EXPECT_EQ(tree.failure(), unknown); // the first one
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Answering, NamesOfModulesMayHoldAnything) {
    const std::string name = "a]/b[c='\"";
    EXPECT_EQ(stitch(name, "/name", name), KERR_SUCCESS);
    EXPECT_THAT(tree.names(), ElementsAre(name));
}

// ---- the hierarchy ----

const std::string interfaces_space = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";

TEST_F(Answering, TheInnermostEntryWithSuchAKeyIsFound) {
    const RequestNode inner{"slot", "urn:s", std::nullopt, ocpsm::Operation::merge, {{"slot-id", "urn:s", "1"}}};
    DataTree native(RequestNode{
        "active-nodes",
        "urn:n",
        std::nullopt,
        ocpsm::Operation::merge,
        {{"active-node", "urn:n", std::nullopt, ocpsm::Operation::merge, {{"node-name", "urn:n", "0"}, inner}}}});
    const auto key = [this](const char *name) {
        const char *text = "untouched";
        EXPECT_EQ(yfw_map_get_node_info(&context, "/of/any/list", name, &text), KERR_SUCCESS);
        return std::string(text == nullptr ? "(none)" : text);
    };
    kidl_yfw_datatree &node = native.root().children[0];
    yfw_map_add_to_node_hierarchy(&context, &native.root(), 1);
    EXPECT_EQ(key("node-name"), "(none)");
    yfw_map_add_to_node_hierarchy(&context, &node, 2);
    yfw_map_add_to_node_hierarchy(&context, &node.children[1], 2);
    EXPECT_EQ(key("slot-id"), "1");
    EXPECT_EQ(key("node-name"), "0");
    EXPECT_EQ(key("name"), "(none)");
    EXPECT_EQ(yfw_map_update_current_list_node(&context, "/node:active-nodes/node:active-node/slot"), KERR_SUCCESS);
    EXPECT_EQ(context.request->list_node, nullptr);
    EXPECT_EQ(yfw_map_get_node_info(&context, "/of/any/list", "name", nullptr), invalid);
    EXPECT_EQ(yfw_map_get_node_info(nullptr, "/of/any/list", "name", nullptr), invalid);
}

// ---- what a read names ----

TEST_F(Answering, AReadOfStateLeavesAloneShowsInTheRequest) {
    EXPECT_EQ(context.request->selection_mode, 0U);
    EXPECT_EQ(context.request->leaf_selection, 0U);
    context.select_state_leaves(0);
    EXPECT_EQ(context.request->selection_mode, 0U);
    context.select_state_leaves(3);
    EXPECT_EQ(context.request->selection_mode, 2U);
    EXPECT_EQ(context.request->leaf_selection, 7U);
    context.select_state_leaves(40);
    EXPECT_EQ(context.request->leaf_selection, 0xffffffffU);
}

// ---- not an answer ----

TEST(Translating, AnAnswerIsNotServedWhileARequestIsTranslated) {
    ocpsm::framework::Channels channels;
    ocpsm::native::NativeRequest native(ocpsm::native::RequestKind::read);
    MappingContext context(YFW_KIND_GET, {"aps", space}, channels, native);
    yfw_map_stitch_entry entry{};
    EXPECT_EQ(yfw_map_stitch_list_to_list(&context, &entry), 0xaaf30600U);
    EXPECT_EQ(context.request->module_list, nullptr);
    EXPECT_EQ(
        yfw_map_search_or_add_list(&context, &context.destination(), nullptr, list.c_str(), "x", "name", space.c_str()),
        0xaaf30600U);
}

} // namespace
