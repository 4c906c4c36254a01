// What an edit says of nodes that have to be there, or must not be there yet (RFC 6241, 7.2).
#ifndef OCPSM_FRAMEWORK_REQUEST_EXISTENCE_HPP
#define OCPSM_FRAMEWORK_REQUEST_EXISTENCE_HPP

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/answer/tree.hpp"
#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// What to do about the delete of something that is not there.
inline constexpr std::string_view remove_instead = "use the operation remove if that is no error";

// Names of the modules that a typed edit names, each once, in the order of the edit.
std::vector<std::string> named_modules(const std::vector<RequestNode> &tops);

// Whether an edit has an operation on a container around the modules, which concerns those that it does not name too.
bool concerns_all_modules(const std::vector<RequestNode> &tops);

// The names of all modules that are fitted; asked for only to tell them in a refusal.
using FittedModules = std::function<std::vector<std::string>()>;

/*
 * Settles existence against the configuration as it stands. Throws ocpsm::Error (refused) with the path of the first
 * node in document order that
 *   data-missing   is a module that is not there, or is to be deleted and is not there
 *   data-exists    is to be created and is there
 * Modules that are to be removed and are not there are taken out of the edit. What the model does not know, operational
 * state, and what stands below a node that is taken away or replaced is not looked at.
 */
void settle_existence(std::vector<RequestNode> &tops, const AnswerTree &standing, const FittedModules &fitted);

} // namespace ocpsm::framework

#endif
