#include "terminal.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

#define NCURSES_NOMACROS 1
#include <curses.h>

#include "framework/error.hpp"
#include "terminal_type.hpp"

namespace ocpsm {
namespace {

// Of a key that may begin an escape sequence: long enough for a slow line, short enough not to be noticed.
constexpr int escape_delay = 50; // milliseconds

// Rows or columns. The screen library keeps every cell of a screen several times, and gives up on a large one without a
// reason.
constexpr unsigned most_cells_across = 1000;

constexpr int escape = 0x1b;
constexpr int delete_character = 0x7f;

void require_terminal() {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) {
        throw Error(Error::Source::input, {}, {}, "standard input and output are no terminal",
                    "run it in a terminal, or print the table once with ocpsm device show");
    }
    struct winsize size {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0; // NOLINT(cppcoreguidelines-pro-type-vararg)
    if (known && (size.ws_row > most_cells_across || size.ws_col > most_cells_across)) {
        throw Error(Error::Source::input, {}, {},
                    "the terminal is too large: it has " + std::to_string(size.ws_row) + " rows and " +
                        std::to_string(size.ws_col) + " columns",
                    "make it " + std::to_string(most_cells_across) +
                        " or less each way, or print the table once with ocpsm device show");
    }
}

SCREEN *open_screen() {
    require_terminal();
    const char *name = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe)
    const std::string type = name == nullptr ? "" : name;
    const std::string advice = "set TERM to its type, e.g. xterm, or print the table once with ocpsm device show";
    const TerminalType known = terminal_type();
    if (known == TerminalType::without_screen) {
        throw Error(Error::Source::input, {}, {},
                    "this needs a terminal with a screen, and the type " + type + " has none", advice);
    }
    // Asked first, because opening the screen of an unknown type loses memory.
    SCREEN *screen = known == TerminalType::with_screen ? newterm(nullptr, stdout, stdin) : nullptr;
    if (screen == nullptr) {
        throw Error(Error::Source::input, {}, {},
                    type.empty() ? "the type of the terminal is not known"
                                 : "the terminal type " + type + " cannot be used",
                    advice);
    }
    return screen;
}

} // namespace

struct Terminal::Screen {
    SCREEN *handle;

    explicit Screen(SCREEN *opened) : handle(opened) {}
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;
    ~Screen() {
        endwin();
        delscreen(handle);
    }
};

Terminal::Terminal() : screen_(std::make_unique<Screen>(open_screen())) {
    cbreak();
    noecho();
    curs_set(0);
    set_escdelay(escape_delay);
    keypad(stdscr, true);
    nodelay(stdscr, true);
}

Terminal::~Terminal() = default;

ScreenSize Terminal::size() const {
    return {getmaxy(stdscr), getmaxx(stdscr)};
}

void Terminal::show(const std::vector<ScreenLine> &lines) const {
    const ScreenSize available = size();
    werase(stdscr);
    for (int row = 0; row < available.rows && row < static_cast<int>(lines.size()); ++row) {
        const ScreenLine &line = lines.at(static_cast<std::size_t>(row));
        wattrset(stdscr, line.highlighted ? static_cast<int>(A_REVERSE) : static_cast<int>(A_NORMAL));
        wmove(stdscr, row, 0);
        waddnstr(stdscr, line.text.c_str(), available.columns);
    }
    wattrset(stdscr, static_cast<int>(A_NORMAL));
    wrefresh(stdscr);
}

void Terminal::leave() {
    endwin();
}

KeyPress Terminal::key() {
    const int pressed = wgetch(stdscr);
    switch (pressed) {
    case ERR:
        return {Key::none};
    case KEY_UP:
        return {Key::up};
    case KEY_DOWN:
        return {Key::down};
    case KEY_ENTER:
    case '\n':
    case '\r':
        return {Key::enter};
    case escape:
        return {Key::escape};
    case KEY_BACKSPACE:
    case '\b':
    case delete_character:
        return {Key::erase};
    default:
        return pressed >= ' ' && pressed < delete_character ? KeyPress{Key::character, static_cast<char>(pressed)}
                                                            : KeyPress{Key::other};
    }
}

} // namespace ocpsm
