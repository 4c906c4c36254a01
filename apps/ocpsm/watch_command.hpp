// The table of the line system, live in a terminal.
#ifndef OCPSM_WATCH_COMMAND_HPP
#define OCPSM_WATCH_COMMAND_HPP

#include <filesystem>

namespace ocpsm {

// Lets the time of a line system pass until the user quits. A signal that asks for the end ends the process, once the
// terminal is as it was. Throws ocpsm::Error; in-use when another process moves the time.
int watch_command(const std::filesystem::path &state);

} // namespace ocpsm

#endif
