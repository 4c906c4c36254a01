// Reads of all modules, whole, and the native requests that these reads become.
#include <cstdlib>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answers.hpp"
#include "example_answers.hpp"
#include "line_system.hpp"

namespace {

using circle::configuration;
using circle::first_answer;
using circle::Lines;
using circle::lines_of;
using circle::LineSystem;
using circle::third_answer;
using ocpsm::Kind;

const std::string all_modules = R"({"openconfig-transport-line-protection:aps": [null]})";

// A module that has just been fitted into an unused slot: nothing is set, its attenuators are open, no interval has
// passed. Its slot's client sends 100, its fibres deliver -1250 and -1450; the offsets are -30, -340, -340.
const Lines second_answer = circle::module_answer("2", {}, "PRIMARY",
                                                  {{"line-primary-in", "", "0.0", "-12.5"},
                                                   {"line-primary-out", "", "0.0", "-2.4"}, // 100, offset -340: -240
                                                   {"line-secondary-in", "", "0.0", "-14.5"},
                                                   {"line-secondary-out", "", "0.0", "-2.4"}, // 100, offset -340: -240
                                                   {"common-output", "", "", "-12.8"}}); // -1250, offset -30: -1280

Lines joined(const std::vector<Lines> &parts) {
    Lines all;
    for (const Lines &part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// ---- what is asked of the device ----

// What the OpenConfig leaves need of an entry, in the order of the native models.
const Lines settings_of_a_line{
    "/optics/rx-thresholds/rx-threshold[rx-threshold-type='low']/rx-threshold",
    "/optics/optics-ots-rx-voa-attenuation",
    "/optics/optics-ots-rx-low-threshold-delta",
    "/optics/optics-ots-tx-voa-attenuation",
};
const Lines settings_of_a_slot{
    "/psm/relative-switch-threshold/psm-relative-switch-threshold",
    "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset",
    "/psm/revertive/enable",
    "/psm/revertive/wtr",
    "/psm/lockout-from",
};
const Lines readings_of_a_port{
    "/ots-info/lane-data/transmit-power",
    "/ots-info/lane-data/receive-power",
    "/ots-info/lane-data/transmit-power-dbm",
    "/ots-info/lane-data/receive-power-dbm",
    "/ots-info/tx-voa-attenuation",
    "/ots-info/rx-voa-attenuation",
    "/ots-info/port-status",
    "/ots-info/rx-low-threshold",
    "/ots-info/rx-thr-fail-low-delta-val",
};
const Lines statistics{"/opt/minimum", "/opt/average", "/opt/maximum", "/opr/minimum", "/opr/average", "/opr/maximum"};

const std::string interface = "/interface-configurations/interface-configuration";
const std::string port = "/ots-oper/ots-ports/ots-port";
const std::string port_history =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
const std::string history = "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
const std::string instance =
    "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance[number='1']";

// The requests that a read of everything becomes when it finds these controllers: each is named in every list that is
// kept by controller, and the slots are asked for without their number, for all there are. Without any controller,
// nothing but the last instance of the history has a key.
Lines native_read(const Lines &controllers) {
    Lines lines;
    const bool keys = !controllers.empty();
    const auto select = [&](const std::string &entry, const Lines &leaves) {
        for (const std::string &leaf : leaves) {
            lines.push_back(entry + leaf);
        }
    };
    const auto select_each = [&](const auto &entry_of, const Lines &leaves) {
        for (const std::string &name : keys ? controllers : Lines{""}) {
            select(entry_of(name), leaves);
        }
    };
    const auto named = [&](const std::string &name) { return keys ? "[name='" + name + "']" : ""; };
    select_each(
        [&](const auto &name) { return interface + (keys ? "[active='act'][interface-name='" + name + "']" : ""); },
        settings_of_a_line);
    select(keys ? "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot" : "/active-nodes/active-node/slot",
           settings_of_a_slot);
    select_each([&](const auto &name) { return port + named(name); }, readings_of_a_port);
    select_each(
        [&](const auto &name) {
            return port_history + named(name) + history + (keys ? "[number='1']" : "") + instance;
        },
        statistics);
    return lines;
}

// The native paths of a read that becomes one request.
Lines translated(const ocpsm::Service &service, Kind kind) {
    const ocpsm::TranslateResult result = service.translate(ocpsm::Text{all_modules}, kind);
    EXPECT_EQ(result.result, "KERR_SUCCESS");
    EXPECT_THAT(result.warnings, testing::IsEmpty());
    EXPECT_EQ(result.requests.size(), 1U);
    Lines lines;
    for (const ocpsm::DeviceRequest &request : result.requests) {
        for (const ocpsm::DeviceOperation &operation : request.operations()) {
            EXPECT_EQ(operation.operation, ocpsm::Operation::merge) << operation.path;
            EXPECT_EQ(operation.value, std::nullopt) << operation.path;
            lines.push_back(operation.path);
        }
    }
    return lines;
}

class AllModules : public testing::Test {
protected:
    // By path, by filter and without anything: always the same.
    Lines answered(Kind kind) const {
        const Lines lines = lines_of(system.service().read(ocpsm::Paths{}, kind));
        EXPECT_EQ(lines_of(system.service().read(ocpsm::Paths{{"/aps/aps-modules/aps-module"}}, kind)), lines);
        EXPECT_EQ(lines_of(system.service().read(ocpsm::Text{all_modules}, kind)), lines);
        return lines;
    }

    LineSystem system;
};

TEST_F(AllModules, OfTheExample) {
    EXPECT_EQ(answered(Kind::get), joined({first_answer, third_answer}));
    EXPECT_EQ(answered(Kind::get_config), joined({configuration(first_answer), configuration(third_answer)}));
    EXPECT_EQ(translated(system.service(), Kind::get),
              native_read({"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}));
}

TEST_F(AllModules, WithOneInEverySlot) {
    ASSERT_TRUE(system.does([](const auto &line_system) { line_system.fit(2); }));
    EXPECT_EQ(answered(Kind::get), joined({first_answer, second_answer, third_answer}));
    EXPECT_EQ(answered(Kind::get_config),
              joined({configuration(first_answer), configuration(second_answer), configuration(third_answer)}));
    EXPECT_EQ(translated(system.service(), Kind::get),
              native_read({"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1", "Ots0/2/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}));
}

// A module that the inventory does not list is not looked for: neither its controllers nor its leaves are asked for,
// and what is answered of its slot has no module to go to.
TEST_F(AllModules, WithoutTheInventoryOfTheFirst) {
    system.lose_inventory(1);
    EXPECT_EQ(answered(Kind::get), third_answer);
    EXPECT_EQ(answered(Kind::get_config), configuration(third_answer));
    EXPECT_EQ(translated(system.service(), Kind::get), native_read({"Ots0/3/0/1", "Ots0/3/0/2"}));
}

TEST_F(AllModules, WithoutTheInventoryOfTheThird) {
    system.lose_inventory(3);
    EXPECT_EQ(answered(Kind::get), first_answer);
    EXPECT_EQ(answered(Kind::get_config), configuration(first_answer));
    EXPECT_EQ(translated(system.service(), Kind::get), native_read({"Ots0/1/0/1", "Ots0/1/0/2"}));
}

TEST_F(AllModules, WithoutAnyInventory) {
    system.lose_inventory(1);
    system.lose_inventory(3);
    EXPECT_THAT(answered(Kind::get), testing::IsEmpty());
    EXPECT_THAT(answered(Kind::get_config), testing::IsEmpty());
    EXPECT_EQ(translated(system.service(), Kind::get), native_read({}));
}

// In a process of its own: where a client has been loaded, it stays.
TEST(AllModulesDeathTest, WithoutADatabase) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto in_a_process_of_its_own = [] {
        const ocpsm::Service service = circle::service_without_database();
        EXPECT_EQ(translated(service, Kind::get), native_read({}));
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(in_a_process_of_its_own(), testing::ExitedWithCode(0), "");
}

} // namespace
