// How a change of configuration is taken back.
#ifndef OCPSM_UNDO_HPP
#define OCPSM_UNDO_HPP

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "framework/service.hpp"

namespace ocpsm {

struct Undo {
    PathEdits edits;
    // Refuses, see EditOptions, when one of the leaves has changed since.
    std::function<void(const std::vector<Change> &changes)> check;
};

// For the entry of the journal with a sequence number; without one, for the youngest change of configuration. Throws
// Error (refused) where there is none, and for an entry that is no such change or has been dropped.
Undo undo_of(const Service &service, const std::optional<std::uint64_t> &sequence);

} // namespace ocpsm

#endif
