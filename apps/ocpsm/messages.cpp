#include "messages.hpp"

#include "framework/text.hpp"

namespace ocpsm {

std::string on_one_line(std::string_view text) {
    return one_line(text, whole_text);
}

std::string in_words(const std::optional<std::string> &value) {
    if (!value) {
        return "not set";
    }
    return value->empty() ? "\"\"" : on_one_line(*value);
}

std::string in_words(const Change &change) {
    return on_one_line(change.path) + ": " + in_words(change.before) + " -> " + in_words(change.after);
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

void print_log(const Outcome &outcome, std::ostream &errors) {
    for (const auto *lines : {&outcome.log, &outcome.trace}) {
        for (const std::string &line : *lines) {
            errors << on_one_line(line) << '\n';
        }
    }
}

void print_warnings(const Outcome &outcome, std::ostream &errors) {
    for (const std::string &warning : outcome.warnings) {
        print_warning(errors, warning);
    }
}

void print_messages(const Outcome &outcome, std::ostream &errors) {
    print_log(outcome, errors);
    print_warnings(outcome, errors);
}

} // namespace ocpsm
