#include "coverage.hpp"

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
        for (const std::string &name : exported_names(row)) {
            ++result_.callbacks;
            if (!input_.is_exported(name)) {
                report(node.path, "needs " + name + ", which the plug-in does not export");
            }
        }
        check_conversion(node, row);
    }

    // The conversions of the list and of the three leaves called `name` resolve the module and have no row.
    void check_conversion(const SchemaNode &node, const NodeRow &row) {
        if (row.conversion.empty() || row.kind != NodeKind::leaf || row.tag == "name") {
            return;
        }
        const ConversionRow *conversion = find_conversion(input_.conversions, row.conversion);
        if (conversion == nullptr) {
            report(node.path, "is converted by " + std::string(row.conversion) + ", which writes no native leaf");
        } else if (!input_.is_native_leaf(conversion->model, conversion->path)) {
            report(node.path, "is written to " + std::string(conversion->path) + ", which " +
                                  std::string(conversion->model) + " does not have");
        }
    }

    const CoverageInput &input_;
    CoverageResult result_;
    std::map<std::string, const NodeRow *> rows_;
    std::set<std::string> unsupported_;
};

} // namespace

CoverageResult check_coverage(const CoverageInput &input) {
    return Checker(input).run();
}

} // namespace ocpsm
