#include "line_table.hpp"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace ocpsm {
namespace {

constexpr std::array<std::string_view, 2> line_names = {"primary", "secondary"};
constexpr std::array<std::string_view, 2> path_names = {"PRIMARY", "SECONDARY"};

// The measured columns, in the order of the table.
struct Column {
    std::array<std::string_view, 3> heading; // what it is about, what it is, in which unit
    std::string_view name;                   // in JSON and XML
    std::optional<int> LineRow::*value;
    std::size_t width;
};

constexpr Column columns[] = {
    {{"receive", "power", "dBm"}, "receive-power", &LineRow::received, 10},
    {{"switch", "threshold", "dBm"}, "switch-threshold", &LineRow::threshold, 11},
    {{"receive", "attenuation", "dB"}, "receive-attenuation", &LineRow::rx_attenuation, 13},
    {{"transmit", "power", "dBm"}, "transmit-power", &LineRow::sent, 10},
    {{"transmit", "attenuation", "dB"}, "transmit-attenuation", &LineRow::tx_attenuation, 13},
};

constexpr std::size_t name_width = 11; // of a line, with what marks the active one

std::string right(std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ').append(text);
}

std::string heading(std::size_t row, std::string_view last) {
    std::string text(name_width, ' ');
    for (const Column &column : columns) {
        text += right(column.heading.at(row), column.width);
    }
    return last.empty() ? text : text.append("  ").append(last);
}

std::string line_text(const LineRow &row, std::size_t line) {
    std::string text(row.active ? "* " : "  ");
    text.append(line_names.at(line)).resize(name_width, ' ');
    for (const Column &column : columns) {
        const std::optional<int> &value = row.*column.value;
        text += right(value ? hundredths(*value) : "-", column.width);
    }
    return text.append("  ").append(row.cut ? "cut" : "whole");
}

std::size_t active_line(const ModuleRow &module) {
    return module.lines[0].active ? 0 : 1;
}

} // namespace

std::string hundredths(int value) {
    const unsigned magnitude = value < 0 ? 0U - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    const std::string fraction = std::to_string(magnitude % 100);
    return (value < 0 ? "-" : "") + std::to_string(magnitude / 100) + (fraction.size() == 1 ? ".0" : ".") + fraction;
}

std::string seconds(std::uint64_t milliseconds) {
    std::string fraction = std::to_string(milliseconds % 1000 + 1000).substr(1);
    fraction.erase(std::max<std::size_t>(fraction.find_last_not_of('0') + 1, 1));
    return std::to_string(milliseconds / 1000) + "." + fraction + " s";
}

std::vector<TableText> to_text(const LineTable &table) {
    std::vector<TableText> lines;
    lines.push_back({"time " + seconds(table.clock)});
    lines.push_back({""});
    for (std::size_t row = 0; row < columns[0].heading.size(); ++row) {
        lines.push_back({heading(row, row + 1 == columns[0].heading.size() ? "fibre" : "")});
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
                "\",\n      \"lines\": [";
        for (std::size_t line = 0; line < module.lines.size(); ++line) {
            const LineRow &row = module.lines.at(line);
            text += std::string(line == 0 ? "\n" : ",\n") + "        {\"name\": \"" + std::string(line_names.at(line)) +
                    "\"";
            for (const Column &column : columns) {
                if (const std::optional<int> &value = row.*column.value) {
                    text += ", \"" + std::string(column.name) + "\": " + hundredths(*value);
                }
            }
            text += std::string(", \"fibre\": \"") + (row.cut ? "cut" : "whole") + "\"}";
        }
        text += "\n      ]\n    }";
    }
    return text + (table.modules.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

std::string to_xml(const LineTable &table) {
    const auto element = [](std::string_view name, std::string_view value) {
        return std::string("<").append(name).append(">").append(value).append("</").append(name).append(">\n");
    };
    std::string text = "<line-system>\n  " + element("clock", std::to_string(table.clock));
    for (const ModuleRow &module : table.modules) {
        text += "  <module>\n    " + element("slot", std::to_string(module.slot)) + "    " +
                element("name", module.name) + "    " + element("active-path", path_names.at(active_line(module)));
        for (std::size_t line = 0; line < module.lines.size(); ++line) {
            const LineRow &row = module.lines.at(line);
            text += "    <line>\n      " + element("name", line_names.at(line));
            for (const Column &column : columns) {
                if (const std::optional<int> &value = row.*column.value) {
                    text += "      " + element(column.name, hundredths(*value));
                }
            }
            text += "      " + element("fibre", row.cut ? "cut" : "whole") + "    </line>\n";
        }
        text += "  </module>\n";
    }
    return text + "</line-system>\n";
}

} // namespace ocpsm
