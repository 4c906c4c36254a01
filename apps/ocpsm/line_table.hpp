// The table of a line system as text, JSON and XML.
#ifndef OCPSM_LINE_TABLE_HPP
#define OCPSM_LINE_TABLE_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "simulator/line_system.hpp"

namespace ocpsm {

// One line of text, and which module and line it is about.
struct TableText {
    std::string text;
    std::optional<std::size_t> module = {}; // index into the modules
    std::optional<std::size_t> line = {};   // index into the module's lines
};

// The table in columns, for a terminal of 80 characters; units stand in the heading.
std::vector<TableText> to_text(const LineTable &table);

// The same as a JSON object and as an XML document; powers in dBm and ratios in dB, with two decimal places, times in
// milliseconds. What is absent is left out.
std::string to_json(const LineTable &table);
std::string to_xml(const LineTable &table);

// A decimal number with at most two places as an integer of hundredths; nothing for any other text.
std::optional<int> parse_hundredths(const std::string &text);

// What is said of such a text.
std::string not_a_power(const std::string &text);

} // namespace ocpsm

#endif
