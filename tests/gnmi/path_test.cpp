// Paths: what is read, what is refused, what matches; and errors as a client sees them.
#include <gmock/gmock.h>
#include <google/protobuf/text_format.h>

#include "servers/gnmi/leaf.hpp"
#include "servers/gnmi/path.hpp"
#include "servers/gnmi/refusal.hpp"

namespace {

using ocpsm::gnmi::Refusal;
using ocpsm::gnmi::Steps;
namespace messages = ::gnmi;

messages::Path path(const std::string &text) {
    messages::Path message;
    EXPECT_TRUE(google::protobuf::TextFormat::ParseFromString(text, &message)) << text;
    return message;
}

std::string read(const std::string &prefix, const std::string &text) {
    try {
        const Steps steps = ocpsm::gnmi::read_path(path(prefix), path(text));
        ocpsm::gnmi::require_in_model(steps);
        return ocpsm::gnmi::path_text(steps) + (ocpsm::gnmi::names_one_node(steps) ? "" : " (several)");
    } catch (const Refusal &refusal) {
        return std::to_string(refusal.code) + " " + refusal.what();
    }
}

struct ReadRow {
    std::string prefix;
    std::string path;
    std::string expected;
};

const std::string modules = "elem {name: 'aps'} elem {name: 'aps-modules'} ";
const std::string module_one = modules + "elem {name: 'aps-module' key {key: 'name' value: '0/1-PSM-OM'}} ";
const std::string model = "openconfig-transport-line-protection";

TEST(GnmiPath, IsReadOrRefused) {
    const std::vector<ReadRow> rows{
        {"", "", "/"},
        {"", modules, "/aps/aps-modules"},
        {"elem {name: 'aps'}", "elem {name: 'aps-modules'}", "/aps/aps-modules"},
        {"", module_one, "/aps/aps-modules/aps-module[name='0/1-PSM-OM']"},
        {module_one, "elem {name: 'config'}", "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config"},
        {"", modules + "elem {name: 'aps-module'}", "/aps/aps-modules/aps-module (several)"},
        {"", modules + "elem {name: 'aps-module' key {key: 'name' value: '*'}}",
         "/aps/aps-modules/aps-module[name='*'] (several)"},
        {"", modules + "elem {name: 'aps-module' key {key: 'name' value: 'it\\'s'}}",
         "/aps/aps-modules/aps-module[name=\"it's\"]"},
        {"", "elem {name: '...'} elem {name: 'config'}", "/.../config (several)"},
        {"", "elem {name: '*'} elem {name: '*'}", "/*/* (several)"},
        {"origin: 'openconfig'", "elem {name: 'aps'}", "/aps"},
        {"target: 'lab'", "origin: '" + model + "' elem {name: '" + model + ":aps'}", "/aps"},
        {"", "origin: 'cli' elem {name: 'aps'}", "3 the origin cli is not served, only openconfig and " + model},
        {"", "elem {name: 'other:aps'}", "3 the module other is not served, only " + model},
        {"", "elem {name: ''}", "3 a step of a path has no name; the root is a path without steps"},
        {"", "element: 'aps'", "3 a path is made of elem; element has been given up by the protocol"},
        {"", "elem {name: 'nothing'}", "5 the model has no such node at /nothing"},
        {"", "elem {name: 'aps' key {key: 'name' value: 'x'}}", "5 the model has no such node at /aps[name='x']"},
        {"", modules + "elem {name: 'aps-module' key {key: 'index' value: '1'}}",
         "5 the model has no such node at /aps/aps-modules/aps-module[index='1']"},
        {"", "elem {name: '...'} elem {name: 'nothing'}", "5 the model has no such node at /.../nothing"},
        {"", "elem {name: '" + std::string(1'024, 'a') + "'}",
         "5 the model has no such node at /" + std::string(1'024, 'a')},
        {"", "elem {name: '" + std::string(1'025, 'a') + "'}", "3 a name or key of a path has more than 1024 bytes"},
    };
    for (const ReadRow &row : rows) {
        EXPECT_EQ(read(row.prefix, row.path), row.expected) << row.prefix << " + " << row.path;
    }
}

TEST(GnmiPath, HasSixtyThreeStepsAtMost) {
    std::string steps;
    for (int count = 0; count < 62; ++count) {
        steps += "elem {name: '...'} ";
    }
    EXPECT_THAT(read("elem {name: 'aps'}", steps), testing::EndsWith("/... (several)"));
    EXPECT_EQ(read("elem {name: 'aps'} elem {name: 'aps'}", steps), "3 a path has more than 63 steps");
}

struct MatchRow {
    std::string pattern; // in the words of instance paths
    std::string path;
    int steps; // -1: none
};

TEST(GnmiPath, MatchesNodesAndWhatIsBelow) {
    const std::string port = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/ports/common-in/config/enabled";
    const std::vector<MatchRow> rows{
        {"/", port, 0},
        {"/aps", port, 1},
        {"/aps/aps-modules/aps-module", port, 3},
        {"/aps/aps-modules/aps-module[name='0/1-PSM-OM']", port, 3},
        {"/aps/aps-modules/aps-module[name='*']", port, 3},
        {"/aps/aps-modules/aps-module[name='0/3-PSM-OM']", port, -1},
        {"/aps/aps-modules/*[name='0/1-PSM-OM']/ports", port, 4},
        {"/aps/*/*/*/common-in", port, 5},
        {"/aps/*/*/*/common-output", port, -1},
        {"/.../config", port, 6},
        {"/.../common-in/.../enabled", port, 7},
        {"/.../state", port, -1},
        {"/aps/...", port, 1},
        {"/...", port, 0},
        {"/.../.../config/...", port, 6},
        {"/*/*/*/*/*/*/*", port, 7},
        {"/*/*/*/*/*/*/*/*", port, -1},
        {port, port, 7},
        {port, "/aps/aps-modules", -1},
    };
    for (const MatchRow &row : rows) {
        const auto steps =
            ocpsm::gnmi::matched_steps(ocpsm::gnmi::steps_of(row.pattern), ocpsm::gnmi::steps_of(row.path));
        EXPECT_EQ(steps ? static_cast<int>(*steps) : -1, row.steps) << row.pattern;
    }
}

TEST(GnmiPath, IsReadFromWhatTheServiceWrites) {
    const Steps plain{{"aps"}, {"list", {{"name", "0/1-PSM-OM"}}}, {"leaf"}};
    EXPECT_EQ(ocpsm::gnmi::steps_of("/aps/list[name='0/1-PSM-OM']/leaf"), plain);
    const Steps quotes{{"list", {{"name", "a]b/'c"}}}, {"leaf"}};
    EXPECT_EQ(ocpsm::gnmi::steps_of("/list[name=\"a]b/'c\"]/leaf"), quotes);
    const Steps both{{"list", {{"name", "a'b\"c"}}}, {"leaf"}};
    EXPECT_EQ(ocpsm::gnmi::steps_of("/list[name=concat('a', \"'\", 'b\"c')]/leaf"), both);
    EXPECT_EQ(ocpsm::gnmi::steps_of("/"), Steps());
}

TEST(GnmiPath, IsWrittenBehindThePrefix) {
    messages::Path message;
    ocpsm::gnmi::write_path({{"aps"}, {"list", {{"name", "x"}}}, {"leaf"}}, 1, message);
    EXPECT_EQ(message.ShortDebugString(),
              "elem { name: \"list\" key { key: \"name\" value: \"x\" } } elem { name: \"leaf\" }");
}

// ---- errors ----

TEST(GnmiRefusal, HasTheCodeOfAnErrorWithItsPathOnOneLine) {
    using ocpsm::Error;
    const auto told = [](const Error &error) {
        const Refusal refusal = ocpsm::gnmi::refusal_of(error);
        return std::to_string(refusal.code) + " " + refusal.what();
    };
    const auto tagged = [&told](const std::string &tag) { return told(Error(Error::Source::refused, tag, "", "no")); };
    EXPECT_EQ(told(Error(Error::Source::refused, "data-missing", "/aps", "no", "fit it")), "5 no at /aps; fit it");
    EXPECT_EQ(told(Error(Error::Source::refused, "invalid-value", "/aps", "a\nb\x7f\xff\xe2\x80\xae").at_native("/n")),
              "3 a\\x0ab\\x7f\\xff\\xe2\\x80\\xae (native: /n) at /aps");
    EXPECT_EQ(told(Error(Error::Source::refused, "too-big", "", "\xc3\xa4\xf0\x9f\x98\x80")),
              "8 \xc3\xa4\xf0\x9f\x98\x80");
    EXPECT_EQ(told(Error(Error::Source::refused, "operation-not-supported", "", std::string(9'999, 'x'))),
              "12 " + std::string(2'049, 'x') + "...");
    EXPECT_EQ(tagged("access-denied"), "7 no");
    EXPECT_EQ(tagged("data-exists"), "6 no");
    EXPECT_EQ(tagged("in-use"), "10 no");
    EXPECT_EQ(tagged("lock-denied"), "10 no");
    EXPECT_EQ(tagged("operation-failed"), "9 no");
    EXPECT_EQ(tagged("resource-denied"), "8 no");
    EXPECT_EQ(tagged("rollback-failed"), "13 no");
    EXPECT_EQ(tagged("unknown-element"), "3 no");
    EXPECT_EQ(tagged("never-heard-of"), "10 no");
    EXPECT_EQ(told(Error(Error::Source::input, "", "", "no")), "3 no");
}

// ---- leaves ----

TEST(GnmiLeaf, IsConfigurationAppliedEventOrMeasurement) {
    using ocpsm::gnmi::LeafUse;
    const auto use = [](const std::string &below) {
        return ocpsm::gnmi::use_of(*ocpsm::gnmi::node_of(ocpsm::gnmi::steps_of("/aps/aps-modules/aps-module" + below)));
    };
    EXPECT_EQ(use("/name"), LeafUse::configuration);
    EXPECT_EQ(use("/config/revertive"), LeafUse::configuration);
    EXPECT_EQ(use("/state/revertive"), LeafUse::applied);
    EXPECT_EQ(use("/state/active-path"), LeafUse::event);
    EXPECT_EQ(use("/ports/common-in/state/target-attenuation"), LeafUse::applied);
    EXPECT_EQ(use("/ports/common-in/state/attenuation"), LeafUse::measurement);
    EXPECT_EQ(use("/ports/common-in/state/optical-power/instant"), LeafUse::measurement);
}

} // namespace
