// What has happened to a device: the one place from which clients are told.
#ifndef OCPSM_FRAMEWORK_JOURNAL_HPP
#define OCPSM_FRAMEWORK_JOURNAL_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ocpsm {

// A leaf that an edit has changed; a leaf that was or is not there has no value.
struct Change {
    std::string path; // OpenConfig instance path
    std::optional<std::string> before;
    std::optional<std::string> after;

    bool operator==(const Change &) const = default;
};

enum class JournalKind {
    switched,   // the traffic has moved to the other line
    configured, // an edit has changed the configuration
    fitted,     // a module
    pulled,
    cut, // a fibre
    spliced,
    lit, // another light is on a fibre
};

// By kind, as people and programs read them.
inline constexpr std::array<std::string_view, 7> journal_kind_names{"switched", "configured", "fitted", "pulled",
                                                                    "cut",      "spliced",    "lit"};
static_assert(static_cast<std::size_t>(JournalKind::lit) + 1 == journal_kind_names.size());

constexpr std::string_view name_of(JournalKind kind) {
    return journal_kind_names.at(static_cast<std::size_t>(kind));
}

// One event. It was written in the transaction that made it happen.
struct JournalEntry {
    std::uint64_t sequence = 0; // from 1, without gaps
    std::int64_t time = 0;      // of day, milliseconds since 1970 (UTC)
    std::uint64_t clock = 0;    // of the device, milliseconds
    JournalKind kind = JournalKind::configured;
    std::string module = {};          // its name; empty: an edit, which may concern several
    std::string before = {};          // of switched: "PRIMARY" or "SECONDARY"; of lit: dBm
    std::string after = {};           // likewise
    std::string line = {};            // of cut, spliced and lit: "primary" or "secondary"
    std::string reason = {};          // of switched, in words
    std::string user = {};            // of configured: who asked, see EditOptions; else empty
    std::vector<Change> changes = {}; // of configured

    bool operator==(const JournalEntry &) const = default;
};

// A time of day as RFC 3339 writes it, "2026-11-21T21:09:32.123Z"; of a time that is in no year from 0 to 9999, that of
// the nearest one that is.
std::string date_and_time(std::int64_t time);

// Now, milliseconds since 1970 (UTC).
std::int64_t time_of_day();

} // namespace ocpsm

#endif
