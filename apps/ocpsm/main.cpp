#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "command_line.hpp"
#include "commands.hpp"
#include "completion.hpp"
#include "framework/error.hpp"
#include "libraries.hpp"
#include "messages.hpp"

namespace ocpsm {
namespace {

constexpr char description[] =
    "OpenConfig line protection on an optical line system: reads, edits, what they become natively, and the system.\n"
    "Thresholds and powers are in dBm; hysteresis, relative thresholds, offsets and attenuations in dB, with two\n"
    "decimal places; times in milliseconds. Native values are integers in tenths (x10) or hundredths (x100) of these.";

// The help of all subcommands has those of a subcommand whole too.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_expanded(const CLI::App *command) const override {
        const bool nested = command->get_parent()->get_parent() != nullptr;
        const std::vector<const CLI::App *> below = command->get_subcommands([](const CLI::App *) { return true; });
        if (below.empty()) {
            return (nested ? command->get_parent()->get_name() + " " : "") + CLI::Formatter::make_expanded(command);
        }
        std::string text = command->get_name() + "\n  " + command->get_description() + "\n";
        for (const CLI::App *subcommand : below) {
            text += "\n" + make_expanded(subcommand);
        }
        return text;
    }
};

struct CommandLine {
    Program program;
    CLI::App app{description, "ocpsm"};

    CommandLine() {
        app.formatter(std::make_shared<HelpFormatter>());
        app.require_subcommand(1);
        app.set_help_all_flag("--help-all", "Print the help of every subcommand and exit");
        app.footer("Exit codes: 0 done, 1 refused (nothing has changed), 2 bad usage or unreadable input, 3 changed "
                   "(output not written).");
        app.add_option("--plugin", program.plugin, "The mapping plug-in, else oc-psm.so beside the program's libraries")
            ->type_name("FILE");
        app.set_version_flag(
            "--version", [this] { return version_text(program.plugin_file()); },
            "Print the versions of program and plug-in and exit");
        app.fallthrough();
        add_client_commands(app, program);
        add_device_commands(app, program);
        add_serve_command(app, program);
        add_server_commands(app, program);
        add_mapping_commands(app, program);
    }
};

// The innermost subcommand that was given.
const CLI::App &innermost(const CLI::App &app) {
    const std::vector<CLI::App *> given = app.get_subcommands();
    return given.empty() ? app : innermost(*given.front());
}

std::string full_name(const CLI::App &app) {
    return app.get_parent() == nullptr ? app.get_name() : full_name(*app.get_parent()) + " " + app.get_name();
}

std::string list_of_subcommands(const CLI::App &app) {
    std::string list;
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; })) {
        list += (list.empty() ? "" : ", ") + command->get_name();
    }
    return list;
}

// What stands on the line and is not understood.
std::string unknown_word(const CLI::App &app) {
    for (const std::string &word : app.remaining(true)) {
        if (!word.empty() && word != "--") {
            return word;
        }
    }
    return {};
}

// A misspelt subcommand is to be named: the parser only says that there is none.
Error usage_error(const CLI::App &app, const CLI::ParseError &error) {
    const CLI::App &given = innermost(app);
    const std::string word = unknown_word(app);
    std::string what = error.what();
    const std::string subcommands = list_of_subcommands(given);
    if (!word.empty() && word.front() != '-' && !subcommands.empty()) {
        what = "there is no subcommand " + word + "; the subcommands of " + full_name(given) + " are " + subcommands;
    } else if (!word.empty()) {
        what = (word.front() == '-' ? "there is no option " : "there is no place for ") + word;
    }
    return {Error::Source::input, {}, {}, what, full_name(given) + " --help tells the usage"};
}

// Ends the program with words where memory is short; takes none itself.
[[noreturn]] void end_without_memory() {
    constexpr std::string_view text = "ocpsm: error: resource-denied: there is not enough memory\n";
    static_cast<void>(write(STDERR_FILENO, text.data(), text.size()) == 0);
    _exit(exit_bad_input);
}

// Before any other object of the program is made: the parser of command lines has some that take memory.
[[gnu::constructor(101)]] void end_in_words() {
    std::set_terminate([] {
        try {
            if (const auto thrown = std::current_exception()) {
                std::rethrow_exception(thrown);
            }
        } catch (const std::bad_alloc &) {
            end_without_memory();
        } catch (...) {
        }
        std::abort();
    });
}

// A file that is opened must not take the place of a standard one that whoever started the program has closed: what is
// printed would be written to it. Writing to this one fails.
void fill_standard_files() {
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(file, F_GETFD) == -1 &&
            open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY) != file) { // NOLINT
            _exit(exit_bad_input);
        }
    }
}

int run_command(CommandLine &line, int argc, char **argv) {
    try {
        line.app.parse(argc, argv);
        const int result = line.program.chosen(std::cout, std::cerr);
        if (std::cout.flush()) {
            return result == exit_changed ? exit_done : result;
        }
        if (result == exit_changed) {
            std::cerr << "ocpsm: error: the change was made, but the output cannot be written\n";
            return result;
        }
        throw std::runtime_error("the output cannot be written");
    } catch (const CLI::Success &help) {
        return line.app.exit(help);
    } catch (const CLI::ParseError &error) {
        return print_error(std::cerr, usage_error(line.app, error));
    } catch (const Error &error) {
        return print_error(std::cerr, error);
    }
}

int run_program(int argc, char **argv) {
    try {
        CommandLine line;
        if (argc > 1 && std::string_view(argv[1]) == "--complete") {
            print_completions(line.app, {argv + 2, argv + argc}, std::cout);
            return exit_done;
        }
        return run_command(line, argc, argv);
    } catch (const std::bad_alloc &) {
        end_without_memory();
    } catch (const std::exception &error) {
        return print_error(std::cerr, {Error::Source::input, "operation-failed", {}, error.what()});
    }
    return exit_bad_input;
}

} // namespace
} // namespace ocpsm

int main(int argc, char **argv) {
    ocpsm::fill_standard_files();
    return ocpsm::run_program(argc, argv);
}
