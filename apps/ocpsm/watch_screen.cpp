#include "watch_screen.hpp"

#include <algorithm>

namespace ocpsm {
namespace {

constexpr std::string_view keys = "up/down choose a line   c cut its fibre   s splice it   q quit";

} // namespace

void WatchScreen::update(LineTable table) {
    const std::optional<ChosenLine> before = chosen();
    const auto same_slot = [](const ModuleRow &one, const ModuleRow &other) { return one.slot == other.slot; };
    if (!std::equal(table.modules.begin(), table.modules.end(), table_.modules.begin(), table_.modules.end(),
                    same_slot)) {
        note_.clear();
    }
    table_ = std::move(table);
    choice_ = 0;
    for (std::size_t i = 0; before && i < table_.modules.size(); ++i) {
        if (table_.modules[i].slot == before->slot) {
            choice_ = 2 * i + before->line;
        }
    }
}

void WatchScreen::move(std::size_t by) {
    if (line_count() != 0) {
        choice_ = (choice_ + by) % line_count();
    }
}

void WatchScreen::choose_next() {
    move(1);
}

void WatchScreen::choose_previous() {
    move(line_count() - 1);
}

std::optional<ChosenLine> WatchScreen::chosen() const {
    if (line_count() == 0) {
        return std::nullopt;
    }
    return ChosenLine{table_.modules.at(choice_ / 2).slot, choice_ % 2};
}

std::vector<ScreenLine> WatchScreen::lines(ScreenSize size) const {
    std::vector<ScreenLine> screen;
    for (const TableText &line : to_text(table_)) {
        screen.push_back({line.text, line.line && 2 * *line.module + *line.line == choice_});
    }
    screen.insert(screen.end(), {{""}, {note_}, {std::string(keys)}});

    // What is said about a module may be cut, the numbers may not.
    std::size_t columns = keys.size();
    for (const TableText &line : to_text(table_)) {
        columns = std::max(columns, line.line || !line.module ? line.text.size() : 0);
    }
    if (size.rows < static_cast<int>(screen.size()) || size.columns < static_cast<int>(columns)) {
        return {{"too small: this needs " + std::to_string(columns) + " columns and " + std::to_string(screen.size()) +
                 " rows"},
                {"make the terminal larger, or q to quit"}};
    }
    return screen;
}

} // namespace ocpsm
