#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "framework/host/codes.hpp"
#include "hvs_dt.h"
#include "hvs_libc.h"
#include "kerr.h"
#include "yfw_map.h"

namespace {

struct Buffer {
    std::array<char, 8> bytes{'#', '#', '#', '#', '#', '#', '#', '#'};
    char *data() { return bytes.data(); }
    std::string all() const { return {bytes.data(), bytes.size()}; }
};

std::string bytes(const char *text, std::size_t size) {
    return {text, size};
}

TEST(BoundedCopy, CopiesWhatFits) {
    Buffer buffer;
    EXPECT_EQ(yfw_strcpy_s(buffer.data(), 4, "abc"), 0);
    EXPECT_EQ(buffer.all(), bytes("abc\0####", 8));
}

TEST(BoundedCopy, CutsAndTerminates) {
    Buffer buffer;
    EXPECT_NE(yfw_strcpy_s(buffer.data(), 4, "abcd"), 0);
    EXPECT_EQ(buffer.all(), bytes("abc\0####", 8));
}

TEST(BoundedCopy, TakesNullAndNoRoom) {
    Buffer buffer;
    EXPECT_NE(yfw_strcpy_s(nullptr, 4, "abc"), 0);
    EXPECT_NE(yfw_strcpy_s(buffer.data(), 0, "abc"), 0);
    EXPECT_EQ(buffer.all(), "########");
    EXPECT_NE(yfw_strcpy_s(buffer.data(), 4, nullptr), 0);
    EXPECT_EQ(buffer.all(), bytes("\0#######", 8));
}

TEST(BoundedCopy, TheCountedOneTakesAtMostTheCount) {
    Buffer buffer;
    EXPECT_EQ(yfw_strncpy_s(buffer.data(), 8, "abcdef", 2), 0);
    EXPECT_EQ(buffer.all(), bytes("ab\0#####", 8));
    EXPECT_NE(yfw_strncpy_s(buffer.data(), 3, "abcdef", 5), 0);
    EXPECT_EQ(buffer.all(), bytes("ab\0#####", 8));
    const std::array<char, 2> unterminated{'x', 'y'};
    EXPECT_EQ(yfw_strncpy_s(buffer.data(), 8, unterminated.data(), 2), 0);
    EXPECT_EQ(buffer.all(), bytes("xy\0#####", 8));
}

TEST(BoundedAppend, AppendsWhatFits) {
    Buffer buffer;
    (void)yfw_strcpy_s(buffer.data(), 8, "ab");
    EXPECT_EQ(yfw_strcat_s(buffer.data(), 6, "cde"), 0);
    EXPECT_EQ(buffer.all(), bytes("abcde\0##", 8));
    EXPECT_NE(yfw_strcat_s(buffer.data(), 6, "f"), 0);
    EXPECT_EQ(buffer.all(), bytes("abcde\0##", 8));
}

TEST(BoundedAppend, TerminatesWhatHasNoEnd) {
    Buffer buffer;
    EXPECT_NE(yfw_strcat_s(buffer.data(), 4, "x"), 0);
    EXPECT_EQ(buffer.all(), bytes("###\0####", 8));
    EXPECT_NE(yfw_strcat_s(nullptr, 4, "x"), 0);
    EXPECT_NE(yfw_strcat_s(buffer.data(), 0, "x"), 0);
}

TEST(NamedAllocation, IsACopyOfTheText) {
    char text[] = "name";
    char *copy = yfw_strdup(text, "YFW MAP");
    text[0] = 'X';
    EXPECT_STREQ(copy, "name");
    hvs_named_free(copy);
    hvs_named_free(nullptr);
    EXPECT_EQ(yfw_strdup(nullptr, "YFW MAP"), nullptr);
}

TEST(BoundedClear, WritesNothingBeyondTheRoom) {
    Buffer buffer;
    EXPECT_EQ(memset_s(buffer.data(), 8, 'x', 3), 0);
    EXPECT_EQ(buffer.all(), "xxx#####");
    EXPECT_NE(memset_s(buffer.data(), 4, 'y', 100), 0);
    EXPECT_EQ(buffer.all(), "yyyy####");
    EXPECT_NE(memset_s(nullptr, 4, 'y', 1), 0);
}

TEST(AddressText, IsADottedQuadThatIsCutWhereItMustBe) {
    const std::array<unsigned char, 4> network_order{192, 0, 2, 255};
    uint32_t address = 0;
    std::memcpy(&address, network_order.data(), sizeof address);
    std::array<char, 16> text{};
    EXPECT_EQ(inet_ntoa_r(address, text.data(), text.size()), text.data());
    EXPECT_STREQ(text.data(), "192.0.2.255");
    EXPECT_EQ(inet_ntoa_r(address, text.data(), 5), text.data());
    EXPECT_STREQ(text.data(), "192.");
    EXPECT_EQ(inet_ntoa_r(address, nullptr, 5), nullptr);
}

TEST(ErrorTexts, EveryCodeHasOne) {
    EXPECT_STREQ(kerr_strerror(KERR_SUCCESS), "success");
    EXPECT_STREQ(kerr_strerror(0x8081c200), "system database client not installed");
    EXPECT_STREQ(kerr_strerror(YMAP_ERR_UNSUPPORTED), "the node is not supported");
    EXPECT_STREQ(kerr_strerror(0xaaf2c100), "no native model has a node with this path");
    EXPECT_STREQ(kerr_strerror(0x12345678), "unknown error");
}

TEST(ErrorNames, AreThoseThatAUserSees) {
    using ocpsm::framework::name_of;
    EXPECT_EQ(name_of(0), "KERR_SUCCESS");
    EXPECT_EQ(name_of(0xaaf29e00), "YMAP_ERR_BAD_TREE");
    EXPECT_EQ(name_of(0xaaf2a000), "YMAP_ERR_INVALID_ARGS");
    EXPECT_EQ(name_of(0xaaf2ee00), "YMAP_ERR_UNSUPPORTED");
    EXPECT_EQ(name_of(0xaaf2f000), "YMAP_ERR_LIST_KEY");
    EXPECT_EQ(name_of(0xaaf2f200), "YMAP_ERR_KEY_DELETE");
    EXPECT_EQ(name_of(0xaaf2f600), "YMAP_ERR_SKIP");
    EXPECT_EQ(name_of(0xaaf2f800), "YMAP_ERR_AUGMENT_UNSUPPORTED");
    EXPECT_EQ(name_of(ocpsm::framework::leafref_mismatch), "YFW_ERR_LEAFREF");
    EXPECT_EQ(name_of(ocpsm::framework::not_served), "YFW_ERR_NOT_SERVED");
    EXPECT_EQ(name_of(0x0000002a), "0x0000002a");
}

} // namespace
