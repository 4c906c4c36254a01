// Errors as a session tells them (RFC 6241, 4.3).
#ifndef OCPSM_SERVERS_NETCONF_RPC_ERROR_HPP
#define OCPSM_SERVERS_NETCONF_RPC_ERROR_HPP

#include <string>
#include <utility>

#include "framework/error.hpp"

namespace ocpsm::netconf {

// An error of a layer that its tag does not tell. `node` is the element that it is about, without a path.
class LayerError : public Error {
public:
    LayerError(ErrorType layer, Error error) : Error(std::move(error)), layer_(layer) {}

    ErrorType layer() const { return layer_; }

private:
    ErrorType layer_;
};

// An error of the message itself, or of the operation in it.
LayerError rpc_refusal(const std::string &tag, const std::string &element, const std::string &message,
                       const std::string &attribute = {});
LayerError protocol_refusal(const std::string &tag, const std::string &element, const std::string &message,
                            const std::string &advice = {});

// An <rpc-error>, indented by one level.
std::string print(const Error &error, ErrorType layer);

} // namespace ocpsm::netconf

#endif
