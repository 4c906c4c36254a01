// The table of a line system, from its state and as text, JSON and XML.
#include <climits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "line_table.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/view.hpp"

namespace ocpsm {
namespace {

namespace line_system = ocpsm::line_system;
using testing::ElementsAre;

std::vector<std::string> texts(const LineTable &table) {
    std::vector<std::string> lines;
    for (const TableText &line : to_text(table)) {
        lines.push_back(line.text);
    }
    return lines;
}

// What is said of what decides in slot 1.
std::string protection(const line_system::LineSystem &system) {
    return view(system).modules.at(0).protection;
}

ProtectionRow settings_of(const line_system::LineSystem &system, std::size_t module) {
    return view(system).modules.at(module).settings;
}

LineTable one_module() {
    LineTable table;
    table.clock = 61'234;
    table.modules.push_back({2, "0/2-PSM-OM", "not revertive", {}});
    table.modules[0].lines[0].active = true;
    table.modules[0].settings = {.revertive = false,
                                 .wait_to_restore = 10'000,
                                 .left_to_restore = 9'850,
                                 .hysteresis = 150,
                                 .relative_threshold = -5,
                                 .relative_offset = 0,
                                 .forced_to = Line::secondary};
    table.modules[0].lines[1] = {.active = false, .measured = {-4000, -5, 0, 12345, 100}, .cut = true};
    return table;
}

TEST(LineTable, ShowsWhatIsNotThereAsADash) {
    EXPECT_THAT(texts(one_module()),
                ElementsAre("time 61.234 s", "", "              receive     switch      receive  transmit     transmit",
                            "                power  threshold  attenuation     power  attenuation",
                            "                  dBm        dBm           dB       dBm           dB  fibre", "",
                            "0/2-PSM-OM  active path PRIMARY; not revertive",
                            "* primary           -          -            -         -            -  whole",
                            "  secondary    -40.00      -0.05         0.00    123.45         1.00  cut"));
}

TEST(LineTable, SaysThatNoModuleIsFitted) {
    const std::vector<std::string> lines = texts({});
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines.at(5), "");
    EXPECT_EQ(lines.at(6), "no module is fitted");
}

TEST(LineTable, TellsWhichLineOfWhichModuleATextIsAbout) {
    const std::vector<TableText> lines = to_text(view(line_system::example()));
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_FALSE(lines.at(4).module.has_value());
    EXPECT_EQ(lines.at(6).module, 0U);
    EXPECT_FALSE(lines.at(6).line.has_value());
    EXPECT_EQ(lines.at(11).module, 1U);
    EXPECT_EQ(lines.at(11).line, 0U);
    EXPECT_EQ(lines.at(12).line, 1U);
}

TEST(LineTable, SaysWhatDecidesAboutTheLine) {
    line_system::LineSystem system = line_system::example();
    system = line_system::cut(system, 1, line_system::Path::primary);
    system = line_system::tick(system, 100);
    EXPECT_EQ(protection(system), "reverts after 10.0 s");
    system = line_system::splice(system, 1, line_system::Path::primary);
    system = line_system::tick(system, 100);
    EXPECT_EQ(protection(system), "reverts in 10.0 s");
    system = line_system::tick(system, 2500);
    EXPECT_EQ(protection(system), "reverts in 7.5 s");
    EXPECT_EQ(settings_of(system, 0), (ProtectionRow{.revertive = true,
                                                     .wait_to_restore = 10'000,
                                                     .left_to_restore = 7'500,
                                                     .hysteresis = 100,
                                                     .relative_threshold = 0,
                                                     .relative_offset = 0}));
    EXPECT_EQ(settings_of(system, 1), (ProtectionRow{.revertive = false,
                                                     .wait_to_restore = 300'000,
                                                     .hysteresis = 150,
                                                     .relative_threshold = 300,
                                                     .relative_offset = 50}));
    system = line_system::tick(system, 7500);
    EXPECT_EQ(protection(system), "reverts after 10.0 s");

    line_system::SlotSettings &settings = line_system::slot(system, 1).settings;
    settings.revertive = false;
    EXPECT_EQ(protection(system), "not revertive");
    settings.relative_threshold = -25;
    settings.relative_offset = -5;
    EXPECT_EQ(protection(system), "relative threshold -2.50 dB, offset -0.50 dB");
    settings.lockout_from = "working";
    EXPECT_EQ(protection(system), "forced to SECONDARY");
    EXPECT_EQ(settings_of(system, 0).forced_to, Line::secondary);
    settings.lockout_from = "protected";
    EXPECT_EQ(protection(system), "forced to PRIMARY");
}

TEST(LineTable, PrintsJson) {
    EXPECT_EQ(to_json(one_module()), R"({
  "clock": 61234,
  "modules": [
    {
      "slot": 2,
      "name": "0/2-PSM-OM",
      "active-path": "PRIMARY",
      "force-to-port": "SECONDARY",
      "revertive": false,
      "wait-to-restore-time": 10000,
      "time-left-to-restore": 9850,
      "primary-switch-hysteresis": 1.50,
      "relative-switch-threshold": -0.05,
      "relative-switch-threshold-offset": 0.00,
      "lines": [
        {"name": "primary", "fibre": "whole"},
        {"name": "secondary", "receive-power": -40.00, "switch-threshold": -0.05, "receive-attenuation": 0.00, "transmit-power": 123.45, "transmit-attenuation": 1.00, "fibre": "cut"}
      ]
    }
  ]
}
)");
    EXPECT_EQ(to_json({}), "{\n  \"clock\": 0,\n  \"modules\": []\n}\n");
}

TEST(LineTable, PrintsXml) {
    EXPECT_EQ(to_xml(one_module()), R"(<line-system>
  <clock>61234</clock>
  <module>
    <slot>2</slot>
    <name>0/2-PSM-OM</name>
    <active-path>PRIMARY</active-path>
    <force-to-port>SECONDARY</force-to-port>
    <revertive>false</revertive>
    <wait-to-restore-time>10000</wait-to-restore-time>
    <time-left-to-restore>9850</time-left-to-restore>
    <primary-switch-hysteresis>1.50</primary-switch-hysteresis>
    <relative-switch-threshold>-0.05</relative-switch-threshold>
    <relative-switch-threshold-offset>0.00</relative-switch-threshold-offset>
    <line>
      <name>primary</name>
      <fibre>whole</fibre>
    </line>
    <line>
      <name>secondary</name>
      <receive-power>-40.00</receive-power>
      <switch-threshold>-0.05</switch-threshold>
      <receive-attenuation>0.00</receive-attenuation>
      <transmit-power>123.45</transmit-power>
      <transmit-attenuation>1.00</transmit-attenuation>
      <fibre>cut</fibre>
    </line>
  </module>
</line-system>
)");
}

TEST(LineTable, WritesNumbersWithTheirPlaces) {
    EXPECT_EQ(hundredths(0), "0.00");
    EXPECT_EQ(hundredths(7), "0.07");
    EXPECT_EQ(hundredths(-7), "-0.07");
    EXPECT_EQ(hundredths(-100), "-1.00");
    EXPECT_EQ(hundredths(INT_MIN), "-21474836.48");
    EXPECT_EQ(seconds(0), "0.0 s");
    EXPECT_EQ(seconds(100), "0.1 s");
    EXPECT_EQ(seconds(12'050), "12.05 s");
    EXPECT_EQ(seconds(1), "0.001 s");
    EXPECT_EQ(seconds(86'400'000), "86400.0 s");
}

} // namespace
} // namespace ocpsm
