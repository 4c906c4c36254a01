#include "simulator/line_system/edit_lock.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "framework/error.hpp"

namespace ocpsm::line_system {

namespace {

struct flock whole_file(short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

[[noreturn]] void refuse(const std::string &tag, std::uint32_t process) {
    throw Error(Error::Source::refused, tag, "", "the configuration is locked by process " + std::to_string(process),
                "try again when its session has ended or has given the lock back")
        .held_by(process);
}

} // namespace

EditLock::~EditLock() {
    if (file_ >= 0) {
        close(file_);
    }
}

bool EditLock::open(int flags) {
    if (file_ < 0) {
        file_ = ::open(name_.c_str(), O_RDWR | O_CLOEXEC | flags, 0666); // NOLINT(cppcoreguidelines-pro-type-vararg)
    }
    return file_ >= 0;
}

// Nothing is held through a file that is not there; who may not write it may not commit either.
std::uint32_t EditLock::other_holder() {
    if (!open(0)) {
        return 0;
    }
    struct flock lock = whole_file(F_WRLCK);
    const bool held = fcntl(file_, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK; // NOLINT
    return held && lock.l_pid > 0 ? static_cast<std::uint32_t>(lock.l_pid) : 0;
}

// The file was written to when the lock was taken.
std::optional<LockHolder> EditLock::holder() {
    const std::lock_guard guard(mutex_);
    const std::uint32_t process = held_ ? static_cast<std::uint32_t>(getpid()) : other_holder();
    struct stat file {};
    if (process == 0 || fstat(file_, &file) != 0) {
        return std::nullopt;
    }
    return LockHolder{process, file.st_mtim.tv_sec * 1000 + file.st_mtim.tv_nsec / 1000000};
}

void EditLock::check() {
    const std::lock_guard guard(mutex_);
    if (const std::uint32_t other = other_holder(); other != 0) {
        refuse("in-use", other);
    }
}

std::shared_ptr<void> EditLock::take() {
    const std::lock_guard guard(mutex_);
    if (held_) {
        refuse("lock-denied", static_cast<std::uint32_t>(getpid()));
    }
    if (!open(O_CREAT)) {
        const std::string reason = std::strerror(errno); // NOLINT(concurrency-mt-unsafe)
        throw Error(Error::Source::input, "operation-failed", "", "cannot open " + name_.string() + ": " + reason,
                    "the state directory must be writable");
    }
    struct flock lock = whole_file(F_WRLCK);
    if (fcntl(file_, F_SETLK, &lock) != 0) { // NOLINT(cppcoreguidelines-pro-type-vararg)
        refuse("lock-denied", other_holder());
    }
    static_cast<void>(futimens(file_, nullptr) == 0);
    held_ = true;
    return {this, [](EditLock *held) { held->give_back(); }};
}

void EditLock::give_back() {
    const std::lock_guard guard(mutex_);
    struct flock lock = whole_file(F_UNLCK);
    static_cast<void>(fcntl(file_, F_SETLK, &lock) == 0); // NOLINT(cppcoreguidelines-pro-type-vararg)
    held_ = false;
}

} // namespace ocpsm::line_system
