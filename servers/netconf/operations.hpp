// The operations of a session.
#ifndef OCPSM_SERVERS_NETCONF_OPERATIONS_HPP
#define OCPSM_SERVERS_NETCONF_OPERATIONS_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "framework/service.hpp"
#include "servers/netconf/sessions.hpp"
#include "servers/netconf/subscription.hpp"

namespace ocpsm::netconf {

class Operations {
public:
    // Both must outlive it.
    Operations(const Service &service, const Sessions &sessions) : service_(service), sessions_(sessions) {}

    // Carries out what stands in an <rpc>, at a time of day (milliseconds since 1970, UTC). Returns what stands in the
    // <rpc-reply>; throws Error for what is refused.
    std::string carry_out(RequestNode operation, std::int64_t now);

    // Whether the session is to end.
    bool closed() const { return closed_; }

    // What is to be told beside the answers; none: nothing was asked for.
    std::optional<Subscription> &subscription() { return subscription_; }

private:
    using Function = std::string (Operations::*)(RequestNode &operation);
    struct Row;
    static const Row rows[];

    std::string get(RequestNode &operation);
    std::string get_config(RequestNode &operation);
    std::string edit_config(RequestNode &operation);
    std::string validate(RequestNode &operation);
    std::string lock(RequestNode &operation);
    std::string unlock(RequestNode &operation);
    std::string get_schema(RequestNode &operation);
    std::string create_subscription(RequestNode &operation);
    std::string close_session(RequestNode &operation);
    std::string kill_session(RequestNode &operation);

    std::string read(const RequestNode *filter, const RequestNode *defaults, Kind kind);
    std::string edit(RequestNode &config, EditOptions options);

    const Service &service_;
    const Sessions &sessions_;
    std::shared_ptr<void> lock_; // null: not held
    std::optional<Subscription> subscription_;
    std::int64_t now_ = 0;
    bool closed_ = false;
};

} // namespace ocpsm::netconf

#endif
