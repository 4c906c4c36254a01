// Requests that are given as the instance path of a node.
#ifndef OCPSM_FRAMEWORK_REQUEST_NODE_PATH_HPP
#define OCPSM_FRAMEWORK_REQUEST_NODE_PATH_HPP

#include <string_view>
#include <vector>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

/*
 * A path names its steps with or without the module's name or prefix, and entries by their keys, the value with or
 * without quotes: /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/revertive. All of these make ready trees, and
 * throw ocpsm::Error (input) with the path for one that cannot be read or that the model does not have.
 */

inline constexpr std::size_t max_paths = 4096; // of one request

// Throws ocpsm::Error (input, too-big) for more paths than one request may have.
void check_number_of_paths(std::size_t number);

// Selects the node, whole. "/" and the empty path select everything.
std::vector<RequestNode> read_of(std::string_view path);

// Merges a leaf; every list on the way needs its key.
std::vector<RequestNode> setting_of(std::string_view path, std::string_view value);

// Takes a node away, `operation` being delete or remove; every list on the way, and at the end, needs its key.
std::vector<RequestNode> deletion_of(std::string_view path, Operation operation = Operation::delete_existing);

} // namespace ocpsm::framework

#endif
