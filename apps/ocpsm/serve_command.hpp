// A line system that is served to other programs until the service is stopped.
#ifndef OCPSM_SERVE_COMMAND_HPP
#define OCPSM_SERVE_COMMAND_HPP

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>

#include "gnmi_door.hpp"
#include "netconf_door.hpp"

namespace ocpsm {

struct ServeOptions {
    std::filesystem::path state;
    std::filesystem::path plugin;
    std::uint32_t speed = 1; // how many times faster than time passes elsewhere the line system's does
    bool stopped = false;    // its time is left to others

    std::optional<GnmiDoorOptions> gnmi;
    std::optional<NetconfDoorOptions> netconf; // its state and plug-in are those above
};

inline constexpr std::uint32_t highest_speed = 1000;

// Makes the example where the directory holds no line system. Ends when SIGINT, SIGTERM or SIGHUP asks for it.
int serve_command(const ServeOptions &options, std::ostream &output, std::ostream &errors);

} // namespace ocpsm

#endif
