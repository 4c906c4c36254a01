// Edits of a line system: what they change, and that a refused one changes nothing.
#include "dump.hpp"
#include "framework/error.hpp"
#include "session_fixture.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::EditResult;
using ocpsm::line_system::LineSystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::string config_text(const std::string &content) {
    return module_text(1, "<config>" + content + "</config>");
}

class EditOfALineSystem : public SessionFixture {
protected:
    static Lines operations_of(const EditResult &result) {
        Lines lines;
        for (const auto &operation : result.native.operations()) {
            lines.push_back(std::string(ocpsm::operation_name(operation.operation)) + " " + operation.path +
                            (operation.value ? " = " + *operation.value : ""));
        }
        return lines;
    }
};

const std::string primary =
    "/interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']";
const std::string threshold = primary + "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']";
const std::string node = "/active-nodes/active-node[node-name='0/RP0/CPU0']";
const std::string slot_path = node + "/slot[slot-id='1']";

TEST_F(EditOfALineSystem, TellsTheNativeOperationsAndWhatTheyAmountTo) {
    const EditResult result = edit(config_text("<primary-switch-threshold>-14.34</primary-switch-threshold>"));
    EXPECT_EQ(refusal_of(result), "none");
    EXPECT_THAT(result.warnings, ElementsAre("-14.34 is kept in tenths of a dBm: -14.3 at " +
                                             module_path(1, "/config/primary-switch-threshold")));
    EXPECT_THAT(operations_of(result),
                ElementsAre("merge " + primary, "merge " + threshold, "merge " + threshold + "/rx-threshold = -143",
                            "merge " + node, "merge " + slot_path));
    ASSERT_EQ(result.changes.size(), 1U);
    EXPECT_EQ(result.changes[0], (ocpsm::Change{module_path(1, "/config/primary-switch-threshold"), "-25.0", "-14.3"}));
    EXPECT_THAT(result.log, IsEmpty());
    EXPECT_THAT(result.trace, IsEmpty());
}

TEST_F(EditOfALineSystem, ChangesStandInTheOrderOfTheModel) {
    EXPECT_THAT(changes(module_text(3, "<config><force-to-port>SECONDARY</force-to-port></config>") +
                        module_text(1, "<ports><line-primary-in><config><target-attenuation>3</target-attenuation>"
                                       "</config></line-primary-in></ports><config><revertive>false</revertive>"
                                       "<wait-to-restore-time nc:operation='delete'/></config>")),
                ElementsAre("1/config/revertive: true -> false", "1/config/wait-to-restore-time: 10000 -> -",
                            "1/ports/line-primary-in/config/target-attenuation: 2.5 -> 3.0",
                            "3/config/force-to-port: NONE -> SECONDARY"));
}

TEST_F(EditOfALineSystem, AnEditThatSaysNothingDoesNothing) {
    expect_nothing_done("");
    EXPECT_THAT(edit("").native.operations(), IsEmpty());
}

TEST_F(EditOfALineSystem, ChannelsAreKeptWhenTheyAreAskedFor) {
    const EditResult result = edit(config_text("<revertive>false</revertive>"), {{true, true, true}});
    EXPECT_EQ(root_walks(result), 1); // the reads before and after it are the framework's own
    EXPECT_FALSE(result.log.empty());
}

// ---- all or nothing ----

TEST_F(EditOfALineSystem, TenLeavesOfWhichThePluginRefusesTheLast) {
    const std::string nine = "<revertive>false</revertive><wait-to-restore-time>1</wait-to-restore-time>"
                             "<primary-switch-threshold>-1</primary-switch-threshold>"
                             "<primary-switch-hysteresis>2</primary-switch-hysteresis>"
                             "<secondary-switch-threshold>-3</secondary-switch-threshold>"
                             "<relative-switch-threshold>4</relative-switch-threshold>"
                             "<relative-switch-threshold-offset>5</relative-switch-threshold-offset>"
                             "<force-to-port>PRIMARY</force-to-port><name>0/1-PSM-OM</name>";
    EXPECT_EQ(refused(config_text(nine + "<hold-off-time>1</hold-off-time>")),
              "operation-not-supported|" + module_path(1, "/config/hold-off-time") +
                  "|hold-off-time is not served by this device|leave it out|hold-off-time");
}

TEST_F(EditOfALineSystem, TenLeavesOfWhichTheDeviceRefusesTheLast) {
    const auto port = [](const std::string &name, const std::string &value) {
        return "<" + name + "><config><target-attenuation>" + value + "</target-attenuation></config></" + name + ">";
    };
    const std::string six = "<config><revertive>false</revertive><wait-to-restore-time>1</wait-to-restore-time>"
                            "<primary-switch-threshold>-1</primary-switch-threshold>"
                            "<primary-switch-hysteresis>2</primary-switch-hysteresis>"
                            "<relative-switch-threshold>4</relative-switch-threshold>"
                            "<force-to-port>PRIMARY</force-to-port></config>";
    EXPECT_EQ(
        refused(module_text(1, six + "<ports>" + port("line-primary-in", "1") + port("line-primary-out", "1") +
                                   port("line-secondary-in", "1") + port("line-secondary-out", "30.1") + "</ports>")),
        "invalid-value|" + module_path(1, "/ports/line-secondary-out/config/target-attenuation") +
            "|30.1 is out of range (native: "
            "/interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/2']/optics/"
            "optics-ots-tx-voa-attenuation)|allowed: 0.0 to 30.0 dB|");
}

TEST_F(EditOfALineSystem, AValueThatTheModelDoesNotAllowNeverReachesThePlugin) {
    EXPECT_EQ(error_of([this] { edit(config_text("<revertive>perhaps</revertive>")); }),
              "refused|invalid-value|" + module_path(1, "/config/revertive") +
                  "|\"perhaps\" is not allowed|a value of type boolean is expected");
    EXPECT_EQ(system(), ocpsm::line_system::example());
}

// A value that is beyond the native type is found when the native edit is checked.
TEST_F(EditOfALineSystem, ANativeCheckThatFailsIsReportedAtTheOpenConfigPath) {
    const LineSystem before = system();
    const EditResult result = edit(config_text("<revertive>perhaps</revertive>"), {{false, false, false}});
    EXPECT_EQ(refusal_of(result), "invalid-value|" + module_path(1, "/config/revertive") +
                                      "|'perhaps' is no value of this leaf (native: " + slot_path +
                                      "/psm/revertive/enable)||");
    EXPECT_EQ(system(), before);
}

// ---- refusals of the device ----

const std::string held_module = "interface-configurations/interface-configuration[act,Ots0/1/0/1]";

class EditOfAHeldDevice : public SessionFixture {
protected:
    // Where an edit is refused whose native node at `native_path` the device refuses.
    std::string refused_at(const std::string &native_path, const std::string &text) {
        HeldDevice held(held_module);
        held.refusal =
            ocpsm::Error(ocpsm::Error::Source::refused, "resource-denied", "", "not now").at_native(native_path);
        return refusal_of(requests::edit(plugin(), text, held));
    }
};

TEST_F(EditOfAHeldDevice, ARefusalIsReportedWhereTheNativeNodeComesFrom) {
    const auto refusal = [](const std::string &location, const std::string &native) {
        return "resource-denied|" + location + "|not now (native: " + native + ")||";
    };
    const std::string text = (module_text(
        1, "<config><revertive>true</revertive><force-to-port>NONE</force-to-port>"
           "<primary-switch-threshold>1</primary-switch-threshold></config><ports><line-primary-out><config>"
           "<target-attenuation>1</target-attenuation></config></line-primary-out></ports>"));
    for (const auto &[native, location] : std::vector<std::pair<std::string, std::string>>{
             {slot_path + "/psm/lockout-from", module_path(1, "/config/force-to-port")},
             {slot_path + "/psm/revertive/enable", module_path(1, "/config/revertive")},
             {threshold + "/rx-threshold", module_path(1, "/config/primary-switch-threshold")},
             {primary + "/optics/optics-ots-tx-voa-attenuation",
              module_path(1, "/ports/line-primary-out/config/target-attenuation")},
             {slot_path, module_path(1, "/name")},
             {threshold, module_path(1, "/config/primary-switch-threshold")},
             // below what was added, and above it
             {slot_path + "/psm/revertive/enable/deeper", module_path(1, "/config/revertive")},
             {slot_path + "/psm/revertive", module_path(1, "/config/revertive")},
             {"/nothing/of/the/kind", ""},
         }) {
        EXPECT_EQ(refused_at(native, text), refusal(location, native));
    }
}

TEST_F(EditOfAHeldDevice, AlsoWithinAWholeSubtree) {
    EXPECT_EQ(refused_at(node + "/slot[slot-id='1']/psm/lockout-from", (module_text(1, "", " nc:operation='delete'"))),
              "resource-denied|" + module_path(1, "/config/force-to-port") + "|not now (native: " + node +
                  "/slot[slot-id='1']/psm/lockout-from)||");
}

TEST_F(EditOfAHeldDevice, AnAcceptedEditReachesTheDeviceOnce) {
    HeldDevice held(held_module);
    const EditResult result = requests::edit(plugin(), config_text("<revertive>true</revertive>"), held);
    EXPECT_EQ(refusal_of(result), "none");
    EXPECT_THAT(held.edits, ElementsAre(primary, node, node + "/slot[slot-id='1']",
                                        node + "/slot[slot-id='1']/psm/revertive/enable"));
    EXPECT_THAT(result.changes, IsEmpty()); // this device changes nothing
}

} // namespace
