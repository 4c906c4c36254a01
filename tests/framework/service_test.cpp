// The service as a program uses it: requests in every form, several services and threads, errors as data, memory.
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <thread>

#include "framework/device.hpp"
#include "framework/service.hpp"
#include "measure.hpp"
#include "simulator/line_system.hpp"

namespace {

using ocpsm::DefaultOperation;
using ocpsm::EditOptions;
using ocpsm::Kind;
using ocpsm::Operation;
using ocpsm::PathEdits;
using ocpsm::Paths;
using ocpsm::RequestNode;
using ocpsm::Service;
using ocpsm::SimulatedLineSystem;
using ocpsm::Text;
using ocpsm::Tree;
using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

constexpr char space[] = "http://openconfig.net/yang/optical-transport-line-protection";

std::string module(int slot, const std::string &below = {}) {
    return "/aps/aps-modules/aps-module[name='0/" + std::to_string(slot) + "-PSM-OM']" + below;
}

// An edit of these modules.
std::string config(const std::string &content, const std::string &attributes = {}) {
    return std::string("<aps xmlns=\"") + space + "\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"" +
           attributes + "><aps-modules>" + content + "</aps-modules></aps>";
}

std::string entry(int slot, const std::string &content) {
    return "<aps-module><name>0/" + std::to_string(slot) + "-PSM-OM</name>" + content + "</aps-module>";
}

Lines changes_of(const ocpsm::EditResult &result) {
    Lines lines;
    for (const ocpsm::Change &change : result.changes) {
        lines.push_back(change.path + ": " + change.before.value_or("-") + " -> " + change.after.value_or("-"));
    }
    return lines;
}

// "tag|path|native path|message|node|app-tag"; "none" without an error.
std::string error_of(const ocpsm::Outcome &outcome) {
    if (!outcome.error) {
        return "none";
    }
    const ocpsm::Error &error = *outcome.error;
    return error.tag + "|" + error.path + "|" + error.native_path + "|" + error.message() + "|" + error.node + "|" +
           error.app_tag;
}

std::string thrown_by(const std::function<void()> &request) {
    try {
        request();
    } catch (const ocpsm::Error &error) {
        return error.tag + "|" + error.path + "|" + error.message();
    }
    return "none";
}

// A line system of its own behind a service.
struct System {
    SimulatedLineSystem line_system = SimulatedLineSystem::temporary();
    Service service{PLUGIN, line_system.device()};

    std::string value(const std::string &path) const {
        for (const ocpsm::Leaf &leaf : service.read(Paths{{path}}, Kind::get).answer.leaves()) {
            if (leaf.path == path) {
                return leaf.value;
            }
        }
        return "-";
    }
};

RequestNode node(const std::string &tag, std::vector<RequestNode> children) {
    return {tag, space, std::nullopt, Operation::merge, std::move(children)};
}

TEST(Service, AnswersTheSameToPathsTextAndTree) {
    const System system;
    const std::string filter = config(entry(1, "<config><revertive/></config>"));
    const RequestNode name{"name", space, "0/1-PSM-OM"};
    const Tree tree{node(
        "aps", {node("aps-modules", {node("aps-module", {name, node("config", {RequestNode{"revertive", space}})})})})};
    const std::vector<ocpsm::Leaf> expected{{module(1, "/name"), "0/1-PSM-OM"},
                                            {module(1, "/config/revertive"), "true"}};
    EXPECT_EQ(system.service.read(Paths{{module(1, "/config/revertive")}}, Kind::get).answer.leaves(), expected);
    EXPECT_EQ(system.service.read(Text{filter}, Kind::get_config).answer.leaves(), expected);
    EXPECT_EQ(system.service.read(tree, Kind::get).answer.leaves(), expected);
}

TEST(Service, CarriesOutSeveralPathsAsOneEdit) {
    const System system;
    const auto result =
        system.service.edit(PathEdits{{module(1, "/config/wait-to-restore-time"), Operation::merge, "7"},
                                      {module(3, "/config/revertive"), Operation::delete_existing},
                                      {module(1, "/config/revertive"), Operation::merge, "false"},
                                      {module(3, "/ports/line-primary-out"), Operation::remove}});
    EXPECT_EQ(error_of(result), "none");
    EXPECT_THAT(changes_of(result),
                ElementsAre(module(1, "/config/revertive: true -> false"),
                            module(1, "/config/wait-to-restore-time: 10000 -> 7"),
                            module(3, "/config/revertive: false -> -"),
                            module(3, "/ports/line-primary-out/config/target-attenuation: 0.0 -> -")));
    // All of it or nothing.
    const auto refused =
        system.service.edit(PathEdits{{module(1, "/config/wait-to-restore-time"), Operation::merge, "8"},
                                      {module(3, "/config/revertive"), Operation::delete_existing}});
    EXPECT_EQ(error_of(refused),
              "data-missing|" + module(3, "/config/revertive") + "||revertive is to be deleted, but is not there||");
    EXPECT_EQ(system.value(module(1, "/config/wait-to-restore-time")), "7");
    EXPECT_EQ(thrown_by([&] {
                  static_cast<void>(
                      system.service.edit(PathEdits{{module(1, "/config/revertive"), Operation::merge, "true"},
                                                    {module(1, "/config/revertive"), Operation::merge, "false"}}));
              }),
              "bad-element|" + module(1, "/config/revertive") + "|revertive stands more than once");
}

TEST(Service, RefusesMoreThanSoManyPaths) {
    const System system;
    const std::string refused = "too-big||the request has more than 4096 paths";
    const std::string leaf = module(1, "/config/revertive");
    EXPECT_EQ(system.service.read(Paths{Lines(4096, leaf)}, Kind::get).answer.leaves().size(), 2U);
    EXPECT_EQ(thrown_by([&] { static_cast<void>(system.service.read(Paths{Lines(4097, leaf)}, Kind::get)); }), refused);
    EXPECT_EQ(thrown_by([&] {
                  static_cast<void>(system.service.edit(PathEdits(4097, {leaf, Operation::remove, {}})));
              }),
              refused);
}

TEST(Service, AppliesTheDefaultOperation) {
    const System system;
    EditOptions none;
    none.default_operation = DefaultOperation::none;
    const auto only_named = system.service.edit(
        Text{config(entry(1, "<config><revertive>false</revertive>"
                             "<wait-to-restore-time nc:operation=\"merge\">9</wait-to-restore-time></config>"))},
        none);
    EXPECT_EQ(error_of(only_named), "none");
    EXPECT_THAT(changes_of(only_named), ElementsAre(module(1, "/config/wait-to-restore-time: 10000 -> 9")));

    const auto nothing =
        system.service.edit(Text{config(entry(1, "<config><revertive>false</revertive></config>"))}, none);
    EXPECT_EQ(error_of(nothing), "none");
    EXPECT_THAT(changes_of(nothing), IsEmpty());

    EditOptions replace;
    replace.default_operation = DefaultOperation::replace;
    EXPECT_EQ(
        error_of(system.service.edit(Text{config(entry(1, "<config><revertive>false</revertive></config>"))}, replace)),
        "none");
    EXPECT_EQ(system.service.read(Paths{}, Kind::get_config).answer.leaves(),
              (std::vector<ocpsm::Leaf>{{module(1, "/name"), "0/1-PSM-OM"},
                                        {module(1, "/config/name"), "0/1-PSM-OM"},
                                        {module(1, "/config/revertive"), "false"},
                                        {module(3, "/name"), "0/3-PSM-OM"},
                                        {module(3, "/config/name"), "0/3-PSM-OM"}}));
}

TEST(Service, TriesWithoutDoingAndDoesWithoutTelling) {
    const System system;
    const std::string path = module(1, "/config/wait-to-restore-time");
    EditOptions dry;
    dry.dry_run = true;
    const auto tried = system.service.edit(PathEdits{{path, Operation::merge, "5"}}, dry);
    EXPECT_THAT(changes_of(tried), ElementsAre(path + ": 10000 -> 5"));
    EXPECT_EQ(tried.native.operations().back().path,
              "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']/psm/revertive/wtr");
    EXPECT_EQ(system.value(path), "10000");
    EditOptions silent;
    silent.report_changes = false;
    const auto done = system.service.edit(PathEdits{{path, Operation::merge, "5"}}, silent);
    EXPECT_EQ(error_of(done), "none");
    EXPECT_THAT(done.changes, IsEmpty());
    EXPECT_EQ(system.value(path), "5");
}

TEST(Service, TellsErrorsAsData) {
    const System system;
    EXPECT_EQ(
        error_of(
            system.service.edit(PathEdits{{module(1, "/config/primary-switch-threshold"), Operation::merge, "99"}})),
        "invalid-value|" + module(1, "/config/primary-switch-threshold") +
            "|/interface-configurations/interface-configuration[active='act'][interface-name='Ots0/1/0/1']/optics/"
            "rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold|"
            "990 is not within -400 to 300 tenths of a dBm||");
    EXPECT_EQ(error_of(system.service.edit(Text{config(entry(1, "<config><name>other</name></config>"))})),
              "data-missing|" + module(1, "/name") +
                  "||the key and the leaf that it refers to differ (instance-required)||instance-required");
    EXPECT_EQ(
        error_of(system.service.read(Paths{{module(1, "/ports/line-secondary-in/state/attenuation")}}, Kind::get)),
        "operation-not-supported|" + module(1, "/ports/line-secondary-in/state/attenuation") +
            "||attenuation is not served by this device|attenuation|");
}

// Each thread has a line system of its own, and all of them one that they share.
TEST(Service, SeveralServicesOnSeveralThreads) {
    const System shared;
    std::vector<std::thread> threads;
    for (const char *const value : {"11", "22", "33"}) {
        threads.emplace_back([&shared, value] {
            const System own;
            const Service beside(PLUGIN, shared.line_system.device());
            const std::string path = module(1, "/config/wait-to-restore-time");
            for (int round = 0; round < 20; ++round) {
                EXPECT_EQ(error_of(own.service.edit(PathEdits{{path, Operation::merge, value}})), "none");
                EXPECT_EQ(error_of(beside.edit(PathEdits{{path, Operation::merge, value}})), "none");
                EXPECT_EQ(own.value(path), value);
                EXPECT_THAT(shared.value(path), testing::AnyOf("11", "22", "33"));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

// ---- what is not carried out ----

// Takes an edit and cannot keep it.
class FullDevice : public ocpsm::Device {
public:
    explicit FullDevice(std::shared_ptr<ocpsm::Device> behind) : behind_(std::move(behind)) {}
    std::unique_ptr<ocpsm::DeviceTransaction> read() override { return behind_->read(); }
    std::unique_ptr<ocpsm::DeviceTransaction> write() override {
        return std::make_unique<Transaction>(behind_->write());
    }

private:
    struct Transaction : ocpsm::DeviceTransaction {
        explicit Transaction(std::unique_ptr<ocpsm::DeviceTransaction> behind) : held(std::move(behind)) {}
        ocpsm::native::NativeData answer(const ocpsm::native::NetRequest &read) override { return held->answer(read); }
        void apply(const ocpsm::native::NetRequest &edit) override { held->apply(edit); }
        void commit() override {
            throw ocpsm::Error(ocpsm::Error::Source::refused, "resource-denied", {}, "the device is full");
        }
        std::unique_ptr<ocpsm::DeviceTransaction> held;
    };

    std::shared_ptr<ocpsm::Device> behind_;
};

TEST(Service, AnEditThatCannotBeKeptIsAnErrorWithoutChanges) {
    const System system;
    const Service full(PLUGIN, std::make_shared<FullDevice>(system.line_system.device()));
    const auto result = full.edit(PathEdits{{module(1, "/config/wait-to-restore-time"), Operation::merge, "7"}});
    EXPECT_EQ(error_of(result), "resource-denied|||the device is full||");
    EXPECT_THAT(changes_of(result), IsEmpty());
    EXPECT_EQ(system.value(module(1, "/config/wait-to-restore-time")), "10000");
}

TEST(Error, BelongsToTheLayerOfItsTag) {
    const auto type_of = [](const std::string &tag) {
        return ocpsm::Error(ocpsm::Error::Source::refused, tag, {}, {}).type();
    };
    EXPECT_EQ(type_of("malformed-message"), ocpsm::ErrorType::rpc);
    EXPECT_EQ(type_of("lock-denied"), ocpsm::ErrorType::protocol);
    for (const char *tag : {"data-missing", "too-big", "in-use", ""}) {
        EXPECT_EQ(type_of(tag), ocpsm::ErrorType::application) << tag;
    }
}

// ---- memory ----

std::size_t peak(const std::function<void(const Service &)> &request) {
    return measure::peak_of([&request]() -> std::function<void()> {
        const auto system = std::make_shared<System>();
        static_cast<void>(system->service.read(Paths{}, Kind::get));
        return [&request, system] { request(system->service); };
    });
}

// The same module 400 times, each with three leaves, took 3.4 GB: every add was traced, and with it the whole request.
TEST(ServiceMemory, OfAnEditThatNamesModulesOftenOrMany) {
    if (!measure::counts_memory) {
        GTEST_SKIP();
    }
    const std::string leaves = "<revertive>true</revertive><force-to-port>NONE</force-to-port></config></aps-module>";
    std::string equal;
    std::string many;
    for (int number = 0; number < 400; ++number) {
        equal += "<aps-module><name>0/1-PSM-OM</name><config><name>0/1-PSM-OM</name>" + leaves;
    }
    for (int number = 0; number < 1000; ++number) {
        const std::string name = "0/" + std::to_string(number) + "-PSM-OM";
        many += "<aps-module><name>" + name + "</name><config><name>" + name + "</name>" + leaves;
    }
    for (const std::string &content : {equal, many}) {
        const std::string text = config(content);
        const auto edit = [&text](const Service &service) {
            try {
                static_cast<void>(service.edit(Text{text}));
            } catch (const ocpsm::Error &) {
                // Refused: what it takes to find that out counts.
            }
        };
        EXPECT_LT(peak(edit), measure::allowed(text));
    }
    const std::string text = config(many);
    const Text request{text};
    for (const auto &call : std::vector<std::function<void(const Service &)>>{
             [&](const Service &service) { static_cast<void>(service.translate(request, Kind::edit)); },
             [&](const Service &service) { static_cast<void>(service.translate(request, Kind::get)); },
             [&](const Service &service) { static_cast<void>(service.read(request, Kind::get)); }}) {
        EXPECT_LT(peak(call), measure::allowed(text));
    }
}

} // namespace
