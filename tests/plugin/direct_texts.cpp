// The small text functions, and the list of controllers.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "request.hpp"
#include "utility.hpp"

namespace {

std::string repeated(std::size_t count, char character) {
    return std::string(count, character);
}

TEST(ControllerList, HoldsEveryControllerSlotBySlotAndEndsWithNull) {
    const std::vector<std::string> expected = {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1",
                                               "Ots0/2/0/2", "Ots0/3/0/1", "Ots0/3/0/2"};
    std::vector<std::string> listed;
    for (const char *const *entry = controller_psm_ots_list; *entry != nullptr; ++entry) {
        listed.emplace_back(*entry);
    }
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(sizeof controller_psm_ots_list, 7 * sizeof(const char *));
}

// ---- strstrip ----

struct Stripped {
    std::string text;
    std::string result;   // what the result points to
    std::string in_place; // what the text is afterwards
    std::size_t skipped;  // how far the result is into the text
};

TEST(Strstrip, CutsTrailingBlanksInPlaceAndSkipsLeadingOnes) {
    for (const Stripped &expected : std::vector<Stripped>{
             {"  a b  ", "a b", "  a b", 2},
             {"a b", "a b", "a b", 0},
             {"a", "a", "a", 0},
             {" a", "a", " a", 1},
             {"a ", "a", "a", 0},
             {"", "", "", 0},
             {" ", "", "", 0},
             {"     ", "", "", 0},
             {" \t\n\v\f\r-2.10 \t\n\v\f\r", "-2.10", " \t\n\v\f\r-2.10", 6},
             {" \t\n\v\f\r", "", "", 0},
             // Bytes above 127 are no blanks, whatever the sign of a character.
             {" \xa0\xe9 \xff ", "\xa0\xe9 \xff", " \xa0\xe9 \xff", 1},
             {"\x85", "\x85", "\x85", 0},
             {"\x01 \x7f", "\x01 \x7f", "\x01 \x7f", 0},
         }) {
        SCOPED_TRACE("\"" + expected.text + "\"");
        std::vector<char> text(expected.text.begin(), expected.text.end());
        text.push_back('\0');
        char *const result = strstrip(text.data());
        EXPECT_STREQ(result, expected.result.c_str());
        EXPECT_STREQ(text.data(), expected.in_place.c_str());
        EXPECT_EQ(result - text.data(), static_cast<std::ptrdiff_t>(expected.skipped));
    }
}

TEST(Strstrip, TakesTextsOfAnyLength) {
    std::string text = repeated(100000, ' ') + "x" + repeated(100000, '\t');
    EXPECT_STREQ(strstrip(text.data()), "x");
    std::string blank = repeated(100000, ' ');
    EXPECT_STREQ(strstrip(blank.data()), "");
    EXPECT_EQ(blank[0], '\0');
}

// ---- replace_str ----

using ReplaceTest = fake::RequestTest;

TEST_F(ReplaceTest, ReplacesTheFirstOccurrenceOnly) {
    EXPECT_STREQ(replace_str("0/1-PSM-OM", "/", "%2f"), "0%2f1-PSM-OM");
    EXPECT_STREQ(replace_str("a/b/c", "/", "%2f"), "a%2fb/c");
    EXPECT_STREQ(replace_str("/ab", "/", "-"), "-ab");
    EXPECT_STREQ(replace_str("ab/", "/", "-"), "ab-");
    EXPECT_STREQ(replace_str("/", "/", ""), "");
    EXPECT_STREQ(replace_str("one two three", "two", "2"), "one 2 three");
    EXPECT_STREQ(replace_str("aab", "ab", "c"), "ac");
    EXPECT_STREQ(replace_str("100%s/%n", "/", "%d"), "100%s%d%n");
}

TEST_F(ReplaceTest, GivesATextWithoutThePatternBack) {
    const std::string text = "PSM-1";
    EXPECT_EQ(replace_str(text.c_str(), "/", "%2f"), text.c_str());
    EXPECT_EQ(text, "PSM-1");
    const std::string empty;
    EXPECT_EQ(replace_str(empty.c_str(), "/", "%2f"), empty.c_str());
    const std::string longer(100000, 'a');
    EXPECT_EQ(replace_str(longer.c_str(), "/", "%2f"), longer.c_str());
}

TEST_F(ReplaceTest, KeepsTheResultUntilTheNextReplacement) {
    const char *const first = replace_str("0/1-PSM-OM", "/", "%2f");
    EXPECT_STREQ(replace_str("PSM-1", "/", "%2f"), "PSM-1");
    EXPECT_STREQ(first, "0%2f1-PSM-OM");
    const char *const second = replace_str("0/2", "/", "-");
    EXPECT_EQ(second, first);
    EXPECT_STREQ(first, "0-2");
}

TEST_F(ReplaceTest, StaysWithinItsBuffer) {
    // 4,095 characters and the terminator.
    EXPECT_EQ(replace_str((repeated(4090, 'a') + "/bbbbbbbbbb").c_str(), "/", "%2f"),
              repeated(4090, 'a') + "%2f" + "bb");
    EXPECT_EQ(replace_str((repeated(4094, 'a') + "/b").c_str(), "/", "%2f"), repeated(4094, 'a') + "%");
    EXPECT_EQ(replace_str((repeated(4095, 'a') + "/b").c_str(), "/", "%2f"), repeated(4095, 'a'));
    EXPECT_EQ(replace_str((repeated(100000, 'a') + "/b").c_str(), "/", "%2f"), repeated(4095, 'a'));
    EXPECT_EQ(replace_str(("/" + repeated(100000, 'b')).c_str(), "/", "%2f"), "%2f" + repeated(4092, 'b'));
    EXPECT_EQ(replace_str("a/b", "/", repeated(100000, 'r').c_str()), "a" + repeated(4094, 'r'));
    EXPECT_EQ(replace_str("a/b", "/", repeated(4093, 'r').c_str()), "a" + repeated(4093, 'r') + "b");
}

} // namespace
