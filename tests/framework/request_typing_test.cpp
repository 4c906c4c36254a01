#include "framework/request/type.hpp"

#include <gtest/gtest.h>

#include "dump.hpp"
#include "framework/request/parse.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::framework::parse_request;
using ocpsm::framework::type_request;

const std::string entry_path = "/aps/aps-modules/aps-module[name='0/2-PSM-OM']";

// The text of a request about one entry.
std::string xml(const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules><aps-module>" +
           content + "</aps-module></aps-modules></aps>";
}

std::string json(const std::string &content) {
    return R"({"openconfig-transport-line-protection:aps":{"aps-modules":{"aps-module":[{)" + content + "}]}}}";
}

// What the entry of such a request holds, typed.
std::string typed(const std::string &text, Kind kind, bool check_values = true) {
    const auto tops = type_request(parse_request(text, kind), kind, check_values);
    return dump(tops.at(0).children.at(0).children.at(0).children);
}

std::string edited(const std::string &content, bool check_values = true) {
    return typed(xml("<name>0/2-PSM-OM</name>" + content), Kind::edit, check_values);
}

std::string refusal(const std::string &text, Kind kind = Kind::edit, bool check_values = true) {
    return error_of([&] { (void)type_request(parse_request(text, kind), kind, check_values); });
}

std::string edit_refusal(const std::string &content) {
    return refusal(xml("<name>0/2-PSM-OM</name>" + content));
}

std::string json_edit_refusal(const std::string &content) {
    return refusal(json(R"("name":"0/2-PSM-OM","config":{)" + content + "}"));
}

TEST(Typing, KeysComeFirstInTheirEntry) {
    EXPECT_EQ(typed(xml("<config/><ports/><name>x</name>"), Kind::edit), "name = x\nconfig\nports\n");
    EXPECT_EQ(typed(json(R"("config":{"revertive":true},"name":"x")"), Kind::edit),
              "name = x\nconfig\n  revertive = true\n");
    EXPECT_EQ(typed(xml("<state/><config/><name>x</name>"), Kind::get), "name = x\nstate\nconfig\n");
}

TEST(Typing, OtherNodesKeepTheirOrder) {
    EXPECT_EQ(edited("<ports/><config><wait-to-restore-time>1</wait-to-restore-time><revertive>true</revertive>"
                     "</config>"),
              "name = 0/2-PSM-OM\nports\nconfig\n  wait-to-restore-time = 1\n  revertive = true\n");
}

TEST(Typing, AnEmptyElementOfAFilterIsASelection) {
    EXPECT_EQ(
        typed(xml("<name/><config><name/><revertive/><force-to-port></force-to-port></config><state/>"), Kind::get),
        "name\nconfig\n  name\n  revertive\n  force-to-port\nstate\n");
}

TEST(Typing, AJsonSelectionIsAnArrayOfNull) {
    EXPECT_EQ(typed(json(R"("name":[null],"config":{"revertive":[null],"wait-to-restore-time":[null]},"state":{})"),
                    Kind::get_config),
              "name\nconfig\n  revertive\n  wait-to-restore-time\nstate\n");
}

TEST(Typing, AValueInAReadIsAContentMatchWhateverItIs) {
    EXPECT_EQ(typed(xml("<name>x</name><config><revertive>maybe</revertive>"
                        "<primary-switch-threshold>3.50</primary-switch-threshold></config>"),
                    Kind::get),
              "name = x\nconfig\n  revertive = maybe\n  primary-switch-threshold = 3.5\n");
    EXPECT_EQ(typed(json(R"("name":"x","config":{"name":""})"), Kind::get), "name = x\nconfig\n  name = \n");
}

TEST(Typing, OperationsAreReadInXml) {
    EXPECT_EQ(edited("<config nc:operation=\"merge\"><revertive nc:operation=\"delete\"/>"
                     "<wait-to-restore-time nc:operation=\"remove\">5</wait-to-restore-time>"
                     "<force-to-port nc:operation=\"create\">NONE</force-to-port></config>"
                     "<ports nc:operation=\"replace\"/>"),
              "name = 0/2-PSM-OM\nconfig\n  revertive delete\n  wait-to-restore-time = 5 remove\n"
              "  force-to-port = NONE create\nports replace\n");
}

TEST(Typing, OperationsAreReadInJson) {
    EXPECT_EQ(typed(json(R"("name":"x","config":{"@":{"ietf-netconf:operation":"replace"},"revertive":[null],
                            "@revertive":{"ietf-netconf:operation":"delete"}})"),
                    Kind::edit),
              "name = x\nconfig replace\n  revertive delete\n");
}

TEST(Typing, OperationsAreNotInherited) {
    const auto tops =
        type_request(parse_request("<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
                                   "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" nc:operation=\"delete\">"
                                   "<aps-modules/></aps>",
                                   Kind::edit),
                     Kind::edit, true);
    EXPECT_EQ(dump(tops), "aps delete\n  aps-modules\n");
}

TEST(Typing, AnUnknownOperationIsRefused) {
    EXPECT_EQ(edit_refusal("<config nc:operation=\"none\"/>"),
              "refused|bad-attribute|" + entry_path +
                  "/config|there is no operation \"none\"|merge, replace, create, delete or remove");
}

TEST(Typing, AnOperationOutsideOfItsNamespaceIsRefused) {
    EXPECT_EQ(edit_refusal("<config operation=\"delete\"/>"),
              "refused|unknown-attribute|" + entry_path +
                  "/config|the attribute operation is not known here|the operation attribute belongs to the namespace "
                  "urn:ietf:params:xml:ns:netconf:base:1.0 (JSON: ietf-netconf:operation)");
    EXPECT_EQ(json_edit_refusal(R"("@":{"ietf-netconf:default":"x"})"),
              "refused|unknown-attribute|" + entry_path +
                  "/config|the attribute default is not known here|the operation attribute belongs to the namespace "
                  "urn:ietf:params:xml:ns:netconf:base:1.0 (JSON: ietf-netconf:operation)");
}

TEST(Typing, AReadHasNoOperations) {
    EXPECT_EQ(refusal(xml("<name>0/2-PSM-OM</name><config nc:operation=\"merge\"/>"), Kind::get),
              "refused|bad-attribute|" + entry_path + "/config|a read has no operations|leave it out, or send an edit");
}

TEST(Typing, ValuesOfAnEditAreMadeCanonical) {
    EXPECT_EQ(edited("<config><revertive>true</revertive><wait-to-restore-time>00300</wait-to-restore-time>"
                     "<primary-switch-threshold>-12.50</primary-switch-threshold>"
                     "<relative-switch-threshold> 3 </relative-switch-threshold></config>"),
              "name = 0/2-PSM-OM\nconfig\n  revertive = true\n  wait-to-restore-time = 300\n"
              "  primary-switch-threshold = -12.5\n  relative-switch-threshold = 3.0\n");
}

TEST(Typing, ValuesOfTheWrongTypeAreRefusedWithTheirPath) {
    const auto invalid = [](const std::string &leaf, const std::string &value, const std::string &expected) {
        return "refused|invalid-value|" + entry_path + "/" + leaf + "|" + value + " is not allowed|a value of type " +
               expected + " is expected";
    };
    EXPECT_EQ(edit_refusal("<config><revertive>maybe</revertive></config>"),
              invalid("config/revertive", "\"maybe\"", "boolean"));
    EXPECT_EQ(edit_refusal("<config><wait-to-restore-time>-1</wait-to-restore-time></config>"),
              invalid("config/wait-to-restore-time", "\"-1\"", "uint32 in milliseconds"));
    EXPECT_EQ(edit_refusal("<config><wait-to-restore-time>4294967296</wait-to-restore-time></config>"),
              invalid("config/wait-to-restore-time", "\"4294967296\"", "uint32 in milliseconds"));
    EXPECT_EQ(
        edit_refusal("<config><primary-switch-threshold>1.234</primary-switch-threshold></config>"),
        invalid("config/primary-switch-threshold", "\"1.234\"", "decimal64 in dBm with at most 2 fraction digits"));
    EXPECT_EQ(edit_refusal("<config><force-to-port>LEFT</force-to-port></config>"),
              invalid("config/force-to-port", "\"LEFT\"", "enumeration (NONE, PRIMARY, SECONDARY)"));
    EXPECT_EQ(edit_refusal("<ports><line-primary-in><config><target-attenuation>much</target-attenuation></config>"
                           "</line-primary-in></ports>"),
              invalid("ports/line-primary-in/config/target-attenuation", "\"much\"",
                      "decimal64 in dB with at most 2 fraction digits"));
    EXPECT_EQ(edit_refusal("<config><revertive/></config>"), invalid("config/revertive", "an empty value", "boolean"));
}

TEST(Typing, AMessageShowsALongValueShortAndOnOneLine) {
    EXPECT_EQ(edit_refusal("<config><revertive>a\nb" + std::string(5000, 'x') + "</revertive></config>"),
              "refused|invalid-value|" + entry_path + "/config/revertive|\"a b" + std::string(57, 'x') +
                  "...\" is not allowed|a value of type boolean is expected");
}

TEST(Typing, JsonValuesHaveTheFormOfTheirType) {
    const auto invalid = [](const std::string &leaf, const std::string &what, const std::string &expected) {
        return "refused|invalid-value|" + entry_path + "/config/" + leaf + "|" + what + "|a value of type " + expected +
               " is expected";
    };
    EXPECT_EQ(json_edit_refusal(R"("revertive":"true")"), invalid("revertive", "\"true\" is not allowed", "boolean"));
    EXPECT_EQ(json_edit_refusal(R"("revertive":1)"), invalid("revertive", "\"1\" is not allowed", "boolean"));
    EXPECT_EQ(json_edit_refusal(R"("wait-to-restore-time":"100")"),
              invalid("wait-to-restore-time", "\"100\" is not allowed", "uint32 in milliseconds"));
    EXPECT_EQ(json_edit_refusal(R"("wait-to-restore-time":true)"),
              invalid("wait-to-restore-time", "\"true\" is not allowed", "uint32 in milliseconds"));
    EXPECT_EQ(json_edit_refusal(R"("force-to-port":1)"),
              invalid("force-to-port", "\"1\" is not allowed", "enumeration (NONE, PRIMARY, SECONDARY)"));
    EXPECT_EQ(json_edit_refusal(R"("revertive":[null])"), invalid("revertive", "revertive has no value", "boolean"));
    EXPECT_EQ(typed(json(R"("name":"x","config":{"primary-switch-threshold":"1.5","secondary-switch-threshold":2.5,
                            "wait-to-restore-time":100,"revertive":false,"force-to-port":"NONE"})"),
                    Kind::edit),
              "name = x\nconfig\n  primary-switch-threshold = 1.5\n  secondary-switch-threshold = 2.5\n"
              "  wait-to-restore-time = 100\n  revertive = false\n  force-to-port = NONE\n");
}

TEST(Typing, WithoutTheCheckValuesGoOverAsTheyAre) {
    EXPECT_EQ(edited("<config><revertive>maybe</revertive><primary-switch-threshold>1.2340</primary-switch-threshold>"
                     "<force-to-port/></config>",
                     false),
              "name = 0/2-PSM-OM\nconfig\n  revertive = maybe\n  primary-switch-threshold = 1.2340\n"
              "  force-to-port = \n");
    EXPECT_EQ(typed(json(R"("name":"x","config":{"revertive":[null],"force-to-port":""})"), Kind::edit, false),
              "name = x\nconfig\n  revertive\n  force-to-port = \n");
}

TEST(Typing, WhatIsTakenAwayNeedsNoValue) {
    EXPECT_EQ(edited("<config nc:operation=\"delete\"><revertive/></config>"),
              "name = 0/2-PSM-OM\nconfig delete\n  revertive\n");
    EXPECT_EQ(edited("<config><primary-switch-threshold nc:operation=\"remove\"/></config>"),
              "name = 0/2-PSM-OM\nconfig\n  primary-switch-threshold remove\n");
}

TEST(Typing, AnEmptyKeyHasNoValue) {
    EXPECT_EQ(typed(xml("<name/><config/>"), Kind::edit), "name\nconfig\n");
    EXPECT_EQ(typed(json(R"("name":[null])"), Kind::edit), "name\n");
}

TEST(Typing, OperationalStateIsNotChecked) {
    EXPECT_EQ(edited("<state><revertive>maybe</revertive></state>"), "name = 0/2-PSM-OM\nstate\n  revertive = maybe\n");
}

TEST(Typing, NodesThatTheModelDoesNotKnowStay) {
    EXPECT_EQ(edited("<config><colour>red</colour><a xmlns=\"urn:x\"><b>1</b><c/></a></config>"),
              "name = 0/2-PSM-OM\nconfig\n  colour = red\n  a {urn:x}\n    b {urn:x} = 1\n    c {urn:x}\n");
    EXPECT_EQ(typed(json(R"("name":"x","vendor:a":{"b":1})"), Kind::get), "name = x\na {vendor}\n  b {vendor} = 1\n");
}

TEST(Typing, AKnownNameInAnotherNamespaceIsRefused) {
    const std::string expected = "refused|unknown-namespace|" + entry_path +
                                 "/config/revertive|revertive is in the namespace urn:x, the model's is in "
                                 "http://openconfig.net/yang/optical-transport-line-protection|";
    const std::string text = "<name>0/2-PSM-OM</name><config><revertive xmlns=\"urn:x\">true</revertive></config>";
    EXPECT_EQ(refusal(xml(text)), expected);
    EXPECT_EQ(refusal(xml(text), Kind::get), expected);
}

TEST(Typing, TheTopNodeMustBeTheModels) {
    const std::string advice =
        "|the request must hold aps of namespace http://openconfig.net/yang/optical-transport-line-protection (JSON: "
        "openconfig-transport-line-protection:aps)";
    EXPECT_EQ(refusal("<aps/>"), "refused|unknown-namespace|/aps|aps is in no namespace" + advice);
    EXPECT_EQ(refusal("<aps xmlns='urn:x'/>"), "refused|unknown-namespace|/aps|aps is in the namespace urn:x" + advice);
    EXPECT_EQ(refusal(R"({"m:aps":{}})"), "refused|unknown-namespace|/aps|aps is in the namespace m" + advice);
    EXPECT_EQ(refusal("<x xmlns='http://openconfig.net/yang/optical-transport-line-protection'/>"),
              "refused|unknown-element|/x|the model has no top node x" + advice);
}

TEST(Typing, AContainerHasNoValueAndALeafNothingBelow) {
    EXPECT_EQ(edit_refusal("<config>\n text \n</config>"),
              "refused|invalid-value|" + entry_path +
                  "/config|config is no leaf and has no value, but \"text\" stands there|");
    EXPECT_EQ(edit_refusal("<config>text<revertive>true</revertive></config>"),
              "refused|invalid-value|" + entry_path +
                  "/config|config is no leaf and has no value, but \"text\" stands there|");
    EXPECT_EQ(edit_refusal("<config><revertive><x/></revertive></config>"),
              "refused|invalid-value|" + entry_path +
                  "/config/revertive|revertive is a leaf and has nothing below it|");
}

TEST(Typing, AnEditSaysANodeOnce) {
    EXPECT_EQ(edit_refusal("<config/><config/>"),
              "refused|bad-element|" + entry_path + "/config|config stands more than once|say it once");
    EXPECT_EQ(edit_refusal("<config><revertive>true</revertive><revertive>true</revertive></config>"),
              "refused|bad-element|" + entry_path + "/config/revertive|revertive stands more than once|say it once");
}

TEST(Typing, ADoubledKeyIsThePluginsQuestion) {
    EXPECT_EQ(edited("<name>again</name>"), "name = 0/2-PSM-OM\nname = again\n");
}

TEST(Typing, AKeyWithAQuoteHasAPathAllTheSame) {
    EXPECT_EQ(refusal(xml("<name>it's</name><config>x</config>")),
              "refused|invalid-value|/aps/aps-modules/aps-module[name=\"it's\"]/config|config is no leaf and has no "
              "value, but \"x\" stands there|");
}

} // namespace
