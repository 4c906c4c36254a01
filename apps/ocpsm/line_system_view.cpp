#include "line_system_view.hpp"

#include <algorithm>

#include "simulator/line_system/controllers.hpp"

namespace ocpsm {
namespace {

namespace line_system = ocpsm::line_system;

std::string describe_protection(const line_system::Slot &slot, std::uint64_t now) {
    const line_system::SwitchSettings settings = line_system::switch_settings(slot);
    if (settings.lockout != line_system::Lockout::none) {
        return settings.lockout == line_system::Lockout::working ? "forced to SECONDARY" : "forced to PRIMARY";
    }
    if (settings.relative_threshold != 0) {
        return "relative threshold " + hundredths(settings.relative_threshold) + " dB, offset " +
               hundredths(settings.relative_offset) + " dB";
    }
    if (!settings.revertive) {
        return "not revertive";
    }
    const std::optional<std::uint64_t> since = slot.module->protection.restorable_since;
    if (slot.module->protection.active == line_system::Path::secondary && since) {
        const std::uint64_t passed = std::min<std::uint64_t>(now - *since, settings.wait_to_restore);
        return "reverts in " + seconds(settings.wait_to_restore - passed);
    }
    return "reverts after " + seconds(settings.wait_to_restore);
}

LineRow line_row(const line_system::Slot &slot, line_system::Path path) {
    const std::size_t line = line_system::line_of(path);
    const line_system::Readings readings = line_system::readings(slot, line + 1);
    LineRow row;
    row.active = slot.module->protection.active == path;
    row.received = readings.receive_power;
    if (readings.rx_low_threshold) {
        row.threshold = *readings.rx_low_threshold * 10;
    }
    row.rx_attenuation = readings.rx_attenuation;
    row.sent = readings.transmit_power;
    row.tx_attenuation = readings.tx_attenuation;
    row.cut = slot.cabling.fibres.at(line).cut;
    return row;
}

} // namespace

LineTable view(const line_system::LineSystem &system) {
    LineTable table;
    table.clock = system.clock;
    for (const int number : line_system::fitted_slots(system)) {
        const line_system::Slot &slot = line_system::slot(system, number);
        table.modules.push_back(
            {number,
             line_system::module_name(number),
             describe_protection(slot, system.clock),
             {line_row(slot, line_system::Path::primary), line_row(slot, line_system::Path::secondary)}});
    }
    return table;
}

} // namespace ocpsm
