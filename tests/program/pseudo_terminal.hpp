// A program on a pseudo-terminal, and what is to be seen there.
#ifndef TESTS_PROGRAM_PSEUDO_TERMINAL_HPP
#define TESTS_PROGRAM_PSEUDO_TERMINAL_HPP

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>
#include <termios.h>
#include <vterm.h>

// The screen of a terminal of the type xterm.
class Screen {
public:
    Screen(int rows, int columns);

    void resize(int rows, int columns);
    void take(std::string_view bytes);

    // The rows without the blanks at their ends.
    std::vector<std::string> rows() const;
    // The rows of which a character stands out.
    std::vector<std::string> highlighted() const;

    bool alternate() const { return alternate_; } // the alternate screen is shown
    bool cursor_shown() const { return cursor_shown_; }

private:
    struct Free {
        void operator()(VTerm *terminal) const noexcept { vterm_free(terminal); }
    };

    // Sets what the terminal says of itself.
    static int set_property(VTermProp property, VTermValue *value, void *screen);

    std::unique_ptr<VTerm, Free> terminal_;
    VTermScreen *screen_; // of the terminal
    bool alternate_ = false;
    bool cursor_shown_ = true;
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
