// What is refused of a request's text before a parser sees it: parsers recurse, and stop reading where they like.
#ifndef OCPSM_FRAMEWORK_REQUEST_SYNTAX_HPP
#define OCPSM_FRAMEWORK_REQUEST_SYNTAX_HPP

#include <cstddef>
#include <string_view>

namespace ocpsm::framework {

inline constexpr std::size_t max_request_size = std::size_t{8} << 20; // bytes
inline constexpr std::size_t max_request_depth = 64;                  // nested elements, objects and arrays

enum class Syntax { xml, json };

// A request without what may stand in front of it: byte order mark, blanks, XML declaration and comments.
struct RequestText {
    Syntax syntax;
    std::string_view body;
};

// Tells XML from JSON. Throws ocpsm::Error (input) for a text that is neither, too big or too deep, that holds a byte
// 0, a document type declaration or, behind a JSON object, something else.
RequestText inspect(std::string_view text);

} // namespace ocpsm::framework

#endif
