// Reads of a line system, whole answers.
#include "dump.hpp"
#include "framework/error.hpp"
#include "session_fixture.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::ReadResult;
using ocpsm::line_system::LineSettings;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::slot;
using testing::ElementsAre;
using testing::IsEmpty;

class AnswerRead : public SessionFixture {};

// ---- everything there is ----

const Lines example_configuration_3{
    "3: name = 0/3-PSM-OM",
    "3/config: name = 0/3-PSM-OM, revertive = false, wait-to-restore-time = 300000, primary-switch-threshold = -26.5, "
    "primary-switch-hysteresis = 1.5, secondary-switch-threshold = -30.0, relative-switch-threshold = 3.0, "
    "relative-switch-threshold-offset = 0.5, force-to-port = NONE",
    "3/ports/line-primary-in/config: target-attenuation = 0.0",
    "3/ports/line-primary-out/config: target-attenuation = 0.0",
    "3/ports/line-secondary-in/config: target-attenuation = 0.8",
    "3/ports/line-secondary-out/config: target-attenuation = 0.0",
};

// Configuration of the secondary line's attenuators comes with a read of kind 10 from the database, and alone with one
// of configuration from the controller.
TEST_F(AnswerRead, NothingOfTheOtherModuleIsAnswered) {
    EXPECT_EQ(get_config("3"), example_configuration_3);
}

TEST_F(AnswerRead, WithoutAPathBothKindsAnswerAllModules) {
    Lines expected = get("1");
    const Lines third = get("3");
    expected.insert(expected.end(), third.begin(), third.end());
    EXPECT_EQ(leaves_of(requests::read_paths(plugin(), {}, Kind::get, device()).answer), expected);
    EXPECT_EQ(get("/"), expected);
    EXPECT_EQ(get(""), expected);

    Lines configuration = get_config("1");
    configuration.insert(configuration.end(), example_configuration_3.begin(), example_configuration_3.end());
    EXPECT_EQ(get_config("/aps"), configuration);
    EXPECT_EQ(get_config("<aps-module/>"), configuration);
}

TEST_F(AnswerRead, ThreeModulesOfBothKinds) {
    LineSystem system = bare({1, 2, 3});
    slot(system, 1).settings.wait_to_restore = 1;
    slot(system, 2).settings.wait_to_restore = 2;
    slot(system, 3).lines[1].rx_thresholds["low"] = -305;
    use(system);
    EXPECT_EQ(get_config("/"), get("/aps/aps-modules/aps-module/config"));
    EXPECT_THAT(get_config("/"),
                ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM, wait-to-restore-time = 1",
                            "2: name = 0/2-PSM-OM", "2/config: name = 0/2-PSM-OM, wait-to-restore-time = 2",
                            "3: name = 0/3-PSM-OM", "3/config: name = 0/3-PSM-OM, secondary-switch-threshold = -30.5"));
}

TEST_F(AnswerRead, NamedInstancesAreReadOneByOneAndJoined) {
    EXPECT_THAT(get_config(module_text(3, "<config><revertive/></config>") +
                           module_text(1, "<config><force-to-port/></config>") +
                           module_text(3, "<config><force-to-port/></config>")),
                ElementsAre("1: name = 0/1-PSM-OM", "1/config: force-to-port = NONE", "3: name = 0/3-PSM-OM",
                            "3/config: revertive = false, force-to-port = NONE"));
}

// ---- settings of one line ----

TEST_F(AnswerRead, OnlyTheSecondaryLineIsConfigured) {
    LineSystem system = bare({2});
    slot(system, 2).lines[1] =
        LineSettings{.rx_thresholds = {{"low", -281}}, .rx_attenuation = 31, .tx_attenuation = 4};
    use(system);
    const auto configuration =
        ElementsAre("2: name = 0/2-PSM-OM", "2/config: name = 0/2-PSM-OM, secondary-switch-threshold = -28.1",
                    "2/ports/line-secondary-in/config: target-attenuation = 3.1",
                    "2/ports/line-secondary-out/config: target-attenuation = 0.4");
    EXPECT_THAT(get_config("2"), configuration);
    EXPECT_THAT(get_config("/"), configuration);
    const std::string read = "<config/><ports><line-secondary-in><config/></line-secondary-in><line-secondary-out>"
                             "<config/></line-secondary-out><line-primary-in><config/></line-primary-in></ports>";
    EXPECT_THAT(get(module_text(2, read)), configuration);
    EXPECT_THAT(get("<aps-module>" + read + "</aps-module>"), configuration);
}

// ---- modules that are not there ----

TEST_F(AnswerRead, APulledModuleDisappearsWithItsSettings) {
    use(ocpsm::line_system::pull(ocpsm::line_system::example(), 1));
    EXPECT_EQ(get_config("/"), example_configuration_3);
    EXPECT_THAT(get_config("1"), IsEmpty());
    EXPECT_THAT(get("1"), IsEmpty());
    EXPECT_THAT(get("/aps/aps-modules/aps-module/name"), ElementsAre("3: name = 0/3-PSM-OM"));
}

TEST_F(AnswerRead, ANameThatIsNoModuleIsAnsweredWithNothing) {
    for (const char *name : {"0/1", "0/01-PSM-OM", "0/1-PSM-OMX", "0/9-PSM-OM", "x", "0/2-PSM-OM"}) {
        const std::string path = std::string("/aps/aps-modules/aps-module[name='") + name + "']";
        EXPECT_THAT(get(path), IsEmpty()) << name;
        EXPECT_THAT(get_config(path), IsEmpty()) << name;
    }
}

// ---- selections ----

TEST_F(AnswerRead, StateLeavesAlone) {
    EXPECT_THAT(get(module_text(1, "<state><active-path/><revertive/></state>")),
                ElementsAre("1: name = 0/1-PSM-OM",
                            "1/state: revertive = true, active-path = openconfig-transport-line-protection:PRIMARY"));
    EXPECT_THAT(
        get("/aps/aps-modules/aps-module/state/active-path"),
        ElementsAre("1: name = 0/1-PSM-OM", "1/state: active-path = openconfig-transport-line-protection:PRIMARY",
                    "3: name = 0/3-PSM-OM", "3/state: active-path = openconfig-transport-line-protection:SECONDARY"));
    EXPECT_THAT(get("3/ports/line-secondary-in/state/optical-power/min"),
                ElementsAre("3: name = 0/3-PSM-OM", "3/ports/line-secondary-in/state/optical-power: min = -16.83"));
}

TEST_F(AnswerRead, AnEmptyNameInConfigIsASelection) {
    EXPECT_THAT(get_config(module_text(3, "<config><name/></config>")),
                ElementsAre("3: name = 0/3-PSM-OM", "3/config: name = 0/3-PSM-OM"));
    EXPECT_THAT(get("<aps-module><config><name/></config></aps-module>"),
                ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM", "3: name = 0/3-PSM-OM",
                            "3/config: name = 0/3-PSM-OM"));
}

TEST_F(AnswerRead, AMatchOfAnotherLeafThanTheKeyPicksItsModule) {
    const auto of_the_third =
        ElementsAre("3: name = 0/3-PSM-OM", "3/config: wait-to-restore-time = 300000, relative-switch-threshold = 3.0");
    const std::string text = "<aps-module><config><relative-switch-threshold>3</relative-switch-threshold>"
                             "<wait-to-restore-time/></config></aps-module>";
    EXPECT_THAT(get(text), of_the_third);
    EXPECT_THAT(get_config(text), of_the_third);
    // A match alone selects what stands beside it.
    const Lines whole(example_configuration_3.begin(), example_configuration_3.begin() + 2);
    EXPECT_EQ(get_config("<aps-module><config><revertive>false</revertive></config></aps-module>"), whole);
    EXPECT_EQ(get("<aps-module><config><name>0/3-PSM-OM</name></config></aps-module>"), whole);
    EXPECT_THAT(
        get("<aps-module><state><active-path>SECONDARY</active-path><name/></state></aps-module>"),
        ElementsAre("3: name = 0/3-PSM-OM",
                    "3/state: name = 0/3-PSM-OM, active-path = openconfig-transport-line-protection:SECONDARY"));
    EXPECT_THAT(get_config("<aps-module><config><wait-to-restore-time>7</wait-to-restore-time></config></aps-module>"),
                IsEmpty());
}

TEST_F(AnswerRead, WhatIsNotConfiguredIsNotAnswered) {
    use(bare({1}));
    EXPECT_THAT(get_config("1"), ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM"));
    EXPECT_THAT(get("/aps/aps-modules/aps-module/config/primary-switch-hysteresis"), IsEmpty());
    EXPECT_THAT(get("1/config/primary-switch-hysteresis"), ElementsAre("1: name = 0/1-PSM-OM"));
}

TEST_F(AnswerRead, LeavesThatCannotBeAskedForByThemselvesAreLeftOutInWords) {
    const std::string ports = module_path(1, "/ports");
    const std::string in = ports + "/line-secondary-in/state/attenuation (a read of " + ports + " has it)";
    const ReadResult state = read("1/ports/line-secondary-in/state");
    EXPECT_THAT(state.warnings, ElementsAre("what cannot be asked for by itself is left out: " + in));
    EXPECT_THAT(leaves_of(state.answer),
                ElementsAre("1: name = 0/1-PSM-OM", "1/ports/line-secondary-in/state: target-attenuation = 1.5",
                            "1/ports/line-secondary-in/state/optical-power: instant = -15.87, avg = -15.9, min = "
                            "-16.12, max = -15.77"));
    const auto warnings = [this](const std::vector<std::string> &paths, Kind kind) {
        return requests::read_paths(plugin(), paths, kind, device()).warnings;
    };
    const std::string third = module_path(3, "/ports");
    EXPECT_THAT(warnings({ports + "/line-secondary-in", third + "/line-secondary-in/state"}, Kind::get),
                ElementsAre("what cannot be asked for by itself is left out: " + in + ", " + third +
                            "/line-secondary-in/state/attenuation (a read of " + third + " has it)"));
    // Where it is in the answer, where it is not selected, and where the device has no such value.
    for (const char *below : {"", "/line-secondary-in/state/optical-power", "/line-secondary-out", "/common-output"}) {
        EXPECT_THAT(warnings({ports + below}, Kind::get), IsEmpty()) << below;
    }
    EXPECT_THAT(warnings({ports + "/line-secondary-in"}, Kind::get_config), IsEmpty());
    EXPECT_THAT(warnings({module_path(2, "/ports/line-secondary-in")}, Kind::get), IsEmpty());

    const std::string path = ports + "/line-secondary-in/state/attenuation";
    const ReadResult refused = read(path);
    EXPECT_EQ(refusal_of(refused), "operation-not-supported|" + path +
                                       "|attenuation cannot be asked for by itself|a read of " + ports +
                                       " has it|attenuation");
    EXPECT_TRUE(refused.answer.empty());
    // The target comes with the setting beside it.
    const std::string target = ports + "/line-secondary-out/state/target-attenuation";
    EXPECT_EQ(refusal_of(read(target)), "operation-not-supported|" + target +
                                            "|target-attenuation cannot be asked for by itself|a read of " + ports +
                                            "/line-secondary-out has it|target-attenuation");
}

TEST_F(AnswerRead, OnlyUnsupportedNodesAreAnsweredWithNothingAndOneWarning) {
    const ReadResult answer = requests::read_paths(
        plugin(), std::vector{module_path(1, "/config/hold-off-time"), module_path(3, "/ports/common-in")}, Kind::get,
        device());
    EXPECT_EQ(refusal_of(answer), "none");
    EXPECT_TRUE(answer.answer.empty());
    EXPECT_THAT(answer.warnings,
                ElementsAre("nothing that was selected is supported, the answer is empty: " +
                            module_path(1, "/config/hold-off-time") + ", " + module_path(3, "/ports/common-in")));
    EXPECT_EQ(answer.answer.print(ocpsm::Format::json), "{}\n");
    EXPECT_EQ(answer.answer.print(ocpsm::Format::xml), "");
}

TEST_F(AnswerRead, StateIsNotAnsweredToAReadOfConfiguration) {
    const ReadResult answer = read("1/state", Kind::get_config);
    EXPECT_EQ(refusal_of(answer), "none");
    EXPECT_TRUE(answer.answer.empty());
    EXPECT_THAT(answer.warnings, ElementsAre("operational state is no part of a read of configuration and left out: " +
                                             module_path(1, "/state")));
}

// ---- channels ----

TEST_F(AnswerRead, BothChannelsTellOfBothDirections) {
    const auto functions = [this](const ocpsm::Options &options) {
        const ReadResult answer = read("1/config/revertive", Kind::get_config, options);
        std::vector<std::string> ended;
        for (const std::string &text : answer.trace) {
            const auto line = ocpsm::framework::parse_trace_line(text);
            if (line.message == "End" && line.function.ends_with("_high")) {
                ended.emplace_back(line.function);
            }
        }
        return std::pair(ended, answer.log.size() > 20);
    };
    EXPECT_EQ(functions({.check_values = true, .log = false, .trace = false}), std::pair(Lines{}, false));
    EXPECT_EQ(functions({.check_values = true, .log = true, .trace = false}), std::pair(Lines{}, true));
    const auto [ended, logged] = functions({.check_values = true, .log = false, .trace = true});
    EXPECT_FALSE(logged);
    EXPECT_THAT(ended, ElementsAre("oc_opt_psm_if_list_cfg_to_high", "interface_psm_key_to_high",
                                   "oc_opt_psm_if_list_cfg_to_high", "interface_psm_key_to_high"));
}

// The map of the instances is made with both channels off.
TEST_F(AnswerRead, TheMapOfTheInstancesIsMadeInSilence) {
    const ocpsm::Options options{.check_values = true, .log = true, .trace = true};
    EXPECT_EQ(root_walks(read("1", Kind::get, options)), 1);
}

} // namespace
