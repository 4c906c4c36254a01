#include "bench/native/refuse.hpp"

// g++ 12 takes a constructor's parameters named like members for shadowing.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#include "bench/error.hpp"
#pragma GCC diagnostic pop
#include "bench/native/native_path.hpp"

namespace bench::native {

void refuse(const std::string &tag, const std::string &native_path, const std::string &what,
            const std::string &advice) {
    constexpr std::size_t longest_path = 1000;
    throw Error(Error::Source::refused, tag, "", one_line(native_path, longest_path) + ": " + what, advice);
}

} // namespace bench::native
