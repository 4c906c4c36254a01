// Texts from clients, devices and disks: which can be printed where, and how they are shown.
#ifndef OCPSM_FRAMEWORK_TEXT_HPP
#define OCPSM_FRAMEWORK_TEXT_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace ocpsm {

// A text as part of a one-line message: what is not printable is shown as \xNN, a text of more than about `longest`
// bytes is cut and ends in "...".
std::string one_line(std::string_view text, std::size_t longest = 80);

// Whether a text is UTF-8, and whether it also holds nothing but characters of XML 1.0.
bool is_utf8(std::string_view text);
bool is_xml_text(std::string_view text);

} // namespace ocpsm

#endif
