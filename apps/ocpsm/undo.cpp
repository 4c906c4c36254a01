#include "undo.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "messages.hpp"

namespace ocpsm {
namespace {

[[noreturn]] void refuse(const std::string &tag, const std::string &message, const std::string &advice) {
    throw Error(Error::Source::refused, tag, {}, message, advice);
}

JournalEntry entry_at(const Service &service, std::uint64_t sequence) {
    const std::string number = std::to_string(sequence);
    if (sequence == 0 || sequence > service.last_sequence()) {
        refuse("data-missing", "the journal has no entry " + number, "ocpsm journal shows its entries");
    }
    JournalEntry entry = service.journal(sequence - 1, 1).at(0);
    if (entry.sequence != sequence) {
        refuse("data-missing", "entry " + number + " has been dropped from the journal",
               "its oldest entry is " + std::to_string(entry.sequence));
    }
    if (entry.kind != JournalKind::configured) {
        refuse("operation-failed", "entry " + number + " is no change of configuration",
               "name an entry that says configured");
    }
    return entry;
}

// Looks backwards, some entries at a time, as far as there are any.
JournalEntry last_change(const Service &service) {
    constexpr std::uint64_t some = 100;
    bool is_last = false;
    for (std::uint64_t end = service.last_sequence(); !is_last && end > 0;) {
        const std::uint64_t begin = end - std::min(end, some);
        std::vector<JournalEntry> entries = service.journal(begin, end - begin);
        const auto found = std::find_if(entries.rbegin(), entries.rend(), [](const JournalEntry &entry) {
            return entry.kind == JournalKind::configured;
        });
        if (found != entries.rend()) {
            return std::move(*found);
        }
        is_last = entries.empty() || entries.front().sequence != begin + 1;
        end = begin;
    }
    refuse("data-missing", "the journal has no change of configuration", "");
}

PathEdit put_back(const Change &change) {
    return change.before ? PathEdit{change.path, Operation::merge, *change.before}
                         : PathEdit{change.path, Operation::remove};
}

// What an undo makes of a leaf is what the entry says, the other way round.
void require_unchanged(const JournalEntry &entry, const std::vector<Change> &changes) {
    for (const Change &was : entry.changes) {
        const auto now = std::find_if(changes.begin(), changes.end(),
                                      [&was](const Change &change) { return change.path == was.path; });
        const std::optional<std::string> &value = now == changes.end() ? was.before : now->before;
        if (value != was.after) {
            throw Error(Error::Source::refused, "operation-failed", was.path,
                        "entry " + std::to_string(entry.sequence) + " cannot be undone, the leaf has changed since: " +
                            in_words(was.after) + " -> " + in_words(value),
                        "set it by hand, or undo the later change first");
        }
    }
}

} // namespace

Undo undo_of(const Service &service, const std::optional<std::uint64_t> &sequence) {
    Undo undo;
    JournalEntry entry = sequence ? entry_at(service, *sequence) : last_change(service);
    std::transform(entry.changes.begin(), entry.changes.end(), std::back_inserter(undo.edits), put_back);
    undo.check = [entry = std::move(entry)](const std::vector<Change> &changes) { require_unchanged(entry, changes); };
    return undo;
}

} // namespace ocpsm
