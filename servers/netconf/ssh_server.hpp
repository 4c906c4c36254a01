// OpenSSH's own server, for sessions of NETCONF and nothing else.
#ifndef OCPSM_SERVERS_NETCONF_SSH_SERVER_HPP
#define OCPSM_SERVERS_NETCONF_SSH_SERVER_HPP

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ocpsm::netconf {

struct SshOptions {
    std::filesystem::path directory; // for host keys and configuration; it is made where it is missing
    std::string address;
    std::uint16_t port = 0;
    std::filesystem::path authorized_keys; // of the user who starts the server, the only one who may come
    std::vector<std::string> session;      // the program that serves a session, by its whole path, and its arguments
};

/*
 * Public keys only, and the subsystem netconf only: no shell, command, file transfer, forwarding, password or PAM. The
 * host keys (ECDSA, Ed25519) are made once. Works for root and for any other user whose account is not locked and whose
 * shell runs commands.
 */
class SshServer {
public:
    // Returns when it listens. Throws Error (input) for what stands in the way.
    explicit SshServer(const SshOptions &options);
    SshServer(const SshServer &) = delete;
    SshServer &operator=(const SshServer &) = delete;

    // Ends it with all its sessions.
    ~SshServer();

    pid_t process() const { return process_; }

private:
    pid_t process_ = 0;
};

// The configuration of the server. Throws Error (input) for a text that it cannot hold.
std::string ssh_configuration(const SshOptions &options);

} // namespace ocpsm::netconf

#endif
