#include "simulator/line_system/database_items.hpp"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shown_item.hpp"
#include "simulator/line_system/operations.hpp"

namespace ocpsm::line_system {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// Of the secondary line of slot 2.
std::vector<std::string> shown_items(const Readings &readings) {
    return shown(port_items(2, 2, readings));
}

TEST(ExampleLineSystem, HasModulesInSlots1And3) {
    EXPECT_THAT(fitted_slots(example()), ElementsAre(1, 3));
    EXPECT_THAT(fitted_slots(LineSystem{}), IsEmpty());
    EXPECT_EQ(module_name(2), "0/2-PSM-OM");
}

TEST(ExampleLineSystem, StoresTheItemsOfItsControllers) {
    EXPECT_THAT(
        shown(database_items(example())),
        UnorderedElementsAre(
            "/oper/ots/if/Ots0_1_0_0/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=405 "
            "ReceivePowerDbm=405 TransmitPower=-1482 TransmitPowerDbm=-1482 } ] }",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_1_0_0/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='     4.04 ' Minimum='     3.98 ' Maximum='     4.11 ' } OPT{ "
            "Average='   -14.80 ' Minimum='   -14.95 ' Maximum='   -14.71 ' } }",

            "/oper/ots/if/Ots0_1_0_1/optics_info: optics_info 1.0 optics_edm_info{ RxLowThreshold=-250 }",
            "/oper/ots/if/Ots0_1_0_1/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=-1234 "
            "ReceivePowerDbm=-1234 TransmitPower=-215 TransmitPowerDbm=-215 } ] } Ots_edm_info{ RxVoaAttenuation=250 "
            "TxVoaAttenuation=100 }",
            "/cfg/if/act/Ots0_1_0_1/Optics/rx_attenuation: 25", "/cfg/if/act/Ots0_1_0_1/Optics/tx_attenuation: 10",
            "/cfg/if/act/Ots0_1_0_1/Optics/rx_threshold/0x1: -250",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_1_0_1/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='   -12.30 ' Minimum='   -12.51 ' Maximum='   -12.18 ' } OPT{ "
            "Average='    -2.14 ' Minimum='    -2.20 ' Maximum='    -2.09 ' } }",

            "/oper/ots/if/Ots0_1_0_2/optics_info: optics_info 1.0 optics_edm_info{ RxLowThreshold=-280 }",
            "/oper/ots/if/Ots0_1_0_2/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=-1587 "
            "ReceivePowerDbm=-1587 TransmitPower=-223 TransmitPowerDbm=-223 } ] } Ots_edm_info{ RxVoaAttenuation=150 "
            "TxVoaAttenuation=100 }",
            "/cfg/if/act/Ots0_1_0_2/Optics/rx_attenuation: 15", "/cfg/if/act/Ots0_1_0_2/Optics/tx_attenuation: 10",
            "/cfg/if/act/Ots0_1_0_2/Optics/rx_threshold/0x1: -280",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_1_0_2/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='   -15.90 ' Minimum='   -16.12 ' Maximum='   -15.77 ' } OPT{ "
            "Average='    -2.22 ' Minimum='    -2.31 ' Maximum='    -2.17 ' } }",

            "/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag: inv_basic_bag 1.0 "
            "inv_phy_entity_basic_info{ Name='0/1-PSM-OM' }",

            "/oper/ots/if/Ots0_3_0_0/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=88 "
            "ReceivePowerDbm=88 TransmitPower=-1761 TransmitPowerDbm=-1761 } ] }",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_3_0_0/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='     0.87 ' Minimum='     0.80 ' Maximum='     0.93 ' } OPT{ "
            "Average='   -17.60 ' Minimum='   -17.74 ' Maximum='   -17.52 ' } }",

            "/oper/ots/if/Ots0_3_0_1/optics_info: optics_info 1.0 optics_edm_info{ RxLowThreshold=-265 }",
            "/oper/ots/if/Ots0_3_0_1/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=-4000 "
            "ReceivePowerDbm=-4000 TransmitPower=-251 TransmitPowerDbm=-251 } ] } Ots_edm_info{ RxVoaAttenuation=0 "
            "TxVoaAttenuation=0 }",
            "/cfg/if/act/Ots0_3_0_1/Optics/rx_attenuation: 0", "/cfg/if/act/Ots0_3_0_1/Optics/tx_attenuation: 0",
            "/cfg/if/act/Ots0_3_0_1/Optics/rx_threshold/0x1: -265",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_3_0_1/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='   -40.00 ' Minimum='   -40.00 ' Maximum='   -40.00 ' } OPT{ "
            "Average='    -2.50 ' Minimum='    -2.56 ' Maximum='    -2.44 ' } }",

            "/oper/ots/if/Ots0_3_0_2/optics_info: optics_info 1.0 optics_edm_info{ RxLowThreshold=-300 }",
            "/oper/ots/if/Ots0_3_0_2/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=-1659 "
            "ReceivePowerDbm=-1659 TransmitPower=-248 TransmitPowerDbm=-248 } ] } Ots_edm_info{ RxVoaAttenuation=75 "
            "TxVoaAttenuation=0 }",
            "/cfg/if/act/Ots0_3_0_2/Optics/rx_attenuation: 8", "/cfg/if/act/Ots0_3_0_2/Optics/tx_attenuation: 0",
            "/cfg/if/act/Ots0_3_0_2/Optics/rx_threshold/0x1: -300",
            "/oper/perfmgmt/gl/periodic/optics/interface/Ots0_3_0_2/30sec/optics/1/timeline_rev/0x1: pm_optics_paras "
            "1.0 pm_optics_paras{ OPR{ Average='   -16.61 ' Minimum='   -16.83 ' Maximum='   -16.40 ' } OPT{ "
            "Average='    -2.47 ' Minimum='    -2.55 ' Maximum='    -2.40 ' } }",

            "/oper/inventory/gl/entity/0%2f3-PSM-OM/attrib/inv_basic_bag: inv_basic_bag 1.0 "
            "inv_phy_entity_basic_info{ Name='0/3-PSM-OM' }"));
}

TEST(DatabaseItems, AreNotThereForWhatIsAbsent) {
    EXPECT_THAT(database_items(LineSystem{}), IsEmpty());
    EXPECT_THAT(port_items(2, 2, {}), IsEmpty());
}

TEST(DatabaseItems, HoldOnlyTheFieldsThatAreThere) {
    EXPECT_THAT(shown_items({.receive_power = 0}),
                ElementsAre("/oper/ots/if/Ots0_2_0_2/ots_info: ots_info 1.0 ots_edm_info{ LaneData[ { ReceivePower=0 "
                            "ReceivePowerDbm=0 } ] }"));
    EXPECT_THAT(shown_items({.tx_attenuation = 0}),
                ElementsAre("/oper/ots/if/Ots0_2_0_2/ots_info: ots_info 1.0 Ots_edm_info{ TxVoaAttenuation=0 }"));
    // Nothing of the received side may be found where only the transmitted one is recorded.
    EXPECT_THAT(shown_items({.transmitted = Statistics{1, 2, 3}}),
                ElementsAre("/oper/perfmgmt/gl/periodic/optics/interface/Ots0_2_0_2/30sec/optics/1/timeline_rev/0x1: "
                            "pm_optics_paras 1.0 pm_optics_paras{ OPT{ Average='     0.01 ' Minimum='     0.02 ' "
                            "Maximum='     0.03 ' } }"));
}

// Of the thresholds, the one that counts for the switch.
TEST(DatabaseItems, HoldWhatIsConfigured) {
    LineSystem system = fit({}, 2);
    system.slots[1].lines[1] = {
        .rx_thresholds = {{"high", 7}}, .rx_low_threshold_delta = 5, .rx_attenuation = 0, .tx_attenuation = -1};
    EXPECT_THAT(shown(database_items(system)), AllOf(Contains("/cfg/if/act/Ots0_2_0_2/Optics/rx_attenuation: 0"),
                                                     Contains("/cfg/if/act/Ots0_2_0_2/Optics/tx_attenuation: -1"),
                                                     Contains(StartsWith("/cfg/")).Times(2)));
}

TEST(DatabaseItems, WriteHistoryAsPaddedTexts) {
    const auto lines = shown_items(
        {.received = Statistics{-5, 0, 100}, .transmitted = Statistics{std::numeric_limits<int>::min(), -100000, 99}});
    EXPECT_THAT(lines,
                ElementsAre("/oper/perfmgmt/gl/periodic/optics/interface/Ots0_2_0_2/30sec/optics/1/timeline_rev/0x1: "
                            "pm_optics_paras 1.0 pm_optics_paras{ OPR{ Average='    -0.05 ' Minimum='     0.00 ' "
                            "Maximum='     1.00 ' } OPT{ Average='-21474836.48 ' Minimum=' -1000.00 ' "
                            "Maximum='     0.99 ' } }"));
}

TEST(DatabaseItems, AreThoseOfFittedModulesOnly) {
    LineSystem system = example();
    system.slots[0].module.reset();
    system.slots[2].module.reset();
    EXPECT_THAT(database_items(system), IsEmpty());
}

} // namespace
} // namespace ocpsm::line_system
