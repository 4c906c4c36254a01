// The plug-in's tables of the way back as data: what a node of a native answer becomes in OpenConfig, and what the
// framework must find for it in the plug-in.
#ifndef OCPSM_FRAMEWORK_ANSWER_TABLE_HPP
#define OCPSM_FRAMEWORK_ANSWER_TABLE_HPP

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ocpsm {

enum class NativeKind { augment, container, list, leaf };

// One node of a native model that has a walker.
struct NativeRow {
    std::string_view model;  // name of the native module
    std::string_view module; // its part of the exported names
    NativeKind kind;
    std::string_view suffix;     // ends the names of the node's functions
    std::string_view parent;     // suffix of the node above, "none" at the top
    std::string_view tag;        // empty for an augment entry
    std::string_view conversion; // of a leaf and of the list that opens modules; empty: accepted, not translated
    std::string_view augmented;  // of an augment entry: schema path of the list that it adds to; else empty
};

// One OpenConfig node that a conversion writes. The words are those of the plug-in's tables, see its answer_rows.hpp.
struct AnswerRow {
    std::string_view conversion;
    std::string_view path;   // schema path
    std::string_view source; // what the value belongs to: "slot", "controller", "primary", "secondary", "common"
    std::string_view reader; // of the system database; "answer": the native leaf holds the value
    std::string_view value;  // "tenths", "hundredths", "units", "text", "lockout", "status", "module"
    std::string_view kinds; // reads that it is written in: "always", "unless_state_only", "with_state", "without_state"
    std::string_view manner; // "added", "stitched", "opened"
    std::string_view others; // what an entry of no primary port gives: "keep", "keep_secondary", "skip"
};

std::span<const NativeRow> native_rows();
std::span<const AnswerRow> answer_rows();

// The schema path of a native row, the list that an augment entry adds to included.
std::string native_path(std::span<const NativeRow> rows, const NativeRow &row);

// The names that a plug-in must export for a row: walker, augment hook, node callback, conversion.
std::vector<std::string> exported_names(const NativeRow &row);

// The exported name of a row's node callback; the row is no augment entry.
std::string callback_name(const NativeRow &row);

} // namespace ocpsm

#endif
