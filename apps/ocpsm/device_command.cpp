#include "device_command.hpp"

#include <algorithm>
#include <array>
#include <ostream>

#include "clock_lock.hpp"
#include "line_table.hpp"
#include "open_line_system.hpp"

namespace ocpsm {
namespace {

std::string slot_of(const DeviceOptions &options) {
    return "slot " + std::to_string(options.slot);
}

std::string fibre_of(const DeviceOptions &options) {
    return slot_of(options) + ": the " + std::string(line_names.at(static_cast<std::size_t>(options.line))) + " fibre";
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
    LineTable (*apply)(const SimulatedLineSystem &system, const DeviceOptions &options);
    std::string (*describe)(const DeviceOptions &options, const LineTable &after);
};

std::string describe_module(const DeviceOptions &options, const LineTable &after) {
    const auto found = std::find_if(after.modules.begin(), after.modules.end(),
                                    [&](const ModuleRow &module) { return module.slot == options.slot; });
    return slot_of(options) + (found == after.modules.end() ? " is empty" : " holds " + found->name);
}

// In the order of DeviceChange.
constexpr std::array<Action, 6> actions = {{
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) { return system.fit(options.slot); },
     describe_module},
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) { return system.pull(options.slot); },
     describe_module},
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) {
         return system.cut(options.slot, options.line);
     },
     [](const DeviceOptions &options, const LineTable &) { return fibre_of(options) + " is cut"; }},
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) {
         return system.splice(options.slot, options.line);
     },
     [](const DeviceOptions &options, const LineTable &) { return fibre_of(options) + " is whole"; }},
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) {
         return system.light(options.slot, options.line, options.light);
     },
     [](const DeviceOptions &options, const LineTable &) {
         return fibre_of(options) + " delivers " + hundredths(options.light) + " dBm";
     }},
    {[](const SimulatedLineSystem &system, const DeviceOptions &options) { return system.tick(options.milliseconds); },
     [](const DeviceOptions &, const LineTable &after) { return describe_paths(after); }},
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
    const LineTable table = make_line_system(options.state, options.slots).view();
    if (options.format) {
        print_table(table, options.format, output);
        return exit_changed;
    }
    output << "made a line system in " << options.state.string() << " with ";
    for (const ModuleRow &module : table.modules) {
        output << (&module == &table.modules.front() ? "" : ", ") << module.name;
    }
    output << (table.modules.empty() ? "no module\n" : "\n");
    return exit_changed;
}

int device_show_command(const DeviceOptions &options, std::ostream &output) {
    print_table(open_line_system(options.state).view(), options.format, output);
    return exit_done;
}

int device_change_command(const DeviceOptions &options, DeviceChange change, std::ostream &output) {
    const Action &action = actions.at(static_cast<std::size_t>(change));
    const SimulatedLineSystem system = open_line_system(options.state);
    std::optional<ClockLock> lock;
    if (change == DeviceChange::tick) {
        lock.emplace(options.state);
    }
    const LineTable after = action.apply(system, options);
    if (options.format) {
        print_table(after, options.format, output);
    } else {
        output << action.describe(options, after) << '\n';
    }
    return exit_changed;
}

} // namespace ocpsm
