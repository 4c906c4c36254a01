// When a protection switch moves traffic from one line to the other: a pure function of settings, light and time.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_PROTECTION_SWITCH_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_PROTECTION_SWITCH_HPP

#include <cstdint>
#include <optional>
#include <string>

namespace ocpsm::line_system {

inline constexpr int dark = -4000; // what a receiver reads without light, hundredths of a dBm

enum class Path { primary, secondary };

enum class Lockout { none, working, protection };

// What counts for the switch. An absent threshold never causes a switch.
struct SwitchSettings {
    Lockout lockout = Lockout::none;             // the line that carries no traffic, whatever its light
    int relative_threshold = 0;                  // hundredths of a dB; 0: the absolute thresholds count
    int relative_offset = 0;                     // hundredths of a dB
    std::optional<int> primary_threshold = {};   // hundredths of a dBm
    std::optional<int> secondary_threshold = {}; // hundredths of a dBm
    int hysteresis = 0;                          // hundredths of a dB
    bool revertive = false;
    std::uint32_t wait_to_restore = 0; // milliseconds
};

// The light that the lines receive, in hundredths of a dBm.
struct LineLight {
    int primary;
    int secondary;
};

struct SwitchState {
    Path active = Path::primary;
    std::optional<std::uint64_t> restorable_since = {}; // since when the primary line has been good enough to return to

    bool operator==(const SwitchState &) const = default;
};

enum class SwitchReason {
    forced,   // the other line is locked out
    better,   // than the other line, by more than the relative threshold
    loss,     // of the other line
    restored, // the primary line has been good for the time to wait
};

struct Decision {
    SwitchState state;
    std::optional<SwitchReason> reason = {}; // of a move; none: the traffic stays where it is

    bool operator==(const Decision &) const = default;
};

// The line that a relative threshold prefers, be it dark; none: neither.
std::optional<Path> better_line(const SwitchSettings &settings, const LineLight &light);

// What becomes at `now`, milliseconds on the line system's own clock, of the state at the evaluation before.
Decision evaluate(const SwitchState &before, const SwitchSettings &settings, const LineLight &light, std::uint64_t now);

// Why the traffic has moved to a line, with the numbers that decided.
std::string in_words(SwitchReason reason, Path to, const SwitchSettings &settings, const LineLight &light);

} // namespace ocpsm::line_system

#endif
