// An answer as text.
#ifndef OCPSM_FRAMEWORK_ANSWER_PRINT_HPP
#define OCPSM_FRAMEWORK_ANSWER_PRINT_HPP

#include <string>
#include <vector>

#include "framework/answer/node.hpp"
#include "framework/service.hpp"

namespace ocpsm::framework {

// Prints a checked answer, indented, with a line end behind it; nothing is no text in XML, "{}" in JSON (RFC 7951).
std::string print_answer(const std::vector<AnswerNode> &tops, Format format);

} // namespace ocpsm::framework

#endif
