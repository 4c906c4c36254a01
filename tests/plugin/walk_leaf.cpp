// The walkers of leaves and of the key.
#include "walk_support.hpp"

namespace walk {
namespace {

const Lines &leaf_walkers() {
    static const Lines all{
#define YMAP_TEST_CONTAINER(suffix)
#define YMAP_TEST_LIST(suffix)
#define YMAP_TEST_LEAF(suffix) #suffix,
#include "walk_names.def"
#undef YMAP_TEST_CONTAINER
#undef YMAP_TEST_LIST
#undef YMAP_TEST_LEAF
    };
    return all;
}

constexpr char key[] = "lvla_aps_apsmodule_name";

class WalkLeaf : public WalkTest {
protected:
    // Walks a fresh leaf and gives what it and the request became: "kind 6 second 4 selection 0x10004".
    std::string marks(const std::string &suffix, const Node &description, kerrno expected = KERR_SUCCESS) {
        platform.forget();
        drop_trees();
        Tree &tree = build(description, "leaf");
        EXPECT_EQ(walk(suffix, tree), expected);
        EXPECT_EQ(story(), (Lines{"+" + suffix, "leaf_" + suffix + "(leaf)", "-" + suffix}));
        std::array<char, 100> text{};
        std::snprintf(text.data(), text.size(), "kind %u second %u selection 0x%x", tree.root()->hierarchy_kind,
                      tree.root()->second_flags, request.state.read_selection);
        request.state.read_selection = 0;
        return text.data();
    }
};

TEST_F(WalkLeaf, ThereAreAllLeavesAndTheKey) {
    EXPECT_EQ(leaf_walkers().size(), 54u);
}

TEST_F(WalkLeaf, AReadTellsSelectionsFromContentMatches) {
    for (const std::string &suffix : leaf_walkers()) {
        if (suffix == key) {
            continue;
        }
        SCOPED_TRACE(suffix);
        for (const std::uint32_t kind : {get_config, get}) {
            request.set_kind(kind);
            EXPECT_EQ(marks(suffix, leaf("x")), "kind 1 second 4 selection 0x2");
            EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 6 second 4 selection 0x10004");
            EXPECT_EQ(marks(suffix, leaf("x", "")), "kind 6 second 4 selection 0x10004");
            EXPECT_EQ(marks(suffix, leaf("x", "1").without_flags(2)), "kind 1 second 4 selection 0x2");
        }
        for (const std::uint32_t kind : {1u, 8u, 15u, 2u}) {
            request.set_kind(kind);
            EXPECT_EQ(marks(suffix, leaf("x")), "kind 1 second 4 selection 0x0");
            EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 1 second 4 selection 0x0");
        }
    }
}

TEST_F(WalkLeaf, TheKeySelectsNothing) {
    for (const std::uint32_t kind : {get_config, get, edit}) {
        request.set_kind(kind);
        EXPECT_EQ(marks(key, leaf("name")), "kind 1 second 4 selection 0x0");
        EXPECT_EQ(marks(key, leaf("name", "0/1-PSM-OM")), "kind 1 second 4 selection 0x0");
    }
}

TEST_F(WalkLeaf, NothingIsMarkedInAWholeSubtreeWalkOrADeleteWalk) {
    for (const std::string &suffix : leaf_walkers()) {
        SCOPED_TRACE(suffix);
        request.state.whole_subtree_walk = 1;
        EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 0 second 0 selection 0x0");
        request.state.delete_walk = 1;
        EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 0 second 0 selection 0x0");
        request.state.whole_subtree_walk = 0;
        EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 0 second 0 selection 0x0");
        request.state.delete_walk = 2;
        EXPECT_EQ(marks(suffix, leaf("x", "1")), "kind 0 second 0 selection 0x0");
        request.state.delete_walk = 0;
    }
}

TEST_F(WalkLeaf, TheResultOfTheCallbackIsReturnedAndTheMarksAreSetAllTheSame) {
    for (const std::string &suffix : leaf_walkers()) {
        SCOPED_TRACE(suffix);
        platform.answer("leaf_" + suffix, some_failure);
        EXPECT_EQ(marks(suffix, leaf("x", "1"), some_failure),
                  suffix == key ? "kind 1 second 4 selection 0x0" : "kind 6 second 4 selection 0x10004");
    }
}

TEST_F(WalkLeaf, SelectionBitsGather) {
    request.state.read_selection = 0x11111110;
    EXPECT_EQ(marks("lvla_aps_config_revertive", leaf("x")), "kind 1 second 4 selection 0x11111112");
    request.state.read_selection = 0x3;
    EXPECT_EQ(marks("lvla_aps_config_revertive", leaf("x", "1")), "kind 6 second 4 selection 0x10007");
}

TEST_F(WalkLeaf, ARefusedLeafIsRefusedInAReadAtTheLeaf) {
    use_conversions();
    request.set_kind(get);
    for (const auto &[suffix, tag] :
         {std::pair<std::string, std::string>{"lvlc_aps_state_targetattenuation", "target-attenuation"},
          {"lvlc_aps_state_attenuation", "attenuation"},
          {"lvld_aps_state_targetattenuation", "target-attenuation"},
          {"lvle_aps_state_targetattenuation", "target-attenuation"},
          {"lvle_aps_state_attenuation", "attenuation"}}) {
        SCOPED_TRACE(suffix);
        platform.forget();
        request.set_error_node("earlier");
        EXPECT_EQ(walk(suffix, build(leaf(tag))), 0xaaf2ee00u);
        EXPECT_EQ(request.error_node(), tag);
        std::string twice = fake::quoted(tag.c_str());
        twice.append(", ").append(fake::quoted(tag.c_str()));
        // The location first, then the name, whose allocation is named by the tag itself.
        EXPECT_EQ(platform.calls(fake::Walk | fake::Heap),
                  (Lines{"error_path(ctx)", "named_free(\"earlier\")", called("strdup", twice)}));
        EXPECT_EQ(story(), (Lines{"+" + suffix, called("leaf_" + suffix, tag), "error_path()", "-" + suffix}));
    }
}

} // namespace
} // namespace walk
