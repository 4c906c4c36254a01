#include "servers/gnmi/server.hpp"

#include <grpc/support/log.h>
#include <grpcpp/ext/proto_server_reflection_plugin.h>
#include <grpcpp/resource_quota.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <charconv>
#include <mutex>
#include <utility>

#include "servers/address.hpp"
#include "servers/gnmi/get.hpp"
#include "servers/gnmi/set.hpp"
#include "servers/gnmi/subscribe_call.hpp"
#include "servers/gnmi/watcher.hpp"

namespace ocpsm::gnmi {
namespace {

constexpr int max_message_bytes = 4 << 20;
constexpr int max_threads = 32;
constexpr int max_streams = 1'024;             // of one connection; more calls wait
constexpr int keepalive_milliseconds = 30'000; // after which a client that is silent is asked whether it is there
constexpr std::chrono::seconds time_to_end(2);
constexpr std::size_t journal_entries_at_a_time = 1'000;

Error bad_input(const std::string &message, const std::string &advice) {
    return {Error::Source::input, "invalid-value", {}, message, advice};
}

// ---- addresses ----

bool is_loopback(const std::string &host) {
    return host == "localhost" || host == "::1" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string::npos);
}

std::shared_ptr<grpc::ServerCredentials> credentials(const Options &options, const Address &address) {
    if (!options.tls) {
        if (!is_loopback(address.host)) {
            throw bad_input("without TLS everybody on the way to " + address.host + " could read and change requests",
                            "listen on 127.0.0.1, or name a certificate and its key");
        }
        return grpc::InsecureServerCredentials();
    }
    const bool asks_clients = !options.tls->client_authority.empty();
    grpc::SslServerCredentialsOptions ssl(asks_clients ? GRPC_SSL_REQUEST_AND_REQUIRE_CLIENT_CERTIFICATE_AND_VERIFY
                                                       : GRPC_SSL_DONT_REQUEST_CLIENT_CERTIFICATE);
    ssl.pem_root_certs = options.tls->client_authority;
    ssl.pem_key_cert_pairs.push_back({options.tls->key, options.tls->certificate});
    return grpc::SslServerCredentials(ssl);
}

// ---- calls ----

// A name or a password that nobody looks at must not look as if it protected something.
void require_no_password(const std::multimap<grpc::string_ref, grpc::string_ref> &metadata) {
    if (metadata.contains("username") || metadata.contains("password")) {
        throw Refusal(grpc::StatusCode::UNAUTHENTICATED,
                      "user names and passwords are not known here; leave them out of the metadata");
    }
}

template <class Answer>
grpc::Status status_of(const grpc::ServerContextBase &context, Answer answer) {
    try {
        require_no_password(context.client_metadata());
        answer();
        return grpc::Status::OK;
    } catch (const Refusal &refusal) {
        return refusal.status();
    } catch (const Error &error) {
        return refusal_of(error).status();
    } catch (const std::bad_alloc &) {
        return {grpc::StatusCode::RESOURCE_EXHAUSTED, "there is not enough memory"};
    } catch (const std::exception &error) {
        return Refusal(grpc::StatusCode::INTERNAL, error.what()).status();
    }
}

// Reads and edits wait for disks and other edits, on threads that the transport makes for them; subscribers wait for
// events and have none.
class Calls final : public messages::gNMI::WithCallbackMethod_Subscribe<messages::gNMI::Service> {
public:
    Calls(const ocpsm::Service &service, Watcher &watcher) : service_(service), watcher_(watcher) {}

    grpc::Status Capabilities(grpc::ServerContext *context, const messages::CapabilityRequest *,
                              messages::CapabilityResponse *response) override {
        return status_of(*context, [&] { *response = answer_capabilities(); });
    }

    grpc::Status Get(grpc::ServerContext *context, const messages::GetRequest *request,
                     messages::GetResponse *response) override {
        return status_of(*context, [&] { *response = answer_get(service_, *request); });
    }

    grpc::Status Set(grpc::ServerContext *context, const messages::SetRequest *request,
                     messages::SetResponse *response) override {
        return status_of(*context, [&] { *response = answer_set(service_, *request, context->peer()); });
    }

    grpc::ServerBidiReactor<messages::SubscribeRequest, messages::SubscribeResponse> *
    Subscribe(grpc::CallbackServerContext *context) override {
        try {
            require_no_password(context->client_metadata());
        } catch (const Refusal &refusal) {
            return SubscribeCall::refuse(watcher_, refusal);
        }
        return SubscribeCall::begin(watcher_);
    }

private:
    const ocpsm::Service &service_;
    Watcher &watcher_;
};

// ---- news ----

// Whether the journal has grown. A journal that cannot be read is news: who reads the device then is told why.
class JournalNews {
public:
    explicit JournalNews(const Service &service) : service_(service) {}

    bool operator()() {
        try {
            const std::vector<JournalEntry> entries = service_.journal(last_, journal_entries_at_a_time);
            if (!entries.empty()) {
                last_ = entries.back().sequence;
            }
            return !entries.empty();
        } catch (const std::exception &) {
            return true;
        }
    }

private:
    const Service &service_;
    std::uint64_t last_ = 0;
};

Watcher::Source source(const Service &service, const Options &options) {
    Watcher::Source source;
    source.read = [&service](const std::shared_ptr<const Snapshot> &earlier) {
        return read_everything(service, Kind::get, earlier);
    };
    source.is_news = options.is_news ? options.is_news : JournalNews(service);
    source.now = options.now ? options.now : [] { return Time(std::chrono::steady_clock::now().time_since_epoch()); };
    return source;
}

// What the library has to say is in the errors of this one; reflection is one setting for the whole process.
void prepare_library() {
    static std::once_flag once;
    std::call_once(once, [] {
        gpr_set_log_function([](gpr_log_func_args *) {});
        grpc::reflection::InitProtoReflectionServerBuilderPlugin();
    });
}

} // namespace

struct GnmiServer::Parts {
    Parts(const Service &service, const Options &options)
        : watcher(source(service, options)), calls(service, watcher) {}

    Watcher watcher;
    Calls calls;
    std::string address;
    std::unique_ptr<grpc::Server> server;
};

GnmiServer::GnmiServer(const Service &service, const Options &options) {
    const Address address = parse_address(options.address);
    const std::shared_ptr<grpc::ServerCredentials> how = credentials(options, address);
    prepare_library();
    parts_ = std::make_unique<Parts>(service, options);
    grpc::ServerBuilder builder;
    int port = 0;
    builder.AddListeningPort(options.address, how, &port);
    builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0); // two servers must not share an address unnoticed
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIME_MS, keepalive_milliseconds);
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIMEOUT_MS, keepalive_milliseconds);
    builder.AddChannelArgument(GRPC_ARG_HTTP2_MIN_RECV_PING_INTERVAL_WITHOUT_DATA_MS, keepalive_milliseconds / 3);
    builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS, max_streams);
    builder.SetMaxReceiveMessageSize(max_message_bytes);
    builder.SetResourceQuota(grpc::ResourceQuota("gnmi").SetMaxThreads(max_threads));
    builder.RegisterService(&parts_->calls);
    parts_->server = builder.BuildAndStart();
    if (!parts_->server || port == 0) {
        throw bad_input("cannot listen on " + options.address,
                        options.tls ? "is the address another program's, or are certificate and key no pair?"
                                    : "is the address another program's?");
    }
    const bool six = address.host.find(':') != std::string::npos;
    parts_->address = (six ? "[" + address.host + "]" : address.host) + ":" + std::to_string(port);
}

GnmiServer::~GnmiServer() {
    stop();
}

const std::string &GnmiServer::address() const {
    return parts_->address;
}

void GnmiServer::wake() {
    parts_->watcher.wake();
}

void GnmiServer::stop() {
    if (!parts_->server) {
        return;
    }
    parts_->watcher.stop();
    parts_->server->Shutdown(std::chrono::system_clock::now() + time_to_end);
    parts_->server->Wait();
    parts_->server.reset();
}

} // namespace ocpsm::gnmi
