#include "framework/native/refuse.hpp"

#include "framework/error.hpp"

namespace ocpsm::native {

void refuse(const std::string &tag, const std::string &native_path, const std::string &what,
            const std::string &advice) {
    throw Error(Error::Source::refused, tag, "", what, advice).at_native(native_path);
}

} // namespace ocpsm::native
