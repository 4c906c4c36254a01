// A line system for one run of a program.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_TEMPORARY_STATE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_TEMPORARY_STATE_HPP

#include <filesystem>

#include "simulator/line_system/line_system.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Keeps a line system in a fresh directory below TMPDIR (else /tmp), with the store open on it. Its end closes the
// store and removes the directory, also when an exception is on its way; every transaction must have ended before.
class TemporaryState {
public:
    explicit TemporaryState(sysdb::Store &store, const LineSystem &system = example());
    TemporaryState(const TemporaryState &) = delete;
    TemporaryState &operator=(const TemporaryState &) = delete;
    ~TemporaryState();

    const std::filesystem::path &directory() const { return directory_.path; }

private:
    struct Directory {
        Directory();
        Directory(const Directory &) = delete;
        Directory &operator=(const Directory &) = delete;
        ~Directory();
        std::filesystem::path path;
    };

    Directory directory_;
    sysdb::Store &store_;
};

} // namespace ocpsm::line_system

#endif
