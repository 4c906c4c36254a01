#include "terminal_type.hpp"

#include <unistd.h>

#define NCURSES_NOMACROS 1
#include <curses.h>
#include <term.h>

namespace ocpsm {

bool terminal_type_is_known() {
    int found = 0;
    return setupterm(nullptr, STDOUT_FILENO, &found) == OK && del_curterm(cur_term) == OK;
}

} // namespace ocpsm
