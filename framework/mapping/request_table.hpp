// The plug-in's tables of the way there as data: what a node of the OpenConfig model becomes, and what the framework
// must find for it in the plug-in.
#ifndef OCPSM_FRAMEWORK_REQUEST_TABLE_HPP
#define OCPSM_FRAMEWORK_REQUEST_TABLE_HPP

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/models/models.hpp"

namespace ocpsm {

using models::NodeKind;

// One node that the plug-in knows. An empty `conversion` in a leaf: the plug-in refuses it.
struct NodeRow {
    NodeKind kind;
    bool is_key;
    bool is_configuration;
    std::string_view suffix; // ends the names of the node's callbacks
    std::string_view parent; // suffix of the node above, "none" at the top
    std::string_view tag;
    std::string_view conversion;
};

// What the conversion of a leaf writes.
struct ConversionRow {
    std::string_view conversion;
    std::string_view steps; // the sequence of additions
    std::string_view value; // how the value is written
    std::string_view port;  // the line port whose controller holds the leaf, "none" when it is none
    std::string_view model; // name of the native module
    std::string_view path;  // native path without module names
};

// The name of a native module: the last step of its namespace.
constexpr std::string_view module_name(std::string_view namespace_uri) {
    return namespace_uri.substr(namespace_uri.rfind('/') + 1);
}

std::span<const NodeRow> node_rows();
std::span<const ConversionRow> conversion_rows();

// The schema path of a row of `rows`, e.g. "/aps/aps-modules/aps-module/config".
std::string schema_path(std::span<const NodeRow> rows, const NodeRow &row);

// The names that a plug-in must export for a row: walker, node callback, augment hook, conversion.
std::vector<std::string> exported_names(const NodeRow &row);

// The row of a conversion, null for those that resolve the module's name and for unknown ones.
const ConversionRow *find_conversion(std::span<const ConversionRow> rows, std::string_view conversion);

} // namespace ocpsm

#endif
