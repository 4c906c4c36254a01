// The terminal while a program has the whole screen.
#ifndef OCPSM_TERMINAL_HPP
#define OCPSM_TERMINAL_HPP

#include <memory>
#include <string>
#include <vector>

namespace ocpsm {

enum class Key { none, up, down, enter, escape, erase, character, other };

struct KeyPress {
    Key key = Key::none;
    char character = '\0'; // of Key::character: printable ASCII
};

struct ScreenLine {
    std::string text; // printable ASCII; what is too long for the screen is cut
    bool highlighted = false;
};

struct ScreenSize {
    int rows;
    int columns;
};

// Has the screen from its beginning to its end, which leaves the terminal as it was found. One object at a time.
class Terminal {
public:
    // Throws ocpsm::Error (input) when standard input and output are no terminal, or none that can be used.
    Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;
    ~Terminal();

    // A new size counts from the next `key` on.
    ScreenSize size() const;

    // Replaces what is on the screen.
    void show(const std::vector<ScreenLine> &lines) const;

    // Gives the terminal back as it was found, until the next `show`.
    static void leave();

    // The next key that has been pressed; does not wait.
    KeyPress key();

private:
    struct Screen; // of the screen library
    std::unique_ptr<Screen> screen_;
};

} // namespace ocpsm

#endif
