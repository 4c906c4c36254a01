// The kinds of requests that the framework hands over.
#ifndef BENCH_FRAMEWORK_KIND_HPP
#define BENCH_FRAMEWORK_KIND_HPP

#include <cstdint>

namespace bench::framework {

// The operation kind of a request, by its number; `get` includes operational state.
enum class Kind : uint32_t { get_config = 0, edit = 1, get = 10 };

} // namespace bench::framework

#endif
