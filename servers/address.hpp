// Where a door listens, as it is typed.
#ifndef OCPSM_SERVERS_ADDRESS_HPP
#define OCPSM_SERVERS_ADDRESS_HPP

#include <cstdint>
#include <string>

namespace ocpsm {

struct Address {
    std::string host; // without brackets
    std::uint16_t port = 0;
};

// HOST:PORT, or [HOST]:PORT where the host has colons. Throws Error (input, invalid-value).
Address parse_address(const std::string &text);

} // namespace ocpsm

#endif
