// The settings of a module: what each conversion adds in a read, a merge and a delete, whatever value the leaf has.
#include "conversion_support.hpp"

namespace {

using namespace conversion_test;

constexpr char enable[] = "/active-nodes/active-node/slot/psm/revertive/enable";
constexpr char wait[] = "/active-nodes/active-node/slot/psm/revertive/wtr";
constexpr char relative[] =
    "/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold";
constexpr char offset[] =
    "/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold-offset";
constexpr char lockout[] = "/active-nodes/active-node/slot/psm/lockout-from";
constexpr char delta[] = "/interface-configurations/interface-configuration/optics/optics-ots-rx-low-threshold-delta";
constexpr char thresholds[] = "/interface-configurations/interface-configuration/optics/rx-thresholds";
constexpr char threshold[] = "/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold";
constexpr char threshold_type[] =
    "/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold/rx-threshold-type";
constexpr char threshold_value[] =
    "/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold/rx-threshold";
constexpr char rx_attenuation[] =
    "/interface-configurations/interface-configuration/optics/optics-ots-rx-voa-attenuation";
constexpr char tx_attenuation[] =
    "/interface-configurations/interface-configuration/optics/optics-ots-tx-voa-attenuation";

struct Setting {
    const char *conversion;
    Scale scale;
    Lines read;
    Lines merge;
    Lines remove;
};

std::ostream &operator<<(std::ostream &out, const Setting &setting) {
    return out << setting.conversion;
}

Setting slot_setting(const char *conversion, const char *path) {
    return {conversion, Scale::tenths, lines("@ Start", "@ is get", add(path, "ots-cfg", "$", none, 0, 1), "@ End"),
            lines("@ Start", "@ else", add(path, "ots-cfg", "$", none, 0, 1), "@ End"),
            lines("@ Start", "@ delete", add(path, "ots-cfg", nullptr, src, 0, 1), "@ End")};
}

Setting attenuation(const char *conversion, const char *path, const char *controller) {
    return {conversion, Scale::tenths, lines("@ Start", add(path, "optics-cfg", "$", none, 0, 1), "@ End"),
            lines("@ Start", interface_key(controller), add(path, "optics-cfg", "$", none, 0, 1), "@ End"),
            lines("@ Start", interface_key(controller), add(path, "optics-cfg", "$", src, 0, 1), "@ End")};
}

std::vector<Setting> settings() {
    return {
        {"oc_opt_psm_cfg_revertive_to_low", Scale::text,
         lines("@ Start", add(enable, "ots-cfg", "$", none, 0, 1), dump(), "@ End"),
         lines("@ Start", "@ psm_slot = 2", add(enable, "ots-cfg", "$", none, 0, 1), dump(), "@ End"),
         lines("@ Start", add(enable, "ots-cfg", nullptr, src, 0, 1), dump(), "@ End")},
        {"oc_opt_psm_cfg_wtr_to_low", Scale::text, lines("@ Start", add(wait, "ots-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", add(wait, "ots-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", add(wait, "ots-cfg", nullptr, src, 0, 1), "@ End")},
        slot_setting("oc_opt_psm_cfg_relative_switch_th_to_low", relative),
        slot_setting("oc_opt_psm_cfg_relative_switch_th_offset_to_low", offset),
        {"oc_opt_psm_cfg_force_to_port_to_low", Scale::lockout,
         lines("@ Start", "@  get_data ^ ", dump(), "@ is get", add(lockout, "ots-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", "@  get_data ^ ", dump(), "@ else", add(lockout, "ots-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", "@  get_data ^ ", dump(), "@ delete", add(lockout, "ots-cfg", nullptr, src, 0, 1), "@ End")},

        attenuation("oc_opt_psm_cfg_primary_rx_attenuation_to_low", rx_attenuation, "Ots0/2/0/1"),
        attenuation("oc_opt_psm_cfg_primary_tx_attenuation_to_low", tx_attenuation, "Ots0/2/0/1"),
        attenuation("oc_opt_psm_cfg_secondary_rx_attenuation_to_low", rx_attenuation, "Ots0/2/0/2"),
        attenuation("oc_opt_psm_cfg_secondary_tx_attenuation_to_low", tx_attenuation, "Ots0/2/0/2"),

        {"oc_opt_psm_cfg_primary_th_hyst_to_low", Scale::tenths,
         lines("@ Start", interface_key("Ots0/2/0/1"), add(delta, "optics-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", interface_key("Ots0/2/0/1"), add(delta, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", interface_key("Ots0/2/0/1"), add(delta, "optics-cfg", nullptr, src, 0, 1), "@ End")},

        // Only the primary port opens its interface twice in a merge, and names the value before the type in a delete.
        {"oc_opt_psm_cfg_primary_th_to_low", Scale::tenths,
         lines("@ Start", interface_key("Ots0/2/0/1"), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", interface_key("Ots0/2/0/1"), interface_key("Ots0/2/0/1"),
               add(threshold_type, "optics-cfg", "low", src, 0, 1), add(threshold_value, "optics-cfg", "$", src, 0, 1),
               "@ End"),
         lines("@ Start", interface_key("Ots0/2/0/1"), add(thresholds, "optics-cfg", nullptr, src, 0, 1),
               add(threshold, "optics-cfg", nullptr, src, 0, 1), add(threshold_value, "optics-cfg", "$", src, 0, 1),
               add(threshold_type, "optics-cfg", "low", src, 0, 1), "@ End")},
        {"oc_opt_psm_cfg_secondary_th_to_low", Scale::tenths,
         lines("@ Start", dump(), interface_key("Ots0/2/0/2"), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", dump(), interface_key("Ots0/2/0/2"), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", dump(), interface_key("Ots0/2/0/2"), add(thresholds, "optics-cfg", nullptr, src, 0, 1),
               add(threshold, "optics-cfg", nullptr, src, 0, 1), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End")},
    };
}

class ConfigurationConversion : public ConversionTest, public ::testing::WithParamInterface<Setting> {
protected:
    void expect_everywhere(const std::vector<Situation> &situations, const Lines &expected) {
        for (const Situation &situation : situations) {
            for (const Value &value : values(GetParam().scale)) {
                expect_run(GetParam().conversion, situation, value, expected);
            }
        }
    }
};

TEST_P(ConfigurationConversion, SelectsTheNativeLeafInARead) {
    expect_everywhere(reads(), GetParam().read);
}

TEST_P(ConfigurationConversion, WritesTheNativeLeafInAMerge) {
    expect_everywhere(merges(), GetParam().merge);
}

TEST_P(ConfigurationConversion, TakesTheNativeLeafAwayInADelete) {
    expect_everywhere(deletes(), GetParam().remove);
}

std::string conversion_name(const ::testing::TestParamInfo<Setting> &info) {
    return info.param.conversion;
}

INSTANTIATE_TEST_SUITE_P(Settings, ConfigurationConversion, ::testing::ValuesIn(settings()), conversion_name);

// ---- an entry without a slot ----

struct Slotless {
    const char *conversion;
    Lines read;
    Lines merge;
    Lines remove;
};

Slotless slotless_attenuation(const char *conversion, const char *path, const char *controller) {
    const Setting setting = attenuation(conversion, path, controller);
    return {setting.conversion, setting.read, setting.merge, setting.remove};
}

std::vector<Slotless> slotless_settings() {
    const Lines secondary = lines("@ Start", dump(), add(threshold_type, "optics-cfg", "low", src, 0, 1),
                                  add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End");
    return {
        slotless_attenuation("oc_opt_psm_cfg_primary_rx_attenuation_to_low", rx_attenuation, "Ots0/-1/0/1"),
        slotless_attenuation("oc_opt_psm_cfg_primary_tx_attenuation_to_low", tx_attenuation, "Ots0/-1/0/1"),
        slotless_attenuation("oc_opt_psm_cfg_secondary_rx_attenuation_to_low", rx_attenuation, "Ots0/-1/0/2"),
        slotless_attenuation("oc_opt_psm_cfg_secondary_tx_attenuation_to_low", tx_attenuation, "Ots0/-1/0/2"),
        {"oc_opt_psm_cfg_primary_th_hyst_to_low", lines("@ Start", add(delta, "optics-cfg", "$", none, 0, 1), "@ End"),
         lines("@ Start", add(delta, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", add(delta, "optics-cfg", nullptr, src, 0, 1), "@ End")},
        {"oc_opt_psm_cfg_primary_th_to_low",
         lines("@ Start", add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", interface_key("Ots0/-1/0/1"), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End"),
         lines("@ Start", add(thresholds, "optics-cfg", nullptr, src, 0, 1),
               add(threshold, "optics-cfg", nullptr, src, 0, 1), add(threshold_value, "optics-cfg", "$", src, 0, 1),
               add(threshold_type, "optics-cfg", "low", src, 0, 1), "@ End")},
        {"oc_opt_psm_cfg_secondary_th_to_low", secondary, secondary,
         lines("@ Start", dump(), add(thresholds, "optics-cfg", nullptr, src, 0, 1),
               add(threshold, "optics-cfg", nullptr, src, 0, 1), add(threshold_type, "optics-cfg", "low", src, 0, 1),
               add(threshold_value, "optics-cfg", "$", src, 0, 1), "@ End")},
        {"oc_opt_psm_cfg_revertive_to_low", lines("@ Start", add(enable, "ots-cfg", "$", none, 0, 1), dump(), "@ End"),
         lines("@ Start", "@ psm_slot = -1", add(enable, "ots-cfg", "$", none, 0, 1), dump(), "@ End"),
         lines("@ Start", add(enable, "ots-cfg", nullptr, src, 0, 1), dump(), "@ End")},
    };
}

class ConfigurationWithoutSlot : public ConversionTest {
protected:
    void expect_all() {
        for (const Slotless &setting : slotless_settings()) {
            const bool scaled = std::string(setting.conversion) != "oc_opt_psm_cfg_revertive_to_low";
            const Value value = scaled ? Value{"-3.25", "-32"} : Value{"false", "false"};
            expect_run(setting.conversion, {"get-config", 0, 0}, value, setting.read);
            expect_run(setting.conversion, {"get", 10, 0}, value, setting.read);
            expect_run(setting.conversion, {"merge", 1, 0}, value, setting.merge);
            expect_run(setting.conversion, {"delete", 1, 3}, value, setting.remove);
            expect_run(setting.conversion, {"remove", 1, 4}, value, setting.remove);
        }
    }
};

TEST_F(ConfigurationWithoutSlot, NoListEntryIsCurrent) {
    request.state.list_node = nullptr;
    expect_all();
}

TEST_F(ConfigurationWithoutSlot, TheEntryHasNoName) {
    request.set_list_entry(fake::container("aps-module", {fake::leaf("config")}));
    expect_all();
}

TEST_F(ConfigurationWithoutSlot, TheNameHasNoValue) {
    request.set_list_entry(fake::container("aps-module", {fake::leaf("name")}));
    expect_all();
}

TEST_F(ConfigurationWithoutSlot, TheNameIsOfAnotherForm) {
    request.set_list_entry(fake::container("aps-module", {fake::leaf("name", "PSM-1")}));
    expect_all();
}

TEST_F(ConfigurationWithoutSlot, TheNameIsNotInUse) {
    request.set_list_entry(
        fake::container("aps-module", {fake::leaf("name", "0/2-PSM-OM").without_flags(YFW_NODE_IN_USE)}));
    expect_all();
}

TEST_F(ConfigurationWithoutSlot, TheEntryIsOfAnotherList) {
    request.set_list_entry(fake::container("module", {fake::leaf("name", "0/2-PSM-OM")}));
    expect_all();
}

// ---- single facts ----

class ConfigurationValues : public ConversionTest {
protected:
    // The line of the add with the value, of a merge.
    void expect_written(const std::string &conversion, const std::string &given, const char *written) {
        request.set_kind(YFW_KIND_EDIT_CONFIG);
        const Outcome outcome = run(conversion, leaf_with(given.c_str(), 0));
        ASSERT_GE(outcome.lines.size(), 2u);
        EXPECT_EQ(outcome.lines[outcome.lines.size() - 2], add(tx_attenuation, "optics-cfg", written, none, 0, 1))
            << "of " << given.substr(0, 40);
        EXPECT_EQ(outcome.lines.back(), conversion + " End");
    }
};

TEST_F(ConfigurationValues, ScalesToTenthsTruncatingTowardsZero) {
    const char *const conversion = "oc_opt_psm_cfg_secondary_tx_attenuation_to_low";
    expect_written(conversion, "-0.05", "0");
    expect_written(conversion, "-0.09", "0");
    expect_written(conversion, "0.09", "0");
    expect_written(conversion, "12.5", "125");
    expect_written(conversion, "-12.59", "-125");
    expect_written(conversion, "0.29", "2");
    expect_written(conversion, "2.5", "25");
    expect_written(conversion, "-2.1", "-21");
    expect_written(conversion, "0x1p3", "80");
    expect_written(conversion, "1e2", "1000");
    expect_written(conversion, "  \t7", "70");
    expect_written(conversion, "7dB", "70");
    expect_written(conversion, "   ", "0");
}

TEST_F(ConfigurationValues, GivesTheLeastIntegerForWhatNoIntegerHolds) {
    const char *const conversion = "oc_opt_psm_cfg_primary_tx_attenuation_to_low";
    for (const char *given : {"1e300", "-1e300", "nan", "-nan", "inf", "-inf", "214748364.8", "-214748365", "1e9"}) {
        expect_written(conversion, given, "-2147483648");
    }
    expect_written(conversion, "214748364", "2147483640");
    expect_written(conversion, "-214748364", "-2147483640");
}

TEST_F(ConfigurationValues, TakesTextsOfAnyLength) {
    const char *const conversion = "oc_opt_psm_cfg_primary_tx_attenuation_to_low";
    expect_written(conversion, std::string(5000, '1'), "-2147483648");
    expect_written(conversion, std::string(5000, 'x'), "0");
    expect_written(conversion, "12.5" + std::string(5000, ' '), "125");
    expect_written(conversion, std::string(5000, ' ') + "12.5", "0");
    expect_written(conversion, std::string(195, '0') + "12.5", "125");
    expect_written(conversion, std::string(196, '0') + "12.5", "120");
}

TEST_F(ConfigurationValues, PassesLongUnscaledTextsWhole) {
    const std::string text = std::string(5000, 'w');
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    EXPECT_EQ(run("oc_opt_psm_cfg_wtr_to_low", leaf_with(text.c_str(), 0)).lines,
              lines("oc_opt_psm_cfg_wtr_to_low Start", add(wait, "ots-cfg", text.c_str(), none, 0, 1),
                    "oc_opt_psm_cfg_wtr_to_low End"));
}

// A value counts when the flag says so and a text is there.
TEST_F(ConfigurationValues, ScalesOnlyAValueThatIsFlaggedAndThere) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    for (const char *conversion :
         {"oc_opt_psm_cfg_relative_switch_th_to_low", "oc_opt_psm_cfg_relative_switch_th_offset_to_low"}) {
        kidl_yfw_datatree *const unflagged =
            build(fake::leaf("leaf", "12.5").without_flags(YFW_NODE_HAS_VALUE), src).root();
        kidl_yfw_datatree *const absent = build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), src).root();
        for (kidl_yfw_datatree *source : {unflagged, absent}) {
            const Lines told = run(conversion, source).lines;
            ASSERT_EQ(told.size(), 4u);
            EXPECT_NE(told[2].find("value=\"\", src=none"), std::string::npos) << told[2];
        }
    }
}

TEST_F(ConfigurationValues, ForceToPortStandsAFlagWithoutText) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    kidl_yfw_datatree *const source = build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), src).root();
    EXPECT_EQ(run("oc_opt_psm_cfg_force_to_port_to_low", source).lines,
              filled(lines("@ Start", "@  get_data (null) ", dump(), "@ else", add(lockout, "ots-cfg", "", none, 0, 1),
                           "@ End"),
                     "oc_opt_psm_cfg_force_to_port_to_low", {nullptr, nullptr}));
}

TEST_F(ConfigurationValues, ForceToPortTakesTextsOfAnyLength) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    const std::string text = "PRIMARY" + std::string(5000, 'X');
    const Outcome outcome = run("oc_opt_psm_cfg_force_to_port_to_low", leaf_with(text.c_str(), 0));
    EXPECT_EQ(outcome.lines[outcome.lines.size() - 2], add(lockout, "ots-cfg", "", none, 0, 1));
    ASSERT_GE(platform.traced().size(), 2u);
    EXPECT_EQ(platform.traced()[1].whole.size(), 249u);
    EXPECT_EQ(platform.logged()[1].text.substr(platform.logged()[1].text.find(',') + 1), " get_data " + text + " ");
}

// A text is an argument of the message, never its format.
TEST_F(ConfigurationValues, ForceToPortPrintsPercentSignsAsTheyStand) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    const Outcome outcome = run("oc_opt_psm_cfg_force_to_port_to_low", leaf_with("0%2f1 %s %n", 0));
    EXPECT_EQ(outcome.lines[1], "oc_opt_psm_cfg_force_to_port_to_low  get_data 0%2f1 %s %n ");
}

class ConfigurationResults : public ConversionTest {};

// Conversions look at the current entry, not at the whole request.
TEST_F(ConfigurationResults, TheSlotIsThatOfTheCurrentEntry) {
    for (const char *slot : {"1", "3", "17", "-4"}) {
        request.set_list_entry(
            fake::container("aps-module", {fake::leaf("name", std::string("0/") + slot + "-PSM-OM")}));
        request.set_kind(YFW_KIND_EDIT_CONFIG);
        const std::string controller = std::string("Ots0/") + slot + "/0/2";
        EXPECT_EQ(run("oc_opt_psm_cfg_secondary_rx_attenuation_to_low", leaf_with("1.0", 0)).lines,
                  lines("oc_opt_psm_cfg_secondary_rx_attenuation_to_low Start", interface_key(controller.c_str()),
                        add(rx_attenuation, "optics-cfg", "10", none, 0, 1),
                        "oc_opt_psm_cfg_secondary_rx_attenuation_to_low End"));
    }
}

TEST_F(ConfigurationResults, AThresholdOfAModuleIsMerged) {
    expect_run("oc_opt_psm_cfg_primary_th_to_low", {"merge", 1, 0}, {"12.5", "125"},
               lines("@ Start", interface_key("Ots0/2/0/1"), interface_key("Ots0/2/0/1"),
                     add(threshold_type, "optics-cfg", "low", src, 0, 1),
                     add(threshold_value, "optics-cfg", "125", src, 0, 1), "@ End"));
}

TEST_F(ConfigurationResults, AThresholdOfAModuleIsDeleted) {
    request.set_list_entry(fake::container("aps-module", {fake::leaf("name", "0/1-PSM-OM")}));
    expect_run("oc_opt_psm_cfg_secondary_th_to_low", {"delete", 1, 3}, {nullptr, ""},
               lines("@ Start", dump(), interface_key("Ots0/1/0/2"), add(thresholds, "optics-cfg", nullptr, src, 0, 1),
                     add(threshold, "optics-cfg", nullptr, src, 0, 1),
                     add(threshold_type, "optics-cfg", "low", src, 0, 1),
                     add(threshold_value, "optics-cfg", "", src, 0, 1), "@ End"));
}

// While the key of the interface is added below a delete, the leaf carries no delete and says that it was rewritten.
TEST_F(ConfigurationResults, TheKeyOfAnInterfaceIsNoDelete) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    kidl_yfw_datatree *const source = leaf_with("1.0", 3);
    std::vector<std::uint32_t> rewritten;
    platform.before("add", [&](const std::string &) { rewritten.push_back(source->flags & 16u); });
    const Outcome outcome = run("oc_opt_psm_cfg_primary_rx_attenuation_to_low", source);
    EXPECT_EQ(outcome.operations, (std::vector<std::uint32_t>{0, 0, 0, 0, 3}));
    EXPECT_EQ(rewritten, (std::vector<std::uint32_t>{16, 16, 16, 16, 16}));
    EXPECT_EQ(source->operation, 3u);
    EXPECT_EQ(source->flags, 1u | 2u | 16u);
}

TEST_F(ConfigurationResults, AMergeIsMarkedOnlyAfterTheKeyOfTheInterface) {
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    kidl_yfw_datatree *const source = leaf_with("1.0", 0);
    std::vector<std::uint32_t> rewritten;
    platform.before("add", [&](const std::string &) { rewritten.push_back(source->flags & 16u); });
    run("oc_opt_psm_cfg_primary_rx_attenuation_to_low", source);
    EXPECT_EQ(rewritten, (std::vector<std::uint32_t>{0, 0, 0, 0, 16}));
    EXPECT_EQ(source->operation, 0u);
}

} // namespace
