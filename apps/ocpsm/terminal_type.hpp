// What the system knows of terminals. Apart from the screen, because the library's header defines common words.
#ifndef OCPSM_TERMINAL_TYPE_HPP
#define OCPSM_TERMINAL_TYPE_HPP

namespace ocpsm {

enum class TerminalType {
    unknown,        // not described on this system
    without_screen, // nothing can be put to a place on it, as on paper
    with_screen,
};

// The one that TERM names.
TerminalType terminal_type();

} // namespace ocpsm

#endif
