// What a gNMI client is told when it does not get what it asked for.
#ifndef OCPSM_SERVERS_GNMI_REFUSAL_HPP
#define OCPSM_SERVERS_GNMI_REFUSAL_HPP

#include <grpcpp/support/status.h>

#include <stdexcept>
#include <string>

#include "framework/error.hpp"

namespace ocpsm::gnmi {

// The end of a call. The message is one line of printable UTF-8, at most `longest_message` bytes and an ellipsis.
class Refusal : public std::runtime_error {
public:
    static constexpr std::size_t longest_message = 2048; // all metadata of a response have 8 KiB

    // `path` is an OpenConfig instance path, empty where there is none.
    Refusal(grpc::StatusCode status_code, const std::string &message, const std::string &path = {});

    grpc::Status status() const { return {code, what()}; }

    grpc::StatusCode code;
};

// The canonical code of a protocol error, with its message, path and advice.
Refusal refusal_of(const Error &error);

} // namespace ocpsm::gnmi

#endif
