// What is done to a line system by hand, a function per kind of subcommand; exit codes and errors as in commands.hpp.
#ifndef OCPSM_DEVICE_COMMAND_HPP
#define OCPSM_DEVICE_COMMAND_HPP

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <vector>

#include "commands.hpp"
#include "simulator/line_system.hpp"

namespace ocpsm {

struct DeviceOptions {
    std::filesystem::path state;
    std::optional<Format> format; // prints the line system as it is afterwards in place of a line or a table
    std::vector<int> slots = SimulatedLineSystem::example_slots(); // to begin with
    int slot = 0;
    Line line = Line::primary;
    int light = 0; // hundredths of a dBm
    std::uint32_t milliseconds = 0;
};

// Makes a line system with modules in `slots`.
int device_init_command(const DeviceOptions &options, std::ostream &output);

// Prints the table of the line system.
int device_show_command(const DeviceOptions &options, std::ostream &output);

enum class DeviceChange { fit, pull, cut, splice, light, tick };

// Changes the line system and says in a line what has become of it.
int device_change_command(const DeviceOptions &options, DeviceChange change, std::ostream &output);

} // namespace ocpsm

#endif
