// Who keeps others from editing a device.
#ifndef OCPSM_FRAMEWORK_LOCK_HPP
#define OCPSM_FRAMEWORK_LOCK_HPP

#include <cstdint>

namespace ocpsm {

struct LockHolder {
    std::uint32_t process = 0;
    std::int64_t since = 0; // of day, milliseconds since 1970 (UTC)
};

} // namespace ocpsm

#endif
