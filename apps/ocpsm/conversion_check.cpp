#include "conversion_check.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>
#include <utility>

namespace ocpsm {
namespace {

// A value in both models, by the word that the tables have for the way between them.
struct Example {
    std::string_view value;
    std::string_view openconfig;
    std::string_view native;
};

constexpr Example request_examples[] = {
    {"text", "300", "300"},
    {"tenths", "-12.5", "-125"},
    {"hundredths", "-12.5", "-1250"},
    {"lockout", "PRIMARY", "protected"},
    {"lockout", "SECONDARY", "working"},
    {"lockout", "NONE", ""},
    {"empty", "PRIMARY", ""},
};

constexpr Example answer_examples[] = {
    {"text", "300", "300"},       {"tenths", "-12.5", "-125"},         {"hundredths", "-1.25", "-125"},
    {"units", "-12.5", "-12.5"},  {"lockout", "PRIMARY", "protected"}, {"lockout", "SECONDARY", "working"},
    {"lockout", "NONE", "none"},  {"status", "PRIMARY", "active"},     {"status", "SECONDARY", "standby"},
    {"module", "0/1-PSM-OM", ""},
};

constexpr std::pair<AnswerMode, std::string_view> answer_modes[] = {
    {AnswerMode::configuration, "a read of configuration"},
    {AnswerMode::everything, "a read"},
    {AnswerMode::state_only, "a read of state leaves"},
};

constexpr std::pair<EntryPort, std::string_view> entry_ports[] = {
    {EntryPort::primary, "the primary port"},
    {EntryPort::secondary, "the secondary port"},
    {EntryPort::other, "a port of no module"},
};

std::string quoted(std::string_view text) {
    return std::string("\"").append(text).append("\"");
}

// Numbers are compared as such: how many decimal places are written is the framework's to settle.
bool is_same(const std::string &first, const std::string &second) {
    const auto number = [](const std::string &text) {
        char *end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        return !text.empty() && *end == '\0' ? std::optional(value) : std::nullopt;
    };
    const auto one = number(first);
    const auto other = number(second);
    return one && other ? std::fabs(*one - *other) < 0.0051 : first == second;
}

// What a text of the database is in OpenConfig.
std::string scaled(std::string_view value, const std::string &native) {
    const double divisor = value == "tenths" ? 10 : value == "hundredths" ? 100 : 1;
    return std::to_string(std::strtod(native.c_str(), nullptr) / divisor);
}

class Runs {
public:
    Runs(const CoverageInput &input, ConversionHost &host, CoverageResult &result)
        : input_(input), host_(host), result_(result) {}

    void run() {
        for (const NodeRow &row : input_.nodes) {
            if (row.kind != NodeKind::container && is_there(row)) {
                run_requests(row);
            }
        }
        for (const NativeRow &row : input_.native) {
            if (!row.conversion.empty() && is_there(row)) {
                run_answers(row);
            }
        }
    }

private:
    void report(std::string_view path, const std::string &problem) {
        result_.findings.push_back({std::string(path), problem});
    }

    // What is not exported is reported elsewhere, and cannot be run.
    template <class Row>
    bool is_there(const Row &row) const {
        const std::vector<std::string> names = exported_names(row);
        return std::all_of(names.begin(), names.end(), input_.is_exported);
    }

    // ---- requests ----

    RequestRun request(const std::string &path, const NodeRow &row, RequestMode mode, std::string_view value) {
        ++result_.runs;
        return host_.request(path, row.conversion, mode, std::string(value));
    }

    void run_requests(const NodeRow &row) {
        const std::string path = schema_path(input_.nodes, row);
        const ConversionRow *conversion = find_conversion(input_.conversions, row.conversion);
        if (row.conversion.empty()) {
            if (request(path, row, RequestMode::read, {}).accepted) {
                report(path, "is refused in the mapping table but not by the plug-in");
            }
        } else if (conversion == nullptr) {
            const std::string_view name = row.kind == NodeKind::leaf ? "0/1-PSM-OM" : "";
            if (request(path, row, RequestMode::read, name).additions.empty()) {
                report(path, "is converted by " + std::string(row.conversion) + ", which adds nothing to a read");
            }
        } else {
            run_leaf(path, row, *conversion);
        }
    }

    void run_leaf(const std::string &path, const NodeRow &row, const ConversionRow &conversion) {
        for (const Example &example : request_examples) {
            if (example.value != conversion.value) {
                continue;
            }
            const RequestMode mode = row.is_configuration ? RequestMode::merge : RequestMode::read;
            const RequestRun set = request(path, row, mode, example.openconfig);
            check_leaf(path, row, conversion, set, example.native);
            if (row.is_configuration) {
                check_controller(path, conversion, set);
                check_leaf(path, row, conversion, request(path, row, RequestMode::read, {}), {});
                check_delete(path, conversion, request(path, row, RequestMode::remove, {}));
            }
        }
    }

    static const NativeAddition *find_leaf(const ConversionRow &conversion, const RequestRun &run) {
        const auto found =
            std::find_if(run.additions.begin(), run.additions.end(), [&](const NativeAddition &addition) {
                return addition.path == conversion.path && addition.module == conversion.model;
            });
        return found == run.additions.end() ? nullptr : &*found;
    }

    void check_leaf(const std::string &path, const NodeRow &row, const ConversionRow &conversion, const RequestRun &run,
                    std::string_view native) {
        const NativeAddition *leaf = find_leaf(conversion, run);
        if (!run.accepted) {
            report(path, "is refused when it is named");
        }
        if (leaf == nullptr) {
            report(path, "is not written to " + std::string(conversion.path) + " by " + std::string(row.conversion));
        } else if (!is_same(leaf->value, std::string(native))) {
            report(path, "is written as " + quoted(leaf->value) + " by " + std::string(row.conversion) + ", not as " +
                             quoted(native));
        }
        const std::string twin = std::string(conversion.path) + "-dbm";
        for (const NativeAddition &addition : run.additions) {
            const bool said =
                addition.path == conversion.path || (conversion.steps == "state_power" && addition.path == twin);
            if (addition.is_leaf && !addition.is_key && !said) {
                report(path, "is written to " + addition.path + " too by " + std::string(row.conversion) +
                                 ", which its row does not say");
            }
        }
    }

    // The controller whose interface entry holds the leaf.
    void check_controller(const std::string &path, const ConversionRow &conversion, const RequestRun &run) {
        const auto name = std::find_if(run.additions.begin(), run.additions.end(), [](const NativeAddition &addition) {
            return addition.path.ends_with("/interface-name");
        });
        const std::string_view controller = name == run.additions.end() ? "" : std::string_view(name->value);
        const std::string_view wanted = conversion.port == "primary"     ? "Ots0/1/0/1"
                                        : conversion.port == "secondary" ? "Ots0/1/0/2"
                                                                         : "";
        if (controller != wanted) {
            report(path, "is written to the controller " + quoted(controller) + ", not to " + quoted(wanted));
        }
    }

    void check_delete(const std::string &path, const ConversionRow &conversion, const RequestRun &run) {
        const NativeAddition *leaf = find_leaf(conversion, run);
        if (leaf == nullptr || !leaf->deletes) {
            report(path, "is not deleted in " + std::string(conversion.path));
        }
    }

    // ---- answers ----

    void run_answers(const NativeRow &row) {
        std::vector<AnswerRow> rows;
        std::copy_if(input_.answers.begin(), input_.answers.end(), std::back_inserter(rows),
                     [&](const AnswerRow &answer) { return answer.conversion == row.conversion; });
        if (rows.empty()) {
            return;
        }
        for (const Example &example : answer_examples) {
            for (const auto &[mode, mode_text] : answer_modes) {
                if (example.value == rows.front().value) {
                    run_ports(row, rows, example, mode, std::string(mode_text));
                }
            }
        }
    }

    void run_ports(const NativeRow &row, const std::vector<AnswerRow> &rows, const Example &example, AnswerMode mode,
                   const std::string &mode_text) {
        const bool has_port = rows.front().source != "slot" && rows.front().source != "controller";
        for (const auto &[port, port_text] : entry_ports) {
            if (port != EntryPort::primary && !has_port) {
                continue;
            }
            ++result_.runs;
            const AnswerRun run = host_.answer(row, port, mode, std::string(example.native));
            const std::string where =
                " by " + std::string(row.conversion) + " for " + std::string(port_text) + " in " + mode_text;
            compare(expected(rows, example, port, mode), run.written, where);
            if (run.result != expected_result(rows, port)) {
                report(std::string(row.model) + ":" + native_path(input_.native, row),
                       "does not give what its row says of other ports" + where);
            }
        }
    }

    static bool is_written_in(const AnswerRow &row, AnswerMode mode) {
        if (row.kinds == "unless_state_only") {
            return mode != AnswerMode::state_only;
        }
        if (row.kinds == "with_state") {
            return mode != AnswerMode::configuration;
        }
        return row.kinds != "without_state" || mode == AnswerMode::configuration;
    }

    // A value of the database is written while the answer for the primary port is handled.
    static bool is_written_for(const AnswerRow &row, EntryPort port) {
        const bool of_secondary = row.reader == "answer" && row.source == "secondary";
        return port == (of_secondary ? EntryPort::secondary : EntryPort::primary);
    }

    std::vector<WrittenNode> expected(const std::vector<AnswerRow> &rows, const Example &example, EntryPort port,
                                      AnswerMode mode) {
        std::vector<WrittenNode> nodes;
        for (const AnswerRow &row : rows) {
            if (!is_written_in(row, mode) || !is_written_for(row, port)) {
                continue;
            }
            std::string value(row.manner == "opened" ? "" : example.openconfig);
            if (row.reader != "answer") {
                const std::optional<std::string> text = host_.read(row.reader, row.source);
                if (!text) {
                    report(row.path, "cannot be read with " + std::string(row.reader));
                    continue;
                }
                value = scaled(row.value, *text);
            }
            nodes.push_back({std::string(row.path), std::move(value), std::string(row.manner)});
        }
        return nodes;
    }

    static AnswerResult expected_result(const std::vector<AnswerRow> &rows, EntryPort port) {
        const std::string_view others = rows.front().others;
        if (port == EntryPort::primary || others == "keep" ||
            (port == EntryPort::secondary && others == "keep_secondary")) {
            return AnswerResult::done;
        }
        return AnswerResult::skipped;
    }

    void compare(const std::vector<WrittenNode> &wanted, std::vector<WrittenNode> written, const std::string &where) {
        for (const WrittenNode &node : wanted) {
            const auto found = std::find_if(written.begin(), written.end(),
                                            [&](const WrittenNode &candidate) { return candidate.path == node.path; });
            if (found == written.end()) {
                report(node.path, "is not written" + where);
                continue;
            }
            if (!is_same(found->value, node.value)) {
                report(node.path, "is written as " + quoted(found->value) + where + ", not as " + quoted(node.value));
            }
            if (found->manner != node.manner) {
                report(node.path, "is " + found->manner + where + ", not " + node.manner);
            }
            written.erase(found);
        }
        for (const WrittenNode &node : written) {
            report(node.path, "is written" + where + ", which no row says");
        }
    }

    const CoverageInput &input_;
    ConversionHost &host_;
    CoverageResult &result_;
};

} // namespace

void check_conversions(const CoverageInput &input, ConversionHost &host, CoverageResult &result) {
    Runs(input, host, result).run();
}

} // namespace ocpsm
