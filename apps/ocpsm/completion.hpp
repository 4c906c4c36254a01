// What may follow on a command line that is being typed, for the completion of the shells (completion/).
#ifndef OCPSM_COMPLETION_HPP
#define OCPSM_COMPLETION_HPP

#include <iosfwd>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace ocpsm {

// Prints what may stand for the last of `words`, a candidate per line with its help behind a tab: subcommands, options,
// the words that an option takes, paths with the modules of the line system that the words name. A line ":file" or
// ":directory" instead leaves it to the shell. The words follow the program's name and are as they were typed, with a
// shell's quotes. What cannot be found out is left out.
void print_completions(const CLI::App &app, const std::vector<std::string> &words, std::ostream &output);

} // namespace ocpsm

#endif
