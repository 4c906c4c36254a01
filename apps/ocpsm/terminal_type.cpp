#include "terminal_type.hpp"

#include <unistd.h>

#define NCURSES_NOMACROS 1
#include <curses.h>
#include <term.h>

namespace ocpsm {

TerminalType terminal_type() {
    int found = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &found) != OK) {
        return TerminalType::unknown;
    }
    const bool places = cursor_address != nullptr && clear_screen != nullptr;
    del_curterm(cur_term);
    return places ? TerminalType::with_screen : TerminalType::without_screen;
}

} // namespace ocpsm
