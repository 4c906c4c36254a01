// The dump of the context.
#include <array>
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::container;
using fake::leaf;
using utility::call;
using utility::Lines;
using utility::lines_of;
using utility::Steps;
using utility::trace;

constexpr char dump[] = "print_data";

class PrintDataTest : public utility::UtilityTest {
protected:
    [[nodiscard]] Lines printed() const { return platform.calls(fake::Channels | fake::Output); }

    kidl_yfw_datatree *node(const std::string &name) { return build(leaf(name, "1"), name).root(); }

    static Steps trees(const std::vector<std::string> &nodes) {
        static const std::array<const char *, 5> labels = {"root_node", "parent_node", "current_node",
                                                           "reg_dup_datatree", "plist"};
        Steps steps;
        for (std::size_t i = 0; i < labels.size(); ++i) {
            steps.push_back(call("print_datatree(ctx, " + nodes[i] + ", \"" + labels[i] + "\")"));
        }
        return steps;
    }
};

TEST_F(PrintDataTest, AnEmptyContextIsDumpedToo) {
    EXPECT_EQ(request.context.data_printed, 0u);
    print_data(request.ctx());
    EXPECT_EQ(request.context.data_printed, 1u);
    EXPECT_EQ(printed(), lines_of(Steps{trace(dump, " list index 0"), trace(dump, " hierarchy_len  0")} +
                                  trees({"null", "null", "null", "null", "null"})));
}

TEST_F(PrintDataTest, DumpsEveryTreeUnderItsLabel) {
    std::array<yfw_map_output_entry, 2> output{
        {{node("out1"), node("key1")}, {node("out2"), nullptr}},
    };
    request.context.output = output.data();
    request.context.output_count = 2;
    std::array<yfw_map_hierarchy_level, 3> hierarchy{
        {{node("aps"), 1}, {node("aps-modules"), 1}, {node("aps-module"), 2}},
    };
    request.state.hierarchy = hierarchy.data();
    request.state.hierarchy_length = 3;
    request.context.root_node = node("root");
    request.context.parent_node = node("parent");
    request.context.current_node = node("current");
    request.state.request_root = node("duplicate");
    request.context.pending_list = node("pending");
    std::array<const char *, 2> xpaths = {"/aps/aps-modules", "/aps/%s%n"};
    request.context.xpaths = xpaths.data();
    request.context.xpath_count = 2;

    print_data(request.ctx());
    EXPECT_EQ(printed(),
              lines_of(Steps{trace(dump, " list index 2"), call("print_datatree(ctx, out1, \"output list node\")"),
                             call("print_datatree(ctx, key1, \"output list key\")"),
                             call("print_datatree(ctx, out2, \"output list node\")"),
                             call("print_datatree(ctx, null, \"output list key\")"), trace(dump, " hierarchy_len  3"),
                             trace(dump, "iteration 0"), call("print_datatree(ctx, aps, \"node_data\")"),
                             trace(dump, "iteration 1"), call("print_datatree(ctx, aps-modules, \"node_data\")"),
                             trace(dump, "iteration 2"), call("print_datatree(ctx, aps-module, \"node_data\")")} +
                       trees({"root", "parent", "current", "duplicate", "pending"}) +
                       Steps{trace(dump, "xpath[0]: /aps/aps-modules"), trace(dump, "xpath[1]: /aps/%s%n")}));
}

TEST_F(PrintDataTest, ChangesNothingButTheMark) {
    request.context.data_printed = 7;
    request.context.list_operation = 4;
    request.state.read_selection = 5;
    print_data(request.ctx());
    EXPECT_EQ(request.context.data_printed, 1u);
    EXPECT_EQ(request.context.list_operation, 4u);
    EXPECT_EQ(request.state.read_selection, 5u);
    EXPECT_EQ(platform.calls(fake::Walk | fake::Questions | fake::Heap | fake::Database | fake::Bags), Lines{});
}

TEST_F(PrintDataTest, DumpsWithBothChannelsOff) {
    request.set_channels(false, false);
    print_data(request.ctx());
    EXPECT_EQ(request.context.data_printed, 1u);
    EXPECT_EQ(printed(), lines_of(trees({"null", "null", "null", "null", "null"})));
}

TEST_F(PrintDataTest, AnXpathOfAnyLengthIsTaken) {
    const std::string xpath = utility::repeated(100000, 'x');
    std::array<const char *, 1> xpaths = {xpath.c_str()};
    request.context.xpaths = xpaths.data();
    request.context.xpath_count = 1;
    print_data(request.ctx());
    EXPECT_EQ(messages().back(), "log TRC xpath[0]: " + xpath);
}

class PrintDataDeathTest : public PrintDataTest {};

TEST_F(PrintDataDeathTest, NeedsAContext) {
    EXPECT_DEATH(print_data(nullptr), utility::context_assertion("utility", "void print_data(yfw_map_ctx)"));
}

} // namespace
