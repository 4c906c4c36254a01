#include "framework/request/syntax.hpp"

#include <gtest/gtest.h>

#include "dump.hpp"

namespace {

using ocpsm::framework::inspect;
using ocpsm::framework::Syntax;

const std::string malformed = "input|malformed-message||";
const std::string parser_advice = "|check the request with a parser";

std::string refusal(const std::string &text) {
    return error_of([&text] { (void)inspect(text); });
}

std::string repeated(const std::string &text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

TEST(RequestSyntax, TellsXmlFromJsonBehindWhatMayStandInFront) {
    EXPECT_EQ(inspect("<a/>").syntax, Syntax::xml);
    EXPECT_EQ(inspect("\xef\xbb\xbf \n<?xml version=\"1.0\"?>\n<!-- -> <b> -->\n<a/>").body, "<a/>");
    EXPECT_EQ(inspect(" {\"a\":1}\n ").syntax, Syntax::json);
}

TEST(RequestSyntax, OtherTextsAreRefused) {
    const std::string advice = "|an XML request begins with <, a JSON request with {";
    EXPECT_EQ(refusal(""), malformed + "the request is empty" + advice);
    EXPECT_EQ(refusal(" \n"), malformed + "the request is empty" + advice);
    EXPECT_EQ(refusal("aps"), malformed + "the request is neither XML nor JSON" + advice);
    EXPECT_EQ(refusal("[1]"), malformed + "the request is neither XML nor JSON" + advice);
    EXPECT_EQ(refusal("\x7f"
                      "ELF\x02\x01"),
              malformed + "the request is neither XML nor JSON" + advice);
}

TEST(RequestSyntax, AByteZeroIsRefusedBecauseParsersStopThere) {
    EXPECT_EQ(refusal(std::string("<a/>\0<b/>", 9)), malformed + "the request holds a byte 0" + parser_advice);
}

TEST(RequestSyntax, ADocumentTypeIsRefused) {
    const std::string text = malformed + "the request has a document type declaration" + parser_advice;
    EXPECT_EQ(refusal("<!DOCTYPE a [<!ENTITY b \"c\">]><a/>"), text);
    EXPECT_EQ(refusal("<?xml version='1.0'?> <!DOCTYPE a><a/>"), text);
    EXPECT_EQ(refusal("<a><!DOCTYPE a></a>"), text);
}

TEST(RequestSyntax, SizeHasALimit) {
    EXPECT_EQ(refusal("<a>" + std::string(8U << 20U, ' ') + "</a>"),
              "input|too-big||the request has more than 8 MiB|send it in pieces");
    EXPECT_EQ(refusal("<a>" + std::string((8U << 20U) - 7, ' ') + "</a>"), "nothing");
}

TEST(RequestSyntax, DepthHasALimit) {
    const std::string text = "input|too-big||the request is nested deeper than 64 levels|the model needs eight";
    EXPECT_EQ(refusal(repeated("<a>", 64) + repeated("</a>", 64)), "nothing");
    EXPECT_EQ(refusal(repeated("<a>", 65) + repeated("</a>", 65)), text);
    EXPECT_EQ(refusal(repeated("{\"a\":", 64) + "1" + repeated("}", 64)), "nothing");
    EXPECT_EQ(refusal(repeated("{\"a\":", 65) + "1" + repeated("}", 65)), text);
    EXPECT_EQ(refusal("{\"a\":" + repeated("[", 100000)), text);
}

TEST(RequestSyntax, DepthCountsElementsOnly) {
    EXPECT_EQ(refusal("<a>" + repeated("<!-- <b> --><![CDATA[<b>]]><?p <b>?><c/><d x='>'></d>", 100) + "</a>"),
              "nothing");
    EXPECT_EQ(refusal("{\"a\":\"" + repeated("\\\"{[", 100) + "\"}"), "nothing");
}

TEST(RequestSyntax, WhatIsCutOffIsRefused) {
    EXPECT_EQ(refusal("<a"), malformed + "the request ends in the middle of a tag" + parser_advice);
    EXPECT_EQ(refusal("<a b='"), malformed + "the request ends in the middle of a tag" + parser_advice);
    EXPECT_EQ(refusal("<!-- a"), malformed + "the request ends in the middle of markup" + parser_advice);
    EXPECT_EQ(refusal("<a><![CDATA["), malformed + "the request ends in the middle of markup" + parser_advice);
    EXPECT_EQ(refusal("<a><b></b>"), malformed + "the request ends in the middle of an element" + parser_advice);
    EXPECT_EQ(refusal("<?xml"), malformed + "the request ends in the middle of markup" + parser_advice);
    EXPECT_EQ(refusal("{\"a\":{}"), malformed + "the request ends in the middle of a JSON object" + parser_advice);
    EXPECT_EQ(refusal("{\"a"), malformed + "the request ends in the middle of a string" + parser_advice);
    EXPECT_EQ(refusal("{\"a\\"), malformed + "the request ends in the middle of a string" + parser_advice);
}

TEST(RequestSyntax, AnEndWithoutBeginningIsRefused) {
    EXPECT_EQ(refusal("<a/></request><b/>"),
              malformed + "the request ends an element that it has not begun" + parser_advice);
}

TEST(RequestSyntax, NothingMayStandBehindAJsonObject) {
    EXPECT_EQ(refusal("{} {}"), malformed + "something stands behind the JSON object" + parser_advice);
    EXPECT_EQ(refusal("{\"a\":1}x"), malformed + "something stands behind the JSON object" + parser_advice);
}

} // namespace
