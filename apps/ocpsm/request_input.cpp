#include "request_input.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "framework/error.hpp"

namespace ocpsm {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

[[noreturn]] void unreadable(const std::string &name, const std::string &reason) {
    throw ocpsm::Error(ocpsm::Error::Source::input, {}, {}, "cannot read " + name + ": " + reason,
                       "name a file with an XML or JSON request, or - for standard input");
}

std::string_view without_leading_blanks(std::string_view text) {
    if (text.substr(0, byte_order_mark.size()) == byte_order_mark) {
        text.remove_prefix(byte_order_mark.size());
    }
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

// What follows the first `end` in the text; empty when there is none.
std::string_view behind(std::string_view text, std::string_view end) {
    const size_t at = text.find(end);
    return at == std::string_view::npos ? std::string_view() : text.substr(at + end.size());
}

// The name of the first element, without prefix; empty when there is none.
std::string_view first_element(std::string_view text) {
    text = without_leading_blanks(text);
    while (text.substr(0, 2) == "<?" || text.substr(0, 4) == "<!--") {
        text = without_leading_blanks(behind(text, text[1] == '?' ? "?>" : "-->"));
    }
    if (text.empty() || text.front() != '<') {
        return {};
    }
    std::string_view name = text.substr(1, text.find_first_of(" \t\r\n/>", 1) - 1);
    return name.substr(name.find(':') + 1);
}

} // namespace

std::string read_request(const std::string &name, std::istream &standard_input) {
    std::string text;
    if (name == "-") {
        text.assign(std::istreambuf_iterator<char>(standard_input), {});
    } else {
        std::error_code ignored;
        if (std::filesystem::is_directory(name, ignored)) {
            unreadable(name, "it is a directory");
        }
        std::ifstream file(name, std::ios::binary);
        if (!file) {
            unreadable(name, std::strerror(errno)); // NOLINT(concurrency-mt-unsafe)
        }
        text.assign(std::istreambuf_iterator<char>(file), {});
        if (file.bad()) {
            unreadable(name, "reading failed");
        }
    }
    if (without_leading_blanks(text).empty()) {
        unreadable(name == "-" ? "standard input" : name, "it is empty");
    }
    return text;
}

bool looks_like_request(std::string_view text) {
    text = without_leading_blanks(text);
    return !text.empty() && (text.front() == '<' || text.front() == '{');
}

Format format_of(std::string_view text) {
    text = without_leading_blanks(text);
    return !text.empty() && text.front() == '{' ? Format::json : Format::xml;
}

std::optional<Kind> kind_of(std::string_view text) {
    const std::string_view element = first_element(text);
    if (element == "filter") {
        return Kind::get;
    }
    if (element == "config") {
        return Kind::edit;
    }
    return std::nullopt;
}

} // namespace ocpsm
