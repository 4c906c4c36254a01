// Sees to it that one process at a time lets the time of a line system pass.
#ifndef OCPSM_CLOCK_LOCK_HPP
#define OCPSM_CLOCK_LOCK_HPP

#include <filesystem>

namespace ocpsm {

// Held by this process for as long as this lives; the system gives it back when the process ends, however it ends. A
// process takes it once.
class ClockLock {
public:
    // Takes the lock of a state directory. Throws ocpsm::Error: refused (in-use) naming the process that has it, input
    // when the lock's file cannot be made.
    explicit ClockLock(const std::filesystem::path &state);
    ClockLock(const ClockLock &) = delete;
    ClockLock &operator=(const ClockLock &) = delete;
    ~ClockLock();

private:
    int file_;
};

} // namespace ocpsm

#endif
