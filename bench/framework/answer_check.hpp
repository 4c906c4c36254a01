// An answer as the model sees it.
#ifndef BENCH_FRAMEWORK_ANSWER_CHECK_HPP
#define BENCH_FRAMEWORK_ANSWER_CHECK_HPP

#include <vector>

#include "bench/framework/answer_node.hpp"

namespace bench::framework {

// Makes the values of all leaves canonical. Throws bench::Error (refused, operation-failed) with the path of the first
// leaf that has a value which the model does not allow, or none.
void check_answer(std::vector<AnswerNode> &tops);

} // namespace bench::framework

#endif
