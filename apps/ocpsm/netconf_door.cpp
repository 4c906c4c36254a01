#include "netconf_door.hpp"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

#include "framework/error.hpp"
#include "servers/netconf/ssh_server.hpp"
#include "user.hpp"

namespace ocpsm {
namespace {

std::uint16_t port_in(std::string_view text) {
    std::uint16_t port = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), port);
    return failure == std::errc() && end == text.data() + text.size() ? port : std::uint16_t{0};
}

class NetconfDoor : public Door {
public:
    NetconfDoor(netconf::SshOptions options, std::string address)
        : options_(std::move(options)), address_(std::move(address)) {}

    void start() override { server_.emplace(options_); }

    std::string usage() const override {
        return "NETCONF on " + address_ + ": ssh -s -p " + std::to_string(options_.port) + " " + user_name() + "@" +
               options_.address + " netconf";
    }

    void stop() noexcept override { server_.reset(); }

private:
    netconf::SshOptions options_;
    std::string address_;
    std::optional<netconf::SshServer> server_;
};

} // namespace

std::unique_ptr<Door> netconf_door(const NetconfDoorOptions &options) {
    const std::string_view address = options.address;
    const std::size_t colon = std::min(address.rfind(':'), address.size());
    std::string_view host = address.substr(0, colon);
    const std::uint16_t port = port_in(address.substr(std::min(colon + 1, address.size())));
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    if (host.empty() || port == 0) {
        throw Error(Error::Source::input, {}, {}, options.address + " is no address to listen on",
                    "write HOST:PORT, e.g. 127.0.0.1:8301");
    }
    netconf::SshOptions server;
    server.directory = std::filesystem::absolute(options.state) / "ssh";
    server.address = host;
    server.port = port;
    server.authorized_keys = std::filesystem::absolute(options.authorized_keys);
    server.session = {std::filesystem::read_symlink("/proc/self/exe").string(),
                      "netconf",
                      "--state",
                      std::filesystem::absolute(options.state).string(),
                      "--plugin",
                      std::filesystem::absolute(options.plugin).string()};
    return std::make_unique<NetconfDoor>(std::move(server), options.address);
}

} // namespace ocpsm
