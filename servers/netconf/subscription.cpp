#include "servers/netconf/subscription.hpp"

#include <string_view>
#include <utility>

#include "servers/netconf/filter.hpp"
#include "servers/netconf/modules.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr std::size_t at_a_time = 64; // entries of the journal

RequestNode own_leaf(const std::string &tag, const std::string &value) {
    return leaf(space::journal, tag, value);
}

void add(Tree &nodes, const std::string &tag, const std::string &value) {
    if (!value.empty()) {
        nodes.push_back(own_leaf(tag, value));
    }
}

RequestNode node_of(const Change &change) {
    RequestNode node = inner(space::journal, "change", {own_leaf("path", change.path)});
    if (change.before) {
        node.children.push_back(own_leaf("before", *change.before));
    }
    if (change.after) {
        node.children.push_back(own_leaf("after", *change.after));
    }
    return node;
}

RequestNode event_of(const JournalEntry &entry) {
    Tree nodes{own_leaf("sequence", std::to_string(entry.sequence)), own_leaf("clock", std::to_string(entry.clock))};
    add(nodes, "module", entry.module);
    add(nodes, "line", entry.line);
    add(nodes, "before", entry.before);
    add(nodes, "after", entry.after);
    add(nodes, "reason", entry.reason);
    add(nodes, "user", entry.user);
    for (const Change &change : entry.changes) {
        nodes.push_back(node_of(change));
    }
    return inner(space::journal, std::string(name_of(entry.kind)), std::move(nodes));
}

std::string notification(std::int64_t time, const Tree &content) {
    return "<notification xmlns=\"" + space::notification.str() + "\">\n  <eventTime>" + date_and_time(time) +
           "</eventTime>\n" + print(content, space::notification, 1) + "</notification>";
}

} // namespace

Subscription::Subscription(const Service &service, SubscriptionOptions options)
    : service_(service), options_(std::move(options)), replay_(service.last_sequence()),
      replaying_(options_.start.has_value()) {
    after_ = replaying_ ? 0 : replay_;
}

const JournalEntry *Subscription::front() {
    if (taken_ == entries_.size()) {
        entries_ = service_.journal(after_, at_a_time);
        taken_ = 0;
    }
    return taken_ == entries_.size() ? nullptr : &entries_[taken_];
}

void Subscription::pop() {
    after_ = entries_[taken_++].sequence;
}

std::optional<std::string> Subscription::told(const JournalEntry &entry) const {
    const Tree event{event_of(entry)};
    const Tree content = options_.filter ? selected(event, *options_.filter) : event;
    return content.empty() ? std::nullopt : std::optional(notification(entry.time, content));
}

std::optional<std::string> Subscription::next(std::int64_t now) {
    const JournalEntry *entry = front();
    for (; entry != nullptr && !past_stop(entry->time); entry = front()) {
        if (replaying_ && entry->sequence > replay_) {
            break;
        }
        const bool early = replaying_ && entry->time < *options_.start;
        auto text = early ? std::nullopt : told(*entry);
        pop();
        if (text) {
            return text;
        }
    }
    if (replaying_) {
        replaying_ = false;
        return notification(now, {inner(space::streams, "replayComplete", {})});
    }
    if (!ended_ && past_stop(now)) {
        ended_ = true;
        return notification(now, {inner(space::streams, "notificationComplete", {})});
    }
    return std::nullopt;
}

} // namespace ocpsm::netconf
