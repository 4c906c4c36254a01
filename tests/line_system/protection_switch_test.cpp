#include "simulator/line_system/protection_switch.hpp"

#include <limits>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

namespace ocpsm::line_system {

static void PrintTo(const SwitchState &state, std::ostream *out) { // gtest finds it by this name
    *out << (state.active == Path::primary ? "primary" : "secondary");
    if (state.restorable_since) {
        *out << " since " << *state.restorable_since;
    }
}

namespace {

constexpr SwitchState on_primary{Path::primary};
constexpr SwitchState on_secondary{Path::secondary};
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

constexpr SwitchState waiting(std::uint64_t since) {
    return {Path::secondary, since};
}

struct Row {
    const char *what;
    SwitchSettings settings;
    LineLight light;
    std::uint64_t now;
    SwitchState before;
    SwitchState after;
};

void check(const std::vector<Row> &rows) {
    for (const Row &row : rows) {
        const Decision decision = evaluate(row.before, row.settings, row.light, row.now);
        EXPECT_EQ(decision.state, row.after) << row.what;
        EXPECT_EQ(decision.reason.has_value(), row.before.active != row.after.active) << row.what;
    }
}

// Absolute thresholds of -25.00 and -28.00 dBm; it does not go back.
constexpr SwitchSettings absolute() {
    return {.primary_threshold = -2500, .secondary_threshold = -2800};
}

// The same, going back after a second, one dB above the threshold.
constexpr SwitchSettings reverting() {
    SwitchSettings settings = absolute();
    settings.hysteresis = 100;
    settings.revertive = true;
    settings.wait_to_restore = 1000;
    return settings;
}

constexpr SwitchSettings locked(Lockout lockout) {
    SwitchSettings settings = reverting();
    settings.lockout = lockout;
    return settings;
}

constexpr SwitchSettings relative(int threshold, int offset) {
    SwitchSettings settings = reverting();
    settings.relative_threshold = threshold;
    settings.relative_offset = offset;
    return settings;
}

TEST(ProtectionSwitch, LockOutsOverrideEverything) {
    SwitchSettings with_relative = relative(100, 0);
    with_relative.lockout = Lockout::working;
    check({
        {"working, both good", locked(Lockout::working), {-1000, -1000}, 0, on_primary, on_secondary},
        {"working, secondary dark", locked(Lockout::working), {-1000, -4000}, 0, on_primary, on_secondary},
        {"working, dark, there already", locked(Lockout::working), {-1000, -4000}, 0, on_secondary, on_secondary},
        {"working, relative difference for primary", with_relative, {0, -4000}, 0, on_secondary, on_secondary},
        {"working, time to go back is over", locked(Lockout::working), {-1000, -1000}, 5000, waiting(0), on_secondary},
        {"protected, both good", locked(Lockout::protection), {-1000, -1000}, 0, on_secondary, on_primary},
        {"protected, primary dark", locked(Lockout::protection), {-4000, -1000}, 0, on_secondary, on_primary},
        {"protected, dark, there already", locked(Lockout::protection), {-4000, -1000}, 0, on_primary, on_primary},
    });
}

TEST(ProtectionSwitch, ARelativeThresholdComparesTheLines) {
    check({
        {"equal lines", relative(300, 0), {-1000, -1000}, 0, on_primary, on_primary},
        {"equal lines, on secondary", relative(300, 0), {-1000, -1000}, 0, on_secondary, on_secondary},
        {"just at the threshold", relative(300, 0), {-1300, -1000}, 0, on_primary, on_primary},
        {"just beyond", relative(300, 0), {-1301, -1000}, 0, on_primary, on_secondary},
        {"beyond, there already", relative(300, 0), {-1301, -1000}, 0, on_secondary, on_secondary},
        {"just at the threshold on the way back", relative(300, 0), {-700, -1000}, 0, on_secondary, on_secondary},
        {"just beyond on the way back", relative(300, 0), {-699, -1000}, 0, on_secondary, on_primary},
        {"beyond, on primary already", relative(300, 0), {-699, -1000}, 0, on_primary, on_primary},
        {"a hundredth counts", relative(1, 0), {-1002, -1000}, 0, on_primary, on_secondary},
        {"the offset is taken off: at", relative(300, 50), {-1250, -1000}, 0, on_primary, on_primary},
        {"the offset is taken off: beyond", relative(300, 50), {-1251, -1000}, 0, on_primary, on_secondary},
        {"the offset on the way back: at", relative(300, 50), {-650, -1000}, 0, on_secondary, on_secondary},
        {"the offset on the way back: beyond", relative(300, 50), {-649, -1000}, 0, on_secondary, on_primary},
        {"a negative offset: at", relative(300, -200), {-1500, -1000}, 0, on_primary, on_primary},
        {"a negative offset: beyond", relative(300, -200), {-1501, -1000}, 0, on_primary, on_secondary},
        {"both dark", relative(300, 0), {-4000, -4000}, 0, on_primary, on_primary},
        {"both dark, on secondary", relative(300, 0), {-4000, -4000}, 0, on_secondary, on_secondary},
        {"primary dark", relative(300, 0), {-4000, -2900}, 0, on_primary, on_secondary},
        {"both dark, an offset for secondary", relative(300, 500), {-4000, -4000}, 0, on_primary, on_primary},
        {"both dark, an offset for primary", relative(300, -500), {-4000, -4000}, 0, on_secondary, on_secondary},
        {"both dark, a negative threshold", relative(-300, 0), {-4000, -4000}, 0, on_primary, on_primary},
        {"an offset for secondary, dark", relative(300, 3600), {-1000, -4000}, 0, on_primary, on_primary},
        {"an offset for primary, dark", relative(300, -3600), {-4000, -1000}, 0, on_secondary, on_secondary},
        {"the same, a hundredth of light", relative(300, 3600), {-1000, -3999}, 0, on_primary, on_secondary},
    });
}

TEST(ProtectionSwitch, AbsoluteThresholdsAndRevertiveDoNotCountBesideARelativeOne) {
    check({
        {"primary below its threshold", relative(300, 0), {-2600, -2500}, 0, on_primary, on_primary},
        {"secondary below its threshold", relative(300, 0), {-2600, -2900}, 0, on_secondary, on_secondary},
        {"both far below", relative(300, 0), {-3900, -3500}, 0, on_primary, on_secondary},
        {"primary good, time over", relative(300, 0), {-1000, -1000}, 9000, waiting(0), on_secondary},
    });
}

TEST(ProtectionSwitch, AnOffsetAloneDoesNotCount) {
    check({
        {"stays", relative(0, -5000), {-1000, -1000}, 0, on_primary, on_primary},
        {"absolute thresholds count", relative(0, 5000), {-2501, -1000}, 0, on_primary, on_secondary},
    });
}

TEST(ProtectionSwitch, LeavesAFailedPrimaryLine) {
    check({
        {"both good", absolute(), {-1000, -1000}, 0, on_primary, on_primary},
        {"primary just at its threshold", absolute(), {-2500, -1000}, 0, on_primary, on_primary},
        {"primary just below", absolute(), {-2501, -1000}, 0, on_primary, on_secondary},
        {"primary dark", absolute(), {-4000, -1000}, 0, on_primary, on_secondary},
        {"secondary just at its threshold", absolute(), {-4000, -2800}, 0, on_primary, on_secondary},
        {"both bad by a hundredth", absolute(), {-2501, -2801}, 0, on_primary, on_primary},
        {"both dark", absolute(), {-4000, -4000}, 0, on_primary, on_primary},
        {"primary weaker, but good", absolute(), {-2400, 0}, 0, on_primary, on_primary},
        {"secondary bad", absolute(), {-1000, -4000}, 0, on_primary, on_primary},
    });
}

TEST(ProtectionSwitch, LeavesAFailedSecondaryLineAtOnce) {
    check({
        {"secondary just at its threshold", absolute(), {-1000, -2800}, 0, on_secondary, on_secondary},
        {"secondary just below", absolute(), {-1000, -2801}, 0, on_secondary, on_primary},
        {"primary just at its threshold", absolute(), {-2500, -4000}, 0, on_secondary, on_primary},
        {"both bad by a hundredth", absolute(), {-2501, -2801}, 0, on_secondary, on_secondary},
        {"both dark", absolute(), {-4000, -4000}, 0, on_secondary, on_secondary},
        {"no hysteresis", reverting(), {-2450, -2801}, 0, on_secondary, on_primary},
        {"no waiting", reverting(), {-1000, -2801}, 10, waiting(5), on_primary},
    });
}

TEST(ProtectionSwitch, AnAbsentThresholdNeverCausesASwitch) {
    const SwitchSettings none{.revertive = true};
    const SwitchSettings primary_only{.primary_threshold = -2500};
    const SwitchSettings secondary_only{.secondary_threshold = -2800, .revertive = true};
    check({
        {"none, primary dark", none, {-4000, -1000}, 0, on_primary, on_primary},
        {"none, secondary dark", none, {-1000, -4000}, 0, on_secondary, on_secondary},
        {"none, nothing to go back to", none, {-1000, -1000}, 9000, on_secondary, on_secondary},
        {"no secondary one, primary fails", primary_only, {-2501, -4000}, 0, on_primary, on_secondary},
        {"no secondary one, secondary dark", primary_only, {-1000, -4000}, 0, on_secondary, on_secondary},
        {"no primary one, primary dark", secondary_only, {-4000, -1000}, 0, on_primary, on_primary},
        {"no primary one, secondary fails", secondary_only, {-4000, -2801}, 0, on_secondary, on_primary},
        {"no primary one, nothing to go back to", secondary_only, {0, -1000}, 9000, on_secondary, on_secondary},
        {"a threshold of zero is one", {.primary_threshold = 0}, {-1, -1000}, 0, on_primary, on_secondary},
    });
}

TEST(ProtectionSwitch, GoesBackAfterTheTimeToRestore) {
    SwitchSettings at_once = reverting();
    at_once.wait_to_restore = 0;
    SwitchSettings without_hysteresis = reverting();
    without_hysteresis.hysteresis = 0;
    SwitchSettings longest = reverting();
    longest.wait_to_restore = std::numeric_limits<std::uint32_t>::max();
    check({
        {"not revertive", absolute(), {-1000, -1000}, 90000, on_secondary, on_secondary},
        {"just below threshold and hysteresis", reverting(), {-2401, -1000}, 7, on_secondary, on_secondary},
        {"just at threshold and hysteresis", reverting(), {-2400, -1000}, 7, on_secondary, waiting(7)},
        {"no hysteresis, just below", without_hysteresis, {-2501, -1000}, 7, on_secondary, on_secondary},
        {"no hysteresis, just at", without_hysteresis, {-2500, -1000}, 7, on_secondary, waiting(7)},
        {"still waiting", reverting(), {-2400, -1000}, 1006, waiting(7), waiting(7)},
        {"time is over", reverting(), {-2400, -1000}, 1007, waiting(7), on_primary},
        {"time is long over", reverting(), {-2400, -1000}, 5000, waiting(7), on_primary},
        {"a break", reverting(), {-2401, -1000}, 1007, waiting(7), on_secondary},
        {"no time to wait", at_once, {-2400, -1000}, 7, on_secondary, on_primary},
        {"no longer revertive", absolute(), {-1000, -1000}, 9000, waiting(7), on_secondary},
        {"both bad, secondary in use", reverting(), {-2501, -4000}, 9000, waiting(7), on_secondary},
        {"the longest time", longest, {0, 0}, 4294967294, waiting(0), waiting(0)},
        {"the longest time is over", longest, {0, 0}, 4294967295, waiting(0), on_primary},
    });
}

TEST(ProtectionSwitch, AFailureBreaksTheWaitingAndItBeginsAnew) {
    const SwitchSettings settings = reverting();
    const std::vector<std::pair<LineLight, SwitchState>> course = {
        {{-1000, -1000}, waiting(100)}, {{-1000, -1000}, waiting(100)}, {{-4000, -1000}, on_secondary},
        {{-2450, -1000}, on_secondary}, {{-2400, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)},
        {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)},
        {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)},
        {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, waiting(500)}, {{-1000, -1000}, on_primary},
        {{-2400, -1000}, on_primary},
    };
    SwitchState state = on_secondary;
    std::uint64_t now = 0;
    for (const auto &[light, expected] : course) {
        now += 100;
        state = evaluate(state, settings, light, now).state;
        EXPECT_EQ(state, expected) << now;
    }
}

TEST(ProtectionSwitch, SaysWhyItMoves) {
    SwitchSettings at_once = reverting();
    at_once.wait_to_restore = 0;
    const struct {
        const char *words;
        SwitchSettings settings;
        LineLight light;
        SwitchState before;
    } moves[] = {
        {"forced to the secondary line", locked(Lockout::working), {-1000, -4000}, on_primary},
        {"forced to the primary line", locked(Lockout::protection), {-4000, -1000}, on_secondary},
        {"secondary better by 3.01 dB, more than the relative threshold of 3.00 dB",
         relative(300, 0),
         {-1301, -1000},
         on_primary},
        {"secondary better by 24.50 dB, more than the relative threshold of 3.00 dB",
         relative(300, 50),
         {-4000, -1600},
         on_primary},
        {"primary better by 3.01 dB, more than the relative threshold of 3.00 dB",
         relative(300, 50),
         {-649, -1000},
         on_secondary},
        {"secondary better by 0.00 dB, more than the relative threshold of -1.00 dB",
         relative(-100, 0),
         {-1000, -1000},
         on_primary},
        {"secondary better by 21474836.47 dB, more than the relative threshold of 21474836.47 dB",
         relative(highest, highest),
         {lowest, highest},
         on_primary},
        {"loss of primary: -25.01 dBm, below -25.00 dBm", reverting(), {-2501, -2800}, on_primary},
        {"loss of secondary: -40.00 dBm, below -28.00 dBm", reverting(), {-1000, -4000}, waiting(0)},
        {"primary restored: -24.00 dBm, good for 1.0 s", reverting(), {-2400, -1000}, waiting(0)},
        {"primary restored: -12.34 dBm, good for 0.0 s", at_once, {-1234, -1000}, on_secondary},
    };
    for (const auto &move : moves) {
        const Decision decision = evaluate(move.before, move.settings, move.light, 1000);
        ASSERT_TRUE(decision.reason) << move.words;
        EXPECT_EQ(in_words(*decision.reason, decision.state.active, move.settings, move.light), move.words);
    }
}

TEST(ProtectionSwitch, WorksAtTheEndsOfTheNumbers) {
    SwitchSettings far = relative(highest, lowest);
    SwitchSettings high = reverting();
    high.primary_threshold = highest;
    high.hysteresis = highest;
    check({
        {"difference beyond an int", far, {highest, lowest}, 0, on_secondary, on_primary},
        {"the other way", relative(highest, highest), {lowest, highest}, 0, on_primary, on_secondary},
        {"a threshold that is negative beyond an int", relative(lowest, 0), {0, 0}, 0, on_primary, on_secondary},
        {"threshold and hysteresis beyond an int", high, {highest, 0}, 9000, on_secondary, on_secondary},
    });
}

} // namespace
} // namespace ocpsm::line_system
