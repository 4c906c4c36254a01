#include "servers/gnmi/subscription.hpp"

#include <algorithm>

#include "servers/gnmi/get.hpp"
#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/value.hpp"

namespace ocpsm::gnmi {
namespace {

constexpr Time longest_interval = std::chrono::hours(24 * 365 * 10);

// The fields that aliases had before they were given up.
constexpr int use_aliases_field = 3;

Refusal invalid(const std::string &message, const Steps &path) {
    return {grpc::StatusCode::INVALID_ARGUMENT, message, path_text(path)};
}

// None for 0.
std::optional<Time> interval_of(std::uint64_t nanoseconds, const char *name, const Steps &path) {
    if (nanoseconds == 0) {
        return std::nullopt;
    }
    if (nanoseconds < static_cast<std::uint64_t>(shortest_interval.count())) {
        throw invalid(std::string("the ") + name + " is less than 100 ms", path);
    }
    return Time(std::min(nanoseconds, static_cast<std::uint64_t>(longest_interval.count())));
}

void require_list(const messages::SubscriptionList &list) {
    require_served(list.encoding());
    require_models(list.use_models());
    if (has_unknown_field(list, use_aliases_field)) {
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED, "aliases are not served");
    }
    if (list.qos().marking() != 0) {
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED, "packets are not marked: leave qos out");
    }
    if (list.subscription().empty()) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "a subscription list has no subscription");
    }
    if (list.subscription_size() > static_cast<int>(max_paths)) {
        throw Refusal(grpc::StatusCode::RESOURCE_EXHAUSTED,
                      "a subscription list has more than " + std::to_string(max_paths) + " subscriptions");
    }
    if (!messages::SubscriptionList::Mode_IsValid(list.mode())) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "there is no such mode of a subscription list");
    }
}

std::vector<bool> all_but(std::optional<LeafUse> left_out) {
    std::vector<bool> uses(static_cast<std::size_t>(LeafUse::measurement) + 1, true);
    if (left_out) {
        uses[static_cast<std::size_t>(*left_out)] = false;
    }
    return uses;
}

std::vector<bool> only(LeafUse use) {
    std::vector<bool> uses = all_but(use);
    uses.flip();
    return uses;
}

void add_measurements(const ModelNode &node, Steps &path, std::vector<Steps> &measurements) {
    for (const ModelNode &child : node.children) {
        path.push_back({child.name});
        if (child.kind == ModelNode::Kind::leaf && use_of(child) == LeafUse::measurement) {
            measurements.push_back(path);
        }
        add_measurements(child, path, measurements);
        path.pop_back();
    }
}

// Whether measurements are among what a path names, of whatever entries of lists.
bool covers_measurements(Steps pattern) {
    static const std::vector<Steps> all = [] {
        std::vector<Steps> measurements;
        Steps path;
        add_measurements(Model::openconfig().root, path, measurements);
        return measurements;
    }();
    for (PathStep &step : pattern) {
        step.keys.clear();
    }
    return std::any_of(all.begin(), all.end(),
                       [&pattern](const Steps &leaf) { return matched_steps(pattern, leaf).has_value(); });
}

// The first of the times `from`, `from` + `interval`, ... that is later than `now`.
Time next_after(Time from, Time interval, Time now) {
    return now < from ? from : from + interval * ((now - from) / interval + 1);
}

void earlier_of(std::optional<Time> &first, const std::optional<Time> &other) {
    if (other && (!first || *other < *first)) {
        first = other;
    }
}

// Whether it has come; then the next one is set.
bool fell_due(std::optional<Time> &next, const std::optional<Time> &interval, Time now) {
    if (!next || now < *next) {
        return false;
    }
    next = next_after(*next, *interval, now);
    return true;
}

} // namespace

bool has_unknown_field(const google::protobuf::Message &message, int number) {
    const google::protobuf::UnknownFieldSet &fields = message.GetReflection()->GetUnknownFields(message);
    for (int at = 0; at < fields.field_count(); ++at) {
        if (fields.field(at).number() == number) {
            return true;
        }
    }
    return false;
}

Subscriptions::Subscriptions(const messages::SubscriptionList &list)
    : mode_(list.mode()), updates_only_(list.updates_only()) {
    require_list(list);
    for (const messages::Subscription &subscription : list.subscription()) {
        add_groups(list, subscription);
    }
}

void Subscriptions::add_groups(const messages::SubscriptionList &list, const messages::Subscription &subscription) {
    Group group;
    group.pattern = read_path(list.prefix(), subscription.path());
    require_in_model(group.pattern);
    group.uses = all_but(std::nullopt);
    if (mode_ != messages::SubscriptionList::STREAM) {
        groups_.push_back(std::move(group));
        return;
    }
    const auto sample = interval_of(subscription.sample_interval(), "sample_interval", group.pattern);
    group.heartbeat = interval_of(subscription.heartbeat_interval(), "heartbeat_interval", group.pattern);
    group.suppress = subscription.suppress_redundant();
    switch (subscription.mode()) {
    case messages::SAMPLE:
        group.sampled = true;
        group.interval = sample.value_or(shortest_interval);
        break;
    case messages::ON_CHANGE:
        if (covers_measurements(group.pattern)) {
            group.interval = measurement_interval;
        }
        break;
    case messages::TARGET_DEFINED: {
        Group measurements = group;
        measurements.uses = only(LeafUse::measurement);
        measurements.sampled = true;
        measurements.interval = sample.value_or(measurement_interval);
        groups_.push_back(std::move(measurements));
        group.uses = all_but(LeafUse::measurement);
        break;
    }
    default:
        throw invalid("there is no such mode of a subscription", group.pattern);
    }
    groups_.push_back(std::move(group));
}

Subscriptions::Leaves Subscriptions::leaves_of(const Group &group, const Places &places) {
    Leaves leaves;
    for (std::size_t at = 0; at < places.leaves.size(); ++at) {
        const LeafPlace &place = places.leaves[at];
        if (group.uses[static_cast<std::size_t>(place.use)] && matched_steps(group.pattern, place.steps)) {
            leaves.push_back(at);
        }
    }
    return leaves;
}

void Subscriptions::send_all(const Leaves &leaves, const Snapshot &snapshot, Outbox &outbox) {
    for (const std::size_t at : leaves) {
        outbox.update(snapshot.places->leaves[at], snapshot.values[at], snapshot.time);
    }
}

void Subscriptions::start(Time now, const std::shared_ptr<const Snapshot> &snapshot, Outbox &outbox) {
    for (Group &group : groups_) {
        group.last = snapshot;
        group.leaves = leaves_of(group, *snapshot->places);
        if (group.interval) {
            group.next_sample = now + *group.interval;
        }
        if (group.heartbeat) {
            group.next_heartbeat = now + *group.heartbeat;
        }
        if (!updates_only_) {
            send_all(group.leaves, *snapshot, outbox);
        }
    }
    outbox.sync();
}

void Subscriptions::poll(const Snapshot &snapshot, Outbox &outbox) const {
    for (const Group &group : groups_) {
        send_all(leaves_of(group, *snapshot.places), snapshot, outbox);
    }
    outbox.sync();
}

std::optional<Time> Subscriptions::due() const {
    std::optional<Time> first;
    for (const Group &group : groups_) {
        earlier_of(first, group.next_sample);
        earlier_of(first, group.next_heartbeat);
    }
    return first;
}

// Sends what has changed since it looked last, or everything, and what is not there any more.
void Subscriptions::look_at(Group &group, bool everything, const std::shared_ptr<const Snapshot> &snapshot,
                            Outbox &outbox) {
    const Places &before = *group.last->places;
    const Places &now = *snapshot->places;
    if (&before == &now) {
        for (const std::size_t at : group.leaves) {
            if (everything || group.last->values[at] != snapshot->values[at]) {
                outbox.update(now.leaves[at], snapshot->values[at], snapshot->time);
            }
        }
        group.last = snapshot;
        return;
    }
    for (const std::size_t at : group.leaves) {
        if (!now.by_path.contains(before.leaves[at].path)) {
            outbox.remove(before.leaves[at], snapshot->time);
        }
    }
    Leaves leaves = leaves_of(group, now);
    for (const std::size_t at : leaves) {
        const auto found = before.by_path.find(now.leaves[at].path);
        if (everything || found == before.by_path.end() || group.last->values[found->second] != snapshot->values[at]) {
            outbox.update(now.leaves[at], snapshot->values[at], snapshot->time);
        }
    }
    group.leaves = std::move(leaves);
    group.last = snapshot;
}

void Subscriptions::step(Time now, const std::shared_ptr<const Snapshot> &snapshot, Outbox &outbox) {
    for (Group &group : groups_) {
        const bool sample = fell_due(group.next_sample, group.interval, now);
        const bool heartbeat = fell_due(group.next_heartbeat, group.heartbeat, now);
        if (!group.sampled || sample || heartbeat) {
            look_at(group, heartbeat || (group.sampled && sample && !group.suppress), snapshot, outbox);
        }
    }
}

} // namespace ocpsm::gnmi
