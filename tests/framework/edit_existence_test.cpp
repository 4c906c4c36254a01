// What has to be there, or must not be there yet, before a line system is edited.
#include "session_fixture.hpp"
#include "simulator/line_system/operations.hpp"

namespace {

using ocpsm::line_system::slot;
using testing::ElementsAre;
using testing::IsEmpty;

std::string config_text(const std::string &content) {
    return module_text(1, "<config>" + content + "</config>");
}

const std::string created = " nc:operation='create'";
const std::string deleted = " nc:operation='delete'";
const std::string removed = " nc:operation='remove'";

class EditExistence : public SessionFixture {
protected:
    void SetUp() override {
        LineSystem system = bare({1, 3});
        slot(system, 1).settings.wait_to_restore = 5000;
        slot(system, 1).lines[0].rx_attenuation = 12;
        use(system);
    }
};

TEST_F(EditExistence, OfALeaf) {
    EXPECT_EQ(refused(config_text("<wait-to-restore-time" + created + ">1</wait-to-restore-time>")),
              "data-exists|" + module_path(1, "/config/wait-to-restore-time") +
                  "|wait-to-restore-time is to be created, but is there already|merge or replace it|");
    EXPECT_THAT(changes(config_text("<revertive" + created + ">true</revertive>")),
                ElementsAre("1/config/revertive: - -> true"));
    EXPECT_THAT(changes(config_text("<revertive" + removed + "/>")), ElementsAre("1/config/revertive: true -> -"));
    expect_nothing_done(config_text("<revertive" + removed + "/>"));
    EXPECT_THAT(changes(config_text("<wait-to-restore-time" + deleted + "/>")),
                ElementsAre("1/config/wait-to-restore-time: 5000 -> -"));
}

TEST_F(EditExistence, OfAContainer) {
    const auto port = [](const std::string &name, const std::string &operation, const std::string &content) {
        return (module_text(1, "<ports><" + name + operation + ">" + content + "</" + name + "></ports>"));
    };
    const std::string config = "<config><target-attenuation>1</target-attenuation></config>";
    EXPECT_EQ(refused(port("line-primary-out", deleted, "")),
              "data-missing|" + module_path(1, "/ports/line-primary-out") +
                  "|line-primary-out is to be deleted, but is not there|use the operation remove if "
                  "that is no error|");
    expect_nothing_done(port("line-primary-out", removed, ""));
    EXPECT_THAT(changes(port("line-primary-out", created, config)),
                ElementsAre("1/ports/line-primary-out/config/target-attenuation: - -> 1.0"));
    EXPECT_THAT(changes(port("line-primary-out", removed, "")),
                ElementsAre("1/ports/line-primary-out/config/target-attenuation: 1.0 -> -"));
    EXPECT_THAT(changes(port("line-primary-in", deleted, "")),
                ElementsAre("1/ports/line-primary-in/config/target-attenuation: 1.2 -> -"));
}

TEST_F(EditExistence, OfAModule) {
    // A module that is not fitted cannot be created either.
    const auto missing = [](const std::string &name, const std::string &nearest) {
        return "data-missing|/aps/aps-modules/aps-module[name='" + name + "']|there is no module '" + name +
               "'|fitted are 0/1-PSM-OM, 0/3-PSM-OM" + nearest + "|";
    };
    const std::string near = "; the nearest is 0/1-PSM-OM";
    const std::pair<const char *, std::string> names[] = {
        {"0/2", ""},        {"0/02-PSM-OM", ""},   {"0/2-PSM-OMX", ""},   {"0/9-PSM-OM", ""},    {"0/2-PSM-OM", ""},
        {"Ots0/1/0/1", ""}, {"0/01-PSM-OM", near}, {"0/1-PSM-OMX", near}, {" 0/1-PSM-OM", near}, {"0/1", near}};
    for (const auto &[name, nearest] : names) {
        const std::string setting = "<config><revertive>true</revertive></config>";
        for (const std::string &operation : {std::string(), created, std::string(" nc:operation='replace'")}) {
            EXPECT_EQ(refused(module_text(name, setting, operation)), missing(name, nearest));
        }
        EXPECT_EQ(refused(module_text(name, "", deleted)), missing(name, nearest));
        expect_nothing_done(module_text(name, "", removed));
    }
    EXPECT_THAT(changes(module_text(1, "", removed)),
                ElementsAre("1/config/wait-to-restore-time: 5000 -> -",
                            "1/ports/line-primary-in/config/target-attenuation: 1.2 -> -"));
    // It stays as long as it is fitted.
    EXPECT_THAT(changes(module_text(1, "", deleted)), IsEmpty());
    EXPECT_THAT(get_config("1"), ElementsAre("1: name = 0/1-PSM-OM", "1/config: name = 0/1-PSM-OM"));
    EXPECT_EQ(edit(module_text(std::string(5000, 'x'), "<config/>")).error->tag, "data-missing");
}

TEST_F(EditExistence, OfAllModules) {
    const auto all = [](const std::string &operation) {
        return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
               "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"" +
               operation + "/>";
    };
    EXPECT_THAT(changes(all(deleted)), ElementsAre("1/config/wait-to-restore-time: 5000 -> -",
                                                   "1/ports/line-primary-in/config/target-attenuation: 1.2 -> -"));
    use(LineSystem{});
    EXPECT_EQ(refused(all(deleted)), "data-missing|/aps|aps is to be deleted, but is not there|use the operation "
                                     "remove if that is no error|");
    EXPECT_EQ(refusal_of(edit(all(removed))), "none");
}

// A module that is taken out of an edit, because it is not there, must not turn the edit into one of all modules.
TEST_F(EditExistence, AContainerThatIsRemovedWithAModuleBelowItIsRefused) {
    EXPECT_EQ(refused("<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
                      "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules nc:operation='remove'>" +
                      module_text(2, "", removed) + "</aps-modules></aps>"),
              "operation-failed|/aps/aps-modules|aps-modules is to be deleted, but something stands below it|"
              "delete it without content, or delete only what stands below it|");
}

TEST_F(EditExistence, TheKeyAndTheLeafThatItRefersToAreTheSame) {
    EXPECT_EQ(refused(config_text("<name>0/3-PSM-OM</name>")),
              "data-missing|" + module_path(1, "/name") +
                  "|the key and the leaf that it refers to differ (instance-required)|give both the same value, or "
                  "leave config/name out|");
    expect_nothing_done(config_text("<name>0/1-PSM-OM</name>"));
}

TEST_F(EditExistence, BelowWhatIsReplacedNothingHasToBeThere) {
    EXPECT_THAT(changes(module_text(1, "<config nc:operation='replace'><wait-to-restore-time" + created +
                                           ">7</wait-to-restore-time></config>")),
                ElementsAre("1/config/wait-to-restore-time: 5000 -> 7"));
}

TEST_F(EditExistence, AnEntryWithoutNameIsThePluginsMatter) {
    EXPECT_EQ(refused("<aps-module><name/><config><revertive>true</revertive></config></aps-module>"),
              "missing-element|/aps/aps-modules/aps-module/name|an entry needs its key once, with a value|name the "
              "entry once|name");
}

} // namespace
