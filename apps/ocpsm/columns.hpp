// Texts in columns, as wide as what they are shown with.
#ifndef OCPSM_COLUMNS_HPP
#define OCPSM_COLUMNS_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace ocpsm {

// The characters of a text in UTF-8.
std::size_t width_of(std::string_view text);

// A text at the right or left end of a column; one that is too wide is longer.
std::string to_the_right(std::string_view text, std::size_t width);
std::string to_the_left(std::string_view text, std::size_t width);

} // namespace ocpsm

#endif
