// What is set is what is read, to the step of the native model.
#include <algorithm>
#include <cmath>
#include <random>

#include "session_fixture.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::EditResult;
using ocpsm::ReadResult;
using ocpsm::line_system::LineSystem;
using testing::ElementsAre;
using testing::IsEmpty;

struct Setting {
    const char *leaf;      // below the module
    const char *value;     // as it is set
    const char *read;      // as it is read then
    const char *step = ""; // in which it is kept, where it is cut
};

// Tenths are what the native models hold: what is finer is cut off, towards zero.
constexpr Setting settings[] = {
    {"/config/revertive", "true", "true"},
    {"/config/revertive", "false", "false"},
    {"/config/wait-to-restore-time", "0", "0"},
    {"/config/wait-to-restore-time", "4294967295", "4294967295"},
    {"/config/primary-switch-threshold", "-20.5", "-20.5"},
    {"/config/primary-switch-threshold", "-12.39", "-12.3", "tenths of a dBm"},
    {"/config/primary-switch-threshold", "0", "0.0"},
    {"/config/primary-switch-hysteresis", "1.59", "1.5", "tenths of a dB"},
    {"/config/secondary-switch-threshold", "12.5", "12.5"},
    {"/config/secondary-switch-threshold", "-0.05", "0.0", "tenths of a dBm"},
    {"/config/relative-switch-threshold", "3", "3.0"},
    {"/config/relative-switch-threshold", "-3.99", "-3.9", "tenths of a dB"},
    {"/config/relative-switch-threshold-offset", "-0.5", "-0.5"},
    {"/config/relative-switch-threshold-offset", "-0.05", "0.0", "tenths of a dB"},
    {"/config/force-to-port", "NONE", "NONE"},
    {"/config/force-to-port", "PRIMARY", "PRIMARY"},
    {"/config/force-to-port", "SECONDARY", "SECONDARY"},
    {"/ports/line-primary-in/config/target-attenuation", "3.5", "3.5"},
    {"/ports/line-primary-in/config/target-attenuation", "0.05", "0.0", "tenths of a dB"},
    {"/ports/line-primary-out/config/target-attenuation", "0.19", "0.1", "tenths of a dB"},
    {"/ports/line-secondary-in/config/target-attenuation", "30", "30.0"},
    {"/ports/line-secondary-out/config/target-attenuation", "29.99", "29.9", "tenths of a dB"},
    {"/ports/line-secondary-out/config/target-attenuation", "7.70", "7.7"},
};

class RoundTrip : public SessionFixture {
protected:
    void SetUp() override { use(bare({1, 2})); }

    // What is said of its being cut; empty: nothing.
    std::string set(const std::string &leaf, const std::string &value) {
        const EditResult result = requests::set_leaf(plugin(), module_path(2, leaf), value, device());
        EXPECT_EQ(refusal_of(result), "none");
        const auto cut = std::find_if(result.warnings.begin(), result.warnings.end(), [](const std::string &warning) {
            return warning.find("is kept in") != std::string::npos;
        });
        return cut == result.warnings.end() ? "" : *cut;
    }

    void remove(const std::string &leaf) {
        successful(requests::delete_node(plugin(), module_path(2, leaf), device()));
    }

    // The leaf's value in an answer, by a read of its own; none when it is not there.
    std::optional<std::string> value_of(const std::string &leaf, Kind kind = Kind::get_config) {
        const ReadResult result = read("2" + leaf, kind);
        EXPECT_EQ(refusal_of(result), "none");
        for (const ocpsm::Leaf &each : result.answer.leaves()) {
            if (each.path == module_path(2, leaf)) {
                return each.value;
            }
        }
        return std::nullopt;
    }
};

const Lines bare_module{"2: name = 0/2-PSM-OM", "2/config: name = 0/2-PSM-OM"};

// What is cut towards zero was beyond the end of the range.
TEST_F(RoundTrip, ARangeHoldsForTheValueBeforeItIsCut) {
    constexpr struct {
        const char *leaf;
        const char *value;
        const char *allowed;
    } rows[] = {
        {"/ports/line-primary-in/config/target-attenuation", "-0.05", "0.0 to 30.0 dB"},
        {"/ports/line-primary-in/config/target-attenuation", "30.01", "0.0 to 30.0 dB"},
        {"/ports/line-secondary-out/config/target-attenuation", "-3.0", "0.0 to 30.0 dB"},
        {"/config/primary-switch-threshold", "-40.05", "-40.0 to 30.0 dBm"},
        {"/config/secondary-switch-threshold", "30.09", "-40.0 to 30.0 dBm"},
        {"/config/primary-switch-hysteresis", "-0.01", "0.0 to 30.0 dB"},
        {"/config/relative-switch-threshold", "300000000.0", "-40.0 to 40.0 dB"},
        {"/config/relative-switch-threshold-offset", "-40.01", "-40.0 to 40.0 dB"},
    };
    for (const auto &row : rows) {
        const EditResult result = requests::set_leaf(plugin(), module_path(2, row.leaf), row.value, device());
        ASSERT_TRUE(result.error) << row.leaf << " " << row.value;
        EXPECT_EQ(
            result.error->tag + "|" + result.error->path + "|" + result.error->message() + "|" + result.error->advice,
            "invalid-value|" + module_path(2, row.leaf) + "|" + row.value + " is out of range|allowed: " + row.allowed);
        EXPECT_EQ(value_of(row.leaf), std::nullopt);
    }
}

TEST_F(RoundTrip, EveryLeafIsSetReadDeletedAndSetAgain) {
    for (const Setting &setting : settings) {
        SCOPED_TRACE(std::string(setting.leaf) + " " + setting.value);
        EXPECT_EQ(set(setting.leaf, setting.value),
                  *setting.step == '\0' ? ""
                                        : std::string(setting.value) + " is kept in " + setting.step + ": " +
                                              setting.read + " at " + module_path(2, setting.leaf));
        EXPECT_EQ(value_of(setting.leaf), setting.read);
        EXPECT_EQ(value_of(setting.leaf, Kind::get), setting.read);
        remove(setting.leaf);
        EXPECT_EQ(value_of(setting.leaf), std::nullopt);
        EXPECT_EQ(get_config("2"), bare_module);
        set(setting.leaf, setting.value);
        EXPECT_EQ(value_of(setting.leaf), setting.read);
        remove(setting.leaf);
    }
    EXPECT_EQ(get_config("1"), (Lines{"1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM"}));
}

// ---- random values ----

struct Decimal {
    const char *leaf;
    int minimum; // tenths
    int maximum;
};

constexpr Decimal decimals[] = {
    {"/config/primary-switch-threshold", -400, 300},
    {"/config/primary-switch-hysteresis", 0, 300},
    {"/config/secondary-switch-threshold", -400, 300},
    {"/config/relative-switch-threshold", -400, 400},
    {"/config/relative-switch-threshold-offset", -400, 400},
    {"/ports/line-primary-in/config/target-attenuation", 0, 300},
    {"/ports/line-primary-out/config/target-attenuation", 0, 300},
    {"/ports/line-secondary-in/config/target-attenuation", 0, 300},
    {"/ports/line-secondary-out/config/target-attenuation", 0, 300},
};

// A number of tenths as the model writes it: "-0.5", "12.0".
std::string tenths(int number) {
    return std::string(number < 0 ? "-" : "") + std::to_string(std::abs(number) / 10) + "." +
           std::to_string(std::abs(number) % 10);
}

TEST_F(RoundTrip, RandomTenthsComeBackAsTheyAre) {
    std::mt19937 random(20240115);
    for (int round = 0; round < 8; ++round) {
        for (const Decimal &decimal : decimals) {
            const int number = std::uniform_int_distribution(decimal.minimum, decimal.maximum)(random);
            SCOPED_TRACE(std::string(decimal.leaf) + " " + tenths(number));
            set(decimal.leaf, tenths(number));
            EXPECT_EQ(value_of(decimal.leaf), tenths(number));
        }
    }
}

// With a second digit, which is cut off.
TEST_F(RoundTrip, RandomHundredthsAreCutTowardsZero) {
    std::mt19937 random(4711);
    for (int round = 0; round < 4; ++round) {
        for (const Decimal &decimal : decimals) {
            const int number = std::uniform_int_distribution(decimal.minimum, decimal.maximum)(random);
            const int digit = std::uniform_int_distribution(1, 8)(random);
            const std::string written = tenths(number) + std::to_string(digit);
            SCOPED_TRACE(std::string(decimal.leaf) + " " + written);
            const EditResult result = requests::set_leaf(plugin(), module_path(2, decimal.leaf), written, device());
            EXPECT_EQ(refusal_of(result), "none");
            EXPECT_EQ(value_of(decimal.leaf), tenths(number));
        }
    }
}

// ---- whole modules ----

class WholeModule : public SessionFixture {
protected:
    // The request with `operation` on the element that `begin` begins.
    static std::string with_operation(std::string text, const std::string &begin, const std::string &operation) {
        const auto at = text.find(begin + ">");
        EXPECT_NE(at, std::string::npos) << text;
        return text.insert(at + begin.size(),
                           " xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" nc:operation=\"" + operation + "\"");
    }

    ReadResult configuration(int slot) { return read(std::to_string(slot), Kind::get_config); }
};

TEST_F(WholeModule, ReplacedWithWhatWasReadStaysAsItIs) {
    for (const int slot : {1, 3}) {
        const ReadResult before = configuration(slot);
        const LineSystem system_before = system();
        EXPECT_THAT(changes(with_operation(before.answer.print(ocpsm::Format::xml), "<aps-module", "replace")),
                    IsEmpty());
        EXPECT_THAT(changes(with_operation(before.answer.print(ocpsm::Format::xml), "<config", "replace")), IsEmpty());
        EXPECT_THAT(changes(before.answer.print(ocpsm::Format::json)), IsEmpty());
        EXPECT_EQ(configuration(slot).answer.leaves(), before.answer.leaves());
        EXPECT_EQ(system(), system_before);
    }
}

TEST_F(WholeModule, ReplacedWithTwoLeavesLosesAllOthers) {
    const ReadResult other = configuration(3);
    successful(edit(module_text(
        1,
        "<config><revertive>false</revertive><secondary-switch-threshold>-20.5</secondary-switch-threshold></config>",
        " nc:operation='replace'")));
    EXPECT_THAT(get_config("1"),
                ElementsAre("1: name = 0/1-PSM-OM",
                            "1/config: name = 0/1-PSM-OM, revertive = false, secondary-switch-threshold = -20.5"));
    EXPECT_EQ(configuration(3).answer.leaves(), other.answer.leaves());
}

TEST_F(WholeModule, ReplacedConfigurationLosesItsOtherLeavesAndKeepsThePorts) {
    successful(edit(module_text(3, "<config nc:operation='replace'><wait-to-restore-time>7</wait-to-restore-time>"
                                   "<force-to-port>NONE</force-to-port></config>")));
    EXPECT_THAT(get_config("3"),
                ElementsAre("3: name = 0/3-PSM-OM",
                            "3/config: name = 0/3-PSM-OM, wait-to-restore-time = 7, force-to-port = NONE",
                            "3/ports/line-primary-in/config: target-attenuation = 0.0",
                            "3/ports/line-primary-out/config: target-attenuation = 0.0",
                            "3/ports/line-secondary-in/config: target-attenuation = 0.8",
                            "3/ports/line-secondary-out/config: target-attenuation = 0.0"));
}

TEST_F(WholeModule, AllModulesReplacedWithWhatWasReadStayAsTheyAre) {
    const ReadResult all = requests::read_paths(plugin(), {}, Kind::get_config, device());
    for (const char *begin :
         {"<aps-modules", "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\""}) {
        const LineSystem before = system();
        EXPECT_THAT(changes(with_operation(all.answer.print(ocpsm::Format::xml), begin, "replace")), IsEmpty());
        EXPECT_EQ(system(), before);
    }
}

TEST_F(WholeModule, AllModulesReplacedWithOneLeafLoseAllOthers) {
    successful(edit("<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
                    "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules nc:operation='replace'>" +
                    module_text(3, "<config><revertive>false</revertive></config>") + "</aps-modules></aps>"));
    EXPECT_THAT(get_config("/"), ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM",
                                             "3: name = 0/3-PSM-OM", "3/config: name = 0/3-PSM-OM, revertive = false"));
}

TEST_F(WholeModule, ReplacedWithItsKeyAloneLosesEverything) {
    successful(edit(module_text(1, "", " nc:operation='replace'")));
    EXPECT_THAT(get_config("1"), ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM"));
    EXPECT_EQ(get_config("3").size(), 6U);
}

} // namespace
