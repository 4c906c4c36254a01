#include "pseudo_terminal.hpp"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

// ---- Screen ----

Screen::Screen(int rows, int columns)
    : terminal_(vterm_new(rows, columns)), screen_(vterm_obtain_screen(terminal_.get())) {
    static const VTermScreenCallbacks callbacks = [] {
        VTermScreenCallbacks all{};
        all.settermprop = set_property;
        return all;
    }();
    vterm_screen_set_callbacks(screen_, &callbacks, this);
    vterm_screen_enable_altscreen(screen_, 1);
    vterm_screen_reset(screen_, 1);
}

int Screen::set_property(VTermProp property, VTermValue *value, void *screen) {
    auto &self = *static_cast<Screen *>(screen);
    if (property == VTERM_PROP_ALTSCREEN) {
        self.alternate_ = value->boolean != 0;
    } else if (property == VTERM_PROP_CURSORVISIBLE) {
        self.cursor_shown_ = value->boolean != 0;
    }
    return 1;
}

void Screen::resize(int rows, int columns) {
    vterm_set_size(terminal_.get(), rows, columns);
}

void Screen::take(std::string_view bytes) {
    vterm_input_write(terminal_.get(), bytes.data(), bytes.size());
}

std::vector<std::string> Screen::rows() const {
    int row_count = 0;
    int column_count = 0;
    vterm_get_size(terminal_.get(), &row_count, &column_count);
    std::vector<std::string> texts;
    for (int row = 0; row < row_count; ++row) {
        std::string text(static_cast<std::size_t>(column_count), '\0');
        text.resize(vterm_screen_get_text(screen_, text.data(), text.size(), {row, row + 1, 0, column_count}));
        text.erase(text.find_last_not_of(' ') + 1);
        texts.push_back(text);
    }
    return texts;
}

std::vector<std::string> Screen::highlighted() const {
    std::vector<std::string> found;
    int row = 0;
    for (const std::string &text : rows()) {
        for (int column = 0; column < static_cast<int>(text.size()); ++column) {
            VTermScreenCell cell{};
            vterm_screen_get_cell(screen_, {row, column}, &cell);
            if (cell.attrs.reverse != 0) {
                found.push_back(text);
                break;
            }
        }
        ++row;
    }
    return found;
}

// ---- TerminalChild ----

TerminalChild::TerminalChild(const std::vector<std::string> &command, const std::string &terminal_type) {
    winsize size{24, 80, 0, 0};
    if (openpty(&terminal_, &child_side_, nullptr, nullptr, &size) != 0) {
        throw std::runtime_error("openpty failed");
    }
    fcntl(terminal_, F_SETFD, FD_CLOEXEC);
    std::vector<char *> arguments;
    std::vector<std::string> words = command;
    arguments.reserve(words.size() + 1);
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    child_ = fork();
    if (child_ == 0) {
        setenv("TERM", terminal_type.c_str(), 1);
        login_tty(child_side_);
        execv(arguments.front(), arguments.data());
        _exit(127);
    }
}

TerminalChild::~TerminalChild() {
    if (!ended_) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    close(terminal_);
    close(child_side_);
}

bool TerminalChild::read_some(int milliseconds) {
    pollfd input{terminal_, POLLIN, 0};
    if (poll(&input, 1, milliseconds) <= 0) {
        return false;
    }
    std::array<char, 4096> buffer{};
    const ssize_t count = read(terminal_, buffer.data(), buffer.size());
    if (count <= 0) {
        return false;
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    output_ += bytes;
    screen_.take(bytes);
    return true;
}

bool TerminalChild::wait_until(const std::function<bool(const Screen &)> &wanted) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (std::chrono::steady_clock::now() < end) {
        // What comes in one go belongs together.
        while (read_some(20)) {
        }
        if (wanted(screen_)) {
            return true;
        }
        if (!ended_ && waitpid(child_, &status_, WNOHANG) == child_) {
            ended_ = true;
        } else if (ended_) {
            return false;
        }
    }
    return false;
}

int TerminalChild::wait_for_end() {
    wait_until([this](const Screen &) { return ended_; });
    if (!ended_) {
        throw std::runtime_error("the child does not end");
    }
    while (read_some(0)) {
    }
    return status_;
}

void TerminalChild::type(std::string_view keys) const {
    if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::runtime_error("cannot type");
    }
}

void TerminalChild::send(int signal) const {
    kill(child_, signal);
}

void TerminalChild::resize(int rows, int columns) {
    winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    screen_.resize(rows, columns);
    ioctl(terminal_, TIOCSWINSZ, &size);
}

termios TerminalChild::settings() const {
    termios settings{};
    if (tcgetattr(child_side_, &settings) != 0) {
        throw std::runtime_error("tcgetattr failed");
    }
    return settings;
}
