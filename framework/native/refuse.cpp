#include "framework/native/refuse.hpp"

#include "framework/error.hpp"
#include "framework/text.hpp"

namespace ocpsm::native {

void refuse(const std::string &tag, const std::string &native_path, const std::string &what,
            const std::string &advice) {
    constexpr std::size_t longest_path = 1000;
    throw Error(Error::Source::refused, tag, "", one_line(native_path, longest_path) + ": " + what, advice);
}

} // namespace ocpsm::native
