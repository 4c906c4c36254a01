// The printed forms of texts that a case file cannot hold.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

// An edit that locks out `value` in the slot of the node `node`.
ocpsm::native::NetRequest lockout(std::string_view node, std::string_view value) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, node, merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(psm_path + "/lockout-from", ots, value, merge, false, 1);
    return request.net();
}

std::string between(const std::string &text, const std::string &before, const std::string &after) {
    const std::size_t start = text.find(before) + before.size();
    return text.substr(start, text.find(after, start) - start);
}

std::string xml_value(std::string_view value) {
    return between(lockout("n", value).to_xml(), "<lockout-from>", "</lockout-from>");
}

std::string refusal(std::string_view node, std::string_view value) {
    return error_of([&] { static_cast<void>(lockout(node, value).to_xml()); });
}

TEST(Printing, XmlCarriesEveryCharacterOfXml) {
    const std::string text =
        "\xc2\x80 \xc3\xa9 \xe2\x82\xac \xed\x9f\xbf \xee\x80\x80 \xef\xbf\xbd \xf0\x90\x80\x80 \xf4\x8f\xbf\xbf";
    EXPECT_EQ(xml_value(text), text);
}

TEST(Printing, XmlRefusesWhatItCannotCarry) {
    const std::string at =
        "refused invalid-value at /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from: '";
    const std::string why = "' holds characters that XML cannot carry";
    EXPECT_EQ(refusal("n", std::string_view("a\0b", 3)), at + "a\\x00b" + why);
    EXPECT_EQ(refusal("n", "\x1f"), at + "\\x1f" + why);
    EXPECT_EQ(refusal("n", "x\xff"), at + "x\\xff" + why);
    for (const char *broken : {"\x01",
                               "\x80",
                               "\xc0\x80",
                               "\xc1\xbf",
                               "\xc3",
                               "\xe2\x82",
                               "\xe0\x80\x80",
                               "\xe0\x81\x81",
                               "\xe0\x9f\xbf",
                               "\xf0\x80\x81\x81",
                               "\xef\xbf\xbe",
                               "\xef\xbf\xbf",
                               "\xf0\x8f\xbf\xbd",
                               "\xed\xa0\x80",
                               "\xf0\x80\x80\x80",
                               "\xf4\x90\x80\x80",
                               "\xf5\x80\x80\x80",
                               "\xc3(",
                               "\xe2\x82(",
                               "\xff"}) {
        const std::string error = refusal("n", broken);
        EXPECT_TRUE(error.starts_with(at) && error.ends_with(why)) << error;
    }
}

TEST(Printing, LongTextsArePrintedWholeAndCutInMessages) {
    const std::string text(100000, 'x');
    EXPECT_EQ(xml_value(text), text);
    EXPECT_EQ(between(lockout("n", text).to_json(), "\"lockout-from\": \"", "\""), text);
    EXPECT_EQ(refusal(text, text + "\x01"), "refused invalid-value at /active-nodes/active-node[node-name='" + text +
                                                "']/slot[slot-id='1']/psm/lockout-from: '" + std::string(80, 'x') +
                                                "...' holds characters that XML cannot carry");
}

} // namespace
} // namespace native_test
