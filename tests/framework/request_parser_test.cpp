#include "framework/request/parse.hpp"

#include <gmock/gmock.h>

#include <random>

#include "dump.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/type.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::framework::parse_request;
using ocpsm::framework::WrittenNode;
using testing::StartsWith;

// One node per line: depth, {namespace}tag, form, value, then @{namespace}attribute=value.
void write(const std::vector<WrittenNode> &nodes, std::size_t depth, std::string &text) {
    constexpr std::array forms{"none", "empty", "text", "string", "number", "boolean"};
    for (const WrittenNode &node : nodes) {
        text.append(depth * 2, ' ').append("{").append(node.namespace_uri).append("}").append(node.tag);
        text.append(" ").append(forms.at(static_cast<std::size_t>(node.form)));
        text.append(node.value.empty() ? "" : " ").append(node.value);
        for (const auto &attribute : node.attributes) {
            text.append(" @{" + attribute.namespace_uri + "}" + attribute.name + "=" + attribute.value);
        }
        text.append("\n");
        write(node.children, depth + 1, text);
    }
}

std::string parsed(const std::string &text, Kind kind = Kind::edit) {
    std::string written;
    write(parse_request(text, kind), 0, written);
    return written;
}

std::string refusal(const std::string &text, Kind kind = Kind::edit) {
    return error_of([&] { (void)parse_request(text, kind); });
}

TEST(XmlRequest, KeepsOrderNamespacesAttributesAndValues) {
    EXPECT_EQ(parsed(R"(<?xml version="1.0" encoding="UTF-8"?><!-- c -->
        <a xmlns="urn:a" xmlns:n="urn:n"><z> 1 </z><n:y/><x n:k="v" l="w"></x><w>&lt;&#65;<![CDATA[&]]></w></a>)"),
              "{urn:a}a empty\n"
              "  {urn:a}z text  1 \n"
              "  {urn:n}y empty\n"
              "  {urn:a}x empty @{urn:n}k=v @{}l=w\n"
              "  {urn:a}w text <A&\n");
}

TEST(XmlRequest, TakesTheContentOfAFilterOrConfigInAnyForm) {
    const std::string content = "{urn:a}a empty\n{urn:b}b empty\n";
    EXPECT_EQ(parsed("<a xmlns='urn:a'/><b xmlns='urn:b'/>"), content);
    EXPECT_EQ(parsed("<config><a xmlns='urn:a'/><b xmlns='urn:b'/></config>"), content);
    EXPECT_EQ(parsed("<n:config xmlns:n='urn:ietf:params:xml:ns:netconf:base:1.0'><a xmlns='urn:a'/>"
                     "<b xmlns='urn:b'/></n:config>"),
              content);
    EXPECT_EQ(parsed("<filter type=\"subtree\"><a xmlns='urn:a'/><b xmlns='urn:b'/></filter>", Kind::get), content);
    EXPECT_EQ(parsed("<filter/>", Kind::get_config), "");
    EXPECT_EQ(parsed("<config> </config>"), "");
}

TEST(XmlRequest, ANodeInNoNamespaceStandsInThatOfTheProtocol) {
    EXPECT_EQ(parsed("<aps/>"), "{urn:ietf:params:xml:ns:netconf:base:1.0}aps empty\n");
    EXPECT_EQ(parsed("<aps xmlns=''/>"), "{}aps empty\n");
}

TEST(XmlRequest, AFilterIsNoEditAndAConfigNoRead) {
    EXPECT_EQ(refusal("<filter/>", Kind::edit),
              "input|bad-element||a <filter> is no edit|read with it, or send a <config>");
    EXPECT_EQ(refusal("<config/>", Kind::get),
              "input|bad-element||a <config> is no read|edit with it, or send a <filter>");
    EXPECT_EQ(refusal("<config/>", Kind::get_config),
              "input|bad-element||a <config> is no read|edit with it, or send a <filter>");
}

TEST(XmlRequest, OtherFiltersThanSubtreesAreRefused) {
    EXPECT_EQ(refusal("<filter type='xpath' select='/a'/>", Kind::get),
              "input|operation-not-supported||a filter with type \"xpath\" is not supported|use a subtree filter");
}

TEST(XmlRequest, AConfigHasNoAttributes) {
    EXPECT_EQ(refusal("<config operation='delete'/>"), "input|unknown-attribute||<config> has no attribute operation|"
                                                       "put an operation on the element that it is meant for");
}

TEST(XmlRequest, TextOutsideOfElementsIsRefused) {
    EXPECT_EQ(refusal("<a xmlns='urn:a'/> text"),
              "input|malformed-message||the request cannot be parsed: Invalid character sequence \"text\", expected "
              "element tag start ('<').|check the request with a parser");
    EXPECT_EQ(refusal("<![CDATA[text]]>"),
              "input|malformed-message||the request has text outside of its elements|check the request with a parser");
    EXPECT_EQ(refusal("<config>text</config>"),
              "input|malformed-message||<config> holds text|check the request with a parser");
}

TEST(XmlRequest, WhatIsNotWellFormedIsRefusedInOneLine) {
    for (const char *text : {"<a xmlns='urn:a'><b></a>", "<a xmlns='urn:a'>&foo;</a>", "<a", "<a xmlns='urn:a'/><",
                             "<n:a/>", "<a xmlns='urn:a'>\xff\xfe</a>"}) {
        const std::string error = refusal(text);
        EXPECT_THAT(error, StartsWith("input|malformed-message||")) << text;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST(JsonRequest, MembersStandInTheNamespaceOfTheirModule) {
    EXPECT_EQ(parsed(R"({"openconfig-transport-line-protection:aps":{"a":{"other:b":{"c":1}}}})"),
              "{http://openconfig.net/yang/optical-transport-line-protection}aps none\n"
              "  {http://openconfig.net/yang/optical-transport-line-protection}a none\n"
              "    {other}b none\n"
              "      {other}c number 1\n");
}

TEST(JsonRequest, TellsTheFormsOfValues) {
    EXPECT_EQ(parsed(R"({"m:a":{"s":"x","e":"","n":-1.5,"t":true,"empty":[null],"null":null,"object":{}}})"),
              "{m}a none\n"
              "  {m}s string x\n"
              "  {m}e string\n"
              "  {m}n number -1.5\n"
              "  {m}t boolean true\n"
              "  {m}empty none\n"
              "  {m}null none\n"
              "  {m}object none\n");
}

TEST(JsonRequest, EntriesOfAListAreNodes) {
    EXPECT_EQ(parsed(R"({"m:l":[{"k":"1"},{"k":"2"}]})"), "{m}l none\n  {m}k string 1\n{m}l none\n  {m}k string 2\n");
}

TEST(JsonRequest, AnnotationsBelongToTheirNode) {
    const std::string operation = " @{urn:ietf:params:xml:ns:netconf:base:1.0}operation=";
    EXPECT_EQ(parsed(R"({"m:a":{"@":{"ietf-netconf:operation":"replace"},"l":[{"@":{"ietf-netconf:operation":"remove"},
                        "k":"1"}],"b":"x","@b":{"ietf-netconf:operation":"delete"}}})"),
              "{m}a none" + operation +
                  "replace\n" //
                  "  {m}l none" +
                  operation +
                  "remove\n"
                  "    {m}k string 1\n"
                  "  {m}b string x" +
                  operation + "delete\n");
}

TEST(JsonRequest, AnAnnotationMayStandInFrontOfItsLeafOrAlone) {
    const std::string expected = "{m}a none\n  {m}b none @{urn:ietf:params:xml:ns:netconf:base:1.0}operation=delete\n";
    EXPECT_EQ(parsed(R"({"m:a":{"@b":{"ietf-netconf:operation":"delete"},"b":[null]}})"), expected);
    EXPECT_EQ(parsed(R"({"m:a":{"@b":{"ietf-netconf:operation":"delete"}}})"), expected);
}

TEST(JsonRequest, TakesTheContentOfAConfig) {
    EXPECT_EQ(parsed(R"({"ietf-netconf:config":{"m:a":{}}})"), "{m}a none\n");
}

TEST(JsonRequest, WhatIsNotWellFormedIsRefusedInOneLine) {
    for (const char *text : {R"({"a":1})", R"({"m:a":})", R"({"m:a":{"b" 1}})", R"({"m:a":"\ud83d"})", R"({"m:a":{]}})",
                             "{]", R"({"m:a":{"@":{"operation":"delete"}}})", R"({"m:a":[]})", "{\"m:a\":\"\xff\"}"}) {
        const std::string error = refusal(text);
        EXPECT_THAT(error, StartsWith("input|malformed-message||")) << text;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

// Whatever stands in a text, it is translated or refused with one error; the sanitizers watch.
TEST(HostileRequest, DamagedTextsAreReadOrRefused) {
    const std::array<std::string, 2> seeds{
        R"(<config xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0"><aps xmlns="http://openconfig.net/yang/optical-transport-line-protection"><aps-modules><aps-module nc:operation="replace"><name>0/1-PSM-OM</name><config><revertive nc:operation="delete"/><wait-to-restore-time>300</wait-to-restore-time></config></aps-module></aps-modules></aps></config>)",
        R"({"openconfig-transport-line-protection:aps":{"aps-modules":{"aps-module":[{"@":{"ietf-netconf:operation":"replace"},"name":"0/1-PSM-OM","config":{"revertive":[null],"@revertive":{"ietf-netconf:operation":"delete"},"wait-to-restore-time":300}}]}}})"};
    const std::string alphabet = "<>/&;\"'{}[]:,@!-?=\\ \n\xff\x01"
                                 "anx0";
    std::mt19937 random(7);
    const auto pick = [&random](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
    std::size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string text = seeds.at(pick(seeds.size()));
        for (std::size_t damage = 1 + pick(3); damage > 0; --damage) {
            const std::size_t at = pick(text.size());
            switch (pick(3)) {
            case 0:
                text[at] = alphabet[pick(alphabet.size())];
                break;
            case 1:
                text.erase(at, 1 + pick(8));
                break;
            default:
                text.insert(at, text.substr(pick(text.size()), pick(40)));
                break;
            }
        }
        try {
            auto tops = type_request(parse_request(text, Kind::edit), Kind::edit, true);
            (void)hand_over_edit(std::move(tops), {});
        } catch (const ocpsm::Error &error) {
            ++refused;
            EXPECT_FALSE(error.tag.empty());
            EXPECT_STRNE(error.what(), "");
        }
    }
    EXPECT_GT(refused, 1000U);
}

} // namespace
