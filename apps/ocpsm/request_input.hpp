// A request as a person gives it: a file or standard input, in XML or JSON.
#ifndef OCPSM_REQUEST_INPUT_HPP
#define OCPSM_REQUEST_INPUT_HPP

#include <istream>
#include <string>
#include <string_view>

#include "framework/service.hpp"

namespace ocpsm {

// The text of a file, or of `standard_input` when `name` is "-". Throws ocpsm::Error (input) for one that cannot be
// read or holds nothing but blanks.
std::string read_request(const std::string &name, std::istream &standard_input);

// Whether the first character that is no blank begins XML or a JSON object.
bool looks_like_request(std::string_view text);

// JSON when the first character that is no blank opens an object, else XML.
Format format_of(std::string_view text);

} // namespace ocpsm

#endif
