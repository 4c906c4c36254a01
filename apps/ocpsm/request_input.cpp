#include "request_input.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "framework/error.hpp"
#include "framework/request/syntax.hpp"

namespace ocpsm {
namespace {

using framework::opening_of;
using framework::Syntax;

[[noreturn]] void unreadable(const std::string &name, const std::string &reason) {
    throw Error(Error::Source::input, {}, {}, "cannot read " + name + ": " + reason,
                "name a file with an XML or JSON request, or - for standard input");
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
    if (opening_of(text).body.empty()) {
        unreadable(name == "-" ? "standard input" : name, "it is empty");
    }
    return text;
}

bool looks_like_request(std::string_view text) {
    return opening_of(text).syntax.has_value();
}

Format format_of(std::string_view text) {
    return opening_of(text).syntax == Syntax::json ? Format::json : Format::xml;
}

} // namespace ocpsm
