// Leaves of an answer that have a default in the model (RFC 6243).
#ifndef OCPSM_FRAMEWORK_ANSWER_DEFAULTS_HPP
#define OCPSM_FRAMEWORK_ANSWER_DEFAULTS_HPP

#include "framework/answer/tree.hpp"

namespace ocpsm::framework {

// Configuration of the entries that are there has its default where it is not there.
AnswerTree with_defaults(AnswerTree answer);

// Leaves that say what the default says are not there, nor what holds nothing else.
AnswerTree without_defaults(AnswerTree answer);

} // namespace ocpsm::framework

#endif
