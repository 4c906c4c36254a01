// The line system as a person looks at it: a table of its modules and their lines.
#ifndef OCPSM_LINE_TABLE_HPP
#define OCPSM_LINE_TABLE_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ocpsm {

// One line of a module. What is not measured or not configured is absent.
struct LineRow {
    bool active = false;                    // carries the traffic
    std::optional<int> received = {};       // in front of the attenuator, hundredths of a dBm
    std::optional<int> threshold = {};      // hundredths of a dBm
    std::optional<int> rx_attenuation = {}; // hundredths of a dB
    std::optional<int> sent = {};           // behind the attenuator, hundredths of a dBm
    std::optional<int> tx_attenuation = {}; // hundredths of a dB
    bool cut = false;                       // its fibre

    bool operator==(const LineRow &) const = default;
};

struct ModuleRow {
    int slot = 0;
    std::string name;
    std::string protection;            // what decides which line is active, in words
    std::array<LineRow, 2> lines = {}; // primary, secondary

    bool operator==(const ModuleRow &) const = default;
};

struct LineTable {
    std::uint64_t clock = 0;        // milliseconds
    std::vector<ModuleRow> modules; // the fitted ones, in the order of their slots

    bool operator==(const LineTable &) const = default;
};

// One line of text, and which module and line it is about.
struct TableText {
    std::string text;
    std::optional<std::size_t> module = {}; // index into the modules
    std::optional<std::size_t> line = {};   // index into the module's lines
};

// The table in columns, for a terminal of 80 characters; units stand in the heading.
std::vector<TableText> to_text(const LineTable &table);

// The same as a JSON object and as an XML document; powers in dBm and attenuations in dB, with two decimal places, the
// clock in milliseconds. What is absent is left out.
std::string to_json(const LineTable &table);
std::string to_xml(const LineTable &table);

// "-12.34"
std::string hundredths(int value);

// Milliseconds as seconds, "12.3 s"; more decimals where they are needed.
std::string seconds(std::uint64_t milliseconds);

} // namespace ocpsm

#endif
