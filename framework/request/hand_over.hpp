// What is handed to the plug-in for a request: trees that begin with the model's top container.
#ifndef OCPSM_FRAMEWORK_REQUEST_HAND_OVER_HPP
#define OCPSM_FRAMEWORK_REQUEST_HAND_OVER_HPP

#include <span>
#include <string>
#include <vector>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// A read: one tree per list entry that it names; where it names none, one for each top node.
std::vector<RequestNode> hand_over_read(std::vector<RequestNode> tops);

/*
 * An edit, whole; no tree when it says nothing.
 * - What is created, and a leaf that is replaced, is merged: whether it was there has been settled before.
 * - An operation on the containers around the modules becomes the same operation on each of `fitted_modules`.
 * - Of an entry that is taken away only the keys are handed over.
 * - A replaced entry with more than its keys follows an entry with the same keys that is removed: alone it would be
 *   merged.
 * Throws ocpsm::Error (refused, data-missing) for the delete of all modules where there is none, and for taking away
 * the leaf that an entry's key refers to.
 */
std::vector<RequestNode> hand_over_edit(std::vector<RequestNode> tops, std::span<const std::string> fitted_modules);

} // namespace ocpsm::framework

#endif
