#include "simulator/line_system/journal.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "framework/error.hpp"
#include "framework/text.hpp"

namespace ocpsm::line_system {
namespace {

using sysdb::Table;

constexpr std::string_view head_record = "head";

// By JournalKind.
constexpr std::array<char, 7> letters = {'s', 'e', 'f', 'p', 'c', 'w', 'd'};
static_assert(static_cast<std::size_t>(JournalKind::lit) + 1 == letters.size());

// The members of an entry that are texts, in the order in which they are kept.
constexpr std::array texts = {&JournalEntry::module, &JournalEntry::before, &JournalEntry::after,
                              &JournalEntry::line,   &JournalEntry::reason, &JournalEntry::user};

[[noreturn]] void refuse_damaged(const std::string &record) {
    throw Error(Error::Source::input, "operation-failed", "",
                "the journal of the line system is damaged: its record " + record + " cannot be understood",
                "restore the directory from a copy or create a new line system");
}

// The order of these is that of the entries.
std::string record_of(std::uint64_t sequence) {
    constexpr std::size_t digits = 12;
    const std::string number = std::to_string(sequence);
    return std::string(digits - std::min(digits, number.size()), '0') + number;
}

// ---- texts ----
//
// An entry is a letter for its kind, the time of day and the clock, each with a blank behind it, and its texts, each
// behind its length in bytes and a colon: whatever they hold says nothing about where they end. Of a change, what is
// absent is a hyphen.

void append_number(std::string &bytes, std::int64_t number) {
    bytes.append(std::to_string(number)).append(1, ' ');
}

void append_text(std::string &bytes, std::string_view text) {
    bytes.append(std::to_string(text.size())).append(1, ':').append(text);
}

void append_text(std::string &bytes, const std::optional<std::string> &text) {
    text ? append_text(bytes, std::string_view(*text)) : static_cast<void>(bytes.append(1, '-'));
}

std::string encoded(const JournalEntry &entry) {
    std::string bytes(1, letters.at(static_cast<std::size_t>(entry.kind)));
    append_number(bytes, entry.time);
    bytes.append(std::to_string(entry.clock)).append(1, ' ');
    for (const auto text : texts) {
        append_text(bytes, std::string_view(entry.*text));
    }
    for (const Change &change : entry.changes) {
        append_text(bytes, std::string_view(change.path));
        append_text(bytes, change.before);
        append_text(bytes, change.after);
    }
    return bytes;
}

// Takes what it reads from the front of the bytes. Each returns false for what was not written by the above.
class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    bool at_end() const { return bytes_.empty(); }

    bool kind(JournalKind &kind) {
        const auto *const letter =
            bytes_.empty() ? letters.end() : std::find(letters.begin(), letters.end(), bytes_.front());
        if (letter == letters.end()) {
            return false;
        }
        kind = static_cast<JournalKind>(letter - letters.begin());
        bytes_.remove_prefix(1);
        return true;
    }

    template <class Number>
    bool number(Number &number, char end) {
        const auto [next, failure] = std::from_chars(bytes_.data(), bytes_.data() + bytes_.size(), number);
        bytes_.remove_prefix(static_cast<std::size_t>(next - bytes_.data()));
        return failure == std::errc() && take(end);
    }

    bool text(std::string &text) {
        std::size_t size = 0;
        if (!number(size, ':') || size > bytes_.size()) {
            return false;
        }
        text = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return true;
    }

    bool text(std::optional<std::string> &found) { return take('-') || text(found.emplace()); }

private:
    bool take(char wanted) {
        const bool is_there = bytes_.starts_with(wanted);
        bytes_.remove_prefix(is_there ? 1 : 0);
        return is_there;
    }

    std::string_view bytes_;
};

std::optional<JournalEntry> decoded(std::string_view bytes) {
    JournalEntry entry;
    Reader reader(bytes);
    bool fine = reader.kind(entry.kind) && reader.number(entry.time, ' ') && reader.number(entry.clock, ' ');
    for (const auto text : texts) {
        fine = fine && reader.text(entry.*text);
    }
    while (fine && !reader.at_end()) {
        Change &change = entry.changes.emplace_back();
        fine = reader.text(change.path) && reader.text(change.before) && reader.text(change.after);
    }
    return fine ? std::optional(std::move(entry)) : std::nullopt;
}

// ---- the ring ----

struct Head {
    std::uint64_t first = 1; // the oldest entry that is kept
    std::uint64_t last = 0;  // the youngest one
    std::size_t size = 0;    // of the records, bytes

    std::uint64_t count() const { return last - first + 1; }
};

Head head_of(const sysdb::ReadTransaction &transaction) {
    Head head;
    if (const auto text = transaction.get(Table::journal, head_record)) {
        Reader reader(*text);
        const bool fine = reader.number(head.first, ' ') && reader.number(head.last, ' ') &&
                          reader.number(head.size, ' ') && reader.at_end();
        if (!fine || head.first == 0 || head.first > head.last || head.count() > max_journal_entries) {
            refuse_damaged(std::string(head_record));
        }
    }
    return head;
}

std::string_view bytes_of(const sysdb::ReadTransaction &transaction, const std::string &record) {
    const auto bytes = transaction.get(Table::journal, record);
    if (!bytes) {
        refuse_damaged(record);
    }
    return *bytes;
}

void drop_oldest(sysdb::WriteTransaction &transaction, Head &head) {
    const std::string record = record_of(head.first++);
    head.size -= std::min(head.size, bytes_of(transaction, record).size());
    transaction.erase(Table::journal, record);
}

} // namespace

void append(sysdb::WriteTransaction &transaction, const JournalEntry &entry) {
    const std::string bytes = encoded(entry);
    if (bytes.size() > max_journal_size) {
        throw Error(Error::Source::refused, "too-big", "", "the change is too large for the journal",
                    "make it in several steps");
    }
    Head head = head_of(transaction);
    ++head.last;
    head.size += bytes.size();
    while (head.count() > max_journal_entries || head.size > max_journal_size) {
        drop_oldest(transaction, head);
    }
    transaction.put(Table::journal, record_of(head.last), bytes);
    std::string text;
    for (const std::uint64_t number : {head.first, head.last, std::uint64_t{head.size}}) {
        text.append(std::to_string(number)).append(1, ' ');
    }
    transaction.put(Table::journal, head_record, text);
}

std::vector<JournalEntry> read_journal(const sysdb::ReadTransaction &transaction, std::uint64_t after,
                                       std::size_t most) {
    const Head head = head_of(transaction);
    std::vector<JournalEntry> entries;
    for (std::uint64_t next = std::max(head.first, after + 1);
         after < head.last && next <= head.last && entries.size() < most; ++next) {
        const std::string record = record_of(next);
        std::optional<JournalEntry> entry = decoded(bytes_of(transaction, record));
        if (!entry) {
            refuse_damaged(record);
        }
        entry->sequence = next;
        entries.push_back(std::move(*entry));
    }
    return entries;
}

std::uint64_t last_sequence(const sysdb::ReadTransaction &transaction) {
    return head_of(transaction).last;
}

} // namespace ocpsm::line_system
