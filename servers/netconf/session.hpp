// One session of NETCONF (RFC 6241, RFC 6242), whatever carries its bytes.
#ifndef OCPSM_SERVERS_NETCONF_SESSION_HPP
#define OCPSM_SERVERS_NETCONF_SESSION_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "framework/service.hpp"
#include "servers/netconf/frames.hpp"
#include "servers/netconf/operations.hpp"
#include "servers/netconf/sessions.hpp"

namespace ocpsm::netconf {

/*
 * Bytes of the client go in, what is sent to it comes out, a message at a time: whoever carries them asks for the next
 * one when the last has gone, so that a slow client costs no memory. Used by one thread.
 */
class Session {
public:
    // Both must outlive it.
    Session(const Service &service, const Sessions &sessions) : operations_(service, sessions), sessions_(sessions) {}

    void feed(std::string_view bytes) { frames_.feed(bytes); }
    void end_input() { input_ended_ = true; }

    // What is to be sent next, in its frame. Nothing: the session has ended, or waits for the client. `now` is the time
    // of day, milliseconds since 1970 (UTC).
    std::optional<std::string> next(std::int64_t now);

    bool ended() const { return ended_; }

    // Whether something may be sent that the client does not ask for.
    bool subscribed() { return operations_.subscription().has_value(); }

    // Why the session has ended before its client closed it; empty: it has not.
    const std::string &failure() const { return failure_; }

private:
    std::string hello() const;
    void take_hello(const std::string &message);
    std::string answer(const std::string &message, std::int64_t now);
    std::string carry_out(RequestNode &rpc, std::int64_t now);
    std::string refusal(Error error, ErrorType layer) const;
    std::optional<std::string> event(std::int64_t now);
    void fail(const std::string &reason);

    Operations operations_;
    const Sessions &sessions_;
    FrameReader frames_;
    bool greeted_ = false; // our hello has been sent
    bool known_ = false;   // the client's has come
    bool input_ended_ = false;
    bool ended_ = false;
    std::string failure_;
};

} // namespace ocpsm::netconf

#endif
