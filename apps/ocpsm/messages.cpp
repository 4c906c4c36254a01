#include "messages.hpp"

namespace ocpsm {

std::string on_one_line(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string line;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7f) {
            line.push_back(character);
        } else if (character == '\n') {
            line.append("\\n");
        } else if (character == '\t') {
            line.append("\\t");
        } else {
            line.append("\\x").append(1, digits[byte >> 4U]).append(1, digits[byte & 15U]);
        }
    }
    return line;
}

int print_error(std::ostream &errors, const Error &error) {
    std::string line = "ocpsm: error: ";
    if (!error.tag.empty()) {
        line.append(error.tag).append(": ");
    }
    line.append(error.message());
    if (!error.native_path.empty()) {
        line.append(" (native: ").append(error.native_path).append(")");
    }
    if (!error.path.empty()) {
        line.append(" at ").append(error.path);
    }
    if (!error.node.empty()) {
        line.append(" (node ").append(error.node).append(")");
    }
    if (!error.advice.empty()) {
        line.append("; ").append(error.advice);
    }
    errors << on_one_line(line) << '\n';
    return error.source == Error::Source::refused ? exit_refused : exit_bad_input;
}

void print_warning(std::ostream &errors, std::string_view text) {
    errors << "ocpsm: warning: " << on_one_line(text) << '\n';
}

void print_messages(const Outcome &outcome, std::ostream &errors) {
    for (const auto *lines : {&outcome.log, &outcome.trace}) {
        for (const std::string &line : *lines) {
            errors << on_one_line(line) << '\n';
        }
    }
    for (const std::string &warning : outcome.warnings) {
        print_warning(errors, warning);
    }
}

} // namespace ocpsm
