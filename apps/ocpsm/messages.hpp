// The one line that a person gets when something is wrong.
#ifndef OCPSM_MESSAGES_HPP
#define OCPSM_MESSAGES_HPP

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "framework/error.hpp"
#include "framework/service.hpp"

namespace ocpsm {

// The exit codes.
inline constexpr int exit_done = 0;
inline constexpr int exit_refused = 1;   // by the plug-in, the model or the device; nothing has changed
inline constexpr int exit_bad_input = 2; // bad usage or unreadable input
inline constexpr int exit_changed = 3;   // of a command: something has changed; of the program: and it could not say so

// "ocpsm: error: TAG: MESSAGE (native: NATIVE PATH) at PATH (node NODE); ADVICE", what is empty left out. Returns the
// exit code of a program that ends with this error.
int print_error(std::ostream &errors, const Error &error);

// "ocpsm: warning: TEXT"
void print_warning(std::ostream &errors, std::string_view text);

// "PATH: BEFORE -> AFTER"
std::string in_words(const Change &change);

// A value in such words; none: it is not set.
std::string in_words(const std::optional<std::string> &value);

// A whole text as one_line shows it.
std::string on_one_line(std::string_view text);

// What a request says beside its result: the lines of both channels of the plug-in, which are kept where they are asked
// for, then the warnings.
void print_messages(const Outcome &outcome, std::ostream &errors);

// The lines, and the warnings.
void print_log(const Outcome &outcome, std::ostream &errors);
void print_warnings(const Outcome &outcome, std::ostream &errors);

} // namespace ocpsm

#endif
