#include "simulator/line_system/view.hpp"

#include <algorithm>
#include <variant>

#include "simulator/line_system/controllers.hpp"
#include "simulator/line_system/settings.hpp"

namespace ocpsm {
namespace line_system {
namespace {

std::optional<int> in_hundredths(const std::optional<int> &tenths) {
    return tenths ? std::optional(*tenths * 10) : std::nullopt;
}

// Milliseconds until the traffic goes back, when it is about to.
std::optional<std::uint64_t> left_to_restore(const Slot &slot, const SwitchSettings &settings, std::uint64_t now) {
    const SwitchState &protection = slot.module->protection;
    const bool counts = settings.lockout == Lockout::none && settings.relative_threshold == 0 && settings.revertive;
    if (!counts || protection.active == Path::primary || !protection.restorable_since) {
        return std::nullopt;
    }
    return settings.wait_to_restore -
           std::min<std::uint64_t>(now - *protection.restorable_since, settings.wait_to_restore);
}

ProtectionRow protection_row(const Slot &slot, std::uint64_t now) {
    const SwitchSettings settings = switch_settings(slot);
    ProtectionRow row{.revertive = slot.settings.revertive,
                      .wait_to_restore = slot.settings.wait_to_restore,
                      .left_to_restore = left_to_restore(slot, settings, now),
                      .hysteresis = in_hundredths(slot.lines[0].rx_low_threshold_delta),
                      .relative_threshold = in_hundredths(slot.settings.relative_threshold),
                      .relative_offset = in_hundredths(slot.settings.relative_offset)};
    if (settings.lockout != Lockout::none) {
        row.forced_to = settings.lockout == Lockout::working ? Line::secondary : Line::primary;
    }
    return row;
}

std::string describe_protection(const Slot &slot, std::uint64_t now) {
    const SwitchSettings settings = switch_settings(slot);
    if (settings.lockout != Lockout::none) {
        return settings.lockout == Lockout::working ? "forced to SECONDARY" : "forced to PRIMARY";
    }
    if (settings.relative_threshold != 0) {
        return "relative threshold " + hundredths(settings.relative_threshold) + " dB, offset " +
               hundredths(settings.relative_offset) + " dB";
    }
    if (!settings.revertive) {
        return "not revertive";
    }
    const auto left = left_to_restore(slot, settings, now);
    return left ? "reverts in " + seconds(*left) : "reverts after " + seconds(settings.wait_to_restore);
}

template <class Visit>
void for_each_column(Visit visit) {
    for (const ReadingRow &row : reading_rows) {
        if (row.heading) {
            visit(row);
        }
    }
}

LineRow line_row(const Slot &slot, Path path) {
    const std::size_t line = line_of(path);
    const Readings all = readings(slot, line + 1);
    LineRow row;
    row.active = slot.module->protection.active == path;
    for_each_column([&](const ReadingRow &column) {
        const std::optional<int> &value = all.*std::get<std::optional<int> Readings::*>(column.member);
        row.measured.push_back(value ? std::optional(*value * column.hundredths) : std::nullopt);
    });
    row.cut = slot.cabling.fibres.at(line).cut;
    return row;
}

} // namespace

LineTable view(const LineSystem &system) {
    LineTable table;
    table.clock = system.clock;
    for (const int number : fitted_slots(system)) {
        const Slot &fitted = slot(system, number);
        table.modules.push_back({number,
                                 module_name(number),
                                 describe_protection(fitted, system.clock),
                                 {line_row(fitted, Path::primary), line_row(fitted, Path::secondary)},
                                 protection_row(fitted, system.clock)});
    }
    return table;
}

} // namespace line_system

const std::vector<LineColumn> &line_columns() {
    static const std::vector<LineColumn> columns = [] {
        std::vector<LineColumn> found;
        line_system::for_each_column([&](const line_system::ReadingRow &row) { found.push_back(*row.heading); });
        return found;
    }();
    return columns;
}

std::string hundredths(int value) {
    const unsigned magnitude = value < 0 ? 0U - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    const std::string fraction = std::to_string(magnitude % 100);
    return (value < 0 ? "-" : "") + std::to_string(magnitude / 100) + (fraction.size() == 1 ? ".0" : ".") + fraction;
}

std::string seconds(std::uint64_t milliseconds) {
    std::string fraction = std::to_string(milliseconds % 1000 + 1000).substr(1);
    fraction.erase(std::max<std::size_t>(fraction.find_last_not_of('0') + 1, 1));
    return std::to_string(milliseconds / 1000) + "." + fraction + " s";
}

} // namespace ocpsm
