// The options of serve.
#include <memory>

#include "command_line.hpp"
#include "serve_command.hpp"
#include "state_directory.hpp"

namespace ocpsm {
namespace {

constexpr char footer[] =
    "Makes the example line system in a directory that holds none, and lets the clock of the line system run, in "
    "steps\n"
    "of 100 milliseconds; one process at a time lets it run. Ends with SIGINT (Ctrl-C), SIGTERM or SIGHUP.";

struct ServeLine {
    ServeOptions options;
    std::optional<std::string> state;
};

} // namespace

void add_serve_command(CLI::App &app, Program &program) {
    const auto line = std::make_shared<ServeLine>();
    CLI::App *serve = app.add_subcommand("serve", "Serve the line system to other programs until stopped");
    serve->footer(footer);
    add_state_option(*serve, line->state);
    CLI::Option *speed = serve
                             ->add_option("--speed", line->options.speed,
                                          "How many times faster the line system's time passes, 1 to 1000")
                             ->type_name("FACTOR")
                             ->check(whole_number(1, highest_speed));
    serve->add_flag("--stopped", line->options.stopped, "Leave the time of the line system to ocpsm device tick")
        ->excludes(speed);
    serve->callback([line, &program] {
        ServeOptions options = line->options;
        options.state = state_directory(line->state, process_environment);
        options.plugin = program.plugin_file();
        program.chosen = [options](std::ostream &output, std::ostream &errors) {
            return serve_command(options, output, errors);
        };
    });
}

} // namespace ocpsm
