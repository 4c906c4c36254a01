#include <array>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "decoded_bag.hpp"
#include "framework/host/service_codes.hpp"
#include "simulator/bag/encoder.hpp"
#include "simulator/bag/format.hpp"

namespace {

using ocpsm::bag::Encoder;
using ocpsm::bag::unnamed;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

// A header with a type name of one letter and the right length, then the bytes.
std::string bag_of(const std::string &tokens) {
    const std::string bytes = "BAG1\0\0\0\0\x01\0\0\0\0\0\0\0\x01t"s + tokens;
    return with_total_length(bytes, bytes.size());
}

const std::string end_token = "\x12\0\xff\xff\0\0\0\0"s;

std::string every_type() {
    return Encoder("every_type", 1, 7)
        .begin_struct("numbers")
        .int8("a", 1)
        .uint8("b", 2)
        .int16("c", 3)
        .uint16("d", 4)
        .int32("e", 5)
        .uint32("f", 6)
        .int64("g", 7)
        .uint64("h", 8)
        .ipv4("i", 10, 0, 0, 1)
        .enumeration("j", 9)
        .boolean("k", 1)
        .end_struct()
        .begin_array("texts")
        .text(unnamed, "text")
        .second_text(unnamed, "second")
        .text(unnamed, std::nullopt)
        .begin_struct(unnamed)
        .begin_array("inner")
        .end_array()
        .end_struct()
        .end_array()
        .opaque(11, "unknown", "value")
        .finish();
}

void expect_token_failure(kerrno code, const std::string &tokens) {
    const Decoded decoded = decode(bag_of(tokens));
    EXPECT_EQ(decoded.init, KERR_SUCCESS);
    EXPECT_EQ(decoded.last, code);
    EXPECT_THAT(decoded.tokens, IsEmpty());
}

TEST(HostileBag, IsRefusedWithoutItsMagic) {
    const std::string bytes = "BAG2" + bag_of(end_token).substr(4);
    bag_header_td header{};
    EXPECT_EQ(header_of(bytes, header), 0x80a54600U);
    EXPECT_STREQ(header.type_name, "");
    EXPECT_EQ(decode(bytes).init, 0x80a54600U);
}

TEST(HostileBag, IsRefusedWhenItsTypeNameIsLongerThanAHeaderMayBe) {
    std::string bytes = bag_of(end_token) + std::string(300, 'x');
    bytes = with_total_length(bytes, bytes.size());
    bytes[16] = '\xf0';
    bag_header_td header{};
    EXPECT_EQ(header_of(bytes, header), 0x80a54600U);
    EXPECT_EQ(decode(bytes).init, 0x80a54600U);
}

TEST(HostileBag, ShowsItsTypeNameUpToAZeroByte) {
    bag_header_td header{};
    ASSERT_EQ(header_of("BAG1\0\0\0\0\x01\0\0\0\0\0\0\0\x03"
                        "a\0b"s,
                        header),
              KERR_SUCCESS);
    EXPECT_STREQ(header.type_name, "a");
}

TEST(HostileBag, IsRefusedWithBytesBehindItsLength) {
    EXPECT_EQ(decode(bag_of(end_token) + "x").init, 0x80a54a00U);
}

TEST(HostileBag, IsRefusedWithBytesBehindItsEnd) {
    expect_token_failure(0x80a54a00U, end_token + "x");
}

TEST(HostileBag, IsRefusedWithoutAnEnd) {
    expect_token_failure(0x80a54800U, "");
}

TEST(HostileBag, IsRefusedWhenALengthRunsBeyondIt) {
    expect_token_failure(0x80a54800U, "\x0c\0\xff\xff\xfe\xff\xff\xff"s + end_token); // a text of 4 GB
    expect_token_failure(0x80a54800U, "\x0c\0\xfe\xff\0\0\0\0"s + end_token);         // a name of 64 kB
    expect_token_failure(0x80a54800U, "\x0c\0\0\0\x09\0\0\0"s + end_token);           // one byte too many
    expect_token_failure(0x80a54800U, "\x04\0\0\0\xff\xff\xff\xff"s + end_token);     // no text, so not null either
    expect_token_failure(0x80a54800U, "\x63\0\0\0\xff\xff\xff\xff"s + end_token);     // of an unknown type
}

TEST(HostileBag, IsRefusedWhenAnIntegerHasAnotherSize) {
    const std::array<char, 11> sizes{1, 1, 2, 2, 4, 4, 8, 8, 4, 4, 4}; // of the types 0 to 10
    for (std::size_t type = 0; type < sizes.size(); ++type) {
        for (const int difference : {-1, 1}) {
            const auto size = static_cast<char>(sizes.at(type) + difference);
            expect_token_failure(0x80a54a00U, std::string{static_cast<char>(type), 0, 0, 0, size, 0, 0, 0} +
                                                  std::string(static_cast<std::size_t>(size), 'x') + end_token);
        }
    }
}

TEST(HostileBag, IsRefusedWhenAStartOrEndHasAValue) {
    for (const char type : {'\x0e', '\x10'}) {
        expect_token_failure(0x80a54a00U, std::string{type, 0, 0, 0, 1, 0, 0, 0, 'x'} + end_token);
    }
    expect_token_failure(0x80a54a00U, "\x12\0\0\0\x01\0\0\0x"s);
}

TEST(HostileBag, IsRefusedWithAZeroByteInATextOrName) {
    expect_token_failure(0x80a54a00U, "\x0c\0\0\0\x03\0\0\0a\0b"s + end_token);
    expect_token_failure(0x80a54a00U, "\x0d\0\0\0\x01\0\0\0\0"s + end_token);
    expect_token_failure(0x80a54a00U, "\x00\0\x01\0\x01\0\0\0\0\x05"s + end_token);
    // Both at once: the name is there already when the text fails.
    expect_token_failure(0x80a54a00U, "\x0c\0\x01\0\x01\0\0\0n\0"s + end_token);
}

TEST(HostileBag, IsRefusedWhenItsNestingDoesNotCloseItself) {
    const std::string array_start = "\x0e\0\xff\xff\0\0\0\0"s;
    const std::string array_end = "\x0f\0\xff\xff\0\0\0\0"s;
    const std::string struct_end = "\x11\0\xff\xff\0\0\0\0"s;
    expect_token_failure(0x80a54a00U, array_end + end_token);
    expect_token_failure(0x80a54a00U, struct_end + end_token);
    for (const std::string &second : {struct_end, end_token}) {
        const Decoded decoded = decode(bag_of(array_start + second));
        EXPECT_EQ(decoded.last, 0x80a54a00U);
        EXPECT_THAT(decoded.tokens, ElementsAre(Token{14, {}, 0, {}}));
    }
}

TEST(HostileBag, IsRefusedWhenItIsNestedTooDeeply) {
    std::string tokens;
    for (int i = 0; i < 1000; ++i) {
        tokens += "\x10\0\xff\xff\0\0\0\0"s;
    }
    const Decoded decoded = decode(bag_of(tokens));
    EXPECT_EQ(decoded.last, 0x80a54c00U);
    EXPECT_EQ(decoded.tokens.size(), 32U);
}

TEST(HostileBag, IsTruncatedWhereverItIsCut) {
    const std::string whole = every_type();
    ASSERT_EQ(decode(whole).last, KERR_SUCCESS);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(decode(whole.substr(0, size)).init, 0x80a54800U) << size;
    }
}

TEST(HostileBag, IsTruncatedWhereverItIsCutThoughItsHeaderSaysOtherwise) {
    const std::string whole = every_type();
    for (std::size_t size = 8; size < whole.size(); ++size) {
        const Decoded decoded = decode(with_total_length(whole.substr(0, size), size));
        EXPECT_EQ(decoded.init == KERR_SUCCESS ? decoded.last : decoded.init, 0x80a54800U) << size;
    }
}

TEST(HostileBag, EndsWithASuccessOrACodeWhateverByteIsWrong) {
    const std::set<kerrno> codes{KERR_SUCCESS, 0x80a54600U, 0x80a54800U, 0x80a54a00U, 0x80a54c00U};
    const std::string whole = every_type();
    for (std::size_t position = 0; position < whole.size(); ++position) {
        std::string bytes = whole;
        for (int change = 1; change < 256; ++change) {
            bytes[position] = static_cast<char>(whole[position] ^ change);
            const Decoded decoded = decode(bytes);
            const kerrno result = decoded.init == KERR_SUCCESS ? decoded.last : decoded.init;
            ASSERT_EQ(codes.count(result), 1U) << position << " " << change;
            ASSERT_TRUE(result != KERR_SUCCESS || decoded.tokens.back().type == BAG_TOKEN_END);
        }
    }
}

TEST(HostileBag, HeaderIsReadWhateverByteIsWrong) {
    const std::string whole = every_type();
    for (std::size_t position = 0; position < 27; ++position) {
        for (int change = 1; change < 256; ++change) {
            std::string bytes = whole;
            bytes[position] = static_cast<char>(whole[position] ^ change);
            bag_header_td header{};
            const kerrno expected = position < 4 || (position == 16 && static_cast<unsigned char>(bytes[16]) > 239)
                                        ? 0x80a54600U
                                        : KERR_SUCCESS;
            ASSERT_EQ(header_of(bytes, header), expected) << position << " " << change;
            ASSERT_LT(std::string(header.type_name).size(), 64U);
        }
    }
}

TEST(BagDecoder, RefusesNullArguments) {
    bag_header_td header{};
    bag_generic_state_td state = nullptr;
    bag_token_td token{};
    const std::string bytes = bag_of(end_token);
    EXPECT_EQ(bag_header_info(nullptr, &header), 0x80a54200U);
    EXPECT_EQ(bag_header_info(bytes.data(), nullptr), 0x80a54200U);
    EXPECT_EQ(bag_generic_init(nullptr, 0, &state), 0x80a54200U);
    EXPECT_EQ(bag_generic_init(bytes.data(), 26, nullptr), 0x80a54200U);
    EXPECT_EQ(bag_generic_token(nullptr, &token), 0x80a54200U);
    ASSERT_EQ(bag_generic_init(bytes.data(), 26, &state), KERR_SUCCESS);
    EXPECT_EQ(bag_generic_token(state, nullptr), 0x80a54200U);
    bag_generic_destroy(state);
    bag_generic_destroy(nullptr);
    bag_generic_free_token_allocations(nullptr);
}

TEST(BagDecoder, LeavesNothingToReleaseTwice) {
    const std::string bytes = Encoder("t", 1, 0).text("a", "b").finish();
    bag_generic_state_td state = nullptr;
    bag_token_td token{};
    ASSERT_EQ(bag_generic_init(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &state), KERR_SUCCESS);
    ASSERT_EQ(bag_generic_token(state, &token), KERR_SUCCESS);
    bag_generic_destroy(state);
    EXPECT_STREQ(token.value.text, "b"); // a token outlives its decoder
    bag_generic_free_token_allocations(&token);
    EXPECT_EQ(token.name, nullptr);
    EXPECT_EQ(token.value.text, nullptr);
    bag_generic_free_token_allocations(&token);
}

} // namespace
