// What is on the screen while a line system is watched, and what the keys do to it.
#ifndef OCPSM_WATCH_SCREEN_HPP
#define OCPSM_WATCH_SCREEN_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "line_table.hpp"
#include "terminal.hpp"

namespace ocpsm {

// A line of a module: its slot, and 0 for the primary, 1 for the secondary line.
struct ChosenLine {
    int slot;
    std::size_t line;

    bool operator==(const ChosenLine &) const = default;
};

// How fast the time of a line system passes: so much of it at a time, so often.
struct WatchSpeed {
    std::string_view factor;
    std::uint32_t every;  // milliseconds
    std::uint32_t passes; // milliseconds of the line system
};

class WatchScreen {
public:
    WatchScreen();

    // What is to be shown from now on. The choice stays with its line; where that has gone, it goes to the first one.
    void update(LineTable table);

    // Moves the choice. Past the last line comes the first.
    void choose_next();
    void choose_previous();

    // None when no module is fitted.
    std::optional<ChosenLine> chosen() const;

    // Stands below the table until the next note, or until modules come or go: it says which there are. Empty: nothing.
    void note(std::string text) { note_ = std::move(text); }

    // The time, which a new screen lets pass as fast as anywhere.
    void pause_or_go_on() { paused_ = !paused_; }
    bool paused() const { return paused_; }
    void go_faster();
    void go_slower();
    const WatchSpeed &speed() const;

    // A question below the table, and the answer as it is typed, which is short. The note comes back when it is closed.
    void ask(std::string question);
    bool asks() const { return question_.has_value(); }
    void type(char character);
    void erase();
    // Closes it and returns the answer.
    std::string take_answer();

    // The whole screen; one line that says what is needed when it does not fit.
    std::vector<ScreenLine> lines(ScreenSize size) const;

private:
    std::size_t line_count() const { return 2 * table_.modules.size(); }
    void move(std::size_t by);

    LineTable table_;
    std::size_t choice_ = 0; // index into all lines
    std::string note_;
    std::optional<std::string> question_;
    std::string answer_;
    bool paused_ = false;
    std::size_t speed_; // index into all speeds

    std::string time_text(std::string text) const;
};

} // namespace ocpsm

#endif
