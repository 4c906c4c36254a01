// What other programs talk to.
#include <unistd.h>

#include <iostream>
#include <memory>
#include <optional>

#include "command_line.hpp"
#include "commands.hpp"
#include "line_system_service.hpp"
#include "servers/netconf/session.hpp"
#include "servers/netconf/standard_io.hpp"
#include "state_directory.hpp"

namespace ocpsm {
namespace {

constexpr char netconf_footer[] =
    "A session of NETCONF on standard input and output, as an SSH server's subsystem has it. It ends with its input.";

// Beside the line system, for those who look for sessions of the same one.
constexpr char sessions_file[] = "netconf.lock";

int netconf_command(const RequestOptions &options, std::ostream &errors) {
    const Service service = open_service(options);
    const netconf::Sessions sessions(*options.state / sessions_file);
    netconf::Session session(service, sessions);
    netconf::carry(session, STDIN_FILENO, STDOUT_FILENO);
    if (session.failure().empty()) {
        return exit_done;
    }
    return print_error(errors, {Error::Source::refused, {}, {}, session.failure()});
}

} // namespace

void add_server_commands(CLI::App &app, Program &program) {
    CLI::App *command = app.add_subcommand("netconf", "Serve one session of NETCONF on standard input and output");
    command->footer(netconf_footer);
    const auto state = std::make_shared<std::optional<std::string>>();
    add_state_option(*command, *state);
    command->callback([state, &program] {
        RequestOptions options;
        options.state = state_directory(*state, process_environment);
        options.plugin = program.plugin_file();
        program.chosen = [options](std::ostream &, std::ostream &errors) { return netconf_command(options, errors); };
    });
}

} // namespace ocpsm
