// A request as the model sees it.
#ifndef OCPSM_FRAMEWORK_REQUEST_TYPE_HPP
#define OCPSM_FRAMEWORK_REQUEST_TYPE_HPP

#include <string>
#include <vector>

#include "framework/kind.hpp"
#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// Takes the top nodes of other models out of a read that also selects something of the OpenConfig model, and returns
// what to warn of.
std::vector<std::string> leave_out_other_models(std::vector<RequestNode> &tops);

/*
 * Types the top nodes of a request against the OpenConfig model: operations and values are read, list keys put first in
 * their entry, selections told from values. In an edit the values of known configuration leaves are checked and made
 * canonical, unless `check_values` is false; a node and an entry are said once. The equal selections of a read become
 * one, and in a read a node in no namespace is the model's. Nodes that the model does not know stay as they were
 * written; those that only bear a known name, in another namespace, are refused, and so are JSON forms that RFC 7951
 * does not have, texts with a byte 0, more than max_request_depth levels, and a list with more than max_instances
 * entries. Throws ocpsm::Error (refused) with the OpenConfig path of the node for what the model or the protocol does
 * not allow.
 */
std::vector<RequestNode> type_request(std::vector<RequestNode> tops, Kind kind, bool check_values);

} // namespace ocpsm::framework

#endif
