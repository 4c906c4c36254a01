#include "servers/gnmi/refusal.hpp"

#include <array>
#include <cstdio>
#include <string_view>

namespace ocpsm::gnmi {
namespace {

struct CodeRow {
    std::string_view tag; // RFC 6241, appendix A
    grpc::StatusCode code;
};

constexpr std::array<CodeRow, 19> code_rows{{
    {"access-denied", grpc::StatusCode::PERMISSION_DENIED},
    {"bad-attribute", grpc::StatusCode::INVALID_ARGUMENT},
    {"bad-element", grpc::StatusCode::INVALID_ARGUMENT},
    {"data-exists", grpc::StatusCode::ALREADY_EXISTS},
    {"data-missing", grpc::StatusCode::NOT_FOUND},
    {"in-use", grpc::StatusCode::ABORTED},
    {"invalid-value", grpc::StatusCode::INVALID_ARGUMENT},
    {"lock-denied", grpc::StatusCode::ABORTED},
    {"malformed-message", grpc::StatusCode::INVALID_ARGUMENT},
    {"missing-attribute", grpc::StatusCode::INVALID_ARGUMENT},
    {"missing-element", grpc::StatusCode::INVALID_ARGUMENT},
    {"operation-failed", grpc::StatusCode::FAILED_PRECONDITION},
    {"operation-not-supported", grpc::StatusCode::UNIMPLEMENTED},
    {"resource-denied", grpc::StatusCode::RESOURCE_EXHAUSTED},
    {"rollback-failed", grpc::StatusCode::INTERNAL},
    {"too-big", grpc::StatusCode::RESOURCE_EXHAUSTED},
    {"unknown-attribute", grpc::StatusCode::INVALID_ARGUMENT},
    {"unknown-element", grpc::StatusCode::INVALID_ARGUMENT},
    {"unknown-namespace", grpc::StatusCode::INVALID_ARGUMENT},
}};

grpc::StatusCode code_of(const Error &error) {
    for (const CodeRow &row : code_rows) {
        if (row.tag == error.tag) {
            return row.code;
        }
    }
    return error.source == Error::Source::refused ? grpc::StatusCode::ABORTED : grpc::StatusCode::INVALID_ARGUMENT;
}

// The length of the UTF-8 character that a text begins with, if that is one that a line can show; else 0.
std::size_t shown_character(std::string_view text) {
    const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return first >= 0x20 && first != 0x7f ? 1 : 0;
    }
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) {
        return 0;
    }
    unsigned code = first & (0x7fU >> length);
    for (std::size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xc0U) != 0x80) {
            return 0;
        }
        code = (code << 6U) | (byte(at) & 0x3fU);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool control = code < 0xa0 || (code >= 0x200b && code <= 0x200f) || (code >= 0x2028 && code <= 0x202e) ||
                         (code >= 0x2066 && code <= 0x2069) || code == 0xfeff;
    return overlong || control || code > 0x10ffff || (code >= 0xd800 && code < 0xe000) ? 0 : length;
}

std::string on_one_line(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        if (line.size() > Refusal::longest_message) {
            return line + "...";
        }
        const std::size_t length = shown_character(text);
        if (length == 0) {
            std::array<char, 5> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\x%02x", static_cast<unsigned char>(text.front()));
            line += escaped.data();
        } else {
            line += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return line;
}

std::string words(const Error &error) {
    std::string text = error.message();
    if (!error.native_path.empty()) {
        text += " (native: " + error.native_path + ")";
    }
    if (!error.path.empty()) {
        text += " at " + error.path;
    }
    if (!error.advice.empty()) {
        text += "; " + error.advice;
    }
    return text;
}

} // namespace

Refusal::Refusal(grpc::StatusCode status_code, const std::string &message, const std::string &path)
    : std::runtime_error(on_one_line(path.empty() ? message : message + " at " + path)), code(status_code) {}

Refusal refusal_of(const Error &error) {
    return {code_of(error), words(error)};
}

} // namespace ocpsm::gnmi
