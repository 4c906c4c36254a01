// Finding one field of a bag by its dotted name, and tokens as text.
#include <arpa/inet.h>

#include <array>
#include <cctype>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::Bag;
using fake::mark_token;
using fake::number_token;
using fake::second_text_token;
using fake::text_token;
using fake::Token;
using utility::bag_of;
using utility::Buffer;
using utility::call;
using utility::Lines;
using utility::lines_of;
using utility::repeated;
using utility::Steps;
using utility::trace;

constexpr char search[] = "get_value_in_bag";
constexpr char render[] = "convert_bag_value_to_str";

Token end_of_bag() {
    return mark_token(BAG_TOKEN_END);
}

Token integer(std::string name, std::int64_t number) {
    return number_token(BAG_TOKEN_INT32, std::move(name), number);
}

Token nameless(bag_token_type_td type, std::int64_t number = 0) {
    Token token;
    token.type = type;
    token.number = number;
    return token;
}

Token array_start(std::string name) {
    return mark_token(BAG_TOKEN_ARRAY_START, std::move(name));
}

Token array_end() {
    return mark_token(BAG_TOKEN_ARRAY_END);
}

// A bag that fails with 0x54 behind its tokens.
Bag breaking_off(std::vector<Token> tokens) {
    Bag bag = utility::bag_of(std::move(tokens));
    bag.exhausted_result = 0x54;
    return bag;
}

class BagTest : public utility::UtilityTest {
protected:
    kerrno find(const std::string &path, bag_token_type_td wanted, Bag bag, Buffer &out, std::uint32_t length = 40) {
        platform.bag_at(bytes_.data(), std::move(bag));
        return get_value_in_bag(request.ctx(), path.c_str(), wanted, bytes_.data(), length, out.data());
    }

private:
    std::array<char, 40> bytes_{};
};

// ---- the frame of a search ----

TEST_F(BagTest, ASearchReadsTheHeaderThenTokenByToken) {
    Bag bag = bag_of({mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"), integer("TxVoaAttenuation", 7),
                      integer("RxVoaAttenuation", -25), end_of_bag()});
    bag.type_name = "ots_edm";
    bag.version_major = 2;
    bag.version_minor = 5;
    Buffer out(20);
    EXPECT_EQ(find("ots_edm_info.RxVoaAttenuation", BAG_TOKEN_INT32, bag, out), KERR_SUCCESS);
    EXPECT_EQ(out.text(), "-25");
    EXPECT_EQ(happened(),
              lines_of({trace(search, "Start"), call("bag_header_info(bag \"ots_edm\")"),
                        trace(search, "[bag (len 40)] \t (ots_edm v2.5)"), call("bag_init(bag \"ots_edm\", 40)"),
                        call("bag_token(#1)"), call("bag_free_token(#1)"), call("bag_token(#2)"),
                        call("bag_free_token(#2)"), call("bag_token(#3)"), call("bag_free_token(#3)"),
                        trace(search, "bag_generic_destroy"), call("bag_destroy()")}));
}

TEST_F(BagTest, AFieldThatIsNotThereIsASuccess) {
    Buffer out(20);
    EXPECT_EQ(find("no.such.field", BAG_TOKEN_INT32, bag_of({integer("a", 1), integer("b", 2), end_of_bag()}), out),
              KERR_SUCCESS);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(
        platform.calls(fake::Bags),
        (Lines{"bag_header_info(bag \"record\")", "bag_init(bag \"record\", 40)", "bag_token(#1)", "bag_free_token(#1)",
               "bag_token(#2)", "bag_free_token(#2)", "bag_token(#3)", "bag_free_token(#3)", "bag_destroy()"}));
}

TEST_F(BagTest, NoBagIsACodeOfItsOwn) {
    Buffer out(20);
    EXPECT_EQ(get_value_in_bag(request.ctx(), "a", BAG_TOKEN_INT32, nullptr, 40, out.data()), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of({trace(search, "Start"), trace(search, "NULL == bag_data")}));
}

// It is told before the names of the path are counted.
TEST_F(BagTest, NoBagIsToldForAPathOfElevenNamesToo) {
    Buffer out(20);
    EXPECT_EQ(get_value_in_bag(request.ctx(), "a.b.c.d.e.f.g.h.i.j.k", 4, nullptr, 40, out.data()), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of({trace(search, "Start"), trace(search, "NULL == bag_data")}));
}

TEST_F(BagTest, AFailingHeaderEndsTheSearch) {
    Bag bag = bag_of({integer("a", 1)});
    bag.header_result = 0x51;
    Buffer out(20);
    EXPECT_EQ(find("a", BAG_TOKEN_INT32, bag, out), 0x51u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of({trace(search, "Start"), call("bag_header_info(bag \"record\")"),
                                    trace(search, "bag_header_info failed: error 0x00000051")}));
}

TEST_F(BagTest, AFailingInitEndsTheSearch) {
    Bag bag = bag_of({integer("a", 1)});
    bag.init_result = 0x52;
    Buffer out(20);
    EXPECT_EQ(find("a", BAG_TOKEN_INT32, bag, out), 0x52u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(),
              lines_of({trace(search, "Start"), call("bag_header_info(bag \"record\")"),
                        trace(search, "[bag (len 40)] \t (record v1.0)"), call("bag_init(bag \"record\", 40)"),
                        trace(search, "bag_generic_init failed: error 0x00000052")}));
}

TEST_F(BagTest, AFailingTokenEndsTheSearch) {
    for (const std::size_t failing : {0u, 1u, 2u}) {
        SCOPED_TRACE(failing);
        platform.forget();
        Bag bag = bag_of({integer("a", 1), integer("a", 2), integer("b", 3)});
        bag.token_results[failing] = 0x53;
        Buffer out(20);
        EXPECT_EQ(find("b", BAG_TOKEN_INT32, bag, out), 0x53u);
        EXPECT_TRUE(out.untouched());
        EXPECT_EQ(platform.count("bag_token"), failing + 1);
        EXPECT_EQ(platform.count("bag_free_token"), failing);
        const Lines said = messages();
        EXPECT_EQ(said, (Lines{"log TRC Start", "log TRC [bag (len 40)] \t (record v1.0)",
                               "log TRC bag_generic_token failed: error 0x00000053", "log TRC bag_generic_destroy"}));
        EXPECT_EQ(platform.calls(fake::Bags).back(), "bag_destroy()");
    }
}

TEST_F(BagTest, ABagWithoutAnEndGivesTheDecodersCode) {
    Buffer out(20);
    EXPECT_EQ(find("b", BAG_TOKEN_INT32, breaking_off({integer("a", 1)}), out), 0x54u);
    EXPECT_TRUE(out.untouched());
}

TEST_F(BagTest, AFailureBehindTheFieldIsNotSeen) {
    Buffer out(20);
    EXPECT_EQ(find("a", BAG_TOKEN_INT32, breaking_off({integer("a", 1)}), out), KERR_SUCCESS);
    EXPECT_EQ(out.text(), "1");
    EXPECT_EQ(platform.count("bag_token"), 1u);
}

TEST_F(BagTest, LengthAndVersionAreShownAsTheyAre) {
    Bag bag = bag_of({end_of_bag()});
    bag.type_name = "%s%n";
    bag.version_major = -1;
    bag.version_minor = 2147483647;
    Buffer out(20);
    EXPECT_EQ(find("a", BAG_TOKEN_INT32, bag, out, 0xffffffff), KERR_SUCCESS);
    EXPECT_EQ(messages()[1], "log TRC [bag (len 4294967295)] \t (%s%n v-1.2147483647)");
}

// ---- matching ----

struct Search {
    const char *what;
    std::string path;
    bag_token_type_td wanted;
    std::vector<Token> tokens;
    std::optional<std::string> text; // nothing: the output stays untouched
    std::size_t read;                // so many tokens
    kerrno result = KERR_SUCCESS;
};

// The name in lists of tests.
void PrintTo(const Search &expected, std::ostream *stream) {
    *stream << expected.what;
}

class BagSearchTest : public BagTest, public ::testing::WithParamInterface<Search> {};

TEST_P(BagSearchTest, Finds) {
    const Search &expected = GetParam();
    Buffer out(expected.text ? expected.text->size() + 1 : 20);
    EXPECT_EQ(find(expected.path, expected.wanted, breaking_off(expected.tokens), out), expected.result);
    if (expected.text) {
        EXPECT_EQ(out.text(), *expected.text);
    } else {
        EXPECT_TRUE(out.untouched());
    }
    EXPECT_EQ(platform.count("bag_token"), expected.read);
    EXPECT_EQ(platform.count("bag_free_token"), expected.result == KERR_SUCCESS ? expected.read : expected.read - 1);
    EXPECT_EQ(platform.calls(fake::Bags).back(), "bag_destroy()");
}

const std::vector<Search> matching = {
    {"the first token", "a", 4, {integer("a", 1), integer("a", 2), end_of_bag()}, "1", 1},
    {"the only name is a whole one",
     "a",
     4,
     {integer("aa", 1), integer("A", 2), integer("a", 3), end_of_bag()},
     "3",
     3},
    {"names in sequence, whatever stands between and however deep",
     "a.b.c",
     4,
     {mark_token(BAG_TOKEN_STRUCT_START, "a"), integer("c", 1), integer("x", 2), integer("b", 3),
      mark_token(BAG_TOKEN_STRUCT_END), integer("b", 4), integer("c", 5), end_of_bag()},
     "5",
     7},
    {"names in another order", "a.b", 4, {integer("b", 1), integer("a", 2), end_of_bag()}, std::nullopt, 3},
    {"only the first name", "a.b", 4, {integer("a", 1), end_of_bag()}, std::nullopt, 2},
    {"one token counts once", "a.a", 4, {integer("a", 1), end_of_bag()}, std::nullopt, 2},
    {"twice the same name", "a.a", 4, {integer("a", 1), integer("b", 2), integer("a", 3), end_of_bag()}, "3", 3},
    {"a plain match of another type is rendered", "a", 4, {text_token("a", "text"), end_of_bag()}, "text", 1},
    {"a plain match of a type without text", "a", 4, {number_token(6, "a", 1), end_of_bag()}, std::nullopt, 1},
    {"a structure", "a", 4, {mark_token(BAG_TOKEN_STRUCT_START, "a"), end_of_bag()}, std::nullopt, 1},
    {"the bag ends before the name", "a", 4, {end_of_bag(), integer("a", 1)}, std::nullopt, 1},
    {"an empty bag", "a", 4, {end_of_bag()}, std::nullopt, 1},
    {"an end that bears the first name", "a.b", 4, {mark_token(BAG_TOKEN_END, "a"), integer("b", 1)}, std::nullopt, 1},
    {"a token without a name is no match", "a", 4, {nameless(4, 1), integer("a", 2), end_of_bag()}, "2", 2},
    {"an empty path is one empty name", "", 4, {integer("a", 1), nameless(4, 2), end_of_bag()}, "2", 2},
    {"an empty name matches an empty component",
     "a..b",
     4,
     {integer("a", 1), integer("b", 2), integer("", 3), integer("b", 4), end_of_bag()},
     "4",
     4},
    {"a token without a name matches an empty component",
     "a..b",
     4,
     {integer("a", 1), nameless(4, 2), integer("b", 3), end_of_bag()},
     "3",
     3},
    {"an empty component at the start",
     ".a",
     4,
     {integer("a", 1), nameless(4, 2), integer("a", 3), end_of_bag()},
     "3",
     3},
    {"an empty component at the end",
     "a.",
     4,
     {integer("a", 1), integer("b", 2), nameless(4, 3), end_of_bag()},
     "3",
     3},
    {"the end of an array outside of a match", "a", 4, {array_end(), integer("a", 1), end_of_bag()}, "1", 2},
    {"ten names",
     "a.b.c.d.e.f.g.h.i.j",
     4,
     {integer("a", 1), integer("b", 2), integer("c", 3), integer("d", 4), integer("e", 5), integer("f", 6),
      integer("g", 7), integer("h", 8), integer("i", 9), integer("j", 10), end_of_bag()},
     "10",
     10},
};

const std::vector<Search> arrays = {
    {"the first element of the wanted type",
     "ots_edm_info.LaneData",
     4,
     {mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"), array_start("LaneData"), text_token("Name", "lane"),
      number_token(5, "Index", 9), integer("ReceivePower", -2137), integer("Other", 3), array_end(), end_of_bag()},
     "-2137",
     5},
    {"an array on the way is passed like any other token",
     "ots_edm_info.LaneData.ReceivePower",
     4,
     {mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"), array_start("LaneData"), integer("TransmitPower", 1),
      integer("ReceivePower", -2137), array_end(), end_of_bag()},
     "-2137",
     4},
    {"an array on the way, left before the last name",
     "LaneData.ReceivePower",
     4,
     {array_start("LaneData"), array_end(), integer("ReceivePower", 8), end_of_bag()},
     "8",
     3},
    {"an empty array", "a", 4, {array_start("a"), array_end(), integer("b", 1), end_of_bag()}, std::nullopt, 2},
    {"no element of the wanted type",
     "a",
     4,
     {array_start("a"), text_token("x", "1"), array_end(), integer("a", 2), end_of_bag()},
     std::nullopt,
     3},
    {"an array that only the bag's end ends",
     "a",
     4,
     {array_start("a"), text_token("x", "1"), end_of_bag()},
     std::nullopt,
     3},
    {"elements without names",
     "a",
     5,
     {array_start("a"), nameless(4, 1), nameless(5, 2), array_end(), end_of_bag()},
     "2",
     3},
    {"a text is wanted", "a", 12, {array_start("a"), nameless(4, 1), text_token("t", "lane"), array_end()}, "lane", 3},
    {"a wanted type without text",
     "a",
     6,
     {array_start("a"), nameless(4, 1), nameless(6, 2), nameless(4, 3)},
     std::nullopt,
     3},
    {"an array within the array",
     "a",
     4,
     {array_start("a"), array_start("b"), integer("c", 1), array_end(), array_end(), end_of_bag()},
     "1",
     3},
    {"an array that breaks off", "a", 4, {array_start("a"), text_token("x", "1")}, std::nullopt, 3, 0x54},
    {"an array that breaks off at once", "a", 4, {array_start("a")}, std::nullopt, 2, 0x54},
};

std::string name_of(const ::testing::TestParamInfo<Search> &info) {
    std::string name;
    for (const char character : std::string(info.param.what)) {
        name += std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Matching, BagSearchTest, ::testing::ValuesIn(matching), name_of);
INSTANTIATE_TEST_SUITE_P(Arrays, BagSearchTest, ::testing::ValuesIn(arrays), name_of);

TEST_F(BagTest, ArrayElementsAreReleasedOneByOne) {
    Buffer out(20);
    EXPECT_EQ(find("a", 4, bag_of({array_start("a"), text_token("x", "1"), integer("y", 2), array_end()}), out),
              KERR_SUCCESS);
    EXPECT_EQ(out.text(), "2");
    EXPECT_EQ(
        platform.calls(fake::Bags),
        (Lines{"bag_header_info(bag \"record\")", "bag_init(bag \"record\", 40)", "bag_token(#1)", "bag_token(#2)",
               "bag_free_token(#2)", "bag_token(#3)", "bag_free_token(#3)", "bag_free_token(#1)", "bag_destroy()"}));
}

TEST_F(BagTest, AMatchWithoutTextIsTold) {
    Buffer out(20);
    EXPECT_EQ(find("a", 4, bag_of({number_token(BAG_TOKEN_UINT64, "a", 1), end_of_bag()}), out), KERR_SUCCESS);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(),
              lines_of({trace(search, "Start"), call("bag_header_info(bag \"record\")"),
                        trace(search, "[bag (len 40)] \t (record v1.0)"), call("bag_init(bag \"record\", 40)"),
                        call("bag_token(#1)"), trace(render, "UNKNOWN TOKEN TYPE 7 - ERROR]\n"),
                        call("bag_free_token(#1)"), trace(search, "bag_generic_destroy"), call("bag_destroy()")}));
}

// ---- the length of paths and texts ----

TEST_F(BagTest, MoreThanTenNamesAreRefusedUndecoded) {
    for (const std::string &path : {std::string("a.b.c.d.e.f.g.h.i.j.k"), std::string(".........."),
                                    "a" + repeated(100000, '.'), repeated(100000, '.')}) {
        SCOPED_TRACE(path.substr(0, 40));
        platform.forget();
        Buffer out(20);
        EXPECT_EQ(find(path, 4, bag_of({integer("a", 1), end_of_bag()}), out), 0xffffffffu);
        EXPECT_TRUE(out.untouched());
        EXPECT_EQ(platform.calls(fake::Bags), Lines{});
        EXPECT_EQ(messages().front(), "log TRC Start");
    }
}

TEST_F(BagTest, NoMoreThan199CharactersOfThePathCount) {
    for (const std::string &tail :
         {std::string(), std::string("xyz"), std::string(".b"), repeated(100000, '.'), repeated(100000, 'x')}) {
        SCOPED_TRACE(tail.substr(0, 40));
        Buffer out(20);
        EXPECT_EQ(find(repeated(199, 'n') + tail, 4,
                       bag_of({integer(repeated(198, 'n'), 1), integer(repeated(200, 'n'), 2),
                               integer(repeated(199, 'n'), 3), end_of_bag()}),
                       out),
                  KERR_SUCCESS);
        EXPECT_EQ(out.text(), "3");
    }
    // A dot as the last character that counts leaves an empty name behind it.
    Buffer out(20);
    EXPECT_EQ(find(repeated(198, 'n') + "." + "b", 4,
                   bag_of({integer(repeated(198, 'n'), 1), integer("b", 2), nameless(4, 3), end_of_bag()}), out),
              KERR_SUCCESS);
    EXPECT_EQ(out.text(), "3");
}

TEST_F(BagTest, TheCallersPathStaysAsItIs) {
    const std::string path = "a.b.c";
    Buffer out(20);
    EXPECT_EQ(find(path, 4, bag_of({end_of_bag()}), out), KERR_SUCCESS);
    EXPECT_EQ(path, "a.b.c");
}

TEST_F(BagTest, TextsAreWrittenWhole) {
    for (const std::size_t length : {0u, 1u, 19u, 20u, 199u, 200u, 255u, 4096u, 100000u}) {
        SCOPED_TRACE(length);
        const std::string text = repeated(length, 't');
        Buffer plain(length + 1);
        EXPECT_EQ(find("a", BAG_TOKEN_TEXT, bag_of({text_token("a", text), end_of_bag()}), plain), KERR_SUCCESS);
        EXPECT_EQ(plain.text(), text);
        Buffer element(length + 1);
        EXPECT_EQ(
            find("a", BAG_TOKEN_TEXT2, bag_of({array_start("a"), second_text_token("b", text), array_end()}), element),
            KERR_SUCCESS);
        EXPECT_EQ(element.text(), text);
    }
}

TEST_F(BagTest, NamesOfTokensMayHaveAnyLength) {
    Buffer out(20);
    EXPECT_EQ(find("a", 4, bag_of({integer(repeated(100000, 'a'), 1), integer("a", 2), end_of_bag()}), out),
              KERR_SUCCESS);
    EXPECT_EQ(out.text(), "2");
}

// ---- tokens as text ----

struct Rendering {
    Token token;
    std::string text;
};

class RenderTest : public BagTest {};

TEST_F(RenderTest, EveryTypeHasItsText) {
    const auto number = [](bag_token_type_td type, std::int64_t value) { return number_token(type, "a", value); };
    for (const Rendering &expected : std::vector<Rendering>{
             {number(BAG_TOKEN_INT8, -128), "-128"},
             {number(BAG_TOKEN_INT8, 127), "127"},
             {number(BAG_TOKEN_UINT8, 0), "0"},
             {number(BAG_TOKEN_UINT8, 255), "255"},
             {number(BAG_TOKEN_INT16, -32768), "-32768"},
             {number(BAG_TOKEN_INT16, 32767), "32767"},
             {number(BAG_TOKEN_UINT16, 65535), "65535"},
             {number(BAG_TOKEN_INT32, -2147483648LL), "-2147483648"},
             {number(BAG_TOKEN_INT32, 2147483647), "2147483647"},
             {number(BAG_TOKEN_UINT32, 4294967295LL), "4294967295"},
             {number(BAG_TOKEN_IPV4, htonl(0xc0000201)), "192.0.2.1"},
             {number(BAG_TOKEN_IPV4, htonl(0x0a000000)), "10.0.0.0"},
             {number(BAG_TOKEN_IPV4, 0), "0.0.0.0"},
             {number(BAG_TOKEN_IPV4, 0xffffffff), "255.255.255.255"},
             {number(BAG_TOKEN_ENUM, 7), "7"},
             {number(BAG_TOKEN_ENUM, -7), "-7"},
             {number(BAG_TOKEN_BOOL, 0), "FALSE"},
             {number(BAG_TOKEN_BOOL, 1), "TRUE"},
             {number(BAG_TOKEN_BOOL, 0x80000000LL), "TRUE"},
             {text_token("a", "-2.10"), "-2.10"},
             {text_token("a", ""), ""},
             {text_token("a", "%s%n%2f"), "%s%n%2f"},
             {second_text_token("a", "second"), "second"},
         }) {
        SCOPED_TRACE("type " + std::to_string(expected.token.type) + ": " + expected.text);
        platform.forget();
        Buffer out(expected.text.size() + 1);
        EXPECT_EQ(find("a", expected.token.type, bag_of({expected.token, end_of_bag()}), out), KERR_SUCCESS);
        EXPECT_EQ(out.text(), expected.text);
        EXPECT_EQ(messages().size(), 3u); // nothing is said about the token
    }
}

// A reading that is missing stays missing.
TEST_F(RenderTest, AnAbsentTextIsNotWritten) {
    for (const Token &absent : {text_token("a", std::nullopt), second_text_token("a", std::nullopt)}) {
        Buffer out(20);
        EXPECT_EQ(find("a", absent.type, bag_of({absent, end_of_bag()}), out), KERR_SUCCESS);
        EXPECT_TRUE(out.untouched());
    }
}

TEST_F(RenderTest, ATextLiesInTheSlotOfItsType) {
    std::string first = "first";
    std::string second = "second";
    bag_token_td token{};
    token.value.text = first.data();
    token.second_text = second.data();
    Buffer out(20);
    token.type = BAG_TOKEN_TEXT;
    convert_bag_value_to_str(request.ctx(), &token, out.data());
    EXPECT_EQ(out.text(), "first");
    token.type = BAG_TOKEN_TEXT2;
    convert_bag_value_to_str(request.ctx(), &token, out.data());
    EXPECT_EQ(out.text(), "second");
}

TEST_F(RenderTest, ATypeWithoutTextIsTold) {
    struct Untold {
        bag_token_type_td type;
        std::string shown;
    };
    for (const Untold &unrendered : std::vector<Untold>{{6, "6"},
                                                        {7, "7"},
                                                        {11, "11"},
                                                        {14, "14"},
                                                        {15, "15"},
                                                        {16, "16"},
                                                        {17, "17"},
                                                        {18, "18"},
                                                        {19, "19"},
                                                        {2147483647, "2147483647"},
                                                        {4294967295, "-1"}}) {
        bag_token_td token{};
        token.type = unrendered.type;
        platform.forget();
        const std::uint32_t drawn = platform.last_sequence_number();
        Buffer out(8);
        convert_bag_value_to_str(request.ctx(), &token, out.data());
        EXPECT_TRUE(out.untouched());
        const std::string text = "UNKNOWN TOKEN TYPE " + unrendered.shown + " - ERROR]\n";
        EXPECT_EQ(happened(), (Lines{"log TRC " + text,
                                     "trace TRC #" + std::to_string(drawn + 1) + " convert_bag_value_to_str " + text}));
    }
}

TEST_F(RenderTest, ATextNeedsNoContext) {
    bag_token_td token{};
    token.type = BAG_TOKEN_INT32;
    token.value.int32 = -25;
    Buffer out(4);
    convert_bag_value_to_str(nullptr, &token, out.data());
    EXPECT_EQ(out.text(), "-25");
    EXPECT_EQ(happened(), Lines{});
}

class BagDeathTest : public BagTest {};

TEST_F(BagDeathTest, ASearchNeedsAContext) {
    const std::string assertion =
        utility::context_assertion("utility", "kerrno get_value_in_bag(yfw_map_ctx, const char *, bag_token_type_td, "
                                              "const void *, uint32_t, char *)");
    Buffer out(20);
    const std::array<char, 40> bag{};
    EXPECT_DEATH(static_cast<void>(get_value_in_bag(nullptr, "a", 4, bag.data(), 40, out.data())), assertion);
    EXPECT_DEATH(static_cast<void>(get_value_in_bag(nullptr, "a", 4, nullptr, 0, out.data())), assertion);
}

TEST_F(BagDeathTest, ATypeWithoutTextNeedsAContext) {
    bag_token_td token{};
    token.type = BAG_TOKEN_UINT64;
    Buffer out(20);
    EXPECT_DEATH(convert_bag_value_to_str(nullptr, &token, out.data()),
                 utility::context_assertion(
                     "utility", "void convert_bag_value_to_str(yfw_map_ctx, const bag_token_td *, char *)"));
}

} // namespace
