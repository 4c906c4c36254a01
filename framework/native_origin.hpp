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
 * below it or, at last, the nearest one above it. Empty when there is none. The translation must have been traced.
 */
std::string openconfig_origin(const HandedOver &edit, std::string_view text);

} // namespace ocpsm::framework

#endif
