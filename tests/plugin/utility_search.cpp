// Searches of data trees by tag path.
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::container;
using fake::leaf;
using fake::Node;
using utility::Buffer;
using utility::call;
using utility::error;
using utility::Lines;
using utility::lines_of;
using utility::repeated;
using utility::Steps;
using utility::trace;

Node module(const std::string &name) {
    return container("aps-module", {leaf("name", name), container("config", {leaf("name", name)})});
}

Node request_of(std::vector<Node> modules) {
    return container("aps", {container("aps-modules", std::move(modules))});
}

// A chain of containers with one leaf at its end.
Node chain(const std::vector<std::string> &tags, const std::string &value) {
    Node node = leaf(tags.back(), value);
    for (auto tag = tags.rbegin() + 1; tag != tags.rend(); ++tag) {
        node = container(*tag, {node});
    }
    return node;
}

// ---- compare_path ----

class ComparePathTest : public utility::UtilityTest {
protected:
    int find(const Node &tree, const std::string &wanted) {
        path = Buffer::cleared(200);
        value = Buffer(200);
        return compare_path(request.ctx(), build(tree).root(), wanted.c_str(), path.data(), value.data());
    }

    Buffer path = Buffer::cleared(200);
    Buffer value{200};
};

TEST_F(ComparePathTest, FindsTheNameBelowAListEntry) {
    EXPECT_EQ(find(module("0/2-PSM-OM"), "aps-module/name"), 1);
    EXPECT_EQ(value.text(), "0/2-PSM-OM");
    EXPECT_EQ(path.text(), "aps-module/");
}

TEST_F(ComparePathTest, FindsTheFirstModuleOfARequestOnly) {
    EXPECT_EQ(find(request_of({module("0/3-PSM-OM"), module("0/1-PSM-OM")}), "aps/aps-modules/aps-module/name"), 1);
    EXPECT_EQ(value.text(), "0/3-PSM-OM");
    EXPECT_EQ(path.text(), "aps/");
}

TEST_F(ComparePathTest, TheFirstMatchInPreOrderWins) {
    const Node tree = container("a", {container("b", {leaf("x", "deep")}), leaf("x", "first"), leaf("x", "second")});
    EXPECT_EQ(find(tree, "a/x"), 1);
    EXPECT_EQ(value.text(), "first");
    EXPECT_EQ(find(tree, "a/b/x"), 1);
    EXPECT_EQ(value.text(), "deep");
}

TEST_F(ComparePathTest, TheStartNodeItselfMayMatch) {
    EXPECT_EQ(find(leaf("name", "0/1-PSM-OM"), "name"), 1);
    EXPECT_EQ(value.text(), "0/1-PSM-OM");
    EXPECT_EQ(path.text(), "name");
}

TEST_F(ComparePathTest, WhatIsNotThereIsNotFound) {
    for (const char *const wanted : {"aps-module/nam", "aps-module/name/", "/aps-module/name", "name", "aps-module",
                                     "aps-module/config", "APS-module/name", "", "aps-module/config/name/x"}) {
        SCOPED_TRACE(wanted);
        EXPECT_EQ(find(module("0/2-PSM-OM"), wanted), 0);
        EXPECT_TRUE(value.untouched());
        EXPECT_EQ(path.text(), "aps-module/");
    }
}

TEST_F(ComparePathTest, ANodeWithoutAValueIsPassedBy) {
    EXPECT_EQ(find(container("a", {leaf("x"), leaf("x", "second")}), "a/x"), 1);
    EXPECT_EQ(value.text(), "second");
    EXPECT_EQ(find(container("a", {container("x", {leaf("y", "below")})}), "a/x"), 0);
    EXPECT_EQ(find(container("a", {container("x", {leaf("y", "below")})}), "a/x/y"), 1);
    EXPECT_EQ(value.text(), "below");
}

TEST_F(ComparePathTest, TheEmptyTextIsAValue) {
    EXPECT_EQ(find(container("a", {leaf("x", ""), leaf("x", "second")}), "a/x"), 1);
    EXPECT_EQ(value.text(), "");
}

TEST_F(ComparePathTest, AContainerWithAValueMatchesToo) {
    Node both = container("x", {leaf("y", "below")});
    both.value = "own";
    EXPECT_EQ(find(container("a", {both}), "a/x"), 1);
    EXPECT_EQ(value.text(), "own");
}

TEST_F(ComparePathTest, ANodeThatIsNotInUseHidesItsSubtree) {
    const Node hidden = module("0/2-PSM-OM").without_flags(YFW_NODE_IN_USE);
    EXPECT_EQ(find(hidden, "aps-module/name"), 0);
    EXPECT_EQ(path.text(), "");
    EXPECT_EQ(find(request_of({hidden, module("0/3-PSM-OM")}), "aps/aps-modules/aps-module/name"), 1);
    EXPECT_EQ(value.text(), "0/3-PSM-OM");
    EXPECT_EQ(find(container("aps-module", {leaf("name", "x").without_flags(YFW_NODE_IN_USE)}), "aps-module/name"), 0);
}

TEST_F(ComparePathTest, NoNodeIsNotFound) {
    EXPECT_EQ(compare_path(request.ctx(), nullptr, "aps-module/name", path.data(), value.data()), 0);
    EXPECT_EQ(path.text(), "");
    EXPECT_TRUE(value.untouched());
    EXPECT_EQ(happened(), Lines{});
}

TEST_F(ComparePathTest, ANodeWithoutATagAddsNothingButItsSlash) {
    EXPECT_EQ(find(container("", {leaf("name", "x")}).untagged(), "/name"), 1);
    EXPECT_EQ(value.text(), "x");
    EXPECT_EQ(path.text(), "/");
    EXPECT_EQ(find(container("a", {container("", {leaf("name", "y")}).untagged()}), "a//name"), 1);
    EXPECT_EQ(value.text(), "y");
}

TEST_F(ComparePathTest, ThePathGoesOnFromWhatTheBufferHolds) {
    fake::Tree &tree = build(module("0/2-PSM-OM"));
    std::snprintf(path.data(), 200, "aps/");
    EXPECT_EQ(compare_path(request.ctx(), tree.root(), "aps/aps-module/name", path.data(), value.data()), 1);
    EXPECT_EQ(path.text(), "aps/aps-module/");
}

TEST_F(ComparePathTest, AFlaggedNodeWithoutATextIsHarmless) {
    value = Buffer::cleared(200);
    fake::Tree &tree = build(container("aps-module", {leaf("name").with_flags(YFW_NODE_HAS_VALUE)}));
    static_cast<void>(compare_path(request.ctx(), tree.root(), "aps-module/name", path.data(), value.data()));
    EXPECT_EQ(value.text(), "");
}

TEST_F(ComparePathTest, ACountWithoutChildrenIsHarmless) {
    EXPECT_EQ(find(container("a").without_array(3), "a/x"), 0);
    Node negative = container("a", {leaf("x", "1")});
    negative.claimed_count = -1;
    EXPECT_EQ(find(negative, "a/x"), 0);
}

TEST_F(ComparePathTest, AValueOfAnyLengthStaysWithinItsBuffer) {
    for (const std::size_t length : {0u, 1u, 198u, 199u, 200u, 201u, 100000u}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(find(module(repeated(length, 'v')), "aps-module/name"), 1);
        EXPECT_EQ(value.text(), repeated(std::min<std::size_t>(length, 199), 'v'));
    }
}

TEST_F(ComparePathTest, APathOf199CharactersIsFoundALongerOneIsNot) {
    const std::string a = repeated(97, 'a');
    const std::string b = repeated(101, 'b');
    EXPECT_EQ(find(chain({a, b}, "fits"), a + "/" + b), 1);
    EXPECT_EQ(value.text(), "fits");
    EXPECT_EQ(find(chain({a, b + "b"}, "cut"), a + "/" + b + "b"), 0);
    EXPECT_EQ(find(chain({a, b, "x"}, "cut"), a + "/" + b + "/x"), 0);
    EXPECT_EQ(find(chain({repeated(200, 'a')}, "cut"), repeated(200, 'a')), 0);
}

TEST_F(ComparePathTest, TagsOfAnyLengthStayWithinThePath) {
    const std::string huge = repeated(100000, 't');
    EXPECT_EQ(find(chain({huge, huge, "name"}, "x"), huge + "/" + huge + "/name"), 0);
    EXPECT_EQ(path.text(), repeated(199, 't'));
    EXPECT_EQ(find(container("aps-module", {leaf(huge, "x"), leaf("name", "found")}), "aps-module/name"), 1);
    EXPECT_EQ(value.text(), "found");
}

TEST_F(ComparePathTest, SaysNothingAndNeedsNoContext) {
    EXPECT_EQ(compare_path(nullptr, build(module("x")).root(), "aps-module/name", path.data(), value.data()), 1);
    EXPECT_EQ(compare_path(nullptr, nullptr, "aps-module/name", path.data(), value.data()), 0);
    EXPECT_EQ(happened(), Lines{});
}

// ---- search_data_in_response ----

constexpr char by_value[] = "search_data_in_response";
constexpr char interface_name[] = "interface-configuration/interface-name";

// What is said about a node, up to the comparison of a value and behind it.
Steps entered(const std::string &tag) {
    return {trace(by_value, "TAG <" + tag + ">")};
}

Steps compared(const std::string &value, const std::string &path, const std::string &path_to_find,
               const std::string &value_to_find) {
    return {trace(by_value, "data " + value), trace(by_value, "path        : <" + path + ">"),
            trace(by_value, "path_to_find: <" + path_to_find + ">"),
            trace(by_value, "data_to_find: <" + value_to_find + ">")};
}

Steps counted(int children) {
    return {trace(by_value, "subtree_count " + std::to_string(children))};
}

class SearchDataTest : public utility::UtilityTest {
protected:
    int find(const Node &tree, const std::string &wanted, const std::string &value) {
        path = Buffer::cleared(200);
        return search_data_in_response(request.ctx(), build(tree).root(), wanted.c_str(), path.data(), value.c_str());
    }

    Buffer path = Buffer::cleared(200);
};

TEST_F(SearchDataTest, TellsEveryStepToTheMatch) {
    EXPECT_EQ(find(container("interface-configuration", {leaf("active", "act"), leaf("interface-name", "Ots0/1/0/1")}),
                   interface_name, "Ots0/1/0/1"),
              1);
    EXPECT_EQ(happened(), lines_of(entered("interface-configuration") + counted(2) + entered("active") +
                                   compared("act", "interface-configuration/active", interface_name, "Ots0/1/0/1") +
                                   counted(0) + entered("interface-name") +
                                   compared("Ots0/1/0/1", interface_name, interface_name, "Ots0/1/0/1") +
                                   Steps{trace(by_value, "data found !")}));
}

TEST_F(SearchDataTest, AnotherValueLetsTheSearchGoOnAmongTheSiblings) {
    const Node tree = container("a", {leaf("x", "1"), leaf("x", "2"), leaf("x", "3")});
    EXPECT_EQ(find(tree, "a/x", "2"), 1);
    EXPECT_EQ(happened(),
              lines_of(entered("a") + counted(3) + entered("x") + compared("1", "a/x", "a/x", "2") + counted(0) +
                       entered("x") + compared("2", "a/x", "a/x", "2") + Steps{trace(by_value, "data found !")}));
}

TEST_F(SearchDataTest, PathAndValueMustBothFitExactly) {
    const Node tree = container("a", {container("b", {leaf("x", "1")}), leaf("x", "2")});
    EXPECT_EQ(find(tree, "a/b/x", "1"), 1);
    EXPECT_EQ(find(tree, "a/x", "2"), 1);
    EXPECT_EQ(find(tree, "a/x", "1"), 0);
    EXPECT_EQ(find(tree, "a/b/x", "2"), 0);
    EXPECT_EQ(find(tree, "a/x", ""), 0);
    EXPECT_EQ(find(tree, "a/x", "22"), 0);
    EXPECT_EQ(find(tree, "x", "2"), 0);
    EXPECT_EQ(find(tree, "a/x/", "2"), 0);
    EXPECT_EQ(find(tree, "", ""), 0);
}

TEST_F(SearchDataTest, ThePathIsRestoredBetweenSiblings) {
    const Node tree = container(
        "a", {container("b", {leaf("c", "1"), container("d", {leaf("e", "2")})}), container("b", {leaf("x", "3")})});
    EXPECT_EQ(find(tree, "a/b/x", "3"), 1);
    EXPECT_EQ(find(tree, "a/b/d/e", "none"), 0);
    EXPECT_EQ(path.text(), "a");
}

TEST_F(SearchDataTest, ANodeWithoutAValueIsNotComparedAndGoesOn) {
    EXPECT_EQ(find(container("a", {leaf("x"), leaf("x", "1")}), "a/x", "1"), 1);
    EXPECT_EQ(happened(), lines_of(entered("a") + counted(2) + entered("x") + counted(0) + entered("x") +
                                   compared("1", "a/x", "a/x", "1") + Steps{trace(by_value, "data found !")}));
}

TEST_F(SearchDataTest, ANodeThatIsNotInUseHidesItsSubtree) {
    const Node hidden = container("b", {leaf("x", "1")}).without_flags(YFW_NODE_IN_USE);
    EXPECT_EQ(find(container("a", {hidden}), "a/b/x", "1"), 0);
    EXPECT_EQ(happened(), lines_of(entered("a") + counted(1)));
    platform.forget();
    EXPECT_EQ(find(hidden, "b/x", "1"), 0);
    EXPECT_EQ(happened(), Lines{});
    EXPECT_EQ(path.text(), "");
}

TEST_F(SearchDataTest, NoNodeIsAnError) {
    EXPECT_EQ(search_data_in_response(request.ctx(), nullptr, "a", path.data(), "1"), 0);
    EXPECT_EQ(happened(), lines_of({error(by_value, "return, req is NULL")}));
    EXPECT_EQ(platform.count("error_path"), 0u);
}

TEST_F(SearchDataTest, AnAbsentTagIsShownAndAddsNothing) {
    EXPECT_EQ(find(container("a", {leaf("", "1").untagged(), leaf("x", "1")}), "a/x", "1"), 1);
    EXPECT_EQ(happened(),
              lines_of(entered("a") + counted(2) + entered("(null)") + compared("1", "a/", "a/x", "1") + counted(0) +
                       entered("x") + compared("1", "a/x", "a/x", "1") + Steps{trace(by_value, "data found !")}));
}

TEST_F(SearchDataTest, AFlaggedNodeWithoutATextNeverMatches) {
    const Node flagged = leaf("x").with_flags(YFW_NODE_HAS_VALUE);
    EXPECT_EQ(find(container("a", {flagged}), "a/x", ""), 0);
    EXPECT_EQ(find(container("a", {flagged}), "a/x", "(null)"), 0);
    EXPECT_EQ(find(container("a", {flagged, leaf("x", "1")}), "a/x", "1"), 1);
}

TEST_F(SearchDataTest, ACountWithoutChildrenIsHarmless) {
    EXPECT_EQ(find(container("a").without_array(3), "a/x", "1"), 0);
    Node negative = container("a", {leaf("x", "1")});
    negative.claimed_count = -5;
    platform.forget();
    EXPECT_EQ(find(negative, "a/x", "1"), 0);
    EXPECT_EQ(messages(), (Lines{"log TRC TAG <a>", "log TRC subtree_count -5"}));
}

TEST_F(SearchDataTest, TextsOfAnyLengthStayWithinThePath) {
    const std::string huge = repeated(100000, 't');
    EXPECT_EQ(find(chain({huge, huge}, huge), huge + "/" + huge, huge), 0);
    EXPECT_EQ(path.text(), repeated(199, 't'));
    // Values are not cut.
    EXPECT_EQ(find(chain({"a", "x"}, huge), "a/x", huge), 1);
    EXPECT_EQ(find(chain({"a", "x"}, huge + "t"), "a/x", huge), 0);
    const std::string a = repeated(97, 'a');
    const std::string b = repeated(101, 'b');
    EXPECT_EQ(find(chain({a, b}, "fits"), a + "/" + b, "fits"), 1);
    EXPECT_EQ(find(chain({a, b + "b"}, "cut"), a + "/" + b + "b", "cut"), 0);
}

// ---- check_request_type ----

constexpr char by_path[] = "check_request_type_3";

class RequestTypeTest : public utility::UtilityTest {
protected:
    int find(const Node &tree, const std::string &wanted) {
        kidl_yfw_datatree *const root = build(tree).root();
        const int found = check_request_type(request.ctx(), root, wanted.c_str());
        Buffer path = Buffer::cleared(200);
        EXPECT_EQ(check_request_type_3(request.ctx(), root, wanted.c_str(), path.data()), found);
        return found;
    }
};

TEST_F(RequestTypeTest, FindsNodesWithAndWithoutValue) {
    const Node tree = request_of({container(
        "aps-module", {leaf("name", "0/1-PSM-OM"), container("state"), container("config", {leaf("revertive")})})});
    EXPECT_EQ(find(tree, "aps"), 1);
    EXPECT_EQ(find(tree, "aps/aps-modules/aps-module"), 1);
    EXPECT_EQ(find(tree, "aps/aps-modules/aps-module/name"), 1);
    EXPECT_EQ(find(tree, "aps/aps-modules/aps-module/state"), 1);
    EXPECT_EQ(find(tree, "aps/aps-modules/aps-module/config/revertive"), 1);
    EXPECT_EQ(find(tree, "aps/aps-modules/aps-module/ports"), 0);
    EXPECT_EQ(find(tree, "aps-modules"), 0);
    EXPECT_EQ(find(tree, "aps/"), 0);
    EXPECT_EQ(find(tree, "/aps"), 0);
    EXPECT_EQ(find(tree, ""), 0);
    EXPECT_EQ(happened(), Lines{});
}

TEST_F(RequestTypeTest, ThePathIsRestoredBetweenSiblings) {
    const Node tree = container("a", {container("b", {container("c"), leaf("d", "1")}), container("b", {leaf("e")})});
    EXPECT_EQ(find(tree, "a/b/e"), 1);
    EXPECT_EQ(find(tree, "a/b/c/e"), 0);
    Buffer path = Buffer::cleared(200);
    EXPECT_EQ(check_request_type_3(request.ctx(), build(tree).root(), "none", path.data()), 0);
    EXPECT_EQ(path.text(), "a");
}

TEST_F(RequestTypeTest, ANodeThatIsNotInUseHidesItsSubtree) {
    const Node hidden = container("b", {leaf("x", "1")}).without_flags(YFW_NODE_IN_USE);
    EXPECT_EQ(find(hidden, "b"), 0);
    EXPECT_EQ(find(container("a", {hidden}), "a/b"), 0);
    EXPECT_EQ(find(container("a", {hidden}), "a/b/x"), 0);
    EXPECT_EQ(find(container("a", {hidden, container("b")}), "a/b"), 1);
}

TEST_F(RequestTypeTest, NoNodeIsAnError) {
    EXPECT_EQ(check_request_type(request.ctx(), nullptr, "a"), 0);
    EXPECT_EQ(happened(), lines_of({error(by_path, "return, req is NULL")}));
    Buffer path = Buffer::cleared(200);
    platform.forget();
    EXPECT_EQ(check_request_type_3(request.ctx(), nullptr, "a", path.data()), 0);
    EXPECT_EQ(messages(), (Lines{"log ERR return, req is NULL"}));
    EXPECT_EQ(platform.count("error_path"), 0u);
}

TEST_F(RequestTypeTest, AbsentTagsAndChildrenAreHarmless) {
    EXPECT_EQ(find(container("a", {container("", {leaf("x")}).untagged()}), "a//x"), 1);
    EXPECT_EQ(find(container("a").without_array(3), "a/x"), 0);
    Node negative = container("a", {leaf("x", "1")});
    negative.claimed_count = -1;
    EXPECT_EQ(find(negative, "a/x"), 0);
}

TEST_F(RequestTypeTest, TagsOfAnyLengthStayWithinThePath) {
    const std::string huge = repeated(100000, 't');
    EXPECT_EQ(find(chain({huge, huge}, "x"), huge + "/" + huge), 0);
    const std::string a = repeated(97, 'a');
    const std::string b = repeated(101, 'b');
    EXPECT_EQ(find(chain({a, b}, "fits"), a + "/" + b), 1);
    EXPECT_EQ(find(chain({a, b + "b"}, "cut"), a + "/" + b + "b"), 0);
}

TEST_F(RequestTypeTest, NeedsNoContextForANode) {
    EXPECT_EQ(check_request_type(nullptr, build(container("a", {leaf("x")})).root(), "a/x"), 1);
    EXPECT_EQ(check_request_type(nullptr, build(container("a", {leaf("x")})).root(), "a/y"), 0);
}

// ---- null context ----

class SearchDeathTest : public utility::UtilityTest {};

TEST_F(SearchDeathTest, ASearchForAValueNeedsAContextToSpeak) {
    const std::string assertion = utility::context_assertion(
        "utility", "int search_data_in_response(yfw_map_ctx, const struct kidl_yfw_datatree *, const char *, char *, "
                   "const char *)");
    Buffer path = Buffer::cleared(200);
    kidl_yfw_datatree *const node = build(leaf("a", "1")).root();
    EXPECT_DEATH(static_cast<void>(search_data_in_response(nullptr, node, "a", path.data(), "1")), assertion);
    EXPECT_DEATH(static_cast<void>(search_data_in_response(nullptr, nullptr, "a", path.data(), "1")), assertion);
    // A node that is not in use is passed over without a word.
    kidl_yfw_datatree *const hidden = build(leaf("a", "1").without_flags(YFW_NODE_IN_USE)).root();
    EXPECT_EQ(search_data_in_response(nullptr, hidden, "a", path.data(), "1"), 0);
}

TEST_F(SearchDeathTest, ASearchForAPathNeedsAContextWithoutANode) {
    const std::string assertion = utility::context_assertion(
        "utility", "int check_request_type_3(yfw_map_ctx, const struct kidl_yfw_datatree *, const char *, char *)");
    Buffer path = Buffer::cleared(200);
    EXPECT_DEATH(static_cast<void>(check_request_type_3(nullptr, nullptr, "a", path.data())), assertion);
    EXPECT_DEATH(static_cast<void>(check_request_type(nullptr, nullptr, "a")), assertion);
}

} // namespace
