#include "commands.hpp"

#include <algorithm>
#include <map>
#include <ostream>
#include <vector>

#include "mapping_table.hpp"
#include "native_models.hpp"
#include "openconfig_model.hpp"

namespace ocpsm {
namespace {

// One line of the printed table.
struct Line {
    std::string path; // below an aps-module, or from the root above it
    std::string access;
    std::string conversion;
    std::string native;
    std::string value;
    std::string port;
    std::string additions;
};

constexpr std::string_view headings[] = {"OpenConfig node", "access", "conversion",   "native leaf",
                                         "native value",    "port",   "what is added"};

using Units = std::map<std::string, std::string>;

std::string short_path(const std::string &path) {
    constexpr std::string_view module = YMAP_MODULE "/";
    return path.compare(0, module.size(), module) == 0 ? path.substr(module.size()) : path;
}

// What the conversions add that have no row of their own because they write no single leaf.
std::string describe_key_additions(const NodeRow &row) {
    if (row.kind == NodeKind::list) {
        return "the native list entries of the module; without a name those of every fitted module";
    }
    return row.is_key ? "the entries of interface, node and slot with their keys"
                      : "in reads the keys of the native list entries";
}

// Containers add nothing and get no line.
std::vector<Line> lines_of_rows(const Units &units) {
    std::vector<Line> lines;
    for (const NodeRow &row : node_rows()) {
        if (row.kind == NodeKind::container) {
            continue;
        }
        const std::string path = schema_path(node_rows(), row);
        Line line = {
            short_path(path), row.is_configuration ? "config" : "state", std::string(row.conversion), {}, {}, {}, {}};
        const ConversionRow *conversion = find_conversion(conversion_rows(), row.conversion);
        if (conversion != nullptr) {
            const auto unit = units.find(path);
            line.native = std::string(conversion->model) + ":" + std::string(conversion->path);
            line.value = describe_value(*conversion, unit == units.end() ? std::string_view() : unit->second);
            line.port = conversion->port == "none" ? std::string() : std::string(conversion->port);
            line.additions = describe_steps(conversion->steps);
        } else if (row.conversion.empty()) {
            line.additions = "refused: the device has no such value";
        } else {
            line.additions = describe_key_additions(row);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

void print_text(const std::vector<Line> &lines, std::ostream &output) {
    for (const Line &line : lines) {
        output << line.path << " (" << line.access << ")";
        if (!line.conversion.empty()) {
            output << " -> " << line.conversion;
        }
        if (!line.native.empty()) {
            output << " -> " << line.native << " [" << line.value << "]";
        }
        if (!line.port.empty()) {
            output << " of the " << line.port << " controller";
        }
        output << ": " << line.additions << '\n';
    }
    for (const UnsupportedRow &row : unsupported_rows()) {
        output << row.path << ": unsupported: " << row.reason << '\n';
    }
}

void print_markdown(const std::vector<Line> &lines, std::ostream &output) {
    output << "# Mapping reference\n\n"
              "Made from the plug-in's tables by `ocpsm explain --table --format markdown`; a test keeps it current.\n"
              "Paths are below `"
           << YMAP_MODULE
           << "`. A native value is given as unit, then scaling: `0.1 dBm, x10` is an\n"
              "integer in tenths of a dBm, ten times the OpenConfig value, cut towards zero.\n"
              "`primary` and `secondary` name the controller whose interface entry holds the leaf,\n"
              "`Ots0/SLOT/0/1` and `Ots0/SLOT/0/2`.\n\n|";
    for (const std::string_view heading : headings) {
        output << ' ' << heading << " |";
    }
    output << "\n|";
    for (size_t column = 0; column < std::size(headings); ++column) {
        output << "---|";
    }
    output << '\n';
    const auto code = [](const std::string &text) { return text.empty() ? text : "`" + text + "`"; };
    for (const Line &line : lines) {
        output << "| " << code(line.path) << " | " << line.access << " | " << code(line.conversion) << " | "
               << code(line.native) << " | " << line.value << " | " << line.port << " | " << line.additions << " |\n";
    }
    output
        << "\n## Nodes without support\n\n"
           "A read passes them over, an edit that names one is refused.\n\n| OpenConfig node | reason |\n|---|---|\n";
    for (const UnsupportedRow &row : unsupported_rows()) {
        output << "| `" << row.path << "` | " << row.reason << " |\n";
    }
}

} // namespace

int table_command(TableFormat format, std::ostream &output) {
    Units units;
    for (const SchemaNode &node : read_openconfig_model()) {
        units.emplace(node.path, node.units);
    }
    const std::vector<Line> lines = lines_of_rows(units);
    format == TableFormat::markdown ? print_markdown(lines, output) : print_text(lines, output);
    return exit_done;
}

} // namespace ocpsm
