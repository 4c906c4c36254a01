#include "clock_lock.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "framework/error.hpp"
#include "simulator/line_system.hpp"

namespace ocpsm {
namespace {

struct flock whole_file() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

// Nothing where the holder has gone in the meantime, or runs where its number says nothing here.
std::string holder(int file) {
    struct flock lock = whole_file();
    const bool held = fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK && lock.l_pid > 0; // NOLINT
    return held ? " by process " + std::to_string(lock.l_pid) : "";
}

} // namespace

// A lock of the fcntl kind: it tells who has it.
ClockLock::ClockLock(const std::filesystem::path &state) {
    const std::filesystem::path name = state / SimulatedLineSystem::clock_lock_file;
    file_ = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666); // NOLINT(cppcoreguidelines-pro-type-vararg)
    if (file_ < 0) {
        const std::string reason = std::strerror(errno); // NOLINT(concurrency-mt-unsafe)
        throw Error(Error::Source::input, {}, {}, "cannot open " + name.string() + ": " + reason,
                    "the state directory must be writable");
    }
    struct flock lock = whole_file();
    if (fcntl(file_, F_SETLK, &lock) != 0) { // NOLINT(cppcoreguidelines-pro-type-vararg)
        const std::string by = holder(file_);
        close(file_);
        throw Error(Error::Source::refused, "in-use", {},
                    "the time of the line system in " + state.string() + " is being moved already" + by,
                    "end that ocpsm serve, watch or device tick first");
    }
}

ClockLock::~ClockLock() {
    close(file_);
}

} // namespace ocpsm
