#include "servers/netconf/session.hpp"

#include <algorithm>
#include <utility>

#include "servers/netconf/modules.hpp"
#include "servers/netconf/parameters.hpp"
#include "servers/netconf/rpc_error.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

bool is(const RequestNode &node, std::string_view tag) {
    return node.tag == tag && node.namespace_uri == netconf_namespace;
}

bool has_capability(const RequestNode &hello, std::string_view name) {
    const auto lists = [&](const RequestNode &list) {
        return is(list, "capabilities") &&
               std::any_of(list.children.begin(), list.children.end(), [&](const RequestNode &capability) {
                   return is(capability, "capability") && text_of(capability) == name;
               });
    };
    return std::any_of(hello.children.begin(), hello.children.end(), lists);
}

// What cannot be read is the message's fault.
Tree elements_of(const std::string &message) {
    try {
        return Service::elements_of(Text{message});
    } catch (const Error &error) {
        throw LayerError(ErrorType::rpc, error);
    }
}

std::string reply(const std::vector<RequestAttribute> &attributes, const std::string &content) {
    return "<rpc-reply xmlns=\"" + std::string(netconf_namespace) + "\"" + print(attributes) + ">\n" + content +
           "</rpc-reply>";
}

} // namespace

std::optional<std::string> Session::next(std::int64_t now) {
    if (!greeted_) {
        greeted_ = true;
        return framed(hello(), Framing::end_mark);
    }
    while (!ended_) {
        const Framing framing = frames_.framing();
        std::optional<std::string> message;
        try {
            message = frames_.next();
        } catch (const Error &error) {
            fail(error.message());
            return known_ ? std::optional(framed(reply({}, refusal(error, ErrorType::rpc)), framing)) : std::nullopt;
        }
        if (!message) {
            return event(now);
        }
        if (known_) {
            return framed(answer(*message, now), framing);
        }
        take_hello(*message);
    }
    return std::nullopt;
}

// What is to be sent when nothing of the client is left to be answered.
std::optional<std::string> Session::event(std::int64_t now) {
    if (input_ended_) {
        if (frames_.within_message()) {
            fail("the last message is not whole");
        }
        ended_ = true;
        return std::nullopt;
    }
    auto &subscription = operations_.subscription();
    if (!subscription) {
        return std::nullopt;
    }
    auto told = subscription->next(now);
    if (subscription->ended()) {
        subscription.reset();
    }
    return told ? std::optional(framed(*told, frames_.framing())) : std::nullopt;
}

void Session::fail(const std::string &reason) {
    failure_ = reason;
    ended_ = true;
}

// ---- hello ----

std::string Session::hello() const {
    std::string text = "<hello xmlns=\"" + std::string(netconf_namespace) + "\">\n  <capabilities>\n";
    for (const std::string &capability : capabilities()) {
        text += "    <capability>" + escaped(capability) + "</capability>\n";
    }
    return text + "  </capabilities>\n  <session-id>" + std::to_string(sessions_.own().id) + "</session-id>\n</hello>";
}

void Session::take_hello(const std::string &message) {
    Tree tops;
    try {
        tops = Service::elements_of(Text{message});
    } catch (const Error &error) {
        fail("the client's hello cannot be read: " + error.message());
        return;
    }
    if (tops.size() != 1 || !is(tops.front(), "hello")) {
        fail("a <hello> is expected first");
        return;
    }
    const RequestNode &hello = tops.front();
    if (std::any_of(hello.children.begin(), hello.children.end(),
                    [](const RequestNode &child) { return is(child, "session-id"); })) {
        fail("a client's hello has no session-id");
        return;
    }
    const bool chunked = has_capability(hello, "urn:ietf:params:netconf:base:1.1");
    if (!chunked && !has_capability(hello, "urn:ietf:params:netconf:base:1.0")) {
        fail("the client has neither base:1.0 nor base:1.1");
        return;
    }
    frames_.use(chunked ? Framing::chunked : Framing::end_mark);
    known_ = true;
}

// ---- requests ----

std::string Session::answer(const std::string &message, std::int64_t now) {
    std::vector<RequestAttribute> attributes;
    try {
        Tree tops = elements_of(message);
        if (tops.size() != 1 || !is(tops.front(), "rpc")) {
            if (tops.size() == 1 && is(tops.front(), "hello")) {
                fail("a second <hello>");
            }
            throw rpc_refusal("malformed-message", "", "a message is one <rpc>");
        }
        attributes = tops.front().attributes;
        return reply(attributes, carry_out(tops.front(), now));
    } catch (const LayerError &error) {
        return reply(attributes, refusal(error, error.layer()));
    } catch (const Error &error) {
        return reply(attributes, refusal(error, error.type()));
    }
}

std::string Session::carry_out(RequestNode &rpc, std::int64_t now) {
    if (std::none_of(rpc.attributes.begin(), rpc.attributes.end(), [](const RequestAttribute &attribute) {
            return attribute.name == "message-id" && attribute.namespace_uri.empty();
        })) {
        throw rpc_refusal("missing-attribute", "rpc", "an <rpc> has a message-id", "message-id");
    }
    if (rpc.value || rpc.children.empty()) {
        throw rpc_refusal("missing-element", "rpc", "an <rpc> holds an operation");
    }
    if (rpc.children.size() > 1) {
        throw rpc_refusal("bad-element", rpc.children[1].tag, "an <rpc> holds one operation");
    }
    std::string content = operations_.carry_out(std::move(rpc.children.front()), now);
    ended_ = ended_ || operations_.closed();
    return content;
}

// The tag malformed-message is one of base:1.1 (RFC 6241, appendix A).
std::string Session::refusal(Error error, ErrorType layer) const {
    if (error.tag == "malformed-message" && frames_.framing() == Framing::end_mark) {
        error.tag = "operation-failed";
    }
    return print(error, layer);
}

} // namespace ocpsm::netconf
