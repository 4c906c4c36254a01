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

void print_error(std::ostream &errors, const Message &message) {
    std::string line = "ocpsm: error: ";
    if (!message.tag.empty()) {
        line.append(message.tag).append(": ");
    }
    line.append(message.what);
    if (!message.where.empty()) {
        line.append(" at ").append(message.where);
    }
    if (!message.node.empty()) {
        line.append(" (node ").append(message.node).append(")");
    }
    if (!message.advice.empty()) {
        line.append("; ").append(message.advice);
    }
    errors << on_one_line(line) << '\n';
}

void print_warning(std::ostream &errors, std::string_view text) {
    errors << "ocpsm: warning: " << on_one_line(text) << '\n';
}

} // namespace ocpsm
