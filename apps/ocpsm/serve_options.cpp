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
    "of 100 milliseconds; one process at a time lets it run. Without a door that is named gNMI is served on\n"
    "127.0.0.1:9339. Ends with SIGINT (Ctrl-C), SIGTERM or SIGHUP.";

constexpr char default_gnmi[] = "127.0.0.1:9339";

struct ServeLine {
    ServeOptions options;
    std::optional<std::string> state;
    GnmiDoorOptions gnmi;
    NetconfDoorOptions netconf;

    ServeOptions finished(const Program &program) const {
        ServeOptions finished = options;
        finished.state = state_directory(state, process_environment);
        finished.plugin = program.plugin_file();
        if (!netconf.address.empty()) {
            finished.netconf = netconf;
            finished.netconf->state = finished.state;
            finished.netconf->plugin = finished.plugin;
        }
        if (!gnmi.address.empty() || !finished.netconf) {
            finished.gnmi = gnmi;
            finished.gnmi->address = gnmi.address.empty() ? default_gnmi : gnmi.address;
        }
        return finished;
    }
};

// A file that goes with another option.
CLI::Option *add_file(CLI::App &serve, const std::string &name, std::string &file, const std::string &help,
                      CLI::Option *with) {
    return serve.add_option(name, file, help)->type_name("FILE")->needs(with);
}

void add_doors(CLI::App &serve, ServeLine &line) {
    CLI::Option *gnmi =
        serve.add_option("--gnmi", line.gnmi.address, "Serve gNMI; plaintext on loopback only")->type_name("ADDR:PORT");
    CLI::Option *certificate =
        add_file(serve, "--tls-cert", line.gnmi.certificate, "The certificate of gNMI's TLS, in PEM", gnmi);
    certificate->needs(add_file(serve, "--tls-key", line.gnmi.key, "Its key", certificate));
    add_file(serve, "--tls-ca", line.gnmi.client_authority, "Who signs the certificates that clients must have",
             certificate);
    CLI::Option *netconf =
        serve.add_option("--netconf", line.netconf.address, "Serve NETCONF over SSH")->type_name("ADDR:PORT");
    netconf->needs(add_file(serve, "--authorized-keys", line.netconf.authorized_keys,
                            "The public keys that NETCONF lets in", netconf));
}

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
    add_doors(*serve, *line);
    serve->callback([line, &program] {
        program.chosen = [options = line->finished(program)](std::ostream &output, std::ostream &errors) {
            return serve_command(options, output, errors);
        };
    });
}

} // namespace ocpsm
