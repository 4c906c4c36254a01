// The walk of a leaf of an answer, xpath error nodes included, and the entries for subtrees that augment another
// model's list.
#include "native_support.hpp"

namespace native_test {
namespace {

class NativeLeaf : public NativeTest {
protected:
    kidl_yfw_datatree *leaf_of(const Walker &walker, std::uint32_t kind, std::uint32_t second_flags) {
        kidl_yfw_datatree *const node = build(node_of(walker), "node").root();
        node->hierarchy_kind = kind;
        node->second_flags = second_flags;
        return node;
    }
};

TEST_F(NativeLeaf, GoesToItsCallback) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 10u}) {
        request.set_kind(kind);
        for (const Walker *walker : walkers_of(Kind::leaf)) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker), "node")), 0u);
            EXPECT_EQ(story(), leaf_story(*walker, "node"));
            EXPECT_EQ(changes(), Lines{}) << walker->suffix();
            drop_trees();
        }
    }
}

TEST_F(NativeLeaf, PassesTheResultOn) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        platform.answer(walker->short_callback(), some_failure, 1);
        platform.answer(walker->short_callback(), skip, 2);
        platform.answer(walker->short_callback(), invalid_arguments, 3);
        kidl_yfw_datatree *const node = leaf_of(*walker, 0, 0);
        EXPECT_EQ(walk(walker->suffix(), node), some_failure) << walker->suffix();
        EXPECT_EQ(walk(walker->suffix(), node), skip) << walker->suffix();
        EXPECT_EQ(walk(walker->suffix(), node), invalid_arguments) << walker->suffix();
        drop_trees();
    }
}

// A leaf is not asked for children, a tag or a namespace.
TEST_F(NativeLeaf, IsTakenAsItIs) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        for (const Node &node :
             {node_of(*walker).without_array(3), node_of(*walker).untagged(), leaf("other").in_namespace(std::nullopt),
              container("x", {leaf("y").untagged()}).in_namespace(fake::foreign)}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node, "node")), 0u);
            EXPECT_EQ(story(), leaf_story(*walker, "node")) << walker->suffix();
            drop_trees();
        }
    }
}

TEST_F(NativeLeaf, ThatIsAnXpathErrorIsTracedNotedAndCalledAllTheSame) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        for (const std::uint32_t second_flags : {4u, 5u, 0xffffffffu}) {
            request.state.xpath_error = 0;
            platform.forget();
            std::uint32_t seen = 0;
            on_callback = [&](const std::string &) { seen = request.state.xpath_error; };
            EXPECT_EQ(walk(walker->suffix(), leaf_of(*walker, 5, second_flags)), 0u);
            Lines expected = leaf_story(*walker, "node");
            expected.insert(expected.begin() + 1, "TRC " + walker->suffix() + ": got xpath error node ");
            EXPECT_EQ(story(), expected);
            EXPECT_EQ(changes(), Lines{"request: xpath error"}) << walker->suffix();
            EXPECT_EQ(seen, 1u) << "the flag is set before the callback";
            drop_trees();
        }
    }
}

TEST_F(NativeLeaf, ThatIsAnXpathErrorPassesTheResultOn) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        request.state.xpath_error = 0;
        platform.answer(walker->short_callback(), some_failure);
        EXPECT_EQ(walk(walker->suffix(), leaf_of(*walker, 5, 4)), some_failure) << walker->suffix();
        EXPECT_EQ(request.state.xpath_error, 1u);
        drop_trees();
    }
}

// Kind 5 counts only with its bit, and the bit only with kind 5.
TEST_F(NativeLeaf, OfAnotherKindIsNoXpathError) {
    struct Case {
        std::uint32_t kind;
        std::uint32_t second_flags;
    };
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        for (const Case &given : {Case{5, 0}, Case{5, 0xfffffffb}, Case{0, 4}, Case{1, 4}, Case{3, 4}, Case{4, 4},
                                  Case{6, 4}, Case{7, 4}, Case{13, 4}, Case{0xffffffff, 0xffffffff}}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), leaf_of(*walker, given.kind, given.second_flags)), 0u);
            EXPECT_EQ(story(), leaf_story(*walker, "node")) << walker->suffix() << " of kind " << given.kind;
            EXPECT_EQ(changes(), Lines{});
            drop_trees();
        }
    }
}

// What an earlier leaf has noted stays.
TEST_F(NativeLeaf, DoesNotTakeTheNoteBack) {
    request.state.xpath_error = 1;
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        walk(walker->suffix(), leaf_of(*walker, 0, 0));
        EXPECT_EQ(request.state.xpath_error, 1u);
        drop_trees();
    }
}

// Only leaves are error nodes.
TEST_F(NativeLeaf, AnInnerNodeIsNoXpathError) {
    for (const Walker &walker : walkers()) {
        if (walker.kind == Kind::leaf) {
            continue;
        }
        kidl_yfw_datatree *const node = build(node_of(walker), "node").root();
        node->hierarchy_kind = 5;
        node->second_flags = 4;
        walk(walker.suffix(), node);
        EXPECT_EQ(request.state.xpath_error, 0u) << walker.suffix();
        drop_trees();
    }
}

// In a whole answer: the error is noted and the leaves after it are walked.
TEST_F(NativeLeaf, ThatIsAnXpathErrorDoesNotStopTheWalk) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper";
    Tree &tree = build(in_model(container("opt", {leaf("minimum", "no"), leaf("average", "2")}), model));
    tree.at("minimum")->hierarchy_kind = 5;
    tree.at("minimum")->second_flags = 4;
    EXPECT_EQ(walk("lvla_performancemanagementhistory_opticssecond30opticstimelineinstance_opt", tree), 0u);
    EXPECT_EQ(callbacks(), (Lines{"cont_lvla_performancemanagementhistory_opticssecond30opticstimelineinstance_opt("
                                  "opt, 2)",
                                  "leaf_lvla_performancemanagementhistory_opt_minimum(opt/minimum)",
                                  "leaf_lvla_performancemanagementhistory_opt_average(opt/average)"}));
    EXPECT_EQ(messages(), Lines{"TRC lvla_performancemanagementhistory_opt_minimum: got xpath error node "});
    EXPECT_EQ(changes(), Lines{"request: xpath error"});
}

// ---- augment entries ----

class NativeAugment : public NativeTest {
protected:
    static std::string processing(const Walker &entry, const std::string &tag) {
        return "TRC " + entry.suffix() + ": Processing tag '" + tag + "'";
    }

    static Lines framed(const Walker &entry, const Lines &body) {
        Lines story{"+" + entry.suffix()};
        append(story, body);
        story.push_back("-" + entry.suffix());
        return story;
    }

    static std::string compared(const std::string &first, const std::string &second) {
        return "match(\"" + first + "\", \"" + second + "\")";
    }

    static const Walker &inner(const Walker &entry) { return walker(entry.row.children.front().walker); }
};

// It gets the augmenting node, pushes nothing and opens no scope.
TEST_F(NativeAugment, HandsItsNodeToTheWalkerOfItsTag) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 10u}) {
        request.set_kind(kind);
        for (const Walker *entry : walkers_of(Kind::augment)) {
            platform.forget();
            EXPECT_EQ(walk(entry->suffix(), build(node_of(*entry), "node")), 0u);
            Lines body{processing(*entry, entry->row.tag)};
            append(body, bare_story(inner(*entry), "node"));
            EXPECT_EQ(story(), framed(*entry, body));
            EXPECT_EQ(changes(), Lines{}) << entry->suffix();
            drop_trees();
        }
    }
}

TEST_F(NativeAugment, OneWholeStory) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
    const Node slot = container("slot", {leaf("slot-id", "3"), container("psm", {leaf("lockout-from", "working")})});
    for (const char *const level : {"lvla", "lvlb"}) {
        const std::string at = level;
        const std::string entry = at == "lvla" ? "augment_lvla_active_node" : "augment_lvla_preconfigured_node";
        const std::string path = at == "lvla" ? "/node:active-nodes/node:active-node/slot"
                                              : "/node:preconfigured-nodes/node:preconfigured-node/slot";
        platform.forget();
        EXPECT_EQ(walk(entry, build(in_model(slot, model))), 0u);
        EXPECT_EQ(story(), (Lines{"+" + entry,
                                  "TRC " + entry + ": Processing tag 'slot'",
                                  "+" + at + "_slot",
                                  "add_to_hierarchy(slot, 2)",
                                  "update_current_list(\"" + path + "\")",
                                  "list_" + at + "_slot(slot)",
                                  "output_push(slot, dest)",
                                  "TRC " + at + "_slot: Unsupported tag `slot-id`. Ignoring.",
                                  "+" + at + "_slot_psm",
                                  "add_to_hierarchy(slot/psm, 1)",
                                  "cont_" + at + "_slot_psm(slot/psm, 1)",
                                  "+" + at + "_slot_psm_lockoutfrom",
                                  "leaf_" + at + "_slot_psm_lockoutfrom(slot/psm/lockout-from)",
                                  "-" + at + "_slot_psm_lockoutfrom",
                                  "remove_from_hierarchy(slot/psm)",
                                  "-" + at + "_slot_psm",
                                  "remove_from_hierarchy(slot)",
                                  "output_pop(slot, dest)",
                                  "-" + at + "_slot",
                                  "-" + entry}));
        EXPECT_EQ(changes(), Lines{"slot/slot-id: key"});
        drop_trees();
    }
}

TEST_F(NativeAugment, KnowsItsNodeInAnyNamespace) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        for (const auto &uri : {std::optional<std::string>(fake::foreign), std::optional<std::string>()}) {
            platform.forget();
            EXPECT_EQ(walk(entry->suffix(), build(node_of(*entry).in_namespace(uri), "node")), 0u);
            Lines body{processing(*entry, entry->row.tag)};
            append(body, bare_story(inner(*entry), "node"));
            EXPECT_EQ(story(), framed(*entry, body)) << entry->suffix();
            drop_trees();
        }
    }
}

TEST_F(NativeAugment, PassesOverAnotherNodeOfItsModel) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        for (const char *const tag : {"zzz", "psm", "%s%n", ""}) {
            platform.forget();
            const Node other = container(tag, {leaf("x").untagged()}).in_namespace(entry->model->namespace_uri);
            EXPECT_EQ(walk(entry->suffix(), build(other, "node")), 0u);
            EXPECT_EQ(story(), framed(*entry, {processing(*entry, tag), unsupported(*entry, tag)}));
        }
        drop_trees();
    }
}

TEST_F(NativeAugment, AcceptsAForeignNodeSilently) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        for (const auto &uri : {std::optional<std::string>(fake::foreign), std::optional<std::string>()}) {
            platform.forget();
            EXPECT_EQ(walk(entry->suffix(), build(leaf("zzz").in_namespace(uri), "node")), 0u);
            EXPECT_EQ(story(), framed(*entry, {processing(*entry, "zzz")})) << entry->suffix();
        }
        drop_trees();
    }
}

TEST_F(NativeAugment, RefusesANodeWithoutATag) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        for (const Node &node : {node_of(*entry).untagged(), leaf("x").untagged().in_namespace(fake::foreign)}) {
            platform.forget();
            EXPECT_EQ(walk(entry->suffix(), build(node, "node")), bad_tree);
            EXPECT_EQ(story(), framed(*entry, {"ERR " + entry->suffix() + ": Tag name is not available!"}));
        }
        drop_trees();
    }
    EXPECT_EQ(request.error_node(), "none");
}

// The children are looked at before the tag.
TEST_F(NativeAugment, RefusesChildrenThatAreNotThere) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        const Node node = node_of(*entry).without_array(1);
        for (const Node &given : {node, node.untagged(), node.in_namespace(fake::foreign)}) {
            platform.forget();
            EXPECT_EQ(walk(entry->suffix(), build(given, "node")), bad_tree);
            EXPECT_EQ(story(), framed(*entry, {"ERR " + entry->suffix() + ": Failed to get subtrees!"}));
        }
        drop_trees();
    }
}

TEST_F(NativeAugment, PassesResultsOn) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        const std::string callback = inner(*entry).short_callback();
        platform.answer(callback, some_failure, 1);
        platform.answer(callback, skip, 2);
        platform.forget();
        EXPECT_EQ(walk(entry->suffix(), build(node_of(*entry), "node")), some_failure) << entry->suffix();
        EXPECT_EQ(walk(entry->suffix(), build(node_of(*entry), "again")), skip) << "it is no list's parent";
        drop_trees();
    }
}

TEST_F(NativeAugment, TriesItsTagBeforeNamespaces) {
    for (const Walker *entry : walkers_of(Kind::augment)) {
        const std::string uri = entry->model->namespace_uri;
        platform.forget();
        EXPECT_EQ(walk(entry->suffix(), build(leaf("zzz").in_namespace(uri), "node")), 0u);
        EXPECT_EQ(platform.calls(fake::Questions), (Lines{compared("zzz", entry->row.tag), compared(uri, uri)}));
        drop_trees();
    }
}

} // namespace
} // namespace native_test
