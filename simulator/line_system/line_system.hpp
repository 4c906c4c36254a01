// A line system fitted with protection switch modules: its state, without the place where it is kept.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/line_system/protection_switch.hpp"

namespace ocpsm::line_system {

inline constexpr int slot_count = 3;           // slots 1 to 3
inline constexpr std::size_t port_count = 3;   // ports 0 common, 1 primary line, 2 secondary line
inline constexpr std::size_t line_count = 2;   // 0 primary, 1 secondary: port - 1
inline constexpr char low_threshold[] = "low"; // the type of the threshold that counts for the switch

inline constexpr std::size_t line_of(Path path) {
    return path == Path::primary ? 0 : 1;
}

// A power over one history interval, in hundredths of a dBm.
struct Statistics {
    int average = 0;
    int minimum = 0;
    int maximum = 0;

    bool operator==(const Statistics &) const = default;
};

// The samples of the history interval that is running, in hundredths of a dBm.
struct Samples {
    std::uint32_t count = 0;
    std::int64_t sum = 0;
    int minimum = 0; // of no samples: 0
    int maximum = 0;

    bool operator==(const Samples &) const = default;
};

struct PowerHistory {
    Samples running = {};
    std::optional<Statistics> last = {}; // of the last interval during all of which the module was fitted

    bool operator==(const PowerHistory &) const = default;
};

struct PortHistory {
    PowerHistory received = {};
    PowerHistory transmitted = {};

    bool operator==(const PortHistory &) const = default;
};

// The variable attenuators of a line as they stand, in hundredths of a dB.
struct Attenuators {
    int rx = 0;
    int tx = 0;

    bool operator==(const Attenuators &) const = default;
};

// What is gone when the module is pulled.
struct Module {
    SwitchState protection = {};
    std::array<Attenuators, line_count> attenuators = {};
    std::array<PortHistory, port_count> histories = {};
    std::uint64_t fitted_at = 0; // on the line system's clock, milliseconds

    bool operator==(const Module &) const = default;
};

// Configuration of a slot. What is not configured is absent.
struct SlotSettings {
    std::optional<bool> revertive = {};
    std::optional<std::uint32_t> wait_to_restore = {}; // milliseconds
    std::optional<int> relative_threshold = {};        // tenths of a dB
    std::optional<int> relative_offset = {};           // tenths of a dB
    std::optional<std::string> lockout_from = {};      // "working", "protected", or the empty text for neither

    bool operator==(const SlotSettings &) const = default;
};

using Thresholds = std::map<std::string, std::optional<int>>; // by type: tenths of a dBm

// Configuration of a line's controller. What is not configured is absent.
struct LineSettings {
    Thresholds rx_thresholds = {};
    std::optional<int> rx_low_threshold_delta = {}; // tenths of a dB
    std::optional<int> rx_attenuation = {};         // tenths of a dB
    std::optional<int> tx_attenuation = {};         // tenths of a dB

    bool operator==(const LineSettings &) const = default;
};

struct Fibre {
    int light = dark; // what it delivers while it is whole, hundredths of a dBm
    bool cut = false;

    bool operator==(const Fibre &) const = default;
};

// What is plugged into a slot's module from outside, and the offsets of the slot's ports; it stays when the module is
// pulled.
struct Cabling {
    int client_light = dark; // what the client sends into the common port, hundredths of a dBm
    std::array<Fibre, line_count> fibres = {};
    // Of each port, what it transmits above what its attenuator lets through: the losses of splitter and connectors and
    // the tolerance of the meter, hundredths of a dB.
    std::array<int, port_count> transmit_offsets = {};

    bool operator==(const Cabling &) const = default;
};

struct Slot {
    bool provisioned = false; // a module has been fitted here, now or earlier
    std::optional<Module> module = {};
    SlotSettings settings = {};
    std::array<LineSettings, line_count> lines = {};
    Cabling cabling = {};

    bool operator==(const Slot &) const = default;
};

struct LineSystem {
    std::array<Slot, slot_count> slots = {}; // slot n at n - 1
    std::uint64_t clock = 0;                 // milliseconds; it moves only when it is told to

    bool operator==(const LineSystem &) const = default;
};

// Slot `number`, 1 to 3 (std::out_of_range).
const Slot &slot(const LineSystem &system, int number);
Slot &slot(LineSystem &system, int number);
Slot slot(LineSystem &&system, int number);

// "0/2-PSM-OM".
std::string module_name(int slot);

// "Ots0/2/0/1".
std::string controller_name(int slot, std::size_t port);

// The slots that hold a module, ascending.
std::vector<int> fitted_slots(const LineSystem &system);

// A line system that has never had any setting, with modules in these slots. Throws ocpsm::Error for a slot that there
// is not; naming a slot twice is naming it once.
LineSystem with_modules(std::span<const int> slots);

// The line system that comes with the simulator: modules in slots 1 and 3, with every setting.
LineSystem example();

// The example, with modules in these slots only; what is not wanted is as if none had ever been there. Throws as
// with_modules does.
LineSystem example_in(std::span<const int> slots);

} // namespace ocpsm::line_system

#endif
