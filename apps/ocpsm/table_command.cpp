#include <algorithm>
#include <initializer_list>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "framework/mapping/answer_table.hpp"
#include "framework/mapping/request_table.hpp"
#include "framework/native/scale.hpp"
#include "native_entries.hpp"
#include "openconfig_model.hpp"
#include "table_words.hpp"

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

constexpr std::string_view entry_headings[] = {"native model", "node", "walker"};

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

bool is_answered(const std::string &path) {
    return std::any_of(answer_rows().begin(), answer_rows().end(),
                       [&](const AnswerRow &row) { return row.path == path; });
}

std::string describe_limits(const ConversionRow &row) {
    const lysc_node *leaf = models::Schema::native().find(row.path);
    const std::string limits = leaf == nullptr ? std::string() : native::allowed(*leaf);
    return limits.empty() ? limits : "; allowed: " + limits;
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
            if (row.is_configuration) {
                line.value += describe_limits(*conversion);
            }
            line.port = conversion->port == "none" ? std::string() : std::string(conversion->port);
            line.additions = describe_steps(conversion->steps);
        } else if (row.conversion.empty()) {
            line.additions = is_answered(path) ? "refused when it is named; answered with what is around it"
                                               : "refused: the device has no such value";
        } else {
            line.additions = describe_key_additions(row);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

// One line of the table of the way back.
struct AnswerLine {
    std::string path; // as above
    std::string native;
    std::string conversion;
    std::string value;
    std::string source;
};

constexpr std::string_view answer_headings[] = {"OpenConfig node", "native leaf", "conversion", "OpenConfig value",
                                                "read from"};

// A node that several conversions write, or that several native leaves lead to, gets a line for each.
std::vector<AnswerLine> lines_of_answers(const std::vector<SchemaNode> &model) {
    std::vector<AnswerLine> lines;
    for (const SchemaNode &node : model) {
        for (const AnswerRow &row : answer_rows()) {
            for (const NativeRow &native : native_rows()) {
                if (row.path != node.path || native.conversion != row.conversion) {
                    continue;
                }
                const std::string_view kinds = describe_kinds(row.kinds);
                lines.push_back({short_path(std::string(row.path)),
                                 std::string(native.model) + ":" + native_path(native_rows(), native),
                                 std::string(row.conversion), describe_answer_value(row.value, node.units),
                                 describe_source(row) + (kinds.empty() ? "" : "; ") + std::string(kinds)});
            }
        }
    }
    return lines;
}

void print_text(const std::vector<AnswerLine> &lines, std::ostream &output) {
    for (const AnswerLine &line : lines) {
        output << line.path << " <- " << line.conversion << " <- " << line.native << " [" << line.value
               << "]: " << line.source << '\n';
    }
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
}

std::string code(const std::string &text) {
    return text.empty() ? text : "`" + text + "`";
}

void print_row(std::initializer_list<std::string> cells, std::ostream &output) {
    output << '|';
    for (const std::string &cell : cells) {
        output << ' ' << cell << " |";
    }
    output << '\n';
}

void print_headings(std::span<const std::string_view> names, std::ostream &output) {
    output << '|';
    for (const std::string_view heading : names) {
        output << ' ' << heading << " |";
    }
    output << "\n|";
    for (size_t column = 0; column < names.size(); ++column) {
        output << "---|";
    }
    output << '\n';
}

void print_entries(std::ostream &output) {
    output << "\n## Where an answer begins\n\n"
              "The framework calls these walkers by name: those of a top node for whole answers, the others for the\n"
              "subtrees that a model adds to the entries of another model's list.\n\n";
    print_headings(entry_headings, output);
    for (const ymap::NativeEntry &entry : ymap::native_entries) {
        print_row({code(std::string(entry.module)), code(std::string(entry.list).append("/").append(entry.tag)),
                   code(std::string(entry.walker))},
                  output);
    }
}

void print_markdown(const std::vector<Line> &lines, const std::vector<AnswerLine> &answers, std::ostream &output) {
    output
        << "# Mapping reference\n\n"
           "Made from the plug-in's tables by `ocpsm explain --table --format markdown`; a test keeps it current.\n"
           "Paths are below `"
        << YMAP_MODULE
        << "`. `primary` and `secondary` name the line whose controller\n"
           "holds the leaf, `Ots0/SLOT/0/1` and `Ots0/SLOT/0/2`; the common port is `Ots0/SLOT/0/0`.\n\n"
           "## From OpenConfig requests to native ones\n\n"
           "A native value is given as unit, then scaling: `0.1 dBm, x10` is an integer in tenths of a dBm, ten times\n"
           "the OpenConfig value, cut towards zero.\n\n";
    print_headings(headings, output);
    for (const Line &line : lines) {
        print_row({code(line.path), line.access, code(line.conversion), code(line.native), line.value, line.port,
                   line.additions},
                  output);
    }
    output
        << "\n## From native answers to OpenConfig\n\n"
           "A value is given as native unit, then scaling: `0.01 dBm, /100` is made from an integer in hundredths of "
           "a\n"
           "dBm. The answer for a primary port fills the leaves of all ports of its module: while it is handled, the\n"
           "values of the others are read from the system database.\n\n";
    print_headings(answer_headings, output);
    for (const AnswerLine &line : answers) {
        print_row({code(line.path), code(line.native), code(line.conversion), line.value, line.source}, output);
    }
    print_entries(output);
    output << "\n## Nodes without support\n\n"
              "A read passes them over, an edit that names one is refused.\n\n| OpenConfig node | reason "
              "|\n|---|---|\n";
    for (const UnsupportedRow &row : unsupported_rows()) {
        print_row({code(std::string(row.path)), std::string(row.reason)}, output);
    }
}

} // namespace

int table_command(TableFormat format, std::ostream &output) {
    const std::vector<SchemaNode> model = read_openconfig_model();
    Units units;
    for (const SchemaNode &node : model) {
        units.emplace(node.path, node.units);
    }
    const std::vector<Line> lines = lines_of_rows(units);
    const std::vector<AnswerLine> answers = lines_of_answers(model);
    if (format == TableFormat::markdown) {
        print_markdown(lines, answers, output);
        return exit_done;
    }
    print_text(lines, output);
    print_text(answers, output);
    for (const UnsupportedRow &row : unsupported_rows()) {
        output << row.path << ": unsupported: " << row.reason << '\n';
    }
    return exit_done;
}

} // namespace ocpsm
