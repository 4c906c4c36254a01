#include "watch_screen.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace ocpsm {
namespace {

constexpr std::array<std::string_view, 2> keys = {
    "up/down choose a line   c cut its fibre   s splice it   l set its light",
    "p pause   < slower   > faster   q quit",
};

constexpr std::array<WatchSpeed, 10> speeds = {{
    {"0.1", 1000, 100},
    {"0.2", 500, 100},
    {"0.5", 200, 100},
    {"1", 100, 100},
    {"2", 100, 200},
    {"5", 100, 500},
    {"10", 100, 1000},
    {"20", 100, 2000},
    {"50", 100, 5000},
    {"100", 100, 10000},
}};
constexpr std::size_t usual_speed = 3;
static_assert(speeds.at(usual_speed).every == speeds.at(usual_speed).passes);

constexpr std::size_t longest_answer = 16;

} // namespace

WatchScreen::WatchScreen() : speed_(usual_speed) {}

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

void WatchScreen::go_faster() {
    speed_ = std::min(speed_ + 1, speeds.size() - 1);
}

void WatchScreen::go_slower() {
    speed_ -= speed_ == 0 ? 0 : 1;
}

const WatchSpeed &WatchScreen::speed() const {
    return speeds.at(speed_);
}

void WatchScreen::ask(std::string question) {
    question_ = std::move(question);
    answer_.clear();
}

void WatchScreen::type(char character) {
    answer_.append(answer_.size() < longest_answer ? 1 : 0, character);
}

void WatchScreen::erase() {
    answer_.resize(answer_.size() - std::min<std::size_t>(answer_.size(), 1));
}

std::string WatchScreen::take_answer() {
    question_.reset();
    return std::exchange(answer_, {});
}

std::string WatchScreen::time_text(std::string text) const {
    if (speed_ != usual_speed) {
        text.append("   speed ").append(speed().factor);
    }
    return text + (paused_ ? "   paused" : "");
}

std::vector<ScreenLine> WatchScreen::lines(ScreenSize size) const {
    std::vector<ScreenLine> screen;
    for (const TableText &line : to_text(table_)) {
        screen.push_back({line.text, line.line && 2 * *line.module + *line.line == choice_});
    }
    screen.front().text = time_text(screen.front().text);
    screen.insert(screen.end(), {{""}, {question_ ? *question_ + " " + answer_ + "_" : note_}});
    for (const std::string_view line : keys) {
        screen.push_back({std::string(line)});
    }

    // What is said about a module may be cut, the numbers may not.
    std::size_t columns = std::max(keys[0].size(), keys[1].size());
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
