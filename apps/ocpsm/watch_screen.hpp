// What is on the screen while a line system is watched, and what the keys do to it.
#ifndef OCPSM_WATCH_SCREEN_HPP
#define OCPSM_WATCH_SCREEN_HPP

#include <cstddef>
#include <optional>
#include <string>
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

class WatchScreen {
public:
    // What is to be shown from now on. The choice stays with its line; where that has gone, it goes to the first one.
    void update(LineTable table);

    // Moves the choice. Past the last line comes the first.
    void choose_next();
    void choose_previous();

    // None when no module is fitted.
    std::optional<ChosenLine> chosen() const;

    // Stands below the table until the next note, or until modules come or go: it says which there are. Empty: nothing.
    void note(std::string text) { note_ = std::move(text); }

    // The whole screen; one line that says what is needed when it does not fit.
    std::vector<ScreenLine> lines(ScreenSize size) const;

private:
    std::size_t line_count() const { return 2 * table_.modules.size(); }
    void move(std::size_t by);

    LineTable table_;
    std::size_t choice_ = 0; // index into all lines
    std::string note_;
};

} // namespace ocpsm

#endif
