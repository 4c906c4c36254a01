// libyang without its messages on standard error.
#ifndef OCPSM_FRAMEWORK_QUIET_LIBRARY_HPP
#define OCPSM_FRAMEWORK_QUIET_LIBRARY_HPP

#include <libyang/libyang.h>

#include <cstdint>

namespace ocpsm {

// While it lives, this thread's messages are kept for ly_errmsg instead of being printed.
class QuietLibrary {
public:
    QuietLibrary() { ly_temp_log_options(&options_); }
    ~QuietLibrary() { ly_temp_log_options(nullptr); }
    QuietLibrary(const QuietLibrary &) = delete;
    QuietLibrary &operator=(const QuietLibrary &) = delete;

private:
    std::uint32_t options_ = LY_LOSTORE_LAST;
};

} // namespace ocpsm

#endif
