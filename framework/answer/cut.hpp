// What of an answer a request has selected (RFC 6241, 6).
#ifndef OCPSM_FRAMEWORK_ANSWER_CUT_HPP
#define OCPSM_FRAMEWORK_ANSWER_CUT_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "framework/answer/tree.hpp"
#include "framework/host/data_tree.hpp"

namespace ocpsm::framework {

// Cuts an answer to what a typed read selects. The keys of an entry always come along.
AnswerTree cut(AnswerTree answer, const std::vector<RequestNode> &selections);

// Cuts an answer to what these expressions select of it (xpath_of), and what is below. The keys of an entry always come
// along. Throws ocpsm::Error (input) for one that selects no nodes.
AnswerTree cut_to_xpaths(AnswerTree answer, const std::vector<std::string> &xpaths);

// How many state leaves a typed read names; none when it also names anything else (keys of lists left out).
std::size_t state_leaves_only(const std::vector<RequestNode> &selections);

} // namespace ocpsm::framework

#endif
