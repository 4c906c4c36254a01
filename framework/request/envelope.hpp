// What of a NETCONF message (RFC 6241) stands around a request.
#ifndef OCPSM_FRAMEWORK_REQUEST_ENVELOPE_HPP
#define OCPSM_FRAMEWORK_REQUEST_ENVELOPE_HPP

#include <optional>
#include <string_view>
#include <vector>

#include "framework/kind.hpp"
#include "framework/request_tree.hpp"
#include "framework/service.hpp"

namespace ocpsm::framework {

// A request without its envelope.
struct Content {
    std::vector<RequestNode> tops;
    Kind kind;                                              // a <get-config> makes a get one
    std::optional<DefaultOperation> default_operation = {}; // what an <edit-config> says
    bool whole = false;                                     // a <get> without a filter: everything is selected
};

/*
 * Takes <rpc>, <rpc-reply>, <get>, <get-config>, <edit-config>, <filter>, <config> and <data> from around the request,
 * in NETCONF's namespace or in none. Throws ocpsm::Error (input) for an operation or a wrapper that belongs to the
 * other kind of request, for another operation or datastore, and for an option that cannot be kept.
 */
Content unwrap(std::vector<RequestNode> tops, Kind kind);

// What the first elements of a text say about its kind; nothing for a JSON text, <data> and the model's own nodes.
std::optional<Kind> kind_named(std::string_view text) noexcept;

} // namespace ocpsm::framework

#endif
