#include "netconf_door.hpp"

#include <optional>

#include "framework/error.hpp"
#include "framework/user.hpp"
#include "servers/address.hpp"
#include "servers/netconf/ssh_server.hpp"

namespace ocpsm {
namespace {

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
    const Address address = parse_address(options.address);
    if (address.port == 0) {
        throw Error(Error::Source::input, "invalid-value", {}, "NETCONF needs a port of its own",
                    "for example 127.0.0.1:8301");
    }
    netconf::SshOptions server;
    server.directory = std::filesystem::absolute(options.state) / "ssh";
    server.address = address.host;
    server.port = address.port;
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
