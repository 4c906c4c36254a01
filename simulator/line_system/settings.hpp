// What can be set at a line system and what can be read from it: a row for each, which the store, the native models,
// the system database and the table that a person looks at are all made from. A member without a row is in none of
// them.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_SETTINGS_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_SETTINGS_HPP

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "simulator/line_system/controllers.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

using SettingMember = std::variant<std::optional<bool> SlotSettings::*, std::optional<std::uint32_t> SlotSettings::*,
                                   std::optional<int> SlotSettings::*, std::optional<std::string> SlotSettings::*,
                                   std::optional<int> LineSettings::*, Thresholds LineSettings::*>;

struct SettingRow {
    SettingMember member;
    std::string_view record;    // in the store, below what is kept of its slot or line
    std::string_view native;    // the schema paths of its leaves end so
    std::string_view item = {}; // of the system database, below the controller's configuration; empty: none
};

inline constexpr std::array setting_rows{
    // clang-format off
    SettingRow{&SlotSettings::revertive,              "revertive",              "/psm/revertive/enable"},
    SettingRow{&SlotSettings::wait_to_restore,        "wait-to-restore",        "/psm/revertive/wtr"},
    SettingRow{&SlotSettings::relative_threshold,     "relative-threshold",     "/psm-relative-switch-threshold"},
    SettingRow{&SlotSettings::relative_offset,        "relative-offset",        "/psm-relative-switch-threshold-offset"},
    SettingRow{&SlotSettings::lockout_from,           "lockout-from",           "/psm/lockout-from"},

    SettingRow{&LineSettings::rx_attenuation,         "rx-attenuation",         "/optics/optics-ots-rx-voa-attenuation",     "/Optics/rx_attenuation"},
    SettingRow{&LineSettings::tx_attenuation,         "tx-attenuation",         "/optics/optics-ots-tx-voa-attenuation",     "/Optics/tx_attenuation"},
    SettingRow{&LineSettings::rx_thresholds,          "rx-threshold",           "/rx-threshold/rx-threshold",                "/Optics/rx_threshold/0x1"},
    SettingRow{&LineSettings::rx_low_threshold_delta, "rx-low-threshold-delta", "/optics/optics-ots-rx-low-threshold-delta"},
    // clang-format on
};

struct PortStatus {}; // which of the lines carries the traffic

struct History {
    std::optional<Statistics> Readings::*power;
    int Statistics::*value;
};

using ReadingMember = std::variant<std::optional<int> Readings::*, PortStatus, History>;

// Which part of a controller's records in the system database a field belongs to.
enum class RecordPart { none, thresholds, lane, attenuators, received, transmitted };

// A column of the table that a person looks at: what it is about, what it is, in which unit.
using Heading = std::array<std::string_view, 3>;

struct ReadingRow {
    ReadingMember member;
    std::string_view native; // the schema paths of its leaves end so
    RecordPart part = RecordPart::none;
    std::string_view field = {};         // in that part
    int hundredths = 1;                  // in one of its units
    std::optional<Heading> heading = {}; // of its column, in hundredths of the unit; none: no column
};

// Columns stand in the order of their rows, and so do the fields of a part.
inline constexpr std::array reading_rows{
    // clang-format off
    ReadingRow{&Readings::receive_power,          "/ots-info/lane-data/receive-power",      RecordPart::lane,        "ReceivePower",     1,  Heading{"receive", "power", "dBm"}},
    ReadingRow{&Readings::receive_power,          "/ots-info/lane-data/receive-power-dbm",  RecordPart::lane,        "ReceivePowerDbm"},
    ReadingRow{&Readings::rx_low_threshold,       "/ots-info/rx-low-threshold",             RecordPart::thresholds,  "RxLowThreshold",   10, Heading{"switch", "threshold", "dBm"}},
    ReadingRow{&Readings::rx_low_threshold_delta, "/ots-info/rx-thr-fail-low-delta-val"},
    ReadingRow{&Readings::rx_attenuation,         "/ots-info/rx-voa-attenuation",           RecordPart::attenuators, "RxVoaAttenuation", 1,  Heading{"receive", "attenuation", "dB"}},
    ReadingRow{&Readings::transmit_power,         "/ots-info/lane-data/transmit-power",     RecordPart::lane,        "TransmitPower",    1,  Heading{"transmit", "power", "dBm"}},
    ReadingRow{&Readings::transmit_power,         "/ots-info/lane-data/transmit-power-dbm", RecordPart::lane,        "TransmitPowerDbm"},
    ReadingRow{&Readings::tx_attenuation,         "/ots-info/tx-voa-attenuation",           RecordPart::attenuators, "TxVoaAttenuation", 1,  Heading{"transmit", "attenuation", "dB"}},
    ReadingRow{PortStatus{},                      "/ots-info/port-status"},

    ReadingRow{History{&Readings::received,    &Statistics::average}, "/opr/average", RecordPart::received,    "Average"},
    ReadingRow{History{&Readings::received,    &Statistics::minimum}, "/opr/minimum", RecordPart::received,    "Minimum"},
    ReadingRow{History{&Readings::received,    &Statistics::maximum}, "/opr/maximum", RecordPart::received,    "Maximum"},
    ReadingRow{History{&Readings::transmitted, &Statistics::average}, "/opt/average", RecordPart::transmitted, "Average"},
    ReadingRow{History{&Readings::transmitted, &Statistics::minimum}, "/opt/minimum", RecordPart::transmitted, "Minimum"},
    ReadingRow{History{&Readings::transmitted, &Statistics::maximum}, "/opt/maximum", RecordPart::transmitted, "Maximum"},
    // clang-format on
};

} // namespace ocpsm::line_system

#endif
