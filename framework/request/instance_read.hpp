// Reads of one instance of the model's list.
#ifndef OCPSM_FRAMEWORK_REQUEST_INSTANCE_READ_HPP
#define OCPSM_FRAMEWORK_REQUEST_INSTANCE_READ_HPP

#include <optional>
#include <string>

#include "framework/request_tree.hpp"

namespace ocpsm::framework {

// A typed read of the whole instance with this name.
RequestNode read_of_instance(const std::string &name);

// The name of the instance that a handed-over read is for; none when it is for all.
std::optional<std::string> instance_of_read(const RequestNode &request);

// The instance path of the instance with this name.
std::string instance_path(const std::string &name);

} // namespace ocpsm::framework

#endif
