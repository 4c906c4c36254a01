// What of a read the plug-in has passed over.
#ifndef OCPSM_FRAMEWORK_REQUEST_PASSED_OVER_HPP
#define OCPSM_FRAMEWORK_REQUEST_PASSED_OVER_HPP

#include <string>
#include <vector>

#include "yfw_map.h"

namespace ocpsm::framework {

struct Selections {
    std::size_t walked = 0;               // selected nodes that the plug-in has a walker for
    std::vector<std::string> passed_over; // instance paths of the others
};

// Looks through a tree that was walked for a read. Selected are its nodes without children, list keys left out.
Selections selections_of(const kidl_yfw_datatree &walked);

} // namespace ocpsm::framework

#endif
