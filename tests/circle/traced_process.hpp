// Processes that are killed in the midst of what they do to a line system.
#ifndef TESTS_CIRCLE_TRACED_PROCESS_HPP
#define TESTS_CIRCLE_TRACED_PROCESS_HPP

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "line_system.hpp"

namespace circle {

// A child that stops at each of its system calls, before and after.
class TracedProcess {
public:
    // Ends with what `run` returns. It has all that this process has loaded, so that its calls are those of `run`.
    template <class Run>
    explicit TracedProcess(Run run) : child_(fork()) {
        if (child_ == 0) {
            _exit(ptrace(PTRACE_TRACEME, 0, 0, 0) == 0 && raise(SIGSTOP) == 0 ? run() : 127);
        }
        wait();
        EXPECT_TRUE(running_);
        ptrace(PTRACE_SETOPTIONS, child_, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }
    TracedProcess(const TracedProcess &) = delete;
    TracedProcess &operator=(const TracedProcess &) = delete;
    ~TracedProcess() { kill_now(); }

    // Goes on to the beginning of the next call, or of one that many later. False when the child has ended instead.
    bool next_call(int later = 0) {
        for (int left = 2 * later + (inside_ ? 2 : 1); running_ && left > 0; left -= is_call() ? 1 : 0) {
            ptrace(PTRACE_SYSCALL, child_, 0, 0);
            wait();
        }
        inside_ = true;
        return running_;
    }

    // Whether the call at whose beginning the child stands names a file or directory whose name begins so.
    bool names(const std::string &begin) const {
        __ptrace_syscall_info call{};
        ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof call, &call);
        switch (call.entry.nr) {
        case SYS_openat:
        case SYS_newfstatat:
            return text_at(call.entry.args[1]).starts_with(begin);
        case SYS_mkdir:
            return text_at(call.entry.args[0]).starts_with(begin);
        default:
            return false;
        }
    }

    void kill_now() {
        if (running_) {
            kill(child_, SIGKILL);
            while (running_) {
                wait();
            }
        }
    }

    int exit_code() const { return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }

private:
    void wait() { running_ = waitpid(child_, &status_, 0) == child_ && WIFSTOPPED(status_); }
    bool is_call() const { return running_ && WSTOPSIG(status_) == (SIGTRAP | 0x80); }

    std::string text_at(std::uint64_t address) const {
        std::string text;
        for (; text.size() < 4096; address += sizeof(long)) {
            errno = 0;
            const long word = ptrace(PTRACE_PEEKDATA, child_, address, 0);
            std::array<char, sizeof word> bytes{};
            std::memcpy(bytes.data(), &word, sizeof word);
            const std::size_t length = strnlen(bytes.data(), bytes.size());
            text.append(bytes.data(), errno == 0 ? length : 0);
            if (errno != 0 || length < bytes.size()) {
                break;
            }
        }
        return text;
    }

    pid_t child_;
    int status_ = 0;
    bool running_ = true;
    bool inside_ = false;
};

// A line system that becomes the example again whenever it is wanted.
class RestoredExample : public testing::Test {
protected:
    RestoredExample() {
        make_example(directory.path / "example");
        restore();
    }

    std::filesystem::path state() const { return directory.path / "system"; }

    void restore() const {
        std::filesystem::remove_all(state());
        std::filesystem::copy(directory.path / "example", state());
    }

    const Directory directory;
};

} // namespace circle

#endif
