#include <limits>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "decoded_bag.hpp"
#include "simulator/bag/encoder.hpp"
#include "simulator/bag/format.hpp"

namespace {

using ocpsm::bag::Encoder;
using ocpsm::bag::unnamed;
using testing::ElementsAre;

const Token end_of_bag{18, {}, 0, {}};

Decoded decode_whole(const std::string &bytes) {
    Decoded decoded = decode(bytes);
    EXPECT_EQ(decoded.init, KERR_SUCCESS);
    EXPECT_EQ(decoded.last, KERR_SUCCESS);
    return decoded;
}

TEST(BagRoundTrip, KeepsTheEncodingOfStoredBags) {
    const std::string bytes = Encoder("inv", 2, -1).int16("ab", -2).text(unnamed, "x").text("n", std::nullopt).finish();
    using namespace std::string_literals;
    const std::string expected = "BAG1\x42\0\0\0\x02\0\0\0\xff\xff\xff\xff\x03inv"s // 20 bytes
                                 "\x02\0\x02\0\x02\0\0\0"s
                                 "ab"
                                 "\xfe\xff"s                      // 12
                                 "\x0c\0\xff\xff\x01\0\0\0x"s     // 9
                                 "\x0c\0\x01\0\xff\xff\xff\xffn"s // 9
                                 "\x12\0\xff\xff\0\0\0\0"s;       // 8
    ASSERT_EQ(expected.size(), 58U);
    EXPECT_EQ(bytes, with_total_length(expected, 58));
}

TEST(BagRoundTrip, GivesTypeNameAndVersion) {
    bag_header_td header{};
    ASSERT_EQ(header_of(Encoder("ots_info", 3, -14).finish(), header), KERR_SUCCESS);
    EXPECT_STREQ(header.type_name, "ots_info");
    EXPECT_EQ(header.version_major, 3);
    EXPECT_EQ(header.version_minor, -14);
}

TEST(BagRoundTrip, GivesAnEmptyTypeName) {
    bag_header_td header{};
    ASSERT_EQ(header_of(Encoder("", 0, 0).finish(), header), KERR_SUCCESS);
    EXPECT_STREQ(header.type_name, "");
}

TEST(BagRoundTrip, CutsATypeNameThatTheHeaderHasNoRoomFor) {
    for (const std::size_t size : {63U, 64U, 65U, 239U}) {
        bag_header_td header{};
        ASSERT_EQ(header_of(Encoder(std::string(size, 'n'), 1, 2).finish(), header), KERR_SUCCESS) << size;
        EXPECT_EQ(std::string(header.type_name), std::string(63, 'n')) << size;
        EXPECT_EQ(header.version_minor, 2) << size;
    }
}

TEST(BagRoundTrip, KeepsTheSmallestAndTheLargestValueOfEveryInteger) {
    const std::string bytes = Encoder("numbers", 1, 0)
                                  .int8("a", -128)
                                  .int8("b", 127)
                                  .uint8("c", 255)
                                  .int16("d", -32768)
                                  .int16("e", 32767)
                                  .uint16("f", 65535)
                                  .int32("g", std::numeric_limits<std::int32_t>::min())
                                  .int32("h", 2147483647)
                                  .uint32("i", 4294967295U)
                                  .int64("j", std::numeric_limits<std::int64_t>::min())
                                  .uint64("k", 9223372036854775807U)
                                  .enumeration("l", -7)
                                  .boolean("m", 4294967295U)
                                  .boolean("n", 0)
                                  .finish();
    EXPECT_THAT(decode_whole(bytes).tokens,
                ElementsAre(Token{0, "a", -128, {}}, Token{0, "b", 127, {}}, Token{1, "c", 255, {}},
                            Token{2, "d", -32768, {}}, Token{2, "e", 32767, {}}, Token{3, "f", 65535, {}},
                            Token{4, "g", -2147483648LL, {}}, Token{4, "h", 2147483647, {}},
                            Token{5, "i", 4294967295LL, {}}, Token{6, "j", -9223372036854775807LL - 1, {}},
                            Token{7, "k", 9223372036854775807LL, {}}, Token{9, "l", -7, {}},
                            Token{10, "m", 4294967295LL, {}}, Token{10, "n", 0, {}}, end_of_bag));
}

TEST(BagRoundTrip, KeepsAnAddressInNetworkOrder) {
    EXPECT_THAT(decode_whole(Encoder("a", 1, 0).ipv4("address", 192, 0, 2, 7).finish()).tokens,
                ElementsAre(Token{8, "address", 0, std::string("\xc0\x00\x02\x07", 4)}, end_of_bag));
}

TEST(BagRoundTrip, TellsNullTextsFromEmptyOnesAndNamesLikewise) {
    const std::string bytes = Encoder("texts", 1, 0)
                                  .text("a", "one")
                                  .text("b", "")
                                  .text("c", std::nullopt)
                                  .second_text("d", "two")
                                  .second_text("e", "")
                                  .second_text("f", std::nullopt)
                                  .text("", "empty name")
                                  .text(unnamed, "no name")
                                  .finish();
    EXPECT_THAT(decode_whole(bytes).tokens,
                ElementsAre(Token{12, "a", 0, "one"}, Token{12, "b", 0, ""}, Token{12, "c", 0, {}},
                            Token{13, "d", 0, "two"}, Token{13, "e", 0, ""}, Token{13, "f", 0, {}},
                            Token{12, "", 0, "empty name"}, Token{12, {}, 0, "no name"}, end_of_bag));
}

TEST(BagRoundTrip, KeepsTextsOfAnyLength) {
    for (const std::size_t size : {0U, 1U, 199U, 200U, 255U, 256U, 65535U, 65536U, 100000U}) {
        const std::string text(size, '%');
        const auto decoded = decode_whole(Encoder("t", 1, 0).text("text", text).second_text("second", text).finish());
        EXPECT_THAT(decoded.tokens, ElementsAre(Token{12, "text", 0, text}, Token{13, "second", 0, text}, end_of_bag));
    }
}

TEST(BagRoundTrip, KeepsTextsOfAnyContent) {
    std::string text;
    for (int byte = 1; byte < 256; ++byte) {
        text.push_back(static_cast<char>(byte));
    }
    EXPECT_THAT(decode_whole(Encoder("t", 1, 0).text(text, text).finish()).tokens,
                ElementsAre(Token{12, text, 0, text}, end_of_bag));
}

TEST(BagRoundTrip, KeepsTheLongestName) {
    const std::string name(65534, 'n');
    EXPECT_THAT(decode_whole(Encoder("t", 1, 0).int8(name, 1).finish()).tokens,
                ElementsAre(Token{0, name, 1, {}}, end_of_bag));
}

TEST(BagRoundTrip, KeepsStructsAndArraysInOneAnother) {
    const std::string bytes = Encoder("ots_info", 1, 0)
                                  .begin_struct("ots_edm_info")
                                  .begin_array("LaneData")
                                  .begin_struct(unnamed)
                                  .int32("ReceivePower", -1234)
                                  .end_struct()
                                  .begin_array(unnamed)
                                  .end_array()
                                  .uint8(unnamed, 7)
                                  .end_array()
                                  .end_struct()
                                  .begin_struct("empty")
                                  .end_struct()
                                  .finish();
    EXPECT_THAT(decode_whole(bytes).tokens,
                ElementsAre(Token{16, "ots_edm_info", 0, {}}, Token{14, "LaneData", 0, {}}, Token{16, {}, 0, {}},
                            Token{4, "ReceivePower", -1234, {}}, Token{17, {}, 0, {}}, Token{14, {}, 0, {}},
                            Token{15, {}, 0, {}}, Token{1, {}, 7, {}}, Token{15, {}, 0, {}}, Token{17, {}, 0, {}},
                            Token{16, "empty", 0, {}}, Token{17, {}, 0, {}}, end_of_bag));
}

TEST(BagRoundTrip, PassesOverTypesOfANewerEncoder) {
    const std::string bytes = Encoder("t", 1, 0)
                                  .opaque(11, "float", "anything")
                                  .opaque(19, unnamed, "")
                                  .opaque(65535, "far", std::string(1000, '\0'))
                                  .int8("known", 5)
                                  .finish();
    EXPECT_THAT(decode_whole(bytes).tokens,
                ElementsAre(Token{11, "float", 0, {}}, Token{19, {}, 0, {}}, Token{65535, "far", 0, {}},
                            Token{0, "known", 5, {}}, end_of_bag));
}

TEST(BagRoundTrip, NestsAsDeepAsTheDecoderDoes) {
    Encoder encoder("deep", 1, 0);
    for (int i = 0; i < 32; ++i) {
        encoder.begin_struct("s");
    }
    EXPECT_THROW(encoder.begin_array("one too many"), std::invalid_argument);
    for (int i = 0; i < 32; ++i) {
        encoder.end_struct();
    }
    EXPECT_EQ(decode_whole(encoder.finish()).tokens.size(), 65U);
}

TEST(BagEncoder, RefusesWhatABagCannotHold) {
    EXPECT_THROW(Encoder(std::string(240, 'n'), 1, 0), std::invalid_argument);
    EXPECT_THROW(Encoder(std::string("a\0b", 3), 1, 0), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).int8(std::string(65535, 'n'), 1), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).int8(std::string("\0", 1), 1), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).text("a", std::string("b\0", 2)), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).second_text("a", std::string("b\0", 2)), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).opaque(65536, "a", ""), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).end_array(), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).begin_array("a").end_struct(), std::invalid_argument);
    EXPECT_THROW(Encoder("t", 1, 0).begin_struct("a").finish(), std::invalid_argument);
}

} // namespace
