#include "framework/host/log_service.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace ocpsm::framework {

namespace {

// Takes a number off the front of a text; false, and the text as it was, when there is none.
bool take_number(std::string_view &text, uint32_t &number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool take(std::string_view &text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// What stands in front of the first `end`, which is taken off too; none when it does not occur.
bool take_until(std::string_view &text, char end, std::string_view &taken) {
    const auto at = text.find(end);
    if (at == std::string_view::npos) {
        return false;
    }
    taken = text.substr(0, at);
    text.remove_prefix(at + 1);
    return true;
}

bool is_walker(std::string_view function) {
    const bool generated = function.starts_with("ymap_o2n_") || function.starts_with("ymap_n2o_");
    const auto contains = [function](std::string_view kind) { return function.find(kind) != std::string_view::npos; };
    return generated && !contains("_cont_lvl") && !contains("_list_lvl") && !contains("_leaf_lvl");
}

bool is_conversion(std::string_view function) {
    return function.ends_with("_to_low") || function.ends_with("_to_high");
}

template <typename Predicate>
std::string innermost(const std::vector<std::string> &open, Predicate predicate) {
    const auto found = std::find_if(open.rbegin(), open.rend(), predicate);
    return found == open.rend() ? std::string() : *found;
}

} // namespace

TraceLine parse_trace_line(std::string_view text) {
    TraceLine line;
    std::string_view rest = text;
    std::string_view function;
    std::string_view context;
    uint32_t sequence = 0;
    uint32_t number = 0;
    if (!take(rest, "#") || !take_number(rest, sequence) || !take(rest, ": ")) {
        return line;
    }
    const bool error = rest.starts_with("ERR: ");
    if (!error && !rest.starts_with("TRC: ")) {
        return line;
    }
    rest.remove_prefix(5);
    if (!take_until(rest, ':', function) || !take_number(rest, number) || !take(rest, " ctx=") ||
        !take_until(rest, ',', context)) {
        return line;
    }
    line.sequence = sequence;
    line.error = error;
    line.function = function;
    line.line = number;
    line.message = rest;
    return line;
}

void OpenFunctions::see(const TraceLine &line) {
    if (line.error || line.function.empty()) {
        return;
    }
    if (line.message == "Start") {
        open_.emplace_back(line.function);
    } else if (line.message == "End") {
        const auto found = std::find(open_.rbegin(), open_.rend(), line.function);
        if (found != open_.rend()) {
            open_.erase(std::prev(found.base()), open_.end());
        }
    }
}

std::string OpenFunctions::walker() const {
    return innermost(open_, is_walker);
}

std::string OpenFunctions::conversion() const {
    return innermost(open_, is_conversion);
}

void KeptLines::add(LogLine line) {
    const std::size_t cost = line.text.size() + line_cost;
    if (full() || cost > room - used_) {
        drop(1);
        return;
    }
    used_ += cost;
    lines_.push_back(std::move(line));
}

std::vector<LogLine> KeptLines::take() {
    if (full()) {
        lines_.push_back({false, 0, std::to_string(dropped_) + " more lines are not kept: there is room for 64 MiB"});
    }
    used_ = 0;
    dropped_ = 0;
    return std::exchange(lines_, {});
}

} // namespace ocpsm::framework
