// Answers, where they cannot be told as cases: what the platform's operations refuse, and printed answers.
#include <libyang/libyang.h>

#include <functional>
#include <memory>

#include "framework/answer/cut.hpp"
#include "framework/host/mapping_context.hpp"
#include "session_fixture.hpp"

namespace {

using ocpsm::RequestNode;
using ocpsm::framework::AnswerWriter;
using ocpsm::framework::DataTree;
using ocpsm::framework::MappingContext;

const std::string space = "http://openconfig.net/yang/optical-transport-line-protection";
const std::string list = "/aps/aps-modules/aps-module";
constexpr kerrno invalid = 0xaaf30400;
constexpr kerrno unknown = 0xaaf30800;

// A context of an answer to a read of all modules.
class Answering : public testing::Test {
protected:
    kerrno search(const kidl_yfw_datatree &where, yfw_map_module_list *modules, const char *path, const char *name,
                  const char *key, const char *uri) {
        return yfw_map_search_or_add_list(&context, const_cast<kidl_yfw_datatree *>(&where), modules, path, name, key,
                                          uri);
    }

    ocpsm::framework::Channels channels;
    AnswerWriter writer;
    MappingContext context{YFW_KIND_GET, {"aps", space}, channels, writer};
};

TEST_F(Answering, AnAddNeedsItsNamespaceAndAnAbsolutePath) {
    const auto add = [this](const std::string &path, const char *uri) {
        return yfw_map_datatree_add_path_flagged(&context, &context.destination(), path.c_str(), uri, "true", nullptr,
                                                 nullptr, 0, 0);
    };
    EXPECT_EQ(add(list + "/config/revertive", "urn:other"), unknown);
    EXPECT_EQ(add("config", space.c_str()), invalid); // a step below the answer itself
}

TEST_F(Answering, ASearchNeedsTheModulesOfThisRequest) {
    kidl_yfw_datatree &answer = context.destination();
    yfw_map_module_list *modules = context.request->module_list;
    EXPECT_EQ(search(answer, modules, list.c_str(), "x", "revertive", space.c_str()), unknown);
    EXPECT_EQ(search(answer, modules, list.c_str(), nullptr, "name", space.c_str()), invalid);
    EXPECT_EQ(search(answer, nullptr, list.c_str(), "x", "name", space.c_str()), invalid);
    EXPECT_EQ(search(context.request_tree(), modules, list.c_str(), "x", "name", space.c_str()), invalid);
    EXPECT_EQ(search(answer, modules, "/aps", "x", "name", space.c_str()), unknown);
    EXPECT_EQ(search(answer, modules, list.c_str(), "x", "name", "urn:other"), unknown);
    EXPECT_TRUE(std::move(writer).finish().empty());
}

TEST_F(Answering, AStitchThatFailsIsKept) {
    const auto stitch = [this](const std::function<void(yfw_map_stitch_entry &)> &spoil) {
        yfw_map_stitch_entry entry{};
        entry.in_use = 1;
        entry.destination = &context.destination();
        entry.value_kind = YFW_STITCH_VALUE_TEXT;
        yfw_strcpy_s(entry.namespace_uri, sizeof entry.namespace_uri, space.c_str());
        yfw_strcpy_s(entry.value, sizeof entry.value, "true");
        yfw_strcpy_s(entry.instance_path, sizeof entry.instance_path, (list + "[name=x]/config/revertive").c_str());
        yfw_strcpy_s(entry.schema_path, sizeof entry.schema_path, (list + "/config/revertive").c_str());
        spoil(entry);
        return yfw_map_stitch_list_to_list(&context, &entry);
    };
    EXPECT_EQ(stitch([](auto &) {}), KERR_SUCCESS);
    EXPECT_EQ(writer.failure(), KERR_SUCCESS);
    EXPECT_EQ(stitch([](auto &entry) { entry.namespace_uri[0] = 'x'; }), unknown);
    EXPECT_EQ(writer.failure(), unknown);
    EXPECT_EQ(stitch([](auto &entry) { entry.in_use = 0; }), invalid);
    EXPECT_EQ(stitch([](auto &entry) { entry.value_kind = 2; }), invalid);
    EXPECT_EQ(stitch([](auto &entry) { entry.destination = nullptr; }), invalid);
    EXPECT_EQ(stitch([](auto &entry) { entry.schema_path[0] = '\0'; }), invalid);
    EXPECT_EQ(stitch([](auto &entry) { entry.instance_path[0] = '\0'; }), invalid);
    EXPECT_EQ(yfw_map_stitch_list_to_list(&context, nullptr), invalid);
    EXPECT_EQ(yfw_map_stitch_list_to_list(nullptr, nullptr), invalid);
    EXPECT_EQ(writer.failure(), unknown); // the first one
    EXPECT_TRUE(std::move(writer).finish().empty());
}

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
    // What has been looked for is looked for again once the children are others.
    node.children[1].child_count = 0;
    EXPECT_EQ(key("slot-id"), "(none)");
    node.children[1].child_count = 1;
    node.children[1].children[0].flags &= ~YFW_NODE_HAS_VALUE;
    EXPECT_EQ(key("slot-id"), "(none)");
    node.children[1].children[0].flags |= YFW_NODE_HAS_VALUE;
    EXPECT_EQ(key("slot-id"), "1");
}

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

TEST_F(Answering, ANodeOfAnotherNamespaceSelectsNothing) {
    EXPECT_EQ(search(context.destination(), context.request->module_list, list.c_str(), "x", "name", space.c_str()),
              KERR_SUCCESS);
    EXPECT_TRUE(cut(std::move(writer).finish(), {{"aps", "urn:other"}}).empty());
}

// ---- printed answers ----

// Whether a text is what the model allows, without anything unknown; and how many leaves it has.
std::optional<int> strictly_parsed(const std::string &text, LYD_FORMAT format) {
    lyd_node *parsed = nullptr;
    const LY_ERR result = lyd_parse_data_mem(ocpsm::models::Schema::openconfig().context(), text.c_str(), format,
                                             LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &parsed);
    const ocpsm::OwnedNode tree(parsed);
    if (result != LY_SUCCESS) {
        return std::nullopt;
    }
    int leaves = 0;
    lyd_node *node = nullptr;
    LYD_TREE_DFS_BEGIN(tree.get(), node) {
        leaves += node->schema->nodetype == LYS_LEAF ? 1 : 0;
        LYD_TREE_DFS_END(tree.get(), node)
    }
    return leaves;
}

class PrintedAnswers : public SessionFixture {};

TEST_F(PrintedAnswers, ParseStrictlyAndHoldWhatWasReadAndNoDefault) {
    const ocpsm::line_system::LineSystem bare = ocpsm::line_system::with_modules(std::vector<int>{1, 2});
    for (const bool example : {true, false}) {
        use(example ? ocpsm::line_system::example() : bare);
        for (const Kind kind : {Kind::get, Kind::get_config}) {
            for (const std::string &path :
                 {std::string("/"), module_path(1), module_path(1, "/config"), module_path(1, "/ports")}) {
                const auto result = requests::read_paths(plugin(), std::vector{path}, kind, device());
                const auto leaves = static_cast<int>(result.answer.leaves().size());
                const std::string xml = result.answer.print(ocpsm::Format::xml);
                const std::string json = result.answer.print(ocpsm::Format::json);
                EXPECT_EQ(strictly_parsed(xml, LYD_XML), leaves) << xml;
                EXPECT_EQ(strictly_parsed(json, LYD_JSON), leaves) << json;
            }
        }
    }
}

} // namespace
