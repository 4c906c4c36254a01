#include "simulator/line_system/operations.hpp"

#include <array>

#include <gmock/gmock.h>

#include "framework/error.hpp"
#include "simulator/line_system/controllers.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm::line_system {
namespace {

using testing::ElementsAre;

constexpr char no_module_in_2[] = "refused|data-missing||slot 2 holds no module|fit one first";
constexpr char no_slot_4[] = "input|invalid-value||there is no slot 4|the slots are 1 to 3";
constexpr char no_such_light[] =
    "input|invalid-value||no fibre delivers such a light|name a power from -40.00 to 30.00 dBm";

LineSystem with_one_module() {
    return with_modules(std::array{2});
}

Path active(const LineSystem &system, int number) {
    return slot(system, number).module->protection.active;
}

TEST(Fitting, PutsAModuleWithLightIntoASlotThatIsUsedForTheFirstTime) {
    LineSystem expected;
    expected.clock = 4200;
    expected.slots[1].provisioned = true;
    expected.slots[1].module = Module{.fitted_at = 4200};
    expected.slots[1].cabling = {
        .client_light = 100, .fibres = {{{-1250}, {-1450}}}, .transmit_offsets = {-30, -340, -340}};
    EXPECT_TRUE(fit(tick({}, 4200), 2) == expected);
}

TEST(Fitting, GivesAModuleTheSettingsOfItsSlot) {
    LineSystem before = pull(example(), 3);
    before.clock = 77;
    slot(before, 3).lines[0].tx_attenuation.reset();
    const LineSystem after = fit(before, 3);
    LineSystem expected = before;
    expected.slots[2].module = Module{.fitted_at = 77};
    // Configured are 0.0 dB and nothing, and 0.8 dB and 0.0 dB.
    expected.slots[2].module->attenuators = {{{0, 0}, {80, 0}}};
    EXPECT_TRUE(after == expected);
    EXPECT_EQ(active(after, 3), Path::primary);
}

TEST(Fitting, IsRefusedWhereAModuleIsOrNoSlot) {
    EXPECT_EQ(error_of([] { fit(example(), 3); }), "refused|data-exists||slot 3 holds a module already|pull it first");
    EXPECT_EQ(error_of([] { fit(example(), 4); }), no_slot_4);
    EXPECT_EQ(error_of([] { fit(example(), 0); }), "input|invalid-value||there is no slot 0|the slots are 1 to 3");
    EXPECT_EQ(error_of([] { fit(example(), -1); }), "input|invalid-value||there is no slot -1|the slots are 1 to 3");
}

TEST(Fitting, ManyModulesAtOnce) {
    EXPECT_THAT(fitted_slots(with_modules(std::array{3, 1, 3})), ElementsAre(1, 3));
    EXPECT_TRUE(with_modules({}) == LineSystem{});
    EXPECT_TRUE(with_modules(std::array{3, 1}) == fit(fit({}, 1), 3));
    EXPECT_EQ(error_of([] { with_modules(std::array{1, 4}); }), no_slot_4);
}

TEST(Pulling, LeavesSettingsAndFibres) {
    const LineSystem after = pull(example(), 1);
    LineSystem expected = example();
    expected.slots[0].module.reset();
    EXPECT_TRUE(after == expected);
    EXPECT_THAT(fitted_slots(after), ElementsAre(3));
}

TEST(Pulling, IsRefusedWhereNoModuleIs) {
    EXPECT_EQ(error_of([] { pull(example(), 2); }), no_module_in_2);
    EXPECT_EQ(error_of([] { pull(example(), 4); }), no_slot_4);
}

TEST(Fibres, AreCutAndSpliced) {
    LineSystem expected = example();
    expected.slots[0].cabling.fibres[1].cut = true;
    const LineSystem severed = cut(example(), 1, Path::secondary);
    EXPECT_TRUE(severed == expected);
    EXPECT_TRUE(cut(severed, 1, Path::secondary) == expected);
    EXPECT_TRUE(splice(severed, 1, Path::secondary) == example());
    EXPECT_TRUE(splice(example(), 1, Path::secondary) == example());
    expected.slots[0].cabling.fibres[0].cut = true;
    EXPECT_TRUE(cut(severed, 1, Path::primary) == expected);
}

TEST(Fibres, AreNotToBeReachedWithoutAModule) {
    EXPECT_EQ(error_of([] { cut(example(), 2, Path::primary); }), no_module_in_2);
    EXPECT_EQ(error_of([] { splice(example(), 2, Path::primary); }), no_module_in_2);
    EXPECT_EQ(error_of([] { light(example(), 2, Path::primary, 0); }), no_module_in_2);
    EXPECT_EQ(error_of([] { cut(example(), 4, Path::primary); }), no_slot_4);
    EXPECT_EQ(error_of([] { splice(example(), 4, Path::primary); }), no_slot_4);
    EXPECT_EQ(error_of([] { light(example(), 4, Path::primary, 0); }), no_slot_4);
}

TEST(Fibres, DeliverTheLightThatIsAskedFor) {
    LineSystem expected = example();
    expected.slots[0].cabling.fibres[0].light = -2050;
    EXPECT_TRUE(light(example(), 1, Path::primary, -2050) == expected);
    EXPECT_EQ(slot(light(example(), 1, Path::secondary, 3000), 1).cabling.fibres[1].light, 3000);
    EXPECT_EQ(slot(light(example(), 1, Path::secondary, -4000), 1).cabling.fibres[1].light, -4000);
    EXPECT_EQ(error_of([] { light(example(), 1, Path::primary, 3001); }), no_such_light);
    EXPECT_EQ(error_of([] { light(example(), 1, Path::primary, -4001); }), no_such_light);
}

TEST(Fibres, DeliverItOnceTheyAreSpliced) {
    const LineSystem set = light(example(), 3, Path::primary, -1100);
    EXPECT_EQ(powers(slot(set, 3))[1].received, -4000);
    EXPECT_EQ(powers(slot(splice(set, 3, Path::primary), 3))[1].received, -1100);
}

TEST(Ticks, MoveTheClock) {
    EXPECT_EQ(tick(example(), 0).clock, 0U);
    EXPECT_TRUE(tick(example(), 0) == example());
    EXPECT_EQ(tick(example(), 1).clock, 1U);
    EXPECT_EQ(tick(tick(example(), 250), 100).clock, 350U);
}

TEST(Ticks, SampleAtTheEndOfEachStep) {
    const LineSystem after = tick(with_one_module(), 250); // steps that end at 100, 200 and 250
    const PortHistory &primary = slot(after, 2).module->histories[1];
    EXPECT_TRUE(primary.received.running == (Samples{3, -3750, -1250, -1250}));
    EXPECT_TRUE(primary.transmitted.running == (Samples{3, -720, -240, -240}));
    const PortHistory &common = slot(after, 2).module->histories[0];
    EXPECT_TRUE(common.received.running == (Samples{3, 300, 100, 100}));
    EXPECT_TRUE(common.transmitted.running == (Samples{3, -3840, -1280, -1280}));
    EXPECT_EQ(slot(tick(after, 100), 2).module->histories[1].received.running.count, 4U);
}

TEST(Ticks, EndAHistoryIntervalEvery30Seconds) {
    const LineSystem nearly = tick(with_one_module(), 29'900);
    EXPECT_EQ(slot(nearly, 2).module->histories[1].received.last, std::nullopt);
    EXPECT_EQ(slot(nearly, 2).module->histories[1].received.running.count, 299U);
    const LineSystem over = tick(nearly, 100);
    EXPECT_TRUE(slot(over, 2).module->histories[1].received == (PowerHistory{{}, Statistics{-1250, -1250, -1250}}));
    const LineSystem next = tick(light(over, 2, Path::primary, -1300), 29'900);
    EXPECT_EQ(slot(next, 2).module->histories[1].received.last, (Statistics{-1250, -1250, -1250}));
    EXPECT_EQ(slot(tick(next, 100), 2).module->histories[1].received.last, (Statistics{-1300, -1300, -1300}));
}

// A third of the samples are 50 hundredths higher than the others.
TEST(Ticks, SummariseAnInterval) {
    const LineSystem higher = tick(with_one_module(), 10'000);
    const LineSystem over = tick(light(higher, 2, Path::primary, -1300), 20'000);
    const Module &module = *slot(over, 2).module;
    EXPECT_EQ(module.histories[1].received.last, (Statistics{-1283, -1300, -1250}));    // -1283.33
    EXPECT_EQ(module.histories[0].transmitted.last, (Statistics{-1313, -1330, -1280})); // -1313.33
    EXPECT_EQ(module.histories[1].transmitted.last, (Statistics{-240, -240, -240}));
    EXPECT_EQ(module.histories[2].received.last, (Statistics{-1450, -1450, -1450}));
    EXPECT_EQ(module.histories[0].received.last, (Statistics{100, 100, 100}));
}

TEST(Ticks, RoundAnAverageToTheNearestAndHalvesAwayFromZero) {
    const auto average = [](int first, int second, std::uint32_t milliseconds) {
        const LineSystem system = tick(light(with_one_module(), 2, Path::primary, first), milliseconds);
        const LineSystem over = tick(light(system, 2, Path::primary, second), 30'000 - milliseconds);
        return slot(over, 2).module->histories[1].received.last->average;
    };
    EXPECT_EQ(average(-1250, -1251, 15'000), -1251); // -1250.5
    EXPECT_EQ(average(-1250, -1251, 15'100), -1250);
    EXPECT_EQ(average(100, 101, 15'000), 101); // 100.5
    EXPECT_EQ(average(100, 101, 15'100), 100);
    EXPECT_EQ(average(-1, 1, 15'000), 0);
}

// A step from 29.95 s to 30.05 s ends in the second interval, and so does its sample.
TEST(Ticks, CountASampleToTheIntervalInWhichItsStepEnds) {
    const LineSystem nearly = tick(with_one_module(), 29'950);
    const LineSystem over = tick(light(nearly, 2, Path::primary, -1300), 100);
    EXPECT_TRUE(slot(over, 2).module->histories[1].received ==
                (PowerHistory{{1, -1300, -1300, -1300}, Statistics{-1250, -1250, -1250}}));
    EXPECT_EQ(over.clock, 30'050U);
    const LineSystem exact = tick(light(nearly, 2, Path::primary, -1300), 50);
    EXPECT_TRUE(slot(exact, 2).module->histories[1].received ==
                (PowerHistory{{}, Statistics{-1250, -1300, -1250}})); // 300 times -1250, once -1300: -1250.17
}

TEST(Ticks, ForgetAnIntervalThatAModuleHasNotSeenWhole) {
    const LineSystem late = fit(tick({}, 100), 2);
    const LineSystem first = tick(late, 29'900);
    EXPECT_TRUE(slot(first, 2).module->histories[1].received == PowerHistory{});
    EXPECT_EQ(slot(tick(first, 30'000), 2).module->histories[1].received.last, (Statistics{-1250, -1250, -1250}));
    const LineSystem in_time = fit(tick({}, 30'000), 2);
    EXPECT_EQ(slot(tick(in_time, 30'000), 2).module->histories[1].received.last, (Statistics{-1250, -1250, -1250}));
}

TEST(Ticks, KeepTheHistoryOfTheExampleUntilTheNextIntervalIsOver) {
    const LineSystem nearly = tick(example(), 29'999);
    EXPECT_EQ(slot(nearly, 1).module->histories[1].received.last, (Statistics{-1230, -1251, -1218}));
    const LineSystem over = tick(nearly, 1);
    EXPECT_EQ(slot(over, 1).module->histories[1].received.last, (Statistics{-1234, -1234, -1234}));
    EXPECT_EQ(slot(over, 1).module->histories[0].transmitted.last, (Statistics{-1482, -1482, -1482}));
    EXPECT_EQ(slot(over, 3).module->histories[1].received.last, (Statistics{-4000, -4000, -4000}));
    EXPECT_EQ(slot(over, 3).module->histories[0].transmitted.last, (Statistics{-1761, -1761, -1761}));
}

TEST(Ticks, InPiecesAreTheSameAsAWhole) {
    LineSystem pieces = cut(example(), 1, Path::primary);
    const LineSystem whole = tick(pieces, 65'000);
    for (int step = 0; step < 650; ++step) {
        pieces = tick(pieces, 100);
    }
    EXPECT_TRUE(pieces == whole);
}

TEST(Ticks, MoveTheSwitchAndNothingElseDoes) {
    const LineSystem severed = cut(example(), 1, Path::primary);
    EXPECT_EQ(active(severed, 1), Path::primary);
    EXPECT_EQ(powers(slot(severed, 1))[0].transmitted, -4000);
    const LineSystem after = tick(severed, 1);
    EXPECT_EQ(active(after, 1), Path::secondary);
    EXPECT_EQ(powers(slot(after, 1))[0].transmitted, -1735); // -1587 - 150 + 2
    // What the step has seen is what was there before the switch moved.
    EXPECT_TRUE(slot(after, 1).module->histories[0].transmitted.running == (Samples{1, -4000, -4000, -4000}));
}

// The first module waits ten seconds from the first step that sees the light again.
TEST(Ticks, LetTheSwitchGoBackInTime) {
    const LineSystem failed = tick(cut(example(), 1, Path::primary), 1000);
    ASSERT_EQ(active(failed, 1), Path::secondary);
    const LineSystem nearly = tick(splice(failed, 1, Path::primary), 10'000);
    EXPECT_TRUE(slot(nearly, 1).module->protection == (SwitchState{Path::secondary, 1100}));
    EXPECT_TRUE(slot(tick(nearly, 100), 1).module->protection == SwitchState{Path::primary});
    const LineSystem broken = tick(cut(nearly, 1, Path::primary), 100);
    EXPECT_TRUE(slot(broken, 1).module->protection == SwitchState{Path::secondary});
    EXPECT_EQ(active(tick(splice(broken, 1, Path::primary), 10'000), 1), Path::secondary);
    EXPECT_EQ(active(tick(splice(broken, 1, Path::primary), 10'100), 1), Path::primary);
}

// The third module compares its lines: 3.0 dB around a difference of 0.5 dB, from -16.59 dBm on the secondary line.
TEST(Ticks, ObeyTheRelativeThreshold) {
    const LineSystem spliced = splice(example(), 3, Path::primary);
    EXPECT_EQ(active(tick(spliced, 60'000), 3), Path::secondary);
    EXPECT_EQ(active(tick(light(spliced, 3, Path::primary, -1309), 100), 3), Path::secondary);
    EXPECT_EQ(active(tick(light(spliced, 3, Path::primary, -1308), 100), 3), Path::primary);
}

TEST(Ticks, PassOverEmptySlots) {
    const LineSystem pulled = pull(example(), 1);
    const LineSystem after = tick(pulled, 100);
    EXPECT_TRUE(slot(after, 1) == slot(pulled, 1));
    EXPECT_TRUE(slot(after, 2) == Slot{});
    EXPECT_TRUE(tick({}, 100) == (LineSystem{.clock = 100}));
}

} // namespace
} // namespace ocpsm::line_system
