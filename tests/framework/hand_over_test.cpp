#include "framework/request/hand_over.hpp"

#include <gtest/gtest.h>

#include "dump.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::framework::RequestNode;

const std::vector<std::string> fitted{"0/1-PSM-OM", "0/3-PSM-OM"};

// "<aps ATTRIBUTES>CONTENT</aps>"
std::string aps(const std::string &attributes, const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"" +
           attributes + ">" + content + "</aps>";
}

std::string modules(const std::string &content) {
    return aps("", "<aps-modules>" + content + "</aps-modules>");
}

std::vector<RequestNode> typed(const std::string &text, Kind kind) {
    return type_request(ocpsm::framework::parse_request(text, kind), kind, true);
}

// Each tree that is handed over, separated by a line.
std::string reads(const std::string &text) {
    std::string all;
    for (const RequestNode &tree : hand_over_read(typed(text, Kind::get))) {
        all += "--\n" + dump({tree});
    }
    return all;
}

std::string edits(const std::string &text, const std::vector<std::string> &names = fitted) {
    return dump(hand_over_edit(typed(text, Kind::edit), names));
}

TEST(HandOverRead, AReadOfOneInstanceIsHandedOverAsItIs) {
    EXPECT_EQ(reads(modules("<aps-module><name>a</name><config/></aps-module>")),
              "--\naps\n  aps-modules\n    aps-module\n      name = a\n      config\n");
    EXPECT_EQ(reads(aps("", "")), "--\naps\n");
    EXPECT_EQ(reads(aps("", "<aps-modules/>")), "--\naps\n  aps-modules\n");
    EXPECT_EQ(reads(modules("<aps-module/>")), "--\naps\n  aps-modules\n    aps-module\n");
}

TEST(HandOverRead, SeveralInstancesAreHandedOverOneAtATime) {
    EXPECT_EQ(reads(modules("<aps-module><name>a</name></aps-module><other/>"
                            "<aps-module><name>b</name><state/></aps-module>")),
              "--\naps\n  aps-modules\n    aps-module\n      name = a\n    other\n"
              "--\naps\n  aps-modules\n    aps-module\n      name = b\n      state\n");
    EXPECT_EQ(reads(aps("", "<aps-modules><aps-module><name>a</name></aps-module></aps-modules>"
                            "<aps-modules><aps-module><name>b</name></aps-module></aps-modules>")),
              "--\naps\n  aps-modules\n    aps-module\n      name = a\n"
              "--\naps\n  aps-modules\n    aps-module\n      name = b\n");
    EXPECT_EQ(reads(aps("", "") + aps("", "<aps-modules/>")), "--\naps\n--\naps\n  aps-modules\n");
}

TEST(HandOverRead, ARequestForNothingIsNoTree) {
    EXPECT_EQ(reads("<filter/>"), "");
}

TEST(HandOverEdit, AnEditIsHandedOverWhole) {
    EXPECT_EQ(edits(modules("<aps-module><name>a</name><config><revertive>true</revertive></config></aps-module>"
                            "<aps-module><name>b</name><ports/></aps-module>")),
              "aps\n  aps-modules\n    aps-module\n      name = a\n      config\n        revertive = true\n"
              "    aps-module\n      name = b\n      ports\n");
    EXPECT_EQ(edits("<config/>"), "");
}

TEST(HandOverEdit, CreateGoesOverAsMerge) {
    EXPECT_EQ(edits(aps(" nc:operation='create'",
                        "<aps-modules nc:operation='create'><aps-module nc:operation='create'>"
                        "<name nc:operation='create'>a</name><config nc:operation='create'>"
                        "<revertive nc:operation='create'>true</revertive></config></aps-module></aps-modules>")),
              "aps\n  aps-modules\n    aps-module\n      name = a\n      config\n        revertive = true\n");
}

TEST(HandOverEdit, ReplaceOfALeafGoesOverAsMergeAndThatOfAContainerStays) {
    EXPECT_EQ(edits(modules("<aps-module><name>a</name><config nc:operation='replace'>"
                            "<revertive nc:operation='replace'>true</revertive></config></aps-module>")),
              "aps\n  aps-modules\n    aps-module\n      name = a\n      config replace\n        revertive = true\n");
}

TEST(HandOverEdit, DeletesAndRemovesOfNodesStay) {
    EXPECT_EQ(edits(modules("<aps-module><name>a</name><config><revertive nc:operation='delete'/></config>"
                            "<ports nc:operation='remove'/></aps-module>")),
              "aps\n  aps-modules\n    aps-module\n      name = a\n      config\n        revertive delete\n"
              "      ports remove\n");
}

TEST(HandOverEdit, BelowAnEntryToBeTakenAwayOnlyItsKeysGoOver) {
    const std::string content = "<config><revertive>true</revertive></config><name>a</name><other/></aps-module>";
    EXPECT_EQ(edits(modules("<aps-module nc:operation='delete'>" + content)),
              "aps\n  aps-modules\n    aps-module delete\n      name = a\n");
    EXPECT_EQ(edits(modules("<aps-module nc:operation='remove'>" + content)),
              "aps\n  aps-modules\n    aps-module remove\n      name = a\n");
    EXPECT_EQ(edits(modules("<aps-module nc:operation='delete'><config/></aps-module>")),
              "aps\n  aps-modules\n    aps-module delete\n");
}

TEST(HandOverEdit, AReplacedEntryFollowsItsRemoval) {
    EXPECT_EQ(edits(modules("<aps-module><name>b</name></aps-module><aps-module nc:operation='replace'><name>a</name>"
                            "<config><revertive>true</revertive></config></aps-module>")),
              "aps\n  aps-modules\n    aps-module\n      name = b\n    aps-module remove\n      name = a\n"
              "    aps-module replace\n      name = a\n      config\n        revertive = true\n");
}

TEST(HandOverEdit, AReplacedEntryWithItsKeyOnlyNeedsNoRemoval) {
    EXPECT_EQ(edits(modules("<aps-module nc:operation='replace'><name>a</name></aps-module>")),
              "aps\n  aps-modules\n    aps-module replace\n      name = a\n");
}

TEST(HandOverEdit, AnOperationOnAllModulesIsThatOperationOnEach) {
    const std::string deleted = "aps\n  aps-modules\n    aps-module delete\n      name = 0/1-PSM-OM\n"
                                "    aps-module delete\n      name = 0/3-PSM-OM\n";
    EXPECT_EQ(edits(aps(" nc:operation='delete'", "")), deleted);
    EXPECT_EQ(edits(aps("", "<aps-modules nc:operation='delete'/>")), deleted);
    EXPECT_EQ(edits(aps("", "<aps-modules nc:operation='remove'/>")),
              "aps\n  aps-modules\n    aps-module remove\n      name = 0/1-PSM-OM\n"
              "    aps-module remove\n      name = 0/3-PSM-OM\n");
    EXPECT_EQ(edits(aps(" nc:operation='merge'", "")), "aps\n");
}

TEST(HandOverEdit, AReplaceOfAllModulesReplacesThoseThatItNamesAndEmptiesTheOthers) {
    const std::string content = "<aps-module><name>0/3-PSM-OM</name><config><revertive>true</revertive></config>"
                                "</aps-module>";
    const std::string replaced =
        "aps\n  aps-modules\n    aps-module remove\n      name = 0/3-PSM-OM\n    aps-module replace\n"
        "      name = 0/3-PSM-OM\n      config\n        revertive = true\n    aps-module replace\n"
        "      name = 0/1-PSM-OM\n";
    EXPECT_EQ(edits(aps("", "<aps-modules nc:operation='replace'>" + content + "</aps-modules>")), replaced);
    EXPECT_EQ(edits(aps(" nc:operation='replace'", "<aps-modules>" + content + "</aps-modules>")), replaced);
}

TEST(HandOverEdit, AnEntryKeepsAnOperationOfItsOwnInAReplaceOfAllModules) {
    EXPECT_EQ(edits(aps("", "<aps-modules nc:operation='replace'><aps-module nc:operation='delete'><name>0/1-PSM-OM"
                            "</name></aps-module></aps-modules>")),
              "aps\n  aps-modules\n    aps-module delete\n      name = 0/1-PSM-OM\n    aps-module replace\n"
              "      name = 0/3-PSM-OM\n");
}

TEST(HandOverEdit, ADeleteOfAllModulesThatNamesSomethingIsLeftToThePlugin) {
    EXPECT_EQ(edits(aps(" nc:operation='delete'", "<aps-modules/>")), "aps delete\n  aps-modules\n");
    EXPECT_EQ(edits(aps(" nc:operation='delete'", "<aps-modules nc:operation='delete'/>")),
              "aps delete\n  aps-modules delete\n");
    EXPECT_EQ(
        edits(aps("", "<aps-modules nc:operation='remove'><aps-module><name>a</name></aps-module></aps-modules>")),
        "aps\n  aps-modules remove\n    aps-module\n      name = a\n");
}

TEST(HandOverEdit, ADeleteOfAllModulesNeedsOne) {
    EXPECT_EQ(error_of([] { (void)edits(aps(" nc:operation='delete'", ""), {}); }),
              "refused|data-missing|/aps|there is no module to delete|use the operation remove if that is no error");
    EXPECT_EQ(error_of([] { (void)edits(aps("", "<aps-modules nc:operation='delete'/>"), {}); }),
              "refused|data-missing|/aps/aps-modules|there is no module to delete|use the operation remove if that is "
              "no error");
    EXPECT_EQ(edits(aps(" nc:operation='remove'", ""), {}), "aps\n  aps-modules\n");
}

TEST(HandOverEdit, TheLeafThatAKeyRefersToCannotBeTakenAway) {
    const auto refusal = [](const std::string &operation) {
        return error_of([&operation] {
            (void)edits(modules("<aps-module><name>a</name><config><name nc:operation='" + operation +
                                "'/></config></aps-module>"));
        });
    };
    const std::string expected =
        "refused|data-missing|/aps/aps-modules/aps-module[name='a']/config/name|the key of the entry refers to this "
        "leaf (instance-required)|delete the whole entry, or leave the name";
    EXPECT_EQ(refusal("delete"), expected);
    EXPECT_EQ(refusal("remove"), expected);
}

} // namespace
