// An answer as the model sees it.
#ifndef OCPSM_FRAMEWORK_ANSWER_CHECK_HPP
#define OCPSM_FRAMEWORK_ANSWER_CHECK_HPP

#include <vector>

#include "framework/answer/node.hpp"

namespace ocpsm::framework {

// Makes the values of all leaves canonical. Throws ocpsm::Error (refused, operation-failed) with the path of the first
// leaf that has a value which the model does not allow, or none.
void check_answer(std::vector<AnswerNode> &tops);

} // namespace ocpsm::framework

#endif
