#include "framework/native/native_data.hpp"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "native/native_test.hpp"
#include "native/shown_data.hpp"

namespace {

using native_test::history_path;
using native_test::ifmgr;
using native_test::info_path;
using native_test::interface_path;
using native_test::mda;
using native_test::merge;
using native_test::none;
using native_test::optics;
using native_test::optics_path;
using native_test::ots;
using native_test::ots_oper;
using native_test::port_path;
using native_test::psm_path;
using native_test::read;
using native_test::Request;
using native_test::shown;
using native_test::slot_path;
using native_test::threshold_path;
using ocpsm::models::Schema;
using ocpsm::native::answer;
using ocpsm::native::DataNode;
using ocpsm::native::NativeData;

DataNode leaf(const std::string &path, const std::string &value) {
    return {Schema::native().find(path), value, {}};
}

DataNode node(const std::string &path, std::vector<DataNode> children) {
    return {Schema::native().find(path), std::nullopt, std::move(children)};
}

DataNode threshold(const std::string &type, const std::string &value) {
    return node(threshold_path,
                {leaf(threshold_path + "/rx-threshold-type", type), leaf(threshold_path + "/rx-threshold", value)});
}

DataNode interface(const std::string &active, const std::string &name, std::vector<DataNode> content) {
    std::vector<DataNode> children{leaf(interface_path + "/active", active),
                                   leaf(interface_path + "/interface-name", name)};
    if (!content.empty()) {
        children.push_back(node(optics_path, std::move(content)));
    }
    return node(interface_path, std::move(children));
}

DataNode port(const std::string &name, const std::string &power) {
    return node(port_path,
                {leaf(port_path + "/name", name),
                 node(info_path, {node(info_path + "/lane-data", {leaf(info_path + "/lane-data/transmit-power", power),
                                                                  leaf(info_path + "/lane-data/receive-power", power)}),
                                  leaf(info_path + "/port-status", "active")})});
}

// Three interfaces, the last without settings, and two ports.
NativeData held() {
    return {{node("/interface-configurations",
                  {interface("act", "one",
                             {node(optics_path + "/rx-thresholds", {threshold("high", "5"), threshold("low", "-10")}),
                              leaf(optics_path + "/optics-ots-rx-voa-attenuation", "11"),
                              leaf(optics_path + "/optics-ots-tx-voa-attenuation", "12")}),
                   interface("act", "two", {leaf(optics_path + "/optics-ots-rx-voa-attenuation", "21")}),
                   interface("pre", "three", {})}),
             node("/ots-oper", {node("/ots-oper/ots-ports", {port("one", "-1"), port("two", "-2")})})}};
}

const std::string one_whole = "  interface-configuration\n"
                              "    active=|act|\n"
                              "    interface-name=|one|\n"
                              "    optics\n"
                              "      rx-thresholds\n"
                              "        rx-threshold\n"
                              "          rx-threshold-type=|high|\n"
                              "          rx-threshold=|5|\n"
                              "        rx-threshold\n"
                              "          rx-threshold-type=|low|\n"
                              "          rx-threshold=|-10|\n"
                              "      optics-ots-rx-voa-attenuation=|11|\n"
                              "      optics-ots-tx-voa-attenuation=|12|\n";
const std::string two_keys = "  interface-configuration\n"
                             "    active=|act|\n"
                             "    interface-name=|two|\n";
const std::string two_whole = two_keys + "    optics\n"
                                         "      optics-ots-rx-voa-attenuation=|21|\n";
const std::string three_whole = "  interface-configuration\n"
                                "    active=|pre|\n"
                                "    interface-name=|three|\n";
const std::string interfaces = "interface-configurations\n";

std::string answered(const Request &request) {
    return shown(answer(held(), request.net()));
}

void name_interface(Request &request, const char *name, const char *active = "act") {
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, name, merge, false, 0);
    request.put(interface_path + "/active", ifmgr, active, merge, false, 0);
}

TEST(Answer, HoldsEveryEntryWhenNoneIsNamed) {
    Request request = read();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    EXPECT_EQ(answered(request), interfaces + one_whole + two_whole + three_whole);
}

TEST(Answer, HoldsTheEntriesThatAreNamed) {
    Request request = read();
    name_interface(request, "two");
    EXPECT_EQ(answered(request), interfaces + two_whole);
    name_interface(request, "one");
    EXPECT_EQ(answered(request), interfaces + one_whole + two_whole);
}

TEST(Answer, ComparesAllKeysThatAreNamed) {
    Request request = read();
    name_interface(request, "two", "pre");
    EXPECT_EQ(answered(request), "");
    Request by_one_key = read();
    by_one_key.put(interface_path, ifmgr, none, merge, true, 0);
    by_one_key.put(interface_path + "/active", ifmgr, "act", merge, false, 0);
    EXPECT_EQ(answered(by_one_key), interfaces + one_whole + two_whole);
}

TEST(Answer, HoldsTheUnionOfTheLeavesSelectedInAList) {
    Request request = read();
    name_interface(request, "one");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "", merge, false, 0);
    name_interface(request, "two");
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces +
                                     "  interface-configuration\n"
                                     "    active=|act|\n"
                                     "    interface-name=|one|\n"
                                     "    optics\n"
                                     "      optics-ots-rx-voa-attenuation=|11|\n"
                                     "      optics-ots-tx-voa-attenuation=|12|\n" +
                                     two_whole);
}

TEST(Answer, HoldsASelectionThatStandsInAnotherEntryThanItsOwn) {
    Request request = read();
    name_interface(request, "one");
    name_interface(request, "two");
    request.put(interface_path, ifmgr, none, merge, true, 0); // an entry without a key
    request.put(optics_path + "/optics-ots-tx-voa-attenuation", optics, "", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces +
                                     "  interface-configuration\n"
                                     "    active=|act|\n"
                                     "    interface-name=|one|\n"
                                     "    optics\n"
                                     "      optics-ots-tx-voa-attenuation=|12|\n" +
                                     two_keys);
}

TEST(Answer, HoldsTheKeysFirstAndEvenWhenNothingElseIsThere) {
    Request request = read();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(optics_path + "/optics-ots-rx-low-threshold-delta", optics, "", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces +
                                     "  interface-configuration\n"
                                     "    active=|act|\n"
                                     "    interface-name=|one|\n" +
                                     two_keys + three_whole);
}

TEST(Answer, HoldsOnlyTheKeysWhenAKeyIsSelected) {
    Request request = read();
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, "", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces +
                                     "  interface-configuration\n"
                                     "    active=|act|\n"
                                     "    interface-name=|one|\n" +
                                     two_keys + three_whole);
}

TEST(Answer, IsNotFilteredByTheValuesOfSelections) {
    Request request = read();
    name_interface(request, "two");
    request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "99", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces + two_whole);
}

TEST(Answer, HoldsNestedEntriesByTheSameRule) {
    const std::string one_low = "  interface-configuration\n"
                                "    active=|act|\n"
                                "    interface-name=|one|\n"
                                "    optics\n"
                                "      rx-thresholds\n"
                                "        rx-threshold\n"
                                "          rx-threshold-type=|low|\n"
                                "          rx-threshold=|-10|\n";
    Request request = read();
    name_interface(request, "one");
    name_interface(request, "two");
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces + one_low + two_keys);
    request.put(threshold_path + "/rx-threshold", optics, "", merge, false, 0);
    EXPECT_EQ(answered(request), interfaces + one_low + two_keys);
    Request all = read();
    name_interface(all, "one");
    all.put(threshold_path + "/rx-threshold", optics, "", merge, false, 0);
    EXPECT_EQ(answered(all), interfaces + "  interface-configuration\n"
                                          "    active=|act|\n"
                                          "    interface-name=|one|\n"
                                          "    optics\n"
                                          "      rx-thresholds\n"
                                          "        rx-threshold\n"
                                          "          rx-threshold-type=|high|\n"
                                          "          rx-threshold=|5|\n"
                                          "        rx-threshold\n"
                                          "          rx-threshold-type=|low|\n"
                                          "          rx-threshold=|-10|\n");
}

TEST(Answer, HoldsAContainerWholeThatIsSelected) {
    Request request = read();
    request.put(port_path + "/name", ots_oper, "two", merge, true, 0);
    request.put(info_path + "/lane-data", ots_oper, none, merge, false, 0);
    EXPECT_EQ(answered(request), "ots-oper\n"
                                 "  ots-ports\n"
                                 "    ots-port\n"
                                 "      name=|two|\n"
                                 "      ots-info\n"
                                 "        lane-data\n"
                                 "          transmit-power=|-2|\n"
                                 "          receive-power=|-2|\n");
    Request top = read();
    top.put("/interface-configurations", ifmgr, none, merge, false, 0);
    EXPECT_EQ(answered(top), interfaces + one_whole + two_whole + three_whole);
}

TEST(Answer, HoldsSeveralModelsInTheOrderOfWhatIsHeld) {
    Request request = read();
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 0);
    name_interface(request, "three", "pre");
    EXPECT_EQ(answered(request), interfaces + three_whole +
                                     "ots-oper\n"
                                     "  ots-ports\n"
                                     "    ots-port\n"
                                     "      name=|one|\n"
                                     "      ots-info\n"
                                     "        port-status=|active|\n"
                                     "    ots-port\n"
                                     "      name=|two|\n"
                                     "      ots-info\n"
                                     "        port-status=|active|\n");
}

TEST(Answer, HoldsNothingOfWhatIsNotThere) {
    Request request = read();
    name_interface(request, "four");
    EXPECT_EQ(answered(request), "");
    request.put(slot_path + "/slot-id", ots, "1", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "", merge, false, 0);
    request.put(history_path + "/name", native_test::pm, "one", merge, true, 0);
    EXPECT_EQ(answered(request), "");
    EXPECT_EQ(answered(read()), "");
    EXPECT_EQ(shown(answer(NativeData{}, request.net())), "");
}

// The empty text is a value like any other, and says nothing in a key.
TEST(Answer, HoldsEmptyTexts) {
    const NativeData data{
        {node("/active-nodes", {node("/active-nodes/active-node",
                                     {leaf("/active-nodes/active-node/node-name", ""),
                                      node(slot_path, {leaf(slot_path + "/slot-id", "1"),
                                                       node(psm_path, {leaf(psm_path + "/lockout-from", "")})})})})}};
    Request request = read();
    request.put("/active-nodes/active-node/node-name", mda, "", merge, true, 0);
    request.put(psm_path + "/lockout-from", ots, "", merge, false, 0);
    EXPECT_EQ(shown(answer(data, request.net())), "active-nodes\n"
                                                  "  active-node\n"
                                                  "    node-name=||\n"
                                                  "    slot\n"
                                                  "      slot-id=|1|\n"
                                                  "      psm\n"
                                                  "        lockout-from=||\n");
}

} // namespace
