#include "coverage.hpp"

#include <algorithm>
#include <map>
#include <set>

namespace ocpsm {
namespace {

class Checker {
public:
    explicit Checker(const CoverageInput &input) : input_(input) {}

    CoverageResult run() {
        list_rows();
        for (const SchemaNode &node : input_.model) {
            check_node(node);
        }
        // What is left over is in a table but not in the model.
        for (const auto &[path, row] : rows_) {
            report(path, "is in the mapping table but not in the model");
        }
        for (const std::string &path : unsupported_) {
            report(path, "is listed as unsupported but is not in the model");
        }
        check_native_rows();
        check_answer_rows();
        return std::move(result_);
    }

private:
    void report(const std::string &path, const std::string &problem) { result_.findings.push_back({path, problem}); }

    void list_rows() {
        for (const NodeRow &row : input_.nodes) {
            const std::string path = schema_path(input_.nodes, row);
            if (!rows_.emplace(path, &row).second) {
                report(path, "is in the mapping table twice");
            }
        }
        for (const UnsupportedRow &row : input_.unsupported) {
            const std::string path = schema_path(row);
            if (!unsupported_.insert(path).second) {
                report(path, "is listed as unsupported twice");
            }
        }
        for (const NativeRow &row : input_.native) {
            called_.insert(std::string(row.conversion));
        }
        for (const AnswerRow &row : input_.answers) {
            if (called_.contains(std::string(row.conversion))) {
                written_.insert(std::string(row.path));
            }
        }
    }

    void check_node(const SchemaNode &node) {
        const auto row = rows_.find(node.path);
        const bool is_unsupported = unsupported_.erase(node.path) > 0;
        if (row == rows_.end()) {
            if (is_unsupported) {
                ++result_.unsupported;
            } else {
                report(node.path, "is neither mapped nor refused nor listed as unsupported");
            }
            return;
        }
        if (is_unsupported) {
            report(node.path, "is listed as unsupported although the plug-in knows it");
        }
        check_row(node, *row->second);
        rows_.erase(row);
    }

    void check_row(const SchemaNode &node, const NodeRow &row) {
        if (row.kind != node.kind || row.is_key != node.is_key) {
            report(node.path, "is of another kind in the mapping table than in the model");
        }
        if (row.is_configuration != node.is_configuration) {
            report(node.path, std::string("is ") + (node.is_configuration ? "configuration" : "state") +
                                  " in the model but not in the mapping table");
        }
        const bool is_refused = row.kind == NodeKind::leaf && row.conversion.empty();
        ++(is_refused ? result_.refused : result_.mapped);
        check_exports(node.path, exported_names(row));
        check_conversion(node, row);
        if (!is_refused && !is_written(node)) {
            report(node.path, "is written by no answer conversion");
        }
    }

    void check_exports(const std::string &path, const std::vector<std::string> &names) {
        for (const std::string &name : names) {
            ++result_.callbacks;
            if (!input_.is_exported(name)) {
                report(path, "needs " + name + ", which the plug-in does not export");
            }
        }
    }

    // A container is there with what is in it.
    bool is_written(const SchemaNode &node) const {
        if (node.kind != NodeKind::container) {
            return written_.contains(node.path);
        }
        const auto first = written_.lower_bound(node.path + "/");
        return first != written_.end() && first->compare(0, node.path.size() + 1, node.path + "/") == 0;
    }

    // The conversions of the list and of the three leaves called `name` resolve the module and have no row.
    void check_conversion(const SchemaNode &node, const NodeRow &row) {
        if (row.conversion.empty() || row.kind != NodeKind::leaf || row.tag == "name") {
            return;
        }
        const ConversionRow *conversion = find_conversion(input_.conversions, row.conversion);
        if (conversion == nullptr) {
            report(node.path, "is converted by " + std::string(row.conversion) + ", which writes no native leaf");
        } else if (!input_.is_native_node(conversion->model, conversion->path, NodeKind::leaf)) {
            report(node.path, "is written to " + std::string(conversion->path) + ", which " +
                                  std::string(conversion->model) + " does not have");
        }
    }

    // ---- the way back ----

    void check_native_rows() {
        std::set<std::string> seen;
        for (const NativeRow &row : input_.native) {
            const std::string path = native_path(input_.native, row);
            const std::string name = std::string(row.model) + ":" + path;
            ++result_.native;
            if (row.kind != NativeKind::augment) {
                check_native_node(row, path, name);
                if (!seen.insert(name).second) {
                    report(name, "is in the native tables twice");
                }
            }
            check_exports(name, exported_names(row));
            const bool writes = std::any_of(input_.answers.begin(), input_.answers.end(), [&](const AnswerRow &answer) {
                return answer.conversion == row.conversion;
            });
            if (!row.conversion.empty() && !writes) {
                report(name, "is converted by " + std::string(row.conversion) + ", which writes no OpenConfig leaf");
            }
        }
    }

    void check_native_node(const NativeRow &row, const std::string &path, const std::string &name) {
        const NodeKind kind = row.kind == NativeKind::leaf   ? NodeKind::leaf
                              : row.kind == NativeKind::list ? NodeKind::list
                                                             : NodeKind::container;
        if (!input_.is_native_node(row.model, path, kind)) {
            report(name, "is in the native tables but not in the native model");
        }
    }

    void check_answer_rows() {
        const auto is_served = [&](std::string_view path) {
            return std::any_of(input_.nodes.begin(), input_.nodes.end(),
                               [&](const NodeRow &row) { return schema_path(input_.nodes, row) == path; });
        };
        for (const AnswerRow &row : input_.answers) {
            if (!is_served(row.path)) {
                report(std::string(row.path),
                       "is written by " + std::string(row.conversion) + " but is not in the mapping table");
            }
            if (!called_.contains(std::string(row.conversion))) {
                report(std::string(row.path),
                       "is written by " + std::string(row.conversion) + ", which no native node calls");
            }
        }
    }

    const CoverageInput &input_;
    CoverageResult result_;
    std::map<std::string, const NodeRow *> rows_;
    std::set<std::string> unsupported_;
    std::set<std::string> called_;  // answer conversions that a native node calls
    std::set<std::string> written_; // OpenConfig nodes that these write
};

} // namespace

CoverageResult check_coverage(const CoverageInput &input) {
    return Checker(input).run();
}

} // namespace ocpsm
