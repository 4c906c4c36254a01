// How this directory says no.
#ifndef OCPSM_FRAMEWORK_NATIVE_REFUSE_HPP
#define OCPSM_FRAMEWORK_NATIVE_REFUSE_HPP

#include <string>

namespace ocpsm::native {

// Throws ocpsm::Error (refused) with a NETCONF error-tag; `what` is wrong at the native path.
[[noreturn]] void refuse(const std::string &tag, const std::string &native_path, const std::string &what,
                         const std::string &advice = {});

} // namespace ocpsm::native

#endif
