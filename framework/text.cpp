#include "framework/text.hpp"

#include <cstdint>

namespace ocpsm {
namespace {

// Takes the next character off a text; negative when the bytes are not UTF-8 (RFC 3629).
std::int32_t next_character(std::string_view &text) {
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) {
        return first;
    }
    const unsigned length = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) {
        return -1;
    }
    std::int32_t character = first & (0x3f >> length);
    for (unsigned index = 0; index < length; ++index) {
        const auto next = static_cast<unsigned char>(text[index]);
        if ((next & 0xc0) != 0x80) {
            return -1;
        }
        character = (character << 6) | (next & 0x3f);
    }
    text.remove_prefix(length);
    const bool overlong = character < (length == 3 ? 0x10000 : length == 2 ? 0x800 : 0x80);
    const bool surrogate = character >= 0xd800 && character <= 0xdfff;
    return overlong || surrogate || character > 0x10ffff ? -1 : character;
}

bool is_xml_character(std::int32_t character) {
    return character == '\t' || character == '\n' || character == '\r' ||
           (character >= 0x20 && character != 0xfffe && character != 0xffff);
}

} // namespace

std::string one_line(std::string_view text, std::size_t longest) {
    std::string line;
    for (std::string_view rest = text; !rest.empty();) {
        if (line.size() >= longest) {
            return line + "...";
        }
        const std::string_view before = rest;
        const std::int32_t character = next_character(rest);
        if (character >= 0x20 && character != 0x7f && (character < 0x80 || character > 0x9f)) {
            line.append(before.substr(0, before.size() - rest.size()));
            continue;
        }
        constexpr char digits[] = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(before.front());
        line.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        rest = before.substr(1);
    }
    return line;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        if (next_character(text) < 0) {
            return false;
        }
    }
    return true;
}

bool is_xml_text(std::string_view text) {
    while (!text.empty()) {
        if (!is_xml_character(next_character(text))) {
            return false;
        }
    }
    return true;
}

} // namespace ocpsm
