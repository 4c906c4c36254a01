// What an answer does not hold, although it lies below what was selected.
#ifndef OCPSM_FRAMEWORK_ANSWER_LEFT_OUT_HPP
#define OCPSM_FRAMEWORK_ANSWER_LEFT_OUT_HPP

#include <span>
#include <string>
#include <vector>

#include "framework/answer/tree.hpp"
#include "framework/kind.hpp"
#include "framework/translation.hpp"

namespace ocpsm::framework {

// One warning, or none, for the leaves that could not be asked for by themselves and are not in the answer of a read:
// the first 16 of them, each with the read that has it.
std::vector<std::string> left_out(std::span<const HandedOver> handed_over, const AnswerTree &answer, Kind kind);

} // namespace ocpsm::framework

#endif
