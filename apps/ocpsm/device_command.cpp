#include "device_command.hpp"

#include <algorithm>
#include <array>
#include <ostream>

#include "clock_lock.hpp"
#include "line_table.hpp"
#include "open_line_system.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/view.hpp"

namespace ocpsm {
namespace {

namespace line_system = ocpsm::line_system;
using line_system::LineSystem;

std::string slot_of(const DeviceOptions &options) {
    return "slot " + std::to_string(options.slot);
}

std::string fibre_of(const DeviceOptions &options) {
    return slot_of(options) + ": the " + (options.line == line_system::Path::primary ? "primary" : "secondary") +
           " fibre";
}

// The example's modules come with their settings; a slot that is not wanted is as if none had ever been there.
LineSystem fitted_example(const std::vector<int> &slots) {
    LineSystem system = line_system::example();
    for (int number = 1; number <= line_system::slot_count; ++number) {
        const bool wanted = std::find(slots.begin(), slots.end(), number) != slots.end();
        line_system::Slot &slot = line_system::slot(system, number);
        if (!wanted) {
            slot = {};
        } else if (!slot.module) {
            system = line_system::fit(system, number);
        }
    }
    return system;
}

std::string describe_paths(const LineTable &table) {
    std::string text = "time " + seconds(table.clock);
    for (const ModuleRow &module : table.modules) {
        text += std::string(&module == &table.modules.front() ? ": " : ", ") + module.name + " on " +
                (module.lines[0].active ? "PRIMARY" : "SECONDARY");
    }
    return text;
}

// A way to change the line system, and what it has come to in words.
struct Action {
    LineSystem (*apply)(const LineSystem &before, const DeviceOptions &options);
    std::string (*describe)(const DeviceOptions &options, const LineSystem &after);
};

// In the order of DeviceChange.
constexpr std::array<Action, 6> actions = {{
    {[](const LineSystem &before, const DeviceOptions &options) { return line_system::fit(before, options.slot); },
     [](const DeviceOptions &options, const LineSystem &) {
         return slot_of(options) + " holds " + line_system::module_name(options.slot);
     }},
    {[](const LineSystem &before, const DeviceOptions &options) { return line_system::pull(before, options.slot); },
     [](const DeviceOptions &options, const LineSystem &) { return slot_of(options) + " is empty"; }},
    {[](const LineSystem &before, const DeviceOptions &options) {
         return line_system::cut(before, options.slot, options.line);
     },
     [](const DeviceOptions &options, const LineSystem &) { return fibre_of(options) + " is cut"; }},
    {[](const LineSystem &before, const DeviceOptions &options) {
         return line_system::splice(before, options.slot, options.line);
     },
     [](const DeviceOptions &options, const LineSystem &) { return fibre_of(options) + " is whole"; }},
    {[](const LineSystem &before, const DeviceOptions &options) {
         return line_system::light(before, options.slot, options.line, options.light);
     },
     [](const DeviceOptions &options, const LineSystem &) {
         return fibre_of(options) + " delivers " + hundredths(options.light) + " dBm";
     }},
    {[](const LineSystem &before, const DeviceOptions &options) {
         return line_system::tick(before, options.milliseconds);
     },
     [](const DeviceOptions &, const LineSystem &after) { return describe_paths(view(after)); }},
}};

void print_table(const LineTable &table, std::optional<Format> format, std::ostream &output) {
    if (format) {
        output << (*format == Format::json ? to_json(table) : to_xml(table));
        return;
    }
    for (const TableText &line : to_text(table)) {
        output << line.text << '\n';
    }
}

} // namespace

int device_init_command(const DeviceOptions &options, std::ostream &output) {
    const LineSystem made = fitted_example(options.slots);
    const OpenLineSystem opened(options.state, made);
    if (options.format) {
        print_table(view(made), options.format, output);
        return exit_done;
    }
    output << "made a line system in " << options.state.string() << " with ";
    const LineTable table = view(made);
    for (const ModuleRow &module : table.modules) {
        output << (&module == &table.modules.front() ? "" : ", ") << module.name;
    }
    output << (table.modules.empty() ? "no module\n" : "\n");
    return exit_done;
}

int device_show_command(const DeviceOptions &options, std::ostream &output) {
    const OpenLineSystem opened(options.state);
    print_table(view(opened.load()), options.format, output);
    return exit_done;
}

int device_change_command(const DeviceOptions &options, DeviceChange change, std::ostream &output) {
    const Action &action = actions.at(static_cast<std::size_t>(change));
    const OpenLineSystem opened(options.state);
    std::optional<ClockLock> lock;
    if (change == DeviceChange::tick) {
        lock.emplace(options.state);
    }
    const LineSystem after =
        line_system::change(opened.store(), [&](const LineSystem &before) { return action.apply(before, options); });
    if (options.format) {
        print_table(view(after), options.format, output);
    } else {
        output << action.describe(options, after) << '\n';
    }
    return exit_done;
}

} // namespace ocpsm
