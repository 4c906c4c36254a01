// How the nodes of a native request are named in messages and operations.
#ifndef OCPSM_FRAMEWORK_NATIVE_NATIVE_PATH_HPP
#define OCPSM_FRAMEWORK_NATIVE_NATIVE_PATH_HPP

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "framework/native/net_request.hpp"

namespace ocpsm::native {

// One step of an instance path: the node's name and a predicate for each key that is named.
std::string path_step(const NativeNode &node);

// Calls `visit` for every node but keys in document order, with its instance path.
void for_each_node(const NetRequest &request,
                   const std::function<void(const std::string &path, const NativeNode &node)> &visit);

// Calls `visit` for every text of the request, the values of its keys and leaves, with the leaf and its instance path.
void for_each_text(
    const NetRequest &request,
    const std::function<void(const std::string &path, const lysc_node &leaf, const std::string &text)> &visit);

} // namespace ocpsm::native

#endif
