// What a person sees of a line system.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ocpsm {

// A measured column: what it is about, what it is, in which unit.
using LineColumn = std::array<std::string_view, 3>;

// The measured columns of a table, in their order.
const std::vector<LineColumn> &line_columns();

// One line of a module.
struct LineRow {
    bool active = false;                           // carries the traffic
    std::vector<std::optional<int>> measured = {}; // by column, hundredths of its unit; absent: not measured
    bool cut = false;                              // its fibre

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

// "-12.34"
std::string hundredths(int value);

// Milliseconds as seconds, "12.3 s"; more decimals where they are needed.
std::string seconds(std::uint64_t milliseconds);

} // namespace ocpsm

#endif
