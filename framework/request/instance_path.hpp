// Instance paths of OpenConfig nodes, as errors name them: /aps/aps-modules/aps-module[name='0/2-PSM-OM']/config.
#ifndef OCPSM_FRAMEWORK_REQUEST_INSTANCE_PATH_HPP
#define OCPSM_FRAMEWORK_REQUEST_INSTANCE_PATH_HPP

#include <string>
#include <string_view>

#include "framework/models/models.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

// A key predicate; a value that holds a single quote stands in double ones.
std::string key_predicate(std::string_view key, std::string_view value);

// "/" and the node's tag, and, when `schema_path` is the path of a list, a predicate for each of its keys that the node
// shows with a value. Null tags are empty.
std::string instance_step(const models::Schema &schema, const std::string &schema_path, const kidl_yfw_datatree &node);

// A schema path without the prefixes of its steps: "/a:b/c" gives "/b/c".
std::string without_prefixes(std::string_view path);

} // namespace ocpsm::framework

#endif
