// The gNMI door. It is a library of its own, which is loaded when it is opened: no other command pays for gRPC.
#ifndef OCPSM_GNMI_DOOR_HPP
#define OCPSM_GNMI_DOOR_HPP

#include <memory>
#include <string>

#include "door.hpp"
#include "framework/service.hpp"

namespace ocpsm {

// Files in PEM, empty where there is none: without a certificate in plaintext, without an authority for any client.
struct GnmiDoorOptions {
    std::string address; // HOST:PORT; port 0: a free one
    std::string certificate;
    std::string key;
    std::string client_authority;
};

// `service` must outlive it. Throws Error (input) where its library cannot be loaded.
std::unique_ptr<Door> gnmi_door(const Service &service, const GnmiDoorOptions &options);

// What the library offers for that: a door for the caller to delete.
using MakeGnmiDoor = Door *(const Service &service, const GnmiDoorOptions &options);
inline constexpr char make_gnmi_door_name[] = "ocpsm_make_gnmi_door";

} // namespace ocpsm

#endif
