// The XML of a request as nodes.
#ifndef OCPSM_FRAMEWORK_REQUEST_XML_READER_HPP
#define OCPSM_FRAMEWORK_REQUEST_XML_READER_HPP

#include <string_view>
#include <vector>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// The elements of `body`, the end of `text`: UTF-8, within the limits of a request, without a declaration. A text of
// nothing but blanks is none. Throws ocpsm::Error (input, malformed-message) with line and column in `text`.
std::vector<RequestNode> read_xml(std::string_view text, std::string_view body);

} // namespace ocpsm::framework

#endif
