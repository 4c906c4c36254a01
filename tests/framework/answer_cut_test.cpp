// What of an answer is selected, value checks, and the printed text.
#include "framework/answer/cut.hpp"

#include <libyang/libyang.h>

#include <memory>

#include "dump.hpp"
#include "framework/answer/check.hpp"
#include "framework/answer/print.hpp"
#include "framework/models/models.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "session_fixture.hpp"

namespace {

using ocpsm::Format;
using ocpsm::Kind;
using ocpsm::framework::AnswerNode;
using testing::ElementsAre;
using testing::IsEmpty;

const lysc_node *schema(const std::string &path) {
    return ocpsm::models::Schema::openconfig().find(path);
}

const std::string list = "/aps/aps-modules/aps-module";

AnswerNode module(const std::string &name, const std::string &revertive, const std::string &timer) {
    const AnswerNode config{schema(list + "/config"),
                            {},
                            {AnswerNode{schema(list + "/config/name"), name},
                             AnswerNode{schema(list + "/config/revertive"), revertive},
                             AnswerNode{schema(list + "/config/wait-to-restore-time"), timer}}};
    const AnswerNode state{schema(list + "/state"), {}, {AnswerNode{schema(list + "/state/active-path"), "PRIMARY"}}};
    return {schema(list), {}, {AnswerNode{schema(list + "/name"), name}, config, state}};
}

std::vector<AnswerNode> tops(std::vector<AnswerNode> modules) {
    const AnswerNode container{schema("/aps/aps-modules"), {}, std::move(modules)};
    return {AnswerNode{schema("/aps"), {}, {container}}};
}

std::vector<AnswerNode> two_modules() {
    return tops({module("0/1-PSM-OM", "true", "5"), module("0/2-PSM-OM", "false", "5")});
}

std::vector<ocpsm::RequestNode> selections(const std::string &content) {
    return ocpsm::framework::type_request(ocpsm::framework::parse_request(modules_text(content), Kind::get), Kind::get,
                                          true);
}

Lines cut(const std::string &content) {
    return leaves_of(ocpsm::framework::cut(two_modules(), selections(content)));
}

const Lines whole{"1/name = 0/1-PSM-OM",
                  "1/config/name = 0/1-PSM-OM",
                  "1/config/revertive = true",
                  "1/config/wait-to-restore-time = 5",
                  "1/state/active-path = PRIMARY",
                  "2/name = 0/2-PSM-OM",
                  "2/config/name = 0/2-PSM-OM",
                  "2/config/revertive = false",
                  "2/config/wait-to-restore-time = 5",
                  "2/state/active-path = PRIMARY"};

TEST(Cut, AnEmptyNodeSelectsAllThatIsBelowIt) {
    EXPECT_EQ(cut(""), whole);
    EXPECT_EQ(cut("<aps-module/>"), whole);
    EXPECT_EQ(leaves_of(ocpsm::framework::cut(
                  two_modules(), {{"aps", "http://openconfig.net/yang/optical-transport-line-protection"}})),
              whole);
    EXPECT_THAT(cut("<aps-module><state/></aps-module>"),
                ElementsAre("1/name = 0/1-PSM-OM", "1/state/active-path = PRIMARY", "2/name = 0/2-PSM-OM",
                            "2/state/active-path = PRIMARY"));
}

TEST(Cut, SelectionsOfOneNodeAreJoinedInTheOrderOfTheModel) {
    EXPECT_THAT(cut("<aps-module><state/><name>0/2-PSM-OM</name><config><wait-to-restore-time/><revertive/></config>"
                    "</aps-module>"),
                ElementsAre("2/name = 0/2-PSM-OM", "2/config/revertive = false", "2/config/wait-to-restore-time = 5",
                            "2/state/active-path = PRIMARY"));
}

TEST(Cut, AKeyAloneSelectsItsEntry) {
    EXPECT_EQ(cut("<aps-module><name>0/1-PSM-OM</name></aps-module>"), Lines(whole.begin(), whole.begin() + 5));
    EXPECT_THAT(cut("<aps-module><name>0/3-PSM-OM</name></aps-module>"), IsEmpty());
    EXPECT_THAT(cut("<aps-module><name/></aps-module>"), ElementsAre("1/name = 0/1-PSM-OM", "2/name = 0/2-PSM-OM"));
}

TEST(Cut, AMatchSelectsWhatStandsBesideIt) {
    EXPECT_THAT(cut("<aps-module><config><revertive>false</revertive></config></aps-module>"),
                ElementsAre("2/name = 0/2-PSM-OM", "2/config/name = 0/2-PSM-OM", "2/config/revertive = false",
                            "2/config/wait-to-restore-time = 5"));
    EXPECT_THAT(cut("<aps-module><config><revertive>false</revertive><wait-to-restore-time/></config></aps-module>"),
                ElementsAre("2/name = 0/2-PSM-OM", "2/config/revertive = false", "2/config/wait-to-restore-time = 5"));
    EXPECT_THAT(cut("<aps-module><config><revertive>false</revertive><wait-to-restore-time>6</wait-to-restore-time>"
                    "</config></aps-module>"),
                IsEmpty());
}

// A match decides about its siblings, not about the entry around them.
TEST(Cut, WhatDoesNotMatchIsMissingAlone) {
    EXPECT_THAT(cut("<aps-module><config><revertive>false</revertive></config><state/></aps-module>"),
                ElementsAre("1/name = 0/1-PSM-OM", "1/state/active-path = PRIMARY", "2/name = 0/2-PSM-OM",
                            "2/config/name = 0/2-PSM-OM", "2/config/revertive = false",
                            "2/config/wait-to-restore-time = 5", "2/state/active-path = PRIMARY"));
    EXPECT_THAT(cut("<aps-module><name>0/1-PSM-OM</name><config><revertive>false</revertive></config></aps-module>"),
                ElementsAre("1/name = 0/1-PSM-OM"));
}

TEST(Cut, ANodeOfAnotherNamespaceSelectsNothing) {
    EXPECT_THAT(leaves_of(ocpsm::framework::cut(two_modules(), {{"aps", "urn:other"}})), IsEmpty());
}

// ---- what is named ----

std::size_t state_leaves(const std::string &content) {
    return ocpsm::framework::state_leaves_only(selections(content));
}

TEST(StateLeaves, AreCountedWhereNothingElseIsNamed) {
    EXPECT_EQ(state_leaves("<aps-module><name>x</name><state><active-path/></state></aps-module>"), 1U);
    EXPECT_EQ(state_leaves("<aps-module><state><active-path/><revertive>true</revertive></state><ports>"
                           "<common-output><state><optical-power><min/></optical-power></state></common-output></ports>"
                           "</aps-module>"),
              3U);
    EXPECT_EQ(state_leaves("<aps-module><state/></aps-module>"), 0U);
    EXPECT_EQ(state_leaves("<aps-module><state><active-path/></state><config><revertive/></config></aps-module>"), 0U);
    EXPECT_EQ(state_leaves("<aps-module><state><active-path/></state><config/></aps-module>"), 0U);
    EXPECT_EQ(state_leaves("<aps-module><state><active-path/><colour/></state></aps-module>"), 0U);
    EXPECT_EQ(state_leaves("<aps-module><name>x</name></aps-module>"), 0U);
    EXPECT_EQ(state_leaves("<aps-module/>"), 0U);
}

// ---- values ----

TEST(AnswerCheck, MakesValuesCanonical) {
    std::vector<AnswerNode> answer = two_modules();
    AnswerNode &power = answer[0].children[0].children[0].children[2].children[0];
    EXPECT_EQ(power.value, "PRIMARY");
    ocpsm::framework::check_answer(answer);
    EXPECT_EQ(power.value, "openconfig-transport-line-protection:PRIMARY");
    std::vector<AnswerNode> threshold{{schema(list + "/config/primary-switch-threshold"), "3.50"}};
    ocpsm::framework::check_answer(threshold);
    EXPECT_EQ(threshold[0].value, "3.5");
}

TEST(AnswerCheck, RefusesWhatTheModelDoesNotAllow) {
    auto answer = tops({module("0/1-PSM-OM", "true", "5"), module("0/2-PSM-OM", "perhaps", "5")});
    EXPECT_EQ(error_of([&] { ocpsm::framework::check_answer(answer); }),
              "refused|operation-failed|/aps/aps-modules/aps-module[name='0/2-PSM-OM']/config/revertive|the device's "
              "value 'perhaps' is none that the model allows|");
    auto empty = tops({module("0/1-PSM-OM", "true", "")});
    EXPECT_EQ(error_of([&] { ocpsm::framework::check_answer(empty); }),
              "refused|operation-failed|/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/wait-to-restore-time|the "
              "device's value '' is none that the model allows|");
    std::vector<AnswerNode> missing{{schema(list + "/config/revertive")}};
    EXPECT_NE(error_of([&] { ocpsm::framework::check_answer(missing); }), "nothing");
}

// ---- text ----

TEST(AnswerPrint, AsXmlAndAsJson) {
    auto answer = tops({module("0/1-PSM-OM", "true", "5")});
    ocpsm::framework::check_answer(answer);
    EXPECT_EQ(ocpsm::framework::print_answer(answer, ocpsm::Format::xml),
              "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\">\n"
              "  <aps-modules>\n"
              "    <aps-module>\n"
              "      <name>0/1-PSM-OM</name>\n"
              "      <config>\n"
              "        <name>0/1-PSM-OM</name>\n"
              "        <revertive>true</revertive>\n"
              "        <wait-to-restore-time>5</wait-to-restore-time>\n"
              "      </config>\n"
              "      <state>\n"
              "        <active-path xmlns:oc-line-protect=\"http://openconfig.net/yang/"
              "optical-transport-line-protection\">oc-line-protect:PRIMARY</active-path>\n"
              "      </state>\n"
              "    </aps-module>\n"
              "  </aps-modules>\n"
              "</aps>\n");
    EXPECT_EQ(ocpsm::framework::print_answer(answer, ocpsm::Format::json),
              "{\n"
              "  \"openconfig-transport-line-protection:aps\": {\n"
              "    \"aps-modules\": {\n"
              "      \"aps-module\": [\n"
              "        {\n"
              "          \"name\": \"0/1-PSM-OM\",\n"
              "          \"config\": {\n"
              "            \"name\": \"0/1-PSM-OM\",\n"
              "            \"revertive\": true,\n"
              "            \"wait-to-restore-time\": 5\n"
              "          },\n"
              "          \"state\": {\n"
              "            \"active-path\": \"openconfig-transport-line-protection:PRIMARY\"\n"
              "          }\n"
              "        }\n"
              "      ]\n"
              "    }\n"
              "  }\n"
              "}\n");
}

struct FreeTree {
    void operator()(lyd_node *tree) const noexcept { lyd_free_all(tree); }
};

// Whether a text is what the model allows, without anything unknown; and how many leaves it has.
std::optional<int> strictly_parsed(const std::string &text, LYD_FORMAT format) {
    lyd_node *parsed = nullptr;
    const LY_ERR result = lyd_parse_data_mem(ocpsm::models::Schema::openconfig().context(), text.c_str(), format,
                                             LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &parsed);
    const std::unique_ptr<lyd_node, FreeTree> tree(parsed);
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
                const auto answer = requests::read_paths(plugin(), std::vector{path}, kind, device());
                const auto leaves = static_cast<int>(leaves_of(answer.answer).size());
                EXPECT_EQ(strictly_parsed(answer.answer.print(ocpsm::Format::xml), LYD_XML), leaves)
                    << answer.answer.print(ocpsm::Format::xml);
                EXPECT_EQ(strictly_parsed(answer.answer.print(ocpsm::Format::json), LYD_JSON), leaves)
                    << answer.answer.print(ocpsm::Format::json);
            }
        }
    }
}

} // namespace
