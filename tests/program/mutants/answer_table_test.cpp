// The reference lists what stands in the plug-in's rows: here they lack the average power of the common output.
#include <gtest/gtest.h>

#include <algorithm>

#include "framework/mapping/answer_table.hpp"

namespace {

auto rows_for(std::string_view ending) {
    const auto rows = ocpsm::answer_rows();
    return std::count_if(rows.begin(), rows.end(),
                         [&](const ocpsm::AnswerRow &row) { return row.path.ends_with(ending); });
}

TEST(AnswerTable, FollowsTheRows) {
    EXPECT_EQ(rows_for("/ports/common-output/state/optical-power/avg"), 0);
    EXPECT_EQ(rows_for("/ports/common-output/state/optical-power/max"), 1);
    EXPECT_EQ(rows_for("/ports/line-secondary-out/state/optical-power/avg"), 1);
}

} // namespace
