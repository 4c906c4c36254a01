// The kinds of requests.
#ifndef OCPSM_FRAMEWORK_KIND_HPP
#define OCPSM_FRAMEWORK_KIND_HPP

#include <cstdint>

namespace ocpsm {

// The operation kind of a request, by the number that a mapping plug-in is given; `get` includes operational state.
enum class Kind : std::uint32_t { get_config = 0, edit = 1, get = 10 };

} // namespace ocpsm

#endif
