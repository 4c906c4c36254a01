#include "simulator/line_system/risks.hpp"

#include <functional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::line_system::cut;
using ocpsm::line_system::example;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::Path;
using ocpsm::line_system::risks;
using ocpsm::line_system::Slot;
using ocpsm::line_system::slot;
using Texts = std::vector<std::string>;

const std::string one = "0/1-PSM-OM: ";
const std::string to_secondary = one + "the traffic moves to the secondary line at once";
const std::string no_wait = one + "revertive without a wait-to-restore time: the traffic goes back as soon as the "
                                  "primary line is good, however short";

// Slot 1 of the example receives -12.34 and -15.87 dBm and is on its primary line.
Texts risks_of(const std::function<void(Slot &)> &edit, const LineSystem &before = example()) {
    LineSystem after = before;
    edit(slot(after, 1));
    return risks(before, after);
}

Texts at_threshold(std::size_t line, int tenths, const LineSystem &before = example()) {
    return risks_of([&](Slot &edited) { edited.lines.at(line).rx_thresholds["low"] = tenths; }, before);
}

Texts at_relative(int threshold, int offset, const LineSystem &before = example()) {
    return risks_of(
        [&](Slot &edited) {
            edited.settings.relative_threshold = threshold;
            edited.settings.relative_offset = offset;
        },
        before);
}

std::string above(const std::string &what) {
    return one + "the switch threshold of the " + what + " dBm that it receives now";
}

std::string more_than(const std::string &threshold, const std::string &line) {
    return one + "a relative threshold of " + threshold + " dB is more than the lines differ when the " + line +
           " line goes dark: its failure does not switch";
}

TEST(Risks, OfThresholdsAboveTheLight) {
    EXPECT_EQ(at_threshold(0, -124), Texts{});
    EXPECT_EQ(at_threshold(0, -123), (Texts{above("primary line, -12.30 dBm, is above the -12.34"), to_secondary}));
    EXPECT_EQ(at_threshold(1, -159), Texts{});
    EXPECT_EQ(at_threshold(1, -158), Texts{above("secondary line, -15.80 dBm, is above the -15.87")});
    // Every threshold is above a dark line.
    EXPECT_EQ(at_threshold(1, -100, cut(example(), 1, Path::secondary)), Texts{});
    // What moves anyway is not the edit's doing.
    EXPECT_EQ(at_threshold(0, -200, cut(example(), 1, Path::primary)), Texts{});
}

TEST(Risks, OfRelativeSettings) {
    EXPECT_EQ(at_relative(30, 0), Texts{});
    EXPECT_EQ(
        at_relative(-1, 0),
        Texts{one + "a relative threshold of -0.10 dB is negative: at no difference the traffic stays where it is"});
    // In the dark the primary line would be 24.13 dB behind the secondary one.
    EXPECT_EQ(at_relative(241, 0), Texts{});
    EXPECT_EQ(at_relative(242, 0), Texts{more_than("24.20", "primary")});
    EXPECT_EQ(at_relative(242, 1), Texts{});
    EXPECT_EQ(at_relative(30, 66), (Texts{to_secondary}));
    EXPECT_EQ(at_relative(0, 400), Texts{});
    // The secondary line is 27.66 dB behind.
    const LineSystem dark = cut(example(), 1, Path::secondary);
    EXPECT_EQ(at_relative(30, 306, dark), Texts{});
    EXPECT_EQ(
        at_relative(30, 307, dark),
        Texts{one + "with an offset of 30.70 dB the secondary line counts as the better one, although it is dark"});
}

TEST(Risks, OfGoingBackAtOnce) {
    const auto waiting = [](std::optional<std::uint32_t> milliseconds) {
        return risks_of([&](Slot &edited) { edited.settings.wait_to_restore = milliseconds; });
    };
    EXPECT_EQ(waiting(1), Texts{});
    EXPECT_EQ(waiting(0), Texts{no_wait});
    EXPECT_EQ(waiting(std::nullopt), Texts{no_wait});
    LineSystem standing = example();
    slot(standing, 1).settings.wait_to_restore = 0;
    EXPECT_EQ(at_threshold(0, -200, standing), Texts{});
    slot(standing, 1).settings.revertive = false;
    EXPECT_EQ(risks_of([](Slot &edited) { edited.settings.revertive = true; }, standing), Texts{no_wait});
}

TEST(Risks, OfForcing) {
    const auto forced = [](const char *from, const LineSystem &before) {
        return risks_of([from](Slot &edited) { edited.settings.lockout_from = from; }, before);
    };
    EXPECT_EQ(forced("working", example()), Texts{});
    EXPECT_EQ(forced("working", cut(example(), 1, Path::secondary)),
              Texts{one + "the traffic is forced to the secondary line, which is dark"});
    EXPECT_EQ(forced("protected", cut(example(), 1, Path::primary)),
              Texts{one + "the traffic is forced to the primary line, which is dark"});
}

} // namespace
