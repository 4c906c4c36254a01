// Every setting and reading has its row. They are told by the members themselves: a new one makes the bindings below
// fail to compile. That settings reach the store and come back is seen in storage_test.cpp.
#include "simulator/line_system/settings.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ocpsm::line_system::LineSettings;
using ocpsm::line_system::Readings;
using ocpsm::line_system::setting_rows;
using ocpsm::line_system::SettingRow;
using ocpsm::line_system::SlotSettings;

auto members(SlotSettings &settings) {
    auto &[revertive, wait_to_restore, relative_threshold, relative_offset, lockout_from] = settings;
    return std::tie(revertive, wait_to_restore, relative_threshold, relative_offset, lockout_from);
}

auto members(LineSettings &settings) {
    auto &[rx_thresholds, rx_low_threshold_delta, rx_attenuation, tx_attenuation] = settings;
    return std::tie(rx_thresholds, rx_low_threshold_delta, rx_attenuation, tx_attenuation);
}

template <class Settings>
constexpr std::size_t member_count = std::tuple_size_v<decltype(members(std::declval<Settings &>()))>;

TEST(SettingRows, AreOneForEachMember) {
    EXPECT_EQ(setting_rows.size(), member_count<SlotSettings> + member_count<LineSettings>);
    std::set<std::string_view> records;
    std::set<std::string_view> leaves;
    for (const SettingRow &row : setting_rows) {
        EXPECT_TRUE(records.insert(row.record).second) << row.record;
        EXPECT_TRUE(leaves.insert(row.native).second) << row.native;
        EXPECT_EQ(std::count_if(setting_rows.begin(), setting_rows.end(),
                                [&](const SettingRow &other) { return other.member == row.member; }),
                  1)
            << row.record;
        EXPECT_TRUE(!row.range || !row.unit.empty()) << row.record << ": a range has a unit";
    }
}

TEST(ReadingRows, HaveEveryReading) {
    const auto count = [] {
        const auto &[receive_power, transmit_power, rx_attenuation, tx_attenuation, rx_low_threshold,
                     rx_low_threshold_delta, received, transmitted] = Readings{};
        return std::tuple_size_v<decltype(std::tie(receive_power, transmit_power, rx_attenuation, tx_attenuation,
                                                   rx_low_threshold, rx_low_threshold_delta, received, transmitted))>;
    }();
    std::vector<std::optional<int> Readings::*> values;
    std::vector<std::optional<ocpsm::line_system::Statistics> Readings::*> powers;
    const auto add = [](auto &list, auto member) {
        if (std::find(list.begin(), list.end(), member) == list.end()) {
            list.push_back(member);
        }
    };
    for (const ocpsm::line_system::ReadingRow &row : ocpsm::line_system::reading_rows) {
        if (const auto *value = std::get_if<std::optional<int> Readings::*>(&row.member)) {
            add(values, *value);
        } else if (const auto *history = std::get_if<ocpsm::line_system::History>(&row.member)) {
            add(powers, history->power);
        }
    }
    EXPECT_EQ(values.size() + powers.size(), count);
}

} // namespace
