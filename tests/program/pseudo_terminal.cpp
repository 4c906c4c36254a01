#include "pseudo_terminal.hpp"

#include <algorithm>
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

namespace {

constexpr char escape = '\x1b';

} // namespace

// ---- Screen ----

Screen::Screen(int rows, int columns) : row_count_(rows), column_count_(columns) {
    resize(rows, columns);
}

void Screen::resize(int rows, int columns) {
    row_count_ = rows;
    column_count_ = columns;
    cells_.resize(static_cast<std::size_t>(rows));
    for (auto &row : cells_) {
        row.resize(static_cast<std::size_t>(columns));
    }
    row_ = std::min(row_, rows - 1);
    column_ = std::min(column_, columns - 1);
}

void Screen::take(std::string_view bytes) {
    for (const char byte : bytes) {
        take_one(byte);
    }
}

void Screen::take_one(char byte) {
    if (pending_.empty()) {
        byte == escape ? pending_.push_back(byte) : put(byte);
        return;
    }
    pending_.push_back(byte);
    if (pending_.size() == 2) {
        if (byte != '[' && byte != '(') {
            pending_.clear(); // keypad modes and the like
        }
        return;
    }
    if (pending_.at(1) == '(') {
        pending_.clear(); // a character set
        return;
    }
    if (byte >= '@' && byte <= '~') {
        run_sequence(byte);
        pending_.clear();
    }
}

void Screen::put(char character) {
    switch (character) {
    case '\r':
        column_ = 0;
        return;
    case '\n':
        row_ = std::min(row_ + 1, row_count_ - 1);
        return;
    case '\b':
        column_ = std::max(column_ - 1, 0);
        return;
    case '\t':
        column_ = std::min((column_ / 8 + 1) * 8, column_count_ - 1);
        return;
    default:
        break;
    }
    if (character < ' ') {
        return;
    }
    if (column_ == column_count_) {
        column_ = 0;
        row_ = std::min(row_ + 1, row_count_ - 1);
    }
    cells_.at(static_cast<std::size_t>(row_)).at(static_cast<std::size_t>(column_)) = {character, highlight_};
    last_ = character;
    ++column_;
}

int Screen::parameter(std::size_t index, int absent) const {
    std::string_view parameters = std::string_view(pending_).substr(2, pending_.size() - 3);
    for (; index > 0; --index) {
        const std::size_t end = parameters.find(';');
        if (end == std::string_view::npos) {
            return absent;
        }
        parameters.remove_prefix(end + 1);
    }
    const int value = std::atoi(std::string(parameters).c_str()); // NOLINT(cert-err34-c)
    return parameters.empty() || value == 0 ? absent : value;
}

void Screen::erase(int row, int from, int to) {
    auto &cells = cells_.at(static_cast<std::size_t>(row));
    for (int column = from; column < to && column < column_count_; ++column) {
        cells.at(static_cast<std::size_t>(column)) = {};
    }
}

void Screen::run_sequence(char command) {
    const auto within = [](int value, int end) { return std::clamp(value, 0, end - 1); };
    switch (command) {
    case 'H':
        row_ = within(parameter(0, 1) - 1, row_count_);
        column_ = within(parameter(1, 1) - 1, column_count_);
        break;
    case 'd':
        row_ = within(parameter(0, 1) - 1, row_count_);
        break;
    case 'G':
        column_ = within(parameter(0, 1) - 1, column_count_);
        break;
    case 'A':
        row_ = within(row_ - parameter(0, 1), row_count_);
        break;
    case 'B':
        row_ = within(row_ + parameter(0, 1), row_count_);
        break;
    case 'C':
        column_ = within(column_ + parameter(0, 1), column_count_);
        break;
    case 'D':
        column_ = within(column_ - parameter(0, 1), column_count_);
        break;
    case 'K':
        parameter(0, 0) == 1 ? erase(row_, 0, column_ + 1) : erase(row_, column_, column_count_);
        break;
    case 'J':
        for (int row = parameter(0, 0) == 2 ? 0 : row_; row < row_count_; ++row) {
            erase(row, row == row_ && parameter(0, 0) != 2 ? column_ : 0, column_count_);
        }
        break;
    case 'X':
        erase(row_, column_, column_ + parameter(0, 1));
        break;
    case 'P': {
        auto &cells = cells_.at(static_cast<std::size_t>(row_));
        const int count = std::min(parameter(0, 1), column_count_ - column_);
        cells.erase(cells.begin() + column_, cells.begin() + column_ + count);
        cells.resize(static_cast<std::size_t>(column_count_));
        break;
    }
    case '@': {
        auto &cells = cells_.at(static_cast<std::size_t>(row_));
        cells.insert(cells.begin() + column_, static_cast<std::size_t>(parameter(0, 1)), Cell{});
        cells.resize(static_cast<std::size_t>(column_count_));
        break;
    }
    case 'M':
    case 'L': {
        const auto count = std::min(parameter(0, 1), row_count_ - row_);
        const std::vector<std::vector<Cell>> blank(static_cast<std::size_t>(count),
                                                   std::vector<Cell>(static_cast<std::size_t>(column_count_)));
        const auto removed = command == 'M' ? cells_.begin() + row_ : cells_.end() - count;
        cells_.erase(removed, removed + count);
        cells_.insert(command == 'M' ? cells_.end() : cells_.begin() + row_, blank.begin(), blank.end());
        break;
    }
    case 'b':
        for (int count = parameter(0, 1); count > 0; --count) {
            put(last_);
        }
        break;
    case 'm':
        highlight_ = pending_.find("[7") != std::string::npos || pending_.find(";7") != std::string::npos;
        break;
    case 'h':
    case 'l':
        if (pending_.find("?1049") != std::string::npos) {
            alternate_ = command == 'h';
        } else if (pending_.find("25") != std::string::npos) {
            cursor_shown_ = command == 'h';
        }
        break;
    case 't': // the window's title is put aside and taken back
        break;
    case 'r':
        if (parameter(0, 1) == 1 && parameter(1, row_count_) == row_count_) {
            break; // everything scrolls
        }
        [[fallthrough]];
    default:
        unknown_ += pending_.substr(1) + " ";
        break;
    }
}

std::vector<std::string> Screen::rows() const {
    std::vector<std::string> texts;
    for (const auto &row : cells_) {
        std::string text;
        for (const Cell &cell : row) {
            text.push_back(cell.character);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        texts.push_back(text);
    }
    return texts;
}

std::vector<std::string> Screen::highlighted() const {
    const std::vector<std::string> texts = rows();
    std::vector<std::string> found;
    for (std::size_t row = 0; row < cells_.size(); ++row) {
        if (std::any_of(cells_[row].begin(), cells_[row].end(), [](const Cell &cell) { return cell.highlighted; })) {
            found.push_back(texts.at(row));
        }
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
