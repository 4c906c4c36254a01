#include "servers/gnmi/subscribe_call.hpp"

#include "servers/gnmi/get.hpp"

namespace ocpsm::gnmi {
namespace {

// The field that aliases had before they were given up.
constexpr int aliases_field = 2;

grpc::Status invalid(const std::string &message) {
    return {grpc::StatusCode::INVALID_ARGUMENT, message};
}

} // namespace

grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse> *
SubscribeCall::begin(Watcher &watcher) {
    const auto call = std::make_shared<SubscribeCall>(watcher);
    call->self_ = call;
    const std::lock_guard lock(call->mutex_);
    call->reading_ = true;
    call->StartRead(&call->list_);
    return call.get();
}

grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse> *
SubscribeCall::refuse(Watcher &watcher, const Refusal &refusal) {
    const auto call = std::make_shared<SubscribeCall>(watcher);
    call->self_ = call;
    const std::lock_guard lock(call->mutex_);
    call->end_with(refusal.status());
    return call.get();
}

// ---- the watcher's side ----

std::optional<Time> SubscribeCall::due() {
    const std::lock_guard lock(mutex_);
    const bool streams = subscriptions_ && subscriptions_->mode() == messages::SubscriptionList::STREAM;
    return started_ && streams && !end_ ? subscriptions_->due() : std::nullopt;
}

void SubscribeCall::tell(Time now, const std::shared_ptr<const Snapshot> &snapshot) {
    const std::lock_guard lock(mutex_);
    if (end_ || finished_) {
        return;
    }
    if (!started_) {
        started_ = true;
        subscriptions_->start(now, snapshot, *outbox_);
        ends_when_sent_ = ends_when_sent_ || subscriptions_->mode() == messages::SubscriptionList::ONCE;
    }
    if (poll_wanted_) {
        poll_wanted_ = false;
        subscriptions_->poll(*snapshot, *outbox_);
    } else if (subscriptions_->mode() == messages::SubscriptionList::STREAM) {
        subscriptions_->step(now, snapshot, *outbox_);
    }
    if (outbox_->overflowed()) {
        end_with({grpc::StatusCode::RESOURCE_EXHAUSTED, "the subscriber is too slow for what happens"});
    }
    go_on();
}

void SubscribeCall::end(const Refusal &reason) {
    const std::lock_guard lock(mutex_);
    end_with(reason.status());
}

// ---- the transport's side ----

void SubscribeCall::OnReadDone(bool ok) {
    bool has_list = false;
    bool wants_poll = false;
    {
        const std::lock_guard lock(mutex_);
        reading_ = false;
        if (!subscriptions_) {
            ok ? read_list() : end_with(invalid("a Subscribe begins with a subscription list"));
            has_list = subscriptions_.has_value();
        } else if (!ok) { // the client has nothing more to say; a stream goes on
            ends_when_sent_ = ends_when_sent_ || subscriptions_->mode() == messages::SubscriptionList::POLL;
            go_on();
        } else {
            read_poll();
            wants_poll = poll_wanted_;
        }
    }
    // The watcher has a lock of its own, and calls this object.
    if (wants_poll) {
        watcher_.wake();
    } else if (has_list) {
        try {
            watcher_.add(shared_from_this());
        } catch (const Refusal &refusal) {
            end(refusal);
        }
    }
}

void SubscribeCall::read_list() {
    if (has_unknown_field(list_, aliases_field)) {
        end_with({grpc::StatusCode::UNIMPLEMENTED, "aliases are not served"});
        return;
    }
    if (!list_.has_subscribe()) {
        end_with(invalid("a Subscribe begins with a subscription list"));
        return;
    }
    try {
        const messages::SubscriptionList &list = list_.subscribe();
        messages::Path prefix;
        const std::size_t taken_off = write_prefix(list.prefix(), prefix);
        subscriptions_.emplace(list);
        outbox_.emplace(list.encoding(), std::move(prefix), taken_off);
        list_.Clear();
        // A poll that came together with the list must not be answered by what is sent at first.
        if (subscriptions_->mode() != messages::SubscriptionList::POLL) {
            read_next();
        }
    } catch (const Refusal &refusal) {
        end_with(refusal.status());
    }
}

// The next one is read when it has been answered: a client that does not read its answers cannot pile up polls.
void SubscribeCall::read_poll() {
    if (has_unknown_field(poll_, aliases_field)) {
        end_with({grpc::StatusCode::UNIMPLEMENTED, "aliases are not served"});
    } else if (!poll_.has_poll()) {
        end_with(invalid("a Subscribe has one subscription list, and polls behind it"));
    } else if (subscriptions_->mode() != messages::SubscriptionList::POLL) {
        end_with(invalid("a poll is for a subscription list of the mode POLL"));
    } else {
        poll_wanted_ = true;
    }
}

void SubscribeCall::read_next() {
    if (!reading_ && !end_ && !finished_) {
        reading_ = true;
        StartRead(&poll_);
    }
}

void SubscribeCall::OnWriteDone(bool ok) {
    const std::lock_guard lock(mutex_);
    writing_ = false;
    if (!ok) {
        end_with({grpc::StatusCode::CANCELLED, "the client has gone"});
        return;
    }
    const bool answered = response_.sync_response() && !poll_wanted_;
    if (answered && !ends_when_sent_ && subscriptions_->mode() == messages::SubscriptionList::POLL) {
        read_next();
    }
    go_on();
}

void SubscribeCall::OnCancel() {
    const std::lock_guard lock(mutex_);
    end_with({grpc::StatusCode::CANCELLED, "the client has gone"});
}

void SubscribeCall::OnDone() {
    watcher_.remove(this);
    const std::shared_ptr<SubscribeCall> last = std::move(self_); // the end of this object, or the watcher's copy is
}

// ---- both ----

void SubscribeCall::end_with(const grpc::Status &status) {
    if (!end_) {
        end_ = status;
    }
    go_on();
}

// Begins what can be begun. Nothing else begins a write or the end.
void SubscribeCall::go_on() {
    if (writing_ || finished_) {
        return;
    }
    if (!end_ && outbox_) {
        if (auto next = outbox_->take()) {
            response_ = std::move(*next);
            writing_ = true;
            StartWrite(&response_);
            return;
        }
        if (ends_when_sent_ && started_ && !poll_wanted_) {
            end_ = grpc::Status::OK;
        }
    }
    if (end_) {
        finished_ = true;
        Finish(*end_);
    }
}

} // namespace ocpsm::gnmi
