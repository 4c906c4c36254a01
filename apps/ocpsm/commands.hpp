// What the program does, a function per subcommand. Each prints its result to `output` and returns the exit code; what
// goes wrong leaves it as ocpsm::Error.
#ifndef OCPSM_COMMANDS_HPP
#define OCPSM_COMMANDS_HPP

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

#include "framework/translation.hpp"
#include "request_input.hpp"

namespace ocpsm {

inline constexpr int exit_done = 0;
inline constexpr int exit_refused = 1;   // by the plug-in, the model or the device; nothing has changed
inline constexpr int exit_bad_input = 2; // bad usage or unreadable input

struct RequestOptions {
    std::string file;                           // "-": standard input
    std::optional<ocpsm::framework::Kind> kind; // absent: what the text says
    std::optional<Format> format;               // of the output; absent: the input's
    bool log = false;                           // the plug-in's debug log to `errors`
    bool trace = false;                         // its trace buffer to `errors`
    bool check_values = true;
    std::filesystem::path state; // directory of a line system; empty: the built-in example
    std::filesystem::path plugin;
};

// Prints the native requests that an OpenConfig request becomes, and the result.
int translate_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Prints a line per native node that the plug-in adds, in order.
int explain_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

enum class TableFormat { text, markdown };

// Prints the mapping of every node of the OpenConfig model.
int table_command(TableFormat format, std::ostream &output);

// Proves that model, tables and plug-in agree; exit_refused and a line per disagreement when they do not.
int coverage_command(const std::filesystem::path &plugin, std::ostream &output, std::ostream &errors);

} // namespace ocpsm

#endif
