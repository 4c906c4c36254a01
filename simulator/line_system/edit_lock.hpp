// The lock of a line system's configuration.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_EDIT_LOCK_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_EDIT_LOCK_HPP

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "framework/lock.hpp"

namespace ocpsm::line_system {

// A lock of the fcntl kind on a file of the directory: it tells which process has it, and ends with that. The file
// stays open once it has been looked at, because a process that closes it gives the lock back. Its functions may be
// called on any thread.
class EditLock {
public:
    explicit EditLock(std::filesystem::path directory) : name_(std::move(directory) / "edit.lock") {}
    EditLock(const EditLock &) = delete;
    EditLock &operator=(const EditLock &) = delete;
    ~EditLock();

    // Held for as long as the result lives, which must not outlive this. Throws Error: refused (lock-denied) with the
    // holder, input when the file cannot be made.
    std::shared_ptr<void> take();

    // The process that holds it, which may be this one.
    std::optional<LockHolder> holder();

    // Throws Error (refused, in-use) while another process holds it.
    void check();

private:
    bool open(int flags);
    std::uint32_t other_holder();
    void give_back();

    std::filesystem::path name_;
    std::mutex mutex_;
    int file_ = -1;
    bool held_ = false;
};

} // namespace ocpsm::line_system

#endif
