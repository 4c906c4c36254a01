// The proof of coverage, tried with a small model and with tables that are wrong in one place each.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "coverage.hpp"

namespace ocpsm {

// For messages of failed tests.
void PrintTo(const Finding &finding, std::ostream *out) {
    *out << finding.path << " " << finding.problem;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view prefix = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";
constexpr char module[] = "/aps/aps-modules/aps-module";

class Coverage : public testing::Test {
protected:
    std::vector<SchemaNode> model = {
        {"/aps", NodeKind::container, false, true, ""},
        {"/aps/aps-modules", NodeKind::container, false, true, ""},
        {module, NodeKind::list, false, true, ""},
        {std::string(module) + "/name", NodeKind::leaf, true, true, ""},
        {std::string(module) + "/state", NodeKind::container, false, false, ""},
        {std::string(module) + "/state/revertive", NodeKind::leaf, false, false, ""},
        {std::string(module) + "/state/attenuation", NodeKind::leaf, false, false, "dB"},
        {std::string(module) + "/state/hold-off-time", NodeKind::leaf, false, false, "milliseconds"},
    };
    std::vector<NodeRow> nodes = {
        {NodeKind::container, false, true, "a", "none", "aps", ""},
        {NodeKind::container, false, true, "b", "a", "aps-modules", ""},
        {NodeKind::list, false, true, "c", "b", "aps-module", "list_to_low"},
        {NodeKind::leaf, true, true, "d", "c", "name", "key_to_low"},
        {NodeKind::container, false, false, "e", "c", "state", ""},
        {NodeKind::leaf, false, false, "f", "e", "revertive", "revertive_to_low"},
        {NodeKind::leaf, false, false, "g", "e", "attenuation", ""},
    };
    std::vector<ConversionRow> conversions = {
        {"revertive_to_low", "state_leaf", "text", "none", "native", "/slots/slot/revertive"},
    };
    std::vector<UnsupportedRow> unsupported = {{"state/hold-off-time", "there is none"}};
    std::set<std::string> missing_names;
    std::set<std::string> native_leaves = {"native:/slots/slot/revertive"};

    CoverageResult check() {
        return check_coverage({model, nodes, conversions, unsupported,
                               [this](const std::string &name) { return !missing_names.contains(name); },
                               [this](std::string_view native, std::string_view path) {
                                   return native_leaves.contains(std::string(native).append(":").append(path));
                               }});
    }

    static Finding below_module(const std::string &path, const std::string &problem) {
        return {std::string(module) + path, problem};
    }
};

TEST_F(Coverage, AcceptsTablesThatAgreeWithTheModel) {
    const CoverageResult result = check();
    EXPECT_THAT(result.findings, IsEmpty());
    EXPECT_EQ(result.mapped, 6U);
    EXPECT_EQ(result.refused, 1U);
    EXPECT_EQ(result.unsupported, 1U);
    // Three for a container, four for the list, three for a converted leaf, two for a refused one.
    EXPECT_EQ(result.callbacks, 3U * 3U + 4U + 2U * 3U + 2U);
}

TEST_F(Coverage, NamesANodeThatIsInNoTable) {
    nodes.erase(nodes.begin() + 5);
    EXPECT_THAT(check().findings, ElementsAre(below_module("/state/revertive",
                                                           "is neither mapped nor refused nor listed as unsupported")));
}

TEST_F(Coverage, NamesANodeThatIsInBothTables) {
    unsupported.push_back({"state/revertive", "by mistake"});
    EXPECT_THAT(check().findings, ElementsAre(below_module("/state/revertive",
                                                           "is listed as unsupported although the plug-in knows it")));
}

TEST_F(Coverage, NamesARowThatIsNotInTheModel) {
    nodes.push_back({NodeKind::leaf, false, false, "h", "e", "active-pth", ""});
    EXPECT_THAT(check().findings,
                ElementsAre(below_module("/state/active-pth", "is in the mapping table but not in the model")));
}

TEST_F(Coverage, NamesAnUnsupportedNodeThatIsNotInTheModel) {
    unsupported.push_back({"state/hold-of-time", "misspelt"});
    EXPECT_THAT(check().findings,
                ElementsAre(below_module("/state/hold-of-time", "is listed as unsupported but is not in the model")));
}

TEST_F(Coverage, NamesRowsThatStandTwice) {
    nodes.push_back({NodeKind::leaf, false, false, "h", "e", "attenuation", ""});
    unsupported.push_back(unsupported.front());
    EXPECT_THAT(check().findings, ElementsAre(below_module("/state/attenuation", "is in the mapping table twice"),
                                              below_module("/state/hold-off-time", "is listed as unsupported twice")));
}

TEST_F(Coverage, NamesARowBelowAParentThatIsNotThere) {
    nodes.at(6).parent = "x";
    EXPECT_THAT(check().findings, ElementsAre(below_module("/state/attenuation",
                                                           "is neither mapped nor refused nor listed as unsupported"),
                                              Finding{"/attenuation", "is in the mapping table but not in the model"}));
}

TEST_F(Coverage, NamesARowOfAnotherKindOrAccess) {
    nodes.at(3).is_key = false;
    nodes.at(4).kind = NodeKind::list;
    nodes.at(5).is_configuration = true;
    EXPECT_THAT(check().findings,
                ElementsAre(below_module("/name", "is of another kind in the mapping table than in the model"),
                            below_module("/state", "is of another kind in the mapping table than in the model"),
                            below_module("/state/revertive", "is state in the model but not in the mapping table")));
}

TEST_F(Coverage, NamesEveryCallbackThatIsNotExported) {
    const std::string start(prefix);
    missing_names = {start + "b",  start + "cont_a",  start + "list_c", start + "leaf_g", start + "e_parse_augments",
                     "key_to_low", "revertive_to_low"};
    const auto needs = [](const std::string &name) { return "needs " + name + ", which the plug-in does not export"; };
    EXPECT_THAT(check().findings,
                ElementsAre(Finding{"/aps", needs(start + "cont_a")}, Finding{"/aps/aps-modules", needs(start + "b")},
                            below_module("", needs(start + "list_c")), below_module("/name", needs("key_to_low")),
                            below_module("/state", needs(start + "e_parse_augments")),
                            below_module("/state/revertive", needs("revertive_to_low")),
                            below_module("/state/attenuation", needs(start + "leaf_g"))));
}

TEST_F(Coverage, NamesAConversionWithoutARow) {
    conversions.clear();
    EXPECT_THAT(check().findings,
                ElementsAre(below_module("/state/revertive", "is converted by revertive_to_low, which writes no native "
                                                             "leaf")));
}

TEST_F(Coverage, NamesANativeLeafThatIsInNoNativeModel) {
    native_leaves.clear();
    EXPECT_THAT(check().findings, ElementsAre(below_module("/state/revertive", "is written to /slots/slot/revertive, "
                                                                               "which native does not have")));
}

TEST(MappingTable, HasTheWholeOfTheSystemsNodes) {
    const auto count = [](auto &&is_counted) {
        return std::count_if(node_rows().begin(), node_rows().end(), is_counted);
    };
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::container; }), 24);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::list; }), 1);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::leaf; }), 54);
    EXPECT_EQ(count([](const NodeRow &row) { return row.kind == NodeKind::leaf && row.conversion.empty(); }), 5);
    EXPECT_EQ(conversion_rows().size(), 46U);
    EXPECT_EQ(unsupported_rows().size(), 39U);
}

TEST(MappingTable, TellsUnitAndScalingOfAValue) {
    const auto described = [](std::string_view value, std::string_view units) {
        return describe_value({"x", "state_leaf", value, "none", "m", "/p"}, units);
    };
    EXPECT_EQ(described("tenths", "dBm"), "0.1 dBm, x10");
    EXPECT_EQ(described("hundredths", "dBm"), "0.01 dBm, x100");
    EXPECT_EQ(described("text", "milliseconds"), "milliseconds, as it stands");
    EXPECT_EQ(described("text", ""), "as it stands");
    EXPECT_EQ(described("lockout", ""), "PRIMARY: protected, SECONDARY: working, NONE: empty");
    EXPECT_EQ(described("empty", ""), "selection only");
}

} // namespace
} // namespace ocpsm
