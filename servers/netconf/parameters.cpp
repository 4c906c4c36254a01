#include "servers/netconf/parameters.hpp"

#include <algorithm>

#include "servers/netconf/rpc_error.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

bool is(const RequestNode &node, const Parameters::Known &known, const RequestNode &operation) {
    return node.tag == known.tag && (known.namespace_uri.empty() ? node.namespace_uri == operation.namespace_uri
                                                                 : node.namespace_uri == known.namespace_uri);
}

} // namespace

Parameters::Parameters(RequestNode &operation, std::initializer_list<Known> known) : operation_(operation) {
    if (!operation.attributes.empty()) {
        const std::string &name = operation.attributes.front().name;
        throw LayerError(ErrorType::protocol, Error(Error::Source::input, "unknown-attribute", "",
                                                    "<" + operation.tag + "> has no attribute " + name)
                                                  .of_node(operation.tag)
                                                  .of_attribute(name));
    }
    if (operation.value) {
        throw protocol_refusal("bad-element", operation.tag, "<" + operation.tag + "> holds elements, no text");
    }
    for (const RequestNode &child : operation.children) {
        if (std::none_of(known.begin(), known.end(), [&](const Known &each) { return is(child, each, operation); })) {
            throw protocol_refusal("unknown-element", child.tag,
                                   "<" + operation.tag + "> has no parameter " + child.tag);
        }
        if (find(child.tag) != &child) {
            throw protocol_refusal("bad-element", child.tag, "<" + child.tag + "> stands more than once");
        }
    }
}

RequestNode *Parameters::find(std::string_view tag) const {
    const auto found = std::find_if(operation_.children.begin(), operation_.children.end(),
                                    [tag](const RequestNode &child) { return child.tag == tag; });
    return found == operation_.children.end() ? nullptr : &*found;
}

RequestNode &Parameters::required(std::string_view tag) const {
    RequestNode *found = find(tag);
    if (found == nullptr) {
        throw protocol_refusal("missing-element", std::string(tag),
                               "<" + operation_.tag + "> needs <" + std::string(tag) + ">");
    }
    return *found;
}

std::string Parameters::value(std::string_view tag) const {
    const RequestNode *found = find(tag);
    return found == nullptr ? std::string() : text_of(*found);
}

std::string Parameters::choice(std::string_view tag, std::initializer_list<std::string_view> values) const {
    const RequestNode *found = find(tag);
    const std::string text = found == nullptr ? std::string(*values.begin()) : text_of(*found);
    if (std::find(values.begin(), values.end(), text) == values.end()) {
        std::string all;
        for (const std::string_view value : values) {
            all.append(all.empty() ? "" : ", ").append(value);
        }
        throw protocol_refusal("invalid-value", std::string(tag),
                               "there is no " + std::string(tag) + " \"" + text + "\"", all);
    }
    return text;
}

void Parameters::require_running(std::string_view tag) const {
    const RequestNode &holder = required(tag);
    if (holder.children.size() != 1) {
        throw protocol_refusal(holder.children.empty() ? "missing-element" : "bad-element", std::string(tag),
                               "<" + std::string(tag) + "> names one datastore");
    }
    const RequestNode &store = holder.children.front();
    if (store.tag != "running" || store.namespace_uri != operation_.namespace_uri) {
        throw protocol_refusal("operation-not-supported", store.tag, "there is no datastore " + store.tag,
                               "the running one is the only one");
    }
}

std::string text_of(const RequestNode &leaf) {
    return std::string(leaf.value ? trimmed(*leaf.value) : std::string_view());
}

} // namespace ocpsm::netconf
