// A program on a pseudo-terminal, and what is to be seen there.
#ifndef TESTS_PROGRAM_PSEUDO_TERMINAL_HPP
#define TESTS_PROGRAM_PSEUDO_TERMINAL_HPP

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>
#include <termios.h>

// The screen of a terminal of the type xterm, as far as the sequences go that its description offers.
class Screen {
public:
    Screen(int rows, int columns);

    void resize(int rows, int columns);
    void take(std::string_view bytes);

    // The rows without the blanks at their ends.
    std::vector<std::string> rows() const;
    // The rows of which a character stands out.
    std::vector<std::string> highlighted() const;

    // Sequences that this screen does not understand: what it shows may be wrong when there are any.
    const std::string &unknown() const { return unknown_; }

    bool alternate() const { return alternate_; } // the alternate screen is shown
    bool cursor_shown() const { return cursor_shown_; }

private:
    struct Cell {
        char character = ' ';
        bool highlighted = false;
    };

    void take_one(char byte);
    void put(char character);
    void run_sequence(char command);
    void erase(int row, int from, int to);
    int parameter(std::size_t index, int absent) const;

    int row_count_;
    int column_count_;
    std::vector<std::vector<Cell>> cells_;
    int row_ = 0;
    int column_ = 0;
    bool highlight_ = false;
    bool alternate_ = false;
    bool cursor_shown_ = true;
    std::string pending_; // an escape sequence that is not complete
    std::string unknown_;
    char last_ = ' ';
};

// A child process whose input and outputs are a terminal of 24 rows and 80 columns.
class TerminalChild {
public:
    explicit TerminalChild(const std::vector<std::string> &command, const std::string &terminal_type = "xterm");
    TerminalChild(const TerminalChild &) = delete;
    TerminalChild &operator=(const TerminalChild &) = delete;
    ~TerminalChild();

    // Reads until the screen is as wanted. False when the child has ended before, or after a minute.
    bool wait_until(const std::function<bool(const Screen &)> &wanted);

    // Reads until the child has ended, and returns its status as waitpid has it.
    int wait_for_end();

    void type(std::string_view keys) const;
    void send(int signal) const;
    void resize(int rows, int columns);

    const Screen &screen() const { return screen_; }
    const std::string &output() const { return output_; } // all of it
    termios settings() const;                             // of the terminal, as they are now

private:
    bool read_some(int milliseconds);

    int terminal_ = -1;   // the master's side
    int child_side_ = -1; // kept open, so that the settings outlive the child
    pid_t child_ = -1;
    bool ended_ = false;
    int status_ = 0;
    Screen screen_{24, 80};
    std::string output_;
};

#endif
