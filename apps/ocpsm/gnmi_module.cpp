// The library of the gNMI door.
#include <iostream>
#include <optional>

#include "gnmi_door.hpp"
#include "request_input.hpp"
#include "servers/gnmi/server.hpp"

namespace ocpsm {
namespace {

std::string content_of(const std::string &file) {
    return file.empty() ? std::string() : read_request(file, std::cin);
}

class GnmiDoor : public Door {
public:
    GnmiDoor(const Service &service, GnmiDoorOptions options) : service_(service), options_(std::move(options)) {}

    void start() override {
        gnmi::Options with;
        with.address = options_.address;
        if (!options_.certificate.empty()) {
            with.tls = {content_of(options_.certificate), content_of(options_.key),
                        content_of(options_.client_authority)};
        }
        server_.emplace(service_, with);
    }

    std::string usage() const override {
        return "gNMI on " + server_->address() + (options_.certificate.empty() ? ", plaintext" : ", TLS") +
               ": as in examples/clients/gnmi_client.py " + server_->address() + " get /aps/aps-modules";
    }

    void stop() noexcept override {
        if (server_) {
            server_->stop();
        }
    }

private:
    const Service &service_;
    GnmiDoorOptions options_;
    std::optional<gnmi::GnmiServer> server_;
};

} // namespace
} // namespace ocpsm

extern "C" [[gnu::visibility("default")]] ocpsm::Door *ocpsm_make_gnmi_door(const ocpsm::Service &service,
                                                                            const ocpsm::GnmiDoorOptions &options) {
    return new ocpsm::GnmiDoor(service, options); // NOLINT(cppcoreguidelines-owning-memory): the caller's
}
