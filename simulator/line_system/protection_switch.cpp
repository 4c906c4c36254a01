#include "simulator/line_system/protection_switch.hpp"

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

SwitchState leave_primary(const SwitchSettings &settings, const LineLight &light) {
    const bool leaves =
        is_bad(light.primary, settings.primary_threshold) && !is_bad(light.secondary, settings.secondary_threshold);
    return {leaves ? Path::secondary : Path::primary};
}

// A failing secondary line does not wait for the time to restore.
SwitchState leave_secondary(const SwitchState &before, const SwitchSettings &settings, const LineLight &light,
                            std::uint64_t now) {
    if (is_bad(light.secondary, settings.secondary_threshold) && !is_bad(light.primary, settings.primary_threshold)) {
        return {Path::primary};
    }
    if (!is_restorable(settings, light)) {
        return {Path::secondary};
    }
    const std::uint64_t since = before.restorable_since.value_or(now);
    if (now - since >= settings.wait_to_restore) {
        return {Path::primary};
    }
    return {Path::secondary, since};
}

} // namespace

std::optional<Path> better_line(const SwitchSettings &settings, const LineLight &light) {
    const std::int64_t difference = imbalance(settings, light);
    if (difference < -std::int64_t{settings.relative_threshold}) {
        return Path::secondary;
    }
    return difference > settings.relative_threshold ? std::optional(Path::primary) : std::nullopt;
}

SwitchState evaluate(const SwitchState &before, const SwitchSettings &settings, const LineLight &light,
                     std::uint64_t now) {
    if (settings.lockout != Lockout::none) {
        return {settings.lockout == Lockout::working ? Path::secondary : Path::primary};
    }
    if (settings.relative_threshold != 0) {
        return {compare_lines(before.active, settings, light)};
    }
    return before.active == Path::primary ? leave_primary(settings, light)
                                          : leave_secondary(before, settings, light, now);
}

} // namespace ocpsm::line_system
