// Every setting reaches the store and comes back, and has its row. The settings are told by the members themselves: a
// new member makes the bindings below fail to compile.
#include "simulator/line_system/settings.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace {

using ocpsm::line_system::LineSettings;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::load;
using ocpsm::line_system::Readings;
using ocpsm::line_system::setting_rows;
using ocpsm::line_system::SettingRow;
using ocpsm::line_system::SlotSettings;
using ocpsm::line_system::Thresholds;

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

// A value that no other member has.
void distinguish(std::optional<bool> &member, int /*number*/) {
    member = true;
}
void distinguish(std::optional<int> &member, int number) {
    member = -number;
}
void distinguish(std::optional<std::uint32_t> &member, int number) {
    member = static_cast<std::uint32_t>(number);
}
void distinguish(std::optional<std::string> &member, int number) {
    member = "text " + std::to_string(number);
}
void distinguish(Thresholds &member, int number) {
    member = {{"low", number}, {"high", std::nullopt}};
}

// Sets the member with this index alone, from 0.
template <class Settings>
void set_one(Settings &settings, std::size_t which) {
    std::apply(
        [&](auto &...all) {
            std::size_t index = 0;
            ((index++ == which ? distinguish(all, 1000 + static_cast<int>(which)) : void()), ...);
        },
        members(settings));
}

class EverySetting : public OpenStore {
protected:
    void expect_kept(const LineSystem &system, const std::string &what) {
        const auto transaction = store->write();
        save(*transaction, system);
        transaction->commit();
        EXPECT_FALSE(system == LineSystem{}) << what;
        EXPECT_TRUE(load(*store->read()) == system) << what;
    }
};

TEST_F(EverySetting, SurvivesTheStoreAlone) {
    for (std::size_t which = 0; which < member_count<SlotSettings>; ++which) {
        LineSystem system;
        set_one(system.slots[1].settings, which);
        expect_kept(system, "slot setting " + std::to_string(which));
    }
    for (std::size_t which = 0; which < member_count<LineSettings>; ++which) {
        LineSystem system;
        set_one(system.slots[2].lines[1], which);
        expect_kept(system, "line setting " + std::to_string(which));
    }
}

TEST_F(EverySetting, SurvivesTheStoreBesideAllOthers) {
    LineSystem system;
    for (auto &slot : system.slots) {
        for (std::size_t which = 0; which < member_count<SlotSettings>; ++which) {
            set_one(slot.settings, which);
        }
        for (auto &line : slot.lines) {
            for (std::size_t which = 0; which < member_count<LineSettings>; ++which) {
                set_one(line, which);
            }
        }
    }
    expect_kept(system, "all");
}

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
