#include "servers/netconf/sessions.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <vector>

#include "framework/error.hpp"
#include "framework/journal.hpp"
#include "servers/netconf/process_handle.hpp"

namespace ocpsm::netconf {

namespace {

// The record of a process stands at a place of its own.
constexpr off_t record_size = sizeof(SessionRecord);
constexpr std::chrono::seconds longest_end{5};

off_t place_of(std::uint32_t id) {
    return static_cast<off_t>(id) * record_size;
}

struct flock part(short type, off_t from, off_t size) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = from;
    lock.l_len = size;
    return lock;
}

[[noreturn]] void refuse(const std::string &tag, const std::string &message) {
    throw Error(Error::Source::refused, tag, "", message);
}

} // namespace

Sessions::Sessions(const std::filesystem::path &file)
    : file_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)), // NOLINT(cppcoreguidelines-pro-type-vararg)
      own_{time_of_day(), static_cast<std::uint32_t>(getpid()), geteuid()} {
    struct flock lock = part(F_WRLCK, place_of(own_.id), record_size);
    if (file_ >= 0 && pwrite(file_, &own_, sizeof own_, place_of(own_.id)) == record_size &&
        fcntl(file_, F_SETLK, &lock) == 0) { // NOLINT(cppcoreguidelines-pro-type-vararg)
        return;
    }
    const std::string reason = std::strerror(errno); // NOLINT(concurrency-mt-unsafe)
    if (file_ >= 0) {
        close(file_);
    }
    throw Error(Error::Source::input, {}, {}, "cannot write " + file.string() + ": " + reason,
                "the state directory must be writable");
}

Sessions::~Sessions() {
    close(file_);
}

// Its own locks a process does not see.
std::vector<SessionRecord> Sessions::all() const {
    std::vector<SessionRecord> sessions;
    bool own_is_in = false;
    off_t from = 0;
    while (true) {
        struct flock lock = part(F_WRLCK, from, 0);
        const bool found = fcntl(file_, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK; // NOLINT
        if (!own_is_in && (!found || lock.l_start > place_of(own_.id))) {
            sessions.push_back(own_);
            own_is_in = true;
        }
        if (!found) {
            return sessions;
        }
        SessionRecord record;
        if (pread(file_, &record, sizeof record, lock.l_start) == record_size) {
            sessions.push_back(record);
        }
        from = lock.l_start + record_size;
    }
}

bool Sessions::is_there(std::uint32_t id) const {
    struct flock lock = part(F_WRLCK, place_of(id), record_size);
    return fcntl(file_, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK && // NOLINT
           lock.l_pid == static_cast<pid_t>(id);
}

// The process is held before it is looked for, so that no other one of its number is ended.
void Sessions::end(std::uint32_t id) const {
    const ProcessHandle process(static_cast<pid_t>(id));
    if (!process.exists() || !is_there(id)) {
        refuse("invalid-value", "there is no session " + std::to_string(id));
    }
    if (!process.send(SIGKILL)) {
        refuse(errno == EPERM ? "access-denied" : "operation-failed",
               "the session " + std::to_string(id) + " of another user cannot be ended");
    }
    if (!process.wait(longest_end)) {
        refuse("operation-failed", "the session " + std::to_string(id) + " does not end");
    }
}

} // namespace ocpsm::netconf
