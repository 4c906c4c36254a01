// The one error that leaves the bench: exactly one protocol error (RFC 6241, 4.3), and what a person should do about it.
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

    // `tag` is a NETCONF error-tag, `path` an OpenConfig instance path (empty when there is none), `message` says what
    // and why in one line, `advice` what to do (may be empty).
    Error(Source source, std::string tag, std::string path, const std::string &message, std::string advice = {})
        : std::runtime_error(message), source(source), tag(std::move(tag)), path(std::move(path)),
          advice(std::move(advice)) {}

    Source source;
    std::string tag;
    std::string path;
    std::string advice;
};

} // namespace bench

#endif
