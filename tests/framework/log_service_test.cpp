#include "framework/host/log_service.hpp"

#include <gmock/gmock.h>

#include "yfw_map.h"

namespace {

using ocpsm::framework::Channels;
using ocpsm::framework::LogLine;
using ocpsm::framework::OpenFunctions;
using ocpsm::framework::parse_trace_line;
using ocpsm::framework::TraceLine;

TEST(DebugLog, FormatsALineAndNumbersItsStatement) {
    Channels channels;
    static uint32_t first = 0xffffffff;
    static uint32_t second = 0xffffffff;
    const std::string huge(100000, 'x');
    _hvs_dt_log_filter_adv(channels.error_log(), 0, 0, 0, 0, 0, &first, "ERR: YFW: ctx=%d,%s", 7, "text %2f");
    _hvs_dt_log_filter_adv(channels.trace_log(), 0, 0, 0, 0, 0, &second, "TRC: %s", huge.c_str());
    const uint32_t number = first;
    _hvs_dt_log_filter_adv(channels.error_log(), 0, 0, 0, 0, 0, &first, "again");
    const std::vector<LogLine> log = channels.take_log();
    ASSERT_EQ(log.size(), 3U);
    EXPECT_TRUE(log[0].error);
    EXPECT_EQ(log[0].text, "ERR: YFW: ctx=7,text %2f");
    EXPECT_FALSE(log[1].error);
    EXPECT_EQ(log[1].text, "TRC: " + huge);
    EXPECT_EQ(log[2].text, "again");
    EXPECT_NE(first, 0xffffffffU);
    EXPECT_EQ(first, number);
    EXPECT_NE(first, second);
    EXPECT_EQ(log[0].site, first);
    EXPECT_EQ(log[1].site, second);
    EXPECT_TRUE(channels.take_log().empty());
}

// ---- room ----

// The texts that are kept of `count` lines of this length.
std::vector<LogLine> kept(std::size_t count, std::size_t length) {
    Channels channels;
    const std::string text(length, 'x');
    for (std::size_t line = 0; line < count; ++line) {
        _lstrace(channels.trace_buffer(), 0, text.c_str());
    }
    return channels.take_trace();
}

TEST(Room, IsThatOfTheStatedBytesWithSixtyFourForEachLine) {
    constexpr std::size_t lines = 64; // of 1 MiB
    EXPECT_EQ(kept(lines, (1U << 20) - 64).size(), lines);
    const std::vector<LogLine> more = kept(lines + 3, (1U << 20) - 64);
    ASSERT_EQ(more.size(), lines + 1);
    EXPECT_EQ(more.back().text, "3 more lines are not kept: there is room for 64 MiB");
    EXPECT_EQ(kept(lines, (1U << 20) - 63).back().text, "1 more lines are not kept: there is room for 64 MiB");
}

TEST(Room, OfShortLinesAMillion) {
    const std::vector<LogLine> lines = kept((1U << 20) + 1, 0);
    EXPECT_EQ(lines.size(), (1U << 20) + 1U);
    EXPECT_EQ(lines.back().text, "1 more lines are not kept: there is room for 64 MiB");
}

// Once a line is missing, no later one follows the first ones; the next request has all the room again.
TEST(Room, EndsWithTheFirstLineThatDoesNotFit) {
    Channels channels;
    static uint32_t site = 0xffffffff;
    const std::string half(40U << 20, 'x');
    for (const char *text : {half.c_str(), half.c_str(), "short"}) {
        _hvs_dt_log_filter_adv(channels.trace_log(), 0, 0, 0, 0, 0, &site, "%s", text);
    }
    std::vector<LogLine> lines = channels.take_log();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1].text, "2 more lines are not kept: there is room for 64 MiB");
    _hvs_dt_log_filter_adv(channels.trace_log(), 0, 0, 0, 0, 0, &site, "%s", half.c_str());
    lines = channels.take_log();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, half);
}

TEST(DebugLog, NothingIsWrittenWithoutAHandle) {
    static uint32_t site = 0xffffffff;
    _hvs_dt_log_filter_adv(nullptr, 0, 0, 0, 0, 0, &site, "text");
    _lstrace(nullptr, 0, "text");
    EXPECT_EQ(site, 0xffffffffU);
}

TEST(DebugLog, LevelsAreBitsOfTheFilter) {
    const yfw_debug_filter filter{(1U << 3) | 1U};
    EXPECT_NE(yfw_debug_should_log(&filter, 0), 0);
    EXPECT_EQ(yfw_debug_should_log(&filter, 1), 0);
    EXPECT_NE(yfw_debug_should_log(&filter, 3), 0);
    EXPECT_EQ(yfw_debug_should_log(&filter, 32), 0);
    EXPECT_EQ(yfw_debug_should_log(nullptr, 0), 0);
}

TEST(TraceBuffer, KeepsLinesAsTheyAre) {
    Channels channels;
    _lstrace(channels.trace_buffer(), 0x10101000000, "#12: ERR: some_function:345 ctx=0x55aa,100 %2f, done");
    _lstrace(channels.trace_buffer(), 0x10101000000, "free text");
    const std::vector<LogLine> trace = channels.take_trace();
    ASSERT_EQ(trace.size(), 2U);
    EXPECT_EQ(trace[0].text, "#12: ERR: some_function:345 ctx=0x55aa,100 %2f, done");
    EXPECT_EQ(trace[1].text, "free text");
    const TraceLine line = parse_trace_line(trace[0].text);
    EXPECT_EQ(line.sequence, 12U);
    EXPECT_TRUE(line.error);
    EXPECT_EQ(line.function, "some_function");
    EXPECT_EQ(line.line, 345U);
    EXPECT_EQ(line.message, "100 %2f, done");
}

TEST(TraceBuffer, LinesOfAnotherFormAreOnlyTexts) {
    for (const char *text :
         {"", "#", "#x: TRC: f:1 ctx=0x1,m", "#1: WRN: f:1 ctx=0x1,m", "#1: TRC: f", "#1: TRC: f:x ctx=0x1,m",
          "#1: TRC: f:1 m", "#1: TRC: f:1 ctx=0x1", "#99999999999: TRC: f:1 ctx=0x1,m"}) {
        const TraceLine line = parse_trace_line(text);
        EXPECT_EQ(line.function, "");
        EXPECT_EQ(line.message, "");
        EXPECT_EQ(line.sequence, 0U);
    }
}

TEST(TraceBuffer, SequenceNumbersGoUpByOne) {
    const uint32_t number = ret_nc_yfw_trace_index_incr();
    EXPECT_EQ(ret_nc_yfw_trace_index_incr(), number + 1);
}

// The functions of a trace, line by line, and what is innermost then: "walker,conversion".
using Calls = std::vector<std::pair<std::string, std::string>>;

void expect_innermost(const Calls &calls) {
    OpenFunctions open;
    EXPECT_EQ(open.walker() + "," + open.conversion(), ",");
    for (const auto &[call, innermost] : calls) {
        const std::string text = "#1: " + call;
        open.see(parse_trace_line(text));
        EXPECT_EQ(open.walker() + "," + open.conversion(), innermost) << call;
    }
}

TEST(OpenFunctions, TellsTheInnermostWalkerAndConversion) {
    expect_innermost({
        {"TRC: ymap_o2n_m_lvla_aps:1 ctx=0x1,Start", "ymap_o2n_m_lvla_aps,"},
        {"TRC: ymap_o2n_m_cont_lvla_aps:1 ctx=0x1,Start", "ymap_o2n_m_lvla_aps,"},
        {"TRC: ymap_o2n_m_lvla_aps_leaf:1 ctx=0x1,Start", "ymap_o2n_m_lvla_aps_leaf,"},
        {"TRC: some_leaf_to_low:1 ctx=0x1,Start", "ymap_o2n_m_lvla_aps_leaf,some_leaf_to_low"},
        {"TRC: add_interface_key:1 ctx=0x1,Start", "ymap_o2n_m_lvla_aps_leaf,some_leaf_to_low"},
        {"TRC: add_interface_key:1 ctx=0x1,End", "ymap_o2n_m_lvla_aps_leaf,some_leaf_to_low"},
        {"TRC: some_leaf_to_low:1 ctx=0x1,End", "ymap_o2n_m_lvla_aps_leaf,"},
        {"TRC: ymap_o2n_m_lvla_aps_leaf:1 ctx=0x1,End", "ymap_o2n_m_lvla_aps,"},
    });
}

TEST(OpenFunctions, TheEndOfACallerEndsWhatItCalled) {
    expect_innermost({
        {"TRC: ymap_o2n_m_lvla_outer:1 ctx=0x1,Start", "ymap_o2n_m_lvla_outer,"},
        {"TRC: ymap_o2n_m_lvla_skipped:1 ctx=0x1,Start", "ymap_o2n_m_lvla_skipped,"},
        {"TRC: ymap_o2n_m_lvla_outer:1 ctx=0x1,End", ","},
        {"TRC: ymap_o2n_m_lvla_never_started:1 ctx=0x1,End", ","},
    });
}

TEST(OpenFunctions, ErrorsAndOtherMessagesChangeNothing) {
    expect_innermost({
        {"TRC: a_to_low:1 ctx=0x1,Start", ",a_to_low"},
        {"ERR: a_to_low:1 ctx=0x1,End", ",a_to_low"},
        {"TRC: a_to_low:1 ctx=0x1,Ending", ",a_to_low"},
    });
}

} // namespace
