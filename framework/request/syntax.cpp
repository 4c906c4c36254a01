#include "framework/request/syntax.hpp"

#include <algorithm>
#include <string>

#include "framework/error.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view blanks = " \t\r\n";

[[noreturn]] void refuse(const std::string &tag, const std::string &message, const std::string &advice) {
    throw Error(Error::Source::input, tag, "", message, advice);
}

[[noreturn]] void refuse_malformed(const std::string &message) {
    refuse("malformed-message", message, "check the request with a parser");
}

void check_depth(std::size_t depth) {
    if (depth > max_request_depth) {
        refuse("too-big", "the request is nested deeper than " + std::to_string(max_request_depth) + " levels",
               "the model needs eight");
    }
}

// The position behind the first `end` at or after `from`.
std::size_t behind(std::string_view text, std::size_t from, std::string_view end) {
    const std::size_t at = text.find(end, from);
    if (at == std::string_view::npos) {
        refuse_malformed("the request ends in the middle of markup");
    }
    return at + end.size();
}

// The position behind the tag that begins at `from`: a ">" in a quoted attribute does not end it.
std::size_t behind_tag(std::string_view text, std::size_t from) {
    char quote = '\0';
    for (std::size_t i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return i + 1;
        }
    }
    refuse_malformed("the request ends in the middle of a tag");
}

void scan_xml(std::string_view text) {
    std::size_t depth = 0;
    std::size_t at = text.find('<');
    while (at != std::string_view::npos) {
        const std::string_view rest = text.substr(at);
        std::size_t end = 0;
        if (rest.starts_with("<!--")) {
            end = behind(text, at + 4, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            end = behind(text, at, "]]>");
        } else if (rest.starts_with("<!")) {
            refuse_malformed("the request has a document type declaration");
        } else if (rest.starts_with("<?")) {
            end = behind(text, at, "?>");
        } else if (rest.starts_with("</")) {
            end = behind(text, at, ">");
            if (depth == 0) {
                refuse_malformed("the request ends an element that it has not begun");
            }
            --depth;
        } else {
            end = behind_tag(text, at);
            if (text[end - 2] != '/') {
                check_depth(++depth);
            }
        }
        at = text.find('<', end);
    }
    if (depth != 0) {
        refuse_malformed("the request ends in the middle of an element");
    }
}

// The position behind the string whose opening quote is at `from`.
std::size_t behind_string(std::string_view text, std::size_t from) {
    for (std::size_t i = from + 1; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == '"') {
            return i + 1;
        }
    }
    refuse_malformed("the request ends in the middle of a string");
}

void scan_json(std::string_view text) {
    std::size_t depth = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (c == '"') {
            at = behind_string(text, at);
            continue;
        }
        ++at;
        if (c == '{' || c == '[') {
            check_depth(++depth);
        } else if (c == '}' || c == ']') {
            --depth; // the text begins with an opening one, and the loop ends when it is closed
            if (depth == 0) {
                break;
            }
        }
    }
    if (depth != 0) {
        refuse_malformed("the request ends in the middle of a JSON object");
    }
    if (text.find_first_not_of(blanks, at) != std::string_view::npos) {
        refuse_malformed("something stands behind the JSON object");
    }
}

void skip_blanks(std::string_view &text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

// Takes off what may stand in front of the first element.
void skip_prologue(std::string_view &text) {
    skip_blanks(text);
    while (text.starts_with("<?") || text.starts_with("<!--")) {
        text.remove_prefix(text[1] == '?' ? behind(text, 0, "?>") : behind(text, 4, "-->"));
        skip_blanks(text);
    }
}

} // namespace

RequestText inspect(std::string_view text) {
    if (text.size() > max_request_size) {
        refuse("too-big", "the request has more than " + std::to_string(max_request_size >> 20) + " MiB",
               "send it in pieces");
    }
    if (text.find('\0') != std::string_view::npos) {
        refuse_malformed("the request holds a byte 0");
    }
    if (text.starts_with("\xef\xbb\xbf")) {
        text.remove_prefix(3);
    }
    skip_prologue(text);
    if (text.starts_with('<')) {
        scan_xml(text);
        return {Syntax::xml, text};
    }
    if (text.starts_with('{')) {
        scan_json(text);
        return {Syntax::json, text};
    }
    refuse("malformed-message", text.empty() ? "the request is empty" : "the request is neither XML nor JSON",
           "an XML request begins with <, a JSON request with {");
}

} // namespace ocpsm::framework
