// Reads of all modules, whole: every value of the answers worked out by hand from the numbers of the example (its
// slots in simulator/line_system/line_system.cpp, hundredths there and in the comments here), and the native requests
// that these reads become.
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answers.hpp"
#include "line_system.hpp"

namespace {

using circle::Lines;
using circle::lines_of;
using circle::LineSystem;
using ocpsm::Kind;

const std::string all_modules = R"({"openconfig-transport-line-protection:aps": [null]})";

// ---- what the example holds ----

const Lines first{
    "1/name = 0/1-PSM-OM",
    "1/config/name = 0/1-PSM-OM",
    "1/config/revertive = true",
    "1/config/wait-to-restore-time = 10000",
    "1/config/primary-switch-threshold = -25.0",   // low threshold of the primary line: -250 tenths
    "1/config/primary-switch-hysteresis = 1.0",    // its margin: 10 tenths
    "1/config/secondary-switch-threshold = -28.0", // low threshold of the secondary line: -280 tenths
    "1/config/relative-switch-threshold = 0.0",
    "1/config/relative-switch-threshold-offset = 0.0",
    "1/config/force-to-port = NONE", // lock-out from neither line, the empty text
    "1/state/name = 0/1-PSM-OM",
    "1/state/revertive = true",
    "1/state/wait-to-restore-time = 10000",
    "1/state/primary-switch-threshold = -25.0",
    "1/state/primary-switch-hysteresis = 1.0",
    "1/state/secondary-switch-threshold = -28.0",
    "1/state/relative-switch-threshold = 0.0",
    "1/state/relative-switch-threshold-offset = 0.0",
    "1/state/force-to-port = NONE",
    "1/state/active-path = openconfig-transport-line-protection:PRIMARY", // where a module begins
    "1/ports/line-primary-in/config/target-attenuation = 2.5",            // 25 tenths
    "1/ports/line-primary-in/state/target-attenuation = 2.5",
    "1/ports/line-primary-in/state/attenuation = 2.5",              // 250
    "1/ports/line-primary-in/state/optical-power/instant = -12.34", // what the whole fibre delivers: -1234
    "1/ports/line-primary-in/state/optical-power/avg = -12.3",      // history of port 1, received: -1230
    "1/ports/line-primary-in/state/optical-power/min = -12.51",
    "1/ports/line-primary-in/state/optical-power/max = -12.18",
    "1/ports/line-primary-out/config/target-attenuation = 1.0", // 10 tenths
    "1/ports/line-primary-out/state/target-attenuation = 1.0",
    "1/ports/line-primary-out/state/attenuation = 1.0",             // 100
    "1/ports/line-primary-out/state/optical-power/instant = -2.15", // client 105 - 100, offset -220: -215
    "1/ports/line-primary-out/state/optical-power/avg = -2.14",     // history of port 1, transmitted: -214
    "1/ports/line-primary-out/state/optical-power/min = -2.2",
    "1/ports/line-primary-out/state/optical-power/max = -2.09",
    "1/ports/line-secondary-in/config/target-attenuation = 1.5", // 15 tenths
    "1/ports/line-secondary-in/state/target-attenuation = 1.5",
    "1/ports/line-secondary-in/state/attenuation = 1.5",              // 150
    "1/ports/line-secondary-in/state/optical-power/instant = -15.87", // fibre: -1587
    "1/ports/line-secondary-in/state/optical-power/avg = -15.9",      // history of port 2, received: -1590
    "1/ports/line-secondary-in/state/optical-power/min = -16.12",
    "1/ports/line-secondary-in/state/optical-power/max = -15.77",
    "1/ports/line-secondary-out/config/target-attenuation = 1.0", // 10 tenths
    "1/ports/line-secondary-out/state/target-attenuation = 1.0",
    "1/ports/line-secondary-out/state/attenuation = 1.0",             // 100
    "1/ports/line-secondary-out/state/optical-power/instant = -2.23", // client 105 - 100, offset -228: -223
    "1/ports/line-secondary-out/state/optical-power/avg = -2.22",     // history of port 2, transmitted: -222
    "1/ports/line-secondary-out/state/optical-power/min = -2.31",
    "1/ports/line-secondary-out/state/optical-power/max = -2.17",
    "1/ports/common-output/state/optical-power/instant = -14.82", // primary -1234 - 250, offset 2: -1482
    "1/ports/common-output/state/optical-power/avg = -14.8",      // history of port 0, transmitted: -1480
    "1/ports/common-output/state/optical-power/min = -14.95",
    "1/ports/common-output/state/optical-power/max = -14.71",
};

// A module that has just been fitted into an unused slot: nothing is set, its attenuators are open, no interval has
// passed. Its slot's client sends 100, its fibres deliver -1250 and -1450; the offsets are -30, -340, -340.
const Lines second{
    "2/name = 0/2-PSM-OM",
    "2/config/name = 0/2-PSM-OM",
    "2/state/name = 0/2-PSM-OM",
    "2/state/active-path = openconfig-transport-line-protection:PRIMARY",
    "2/ports/line-primary-in/state/attenuation = 0.0",
    "2/ports/line-primary-in/state/optical-power/instant = -12.5",
    "2/ports/line-primary-out/state/attenuation = 0.0",
    "2/ports/line-primary-out/state/optical-power/instant = -2.4", // 100, offset -340: -240
    "2/ports/line-secondary-in/state/attenuation = 0.0",
    "2/ports/line-secondary-in/state/optical-power/instant = -14.5",
    "2/ports/line-secondary-out/state/attenuation = 0.0",
    "2/ports/line-secondary-out/state/optical-power/instant = -2.4", // 100, offset -340: -240
    "2/ports/common-output/state/optical-power/instant = -12.8",     // primary -1250, offset -30: -1280
};

const Lines third{
    "3/name = 0/3-PSM-OM",
    "3/config/name = 0/3-PSM-OM",
    "3/config/revertive = false",
    "3/config/wait-to-restore-time = 300000",
    "3/config/primary-switch-threshold = -26.5",       // -265 tenths
    "3/config/primary-switch-hysteresis = 1.5",        // 15 tenths
    "3/config/secondary-switch-threshold = -30.0",     // -300 tenths
    "3/config/relative-switch-threshold = 3.0",        // 30 tenths
    "3/config/relative-switch-threshold-offset = 0.5", // 5 tenths
    "3/config/force-to-port = NONE",
    "3/state/name = 0/3-PSM-OM",
    "3/state/revertive = false",
    "3/state/wait-to-restore-time = 300000",
    "3/state/primary-switch-threshold = -26.5",
    "3/state/primary-switch-hysteresis = 1.5",
    "3/state/secondary-switch-threshold = -30.0",
    "3/state/relative-switch-threshold = 3.0",
    "3/state/relative-switch-threshold-offset = 0.5",
    "3/state/force-to-port = NONE",
    "3/state/active-path = openconfig-transport-line-protection:SECONDARY",
    "3/ports/line-primary-in/config/target-attenuation = 0.0", // set to 0, so it is answered
    "3/ports/line-primary-in/state/target-attenuation = 0.0",
    "3/ports/line-primary-in/state/attenuation = 0.0",
    "3/ports/line-primary-in/state/optical-power/instant = -40.0", // the fibre is cut: dark
    "3/ports/line-primary-in/state/optical-power/avg = -40.0",     // history of port 1, received: dark
    "3/ports/line-primary-in/state/optical-power/min = -40.0",
    "3/ports/line-primary-in/state/optical-power/max = -40.0",
    "3/ports/line-primary-out/config/target-attenuation = 0.0",
    "3/ports/line-primary-out/state/target-attenuation = 0.0",
    "3/ports/line-primary-out/state/attenuation = 0.0",
    "3/ports/line-primary-out/state/optical-power/instant = -2.51", // client 88 - 0, offset -339: -251
    "3/ports/line-primary-out/state/optical-power/avg = -2.5",      // history of port 1, transmitted: -250
    "3/ports/line-primary-out/state/optical-power/min = -2.56",
    "3/ports/line-primary-out/state/optical-power/max = -2.44",
    "3/ports/line-secondary-in/config/target-attenuation = 0.8", // set to 8 tenths,
    "3/ports/line-secondary-in/state/target-attenuation = 0.8",
    "3/ports/line-secondary-in/state/attenuation = 0.75",             // came to rest at 75
    "3/ports/line-secondary-in/state/optical-power/instant = -16.59", // fibre: -1659
    "3/ports/line-secondary-in/state/optical-power/avg = -16.61",     // history of port 2, received: -1661
    "3/ports/line-secondary-in/state/optical-power/min = -16.83",
    "3/ports/line-secondary-in/state/optical-power/max = -16.4",
    "3/ports/line-secondary-out/config/target-attenuation = 0.0",
    "3/ports/line-secondary-out/state/target-attenuation = 0.0",
    "3/ports/line-secondary-out/state/attenuation = 0.0",
    "3/ports/line-secondary-out/state/optical-power/instant = -2.48", // client 88 - 0, offset -336: -248
    "3/ports/line-secondary-out/state/optical-power/avg = -2.47",     // history of port 2, transmitted: -247
    "3/ports/line-secondary-out/state/optical-power/min = -2.55",
    "3/ports/line-secondary-out/state/optical-power/max = -2.4",
    "3/ports/common-output/state/optical-power/instant = -17.61", // secondary -1659 - 75, offset -27: -1761
    "3/ports/common-output/state/optical-power/avg = -17.6",      // history of port 0, transmitted: -1760
    "3/ports/common-output/state/optical-power/min = -17.74",
    "3/ports/common-output/state/optical-power/max = -17.52",
};

// Those of its lines that stand in config, and the name.
Lines configuration(const Lines &module) {
    Lines lines;
    for (const std::string &line : module) {
        if (line.find("/state/") == std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

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
// kept by controller, and the slots are asked for without their number, for all there are.
Lines native_read(const Lines &controllers) {
    Lines lines;
    const auto select = [&](const std::string &entry, const Lines &leaves) {
        for (const std::string &leaf : leaves) {
            lines.push_back(entry + leaf);
        }
    };
    for (const std::string &name : controllers) {
        select(interface + "[active='act'][interface-name='" + name + "']", settings_of_a_line);
    }
    select("/active-nodes/active-node[node-name='0/RP0/CPU0']/slot", settings_of_a_slot);
    for (const std::string &name : controllers) {
        select(port + "[name='" + name + "']", readings_of_a_port);
    }
    for (const std::string &name : controllers) {
        select(port_history + "[name='" + name + "']" + history + "[number='1']" + instance, statistics);
    }
    return lines;
}

// Without any, nothing but the last instance of the history has a key.
const Lines native_read_of_everything = [] {
    Lines lines;
    for (const auto &[entry, leaves] :
         std::vector<std::pair<std::string, Lines>>{{interface, settings_of_a_line},
                                                    {"/active-nodes/active-node/slot", settings_of_a_slot},
                                                    {port, readings_of_a_port},
                                                    {port_history + history + instance, statistics}}) {
        for (const std::string &leaf : leaves) {
            lines.push_back(entry + leaf);
        }
    }
    return lines;
}();

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
    EXPECT_EQ(answered(Kind::get), joined({first, third}));
    EXPECT_EQ(answered(Kind::get_config), joined({configuration(first), configuration(third)}));
    EXPECT_EQ(translated(system.service(), Kind::get),
              native_read({"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}));
}

TEST_F(AllModules, WithOneInEverySlot) {
    ASSERT_TRUE(system.fit(2));
    EXPECT_EQ(answered(Kind::get), joined({first, second, third}));
    EXPECT_EQ(answered(Kind::get_config), joined({configuration(first), configuration(second), configuration(third)}));
    EXPECT_EQ(translated(system.service(), Kind::get),
              native_read({"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1", "Ots0/2/0/2", "Ots0/3/0/1", "Ots0/3/0/2"}));
}

// A module that the inventory does not list is not looked for: neither its controllers nor its leaves are asked for,
// and what is answered of its slot has no module to go to.
TEST_F(AllModules, WithoutTheInventoryOfTheFirst) {
    system.lose_inventory(1);
    EXPECT_EQ(answered(Kind::get), third);
    EXPECT_EQ(answered(Kind::get_config), configuration(third));
    EXPECT_EQ(translated(system.service(), Kind::get), native_read({"Ots0/3/0/1", "Ots0/3/0/2"}));
}

TEST_F(AllModules, WithoutTheInventoryOfTheThird) {
    system.lose_inventory(3);
    EXPECT_EQ(answered(Kind::get), first);
    EXPECT_EQ(answered(Kind::get_config), configuration(first));
    EXPECT_EQ(translated(system.service(), Kind::get), native_read({"Ots0/1/0/1", "Ots0/1/0/2"}));
}

TEST_F(AllModules, WithoutAnyInventory) {
    system.lose_inventory(1);
    system.lose_inventory(3);
    EXPECT_THAT(answered(Kind::get), testing::IsEmpty());
    EXPECT_THAT(answered(Kind::get_config), testing::IsEmpty());
    EXPECT_EQ(translated(system.service(), Kind::get), native_read_of_everything);
}

// In a process of its own: where a client has been loaded, it stays.
TEST(AllModulesDeathTest, WithoutADatabase) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto in_a_process_of_its_own = [] {
        const ocpsm::Service service = circle::service_without_database();
        EXPECT_EQ(translated(service, Kind::get), native_read_of_everything);
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(in_a_process_of_its_own(), testing::ExitedWithCode(0), "");
}

} // namespace
