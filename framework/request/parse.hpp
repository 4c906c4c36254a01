// From the text of a request to its tree, exactly as it was written: order, attributes and all.
#ifndef OCPSM_FRAMEWORK_REQUEST_PARSE_HPP
#define OCPSM_FRAMEWORK_REQUEST_PARSE_HPP

#include <string_view>
#include <vector>

#include "framework/kind.hpp"
#include "framework/request_tree.hpp"

namespace ocpsm::framework {

/*
 * Parses XML or JSON. The result is the content of a NETCONF <filter> or <config> (RFC 6241) where the text has one,
 * else all top nodes. JSON members stand in the namespace of their module; a module that is not known counts as its own
 * namespace. A JSON annotation without its leaf makes the leaf, without a value.
 * Throws ocpsm::Error (input) for a text that cannot be read, and for a <filter> in an edit or a <config> in a read.
 */
std::vector<RequestNode> parse_request(std::string_view text, Kind kind);

} // namespace ocpsm::framework

#endif
