// What the subcommands that take a request have in common: from the options to a finished translation.
#ifndef OCPSM_REQUEST_RUN_HPP
#define OCPSM_REQUEST_RUN_HPP

#include <iosfwd>

#include "commands.hpp"
#include "framework/translation.hpp"

namespace ocpsm {

struct RequestRun {
    ocpsm::framework::Kind kind;
    Format format; // of the output
    ocpsm::framework::Translation translation;
};

// Reads the request, loads the plug-in and translates. Prints to `errors`, in this order, the log and the trace where
// they are asked for, and the warnings. `keep_trace`: the additions are to bear the names of the functions that made
// them.
RequestRun run_request(const RequestOptions &options, bool keep_trace, std::ostream &errors);

// The last lines of both subcommands: the result to `output`, and to `errors` why it was refused. Returns the exit
// code.
int print_result(const ocpsm::framework::Translation &translation, std::ostream &output, std::ostream &errors);

} // namespace ocpsm

#endif
