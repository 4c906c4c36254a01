// A line system for one run of a program.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_TEMPORARY_STATE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_TEMPORARY_STATE_HPP

#include <filesystem>
#include <memory>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Keeps a line system in a fresh directory below TMPDIR (else /tmp), with the store open on it. Its end removes the
// directory, also when an exception is on its way; every write transaction must have ended before.
class TemporaryState {
public:
    explicit TemporaryState(const sysdb::Client &client, const LineSystem &system = example());

    sysdb::Store &store() const { return *store_; }
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
    std::unique_ptr<sysdb::Store> store_;
};

} // namespace ocpsm::line_system

#endif
