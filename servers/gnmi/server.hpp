/*
 * The gNMI door: a service for clients of gNMI 0.10, over gRPC.
 *
 * Plaintext is for this machine only. User names and passwords are refused: who is asked for them is whoever TLS has
 * let in. Limits: 4 MiB for a message, 4,096 operations of a Set, 1,024 paths of a Get or Subscribe, 256 subscribers,
 * 63 steps of a path, 1,024 bytes of a name or key, intervals of 100 ms and more.
 */
#ifndef OCPSM_SERVERS_GNMI_SERVER_HPP
#define OCPSM_SERVERS_GNMI_SERVER_HPP

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "framework/service.hpp"

namespace ocpsm::gnmi {

// PEM texts.
struct Tls {
    std::string certificate;           // the server's, with those between it and its authority
    std::string key;                   // of the certificate
    std::string client_authority = {}; // who has signed the certificates of clients; empty: they need none
};

struct Options {
    std::string address = "127.0.0.1:9339"; // HOST:PORT, [HOST]:PORT; port 0: a free one
    std::optional<Tls> tls = {};            // none: plaintext, on loopback only

    // Whether something has happened since it was asked last. It is asked on one thread, ten times a second while
    // somebody subscribes. None: the service's journal says so.
    std::function<bool()> is_news = {};

    // The time since some moment, of a clock that never goes back. None: the machine's.
    std::function<std::chrono::nanoseconds()> now = {};
};

class GnmiServer {
public:
    // Serves from here on. Throws Error (input) for an address that cannot be listened on, plaintext elsewhere than on
    // loopback, and TLS that cannot be used. `service` outlives the server.
    GnmiServer(const Service &service, const Options &options);
    GnmiServer(const GnmiServer &) = delete;
    GnmiServer &operator=(const GnmiServer &) = delete;
    ~GnmiServer();

    // HOST:PORT, with the port that it has.
    const std::string &address() const;

    // Subscribers are told what is new now. May be called on any thread.
    void wake();

    // Ends all calls, those that are being answered after two seconds.
    void stop();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace ocpsm::gnmi

#endif
