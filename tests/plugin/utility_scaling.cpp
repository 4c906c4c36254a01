// Scaling between the units of the two models, and the two small text functions.
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using utility::Buffer;
using utility::repeated;

struct Scaling {
    std::string input;
    int factor;
    std::string text;
};

class ScalingTest : public utility::UtilityTest {};

// The result, its length, and that the rest of the output is cleared and nothing behind it touched.
void expect_low(const Scaling &scaling) {
    SCOPED_TRACE("\"" + scaling.input.substr(0, 40) + "\" times " + std::to_string(scaling.factor));
    Buffer out(200);
    EXPECT_EQ(convert_data_to_low(scaling.input.c_str(), out.data(), 200, scaling.factor),
              static_cast<int>(scaling.text.size()));
    EXPECT_EQ(out.whole(), scaling.text + repeated(200 - scaling.text.size(), '\0'));
}

void expect_high(const Scaling &scaling) {
    SCOPED_TRACE("\"" + scaling.input.substr(0, 40) + "\" by " + std::to_string(scaling.factor));
    Buffer out(20);
    EXPECT_EQ(convert_data_to_high(scaling.input.c_str(), out.data(), 20, scaling.factor),
              static_cast<int>(scaling.text.size()));
    EXPECT_EQ(out.whole(), scaling.text + repeated(20 - scaling.text.size(), '\0'));
}

TEST_F(ScalingTest, LowTruncatesTowardZero) {
    for (const Scaling &scaling : std::vector<Scaling>{{"2.5", 10, "25"},
                                                       {"12.5", 10, "125"},
                                                       {"1.25", 10, "12"},
                                                       {"0.29", 100, "28"},
                                                       {"-0.09", 10, "0"},
                                                       {"-0.05", 10, "0"},
                                                       {"-1.99", 10, "-19"},
                                                       {"-21.37", 100, "-2137"},
                                                       {"4.35", 100, "434"},
                                                       {"0", 10, "0"},
                                                       {"-0", 10, "0"},
                                                       {"7", 1, "7"},
                                                       {"7", 0, "0"},
                                                       {"7", -3, "-21"}}) {
        expect_low(scaling);
    }
}

TEST_F(ScalingTest, LowReadsNumbersAsScanfDoes) {
    for (const Scaling &scaling : std::vector<Scaling>{{"", 10, "0"},
                                                       {"abc", 10, "0"},
                                                       {"   ", 10, "0"},
                                                       {"-", 10, "0"},
                                                       {" \t\n2.5", 10, "25"},
                                                       {"2.5  ", 10, "25"},
                                                       {"2.5dB", 10, "25"},
                                                       {"2,5", 10, "20"},
                                                       {"+2.5", 10, "25"},
                                                       {".5", 10, "5"},
                                                       {"1.5e2", 10, "1500"},
                                                       {"0x1p4", 10, "160"},
                                                       {"-0x1.8p1", 10, "-30"},
                                                       {"%d%s%n", 10, "0"}}) {
        expect_low(scaling);
    }
}

TEST_F(ScalingTest, LowGivesTheLeastIntegerForWhatIsNoIntegerOf32Bits) {
    for (const Scaling &scaling : std::vector<Scaling>{{"1e300", 10, "-2147483648"},
                                                       {"-1e300", 10, "-2147483648"},
                                                       {"1e308", 100, "-2147483648"},
                                                       {"1e999", 1, "-2147483648"},
                                                       {"nan", 10, "-2147483648"},
                                                       {"-nan", 10, "-2147483648"},
                                                       {"inf", 10, "-2147483648"},
                                                       {"-inf", 10, "-2147483648"},
                                                       {"inf", 0, "-2147483648"},
                                                       {"2147483647", 1, "2147483647"},
                                                       {"2147483647.5", 1, "2147483647"},
                                                       {"2147483648", 1, "-2147483648"},
                                                       {"-2147483648", 1, "-2147483648"},
                                                       {"-2147483649", 1, "-2147483648"},
                                                       {"214748365", 10, "-2147483648"}}) {
        expect_low(scaling);
    }
}

TEST_F(ScalingTest, LowTakesAsMuchOfTheInputAsTheOutputHolds) {
    expect_low({repeated(5000, '1'), 10, "-2147483648"});
    expect_low({repeated(5000, '0'), 10, "0"});
    expect_low({"0.5" + repeated(5000, '0'), 10, "5"});
    expect_low({repeated(5000, ' ') + "5", 10, "0"});
    expect_low({repeated(198, '0') + "5", 10, "50"});
    expect_low({repeated(199, '0') + "5", 10, "0"});
    expect_low({repeated(100000, 'x'), 10, "0"});
}

TEST_F(ScalingTest, LowStaysWithinASmallOutput) {
    Buffer out(3);
    // Two digits are all that is read, and two of "120" all that is written; the length is that of the whole.
    EXPECT_EQ(convert_data_to_low("12345", out.data(), 3, 10), 3);
    EXPECT_EQ(out.whole(), std::string("12\0", 3));

    Buffer one(1);
    EXPECT_EQ(convert_data_to_low("5", one.data(), 1, 10), 1);
    EXPECT_EQ(one.whole(), std::string(1, '\0'));
}

TEST_F(ScalingTest, LowLeavesWhatIsBehindTheSizeAlone) {
    Buffer out(30);
    EXPECT_EQ(convert_data_to_low("2.5", out.data(), 20, 10), 2);
    EXPECT_EQ(out.whole(), "25" + repeated(18, '\0') + repeated(10, '#'));
}

TEST_F(ScalingTest, HighGivesTwoDecimalPlaces) {
    for (const Scaling &scaling : std::vector<Scaling>{{"-153", 10, "-15.30"},
                                                       {"-153", 100, "-1.53"},
                                                       {"125", 10, "12.50"},
                                                       {"0", 10, "0.00"},
                                                       {"5", 1000, "0.01"},
                                                       {"0.125", 1, "0.12"},
                                                       {"0.375", 1, "0.38"},
                                                       {"-2.10", 1, "-2.10"},
                                                       {"-1", 1000, "-0.00"},
                                                       {"-0", 10, "-0.00"},
                                                       {"7", -2, "-3.50"}}) {
        expect_high(scaling);
    }
}

TEST_F(ScalingTest, HighReadsNumbersAsScanfDoes) {
    for (const Scaling &scaling : std::vector<Scaling>{{"abc", 10, "0.00"},
                                                       {"", 10, "0.00"},
                                                       {"    ", 10, "0.00"},
                                                       {"  12", 10, "1.20"},
                                                       {"12 dB", 10, "1.20"},
                                                       {"1e2", 10, "10.00"},
                                                       {"0x10", 10, "1.60"},
                                                       {"0x1.8p3", 10, "1.20"},
                                                       {"nan", 10, "nan"},
                                                       {"inf", 10, "inf"},
                                                       {"-inf", 10, "-inf"}}) {
        expect_high(scaling);
    }
}

TEST_F(ScalingTest, HighCutsWhatIsLongerThanTheOutput) {
    Buffer out(20);
    // 1e300 has 301 digits before the point.
    EXPECT_EQ(convert_data_to_high("1e300", out.data(), 20, 1), 304);
    EXPECT_EQ(out.text(), "1000000000000000052");

    // Nineteen digits of the input are read; the double nearest to them is written.
    EXPECT_EQ(convert_data_to_high("123456789012345678901", out.data(), 20, 1), 22);
    EXPECT_EQ(out.text(), "1234567890123456768");

    EXPECT_EQ(convert_data_to_high(repeated(5000, '1').c_str(), out.data(), 20, 10), 21);
    EXPECT_EQ(out.text(), "111111111111111120.");

    EXPECT_EQ(convert_data_to_high((repeated(19, ' ') + "5").c_str(), out.data(), 20, 1), 4);
    EXPECT_EQ(out.text(), "0.00");

    EXPECT_EQ(convert_data_to_high(repeated(100000, 'x').c_str(), out.data(), 20, 10), 4);
    EXPECT_EQ(out.text(), "0.00");
}

TEST_F(ScalingTest, HighLeavesWhatIsBehindTheSizeAlone) {
    Buffer out(30);
    EXPECT_EQ(convert_data_to_high("-153", out.data(), 20, 10), 6);
    EXPECT_EQ(out.whole(), "-15.30" + repeated(14, '\0') + repeated(10, '#'));
}

TEST_F(ScalingTest, InputStaysAsItIs) {
    const std::string input = "12.5";
    Buffer out(200);
    EXPECT_EQ(convert_data_to_low(input.c_str(), out.data(), 200, 10), 3);
    EXPECT_EQ(input, "12.5");
    EXPECT_EQ(convert_data_to_high(input.c_str(), out.data(), 20, 10), 4);
    EXPECT_EQ(input, "12.5");
}

TEST_F(ScalingTest, TellsNothing) {
    Buffer out(200);
    EXPECT_EQ(convert_data_to_low("abc", out.data(), 200, 10), 1);
    EXPECT_EQ(convert_data_to_high("abc", out.data(), 20, 10), 4);
    EXPECT_EQ(happened(), utility::Lines{});
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

class ReplaceTest : public utility::UtilityTest {};

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
