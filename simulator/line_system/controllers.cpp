#include "simulator/line_system/controllers.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace ocpsm::line_system {
namespace {

int bounded(std::int64_t value) {
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int hundredths(int tenths) {
    return bounded(std::int64_t{tenths} * 10);
}

std::optional<int> hundredths(const std::optional<int> &tenths) {
    return tenths ? std::optional(hundredths(*tenths)) : std::nullopt;
}

int delivered(const Fibre &fibre) {
    return fibre.cut ? dark : std::max(fibre.light, dark);
}

int transmitted(int source, int attenuation, int offset) {
    return source <= dark ? dark : bounded(std::max<std::int64_t>(dark, std::int64_t{source} - attenuation + offset));
}

Lockout lockout(const std::optional<std::string> &from) {
    if (from == "working") {
        return Lockout::working;
    }
    return from == "protected" ? Lockout::protection : Lockout::none;
}

void read_line(Readings &readings, const Attenuators &attenuators, const LineSettings &settings) {
    readings.rx_attenuation = attenuators.rx;
    readings.tx_attenuation = attenuators.tx;
    readings.rx_low_threshold = low_threshold_of(settings.rx_thresholds);
    readings.rx_low_threshold_delta = settings.rx_low_threshold_delta;
}

} // namespace

// The light of the client goes out on both lines, less each line's transmitting attenuation; the light of the line that
// carries the traffic goes out to the client, less that line's receiving attenuation. To each comes the port's offset.
// Where no light comes in, none goes out.
std::array<Power, port_count> powers(const Slot &slot) {
    std::array<Power, port_count> all{};
    if (!slot.module) {
        return all;
    }
    const Cabling &cabling = slot.cabling;
    all[0].received = std::max(cabling.client_light, dark);
    for (std::size_t line = 0; line < line_count; ++line) {
        const std::size_t port = line + 1;
        all.at(port).received = delivered(cabling.fibres.at(line));
        all.at(port).transmitted =
            transmitted(all[0].received, slot.module->attenuators.at(line).tx, cabling.transmit_offsets.at(port));
    }
    const std::size_t active = line_of(slot.module->protection.active);
    all[0].transmitted =
        transmitted(all.at(active + 1).received, slot.module->attenuators.at(active).rx, cabling.transmit_offsets[0]);
    return all;
}

Readings readings(const Slot &slot, std::size_t port) {
    Readings readings;
    const Power power = powers(slot).at(port);
    if (!slot.module) {
        return readings;
    }
    readings.receive_power = power.received;
    readings.transmit_power = power.transmitted;
    readings.received = slot.module->histories.at(port).received.last;
    readings.transmitted = slot.module->histories.at(port).transmitted.last;
    if (port != 0) {
        read_line(readings, slot.module->attenuators.at(port - 1), slot.lines.at(port - 1));
    }
    return readings;
}

std::optional<int> low_threshold_of(const Thresholds &thresholds) {
    const auto entry = thresholds.find(low_threshold);
    return entry == thresholds.end() ? std::nullopt : entry->second;
}

SwitchSettings switch_settings(const Slot &slot) {
    const SlotSettings &settings = slot.settings;
    return {.lockout = lockout(settings.lockout_from),
            .relative_threshold = hundredths(settings.relative_threshold.value_or(0)),
            .relative_offset = hundredths(settings.relative_offset.value_or(0)),
            .primary_threshold = hundredths(low_threshold_of(slot.lines[0].rx_thresholds)),
            .secondary_threshold = hundredths(low_threshold_of(slot.lines[1].rx_thresholds)),
            .hysteresis = hundredths(slot.lines[0].rx_low_threshold_delta.value_or(0)),
            .revertive = settings.revertive.value_or(false),
            .wait_to_restore = settings.wait_to_restore.value_or(0)};
}

int attenuation(const std::optional<int> &configured) {
    return hundredths(configured.value_or(0));
}

} // namespace ocpsm::line_system
