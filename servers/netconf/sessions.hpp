// The sessions of one line system, of whatever processes.
#ifndef OCPSM_SERVERS_NETCONF_SESSIONS_HPP
#define OCPSM_SERVERS_NETCONF_SESSIONS_HPP

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ocpsm::netconf {

struct SessionRecord {
    std::int64_t begun = 0; // milliseconds since 1970 (UTC)
    std::uint32_t id = 0;   // of the session, which is that of its process
    std::uint32_t user = 0; // number of the system's user
};

/*
 * Registers the session of this process in a file, one session a process. A record of the file counts for as long as
 * the process that locks it lives, however that ends. Throws Error (input) when the file cannot be written.
 */
class Sessions {
public:
    explicit Sessions(const std::filesystem::path &file);
    Sessions(const Sessions &) = delete;
    Sessions &operator=(const Sessions &) = delete;
    ~Sessions();

    const SessionRecord &own() const { return own_; }

    // This one among them, in the order of their ids.
    std::vector<SessionRecord> all() const;

    // Ends the process of another session, and waits until it has ended. Throws Error: invalid-value where there is no
    // such session, access-denied where this process must not end it, operation-failed where it does not end.
    void end(std::uint32_t id) const;

private:
    bool is_there(std::uint32_t id) const;

    int file_ = -1;
    SessionRecord own_;
};

} // namespace ocpsm::netconf

#endif
