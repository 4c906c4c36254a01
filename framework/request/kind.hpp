// The kinds of requests that the framework hands over.
#ifndef OCPSM_FRAMEWORK_REQUEST_KIND_HPP
#define OCPSM_FRAMEWORK_REQUEST_KIND_HPP

#include <cstdint>

namespace ocpsm::framework {

// The operation kind of a request, by its number; `get` includes operational state.
enum class Kind : uint32_t { get_config = 0, edit = 1, get = 10 };

} // namespace ocpsm::framework

#endif
