// The mapping tables in words, and what they do not serve.
#ifndef OCPSM_TABLE_WORDS_HPP
#define OCPSM_TABLE_WORDS_HPP

#include <span>
#include <string>
#include <string_view>

#include "framework/mapping/answer_table.hpp"
#include "framework/mapping/request_table.hpp"

namespace ocpsm {

// One node of the published model that the system does not serve.
struct UnsupportedRow {
    std::string_view path; // below an aps-module
    std::string_view reason;
};

std::span<const UnsupportedRow> unsupported_rows();

std::string schema_path(const UnsupportedRow &row);

// How a value is written into the native leaf, given the units of the OpenConfig leaf (may be empty), e.g.
// "0.1 dBm, x10".
std::string describe_value(const ConversionRow &row, std::string_view units);

// What a conversion adds, in words.
std::string_view describe_steps(std::string_view steps);

// How a native value becomes the OpenConfig one, given the units of the OpenConfig leaf (may be empty), e.g.
// "0.1 dBm, /10".
std::string describe_answer_value(std::string_view value, std::string_view units);

// Where the value comes from, in words.
std::string describe_source(const AnswerRow &row);

// Where it is written, in words; empty for everywhere.
std::string_view describe_kinds(std::string_view kinds);

} // namespace ocpsm

#endif
