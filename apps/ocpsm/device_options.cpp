// The options of device and watch.
#include <memory>

#include "command_line.hpp"
#include "device_command.hpp"
#include "line_table.hpp"
#include "state_directory.hpp"
#include "watch_command.hpp"

namespace ocpsm {
namespace {

constexpr std::uint32_t longest_tick = 86'400'000; // milliseconds, a day

constexpr char watch_footer[] =
    "The clock of the line system runs while it is watched, in steps of 100 milliseconds; one process at a time lets\n"
    "it run. Keys: up and down choose a line, c cuts its fibre, s splices it, l sets the light that it delivers,\n"
    "p lets the time stand still and go on, < and > make it slower and faster, q quits.";

struct DeviceLine {
    DeviceOptions options;
    std::optional<std::string> state;
    std::string format;
    std::string line;
    std::string light;

    DeviceOptions finished() const;
};

DeviceOptions DeviceLine::finished() const {
    DeviceOptions finished = options;
    finished.state = state_directory(state, process_environment);
    finished.format = format_named(format);
    finished.line = line == line_names[1] ? Line::secondary : Line::primary;
    finished.light = parse_hundredths(light).value_or(0);
    return finished;
}

CLI::App *add_device_command(CLI::App &device, Program &program, const std::string &name, const std::string &help,
                             const std::shared_ptr<DeviceLine> &line,
                             int (*run)(const DeviceOptions &options, std::ostream &output)) {
    CLI::App *command = device.add_subcommand(name, help);
    add_state_option(*command, line->state);
    add_format_option(*command, line->format, "Print the line system as it is afterwards, in json or xml");
    command->callback([line, run, &program] {
        program.chosen = [options = line->finished(), run](std::ostream &output, std::ostream &) {
            return run(options, output);
        };
    });
    return command;
}

template <DeviceChange change>
int run_change(const DeviceOptions &options, std::ostream &output) {
    return device_change_command(options, change, output);
}

void add_slot(CLI::App &command, DeviceLine &line) {
    command.add_option("slot", line.options.slot, "The slot, 1 to 3")
        ->type_name("SLOT")
        ->required()
        ->check(whole_number(1, 3));
}

void add_line(CLI::App &command, DeviceLine &line) {
    command.add_option("line", line.line, "The line, primary or secondary")
        ->type_name("LINE")
        ->required()
        ->check(one_of({line_names.begin(), line_names.end()}));
}

void add_light(CLI::App &command, DeviceLine &line) {
    command.add_option("light", line.light, "The power that the fibre delivers, -40.00 to 30.00 dBm, in steps of 0.01")
        ->type_name("DBM")
        ->required()
        ->check(CLI::Validator(
            [](const std::string &text) { return parse_hundredths(text) ? std::string() : not_a_power(text); }, ""));
}

} // namespace

void add_device_commands(CLI::App &app, Program &program) {
    const auto line = std::make_shared<DeviceLine>();
    CLI::App *device = app.add_subcommand("device", "Make, look at and change a line system");
    device->require_subcommand(1);

    CLI::App *init = add_device_command(*device, program, "init", "Make a line system in a directory that holds none",
                                        line, device_init_command);
    init->add_option("--slots", line->options.slots,
                     "The slots that are fitted, of 1 to 3; 1 and 3 come with the example's settings, 2 with none")
        ->type_name("SLOT,...")
        ->delimiter(',')
        ->capture_default_str()
        ->check(whole_number(1, 3));
    add_device_command(*device, program, "show",
                       "Print the lines of all modules: powers and thresholds in dBm, attenuations in dB", line,
                       device_show_command);
    add_slot(*add_device_command(*device, program, "fit", "Fit a module into an empty slot", line,
                                 run_change<DeviceChange::fit>),
             *line);
    add_slot(*add_device_command(*device, program, "pull", "Pull a module; its slot keeps the settings", line,
                                 run_change<DeviceChange::pull>),
             *line);
    for (CLI::App *command :
         {add_device_command(*device, program, "cut", "Cut the fibre of a line: it receives -40.00 dBm", line,
                             run_change<DeviceChange::cut>),
          add_device_command(*device, program, "splice", "Splice the fibre of a line", line,
                             run_change<DeviceChange::splice>),
          add_device_command(*device, program, "light", "Set the light that the fibre of a line delivers, in dBm", line,
                             run_change<DeviceChange::light>)}) {
        add_slot(*command, *line);
        add_line(*command, *line);
        if (command->get_name() == "light") {
            add_light(*command, *line);
        }
    }
    add_device_command(*device, program, "tick",
                       "Let time pass: the switches act every 100 milliseconds, and at its end", line,
                       run_change<DeviceChange::tick>)
        ->add_option("milliseconds", line->options.milliseconds, "How long, in milliseconds, a day (86400000) at most")
        ->type_name("MILLISECONDS")
        ->required()
        ->check(whole_number(0, longest_tick));

    CLI::App *watch = app.add_subcommand("watch", "Show the table of device show live in a terminal");
    watch->footer(watch_footer);
    add_state_option(*watch, line->state);
    watch->callback([line, &program] {
        program.chosen = [state = line->finished().state](std::ostream &, std::ostream &) {
            return watch_command(state);
        };
    });
}

} // namespace ocpsm
