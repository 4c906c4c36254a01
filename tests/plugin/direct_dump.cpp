// The dump of a context that holds something of everything.
#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "request.hpp"
#include "story.hpp"
#include "utility.hpp"

namespace {

using Lines = std::vector<std::string>;

class DumpTest : public fake::RequestTest {
protected:
    kidl_yfw_datatree *node(const std::string &name) { return build(fake::leaf(name, "1"), name).root(); }
};

TEST_F(DumpTest, ShowsEveryTreeUnderItsLabel) {
    std::array<yfw_map_output_entry, 2> output{{{node("out1"), node("key1")}, {node("out2"), nullptr}}};
    request.context.output = output.data();
    request.context.output_count = 2;
    std::array<yfw_map_hierarchy_level, 3> hierarchy{{{node("a"), 1}, {node("b"), 1}, {node("c"), 2}}};
    request.state.hierarchy = hierarchy.data();
    request.state.hierarchy_length = 3;
    request.context.root_node = node("root");
    request.context.parent_node = node("parent");
    request.context.current_node = node("current");
    request.state.request_root = node("duplicate");
    request.context.pending_list = node("pending");
    const std::string long_path(100000, 'x');
    std::array<const char *, 3> xpaths = {"/aps/aps-modules", "/aps/%s%n", long_path.c_str()};
    request.context.xpaths = xpaths.data();
    request.context.xpath_count = 3;

    print_data(request.ctx());
    EXPECT_EQ(cases::story_of(platform, {}), (Lines{
                                                 "print_data:  list index 2",
                                                 "print_datatree(out1, \"output list node\")",
                                                 "print_datatree(key1, \"output list key\")",
                                                 "print_datatree(out2, \"output list node\")",
                                                 "print_datatree(null, \"output list key\")",
                                                 "print_data:  hierarchy_len  3",
                                                 "print_data: iteration 0",
                                                 "print_datatree(a, \"node_data\")",
                                                 "print_data: iteration 1",
                                                 "print_datatree(b, \"node_data\")",
                                                 "print_data: iteration 2",
                                                 "print_datatree(c, \"node_data\")",
                                                 "print_datatree(root, \"root_node\")",
                                                 "print_datatree(parent, \"parent_node\")",
                                                 "print_datatree(current, \"current_node\")",
                                                 "print_datatree(duplicate, \"reg_dup_datatree\")",
                                                 "print_datatree(pending, \"plist\")",
                                                 "print_data: xpath[0]: /aps/aps-modules",
                                                 "print_data: xpath[1]: /aps/%s%n",
                                                 "print_data: xpath[2]: " + long_path,
                                             }));
}

} // namespace
