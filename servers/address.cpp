#include "servers/address.hpp"

#include <charconv>
#include <string_view>
#include <system_error>

#include "framework/error.hpp"

namespace ocpsm {

Address parse_address(const std::string &text) {
    const std::size_t colon = text.rfind(':');
    if (colon != std::string::npos && colon > 0) {
        Address address{text.substr(0, colon)};
        const bool bracketed = address.host.size() > 2 && address.host.front() == '[' && address.host.back() == ']';
        if (bracketed) {
            address.host = address.host.substr(1, address.host.size() - 2);
        }
        const std::string_view port = std::string_view(text).substr(colon + 1);
        const auto [end, failure] = std::from_chars(port.data(), port.data() + port.size(), address.port);
        if (failure == std::errc() && end == port.data() + port.size() &&
            (bracketed || address.host.find(':') == std::string::npos)) {
            return address;
        }
    }
    throw Error(Error::Source::input, "invalid-value", {}, "no address to listen on: " + text,
                "write HOST:PORT, for example 127.0.0.1:9339");
}

} // namespace ocpsm
