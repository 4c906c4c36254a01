// The messages of the plug-in as they arrive at the two services: the words of the log's statements, and the form and
// the length of a trace line. What each channel carries is told by the cases (utility_messages.cases).
#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <set>

#include <gtest/gtest.h>

#include "exports.hpp"
#include "request.hpp"
#include "utility.hpp"

namespace {

using fake::container;
using fake::leaf;
using Lines = std::vector<std::string>;

class MessageTest : public fake::RequestTest {
protected:
    kerrno walk(const std::string &suffix, const std::optional<fake::Node> &tree) {
        return fake::function<fake::Callback>(fake::callback_prefix +
                                              suffix)(request.ctx(), tree ? build(*tree).root() : nullptr, dest);
    }

    [[nodiscard]] std::string context_text() {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "ctx=%p,", static_cast<void *>(request.ctx()));
        return text.data();
    }
};

// That a slot begins as all ones, and serves one message alone, is what the recording log service insists on.

// A statement has one word of the log service and one line of its source, whatever it is run for.
TEST_F(MessageTest, AStatementKeepsItsWordAndItsLine) {
    fake::Bag bag;
    bag.tokens = {fake::text_token("a", "x"), fake::mark_token(BAG_TOKEN_END)};
    platform.items["/oper/ots/if/Ots0_1_0_2/ots_info"] = fake::bag_item(bag);
    for (int i = 0; i < 2; ++i) {
        std::vector<char> out(20);
        EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/3/0/2", out.data(), 2), 0);
        EXPECT_EQ(sysdb_get_psm_state_rx_attenuation(request.ctx(), "Ots0_1_0_2", out.data()), KERR_SUCCESS);
        EXPECT_EQ(sysdb_get_psm_state_rx_instant_power(request.ctx(), "Ots0_1_0_2", out.data()), KERR_SUCCESS);
    }
    ASSERT_EQ(platform.logged().size(), platform.traced().size());
    std::map<const std::uint32_t *, unsigned> line_of;
    std::map<std::string, std::map<unsigned, const std::uint32_t *>> word_of;
    for (std::size_t i = 0; i < platform.logged().size(); ++i) {
        const fake::LogRecord &log = platform.logged()[i];
        const fake::TraceRecord &trace = platform.traced()[i];
        SCOPED_TRACE(trace.function + ": " + log.format);
        EXPECT_EQ(line_of.emplace(log.site, trace.line).first->second, trace.line);
        EXPECT_EQ(word_of[trace.function].emplace(trace.line, log.site).first->second, log.site);
    }
    EXPECT_GT(line_of.size(), 10u);
}

TEST_F(MessageTest, EveryStatementOfAWalkHasASlotOfItsOwn) {
    platform.callbacks = fake::Platform::Callbacks::scripted;
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    constexpr char config[] = "lvla_aps_apsmodule_config";
    const auto entry = [](std::vector<fake::Node> children) { return container("aps-module", std::move(children)); };
    // One walk after the other, so that every message of the walk is said.
    EXPECT_EQ(walk(config, container("config").without_array(1)), 0xaaf29e00u);
    EXPECT_EQ(walk(config, container("config", {leaf("x").untagged()})), 0xaaf29e00u);
    EXPECT_EQ(walk(config, container("config", {leaf("x")}).with_operation(3)), 0xaaf2a000u);
    EXPECT_EQ(walk(config, container("config", {leaf("x")})), 0xaaf2ee00u);
    EXPECT_EQ(walk(config, std::nullopt), 0xaaf2a000u);
    constexpr char list[] = "lvla_aps_apsmodules_apsmodule";
    EXPECT_EQ(walk(list, entry({})), 0xaaf29e00u);
    EXPECT_EQ(walk(list, entry({leaf("name")})), 0xaaf2f000u);
    EXPECT_EQ(walk(list, entry({leaf("name", "x"), leaf("y")})), 0xaaf2ee00u);
    EXPECT_EQ(walk(list, entry({leaf("name", "x").with_operation(3)})), 0xaaf2f200u);
    platform.answer("check_leafref", 0x5151);
    EXPECT_EQ(walk(list, entry({leaf("name", "x")})), 0x5151u);
    request.state.delete_walk = 1;
    EXPECT_EQ(walk(list, entry({leaf("name")})), 0xaaf2f000u);

    std::map<std::string, std::set<const std::uint32_t *>> slots;
    for (const fake::LogRecord &record : platform.logged()) {
        slots[record.format].insert(record.site);
    }
    Lines formats;
    for (const auto &slot : slots) {
        formats.push_back(slot.first);
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
    // The error of an entry without children is said by two statements.
    EXPECT_EQ(slots["ERR: YFW: ctx=%p,No keys specified with a list node."].size(), 2u);
}

// Every length from one that fits to one that does not: 249 characters are whole, and the log is never cut.
TEST_F(MessageTest, ATraceIsCutAt249CharactersTheLogIsNot) {
    std::vector<std::size_t> lengths{100000};
    for (std::size_t length = 150; length < 250; ++length) {
        lengths.push_back(length);
    }
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        platform.forget();
        const std::string text = context_text() + "path " + std::string(length, 'p');
        std::uint32_t size = 0;
        EXPECT_EQ(sysdb_get_data(request.ctx(), "/oper/ots/if/", std::string(length, 'p').c_str(), nullptr, &size,
                                 SYSDB_ITEM_BAG),
                  0x0a0b0c00u);
        const fake::TraceRecord &trace = platform.traced().front();
        const std::string whole =
            "#" + std::to_string(trace.sequence) + ": TRC: sysdb_get_data:" + std::to_string(trace.line) + " " + text;
        EXPECT_EQ(trace.whole, whole.substr(0, 249));
        EXPECT_EQ(platform.logged().front().text, "TRC: YFW: " + text);
    }
}

} // namespace
