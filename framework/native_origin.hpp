// Where in an OpenConfig edit a native node comes from.
#ifndef OCPSM_FRAMEWORK_NATIVE_ORIGIN_HPP
#define OCPSM_FRAMEWORK_NATIVE_ORIGIN_HPP

#include <string>
#include <string_view>

#include "framework/translation.hpp"

namespace ocpsm::framework {

// The OpenConfig instance path from which the native node of an edit was added; empty when there is none.
std::string openconfig_origin(Callback root, const Origins &origins, const native::NetRequest &edit,
                              std::string_view native_path);

/*
 * What is below a node that is taken away as a whole is walked without being named. Finds the configuration leaf below
 * it whose own removal does something to the native node, the last one of several, by translating these removals;
 * `location` itself when there is none.
 */
std::string leaf_behind(Callback root, const std::string &location, std::string_view native_path);

} // namespace ocpsm::framework

#endif
