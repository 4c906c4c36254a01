// From the text of a request to its tree, exactly as it was written: order, attributes and all.
#ifndef OCPSM_FRAMEWORK_REQUEST_PARSE_HPP
#define OCPSM_FRAMEWORK_REQUEST_PARSE_HPP

#include <string_view>
#include <vector>

#include "framework/kind.hpp"
#include "framework/request/envelope.hpp"

namespace ocpsm::framework {

// Reads XML or JSON, and takes the envelope off. Throws ocpsm::Error (input) for a text that cannot be read, and as
// unwrap does.
Content parse_request(std::string_view text, Kind kind);

// An XML text as it was written, with its envelope. Throws ocpsm::Error (input).
std::vector<RequestNode> read_elements(std::string_view text);

} // namespace ocpsm::framework

#endif
