// The walk of a container of an answer.
#include "native_support.hpp"

namespace native_test {
namespace {

class NativeContainer : public NativeTest {
protected:
    // The walk of a container whose children are these, and what it is expected to come to.
    void expect_walk(const Walker &walker, const std::vector<Node> &children, kerrno result, const Lines &body) {
        platform.forget();
        EXPECT_EQ(walk(walker.suffix(), build(node_of(walker, children), "node")), result) << walker.suffix();
        EXPECT_EQ(story(), container_story(walker, "node", children.size(), body)) << walker.suffix();
        EXPECT_EQ(changes(), Lines{}) << walker.suffix();
        drop_trees();
    }

    [[nodiscard]] static Node child_node(const Child &child) { return node_of(walker(child.walker)); }
    [[nodiscard]] static Lines child_story(const Child &child) {
        return bare_story(walker(child.walker), "node/" + child.tag);
    }
};

// Two stories written out in full; the others follow the same rule.
TEST_F(NativeContainer, IsPushedCalledAndWalked) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
    const Node psm = container(
        "psm", {leaf("lockout-from", "working"), container("revertive", {leaf("wtr", "5"), leaf("enable", "true")})});
    EXPECT_EQ(walk("lvla_slot_psm", build(in_model(psm, model))), 0u);
    EXPECT_EQ(story(),
              (Lines{"+lvla_slot_psm", "add_to_hierarchy(psm, 1)", "cont_lvla_slot_psm(psm, 2)",
                     "+lvla_slot_psm_lockoutfrom", "leaf_lvla_slot_psm_lockoutfrom(psm/lockout-from)",
                     "-lvla_slot_psm_lockoutfrom", "+lvla_slot_psm_revertive", "add_to_hierarchy(psm/revertive, 1)",
                     "cont_lvla_slot_psm_revertive(psm/revertive, 2)", "+lvla_slot_revertive_wtr",
                     "leaf_lvla_slot_revertive_wtr(psm/revertive/wtr)", "-lvla_slot_revertive_wtr",
                     "+lvla_slot_revertive_enable", "leaf_lvla_slot_revertive_enable(psm/revertive/enable)",
                     "-lvla_slot_revertive_enable", "remove_from_hierarchy(psm/revertive)", "-lvla_slot_psm_revertive",
                     "remove_from_hierarchy(psm)", "-lvla_slot_psm"}));
}

TEST_F(NativeContainer, OfOperationalStateIsWalkedInTheReadOfIt) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper";
    const Node info = container("ots-info", {container("lane-data", {leaf("receive-power", "-5")}), leaf("port-status"),
                                             leaf("led-color", "green")});
    EXPECT_EQ(walk("lvla_otsoper_otsport_otsinfo", build(in_model(info, model))), 0u);
    EXPECT_EQ(story(),
              (Lines{"+lvla_otsoper_otsport_otsinfo", "add_to_hierarchy(ots-info, 1)",
                     "cont_lvla_otsoper_otsport_otsinfo(ots-info, 3)", "+lvla_otsoper_otsinfo_lanedata",
                     "add_to_hierarchy(ots-info/lane-data, 1)",
                     "cont_lvla_otsoper_otsinfo_lanedata(ots-info/lane-data, 1)", "+lvla_otsoper_lanedata_receivepower",
                     "leaf_lvla_otsoper_lanedata_receivepower(ots-info/lane-data/receive-power)",
                     "-lvla_otsoper_lanedata_receivepower", "remove_from_hierarchy(ots-info/lane-data)",
                     "-lvla_otsoper_otsinfo_lanedata", "+lvla_otsoper_otsinfo_portstatus",
                     "leaf_lvla_otsoper_otsinfo_portstatus(ots-info/port-status)", "-lvla_otsoper_otsinfo_portstatus",
                     "TRC lvla_otsoper_otsport_otsinfo: Unsupported tag `led-color`. Ignoring.",
                     "remove_from_hierarchy(ots-info)", "-lvla_otsoper_otsport_otsinfo"}));
}

TEST_F(NativeContainer, WithoutChildrenItIsCalledAllTheSame) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        expect_walk(*walker, {}, 0, {});
    }
}

TEST_F(NativeContainer, HandsEveryKnownChildToItsWalkerInTheOrderOfTheAnswer) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        std::vector<Child> children = walker->row.children;
        for (int turn = 0; turn < 2; ++turn) {
            std::vector<Node> nodes;
            Lines body;
            for (const Child &child : children) {
                nodes.push_back(child_node(child));
                append(body, child_story(child));
            }
            expect_walk(*walker, nodes, 0, body);
            std::reverse(children.begin(), children.end());
        }
    }
}

// The second of two equal siblings is walked as the first.
TEST_F(NativeContainer, WalksEveryInstanceOfAChild) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const Child &child : walker->row.children) {
            Lines body = child_story(child);
            append(body, bare_story(native_test::walker(child.walker), "node/" + child.tag + "[2]"));
            expect_walk(*walker, {child_node(child), child_node(child)}, 0, body);
        }
    }
}

// Tags are compared, one after the other in the model's order, before namespaces are.
TEST_F(NativeContainer, TriesTheTagsInTheOrderOfTheModel) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        Lines tried;
        for (const Child &child : walker->row.children) {
            tried.push_back("match(\"zzz\", \"" + child.tag + "\")");
        }
        tried.push_back("match(\"" + walker->model->namespace_uri + "\", \"" + walker->model->namespace_uri + "\")");
        platform.forget();
        EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker, {leaf("zzz")}))), 0u);
        EXPECT_EQ(platform.calls(fake::Questions), tried) << walker->suffix();
        drop_trees();
    }
}

TEST_F(NativeContainer, PassesOverUnknownTagsOfItsModel) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Child &known = walker->row.children.front();
        Lines body{unsupported(*walker, "zzz")};
        append(body, child_story(known));
        append(body, {unsupported(*walker, "%s%n"), unsupported(*walker, "")});
        expect_walk(*walker, {leaf("zzz", "1"), child_node(known), container("%s%n", {leaf("x")}), leaf("")}, 0, body);
    }
}

TEST_F(NativeContainer, AcceptsForeignAndAbsentNamespacesSilently) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Child &known = walker->row.children.front();
        expect_walk(*walker,
                    {leaf("zzz", "1").in_namespace(fake::foreign), container("yyy").in_namespace(std::nullopt),
                     child_node(known), leaf("xxx").in_namespace(""),
                     leaf("www").in_namespace(walker->model->namespace_uri + "x"),
                     leaf("vvv").in_namespace("http://vexlo.example/ns/yang/Vexlo-ORBIT-other")},
                    0, child_story(known));
    }
}

// The tag alone decides whether a child is known.
TEST_F(NativeContainer, KnowsItsChildrenInAnyNamespace) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const Child &child : walker->row.children) {
            expect_walk(*walker, {child_node(child).in_namespace(fake::foreign)}, 0, child_story(child));
            expect_walk(*walker, {child_node(child).in_namespace(std::nullopt)}, 0, child_story(child));
        }
    }
}

// Known elsewhere is not known here.
TEST_F(NativeContainer, DoesNotKnowTheChildrenOfOthers) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        Lines body{unsupported(*walker, walker->row.tag)};
        append(body, {unsupported(*walker, "name"), unsupported(*walker, "slot"), unsupported(*walker, "optics"),
                      unsupported(*walker, "number")});
        expect_walk(*walker, {leaf(walker->row.tag), leaf("name"), leaf("slot"), leaf("optics"), leaf("number")}, 0,
                    body);
    }
}

TEST_F(NativeContainer, RefusesAChildWithoutATag) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Child &known = walker->row.children.front();
        Lines body = child_story(known);
        body.push_back("ERR " + walker->suffix() + ": Tag name is not available!");
        const Node nameless = leaf("x").untagged();
        expect_walk(*walker, {child_node(known), nameless, child_node(known)}, bad_tree, body);
        expect_walk(*walker, {child_node(known), nameless.in_namespace(fake::foreign)}, bad_tree, body);
        expect_walk(*walker, {child_node(known), nameless.in_namespace(std::nullopt)}, bad_tree, body);
    }
    EXPECT_EQ(request.error_node(), "none");
}

TEST_F(NativeContainer, RefusesChildrenThatAreNotThere) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const std::int32_t count : {1, 2, 2147483647, -1, -2147483647 - 1}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker).without_array(count))), bad_tree);
            EXPECT_EQ(story(), (Lines{"+" + walker->suffix(), "ERR " + walker->suffix() + ": Failed to get subtrees!",
                                      "-" + walker->suffix()}));
        }
        drop_trees();
    }
    EXPECT_EQ(request.error_node(), "none");
}

// Neither a count without an array nor an array count unless the node says that it carries a subtree.
TEST_F(NativeContainer, LooksAtChildrenOnlyWhereTheNodeSaysThatItHasThem) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Node children = node_of(*walker, {child_node(walker->row.children.front())});
        for (const Node &node : {node_of(*walker).without_array(0), node_of(*walker).without_array(3).without_flags(64),
                                 children.without_flags(64)}) {
            platform.forget();
            EXPECT_EQ(walk(walker->suffix(), build(node, "node")), 0u);
            EXPECT_EQ(story(), container_story(*walker, "node", 0)) << walker->suffix();
        }
        drop_trees();
    }
}

TEST_F(NativeContainer, StopsAtTheFirstChildThatFails) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const Child &child : walker->row.children) {
            const Walker &failing = native_test::walker(child.walker);
            // The first instance of the child passes, the second fails.
            platform.answer(failing.short_callback(), some_failure, 0, "node/" + child.tag + "[2]");
            Lines body = child_story(child);
            Lines second = bare_story(failing, "node/" + child.tag + "[2]");
            append(body, second);
            expect_walk(*walker, {child_node(child), child_node(child), child_node(child)}, some_failure, body);
        }
    }
}

TEST_F(NativeContainer, LeavesItsChildrenAloneWhenItsCallbackFails) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Node child = child_node(walker->row.children.front());
        platform.answer(walker->short_callback(), some_failure);
        platform.forget();
        EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker, {child, child}), "node")), some_failure);
        EXPECT_EQ(story(), container_story(*walker, "node", 2)) << walker->suffix();
        drop_trees();
    }
}

// Nothing absorbs it: it is no list that says so.
TEST_F(NativeContainer, PassesASkipOfItsCallbackOn) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const Node child = child_node(walker->row.children.front());
        platform.answer(walker->short_callback(), skip);
        platform.forget();
        EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker, {child}), "node")), skip) << walker->suffix();
        EXPECT_EQ(callbacks(), Lines{walker->short_callback() + "(node, 1)"});
        EXPECT_EQ(levels(), Lines{});
        drop_trees();
    }
}

// The hierarchy above is the framework's: nodes that stand there stay.
TEST_F(NativeContainer, StandsOnTopOfTheHierarchyWhileItsChildrenAreWalked) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        Tree &above = build(container("above"));
        yfw_map_add_to_node_hierarchy(request.ctx(), above.root(), 2);
        const Child &child = walker->row.children.front();
        const Walker &inner = native_test::walker(child.walker);
        Lines seen;
        on_callback = [&](const std::string &) { seen.push_back(levels().back()); };
        EXPECT_EQ(walk(walker->suffix(), build(node_of(*walker, {child_node(child)}), "node")), 0u);
        const std::string of_child = inner.kind == Kind::leaf        ? "node 1"
                                     : inner.kind == Kind::container ? "node/" + child.tag + " 1"
                                                                     : "node/" + child.tag + " 2";
        EXPECT_EQ(seen, (Lines{"node 1", of_child})) << walker->suffix();
        EXPECT_EQ(levels(), Lines{"above 2"});
        yfw_map_remove_from_node_hierarchy(request.ctx(), above.root());
        drop_trees();
    }
}

// ---- the kind of the request ----

TEST_F(NativeContainer, OfASettingIsWalkedInRequestsOfAnyKind) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 10u, 15u}) {
        request.set_kind(kind);
        for (const Walker *walker : walkers_of(Kind::container)) {
            if (!walker->model->operational) {
                const Child &child = walker->row.children.front();
                expect_walk(*walker, {child_node(child)}, 0, child_story(child));
            }
        }
    }
}

// In other reads its nodes are as unknown as any.
TEST_F(NativeContainer, OfOperationalStateKnowsNothingInOtherRequests) {
    for (const std::uint32_t kind : {0u, 1u, 8u, 15u}) {
        request.set_kind(kind);
        for (const Walker *walker : walkers_of(Kind::container)) {
            if (!walker->model->operational) {
                continue;
            }
            std::vector<Node> nodes;
            Lines body;
            for (const Child &child : walker->row.children) {
                nodes.push_back(child_node(child));
                nodes.push_back(child_node(child).in_namespace(fake::foreign));
                nodes.push_back(child_node(child).in_namespace(std::nullopt));
                body.push_back(unsupported(*walker, child.tag));
            }
            expect_walk(*walker, nodes, 0, body);
        }
    }
}

} // namespace
} // namespace native_test
