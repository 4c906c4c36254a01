#include "simulator/line_system/native_table.hpp"

#include <functional>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace ocpsm::line_system {
namespace {

using models::Schema;

// What is wrong with the device's table after a change.
std::string complaint(const std::function<void(std::vector<LeafRow> &, std::vector<ListRow> &)> &change) {
    std::vector<LeafRow> leaves(leaf_rows().begin(), leaf_rows().end());
    std::vector<ListRow> lists(list_rows().begin(), list_rows().end());
    change(leaves, lists);
    try {
        const NativeTable table(Schema::native(), leaves, lists);
    } catch (const std::logic_error &error) {
        return error.what();
    }
    return "none";
}

TEST(NativeTable, IsWhole) {
    EXPECT_EQ(complaint([](auto &, auto &) {}), "none");
}

TEST(NativeTable, NamesALeafOrAListWithoutARow) {
    EXPECT_EQ(complaint([](auto &leaves, auto &) { leaves.pop_back(); }),
              "the native table has no row for "
              "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
              "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
              "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opt/maximum");
    EXPECT_EQ(complaint([](auto &, auto &lists) { lists.erase(lists.begin()); }),
              "the native table has no row for /active-nodes/active-node");
}

TEST(NativeTable, NamesANodeWithTwoRows) {
    EXPECT_EQ(complaint([](auto &leaves, auto &) {
                  leaves.push_back({"/psm/lockout-from", SettingMember(&LineSettings::rx_attenuation)});
              }),
              "two rows of the native table are for /active-nodes/active-node/slot/psm/lockout-from");
    EXPECT_EQ(complaint([](auto &, auto &lists) {
                  lists.push_back({"/ots-oper/ots-ports/ots-port", ListKind::interfaces});
              }),
              "two rows of the native table are for /ots-oper/ots-ports/ots-port");
}

TEST(NativeTable, NamesARowWithoutANode) {
    EXPECT_EQ(complaint([](auto &leaves, auto &) {
                  leaves.push_back({"/no/such/leaf", ReadingMember(&Readings::receive_power)});
              }),
              "no node for the row of the native table for /no/such/leaf");
    EXPECT_EQ(complaint([](auto &, auto &lists) {
                  lists.push_back({"/no/list", ListKind::latest});
              }),
              "no node for the row of the native table for /no/list");
}

TEST(NativeTable, SetsNoOperationalState) {
    LineSystem system;
    EXPECT_THROW(set_value(ReadingMember(&Readings::receive_power), system, {1, 1}, "1"), std::logic_error);
    EXPECT_THROW(set_value(ReadingMember(PortStatus{}), system, {1, 1}, "active"), std::logic_error);
    EXPECT_THROW(set_value(ReadingMember(History{&Readings::received, nullptr}), system, {1, 1}, "1"),
                 std::logic_error);
    EXPECT_THROW(set_value(SettingMember(&LineSettings::rx_attenuation), system, {1, 1}, "1.5"), std::logic_error);
}

} // namespace
} // namespace ocpsm::line_system
