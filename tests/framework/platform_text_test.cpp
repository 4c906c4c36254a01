#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>

#include "framework/host/codes.hpp"
#include "hvs_dt.h"
#include "hvs_libc.h"
#include "kerr.h"
#include "yfw_map.h"

namespace {

// A call with a buffer of eight "#", whether it says that it has not done all, and the buffer then.
struct Bounded {
    const char *what;
    std::function<int(char *)> call;
    bool cut;
    std::string_view buffer;
};

using namespace std::string_view_literals;

const std::array<char, 2> unterminated{'x', 'y'};

const Bounded bounded[] = {
    {"a copy", [](char *to) { return yfw_strcpy_s(to, 4, "abc"); }, false, "abc\0####"sv},
    {"a copy that is cut", [](char *to) { return yfw_strcpy_s(to, 4, "abcd"); }, true, "abc\0####"sv},
    {"a copy to nothing", [](char *) { return yfw_strcpy_s(nullptr, 4, "abc"); }, true, "########"sv},
    {"a copy without room", [](char *to) { return yfw_strcpy_s(to, 0, "abc"); }, true, "########"sv},
    {"a copy of nothing", [](char *to) { return yfw_strcpy_s(to, 4, nullptr); }, true, "\0#######"sv},
    {"a counted copy", [](char *to) { return yfw_strncpy_s(to, 8, "abcdef", 2); }, false, "ab\0#####"sv},
    {"a counted copy that is cut", [](char *to) { return yfw_strncpy_s(to, 3, "abcdef", 5); }, true, "ab\0#####"sv},
    {"a counted copy of what has no end", [](char *to) { return yfw_strncpy_s(to, 8, unterminated.data(), 2); }, false,
     "xy\0#####"sv},
    {"an addition", [](char *to) { return yfw_strcpy_s(to, 8, "ab") + yfw_strcat_s(to, 6, "cde"); }, false,
     "abcde\0##"sv},
    {"an addition without room", [](char *to) { return yfw_strcpy_s(to, 8, "abcde") + yfw_strcat_s(to, 6, "f"); }, true,
     "abcde\0##"sv},
    {"an addition to what has no end", [](char *to) { return yfw_strcat_s(to, 4, "x"); }, true, "###\0####"sv},
    {"an addition to nothing", [](char *) { return yfw_strcat_s(nullptr, 4, "x"); }, true, "########"sv},
    {"an addition to no bytes", [](char *to) { return yfw_strcat_s(to, 0, "x"); }, true, "########"sv},
    {"a clearance", [](char *to) { return memset_s(to, 8, 'x', 3); }, false, "xxx#####"sv},
    {"a clearance beyond the room", [](char *to) { return memset_s(to, 4, 'y', 100); }, true, "yyyy####"sv},
    {"a clearance of nothing", [](char *) { return memset_s(nullptr, 4, 'y', 1); }, true, "########"sv},
};

TEST(BoundedText, StaysInItsRoomAndEnds) {
    for (const Bounded &row : bounded) {
        std::string buffer(8, '#');
        EXPECT_EQ(row.call(buffer.data()) != 0, row.cut) << row.what;
        EXPECT_EQ(buffer, row.buffer) << row.what;
    }
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
