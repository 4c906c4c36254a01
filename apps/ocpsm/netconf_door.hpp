// The NETCONF door: OpenSSH's server, with a process of this program for each session.
#ifndef OCPSM_NETCONF_DOOR_HPP
#define OCPSM_NETCONF_DOOR_HPP

#include <filesystem>
#include <memory>
#include <string>

#include "door.hpp"

namespace ocpsm {

struct NetconfDoorOptions {
    std::string address;         // HOST:PORT, [HOST]:PORT
    std::string authorized_keys; // a file, of the user who serves
    std::filesystem::path state;
    std::filesystem::path plugin;
};

// Throws Error (input) for an address that is none.
std::unique_ptr<Door> netconf_door(const NetconfDoorOptions &options);

} // namespace ocpsm

#endif
