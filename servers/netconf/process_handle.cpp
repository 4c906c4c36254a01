#include "servers/netconf/process_handle.hpp"

#include <poll.h>
#include <unistd.h>

#include <utility>

extern "C" { // which the header of Debian 12 lacks
#include <sys/pidfd.h>
}

namespace ocpsm::netconf {

ProcessHandle::ProcessHandle(pid_t process) : file_(pidfd_open(process, 0)) {}

ProcessHandle::ProcessHandle(ProcessHandle &&other) noexcept : file_(std::exchange(other.file_, -1)) {}

ProcessHandle::~ProcessHandle() {
    if (file_ >= 0) {
        close(file_);
    }
}

bool ProcessHandle::send(int signal) const {
    return pidfd_send_signal(file_, signal, nullptr, 0) == 0;
}

bool ProcessHandle::wait(std::chrono::milliseconds longest) const {
    struct pollfd ended {
        file_, POLLIN, 0
    };
    return file_ < 0 || poll(&ended, 1, static_cast<int>(longest.count())) > 0;
}

} // namespace ocpsm::netconf
