// One call of Subscribe.
#ifndef OCPSM_SERVERS_GNMI_SUBSCRIBE_CALL_HPP
#define OCPSM_SERVERS_GNMI_SUBSCRIBE_CALL_HPP

#include <grpcpp/support/server_callback.h>

#include <memory>
#include <mutex>
#include <optional>

#include "gnmi.grpc.pb.h"
#include "servers/gnmi/outbox.hpp"
#include "servers/gnmi/subscription.hpp"
#include "servers/gnmi/watcher.hpp"

namespace ocpsm::gnmi {

/*
 * The transport's events come on its threads, what there is to send on the watcher's. One message is on its way to the
 * client at a time, and the next is taken from the outbox when it has gone: a client that does not read costs one
 * message and an outbox.
 */
class SubscribeCall final : public grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse>,
                            public Watching,
                            public std::enable_shared_from_this<SubscribeCall> {
public:
    // It lives until the transport is done with it. `watcher` outlives it.
    static grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse> *begin(Watcher &watcher);

    // A call that is refused before anything is read.
    static grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse> *
    refuse(Watcher &watcher, const Refusal &refusal);

    explicit SubscribeCall(Watcher &watcher) : watcher_(watcher) {}

    std::optional<Time> due() override;
    void tell(Time now, const std::shared_ptr<const Snapshot> &snapshot) override;
    void end(const Refusal &reason) override;

    void OnReadDone(bool ok) override;
    void OnWriteDone(bool ok) override;
    void OnCancel() override;
    void OnDone() override;

private:
    void read_list();
    void read_poll();
    void read_next();
    void end_with(const grpc::Status &status);
    void go_on();

    Watcher &watcher_;
    std::shared_ptr<SubscribeCall> self_; // until OnDone

    std::mutex mutex_; // of all below; held while an operation is begun, never while another object is called
    // The list is in one message and each poll in another: reading a poll must not take the list away.
    messages::SubscribeRequest list_;
    messages::SubscribeRequest poll_;
    messages::SubscribeResponse response_; // on its way
    std::optional<Subscriptions> subscriptions_;
    std::optional<Outbox> outbox_;
    bool started_ = false;     // the subscriber has been told what there is
    bool poll_wanted_ = false; // and not answered yet
    bool reading_ = false;     // for the transport
    bool writing_ = false;     // likewise
    bool ends_when_sent_ = false;
    bool finished_ = false;
    std::optional<grpc::Status> end_; // how it is to end as soon as nothing is on its way
};

} // namespace ocpsm::gnmi

#endif
