#include "line_table.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "columns.hpp"
#include "framework/text.hpp"

namespace ocpsm {
namespace {

constexpr std::array<std::string_view, 2> path_names = {"PRIMARY", "SECONDARY"};

constexpr std::size_t gap = 2;           // in front of a column
constexpr std::size_t longest_value = 8; // "-1234.56"
constexpr std::size_t name_width = 11;   // of a line, with what marks the active one

std::size_t width_of(const LineColumn &column) {
    std::size_t longest = longest_value;
    for (const std::string_view word : column) {
        longest = std::max(longest, word.size());
    }
    return gap + longest;
}

// In JSON and XML, "receive-power".
std::string name_of(const LineColumn &column) {
    return std::string(column[0]).append("-").append(column[1]);
}

// Visits a line's columns with their values, in the order of the table.
template <class Visit>
void for_each_value(const LineRow &row, Visit visit) {
    const std::vector<LineColumn> &columns = line_columns();
    for (std::size_t index = 0; index < columns.size(); ++index) {
        visit(columns[index], index < row.measured.size() ? row.measured[index] : std::nullopt);
    }
}

std::string heading(std::size_t row, std::string_view last) {
    std::string text(name_width, ' ');
    for (const LineColumn &column : line_columns()) {
        text += to_the_right(column.at(row), width_of(column));
    }
    return last.empty() ? text : text.append("  ").append(last);
}

std::string line_text(const LineRow &row, std::size_t line) {
    std::string text(row.active ? "* " : "  ");
    text.append(line_names.at(line)).resize(name_width, ' ');
    for_each_value(row, [&](const LineColumn &column, const std::optional<int> &value) {
        text += to_the_right(value ? hundredths(*value) : "-", width_of(column));
    });
    return text.append("  ").append(row.cut ? "cut" : "whole");
}

std::size_t active_line(const ModuleRow &module) {
    return module.lines[0].active ? 0 : 1;
}

// A member of a module beside its lines.
struct Detail {
    std::string_view name;
    std::string value;
};

// As JSON and XML name and write them; none needs quotes.
std::vector<Detail> details(const ProtectionRow &row) {
    std::vector<Detail> list;
    const auto add = [&list](std::string_view name, const auto &value, auto text_of) {
        if (value) {
            list.push_back({name, text_of(*value)});
        }
    };
    const auto number = [](auto value) { return std::to_string(value); };
    add("revertive", row.revertive, [](bool value) { return std::string(value ? "true" : "false"); });
    add("wait-to-restore-time", row.wait_to_restore, number);
    add("time-left-to-restore", row.left_to_restore, number);
    add("primary-switch-hysteresis", row.hysteresis, hundredths);
    add("relative-switch-threshold", row.relative_threshold, hundredths);
    add("relative-switch-threshold-offset", row.relative_offset, hundredths);
    return list;
}

std::string_view forced_path(const ModuleRow &module) {
    return module.settings.forced_to ? path_names.at(*module.settings.forced_to == Line::primary ? 0 : 1) : "NONE";
}

} // namespace

std::vector<TableText> to_text(const LineTable &table) {
    std::vector<TableText> lines;
    lines.push_back({"time " + seconds(table.clock)});
    lines.push_back({""});
    constexpr std::size_t headings = std::tuple_size_v<LineColumn>;
    for (std::size_t row = 0; row < headings; ++row) {
        lines.push_back({heading(row, row + 1 == headings ? "fibre" : "")});
    }
    for (std::size_t i = 0; i < table.modules.size(); ++i) {
        const ModuleRow &module = table.modules[i];
        lines.push_back({""});
        lines.push_back({module.name + "  active path " + std::string(path_names.at(active_line(module))) +
                             (module.protection.empty() ? "" : "; ") + module.protection,
                         i});
        for (std::size_t line = 0; line < module.lines.size(); ++line) {
            lines.push_back({line_text(module.lines.at(line), line), i, line});
        }
    }
    if (table.modules.empty()) {
        lines.push_back({""});
        lines.push_back({"no module is fitted"});
    }
    return lines;
}

std::string to_json(const LineTable &table) {
    std::string text = "{\n  \"clock\": " + std::to_string(table.clock) + ",\n  \"modules\": [";
    for (const ModuleRow &module : table.modules) {
        text += &module == &table.modules.front() ? "\n" : ",\n";
        text += "    {\n      \"slot\": " + std::to_string(module.slot) + ",\n      \"name\": \"" + module.name +
                "\",\n      \"active-path\": \"" + std::string(path_names.at(active_line(module))) +
                "\",\n      \"force-to-port\": \"" + std::string(forced_path(module)) + "\"";
        for (const Detail &detail : details(module.settings)) {
            text += ",\n      \"" + std::string(detail.name) + "\": " + detail.value;
        }
        text += ",\n      \"lines\": [";
        for (std::size_t line = 0; line < module.lines.size(); ++line) {
            const LineRow &row = module.lines.at(line);
            text += std::string(line == 0 ? "\n" : ",\n") + "        {\"name\": \"" + std::string(line_names.at(line)) +
                    "\"";
            for_each_value(row, [&](const LineColumn &column, const std::optional<int> &value) {
                text += value ? ", \"" + name_of(column) + "\": " + hundredths(*value) : "";
            });
            text += std::string(", \"fibre\": \"") + (row.cut ? "cut" : "whole") + "\"}";
        }
        text += "\n      ]\n    }";
    }
    return text + (table.modules.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

std::string to_xml(const LineTable &table) {
    std::string text = "<line-system>\n  " + xml_element("clock", std::to_string(table.clock));
    for (const ModuleRow &module : table.modules) {
        text += "  <module>\n    " + xml_element("slot", std::to_string(module.slot)) + "    " +
                xml_element("name", module.name) + "    " +
                xml_element("active-path", path_names.at(active_line(module))) + "    " +
                xml_element("force-to-port", forced_path(module));
        for (const Detail &detail : details(module.settings)) {
            text += "    " + xml_element(detail.name, detail.value);
        }
        for (std::size_t line = 0; line < module.lines.size(); ++line) {
            const LineRow &row = module.lines.at(line);
            text += "    <line>\n      " + xml_element("name", line_names.at(line));
            for_each_value(row, [&](const LineColumn &column, const std::optional<int> &value) {
                text += value ? "      " + xml_element(name_of(column), hundredths(*value)) : "";
            });
            text += "      " + xml_element("fibre", row.cut ? "cut" : "whole") + "    </line>\n";
        }
        text += "  </module>\n";
    }
    return text + "</line-system>\n";
}

std::optional<int> parse_hundredths(const std::string &text) {
    const bool negative = text.rfind('-', 0) == 0;
    const std::size_t start = negative ? 1 : 0;
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string whole = text.substr(start, point - start);
    std::string fraction = point == text.size() ? "" : text.substr(point + 1);
    const bool has_digits = !whole.empty() && (point == text.size() || !fraction.empty());
    const std::string digits = whole + fraction;
    if (!has_digits || whole.size() > 4 || fraction.size() > 2 ||
        digits.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    fraction.resize(2, '0');
    const int value = std::atoi((whole + fraction).c_str()); // NOLINT(cert-err34-c): digits only
    return negative ? -value : value;
}

std::string not_a_power(const std::string &text) {
    return text + " is no power in dBm with at most two decimal places";
}

} // namespace ocpsm
