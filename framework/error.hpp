// The one error type: exactly one protocol error (RFC 6241, 4.3 and appendix A), as data from where it is found to
// where it is shown.
#ifndef OCPSM_FRAMEWORK_ERROR_HPP
#define OCPSM_FRAMEWORK_ERROR_HPP

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace ocpsm {

// The layer that an error belongs to (RFC 6241, 4.3).
enum class ErrorType { transport, rpc, protocol, application };

/*
 * All texts are without line ends where this system wrote them; what comes from a client, a device or a disk stands in
 * them as it is and is escaped where it is shown (one_line). Values are copied freely and belong to whoever holds them.
 */
class Error : public std::runtime_error {
public:
    // Who says no: it decides a program's exit code (refused: 1, bad input or usage: 2).
    enum class Source { refused, input };

    // `error_tag` is a NETCONF error-tag, `error_path` an OpenConfig instance path (empty when there is none),
    // `message` says what and why, `what_to_do` how to go on (may be empty).
    Error(Source who, std::string error_tag, std::string error_path, const std::string &message,
          std::string what_to_do = {})
        : std::runtime_error(message), source(who), tag(std::move(error_tag)), path(std::move(error_path)),
          advice(std::move(what_to_do)) {}

    std::string message() const { return what(); }

    // Two tags belong to one layer only (RFC 6241, appendix A); with any other, what is refused is what was asked for.
    ErrorType type() const {
        if (tag == "malformed-message") {
            return ErrorType::rpc;
        }
        return tag == "lock-denied" ? ErrorType::protocol : ErrorType::application;
    }

    // For a throw in one statement.
    Error &&at_native(std::string native) && {
        native_path = std::move(native);
        return std::move(*this);
    }
    Error &&of_node(std::string name) && {
        node = std::move(name);
        return std::move(*this);
    }
    Error &&of_attribute(std::string name) && {
        attribute = std::move(name);
        return std::move(*this);
    }
    Error &&of_namespace(std::string name) && {
        namespace_uri = std::move(name);
        return std::move(*this);
    }
    Error &&held_by(std::uint32_t id) && {
        holder = id;
        return std::move(*this);
    }
    Error &&with_app_tag(std::string text) && {
        app_tag = std::move(text);
        return std::move(*this);
    }

    Source source;
    std::string tag;
    std::string app_tag;     // error-app-tag, e.g. "instance-required" (RFC 7950, 15); empty: none
    std::string path;        // OpenConfig instance path; empty: none
    std::string native_path; // native instance path, when a device refuses a native node; empty: none
    std::string node;        // name of the offending node as the plug-in recorded it; empty: it recorded none
    std::string advice;
    std::string attribute;     // name of the offending attribute, of the tags that name one; else empty
    std::string namespace_uri; // of unknown-namespace; else empty
    std::uint32_t holder = 0;  // the process that has what is locked, of lock-denied and in-use; 0: none is known
};

} // namespace ocpsm

#endif
