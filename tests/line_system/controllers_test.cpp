#include "simulator/line_system/controllers.hpp"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "simulator/line_system/operations.hpp"

namespace ocpsm::line_system {
namespace {

using Powers = std::array<Power, port_count>;

// Client light 1.00 dBm, lines -12.00 and -14.00 dBm; offsets -0.10, -3.00 and -3.50 dB; on its primary line.
Slot fitted() {
    Slot slot{.provisioned = true,
              .cabling = {.client_light = 100, .fibres = {{{-1200}, {-1400}}}, .transmit_offsets = {-10, -300, -350}}};
    slot.module.emplace();
    return slot;
}

TEST(Powers, AreThoseOfTheFibresAndOfTheClient) {
    EXPECT_EQ(powers(fitted()), (Powers{{{100, -1210}, {-1200, -200}, {-1400, -250}}}));
}

// With the attenuators open, what a slot's splitter passes on is no more than what it is given.
TEST(Powers, OfASplitterNeverSumToMoreThanItsInput) {
    const auto milliwatts = [](int hundredths_of_dbm) { return std::pow(10.0, hundredths_of_dbm / 1000.0); };
    const int slots[] = {1, 2, 3};
    const LineSystem system = example_in(slots);
    for (const int number : slots) {
        Slot open = slot(system, number);
        open.module->attenuators = {};
        const Powers all = powers(open);
        EXPECT_LE(milliwatts(all[1].transmitted) + milliwatts(all[2].transmitted), milliwatts(all[0].received))
            << number;
    }
}

TEST(Powers, FollowTheActiveLine) {
    Slot slot = fitted();
    slot.module->protection.active = Path::secondary;
    EXPECT_EQ(powers(slot), (Powers{{{100, -1410}, {-1200, -200}, {-1400, -250}}}));
}

TEST(Powers, AreReceivedBeforeAndTransmittedAfterTheAttenuators) {
    Slot slot = fitted();
    slot.module->attenuators = {{{50, 70}, {500, 900}}};
    EXPECT_EQ(powers(slot), (Powers{{{100, -1260}, {-1200, -270}, {-1400, -1150}}}));
    slot.module->protection.active = Path::secondary;
    EXPECT_EQ(powers(slot), (Powers{{{100, -1910}, {-1200, -270}, {-1400, -1150}}}));
}

TEST(Powers, AreDarkBehindACutFibreAndBehindADarkClient) {
    Slot slot = fitted();
    slot.cabling.fibres[0].cut = true;
    EXPECT_EQ(powers(slot), (Powers{{{100, dark}, {dark, -200}, {-1400, -250}}}));
    slot.cabling.client_light = dark;
    EXPECT_EQ(powers(slot), (Powers{{{dark, dark}, {dark, dark}, {-1400, dark}}}));
}

TEST(Powers, AreNeverBelowDark) {
    Slot slot = fitted();
    slot.module->attenuators = {{{3000, 5000}, {}}};
    slot.cabling.fibres[1].light = -5000;
    EXPECT_EQ(powers(slot), (Powers{{{100, dark}, {-1200, dark}, {dark, -250}}}));
}

TEST(Powers, AreDarkWithoutLightWhateverTheOffset) {
    Slot slot = fitted();
    slot.cabling = {.client_light = dark, .fibres = {{{.cut = true}, {-1400}}}, .transmit_offsets = {10, 20, 30}};
    EXPECT_EQ(powers(slot), (Powers{{{dark, dark}, {dark, dark}, {-1400, dark}}}));
}

TEST(Powers, StayWithinTheirNumbers) {
    Slot slot = fitted();
    slot.cabling.client_light = std::numeric_limits<int>::max();
    slot.cabling.transmit_offsets = {0, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    slot.module->attenuators[0].tx = std::numeric_limits<int>::min();
    const Powers all = powers(slot);
    EXPECT_EQ(all[1].transmitted, std::numeric_limits<int>::max());
    EXPECT_EQ(all[2].transmitted, -1);
}

TEST(Powers, OfAnEmptySlotAreDark) {
    Slot slot = fitted();
    slot.module.reset();
    EXPECT_EQ(powers(slot), (Powers{{{dark, dark}, {dark, dark}, {dark, dark}}}));
}

TEST(Readings, OfTheExampleAreWhatItsFibresDeliver) {
    const Slot &first = slot(example(), 1);
    EXPECT_EQ(readings(first, 0), (Readings{.receive_power = 405,
                                            .transmit_power = -1482,
                                            .received = Statistics{404, 398, 411},
                                            .transmitted = Statistics{-1480, -1495, -1471}}));
    EXPECT_EQ(readings(first, 1), (Readings{.receive_power = -1234,
                                            .transmit_power = -215,
                                            .rx_attenuation = 250,
                                            .tx_attenuation = 100,
                                            .rx_low_threshold = -250,
                                            .rx_low_threshold_delta = 10,
                                            .received = Statistics{-1230, -1251, -1218},
                                            .transmitted = Statistics{-214, -220, -209}}));
    const Slot &third = slot(example(), 3);
    EXPECT_EQ(readings(third, 0), (Readings{.receive_power = 88,
                                            .transmit_power = -1761,
                                            .received = Statistics{87, 80, 93},
                                            .transmitted = Statistics{-1760, -1774, -1752}}));
    EXPECT_EQ(readings(third, 2), (Readings{.receive_power = -1659,
                                            .transmit_power = -248,
                                            .rx_attenuation = 75,
                                            .tx_attenuation = 0,
                                            .rx_low_threshold = -300,
                                            .received = Statistics{-1661, -1683, -1640},
                                            .transmitted = Statistics{-247, -255, -240}}));
}

TEST(Readings, LackWhatIsNotConfigured) {
    EXPECT_EQ(readings(fitted(), 2),
              (Readings{.receive_power = -1400, .transmit_power = -250, .rx_attenuation = 0, .tx_attenuation = 0}));
    Slot other = fitted();
    other.lines[1].rx_thresholds = {{"high", 30}, {"low", std::nullopt}};
    EXPECT_EQ(readings(other, 2), readings(fitted(), 2));
}

TEST(Readings, OfAnEmptySlotAreAbsentWhateverIsConfigured) {
    Slot pulled = slot(example(), 1);
    pulled.module.reset();
    for (const std::size_t port : {0U, 1U, 2U}) {
        EXPECT_EQ(readings(pulled, port), Readings{}) << port;
    }
    EXPECT_THROW(static_cast<void>(readings(pulled, 3)), std::out_of_range);
}

TEST(SwitchSettings, AreHundredthsOfTheConfiguredTenths) {
    const auto settings = switch_settings(slot(example(), 3));
    EXPECT_EQ(settings.lockout, Lockout::none);
    EXPECT_EQ(settings.relative_threshold, 300);
    EXPECT_EQ(settings.relative_offset, 50);
    EXPECT_EQ(settings.primary_threshold, -2650);
    EXPECT_EQ(settings.secondary_threshold, -3000);
    EXPECT_EQ(settings.hysteresis, 150);
    EXPECT_FALSE(settings.revertive);
    EXPECT_EQ(settings.wait_to_restore, 300000U);
}

TEST(SwitchSettings, HaveTheModelsDefaults) {
    const auto settings = switch_settings(Slot{});
    EXPECT_EQ(settings.lockout, Lockout::none);
    EXPECT_EQ(settings.relative_threshold, 0);
    EXPECT_EQ(settings.relative_offset, 0);
    EXPECT_EQ(settings.primary_threshold, std::nullopt);
    EXPECT_EQ(settings.secondary_threshold, std::nullopt);
    EXPECT_EQ(settings.hysteresis, 0);
    EXPECT_FALSE(settings.revertive);
    EXPECT_EQ(settings.wait_to_restore, 0U);
}

TEST(SwitchSettings, NameTheLineThatIsLockedOut) {
    Slot slot;
    slot.settings.lockout_from = "working";
    EXPECT_EQ(switch_settings(slot).lockout, Lockout::working);
    slot.settings.lockout_from = "protected";
    EXPECT_EQ(switch_settings(slot).lockout, Lockout::protection);
    slot.settings.lockout_from = "";
    EXPECT_EQ(switch_settings(slot).lockout, Lockout::none);
}

TEST(SwitchSettings, CountTheThresholdThatIsNamedLowOnly) {
    Slot slot;
    slot.lines[0].rx_thresholds = {{"high", 30}, {"Low", -100}, {"low", -200}};
    slot.lines[1].rx_thresholds = {{"high", 30}};
    EXPECT_EQ(switch_settings(slot).primary_threshold, -2000);
    EXPECT_EQ(switch_settings(slot).secondary_threshold, std::nullopt);
}

TEST(Attenuation, IsOpenUnlessItIsSet) {
    EXPECT_EQ(attenuation(std::nullopt), 0);
    EXPECT_EQ(attenuation(0), 0);
    EXPECT_EQ(attenuation(35), 350);
}

} // namespace
} // namespace ocpsm::line_system
