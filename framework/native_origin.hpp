// Where in an OpenConfig edit a native node comes from.
#ifndef OCPSM_FRAMEWORK_NATIVE_ORIGIN_HPP
#define OCPSM_FRAMEWORK_NATIVE_ORIGIN_HPP

#include <string>
#include <string_view>

#include "framework/translation.hpp"

namespace ocpsm::framework {

/*
 * The OpenConfig instance path during whose walk the native node was added that `text` begins with: a native instance
 * path, or a message that begins with one. Of several the last one counts; where the node itself was not added, a node
 * below it or, at last, the nearest one above it. Empty when there is none. All adds must have been kept.
 */
std::string openconfig_origin(Callback root, const HandedOver &edit, std::string_view text);

/*
 * What is below a node that is taken away as a whole is walked without being named. Finds the configuration leaf below
 * it whose own removal does something to the native node, the last one of several, by translating these removals;
 * `location` itself when there is none.
 */
std::string leaf_behind(Callback root, const std::string &location, std::string_view native_path);

} // namespace ocpsm::framework

#endif
