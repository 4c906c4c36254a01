// A skip from a list callback or from a leaf: who absorbs it, who passes it on, and what stands afterwards.
#include "native_support.hpp"

namespace native_test {
namespace {

bool is_list_parent(const std::string &suffix) {
    return std::count(list_parents().begin(), list_parents().end(), suffix) != 0;
}

class NativeSkip : public NativeTest {
protected:
    // Walks a container whose children are three of a kind; the second one's callback returns a skip.
    kerrno walk_three(const Walker &parent, const Walker &child) {
        platform.answer(child.short_callback(), skip, 0, "node/" + child.row.tag + "[2]");
        const Node node =
            node_of(child, child.kind == Kind::list ? std::vector<Node>{leaf("x").in_namespace(fake::foreign)}
                                                    : std::vector<Node>{});
        drop_trees();
        platform.forget();
        request.state.output_depth = 2;
        const kerrno result = walk(parent.suffix(), build(node_of(parent, {node, node, node}), "node"));
        EXPECT_EQ(request.state.output_depth, 2u);
        EXPECT_EQ(levels(), Lines{});
        return result;
    }

    [[nodiscard]] static Lines nodes(const Walker &child, std::size_t count) {
        const Lines all{"node/" + child.row.tag, "node/" + child.row.tag + "[2]", "node/" + child.row.tag + "[3]"};
        return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
    }
};

TEST_F(NativeSkip, OfAListCallbackIsAbsorbedByTheListsParent) {
    for (const std::string &suffix : list_parents()) {
        const Walker &parent = walker(suffix);
        const Walker &list = walker(parent.row.children.front().walker);
        ASSERT_EQ(list.kind, Kind::list);
        EXPECT_EQ(walk_three(parent, list), 0u) << suffix;
        const Lines at = nodes(list, 3);
        Lines body = list_story(list, at[0]);
        append(body, {"+" + list.suffix(), "add_to_hierarchy(" + at[1] + ", 2)",
                      "update_current_list(\"" + list.row.path + "\")", list.short_callback() + "(" + at[1] + ")",
                      "remove_from_hierarchy(" + at[1] + ")", "-" + list.suffix()});
        append(body, list_story(list, at[2]));
        EXPECT_EQ(story(), container_story(parent, "node", 3, body));
    }
}

// Every entry rejected: nothing is left, and nothing is wrong.
TEST_F(NativeSkip, OfEveryEntryLeavesNothing) {
    for (const std::string &suffix : list_parents()) {
        const Walker &parent = walker(suffix);
        const Walker &list = walker(parent.row.children.front().walker);
        platform.answer(list.short_callback(), skip);
        platform.forget();
        const Node entry = node_of(list, {leaf("x")});
        EXPECT_EQ(walk(suffix, build(node_of(parent, {entry, entry}), "node")), 0u);
        EXPECT_EQ(output(), Lines{}) << suffix;
        EXPECT_EQ(platform.count(list.short_callback()), 2u);
        drop_trees();
    }
}

// Any other code ends the walk of the siblings, also one that is nearly the same.
TEST_F(NativeSkip, IsTheOnlyCodeThatIsAbsorbed) {
    for (const kerrno failure : {some_failure, bad_tree, invalid_arguments, 0xaaf2f400u, 0xaaf2f800u, 1u}) {
        const std::string name = "node" + std::to_string(failure);
        for (const std::string &suffix : list_parents()) {
            const Walker &parent = walker(suffix);
            const Walker &list = walker(parent.row.children.front().walker);
            platform.answer(list.short_callback(), failure, 0, name + "/");
            platform.forget();
            const Node entry = node_of(list, {leaf("x").in_namespace(fake::foreign)});
            EXPECT_EQ(walk(suffix, build(node_of(parent, {entry, entry}), name)), failure) << suffix;
            EXPECT_EQ(platform.count(list.short_callback()), 1u);
            drop_trees();
        }
    }
}

// A container that is no list's parent stops at the skip and passes it on.
TEST_F(NativeSkip, OfAChildThatIsNoEntryIsPassedOn) {
    std::size_t seen = 0;
    for (const Walker *parent : walkers_of(Kind::container)) {
        for (const Child &row : parent->row.children) {
            const Walker &child = walker(row.walker);
            EXPECT_EQ(child.kind == Kind::list, is_list_parent(parent->suffix())) << parent->suffix();
            if (child.kind == Kind::list) {
                continue;
            }
            ++seen;
            EXPECT_EQ(walk_three(*parent, child), skip) << parent->suffix() << " " << row.tag;
            Lines body;
            for (const std::string &node : nodes(child, 2)) {
                append(body, bare_story(child, node));
            }
            EXPECT_EQ(story(), container_story(*parent, "node", 3, body));
        }
    }
    EXPECT_EQ(seen, 39u);
}

// A list entry closes its scope and passes a child's skip on to its parent.
TEST_F(NativeSkip, OfAnEntrysChildIsPassedOnByTheEntry) {
    for (const Walker *list : walkers_of(Kind::list)) {
        for (const Child &row : list->row.children) {
            const Walker &child = walker(row.walker);
            platform.answer(child.short_callback(), skip, 0, "node/" + row.tag + "[2]");
            platform.forget();
            const Node node = node_of(child);
            EXPECT_EQ(walk(list->suffix(), build(node_of(*list, {node, node, node}), "node")), skip);
            Lines body = bare_story(child, "node/" + row.tag);
            append(body, bare_story(child, "node/" + row.tag + "[2]"));
            EXPECT_EQ(story(), list_story(*list, "node", body)) << list->suffix();
            drop_trees();
        }
    }
}

// ---- from deep inside an entry ----

// An answer with two entries, a leaf somewhere below the first; the way down by tags.
struct Depth {
    const char *top;
    std::vector<const char *> way; // tags from the top's children down to the leaf
    std::size_t absorbed_at;       // how many steps below the top its absorbing parent stands
    const char *leaf;              // its walker
};

const std::vector<Depth> &depths() {
    static const std::vector<const char *> to_instance{"global",
                                                       "periodic",
                                                       "optics-history",
                                                       "optics-port-histories",
                                                       "optics-port-history",
                                                       "optics-second30-history",
                                                       "optics-second30-optics-histories",
                                                       "optics-second30-optics-history",
                                                       "optics-second30-optics-time-line-instances",
                                                       "optics-second30-optics-time-line-instance"};
    const auto below = [](std::vector<const char *> way, const char *container, const char *leaf) {
        way.push_back(container);
        way.push_back(leaf);
        return way;
    };
    static const std::vector<Depth> all{
        {"lvla_otsoper", {"ots-ports", "ots-port", "name"}, 1, "lvla_otsoper_otsport_name"},
        {"lvla_otsoper", {"ots-ports", "ots-port", "ots-info", "port-status"}, 1, "lvla_otsoper_otsinfo_portstatus"},
        {"lvla_otsoper",
         {"ots-ports", "ots-port", "ots-info", "lane-data", "receive-power"},
         1,
         "lvla_otsoper_lanedata_receivepower"},
        {"lvla_opticsoper", {"optics-ports", "optics-port", "name"}, 1, "lvla_opticsoper_opticsport_name"},
        {"lvla_interfaceconfigurations",
         {"interface-configuration", "interface-name"},
         0,
         "lvla_interfaceconfigurations_interfaceconfiguration_interfacename"},
        {"lvla_optics", {"rx-thresholds", "rx-threshold", "rx-threshold"}, 1, "lvla_optics_rxthreshold_rxthreshold"},
        {"lvla_performancemanagementhistory", below(to_instance, "opt", "minimum"), 9,
         "lvla_performancemanagementhistory_opt_minimum"},
        {"lvla_performancemanagementhistory", below(to_instance, "opr", "maximum"), 9,
         "lvla_performancemanagementhistory_opr_maximum"},
    };
    return all;
}

// The skipping leaf first, then its sibling; two entries in the absorbing container, and one more node behind it.
Node answer_of(const Depth &depth, const std::string &namespace_uri) {
    Node inner = leaf(depth.way.back(), "1");
    for (std::size_t step = depth.way.size() - 1; step > 0; --step) {
        const char *const tag = depth.way[step - 1];
        std::vector<Node> children{inner};
        if (step == depth.way.size() - 1) {
            children.push_back(leaf("behind-the-leaf"));
        }
        if (step == depth.absorbed_at) { // this step is the absorbing container: its children are entries
            children.push_back(inner);
        }
        inner = container(tag, children);
    }
    std::vector<Node> children{inner};
    if (depth.absorbed_at == 0) {
        children.push_back(inner);
    }
    children.push_back(leaf("behind"));
    return in_model(container("top", children), namespace_uri);
}

TEST_F(NativeSkip, OfALeafEndsItsEntryAndNoOther) {
    for (const Depth &depth : depths()) {
        const Walker &top = walker(depth.top);
        const Walker &skipping = walker(depth.leaf);
        Tree &tree = build(answer_of(depth, top.model->namespace_uri), "top");
        platform.answer(skipping.short_callback(), skip, 1);
        request.state.output_depth = 1;
        platform.forget();
        EXPECT_EQ(walk(depth.top, tree), 0u) << depth.leaf;
        EXPECT_EQ(platform.count(skipping.short_callback()), 2u) << "the second entry is walked";
        // The sibling behind the leaf is seen in the second entry only; the one behind everything always.
        Lines told = messages();
        ASSERT_EQ(told.size(), 2u) << depth.leaf;
        EXPECT_NE(told[0].find("`behind-the-leaf`"), std::string::npos);
        EXPECT_EQ(told[1], unsupported(top, "behind"));
        EXPECT_EQ(platform.count("output_push"), platform.count("output_pop"));
        EXPECT_EQ(platform.count("add_to_hierarchy"), platform.count("remove_from_hierarchy"));
        EXPECT_EQ(request.state.output_depth, 1u);
        drop_trees();
    }
}

// The same leaves failing: nothing absorbs that.
TEST_F(NativeSkip, AFailureOfALeafEndsTheWholeWalk) {
    for (const Depth &depth : depths()) {
        const Walker &top = walker(depth.top);
        const Walker &failing = walker(depth.leaf);
        platform.answer(failing.short_callback(), some_failure, 1);
        platform.forget();
        EXPECT_EQ(walk(depth.top, build(answer_of(depth, top.model->namespace_uri), "top")), some_failure);
        EXPECT_EQ(platform.count(failing.short_callback()), 1u);
        EXPECT_EQ(messages(), Lines{}) << depth.leaf;
        EXPECT_EQ(platform.count("output_push"), platform.count("output_pop"));
        EXPECT_EQ(platform.count("add_to_hierarchy"), platform.count("remove_from_hierarchy"));
        drop_trees();
    }
}

// The whole way out of the innermost entry of a history, written out.
TEST_F(NativeSkip, ClosesWhatItPassesOnItsWayOut) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper";
    const Node answer = container(
        "ots-ports",
        {container("ots-port",
                   {container("ots-info", {container("lane-data", {leaf("transmit-power", "1")})}), leaf("name", "a")}),
         container("ots-port", {leaf("name", "b")})});
    platform.answer("leaf_lvla_otsoper_lanedata_transmitpower", skip);
    EXPECT_EQ(walk("lvla_otsoper_otsports", build(in_model(answer, model))), 0u);
    const std::string port = "ots-ports/ots-port";
    const std::string info = port + "/ots-info";
    const std::string lane = info + "/lane-data";
    EXPECT_EQ(story(), (Lines{"+lvla_otsoper_otsports",
                              "add_to_hierarchy(ots-ports, 1)",
                              "cont_lvla_otsoper_otsports(ots-ports, 2)",
                              "+lvla_otsoper_otsports_otsport",
                              "add_to_hierarchy(" + port + ", 2)",
                              "update_current_list(\"/ots-oper/ots-ports/ots-port\")",
                              "list_lvla_otsoper_otsports_otsport(" + port + ")",
                              "output_push(" + port + ", dest)",
                              "+lvla_otsoper_otsport_otsinfo",
                              "add_to_hierarchy(" + info + ", 1)",
                              "cont_lvla_otsoper_otsport_otsinfo(" + info + ", 1)",
                              "+lvla_otsoper_otsinfo_lanedata",
                              "add_to_hierarchy(" + lane + ", 1)",
                              "cont_lvla_otsoper_otsinfo_lanedata(" + lane + ", 1)",
                              "+lvla_otsoper_lanedata_transmitpower",
                              "leaf_lvla_otsoper_lanedata_transmitpower(" + lane + "/transmit-power)",
                              "-lvla_otsoper_lanedata_transmitpower",
                              "remove_from_hierarchy(" + lane + ")",
                              "-lvla_otsoper_otsinfo_lanedata",
                              "remove_from_hierarchy(" + info + ")",
                              "-lvla_otsoper_otsport_otsinfo",
                              "remove_from_hierarchy(" + port + ")",
                              "output_pop(" + port + ", dest)",
                              "-lvla_otsoper_otsports_otsport",
                              "+lvla_otsoper_otsports_otsport",
                              "add_to_hierarchy(" + port + "[2], 2)",
                              "update_current_list(\"/ots-oper/ots-ports/ots-port\")",
                              "list_lvla_otsoper_otsports_otsport(" + port + "[2])",
                              "output_push(" + port + "[2], dest)",
                              "+lvla_otsoper_otsport_name",
                              "leaf_lvla_otsoper_otsport_name(" + port + "[2]/name)",
                              "-lvla_otsoper_otsport_name",
                              "remove_from_hierarchy(" + port + "[2])",
                              "output_pop(" + port + "[2], dest)",
                              "-lvla_otsoper_otsports_otsport",
                              "remove_from_hierarchy(ots-ports)",
                              "-lvla_otsoper_otsports"}));
    EXPECT_EQ(changes(), (Lines{port + "/name: key", port + "[2]/name: key"}));
}

// ---- where no parent of a list stands above ----

TEST_F(NativeSkip, OfASlotOrASettingReachesTheFramework) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
    const Node slot =
        in_model(container("slot", {leaf("slot-id", "1"), container("psm", {leaf("lockout-from", "x")})}), model);
    for (const char *const callback : {"list_lvla_slot", "leaf_lvla_slot_psm_lockoutfrom"}) {
        platform.answer(callback, skip, 1);
        platform.forget();
        EXPECT_EQ(walk("augment_lvla_active_node", build(slot)), skip) << callback;
        EXPECT_EQ(platform.count("output_push"), platform.count("output_pop"));
        EXPECT_EQ(levels(), Lines{});
        drop_trees();
    }
    for (const char *const callback : {"list_lvlb_slot", "leaf_lvlb_slot_psm_lockoutfrom"}) {
        platform.answer(callback, skip, 1);
        platform.forget();
        EXPECT_EQ(walk("augment_lvla_preconfigured_node", build(slot)), skip) << callback;
        drop_trees();
    }
}

TEST_F(NativeSkip, OfAnAttenuationReachesTheFramework) {
    const std::string model = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg";
    for (const char *const tag :
         {"optics-ots-rx-voa-attenuation", "optics-ots-rx-low-threshold-delta", "optics-ots-tx-voa-attenuation"}) {
        std::string callback = "leaf_lvla_optics_";
        for (const char *c = tag; *c != '\0'; ++c) {
            callback += *c == '-' ? "" : std::string(1, *c);
        }
        platform.answer(callback, skip, 1);
        platform.forget();
        const Node optics = container("optics", {leaf(tag, "1"), container("rx-thresholds")});
        EXPECT_EQ(walk("augment_lvla_interface_configuration", build(in_model(optics, model))), skip) << tag;
        EXPECT_EQ(callbacks(), (Lines{"cont_lvla_optics(optics, 2)", callback + "(optics/" + tag + ")"}));
        drop_trees();
    }
}

} // namespace
} // namespace native_test
