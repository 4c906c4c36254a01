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

} // namespace ocpsm::framework

#endif
