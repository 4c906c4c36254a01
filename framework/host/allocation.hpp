// Allocations that fail where no exception may pass: between the platform's operations and the plug-in, which goes on
// without what it did not get.
#ifndef OCPSM_FRAMEWORK_HOST_ALLOCATION_HPP
#define OCPSM_FRAMEWORK_HOST_ALLOCATION_HPP

#include <cstdint>
#include <string>

#include "framework/error.hpp"

namespace ocpsm::framework {

// What a request ends with (refused, resource-denied) at this OpenConfig path.
Error no_memory(const std::string &path);

// Notes that one has failed on this thread.
void note_failed_allocation() noexcept;

/*
 * Whether an allocation has failed on this thread since it was made: in the platform's operations, in the plug-in, or
 * in the libraries that it calls. The first one hangs itself in front of the process's new-handler, and stays there.
 */
class AllocationWatch {
public:
    AllocationWatch();

    bool has_failed() const noexcept;

    // Throws no_memory when one has failed.
    void require_none(const std::string &path) const;

private:
    std::uint64_t before_;
};

// Runs a platform operation. What it throws ends here: it is noted, and `failed` is returned.
template <typename Result, typename Operation>
Result without_exceptions(Result failed, Operation operation) noexcept {
    try {
        return operation();
    } catch (...) {
        note_failed_allocation();
        return failed;
    }
}

template <typename Operation>
void without_exceptions(Operation operation) noexcept {
    without_exceptions(0, [&operation] {
        operation();
        return 0;
    });
}

} // namespace ocpsm::framework

#endif
