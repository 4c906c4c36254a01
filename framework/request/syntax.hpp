// What is refused of a request's text before a parser sees it: parsers recurse, take time and memory with the square of
// what they are given, and stop reading where they like.
#ifndef OCPSM_FRAMEWORK_REQUEST_SYNTAX_HPP
#define OCPSM_FRAMEWORK_REQUEST_SYNTAX_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ocpsm::framework {

// The limits of a request. An element is also a JSON member or an item of an array, an attribute also a namespace
// declaration or a member of JSON metadata.
inline constexpr std::size_t max_request_size = std::size_t{8} << 20; // bytes
inline constexpr std::size_t max_request_depth = 64;                  // nested elements, objects and arrays
inline constexpr std::size_t max_elements = 65536;                    // in total
inline constexpr std::size_t max_children = 2048;                     // of one element
inline constexpr std::size_t max_attributes = 65536;                  // in total
inline constexpr std::size_t max_attributes_of_one = 64;              // of one element
inline constexpr std::size_t max_name_size = 1024;                    // bytes of a name, and of an attribute's value
// With each value the name of the namespace is kept whose prefix stands in it.
inline constexpr std::size_t max_namespace_use = std::size_t{16} << 20; // bytes
inline constexpr std::size_t max_instances = 1000;                      // of one list; counted by who knows the model

enum class Syntax { xml, json };

// How a text begins, behind byte order mark, blanks, XML declaration and comments.
struct Opening {
    std::optional<Syntax> syntax; // none: neither an element nor a JSON object
    std::string_view element;     // the name of the first XML element, without prefix
    std::string_view body;        // the text from there on
};

// Looks no further than the name of the first element; a prologue that is not ended makes an XML text without one.
Opening opening_of(std::string_view text) noexcept;

// The text behind the tag with which it begins; nothing where that is not ended.
std::string_view behind_first_tag(std::string_view text) noexcept;

// A request without what may stand in front of it.
struct RequestText {
    Syntax syntax;
    std::string_view body;
};

// Tells XML from JSON. Throws ocpsm::Error (input) for a text that is neither, that exceeds a limit, holds a byte 0 or
// a document type declaration. It counts as far as the text is well formed; whoever reads it has to stop there.
RequestText inspect(std::string_view text);

// Throws ocpsm::Error (input, malformed-message): "line 2, column 5: MESSAGE". `at` counts bytes, a column characters.
[[noreturn]] void refuse_at(std::string_view text, std::size_t at, const std::string &message,
                            const std::string &advice = {});

// What stands at a position, for the end of such a message: "'x' stands there", or "the request ends".
std::string found_at(std::string_view text, std::size_t at);

} // namespace ocpsm::framework

#endif
