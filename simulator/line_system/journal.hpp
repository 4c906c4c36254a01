// The journal of a line system in its store: a ring of the youngest entries.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_JOURNAL_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_JOURNAL_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "framework/journal.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Of both the oldest entries are dropped for new ones.
inline constexpr std::uint64_t max_journal_entries = 10'000;
inline constexpr std::size_t max_journal_size = std::size_t{16} << 20; // bytes of their records

inline constexpr std::size_t max_user_size = 256; // bytes; a longer name is cut

// Adds an entry behind the last one, with the next sequence number. Throws ocpsm::Error: refused (too-big) for one that
// is larger than the journal, input for a journal that is damaged.
void append(sysdb::WriteTransaction &transaction, const JournalEntry &entry);

// See Service::journal and Service::last_sequence. They throw ocpsm::Error for what they read of a damaged journal.
std::vector<JournalEntry> read_journal(const sysdb::ReadTransaction &transaction, std::uint64_t after,
                                       std::size_t most);
std::uint64_t last_sequence(const sysdb::ReadTransaction &transaction);

} // namespace ocpsm::line_system

#endif
