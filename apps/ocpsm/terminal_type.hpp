// What the system knows of terminals. Apart from the screen, because the library's header defines common words.
#ifndef OCPSM_TERMINAL_TYPE_HPP
#define OCPSM_TERMINAL_TYPE_HPP

namespace ocpsm {

// Whether the type that TERM names is described on this system.
bool terminal_type_is_known();

} // namespace ocpsm

#endif
