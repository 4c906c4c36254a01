#include "framework/host/allocation.hpp"

#include <new>

namespace ocpsm::framework {

namespace {

thread_local std::uint64_t failed_allocations = 0;

std::new_handler previous_handler() {
    static const std::new_handler previous = std::set_new_handler(nullptr);
    return previous;
}

void note_and_go_on() {
    note_failed_allocation();
    if (const std::new_handler previous = previous_handler()) {
        previous();
        return;
    }
    throw std::bad_alloc();
}

} // namespace

Error no_memory(const std::string &path) {
    return {Error::Source::refused, "resource-denied", path, "there is not enough memory for this request",
            "try again, or ask for less at a time"};
}

void note_failed_allocation() noexcept {
    ++failed_allocations;
}

AllocationWatch::AllocationWatch() : before_(failed_allocations) {
    static const bool installed = [] {
        previous_handler();
        std::set_new_handler(note_and_go_on);
        return true;
    }();
    (void)installed;
}

bool AllocationWatch::has_failed() const noexcept {
    return failed_allocations != before_;
}

void AllocationWatch::require_none(const std::string &path) const {
    if (has_failed()) {
        throw no_memory(path);
    }
}

} // namespace ocpsm::framework
