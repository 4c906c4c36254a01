// The line system of a state directory, open for a command's work.
#ifndef OCPSM_OPEN_LINE_SYSTEM_HPP
#define OCPSM_OPEN_LINE_SYSTEM_HPP

#include <filesystem>
#include <vector>

#include "simulator/line_system.hpp"

namespace ocpsm {

// Opens what is in a directory. Throws Error for a directory without a line system, and where the database client is
// not installed.
SimulatedLineSystem open_line_system(const std::filesystem::path &state);

// Makes a line system in a directory that holds none; the directories on the way are made too.
SimulatedLineSystem make_line_system(const std::filesystem::path &state, const std::vector<int> &slots);

} // namespace ocpsm

#endif
