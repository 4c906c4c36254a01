#include "simulator/line_system/protection_switch.hpp"

#include <algorithm>
#include <limits>

#include "simulator/line_system.hpp"

namespace ocpsm::line_system {
namespace {

bool is_bad(int power, const std::optional<int> &threshold) {
    return threshold && power < *threshold;
}

// Positive: the primary line receives more than it should in comparison.
std::int64_t imbalance(const SwitchSettings &settings, const LineLight &light) {
    return std::int64_t{light.primary} - light.secondary - settings.relative_offset;
}

// No offset makes a line that is dark better than another that is not worse.
bool is_worth_a_move(Path to, const LineLight &light) {
    const int power = to == Path::primary ? light.primary : light.secondary;
    const int other = to == Path::primary ? light.secondary : light.primary;
    return power > dark || other < power;
}

Path compare_lines(Path active, const SwitchSettings &settings, const LineLight &light) {
    const std::optional<Path> better = better_line(settings, light);
    return better && is_worth_a_move(*better, light) ? *better : active;
}

bool is_restorable(const SwitchSettings &settings, const LineLight &light) {
    return settings.revertive && settings.primary_threshold &&
           light.primary >= std::int64_t{*settings.primary_threshold} + settings.hysteresis;
}

Decision leave_primary(const SwitchSettings &settings, const LineLight &light) {
    const bool leaves =
        is_bad(light.primary, settings.primary_threshold) && !is_bad(light.secondary, settings.secondary_threshold);
    return leaves ? Decision{{Path::secondary}, SwitchReason::loss} : Decision{{Path::primary}};
}

// A failing secondary line does not wait for the time to restore.
Decision leave_secondary(const SwitchState &before, const SwitchSettings &settings, const LineLight &light,
                         std::uint64_t now) {
    if (is_bad(light.secondary, settings.secondary_threshold) && !is_bad(light.primary, settings.primary_threshold)) {
        return {{Path::primary}, SwitchReason::loss};
    }
    if (!is_restorable(settings, light)) {
        return {{Path::secondary}};
    }
    const std::uint64_t since = before.restorable_since.value_or(now);
    if (now - since >= settings.wait_to_restore) {
        return {{Path::primary}, SwitchReason::restored};
    }
    return {{Path::secondary, since}};
}

// To a line that is chosen whichever was active before.
Decision move_to(Path line, const SwitchState &before, SwitchReason reason) {
    return line == before.active ? Decision{{line}} : Decision{{line}, reason};
}

std::string name_of(Path line) {
    return std::string(line_names.at(line == Path::primary ? 0 : 1));
}

constexpr Path other(Path line) {
    return line == Path::primary ? Path::secondary : Path::primary;
}

} // namespace

std::optional<Path> better_line(const SwitchSettings &settings, const LineLight &light) {
    const std::int64_t difference = imbalance(settings, light);
    if (difference < -std::int64_t{settings.relative_threshold}) {
        return Path::secondary;
    }
    return difference > settings.relative_threshold ? std::optional(Path::primary) : std::nullopt;
}

Decision evaluate(const SwitchState &before, const SwitchSettings &settings, const LineLight &light,
                  std::uint64_t now) {
    if (settings.lockout != Lockout::none) {
        return move_to(settings.lockout == Lockout::working ? Path::secondary : Path::primary, before,
                       SwitchReason::forced);
    }
    if (settings.relative_threshold != 0) {
        return move_to(compare_lines(before.active, settings, light), before, SwitchReason::better);
    }
    return before.active == Path::primary ? leave_primary(settings, light)
                                          : leave_secondary(before, settings, light, now);
}

std::string in_words(SwitchReason reason, Path to, const SwitchSettings &settings, const LineLight &light) {
    const auto threshold = [&settings](Path line) {
        return hundredths((line == Path::primary ? settings.primary_threshold : settings.secondary_threshold).value());
    };
    const auto received = [&light](Path line) {
        return hundredths(line == Path::primary ? light.primary : light.secondary);
    };
    const auto difference = [&] {
        const std::int64_t better = (to == Path::primary ? 1 : -1) * imbalance(settings, light);
        constexpr std::int64_t most = std::numeric_limits<int>::max();
        return hundredths(static_cast<int>(std::clamp(better, -most, most)));
    };
    switch (reason) {
    case SwitchReason::forced:
        return "forced to the " + name_of(to) + " line";
    case SwitchReason::better:
        return name_of(to) + " better by " + difference() + " dB, more than the relative threshold of " +
               hundredths(settings.relative_threshold) + " dB";
    case SwitchReason::loss:
        return "loss of " + name_of(other(to)) + ": " + received(other(to)) + " dBm, below " + threshold(other(to)) +
               " dBm";
    case SwitchReason::restored:
        return "primary restored: " + received(to) + " dBm, good for " + seconds(settings.wait_to_restore);
    }
    return {};
}

} // namespace ocpsm::line_system
