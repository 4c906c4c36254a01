// The selections of a read (RFC 6241, 6).
#ifndef OCPSM_FRAMEWORK_REQUEST_SELECTION_HPP
#define OCPSM_FRAMEWORK_REQUEST_SELECTION_HPP

#include <vector>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// A leaf that is given a value: what is beside it counts only where the values are equal.
inline bool is_content_match(const RequestNode &node) {
    return node.value.has_value();
}

/*
 * Joins the selections among the siblings, and below them, that are of the same node with the same content matches:
 * what they select together stands at the first of them. Leaves with a value stay as they are. Takes time linear in
 * the size of the trees.
 */
void join_selections(std::vector<RequestNode> &siblings);

} // namespace ocpsm::framework

#endif
