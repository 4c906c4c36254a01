#include "servers/netconf/operations.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "framework/user.hpp"
#include "servers/netconf/filter.hpp"
#include "servers/netconf/modules.hpp"
#include "servers/netconf/parameters.hpp"
#include "servers/netconf/rpc_error.hpp"
#include "servers/netconf/selection.hpp"
#include "servers/netconf/state.hpp"
#include "servers/netconf/times.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr char done[] = "  <ok/>\n";

Defaults defaults_named(const RequestNode *mode) {
    const std::string name = mode == nullptr ? "explicit" : text_of(*mode);
    if (name != "explicit" && name != "report-all" && name != "trim") {
        throw protocol_refusal("invalid-value", "with-defaults", "there is no mode \"" + name + "\" of defaults",
                               "explicit, report-all or trim");
    }
    return name == "explicit" ? Defaults::as_set : name == "trim" ? Defaults::trimmed : Defaults::all;
}

// The nodes of a <config>, which holds no text.
Tree content_of(RequestNode &config) {
    if (config.value) {
        throw protocol_refusal("bad-element", config.tag, "<" + config.tag + "> holds elements, no text");
    }
    return std::move(config.children);
}

// Replacing the configuration by nothing says so of the model's top node.
Tree nothing() {
    const Model &model = Model::openconfig();
    RequestNode top = inner(model.namespace_uri, model.root.children.front().name, {});
    top.operation = Operation::replace;
    return {std::move(top)};
}

std::optional<std::int64_t> time_in(const Parameters &parameters, std::string_view tag) {
    if (parameters.find(tag) == nullptr) {
        return std::nullopt;
    }
    const auto time = milliseconds_of(parameters.value(tag));
    if (!time) {
        throw protocol_refusal("bad-element", std::string(tag), "\"" + parameters.value(tag) + "\" is no date and time",
                               "write 2026-11-21T20:15:00Z");
    }
    return time;
}

} // namespace

struct Operations::Row {
    std::string_view name;
    const NamespaceName &space;
    Function function;
};

const Operations::Row Operations::rows[] = {
    {"get", space::netconf, &Operations::get},
    {"get-config", space::netconf, &Operations::get_config},
    {"edit-config", space::netconf, &Operations::edit_config},
    {"validate", space::netconf, &Operations::validate},
    {"lock", space::netconf, &Operations::lock},
    {"unlock", space::netconf, &Operations::unlock},
    {"get-schema", space::monitoring, &Operations::get_schema},
    {"create-subscription", space::notification, &Operations::create_subscription},
    {"close-session", space::netconf, &Operations::close_session},
    {"kill-session", space::netconf, &Operations::kill_session},
};

std::string Operations::carry_out(RequestNode operation, std::int64_t now) {
    now_ = now;
    const auto row = std::find_if(std::begin(rows), std::end(rows), [&operation](const Row &each) {
        return each.name == operation.tag && each.space == operation.namespace_uri;
    });
    if (row == std::end(rows)) {
        throw protocol_refusal("operation-not-supported", operation.tag,
                               "there is no operation " + operation.tag + " of the namespace \"" +
                                   operation.namespace_uri.str() + "\"");
    }
    return (this->*row->function)(operation);
}

// ---- reads ----

std::string Operations::get(RequestNode &operation) {
    const Parameters parameters(operation, {{"filter"}, {"with-defaults", space::defaults}});
    return read(parameters.find("filter"), parameters.find("with-defaults"), Kind::get);
}

std::string Operations::get_config(RequestNode &operation) {
    const Parameters parameters(operation, {{"source"}, {"filter"}, {"with-defaults", space::defaults}});
    parameters.require_running("source");
    return read(parameters.find("filter"), parameters.find("with-defaults"), Kind::get_config);
}

std::string Operations::read(const RequestNode *filter, const RequestNode *defaults, Kind kind) {
    Options options;
    options.defaults = defaults_named(defaults);
    const Selected wanted = selection_of(filter);
    std::string data;
    if (wanted.device) {
        const ReadResult result = service_.read(*wanted.device, kind, options);
        if (result.error) {
            throw Error(*result.error);
        }
        data = result.answer.print(Format::xml);
    }
    if (kind == Kind::get && (!wanted.own || !wanted.own->empty())) {
        const Tree state = server_state(service_, sessions_);
        data += print(wanted.own ? selected(state, *wanted.own) : state, space::netconf);
    }
    return data.empty() ? "  <data/>\n" : "  <data>\n" + data + "  </data>\n";
}

std::string Operations::get_schema(RequestNode &operation) {
    const Parameters parameters(operation, {{"identifier"}, {"version"}, {"format"}});
    const std::string name = text_of(parameters.required("identifier"));
    const std::string version = parameters.value("version");
    const std::string format = parameters.value("format");
    if (!format.empty() && format.substr(format.find(':') + 1) != "yang") {
        throw protocol_refusal("invalid-value", "format", "there is no schema in the format " + format, "yang");
    }
    for (const YangModule &model : modules()) {
        if (model.name == name && (version.empty() || model.revision == version)) {
            return "  <data xmlns=\"" + space::monitoring.str() + "\">" + escaped(model.text) + "</data>\n";
        }
    }
    throw protocol_refusal("invalid-value", version.empty() ? "identifier" : "version",
                           "there is no module " + name + (version.empty() ? "" : " of revision " + version),
                           "/netconf-state/schemas has those that there are");
}

// ---- edits ----

// What goes wrong changes nothing, whatever the error-option says.
std::string Operations::edit_config(RequestNode &operation) {
    const Parameters parameters(operation,
                                {{"target"}, {"default-operation"}, {"test-option"}, {"error-option"}, {"config"}});
    parameters.require_running("target");
    parameters.choice("error-option", {"stop-on-error", "continue-on-error", "rollback-on-error"});
    EditOptions options;
    options.dry_run = parameters.choice("test-option", {"test-then-set", "set", "test-only"}) == "test-only";
    const std::string other = parameters.choice("default-operation", {"merge", "replace", "none"});
    options.default_operation = other == "merge"     ? DefaultOperation::merge
                                : other == "replace" ? DefaultOperation::replace
                                                     : DefaultOperation::none;
    return edit(parameters.required("config"), options);
}

std::string Operations::edit(RequestNode &config, EditOptions options) {
    options.user = "netconf " + user_name(sessions_.own().user);
    Tree tops = content_of(config);
    if (tops.empty() && options.default_operation == DefaultOperation::replace) {
        tops = nothing();
    }
    if (!tops.empty()) {
        const EditResult result = service_.edit(std::move(tops), options);
        if (result.error) {
            throw Error(*result.error);
        }
    }
    return done;
}

// What is running has been checked when it was set.
std::string Operations::validate(RequestNode &operation) {
    const Parameters parameters(operation, {{"source"}});
    RequestNode &source = parameters.required("source");
    if (source.children.size() == 1 && source.children.front().tag == "config" &&
        source.children.front().namespace_uri == operation.namespace_uri) {
        EditOptions options;
        options.dry_run = true;
        return edit(source.children.front(), options);
    }
    parameters.require_running("source");
    return done;
}

// ---- locks ----

std::string Operations::lock(RequestNode &operation) {
    Parameters(operation, {{"target"}}).require_running("target");
    lock_ = service_.lock();
    return done;
}

std::string Operations::unlock(RequestNode &operation) {
    Parameters(operation, {{"target"}}).require_running("target");
    if (lock_ == nullptr) {
        throw protocol_refusal("operation-failed", "", "this session has not locked the configuration");
    }
    lock_.reset();
    return done;
}

// ---- sessions ----

std::string Operations::close_session(RequestNode &operation) {
    const Parameters none(operation, {});
    lock_.reset();
    closed_ = true;
    return done;
}

std::string Operations::kill_session(RequestNode &operation) {
    const Parameters parameters(operation, {{"session-id"}});
    const std::string text = text_of(parameters.required("session-id"));
    std::uint32_t id = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (failure != std::errc() || end != text.data() + text.size() || id == 0) {
        throw protocol_refusal("invalid-value", "session-id", "\"" + text + "\" is no number of a session");
    }
    if (id == sessions_.own().id) {
        throw protocol_refusal("invalid-value", "session-id", "a session does not kill itself",
                               "end it with <close-session/>");
    }
    sessions_.end(id);
    return done;
}

// ---- notifications ----

std::string Operations::create_subscription(RequestNode &operation) {
    const Parameters parameters(operation, {{"stream"}, {"filter"}, {"startTime"}, {"stopTime"}});
    if (subscription_) {
        throw protocol_refusal("in-use", "", "this session has a subscription already");
    }
    parameters.choice("stream", {"NETCONF"});
    SubscriptionOptions options;
    options.start = time_in(parameters, "startTime");
    options.stop = time_in(parameters, "stopTime");
    if (options.start && *options.start > now_) {
        throw protocol_refusal("bad-element", "startTime", "the startTime is still to come");
    }
    if (options.stop && !options.start) {
        throw protocol_refusal("missing-element", "startTime", "a stopTime needs a startTime");
    }
    if (options.stop && *options.stop < *options.start) {
        throw protocol_refusal("bad-element", "stopTime", "the stopTime is before the startTime");
    }
    if (const RequestNode *filter = parameters.find("filter")) {
        options.filter = event_filter_of(*filter);
    }
    subscription_.emplace(service_, std::move(options));
    return done;
}

} // namespace ocpsm::netconf
