// The plug-in's tables of the way back as data: what a node of a native answer becomes in OpenConfig, and what the
// framework must find for it in the plug-in.
#ifndef OCPSM_ANSWER_TABLE_HPP
#define OCPSM_ANSWER_TABLE_HPP

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

// One OpenConfig node that a conversion writes.
struct AnswerRow {
    std::string conversion;
    std::string path;              // schema path
    std::string value;             // "tenths", "hundredths", "text", "lockout", "port-status", "key"
    std::string_view source;       // where the value is read: "slot", "controller", "primary", "secondary", "database"
    bool operational_only = false; // written only by the read that includes operational state
};

std::span<const NativeRow> native_rows();
const std::vector<AnswerRow> &answer_rows();

// The schema path of a native row, the list that an augment entry adds to included.
std::string native_path(std::span<const NativeRow> rows, const NativeRow &row);

// The names that a plug-in must export for a row: walker, augment hook, node callback, conversion.
std::vector<std::string> exported_names(const NativeRow &row);

// How a native value becomes the OpenConfig one, given the units of the OpenConfig leaf (may be empty), e.g.
// "0.1 dBm, /10".
std::string describe_answer_value(std::string_view value, std::string_view units);

// Where the value comes from, in words.
std::string_view describe_source(std::string_view source);

} // namespace ocpsm

#endif
