#include "framework/text.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <vector>

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

struct Range {
    std::int32_t first;
    std::int32_t last;
};

// What a terminal acts upon instead of showing it, or shows elsewhere.
constexpr Range unseen[] = {
    {-1, 0x1f},       // no UTF-8, and the controls
    {0x7f, 0x9f},     // delete, and the second set of controls
    {0x61c, 0x61c},   // marks and embeddings of the direction of writing
    {0x200e, 0x200f}, //
    {0x202a, 0x202e}, //
    {0x2066, 0x2069}, //
    {0x2028, 0x2029}, // ends of lines and paragraphs
    {0xfdd0, 0xfdef}, // noncharacters; so are the last two of each plane
    {0xfeff, 0xfeff}, // byte order mark
};

bool is_shown(std::int32_t character) {
    const auto holds = [character](const Range &range) { return range.first <= character && character <= range.last; };
    return std::none_of(std::begin(unseen), std::end(unseen), holds) && (character & 0xfffe) != 0xfffe;
}

void append_escaped(std::string &line, std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        line.append("\\x").append(1, digits[number >> 4]).append(1, digits[number & 15]);
    }
}

// How many bytes are to be put in, taken out or changed to make one text of the other (Levenshtein).
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char c : one) {
        std::size_t diagonal = row.front()++;
        for (std::size_t index = 0; index < other.size(); ++index) {
            const std::size_t changed = diagonal + (c == other[index] ? 0 : 1);
            diagonal = row[index + 1];
            row[index + 1] = std::min({changed, diagonal + 1, row[index] + 1});
        }
    }
    return row.back();
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
        if (character < 0) {
            rest = before.substr(1); // the next byte may begin a character
        }
        const std::string_view bytes = before.substr(0, before.size() - rest.size());
        if (is_shown(character)) {
            line.append(bytes);
        } else {
            append_escaped(line, bytes);
        }
    }
    return line;
}

std::string quoted(std::string_view text, std::size_t longest) {
    return "\"" + one_line(text, longest) + "\"";
}

std::optional<std::string_view> nearest(std::string_view text, std::span<const std::string> known) {
    constexpr std::size_t longest = 64;
    std::optional<std::string_view> found;
    std::size_t least = 2 * longest;
    for (const std::string &each : known) {
        const std::size_t away = distance(text.substr(0, longest), std::string_view(each).substr(0, longest));
        if (away < least) {
            least = away;
            found = each;
        } else if (away == least) {
            found.reset();
        }
    }
    return found;
}

std::string xpath_literal(std::string_view text) {
    for (const char *quote : {"'", "\""}) {
        if (text.find(*quote) == std::string_view::npos) {
            return std::string(quote).append(text).append(quote);
        }
    }
    std::string joined = "concat(";
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t quote = std::min(text.find('\'', start), text.size());
        joined.append(start == 0 ? "'" : ",\"'\",'").append(text.substr(start, quote - start)).append("'");
        start = quote + 1;
    }
    return joined.append(")");
}

std::string key_predicate(std::string_view key, std::string_view value) {
    return std::string("[").append(key).append("=").append(xpath_literal(value)).append("]");
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

void append_xml(std::string &out, std::string_view text) {
    for (const char byte : text) {
        switch (byte) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '\r': // unescaped, a parser would read it as a line feed
            out += "&#13;";
            break;
        default:
            out += byte;
        }
    }
}

std::string xml_element(std::string_view name, std::string_view text) {
    std::string element = std::string("<").append(name).append(">");
    append_xml(element, text);
    return element.append("</").append(name).append(">\n");
}

std::string xml_text(std::string_view text) {
    constexpr std::string_view replacement = "\xef\xbf\xbd";
    std::string shown;
    while (!text.empty()) {
        const std::string_view before = text;
        const bool is_carried = is_xml_character(next_character(text));
        shown += is_carried ? before.substr(0, before.size() - text.size()) : replacement;
    }
    return shown;
}

std::string FirstTexts::in_a_row() const {
    std::string text;
    for (const std::string &kept : kept_) {
        text.append(text.empty() ? "" : ", ").append(kept);
    }
    return more() == 0 ? text : text + " and " + std::to_string(more()) + " more";
}

std::string listed(std::span<const std::string> texts) {
    FirstTexts first;
    for (const std::string &text : texts) {
        first.add([&text] { return one_line(text); });
    }
    return first.in_a_row();
}

} // namespace ocpsm
