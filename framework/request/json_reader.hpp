// The JSON of a request as nodes (RFC 7951, with metadata as in RFC 7952).
#ifndef OCPSM_FRAMEWORK_REQUEST_JSON_READER_HPP
#define OCPSM_FRAMEWORK_REQUEST_JSON_READER_HPP

#include <string_view>
#include <vector>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

/*
 * The members of the object that is `body`, the end of `text`, within the limits of a request. They stand in the
 * namespace of their module; a module that is not known counts as its own namespace. The items of an array are nodes of
 * its name; metadata without its node makes the node, without a value.
 * Throws ocpsm::Error (input, malformed-message) with line and column in `text`.
 */
std::vector<RequestNode> read_json(std::string_view text, std::string_view body);

} // namespace ocpsm::framework

#endif
