// An answer as text.
#ifndef BENCH_FRAMEWORK_ANSWER_PRINT_HPP
#define BENCH_FRAMEWORK_ANSWER_PRINT_HPP

#include <string>
#include <vector>

#include "bench/framework/answer_node.hpp"

namespace bench::framework {

enum class AnswerFormat { xml, json };

// Prints a checked answer, indented, with a line end behind it; nothing is no text in XML, "{}" in JSON (RFC 7951).
std::string print_answer(const std::vector<AnswerNode> &tops, AnswerFormat format);

} // namespace bench::framework

#endif
