// The proof that the mapping is whole: every node of the OpenConfig model is mapped both ways, refused or listed as
// unsupported, and the plug-in exports everything that a node of any model needs.
#ifndef OCPSM_COVERAGE_HPP
#define OCPSM_COVERAGE_HPP

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "framework/mapping/answer_table.hpp"
#include "framework/mapping/request_table.hpp"
#include "table_words.hpp"

namespace ocpsm {

// One node of the OpenConfig model as its YANG text has it.
struct SchemaNode {
    std::string path;
    NodeKind kind;
    bool is_key;
    bool is_configuration;
    std::string units; // empty when it has none
};

// What is compared. The tables are arguments so that a wrong one can be tried.
struct CoverageInput {
    std::span<const SchemaNode> model;
    std::span<const NodeRow> nodes;
    std::span<const ConversionRow> conversions;
    std::span<const UnsupportedRow> unsupported;
    std::span<const NativeRow> native;
    std::span<const AnswerRow> answers;
    std::function<bool(const std::string &name)> is_exported;
    // Whether a native module has a node of this kind with this path.
    std::function<bool(std::string_view module, std::string_view path, NodeKind kind)> is_native_node;
};

struct Finding {
    std::string path; // of the OpenConfig node, or of the native one behind the name of its module
    std::string problem;

    bool operator==(const Finding &) const = default;
};

struct CoverageResult {
    size_t mapped = 0;      // nodes that the plug-in serves, in requests and in answers
    size_t refused = 0;     // leaves that the plug-in refuses when they are named
    size_t unsupported = 0; // nodes that it does not know
    size_t native = 0;      // native nodes that have a walker
    size_t callbacks = 0;   // names that were looked up in the plug-in
    size_t runs = 0;        // of conversions, see check_conversions
    std::vector<Finding> findings;
};

CoverageResult check_coverage(const CoverageInput &input);

} // namespace ocpsm

#endif
