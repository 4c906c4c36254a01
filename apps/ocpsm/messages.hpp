// The one line that a person gets when something is wrong.
#ifndef OCPSM_MESSAGES_HPP
#define OCPSM_MESSAGES_HPP

#include <ostream>
#include <string>
#include <string_view>

namespace ocpsm {

// Every part but `what` may be empty.
struct Message {
    std::string tag;   // NETCONF error-tag
    std::string what;  // what was refused and why
    std::string where; // OpenConfig instance path
    std::string node;  // tag of the offending node
    std::string advice;
};

// "ocpsm: error: TAG: WHAT at WHERE (node NODE); ADVICE"
void print_error(std::ostream &errors, const Message &message);

// "ocpsm: warning: TEXT"
void print_warning(std::ostream &errors, std::string_view text);

// A text that stays on its line: control characters are written as \n, \t or \x1b.
std::string on_one_line(std::string_view text);

// The lines that a channel of the plug-in has kept, see framework/host/log_service.hpp.
template <class Lines>
void print_lines(const Lines &lines, std::ostream &errors) {
    for (const auto &line : lines) {
        errors << on_one_line(line.text) << '\n';
    }
}

} // namespace ocpsm

#endif
