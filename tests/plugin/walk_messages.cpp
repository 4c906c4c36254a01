// The messages of a walk on both channels.
#include <array>
#include <cstdio>
#include <set>

#include <gtest/gtest.h>

#include "exports.hpp"
#include "request.hpp"

namespace {

using fake::container;
using fake::leaf;
using fake::Node;
using Lines = std::vector<std::string>;

constexpr kerrno some_failure = 0x5151;

Node bare_module(std::vector<Node> children = {}) {
    return container("aps-module", std::move(children));
}

Node module(const std::string &key, std::vector<Node> children = {}) {
    children.insert(children.begin(), leaf("name", key));
    return bare_module(std::move(children));
}

constexpr char config[] = "lvla_aps_apsmodule_config";
constexpr char name_of_config[] = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps_apsmodule_config";

class WalkMessages : public fake::RequestTest {
protected:
    WalkMessages() {
        platform.callbacks = fake::Platform::Callbacks::scripted;
        request.set_kind(YFW_KIND_EDIT_CONFIG);
    }

    kerrno walk(const std::string &suffix, fake::Tree &tree) {
        return fake::walker(suffix)(request.ctx(), tree.root(), dest);
    }

    // An edit of `config` with one tag that nobody knows.
    void walk_unknown(const std::string &tag) {
        EXPECT_EQ(walk(config, build(container("config", {leaf(tag, "1")}))), 0xaaf2ee00u);
    }

    // The trace line of the unknown tag: behind two Starts.
    [[nodiscard]] const fake::TraceRecord &unknown_on_trace() const { return platform.traced().at(2); }
    [[nodiscard]] const fake::LogRecord &unknown_on_log() const { return platform.logged().at(2); }

    [[nodiscard]] std::string context_text() {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "ctx=%p,", static_cast<void *>(request.ctx()));
        return text.data();
    }
};

TEST_F(WalkMessages, EveryMessageGoesToTheLogAndThenToTheTrace) {
    walk_unknown("hold-off-time");
    const std::string prefix = fake::callback_prefix;
    EXPECT_EQ(platform.calls(fake::Channels),
              (Lines{
                  "log TRC Start",
                  "trace TRC #1 " + prefix + "lvla_aps_apsmodule_config Start",
                  "log TRC Start",
                  "trace TRC #2 " + prefix + "cont_lvla_aps_apsmodule_config Start",
                  "log ERR Unsupported tag `hold-off-time` is specified in the request.",
                  "trace ERR #3 " + prefix +
                      "lvla_aps_apsmodule_config Unsupported tag `hold-off-time` is specified in the request.",
                  "log TRC End",
                  "trace TRC #4 " + prefix + "lvla_aps_apsmodule_config End",
              }));
}

TEST_F(WalkMessages, TheLogLineHasItsFormatAndHandle) {
    walk_unknown("hold-off-time");
    ASSERT_EQ(platform.logged().size(), 4u);
    EXPECT_EQ(platform.logged()[0].format, "TRC: YFW: ctx=%p,Start");
    EXPECT_EQ(platform.logged()[0].handle, request.context.trace_log);
    EXPECT_EQ(unknown_on_log().format, "ERR: YFW: ctx=%p,Unsupported tag `%s` is specified in the request.");
    EXPECT_EQ(unknown_on_log().handle, request.context.error_log);
    EXPECT_EQ(unknown_on_log().text,
              "ERR: YFW: " + context_text() + "Unsupported tag `hold-off-time` is specified in the request.");
    EXPECT_EQ(platform.logged()[3].format, "TRC: YFW: ctx=%p,End");
}

TEST_F(WalkMessages, TheTraceLineHasItsNumberFunctionLineAndContext) {
    walk_unknown("hold-off-time");
    ASSERT_EQ(platform.traced().size(), 4u);
    const fake::TraceRecord &record = unknown_on_trace();
    EXPECT_EQ(record.buffer, request.context.trace_buffer);
    EXPECT_EQ(record.options, 0x10101000000u);
    EXPECT_NE(record.line, 0u);
    EXPECT_EQ(record.whole, "#3: ERR: " + std::string(name_of_config) + ":" + std::to_string(record.line) + " " +
                                context_text() + "Unsupported tag `hold-off-time` is specified in the request.");
    EXPECT_EQ(platform.traced()[0].whole, "#1: TRC: " + std::string(name_of_config) + ":" +
                                              std::to_string(platform.traced()[0].line) + " " + context_text() +
                                              "Start");
}

TEST_F(WalkMessages, EveryStatementHasASlotOfItsOwnThatBeginsAsAllOnes) {
    // One walk after the other, so that every message of the walk is said.
    EXPECT_EQ(walk(config, build(container("config").without_array(1))), 0xaaf29e00u);
    EXPECT_EQ(walk(config, build(container("config", {leaf("x").untagged()}))), 0xaaf29e00u);
    EXPECT_EQ(walk(config, build(container("config", {leaf("x")}).with_operation(3))), 0xaaf2a000u);
    EXPECT_EQ(walk(config, build(container("config", {leaf("x")}))), 0xaaf2ee00u);
    EXPECT_EQ(fake::walker(config)(request.ctx(), nullptr, dest), 0xaaf2a000u);
    constexpr char list[] = "lvla_aps_apsmodules_apsmodule";
    EXPECT_EQ(walk(list, build(bare_module())), 0xaaf29e00u);
    EXPECT_EQ(walk(list, build(bare_module({leaf("name")}))), 0xaaf2f000u);
    EXPECT_EQ(walk(list, build(module("x", {leaf("y")}))), 0xaaf2ee00u);
    EXPECT_EQ(walk(list, build(bare_module({leaf("name", "x").with_operation(3)}))), 0xaaf2f200u);
    platform.answer("check_leafref", some_failure);
    EXPECT_EQ(walk(list, build(module("x"))), some_failure);
    request.state.delete_walk = 1;
    EXPECT_EQ(walk(list, build(bare_module({leaf("name")}))), 0xaaf2f000u);

    std::map<std::string, std::set<const std::uint32_t *>> slots;
    std::set<const std::uint32_t *> all;
    for (const fake::LogRecord &record : platform.logged()) {
        EXPECT_EQ(record.first_value, 0xffffffffu) << record.format;
        slots[record.format].insert(record.site);
        all.insert(record.site);
    }
    Lines formats;
    std::size_t count = 0;
    for (const auto &[format, sites] : slots) {
        formats.push_back(format);
        count += sites.size();
    }
    EXPECT_EQ(formats, (Lines{
                           "ERR: YFW: ctx=%p,Empty list key specified.",
                           "ERR: YFW: ctx=%p,Failed to get subtrees!",
                           "ERR: YFW: ctx=%p,Invalid arguments passed!",
                           "ERR: YFW: ctx=%p,List key node error.",
                           "ERR: YFW: ctx=%p,No keys specified with a list node.",
                           "ERR: YFW: ctx=%p,Tag name is not available!",
                           "ERR: YFW: ctx=%p,The key node should not have delete operation.",
                           "ERR: YFW: ctx=%p,Unsupported tag `%s` is specified in the request.",
                           "ERR: YFW: ctx=%p,Unsupported tag `%s`is specified in the request.",
                           "TRC: YFW: ctx=%p,Delete request with subtree present",
                           "TRC: YFW: ctx=%p,End",
                           "TRC: YFW: ctx=%p,Start",
                           "TRC: YFW: ctx=%p,leafref value check fail",
                       }));
    EXPECT_EQ(count, all.size()) << "two messages share a slot";
    // The error of an entry without children is said by two statements.
    EXPECT_EQ(slots["ERR: YFW: ctx=%p,No keys specified with a list node."].size(), 2u);
}

TEST_F(WalkMessages, SequenceNumbersAreDrawnWithTheTraceFlagOnly) {
    request.set_channels(true, false);
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.count("trace_index"), 0u);
    EXPECT_EQ(platform.traced().size(), 0u);
    EXPECT_EQ(platform.logged().size(), 4u);
    request.set_channels(false, true);
    platform.forget();
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.count("trace_index"), 4u);
    EXPECT_EQ(platform.logged().size(), 0u);
    EXPECT_EQ(platform.calls(fake::Trace).front(), "trace TRC #1 " + std::string(name_of_config) + " Start");
    EXPECT_EQ(unknown_on_trace().sequence, 3u);
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.traced().back().sequence, 8u);
}

TEST_F(WalkMessages, AnyNonZeroTraceFlagIsOn) {
    request.context.trace_enabled = 0x80000000;
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.traced().size(), 4u);
}

TEST_F(WalkMessages, TheFilterIsAskedForEachMessageAndItsLevel) {
    request.set_channels(false, false);
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.calls(fake::Filter | fake::Channels),
              (Lines{"should_log(3)", "should_log(3)", "should_log(0)", "should_log(3)"}));
    platform.forget();
    request.context.debug_log_filter.enabled_levels = 1u << 0;
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.calls(fake::Channels),
              (Lines{"log ERR Unsupported tag `hold-off-time` is specified in the request."}));
    platform.forget();
    request.context.debug_log_filter.enabled_levels = 1u << 3;
    walk_unknown("hold-off-time");
    EXPECT_EQ(platform.calls(fake::Channels), (Lines{"log TRC Start", "log TRC Start", "log TRC End"}));
}

TEST_F(WalkMessages, ALongTraceTextIsCutAt249CharactersAndTheLogTextIsNot) {
    const std::string tag(5000, 'x');
    walk_unknown(tag);
    EXPECT_EQ(unknown_on_log().text,
              "ERR: YFW: " + context_text() + "Unsupported tag `" + tag + "` is specified in the request.");
    const fake::TraceRecord &record = unknown_on_trace();
    const std::string uncut = "#3: ERR: " + std::string(name_of_config) + ":" + std::to_string(record.line) + " " +
                              context_text() + "Unsupported tag `" + tag;
    EXPECT_EQ(record.whole, uncut.substr(0, 249));
    EXPECT_EQ(request.error_node(), tag);
}

TEST_F(WalkMessages, ATraceTextOf249CharactersIsWholeAndTheNextIsCut) {
    walk_unknown("x");
    const std::size_t without_tag = unknown_on_trace().whole.size() - 1;
    platform.forget();
    const std::string fitting(249 - without_tag, 'y'); // the sequence number still has one digit: #7
    walk_unknown(fitting);
    EXPECT_EQ(unknown_on_trace().sequence, 7u);
    EXPECT_EQ(unknown_on_trace().whole.size(), 249u);
    EXPECT_EQ(unknown_on_trace().whole.substr(249 - 12), "the request.");
    platform.forget();
    walk_unknown(fitting); // #11 takes one character more
    EXPECT_EQ(unknown_on_trace().sequence, 11u);
    EXPECT_EQ(unknown_on_trace().whole.size(), 249u);
    EXPECT_EQ(unknown_on_trace().whole.substr(249 - 11), "the request");
}

TEST_F(WalkMessages, PercentSignsInATextAreNoFormat) {
    walk_unknown("0%2f1-PSM-OM %s %n %99999d");
    EXPECT_EQ(unknown_on_trace().text, "Unsupported tag `0%2f1-PSM-OM %s %n %99999d` is specified in the request.");
    EXPECT_EQ(unknown_on_log().text, "ERR: YFW: " + context_text() +
                                         "Unsupported tag `0%2f1-PSM-OM %s %n %99999d` is specified in the request.");
}

} // namespace
