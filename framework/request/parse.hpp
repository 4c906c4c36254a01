// From the text of a request to its tree, exactly as it was written: order, attributes and all.
#ifndef OCPSM_FRAMEWORK_REQUEST_PARSE_HPP
#define OCPSM_FRAMEWORK_REQUEST_PARSE_HPP

#include <string_view>

#include "framework/kind.hpp"
#include "framework/request/envelope.hpp"

namespace ocpsm::framework {

// Reads XML or JSON, and takes the envelope off. Throws ocpsm::Error (input) for a text that cannot be read, and as
// unwrap does.
Content parse_request(std::string_view text, Kind kind);

} // namespace ocpsm::framework

#endif
