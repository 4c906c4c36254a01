// What has happened to a line system, a line for each entry of its journal.
#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>

#include "columns.hpp"
#include "commands.hpp"
#include "following.hpp"
#include "line_system_service.hpp"
#include "result_document.hpp"
#include "simulator/line_system.hpp"

namespace ocpsm {
namespace {

std::string what_and_who(const JournalEntry &entry) {
    std::string text = entry.module;
    text += entry.line.empty() ? "" : " " + entry.line;
    if (entry.before != entry.after) {
        text += " " + entry.before + " -> " + entry.after;
    }
    text += entry.kind == JournalKind::lit ? " dBm" : "";
    text += entry.reason.empty() ? "" : ", " + entry.reason;
    text += entry.user.empty() ? "" : "by " + entry.user;
    return on_one_line(text);
}

std::string words(const JournalEntry &entry) {
    constexpr std::size_t sequence_width = 6;
    constexpr std::size_t clock_width = 10;
    constexpr std::size_t kind_width = 10;
    std::string text = to_the_right(std::to_string(entry.sequence), sequence_width) + "  " + date_and_time(entry.time) +
                       "  " + to_the_right(seconds(entry.clock), clock_width) + "  " +
                       to_the_left(name_of(entry.kind), kind_width) + "  " + what_and_who(entry);
    text.erase(text.find_last_not_of(' ') + 1);
    for (const Change &change : entry.changes) {
        text += "\n" + std::string(sequence_width + 2, ' ') + in_words(change);
    }
    return text + "\n";
}

class Printer {
public:
    Printer(const RequestOptions &options, std::ostream &output, std::ostream &errors)
        : options_(options), output_(output), errors_(errors), after_(options.sequence.value_or(0)) {}

    // What has come since the last time.
    void print_news(const Service &service) {
        constexpr std::size_t some = 500;
        for (auto entries = service.journal(after_, some); !entries.empty(); entries = service.journal(after_, some)) {
            warn_of_gap(entries.front().sequence);
            for (const JournalEntry &entry : entries) {
                output_ << (options_.format ? json_line(entry) : words(entry));
            }
            after_ = entries.back().sequence;
        }
    }

private:
    // Whoever begins at the beginning misses nothing.
    void warn_of_gap(std::uint64_t next) {
        if (after_ != 0 && next > after_ + 1) {
            print_warning(errors_, "entries " + std::to_string(after_ + 1) + " to " + std::to_string(next - 1) +
                                       " have been dropped from the journal");
        }
    }

    const RequestOptions &options_;
    std::ostream &output_;
    std::ostream &errors_;
    std::uint64_t after_;
};

} // namespace

int journal_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Service service = open_service(options);
    Printer printer(options, output, errors);
    do {
        printer.print_news(service);
    } while (output.flush() && options.follow && wait_for_a_step());
    return exit_done;
}

} // namespace ocpsm
