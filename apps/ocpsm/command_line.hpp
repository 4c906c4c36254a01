// The subcommands and their options. What is to be done is kept until the whole line has been understood.
#ifndef OCPSM_COMMAND_LINE_HPP
#define OCPSM_COMMAND_LINE_HPP

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "request_input.hpp"

namespace ocpsm {

// Does what the given subcommand is there for, and returns the exit code.
using Command = std::function<int(std::ostream &output, std::ostream &errors)>;

// What holds for every subcommand.
struct Program {
    std::filesystem::path plugin; // as named; empty: the one beside the program's libraries
    Command chosen;               // set by the subcommand that is given

    std::filesystem::path plugin_file() const;
};

// Each adds a group of subcommands. `program` must outlive the parsing and the command.
void add_mapping_commands(CLI::App &app, Program &program); // translate, explain, coverage
void add_client_commands(CLI::App &app, Program &program);  // get, edit, set, delete, undo, journal
void add_device_commands(CLI::App &app, Program &program);  // device, watch
void add_serve_command(CLI::App &app, Program &program);
void add_server_commands(CLI::App &app, Program &program); // netconf

// ---- what the groups have in common ----

// One of these words; the type name in the help says already what is allowed.
CLI::Validator one_of(const std::vector<std::string> &values);

// A whole number within these bounds; a text that is none is told from a number that is too small or too large.
CLI::Validator whole_number(std::uint64_t minimum, std::uint64_t maximum);

// --state DIR of a command that works on a line system.
void add_state_option(CLI::App &command, std::optional<std::string> &state);

// --format json|xml
void add_format_option(CLI::App &command, std::string &format, const std::string &help);

// "json" or "xml" as a format; nothing for the empty text.
std::optional<Format> format_named(const std::string &name);

} // namespace ocpsm

#endif
