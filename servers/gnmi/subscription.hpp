// What a subscriber has asked for, and when it is to be sent.
#ifndef OCPSM_SERVERS_GNMI_SUBSCRIPTION_HPP
#define OCPSM_SERVERS_GNMI_SUBSCRIPTION_HPP

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "gnmi.pb.h"
#include "servers/gnmi/leaf.hpp"
#include "servers/gnmi/outbox.hpp"

namespace ocpsm::gnmi {

using Time = std::chrono::nanoseconds; // of a clock that never goes back

// The shortest interval that can be asked for: the line system's readings are as old at most.
inline constexpr Time shortest_interval = std::chrono::milliseconds(100);

// How often measurements are looked at where a client leaves it to us, or wants to know when they change: nothing tells
// of that.
inline constexpr Time measurement_interval = std::chrono::seconds(1);

// Whether a message has a field of this number that is none of ours.
bool has_unknown_field(const google::protobuf::Message &message, int number);

/*
 * The subscriptions of one call. Samples are due at whole intervals from the start, however late one of them was
 * taken; what fell due meanwhile is one sample. Not safe for threads.
 */
class Subscriptions {
public:
    // Throws Refusal: NOT_FOUND for a path that the model does not have, INVALID_ARGUMENT for what cannot be read, or
    // an interval that is too short, UNIMPLEMENTED for encodings, aliases and markings, RESOURCE_EXHAUSTED for too
    // many.
    explicit Subscriptions(const messages::SubscriptionList &list);

    messages::SubscriptionList::Mode mode() const { return mode_; }

    // Begins at `now`: what there is, unless only updates are wanted, and the end of that.
    void start(Time now, const std::shared_ptr<const Snapshot> &snapshot, Outbox &outbox);

    // Everything again, for a client that has asked.
    void poll(const Snapshot &snapshot, Outbox &outbox) const;

    // When something is due next whatever happens; none: never.
    std::optional<Time> due() const;

    // What has to be sent at `now`, of a stream.
    void step(Time now, const std::shared_ptr<const Snapshot> &snapshot, Outbox &outbox);

private:
    using Leaves = std::vector<std::size_t>; // numbers of places

    // Leaves that are treated alike.
    struct Group {
        Steps pattern;
        bool sampled = false; // else sent when they change
        bool suppress = false;
        std::vector<bool> uses; // of leaves, by LeafUse
        std::optional<Time> interval;
        std::optional<Time> heartbeat;
        std::optional<Time> next_sample;
        std::optional<Time> next_heartbeat;
        std::shared_ptr<const Snapshot> last; // that was looked at
        Leaves leaves;                        // of `last`
    };

    static Leaves leaves_of(const Group &group, const Places &places);
    void add_groups(const messages::SubscriptionList &list, const messages::Subscription &subscription);
    static void send_all(const Leaves &leaves, const Snapshot &snapshot, Outbox &outbox);
    static void look_at(Group &group, bool everything, const std::shared_ptr<const Snapshot> &snapshot, Outbox &outbox);

    messages::SubscriptionList::Mode mode_;
    bool updates_only_;
    std::vector<Group> groups_;
};

} // namespace ocpsm::gnmi

#endif
