// The one error that leaves the bench: exactly one protocol error (RFC 6241, 4.3), and what a person should do about
// it.
#ifndef BENCH_ERROR_HPP
#define BENCH_ERROR_HPP

#include <stdexcept>
#include <string>
#include <utility>

namespace bench {

class Error : public std::runtime_error {
public:
    // Who says no: it decides the program's exit code (refused: 1, bad input or usage: 2).
    enum class Source { refused, input };

    // `error_tag` is a NETCONF error-tag, `error_path` an OpenConfig instance path (empty when there is none),
    // `message` says what and why in one line, `what_to_do` how to go on (may be empty).
    Error(Source who, std::string error_tag, std::string error_path, const std::string &message,
          std::string what_to_do = {})
        : std::runtime_error(message), source(who), tag(std::move(error_tag)), path(std::move(error_path)),
          advice(std::move(what_to_do)) {}

    Source source;
    std::string tag;
    std::string path;
    std::string advice;
};

} // namespace bench

#endif
