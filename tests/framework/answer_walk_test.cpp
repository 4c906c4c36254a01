// How the plug-in is called with a native answer, and what becomes of its failures.
#include "fake_plugin_answers.hpp"
#include "session_fixture.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::ReadResult;
using ocpsm::framework::Plugin;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string interface_1 = "interface-configurations/interface-configuration[act,Ots0/1/0/1]";

// ---- a plug-in that tells how it is called ----

class AnswerWalk : public testing::Test {
protected:
    AnswerWalk()
        : plugin(FAKE_PLUGIN_ANSWERS), fake(*static_cast<FakeAnswers *>(plugin.find(FakeAnswers::symbol))),
          device(std::in_place,
                 R"(
performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history[Ots0/1/0/1]
optics-oper/optics-ports/optics-port[Ots0/1/0/1]
preconfigured-nodes/preconfigured-node[0/RP0/CPU0]/slot[3]
ots-oper/ots-ports/ots-port[Ots0/1/0/1]
active-nodes/active-node[0/RP0/CPU0]
  slot[1]
  slot[2]
)" + interface_1 + "/optics: optics-ots-rx-voa-attenuation='1'") {
        fake = {};
        device->answers_everything = true;
    }

    ReadResult read(const std::string &content, Kind kind = Kind::get, const ocpsm::Options &options = {}) {
        return requests::read(plugin, content, kind, *device, options);
    }

    // From now on the device has only this, and answers it all.
    void hold(const std::string &held) {
        device.emplace(held);
        device->answers_everything = true;
    }

    Plugin plugin;
    FakeAnswers &fake;
    std::optional<HeldDevice> device;
};

TEST_F(AnswerWalk, ModelsComeFirstThenWhatAugmentsTheirEntries) {
    const ReadResult answer = read("<aps-module/>");
    EXPECT_EQ(refusal_of(answer), "none");
    EXPECT_THAT(
        fake.calls,
        ElementsAre(
            "request aps of - below '' depth 0 kind 10 mode 0/0",
            "interfaces interface-configurations of interface-configurations below '' depth 0 kind 10 mode 0/0",
            "nodes active-nodes of active-nodes below '' depth 0 kind 10 mode 0/0",
            "ports ots-oper of ots-oper below '' depth 0 kind 10 mode 0/0",
            "optics ports optics-oper of optics-oper below '' depth 0 kind 10 mode 0/0",
            "histories performance-management-history of performance-management-history below '' depth 0 kind 10 mode "
            "0/0",
            "map aps of - below '' depth 0 kind 10 mode 0/0",
            "slot slot of active-nodes below '/active-nodes/active-node' depth 1 kind 10 mode 0/0",
            "slot slot of active-nodes below '/active-nodes/active-node' depth 1 kind 10 mode 0/0",
            "preconfigured slot slot of preconfigured-nodes below '/preconfigured-nodes/preconfigured-node' depth 1 "
            "kind 10 mode 0/0",
            "optics optics of interface-configurations below '/interface-configurations/interface-configuration' depth "
            "1 kind 10 mode 0/0"));
    EXPECT_THAT(leaves_of(answer.answer), ElementsAre("1: name = 0/1-PSM-OM"));
}

TEST_F(AnswerWalk, TheContextShowsKindAndSelectionAndTheMapIsMadeInSilence) {
    hold(interface_1);
    read("<aps-module><state><active-path/><revertive/></state></aps-module>", Kind::get,
         {.check_values = true, .log = true, .trace = true});
    EXPECT_THAT(fake.calls,
                ElementsAre("request aps of - below '' depth 0 kind 10 mode 0/0 traced logged",
                            "interfaces interface-configurations of interface-configurations below '' depth 0 kind 10 "
                            "mode 2/3 traced logged",
                            "map aps of - below '' depth 0 kind 10 mode 0/0"));
    fake.calls.clear();
    read("<aps-module><config><revertive/></config></aps-module>", Kind::get_config);
    EXPECT_EQ(fake.calls.at(1), "interfaces interface-configurations of interface-configurations below '' depth 0 kind "
                                "0 mode 0/0");
}

// The map gives slot 1 to the module; slot 2 is nobody's.
TEST_F(AnswerWalk, TheMapSaysWhichModuleIsCurrent) {
    fake.revertive = "true";
    EXPECT_THAT(leaves_of(read("<aps-module/>").answer),
                ElementsAre("1: name = 0/1-PSM-OM", "1/config: revertive = true"));
    hold(interface_1 + "\nactive-nodes/active-node[0/RP0/CPU0]/slot[2]");
    EXPECT_THAT(leaves_of(read("<aps-module/>").answer), ElementsAre("1: name = 0/1-PSM-OM"));
}

TEST_F(AnswerWalk, AnEmptyAnswerCallsNobody) {
    hold("");
    EXPECT_TRUE(read("<aps-module/>").answer.empty());
    EXPECT_THAT(fake.calls, ElementsAre("request aps of - below '' depth 0 kind 10 mode 0/0"));
}

// ---- failures ----

std::string failure(const std::string &location, const std::string &what) {
    return "operation-failed|" + location + "|the device's answer cannot be mapped: " + what + "||";
}

TEST_F(AnswerWalk, AWalkerThatFailsIsAnErrorOfTheRead) {
    fake.failing = "ports";
    fake.code = YMAP_ERR_SKIP;
    const ReadResult answer = read("<aps-module/>");
    EXPECT_EQ(refusal_of(answer), failure("/aps", "YMAP_ERR_SKIP (the node is passed over) in /ots-oper"));
    EXPECT_TRUE(answer.answer.empty());
    EXPECT_EQ(fake.calls.size(), 4U); // nobody is called after it

    fake.failing = "optics";
    fake.code = 0x12345678;
    EXPECT_EQ(refusal_of(read(module_text(1, "<config/>"))),
              failure(module_path(1), "0x12345678 (unknown error) in /interface-configurations/"
                                      "interface-configuration[active='act'][interface-name='Ots0/1/0/1']/optics"));
}

TEST_F(AnswerWalk, WhereTheWalkerSaysWhereItIsThatIsTold) {
    fake.failing = "slot";
    fake.code = YMAP_ERR_INVALID_ARGS;
    EXPECT_EQ(refusal_of(read("<aps-module/>")),
              failure("/aps", "YMAP_ERR_INVALID_ARGS (invalid arguments, or a delete with content below it) in "
                              "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']"));
}

TEST_F(AnswerWalk, AStitchThatFailsIsAnErrorThoughTheWalkerSucceeds) {
    fake.stitch_leaf = "/config/colour";
    EXPECT_EQ(refusal_of(read("<aps-module/>")),
              failure("/aps", "YFW_ERR_UNKNOWN_NODE (the OpenConfig model has no node with this path and namespace) in "
                              "/interface-configurations"));
}

TEST_F(AnswerWalk, AReadForTheMapThatFailsIsAnErrorOfTheRead) {
    fake.failing = "map";
    fake.code = YMAP_ERR_BAD_TREE;
    EXPECT_EQ(
        refusal_of(read("<aps-module/>")),
        failure("/aps", "YMAP_ERR_BAD_TREE (the request tree is not well formed) in a read of " + module_path(1)));
}

TEST_F(AnswerWalk, AValueThatTheModelRefusesIsAnErrorWithItsPath) {
    fake.revertive = "perhaps";
    // Whether it was selected or not.
    for (const char *content : {"<aps-module/>", "<aps-module><state/></aps-module>"}) {
        EXPECT_EQ(refusal_of(read(content)), "operation-failed|" + module_path(1, "/config/revertive") +
                                                 "|the device's value 'perhaps' is none that the model allows||");
    }
}

TEST_F(AnswerWalk, AWalkThatDoesNotEndAsItBeganIsTold) {
    fake.stays = true;
    EXPECT_EQ(refusal_of(read("<aps-module/>")),
              "operation-failed|/aps|the plug-in has not ended its walk of /interface-configurations as it began it||");
}

TEST_F(AnswerWalk, ARequestThatIsRefusedIsNotAskedOfTheDevice) {
    fake.failing = "request";
    fake.code = YMAP_ERR_LIST_KEY;
    EXPECT_EQ(read("<aps-module/>").error->tag, "missing-element");
    EXPECT_EQ(fake.calls.size(), 1U);
}

// A failing read of what stands there ends an edit.
TEST_F(AnswerWalk, AnEditThatCannotSeeWhatStandsThereIsRefused) {
    fake.failing = "interfaces";
    fake.code = YMAP_ERR_BAD_TREE;
    EXPECT_EQ(refusal_of(requests::edit(plugin, (module_text(1, "<config/>")), *device)),
              failure(module_path(1),
                      "YMAP_ERR_BAD_TREE (the request tree is not well formed) in /interface-configurations"));
    EXPECT_THAT(device->edits, IsEmpty());
}

// ---- answers of devices that the line system is not ----

// The inventory of the example has modules in slots 1 and 3.
class HeldAnswers : public SessionFixture {
protected:
    Lines read(const std::string &text, const std::string &path, Kind kind) {
        HeldDevice held(text);
        const ReadResult answer = requests::read_paths(plugin(), std::vector{path}, kind, held);
        EXPECT_EQ(refusal_of(answer), "none");
        return leaves_of(answer.answer);
    }
};

TEST_F(HeldAnswers, AModuleIsFoundByItsSecondaryInterfaceAlone) {
    const std::string held =
        R"(
interface-configurations/interface-configuration[act,Ots0/3/0/2]/optics: optics-ots-rx-low-threshold-delta='9'
  rx-thresholds/rx-threshold[low]: rx-threshold='-281'
active-nodes/active-node[0/RP0/CPU0]/slot[3]/psm: lockout-from='working')";
    for (const std::string &path : {module_path(3), std::string("/")}) {
        EXPECT_THAT(
            read(held, path, Kind::get_config),
            ElementsAre("3: name = 0/3-PSM-OM",
                        "3/config: name = 0/3-PSM-OM, secondary-switch-threshold = -28.1, force-to-port = SECONDARY"));
        // A read of both kinds of data finds it by the primary port, which is not there.
        EXPECT_THAT(read(held, path, Kind::get), IsEmpty());
    }
}

TEST_F(HeldAnswers, SettingsOfAModuleThatIsNotInTheInventoryNeverAppear) {
    for (const bool everything : {false, true}) {
        HeldDevice held(R"(
interface-configurations
  interface-configuration[act,Ots0/1/0/1]/optics: optics-ots-rx-voa-attenuation='11'
  interface-configuration[act,Ots0/2/0/1]/optics: optics-ots-rx-voa-attenuation='22'
  interface-configuration[act,Ots0/2/0/2]/optics: optics-ots-rx-voa-attenuation='23'
active-nodes/active-node[0/RP0/CPU0]
  slot[1]/psm/revertive: wtr='1'
  slot[2]/psm/revertive: wtr='2'
preconfigured-nodes/preconfigured-node[0/RP0/CPU0]/slot[1]/psm/revertive: wtr='3'
ots-oper/ots-ports/ots-port[Ots0/2/0/1]/ots-info: port-status='active')");
        held.answers_everything = everything;
        for (const Kind kind : {Kind::get, Kind::get_config}) {
            const ReadResult all = requests::read_paths(plugin(), {}, kind, held);
            Lines configuration;
            for (const std::string &line : leaves_of(all.answer)) {
                if (line.find("/state") == std::string::npos) {
                    configuration.push_back(line);
                }
                EXPECT_TRUE(line.starts_with("1")) << line;
            }
            EXPECT_THAT(configuration,
                        ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM, wait-to-restore-time = 1",
                                    "1/ports/line-primary-in/config: target-attenuation = 1.1"));
            const ReadResult one = requests::read_paths(plugin(), std::vector{module_path(2)}, kind, held);
            EXPECT_EQ(refusal_of(one), "none");
            EXPECT_THAT(leaves_of(one.answer), IsEmpty());
        }
    }
}

// A device that answers more than it was asked does not change what the client gets.
TEST_F(HeldAnswers, ANamedReadIsAnsweredWithItsModuleWhateverTheDeviceAnswers) {
    HeldDevice held(R"(
interface-configurations
  interface-configuration[act,Ots0/1/0/1]
  interface-configuration[act,Ots0/3/0/1]
active-nodes/active-node[0/RP0/CPU0]
  slot[1]/psm/revertive: wtr='1'
  slot[3]/psm/revertive: wtr='3')");
    held.answers_everything = true;
    const ReadResult answer = requests::read_paths(plugin(), std::vector{module_path(3)}, Kind::get_config, held);
    EXPECT_THAT(leaves_of(answer.answer),
                ElementsAre("3: name = 0/3-PSM-OM", "3/config: name = 0/3-PSM-OM, wait-to-restore-time = 3"));
}

TEST_F(HeldAnswers, EntriesThatAreNoModulesArePassedOver) {
    EXPECT_THAT(read(R"(
interface-configurations
  interface-configuration[act,Ots0/1/0/0]
  interface-configuration[act,GigabitEthernet0/0]
  interface-configuration[act,Ots0/3/0/1])",
                     "/", Kind::get_config),
                ElementsAre("3: name = 0/3-PSM-OM", "3/config: name = 0/3-PSM-OM"));
}

} // namespace
