#include "framework_fixture.hpp"

namespace {

TEST(Match, NeedsTwoEqualTexts) {
    EXPECT_NE(yfw_map_do_these_match("a", "a"), 0);
    EXPECT_EQ(yfw_map_do_these_match("a", "b"), 0);
    EXPECT_EQ(yfw_map_do_these_match(nullptr, "a"), 0);
    EXPECT_EQ(yfw_map_do_these_match("a", nullptr), 0);
    EXPECT_EQ(yfw_map_do_these_match(nullptr, nullptr), 0);
}

TEST(RequestDelete, IsTheNodesOwnOperation) {
    for (const uint32_t operation : {0U, 1U, 2U, 3U, 4U, 5U}) {
        kidl_yfw_datatree node{};
        node.operation = operation;
        EXPECT_EQ(yfw_map_is_request_delete(&node) != 0, operation == 3 || operation == 4) << operation;
    }
    EXPECT_EQ(yfw_map_is_request_delete(nullptr), 0);
}

class RequestAdd : public FrameworkFixture {
protected:
    std::vector<bool> adds(uint32_t kind) {
        ocpsm::framework::MappingContext other(kind, container("aps", {}), channels, native);
        std::vector<bool> results;
        kidl_yfw_datatree node{};
        for (node.operation = 0; node.operation < 5; ++node.operation) {
            results.push_back(yfw_map_is_request_add(&other, &node, &other.destination()) != 0);
        }
        return results;
    }
};

TEST_F(RequestAdd, IsAMergeReplaceOrCreateOfAnEdit) {
    EXPECT_EQ(adds(YFW_KIND_EDIT_CONFIG), (std::vector{true, true, true, false, false}));
    EXPECT_EQ(adds(YFW_KIND_GET_CONFIG), std::vector<bool>(5, false));
    EXPECT_EQ(adds(YFW_KIND_GET), std::vector<bool>(5, false));
}

TEST_F(RequestAdd, NeedsContextAndNode) {
    EXPECT_EQ(yfw_map_is_request_add(nullptr, &aps(), &aps()), 0);
    EXPECT_EQ(yfw_map_is_request_add(&context, nullptr, &aps()), 0);
}

} // namespace
