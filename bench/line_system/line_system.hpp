// A line system fitted with protection switch modules: its state, without the place where it is kept.
#ifndef BENCH_LINE_SYSTEM_LINE_SYSTEM_HPP
#define BENCH_LINE_SYSTEM_LINE_SYSTEM_HPP

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace bench::line_system {

inline constexpr int slot_count = 3; // slots 1 to 3
inline constexpr int port_count = 3; // ports 0 common, 1 primary, 2 secondary

// The samples of one history interval, in hundredths of a dBm.
struct Statistics {
    int average = 0;
    int minimum = 0;
    int maximum = 0;

    bool operator==(const Statistics &) const = default;
};

// One optical port. What it does not measure or is not configured with is absent.
struct Port {
    std::optional<int> receive_power = {};  // hundredths of a dBm
    std::optional<int> transmit_power = {}; // hundredths of a dBm

    std::optional<int> rx_attenuation = {}; // of the variable attenuator as it stands, hundredths of a dB
    std::optional<int> tx_attenuation = {};
    std::optional<int> rx_low_threshold = {}; // as it stands, tenths of a dBm

    std::optional<int> configured_rx_attenuation = {}; // tenths of a dB
    std::optional<int> configured_tx_attenuation = {};
    std::optional<int> configured_rx_threshold = {}; // tenths of a dBm

    std::optional<Statistics> received = {};    // last full interval of 30 seconds
    std::optional<Statistics> transmitted = {}; // last full interval of 30 seconds

    bool operator==(const Port &) const = default;
};

struct Module {
    std::optional<std::string> inventory_name = {}; // absent: fitted, but not yet in the inventory
    std::array<Port, port_count> ports;

    bool operator==(const Module &) const = default;
};

struct LineSystem {
    std::array<std::optional<Module>, slot_count> slots; // slot n at n - 1; empty: nothing is fitted

    bool operator==(const LineSystem &) const = default;
};

// "0/2-PSM-OM".
std::string module_name(int slot);

// The slots that hold a module, ascending.
std::vector<int> fitted_slots(const LineSystem &system);

// The line system that comes with the bench: modules in slots 1 and 3.
LineSystem example();

} // namespace bench::line_system

#endif
