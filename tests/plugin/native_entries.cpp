// The walk of a list entry of an answer: its keys, its output scope, and what stops it.
#include "native_support.hpp"

namespace native_test {
namespace {

constexpr char no_keys[] = ": No keys specified with a list node.";

class NativeEntry : public NativeTest {
protected:
    // A leaf for every key of the list.
    static std::vector<Node> keys_of(const Walker &walker) {
        std::vector<Node> keys;
        for (const std::string &key : walker.row.keys) {
            keys.push_back(leaf(key, "1"));
        }
        return keys;
    }

    // What a child comes to: a known one is walked, others are of the model and not known.
    static Lines child_story(const Walker &walker, const std::string &tag) {
        for (const Child &child : walker.row.children) {
            if (child.tag == tag) {
                return bare_story(native_test::walker(child.walker), "node/" + tag);
            }
        }
        return {unsupported(walker, tag)};
    }

    static Lines marks(const Lines &keys) {
        Lines lines;
        for (const std::string &key : keys) {
            lines.push_back("node/" + key + ": key");
        }
        return lines;
    }

    kerrno walk_children(const Walker &walker, const std::vector<Node> &children) {
        drop_trees();
        platform.forget();
        return walk(walker.suffix(), build(node_of(walker, children), "node"));
    }

    // The story of an entry whose update or callback fails: the scope is opened and closed, nothing is dispatched.
    static Lines failed_story(const Walker &walker, bool update_fails) {
        Lines story = list_story(walker, "node");
        if (update_fails) {
            story.erase(story.begin() + 3);
        }
        return story;
    }
};

// One story written out in full; the others follow the same rule.
TEST_F(NativeEntry, IsPushedKeyedCalledScopedAndWalked) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper";
    const Node port = container("ots-port", {leaf("name", "Ots0/1/0/1"), container("ots-info")});
    EXPECT_EQ(walk("lvla_otsoper_otsports_otsport", build(in_model(port, model))), 0u);
    EXPECT_EQ(
        story(),
        (Lines{"+lvla_otsoper_otsports_otsport", "add_to_hierarchy(ots-port, 2)",
               "update_current_list(\"/ots-oper/ots-ports/ots-port\")", "list_lvla_otsoper_otsports_otsport(ots-port)",
               "output_push(ots-port, dest)", "+lvla_otsoper_otsport_name",
               "leaf_lvla_otsoper_otsport_name(ots-port/name)", "-lvla_otsoper_otsport_name",
               "+lvla_otsoper_otsport_otsinfo", "add_to_hierarchy(ots-port/ots-info, 1)",
               "cont_lvla_otsoper_otsport_otsinfo(ots-port/ots-info, 0)", "remove_from_hierarchy(ots-port/ots-info)",
               "-lvla_otsoper_otsport_otsinfo", "remove_from_hierarchy(ots-port)", "output_pop(ots-port, dest)",
               "-lvla_otsoper_otsports_otsport"}));
    EXPECT_EQ(changes(), Lines{"ots-port/name: key"});
}

// A slot without settings: its key is marked, passed over, and nothing comes of it.
TEST_F(NativeEntry, ASlotOfWhichOnlyTheKeyIsThere) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
    use_conversions();
    EXPECT_EQ(walk("lvla_slot", build(in_model(container("slot", {leaf("slot-id", "2")}), model))), 0u);
    EXPECT_EQ(story(),
              (Lines{"+lvla_slot", "add_to_hierarchy(slot, 2)",
                     "update_current_list(\"/node:active-nodes/node:active-node/slot\")", "list_lvla_slot(slot)",
                     "output_push(slot, dest)", "TRC lvla_slot: Unsupported tag `slot-id`. Ignoring.",
                     "remove_from_hierarchy(slot)", "output_pop(slot, dest)", "-lvla_slot"}));
    EXPECT_EQ(changes(), Lines{"slot/slot-id: key"});
}

TEST_F(NativeEntry, MarksItsKeysAndWalksItsChildren) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        std::vector<Node> children = keys_of(*walker);
        Lines body;
        for (const std::string &key : walker->row.keys) {
            append(body, child_story(*walker, key));
        }
        for (const Child &child : walker->row.children) {
            if (std::count(walker->row.keys.begin(), walker->row.keys.end(), child.tag) == 0) {
                children.push_back(node_of(native_test::walker(child.walker)));
                append(body, child_story(*walker, child.tag));
            }
        }
        EXPECT_EQ(walk_children(*walker, children), 0u);
        EXPECT_EQ(story(), list_story(*walker, "node", body)) << walker->suffix();
        EXPECT_EQ(changes(), marks(walker->row.keys)) << walker->suffix();
    }
}

TEST_F(NativeEntry, MarksEveryChildThatHasTheTagOfAKey) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        for (const std::string &key : walker->row.keys) {
            // In whatever namespace, with or without a value, twice.
            EXPECT_EQ(walk_children(*walker, {leaf("zzz"), leaf(key).in_namespace(fake::foreign),
                                              leaf(key, "2").in_namespace(std::nullopt), leaf("yyy")}),
                      0u);
            EXPECT_EQ(changes(), (Lines{"node/" + key + ": key", "node/" + key + "[2]: key"})) << walker->suffix();
        }
    }
}

// The keys of other lists, and longer and shorter names, are no keys here.
TEST_F(NativeEntry, MarksNothingElse) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        std::vector<Node> children;
        for (const char *key :
             {"slot-id", "rx-threshold-type", "name", "number", "node-name", "active", "interface-name"}) {
            if (std::count(walker->row.keys.begin(), walker->row.keys.end(), key) == 0) {
                children.push_back(leaf(key, "1"));
            }
        }
        children.push_back(leaf(walker->row.keys.front() + "s", "1"));
        children.push_back(leaf(walker->row.keys.front().substr(1), "1"));
        EXPECT_EQ(walk_children(*walker, children), 0u);
        EXPECT_EQ(changes(), Lines{}) << walker->suffix();
    }
}

// The list's callback already finds the marks.
TEST_F(NativeEntry, MarksItsKeysBeforeItsCallback) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        Tree &tree = build(node_of(*walker, keys_of(*walker)), "node");
        Lines seen;
        on_callback = [&](const std::string &callback) {
            const kidl_yfw_datatree *const key = tree.at(walker->row.keys.front());
            seen.push_back(callback + " " + std::to_string(key->consumed_mark) + " " +
                           std::to_string(key->flags & YFW_NODE_KEY_CONSUMED));
        };
        walk(walker->suffix(), tree);
        ASSERT_FALSE(seen.empty());
        EXPECT_EQ(seen.front(), walker->short_callback() + " 1 512");
        on_callback = nullptr;
    }
}

// Marks that stand stay, beside all the other flags.
TEST_F(NativeEntry, KeepsWhatAKeyHadBefore) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        std::vector<Node> keys = keys_of(*walker);
        keys.front() = keys.front().with_flags(512 | 16).with_operation(3);
        Tree &tree = build(node_of(*walker, keys), "node");
        tree.at(walker->row.keys.front())->consumed_mark = 1;
        walk(walker->suffix(), tree);
        EXPECT_EQ(tree.at(walker->row.keys.front())->flags, 1u | 2u | 16u | 512u);
        EXPECT_EQ(tree.at(walker->row.keys.front())->consumed_mark, 1);
        drop_trees();
    }
}

TEST_F(NativeEntry, WithoutChildrenIsAnErrorAndGoesOn) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        const Node children = node_of(*walker, keys_of(*walker));
        for (const Node &node : {node_of(*walker), node_of(*walker).without_array(0),
                                 node_of(*walker).without_array(2).without_flags(64), children.without_flags(64)}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node, "node")), 0u);
            Lines expected = list_story(*walker, "node");
            expected.insert(expected.begin() + 1, "ERR " + walker->suffix() + no_keys);
            EXPECT_EQ(story(), expected) << walker->suffix();
            EXPECT_EQ(changes(), Lines{});
        }
        drop_trees();
    }
    EXPECT_EQ(platform.count("error_path"), 0u);
}

// Children that are no keys are enough.
TEST_F(NativeEntry, WithChildrenButNoKeyIsNoError) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        EXPECT_EQ(walk_children(*walker, {leaf("zzz").in_namespace(fake::foreign)}), 0u);
        EXPECT_EQ(story(), list_story(*walker, "node")) << walker->suffix();
    }
}

TEST_F(NativeEntry, RefusesChildrenThatAreNotThere) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        for (const std::int32_t count : {1, 2147483647, -1}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker).without_array(count))), bad_tree);
            EXPECT_EQ(story(), (Lines{"+" + walker->suffix(), "ERR " + walker->suffix() + ": Failed to get subtrees!",
                                      "-" + walker->suffix()}));
        }
        drop_trees();
    }
}

TEST_F(NativeEntry, RefusesAChildWithoutATag) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        EXPECT_EQ(walk_children(*walker, {leaf("zzz").in_namespace(fake::foreign), leaf("x").untagged(),
                                          leaf(walker->row.keys.front(), "1")}),
                  bad_tree);
        EXPECT_EQ(story(), list_story(*walker, "node", {"ERR " + walker->suffix() + ": Tag name is not available!"}));
        EXPECT_EQ(changes(), marks({walker->row.keys.front()})) << walker->suffix();
    }
}

TEST_F(NativeEntry, PassesOverUnknownTagsAndAcceptsForeignOnes) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        EXPECT_EQ(walk_children(*walker, {leaf("zzz", "1"), leaf("yyy").in_namespace(fake::foreign),
                                          leaf("xxx").in_namespace(std::nullopt), container("www", {leaf("v")})}),
                  0u);
        EXPECT_EQ(story(), list_story(*walker, "node", {unsupported(*walker, "zzz"), unsupported(*walker, "www")}));
    }
}

// The tag alone decides whether a child is known; a key that has no walker is accepted as any foreign node.
TEST_F(NativeEntry, KnowsItsChildrenInAnyNamespace) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        for (const Child &child : walker->row.children) {
            const Node node = node_of(native_test::walker(child.walker));
            for (const auto &uri : {std::optional<std::string>(fake::foreign), std::optional<std::string>()}) {
                EXPECT_EQ(walk_children(*walker, {node.in_namespace(uri)}), 0u);
                EXPECT_EQ(story(), list_story(*walker, "node", child_story(*walker, child.tag))) << walker->suffix();
            }
        }
    }
}

TEST_F(NativeEntry, TriesTheTagsInTheOrderOfTheModel) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        Lines tried;
        for (const Child &child : walker->row.children) {
            tried.push_back("match(\"zzz\", \"" + child.tag + "\")");
        }
        tried.push_back("match(\"" + walker->model->namespace_uri + "\", \"" + walker->model->namespace_uri + "\")");
        // Not among them: the comparisons with keys, which come before the list's callback.
        on_callback = [&](const std::string &) { platform.forget(); };
        EXPECT_EQ(walk_children(*walker, {leaf("zzz")}), 0u);
        EXPECT_EQ(platform.calls(fake::Questions), tried) << walker->suffix();
        on_callback = nullptr;
    }
}

TEST_F(NativeEntry, StopsAtTheFirstChildThatFails) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        for (const Child &child : walker->row.children) {
            const Walker &failing = native_test::walker(child.walker);
            platform.answer(failing.short_callback(), some_failure, 0, "node/" + child.tag + "[2]");
            const Node node = node_of(failing);
            EXPECT_EQ(walk_children(*walker, {node, node, node}), some_failure);
            Lines body = child_story(*walker, child.tag);
            append(body, bare_story(failing, "node/" + child.tag + "[2]"));
            EXPECT_EQ(story(), list_story(*walker, "node", body)) << walker->suffix();
        }
    }
}

// ---- what stops the entry ----

TEST_F(NativeEntry, OpensAndClosesItsScopeWhenTheUpdateFails) {
    platform.answer("update_current_list", some_failure);
    for (const Walker *walker : walkers_of(Kind::list)) {
        EXPECT_EQ(walk_children(*walker, keys_of(*walker)), some_failure);
        EXPECT_EQ(story(), failed_story(*walker, true)) << walker->suffix();
        EXPECT_EQ(changes(), Lines{}) << "no key is marked";
    }
}

// A code of the framework is its own, be it the one that list callbacks skip with.
TEST_F(NativeEntry, TakesOnlyItsCallbackAtItsWordToSkip) {
    platform.answer("update_current_list", skip);
    for (const Walker *walker : walkers_of(Kind::list)) {
        EXPECT_EQ(walk_children(*walker, keys_of(*walker)), skip);
        EXPECT_EQ(story(), failed_story(*walker, true)) << walker->suffix();
    }
}

TEST_F(NativeEntry, OpensAndClosesItsScopeWhenItsCallbackFails) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        platform.answer(walker->short_callback(), some_failure);
        EXPECT_EQ(walk_children(*walker, keys_of(*walker)), some_failure);
        EXPECT_EQ(story(), failed_story(*walker, false)) << walker->suffix();
        EXPECT_EQ(changes(), marks(walker->row.keys));
    }
}

TEST_F(NativeEntry, OpensNoScopeWhenItsCallbackSkips) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        platform.answer(walker->short_callback(), skip);
        EXPECT_EQ(walk_children(*walker, keys_of(*walker)), skip);
        EXPECT_EQ(story(),
                  (Lines{"+" + walker->suffix(), "add_to_hierarchy(node, 2)",
                         "update_current_list(\"" + walker->row.path + "\")", walker->short_callback() + "(node)",
                         "remove_from_hierarchy(node)", "-" + walker->suffix()}));
        EXPECT_EQ(changes(), marks(walker->row.keys)) << walker->suffix();
    }
}

TEST_F(NativeEntry, SkipsAnEntryWithoutChildrenToo) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        platform.answer(walker->short_callback(), skip);
        EXPECT_EQ(walk_children(*walker, {}), skip);
        EXPECT_EQ(messages(), Lines{"ERR " + walker->suffix() + no_keys});
        EXPECT_EQ(platform.count("output_push"), 0u);
    }
}

// ---- the output scope ----

// What a platform that opens no scope, or more than one, does to the depth: the list closes what it sees grown.
TEST_F(NativeEntry, ClosesItsScopeOnlyWhenTheDepthGrew) {
    std::uint32_t depth = 0;
    platform.before("output_push", [&](const std::string &) { request.state.output_depth = depth; });
    for (const Walker *walker : walkers_of(Kind::list)) {
        struct Case {
            std::uint32_t before;
            std::uint32_t after; // the push adds one to what it finds
            std::size_t pops;
        };
        for (const Case &given : {Case{5, 5, 0}, Case{5, 4, 0}, Case{5, 0, 0}, Case{5, 6, 1}, Case{5, 9, 1},
                                  Case{0, 1, 1}, Case{0, 0, 0}}) {
            drop_trees();
            platform.forget();
            request.state.output_depth = given.before;
            depth = given.after - 1;
            Tree &tree = build(node_of(*walker, keys_of(*walker)), "node");
            EXPECT_EQ(fake::function<fake::Callback>(walker->function())(request.ctx(), tree.root(), dest), 0u);
            EXPECT_EQ(platform.count("output_push"), 1u);
            EXPECT_EQ(platform.count("output_pop"), given.pops) << walker->suffix() << " " << given.after;
        }
    }
    request.state.output_depth = 0;
}

TEST_F(NativeEntry, OpensItsScopeInsideOfOthers) {
    for (const Walker *walker : walkers_of(Kind::list)) {
        request.state.output_depth = 3;
        Lines seen;
        on_callback = [&](const std::string &) { seen.push_back(std::to_string(request.state.output_depth)); };
        std::vector<Node> children;
        for (const Child &child : walker->row.children) {
            children.push_back(node_of(native_test::walker(child.walker)));
        }
        EXPECT_EQ(walk_children(*walker, children), 0u);
        Lines expected(1, "3");
        expected.resize(1 + walker->row.children.size(), "4");
        EXPECT_EQ(seen, expected) << walker->suffix();
        EXPECT_EQ(request.state.output_depth, 3u);
        on_callback = nullptr;
    }
    request.state.output_depth = 0;
}

// ---- the kind of the request ----

TEST_F(NativeEntry, OfOperationalStateKnowsNothingInOtherRequests) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 15u}) {
        request.set_kind(kind);
        for (const Walker *walker : walkers_of(Kind::list)) {
            std::vector<Node> children;
            Lines body;
            for (const Child &child : walker->row.children) {
                const Node node = node_of(native_test::walker(child.walker));
                children.push_back(node);
                if (walker->model->operational) {
                    body.push_back(unsupported(*walker, child.tag));
                    children.push_back(node.in_namespace(fake::foreign));
                } else {
                    append(body, child_story(*walker, child.tag));
                }
            }
            EXPECT_EQ(walk_children(*walker, children), 0u);
            Lines expected = list_story(*walker, "node", body);
            if (children.empty()) {
                expected.insert(expected.begin() + 1, "ERR " + walker->suffix() + no_keys);
            }
            EXPECT_EQ(story(), expected) << walker->suffix() << " in kind " << kind;
        }
    }
}

} // namespace
} // namespace native_test
