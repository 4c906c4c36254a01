// What the controllers of a module make of its settings and of the light they see.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_CONTROLLERS_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_CONTROLLERS_HPP

#include <array>
#include <cstddef>
#include <optional>

#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

// Powers of a port, in hundredths of a dBm: received in front of the attenuator, transmitted behind it.
struct Power {
    int received = dark;
    int transmitted = dark;

    bool operator==(const Power &) const = default;
};

// What is not measured or not configured is absent.
struct Readings {
    std::optional<int> receive_power = {};  // hundredths of a dBm
    std::optional<int> transmit_power = {}; // hundredths of a dBm

    std::optional<int> rx_attenuation = {}; // of the variable attenuator as it stands, hundredths of a dB
    std::optional<int> tx_attenuation = {};
    std::optional<int> rx_low_threshold = {};       // as it stands, tenths of a dBm
    std::optional<int> rx_low_threshold_delta = {}; // as it stands, tenths of a dB

    std::optional<Statistics> received = {};    // last full interval of 30 seconds
    std::optional<Statistics> transmitted = {}; // last full interval of 30 seconds

    bool operator==(const Readings &) const = default;
};

// The powers of a slot's ports; all dark when no module is fitted.
std::array<Power, port_count> powers(const Slot &slot);

// The readings of port 0, 1 or 2 (std::out_of_range); all absent when no module is fitted.
Readings readings(const Slot &slot, std::size_t port);

// The threshold of a line that counts for the switch, tenths of a dBm.
std::optional<int> low_threshold_of(const Thresholds &thresholds);

// The settings as the switch takes them.
SwitchSettings switch_settings(const Slot &slot);

// Where an attenuator that is set to so many tenths of a dB comes to rest, in hundredths of a dB; one that is not set
// is open.
int attenuation(const std::optional<int> &configured);

} // namespace ocpsm::line_system

#endif
