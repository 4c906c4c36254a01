// The line system as programs see it.
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/device.hpp"
#include "native/native_test.hpp"
#include "native/shown_data.hpp"
#include "simulator/line_system.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// "0/1-PSM-OM on 1: -12.34 -25.00 2.50 -2.15 1.00, ..."
std::vector<std::string> shown(const LineTable &table) {
    std::vector<std::string> lines;
    for (const ModuleRow &module : table.modules) {
        std::string text = module.name + (module.lines[0].active ? " on primary:" : " on secondary:");
        for (const auto &line : module.lines) {
            for (const auto &value : line.measured) {
                text += value ? " " + hundredths(*value) : " -";
            }
            text += line.cut ? " cut" : " whole";
        }
        lines.push_back(text);
    }
    return lines;
}

class Simulated : public testing::Test {
protected:
    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "on" / "the" / "way";
};

TEST_F(Simulated, IsTheExampleToBeginWith) {
    EXPECT_THAT(SimulatedLineSystem::example_slots(), ElementsAre(1, 3));
    const SimulatedLineSystem made = SimulatedLineSystem::make(state);
    EXPECT_THAT(
        shown(made.view()),
        ElementsAre("0/1-PSM-OM on primary: -12.34 -25.00 2.50 -2.15 1.00 whole -15.87 -28.00 1.50 -2.23 1.00 whole",
                    "0/3-PSM-OM on secondary: -40.00 -26.50 0.00 -2.51 0.00 cut -16.59 -30.00 0.75 -2.48 0.00 whole"));
    EXPECT_EQ(SimulatedLineSystem::open(state).view(), made.view());
}

TEST_F(Simulated, HasTheSlotsThatAreNamed) {
    EXPECT_THAT(
        shown(SimulatedLineSystem::make(state, {2, 3, 2}).view()),
        ElementsAre("0/2-PSM-OM on primary: -12.50 - 0.00 -2.40 0.00 whole -14.50 - 0.00 -2.40 0.00 whole",
                    "0/3-PSM-OM on secondary: -40.00 -26.50 0.00 -2.51 0.00 cut -16.59 -30.00 0.75 -2.48 0.00 whole"));
    EXPECT_THAT(SimulatedLineSystem::make(directory.path / "empty", {}).view().modules, IsEmpty());
    EXPECT_EQ(error_of([&] { SimulatedLineSystem::make(directory.path / "none", {4}); }),
              "input|invalid-value||there is no slot 4|the slots are 1 to 3");
    EXPECT_FALSE(std::filesystem::exists(directory.path / "none"));
}

TEST_F(Simulated, ShowsWhatIsDoneToItInEveryCopyAndOpening) {
    const SimulatedLineSystem made = SimulatedLineSystem::make(state);
    const SimulatedLineSystem other = SimulatedLineSystem::open(state);
    const auto expect_all = [&](const LineTable &after) { EXPECT_EQ(other.view(), after); };
    EXPECT_EQ(made.fit(2).modules.size(), 3U);
    const LineTable pulled = made.pull(3);
    ASSERT_EQ(pulled.modules.size(), 2U);
    EXPECT_EQ(pulled.modules[1].name, "0/2-PSM-OM");
    expect_all(pulled);
    EXPECT_EQ(made.light(2, Line::secondary, -1000).modules[1].lines[1].measured[0], -1000);
    expect_all(made.cut(1, Line::primary));
    EXPECT_TRUE(other.view().modules[0].lines[0].active);
    expect_all(made.tick(SimulatedLineSystem::step));
    EXPECT_EQ(other.view().clock, 100U);
    EXPECT_TRUE(other.view().modules[0].lines[1].active);
    EXPECT_TRUE(made.view().modules[0].lines[0].cut);
    EXPECT_FALSE(made.splice(1, Line::primary).modules[0].lines[0].cut);
    EXPECT_EQ(error_of([&] { made.cut(3, Line::primary); }),
              "refused|data-missing||slot 3 holds no module|fit one first");
    EXPECT_EQ(error_of([&] { made.light(1, Line::primary, 3001); }),
              "input|invalid-value||no fibre delivers such a light|name a power from -40.00 to 30.00 dBm");
}

// The device goes on when the object it comes from has ended.
TEST_F(Simulated, GivesADeviceThatReadsAndIsEdited) {
    const auto device = SimulatedLineSystem::make(state).device();
    native_test::Request read = native_test::read();
    read.put(native_test::slot_path + "/slot-id", native_test::ots, "1", native_test::merge, true, 0);
    read.put(native_test::psm_path + "/revertive/wtr", native_test::ots, "", native_test::merge, false, 0);
    native_test::Request edit = native_test::edit();
    edit.put(native_test::node_path + "/node-name", native_test::mda, "0/RP0/CPU0", native_test::merge, true, 0);
    edit.put(native_test::slot_path + "/slot-id", native_test::ots, "1", native_test::merge, true, 0);
    edit.put(native_test::psm_path + "/revertive/wtr", native_test::ots, "7", native_test::merge, false, 0);
    const std::string begin =
        "active-nodes\n  active-node\n    node-name=|0/RP0/CPU0|\n    slot\n      slot-id=|1|\n      "
        "psm\n        revertive\n          wtr=|";
    const auto before = device->read();
    device->write()->apply(edit.net()); // not committed
    EXPECT_EQ(native_test::shown(device->read()->answer(read.net())), begin + "10000|\n");
    const auto transaction = device->write();
    transaction->apply(edit.net());
    EXPECT_EQ(native_test::shown(transaction->answer(read.net())), begin + "7|\n");
    transaction->commit();
    EXPECT_EQ(native_test::shown(before->answer(read.net())), begin + "10000|\n");
    EXPECT_EQ(native_test::shown(device->read()->answer(read.net())), begin + "7|\n");
}

TEST_F(Simulated, MayBeTemporary) {
    std::optional<SimulatedLineSystem> first = SimulatedLineSystem::temporary({2});
    const SimulatedLineSystem second = SimulatedLineSystem::temporary();
    first->cut(2, Line::primary);
    EXPECT_EQ(first->view().modules.size(), 1U);
    EXPECT_FALSE(second.view().modules[0].lines[0].cut);
}

TEST_F(Simulated, IsNotThere) {
    EXPECT_EQ(error_of([&] { SimulatedLineSystem::open(state); }),
              "input|data-missing||the directory " + state.string() + " does not exist|");
    std::ofstream(directory.path / "file") << "x";
    EXPECT_EQ(error_of([&] { SimulatedLineSystem::make(directory.path / "file" / "below"); }),
              "input|||cannot make " + (directory.path / "file" / "below").string() +
                  ": Not a directory|name another directory");
}

} // namespace
} // namespace ocpsm
