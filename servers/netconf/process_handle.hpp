// A process that is waited for or ended, and no other one that gets its number later.
#ifndef OCPSM_SERVERS_NETCONF_PROCESS_HANDLE_HPP
#define OCPSM_SERVERS_NETCONF_PROCESS_HANDLE_HPP

#include <sys/types.h>

#include <chrono>

namespace ocpsm::netconf {

class ProcessHandle {
public:
    // Of a process that may have ended already.
    explicit ProcessHandle(pid_t process);
    ProcessHandle(ProcessHandle &&other) noexcept;
    ProcessHandle(const ProcessHandle &) = delete;
    ProcessHandle &operator=(const ProcessHandle &) = delete;
    ProcessHandle &operator=(ProcessHandle &&) = delete;
    ~ProcessHandle();

    bool exists() const { return file_ >= 0; }

    // False, with the reason in errno, where it cannot be sent.
    bool send(int signal) const;

    // Whether it has ended by then.
    bool wait(std::chrono::milliseconds longest) const;

private:
    int file_;
};

} // namespace ocpsm::netconf

#endif
