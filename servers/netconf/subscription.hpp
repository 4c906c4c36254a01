// What a client has asked to be told (RFC 5277).
#ifndef OCPSM_SERVERS_NETCONF_SUBSCRIPTION_HPP
#define OCPSM_SERVERS_NETCONF_SUBSCRIPTION_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "framework/service.hpp"

namespace ocpsm::netconf {

// Times are milliseconds since 1970 (UTC).
struct SubscriptionOptions {
    std::optional<Tree> filter;        // none: everything
    std::optional<std::int64_t> start; // none: from now on
    std::optional<std::int64_t> stop;
};

// Follows the journal, of which it holds a few entries at a time: what its client is too slow to take stays there, for
// as long as the journal keeps it.
class Subscription {
public:
    Subscription(const Service &service, SubscriptionOptions options);

    // The next <notification>; nothing for the time being. `now` is the time of day.
    std::optional<std::string> next(std::int64_t now);

    // Its time to stop has come, and was told.
    bool ended() const { return ended_; }

private:
    const JournalEntry *front();
    void pop();
    bool past_stop(std::int64_t time) const { return options_.stop && time > *options_.stop; }
    std::optional<std::string> told(const JournalEntry &entry) const;

    const Service &service_;
    SubscriptionOptions options_;
    std::vector<JournalEntry> entries_; // from the journal, the first `taken_` have been told
    std::size_t taken_ = 0;
    std::uint64_t after_ = 0;  // the last one that was told or left out
    std::uint64_t replay_ = 0; // the last one that had happened before
    bool replaying_;
    bool ended_ = false;
};

} // namespace ocpsm::netconf

#endif
