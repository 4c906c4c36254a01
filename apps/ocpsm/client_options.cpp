// The options of get, edit, set, delete, undo and journal.
#include <cstdint>
#include <limits>
#include <memory>

#include "command_line.hpp"
#include "commands.hpp"
#include "state_directory.hpp"

namespace ocpsm {
namespace {

constexpr char units[] =
    "Thresholds and powers are in dBm; hysteresis, relative threshold, offset and attenuations in dB; times in\n"
    "milliseconds. What is set in dBm and dB is kept in steps of 0.1, cut towards zero; powers are read in steps of "
    "0.01.\n"
    "A path is /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/revertive or any step on the way.";

constexpr std::uint64_t last_entry = std::numeric_limits<std::uint64_t>::max();

struct ClientLine {
    RequestOptions options;
    std::optional<std::string> state;
    std::string format;
    bool configuration_only = false;

    RequestOptions finished(const Program &program) const {
        RequestOptions finished = options;
        finished.state = state_directory(state, process_environment);
        finished.plugin = program.plugin_file();
        finished.table = format == "table";
        finished.format = finished.table ? std::nullopt : format_named(format);
        if (finished.follow && (finished.table || finished.format == Format::xml)) {
            throw CLI::ValidationError("--follow", "prints lines, in words or with --format json");
        }
        finished.kind = configuration_only ? Kind::get_config : Kind::get;
        return finished;
    }
};

using Run = int (*)(const RequestOptions &options, std::ostream &output, std::ostream &errors);

CLI::App &add_command(CLI::App &app, Program &program, const std::string &name, const std::string &help,
                      const std::shared_ptr<ClientLine> &line, Run run) {
    CLI::App *command = app.add_subcommand(name, help);
    add_state_option(*command, line->state);
    command->callback([line, run, &program] {
        program.chosen = [options = line->finished(program), run](std::ostream &output, std::ostream &errors) {
            return run(options, output, errors);
        };
    });
    return *command;
}

// One that makes a request.
CLI::App &add_client_command(CLI::App &app, Program &program, const std::string &name, const std::string &help,
                             const std::shared_ptr<ClientLine> &line, Run run) {
    CLI::App &command = add_command(app, program, name, help, line, run);
    command.footer(units);
    command.add_flag("--log", line->options.request.log, "Show the plug-in's debug log on standard error");
    command.add_flag("--trace", line->options.request.trace, "Show the plug-in's trace buffer on standard error");
    return command;
}

void add_dry_run(CLI::App &command, ClientLine &line) {
    command.add_flag("--dry-run", line.options.request.dry_run,
                     "Print the native operations and what they change, and change nothing");
    add_format_option(command, line.format, "Print native requests, changes and warnings as one document");
}

} // namespace

void add_client_commands(CLI::App &app, Program &program) {
    const auto line = std::make_shared<ClientLine>();
    RequestOptions &options = line->options;

    CLI::App &get = add_client_command(app, program, "get", "Print configuration and state of the protection modules",
                                       line, get_command);
    get.add_flag("--config", line->configuration_only, "Configuration only");
    CLI::Option *paths =
        get.add_option("path", options.paths, "What to read, everything without one")->type_name("PATH");
    get.add_option("--filter", options.file, "Read what a subtree filter in a file selects; - for standard input")
        ->type_name("FILE")
        ->excludes(paths);
    get.add_option("--format", line->format, "Print json, xml or a table, else json, or as the filter came")
        ->type_name("json|xml|table")
        ->check(one_of({"json", "xml", "table"}));
    get.add_flag("--follow", options.follow,
                 "Print each leaf in a line, then each change, until stopped; with --format json an object a line");

    CLI::App &edit =
        add_client_command(app, program, "edit", "Carry out an edit, whole or not at all", line, edit_command);
    edit.add_option("file", options.file,
                    "A NETCONF <config> or JSON (RFC 7951), operations as metadata; - for standard input")
        ->type_name("FILE")
        ->required();
    add_dry_run(edit, *line);

    CLI::App &set = add_client_command(app, program, "set", "Set leaves of the configuration", line, set_command);
    set.add_option("setting", options.setting, "A leaf, or PATH=VALUE; values are in the units of the model")
        ->type_name("PATH")
        ->required();
    set.add_option("more", options.more, "The value of the leaf, or more of PATH=VALUE")->type_name("VALUE");
    add_dry_run(set, *line);

    CLI::App &erase = add_client_command(app, program, "delete",
                                         "Delete leaves, containers or modules' settings with all that is below", line,
                                         delete_command);
    erase.add_option("path", options.paths, "What to delete")->type_name("PATH")->required();
    erase.add_flag("--if-there", options.if_there, "With the operation remove: what is not there is no error");
    add_dry_run(erase, *line);

    CLI::App &undo = add_client_command(app, program, "undo", "Take back what an edit has changed, by another edit",
                                        line, undo_command);
    undo.add_option("sequence", options.sequence, "The entry of the journal, else the last change of configuration")
        ->type_name("SEQUENCE")
        ->check(whole_number(0, last_entry));
    add_dry_run(undo, *line);

    CLI::App &journal =
        add_command(app, program, "journal", "Print what has happened to the line system", line, journal_command);
    journal.add_option("--after", options.sequence, "Only entries behind the one with this sequence number")
        ->type_name("SEQUENCE")
        ->check(whole_number(0, last_entry));
    journal.add_option("--format", line->format, "Print an object a line")->type_name("json")->check(one_of({"json"}));
    journal.add_flag("--follow", options.follow, "Go on with what happens, until stopped");
}

} // namespace ocpsm
