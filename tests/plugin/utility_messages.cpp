// The two message channels: what each carries when it is on, and that nothing is done for one that is off.
#include <map>
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::bag_item;
using fake::mark_token;
using fake::text_token;
using utility::bag_of;
using utility::Buffer;
using utility::Lines;
using utility::repeated;

constexpr char by_port[] = "check_controller_name_ots_is_good_by_port";
constexpr std::uint32_t untouched = 0xffffffff;

class MessageTest : public utility::UtilityTest {
protected:
    // Nine messages, the last of them an error: a controller without its module.
    void refuse_a_controller() {
        Buffer key(20);
        EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/3/0/2", key.data(), 2), 0);
    }

    const Lines texts = {"TRC controller_name = Ots0/3/0/2",
                         "TRC psm_name = 0/3-PSM-OM",
                         "TRC psm_name_key 0/3-PSM-OM",
                         "TRC path 0%2f3-PSM-OM/attrib/inv_basic_bag",
                         "TRC sysdb_item_get failed: error 0x0a0b0c00",
                         "TRC sysdb_unbind",
                         "TRC return",
                         "TRC rc != KERR_SUCCESS",
                         "ERR Psm_name [0/3-PSM-OM] not present in sysdb inventory, discard it!"};
    const Lines functions = {
        by_port,          by_port,          "sysdb_get_psm_name_from_inventory", "sysdb_get_data", "sysdb_get_data",
        "sysdb_get_data", "sysdb_get_data", "sysdb_get_psm_name_from_inventory", by_port};

    [[nodiscard]] Lines log_lines() const {
        Lines lines;
        for (const std::string &text : texts) {
            lines.push_back("log " + text);
        }
        return lines;
    }

    [[nodiscard]] Lines trace_lines() const {
        Lines lines;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            lines.push_back("trace " + texts[i].substr(0, 3) + " #" + std::to_string(i + 1) + " " + functions[i] +
                            texts[i].substr(3));
        }
        return lines;
    }
};

TEST_F(MessageTest, TheLogAloneDrawsNoSequenceNumbers) {
    request.set_channels(true, false);
    refuse_a_controller();
    EXPECT_EQ(platform.calls(fake::Channels), log_lines());
    EXPECT_EQ(platform.count("trace_index"), 0u);
    EXPECT_EQ(platform.last_sequence_number(), 0u);
    EXPECT_EQ(platform.count("should_log"), texts.size());
}

TEST_F(MessageTest, TheTraceAloneDrawsOneSequenceNumberEach) {
    request.set_channels(false, true);
    refuse_a_controller();
    EXPECT_EQ(platform.calls(fake::Channels), trace_lines());
    EXPECT_EQ(platform.count("trace_index"), texts.size());
    EXPECT_EQ(platform.count("should_log"), texts.size());
}

TEST_F(MessageTest, WithBothChannelsOffOnlyTheFilterIsAsked) {
    request.set_channels(false, false);
    refuse_a_controller();
    EXPECT_EQ(platform.calls(fake::Channels), Lines{});
    EXPECT_EQ(platform.calls(fake::Filter),
              (Lines{"should_log(3)", "should_log(3)", "should_log(3)", "should_log(3)", "should_log(3)",
                     "should_log(3)", "should_log(3)", "should_log(3)", "should_log(0)"}));
}

TEST_F(MessageTest, TheLogComesBeforeTheTrace) {
    refuse_a_controller();
    Lines expected;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        expected.push_back(i + 1 == texts.size() ? "should_log(0)" : "should_log(3)");
        expected.push_back(log_lines()[i]);
        expected.push_back("trace_index()");
        expected.push_back(trace_lines()[i]);
    }
    EXPECT_EQ(platform.calls(fake::Channels | fake::Filter), expected);
}

TEST_F(MessageTest, AnyTraceFlagThatIsNotZeroCounts) {
    request.context.trace_enabled = 0x80000000;
    refuse_a_controller();
    EXPECT_EQ(platform.traced().size(), texts.size());
}

TEST_F(MessageTest, LevelsAreFilteredOneByOne) {
    request.set_channels(false, false);
    request.context.debug_log_filter.enabled_levels = 1u << 0;
    refuse_a_controller();
    EXPECT_EQ(platform.calls(fake::Log),
              (Lines{"log ERR Psm_name [0/3-PSM-OM] not present in sysdb inventory, discard it!"}));
    platform.forget();
    request.context.debug_log_filter.enabled_levels = 1u << 3;
    refuse_a_controller();
    EXPECT_EQ(platform.logged().size(), texts.size() - 1);
}

TEST_F(MessageTest, FormatsCarryTheirPrefixAndHandlesTheirLevel) {
    refuse_a_controller();
    const Lines formats = {"TRC: YFW: ctx=%p,controller_name = %s",
                           "TRC: YFW: ctx=%p,psm_name = %s",
                           "TRC: YFW: ctx=%p,psm_name_key %s",
                           "TRC: YFW: ctx=%p,path %s",
                           "TRC: YFW: ctx=%p,sysdb_item_get failed: %s",
                           "TRC: YFW: ctx=%p,sysdb_unbind",
                           "TRC: YFW: ctx=%p,return",
                           "TRC: YFW: ctx=%p,rc != KERR_SUCCESS",
                           "ERR: YFW: ctx=%p,Psm_name [%s] not present in sysdb inventory, discard it!"};
    ASSERT_EQ(platform.logged().size(), formats.size());
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const fake::LogRecord &line = platform.logged()[i];
        EXPECT_EQ(line.format, formats[i]);
        EXPECT_EQ(line.handle, i + 1 == formats.size() ? request.ctx()->error_log : request.ctx()->trace_log);
        EXPECT_EQ(line.first_value, untouched);
    }
    for (const fake::TraceRecord &line : platform.traced()) {
        EXPECT_EQ(line.buffer, request.ctx()->trace_buffer);
        EXPECT_EQ(line.options, 0x10101000000u);
        EXPECT_GT(line.line, 0u);
    }
}

// A statement has one word of the log service and one line of its source, whatever it is run for.
TEST_F(MessageTest, AStatementKeepsItsWordAndItsLine) {
    Buffer out(20);
    const auto everything = [&] {
        refuse_a_controller();
        platform.items["/oper/ots/if/Ots0_1_0_2/ots_info"] =
            bag_item(bag_of({text_token("a", "x"), mark_token(BAG_TOKEN_END)}));
        EXPECT_EQ(sysdb_get_psm_state_rx_attenuation(request.ctx(), "Ots0_1_0_2", out.data()), KERR_SUCCESS);
        EXPECT_EQ(sysdb_get_psm_state_rx_instant_power(request.ctx(), "Ots0_1_0_2", out.data()), KERR_SUCCESS);
    };
    everything();
    everything();
    ASSERT_EQ(platform.logged().size(), platform.traced().size());
    std::map<const std::uint32_t *, unsigned> line_of;
    std::map<const std::uint32_t *, std::string> format_of;
    std::map<std::string, std::map<unsigned, const std::uint32_t *>> word_of;
    for (std::size_t i = 0; i < platform.logged().size(); ++i) {
        const fake::LogRecord &log = platform.logged()[i];
        const fake::TraceRecord &trace = platform.traced()[i];
        SCOPED_TRACE(trace.function + ": " + log.format);
        EXPECT_EQ(log.first_value, untouched);
        EXPECT_EQ(line_of.emplace(log.site, trace.line).first->second, trace.line);
        EXPECT_EQ(format_of.emplace(log.site, log.format).first->second, log.format);
        EXPECT_EQ(word_of[trace.function].emplace(trace.line, log.site).first->second, log.site);
    }
    EXPECT_GT(line_of.size(), 10u);
}

TEST_F(MessageTest, ATraceIsCutAt249CharactersTheLogIsNot) {
    for (const std::size_t length : {150u, 180u, 200u, 250u, 100000u}) {
        SCOPED_TRACE(length);
        platform.forget();
        const std::string path = repeated(length, 'p');
        std::uint32_t size = 0;
        EXPECT_EQ(sysdb_get_data(request.ctx(), "/oper/ots/if/", path.c_str(), nullptr, &size, SYSDB_ITEM_BAG),
                  0x0a0b0c00u);
        const fake::TraceRecord &cut = platform.traced().front();
        char context[32];
        std::snprintf(context, sizeof context, "ctx=%p,", static_cast<void *>(request.ctx()));
        const std::string whole = "#" + std::to_string(cut.sequence) +
                                  ": TRC: sysdb_get_data:" + std::to_string(cut.line) + " " + context + "path " + path;
        EXPECT_EQ(cut.whole, whole.substr(0, 249));
        EXPECT_EQ(platform.logged().front().text, "TRC: YFW: " + std::string(context) + "path " + path);
    }
}

TEST_F(MessageTest, TextsAreNeverFormats) {
    std::uint32_t size = 0;
    EXPECT_EQ(sysdb_get_data(request.ctx(), "/", "0%2f1%s%n%999999d", nullptr, &size, SYSDB_ITEM_BAG), 0x0a0b0c00u);
    EXPECT_EQ(platform.logged().front().format, "TRC: YFW: ctx=%p,path %s");
    EXPECT_EQ(platform.calls(fake::Channels)[0], "log TRC path 0%2f1%s%n%999999d");
    EXPECT_EQ(platform.calls(fake::Channels)[1], "trace TRC #1 sysdb_get_data path 0%2f1%s%n%999999d");
}

// What is done does not depend on who listens.
TEST_F(MessageTest, ChannelsChangeNothingElse) {
    const auto record = [&](bool log_on, bool trace_on) {
        request.set_channels(log_on, trace_on);
        platform.forget();
        platform.next_number = 1;
        platform.items["/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag"] =
            bag_item(bag_of({text_token("inv_phy_entity_basic_info", ""), text_token("Name", "n"), mark_token(18)}));
        Buffer key(20);
        EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), "Ots0/1/0/1", key.data()), 1);
        EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_1_0_2"), 0);
        Buffer out(20);
        EXPECT_EQ(sysdb_get_psm_config_rx_attenuation(request.ctx(), "Ots0_1_0_2", out.data()), 0x0a0b0c00u);
        return platform.calls(fake::Database | fake::Bags);
    };
    const Lines with_both = record(true, true);
    EXPECT_EQ(with_both.size(), 19u);
    EXPECT_EQ(record(true, false), with_both);
    EXPECT_EQ(record(false, true), with_both);
    EXPECT_EQ(record(false, false), with_both);
}

} // namespace
