#include "servers/netconf/rpc_error.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "framework/model.hpp"
#include "framework/service.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr std::array<std::string_view, 4> layers{"transport", "rpc", "protocol", "application"};

// The position behind a predicate's closing bracket; what stands in quotes does not count.
std::size_t behind_predicate(std::string_view path, std::size_t at) {
    while (at < path.size() && path[at] != ']') {
        if (path[at] == '\'' || path[at] == '"') {
            at = std::min(path.find(path[at], at + 1), path.size() - 1);
        }
        ++at;
    }
    return std::min(at + 1, path.size());
}

// An instance path of the model with its prefix on every name; nothing for any other text.
std::optional<std::string> with_prefix(std::string_view path, const std::string &prefix) {
    std::string text;
    std::size_t at = 0;
    while (at < path.size()) {
        const char c = path[at];
        if (c != '/' && c != '[') {
            return std::nullopt;
        }
        const std::size_t name = at + 1;
        const std::size_t end =
            c == '/' ? std::min(path.find_first_of("/[", name), path.size()) : behind_predicate(path, at);
        const std::string_view part = path.substr(name, end - name);
        if (part.empty() || part.find_first_of("*(:|") < part.find_first_of("='\"")) {
            return std::nullopt;
        }
        text.append(1, c).append(prefix).append(":").append(part);
        at = end;
    }
    return text.empty() ? std::nullopt : std::optional(text);
}

std::string last_name(std::string_view path) {
    std::string_view name;
    std::size_t at = 0;
    while (at < path.size()) {
        const std::size_t end =
            path[at] == '[' ? behind_predicate(path, at) : std::min(path.find_first_of("/[", at + 1), path.size());
        name = path[at] == '/' ? path.substr(at + 1, end - at - 1) : name;
        at = end;
    }
    return std::string(name);
}

bool says_element(std::string_view tag) {
    constexpr std::array<std::string_view, 7> tags{"missing-attribute", "bad-attribute", "unknown-attribute",
                                                   "missing-element",   "bad-element",   "unknown-element",
                                                   "unknown-namespace"};
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

class Lines {
public:
    void add(const std::string &tag, const std::string &value, const std::string &attributes = {}) {
        if (!value.empty()) {
            text_ += "    <" + tag + attributes + ">" + escaped(value) + "</" + tag + ">\n";
        }
    }
    void add(const Lines &more, const std::string &tag) {
        if (!more.text_.empty()) {
            text_ += "    <" + tag + ">\n" + more.text_ + "    </" + tag + ">\n";
        }
    }
    void indent() {
        std::string deeper;
        for (std::size_t at = 0; at < text_.size();) {
            const std::size_t end = text_.find('\n', at) + 1;
            deeper += "  " + text_.substr(at, end - at);
            at = end;
        }
        text_ = deeper;
    }
    const std::string &text() const { return text_; }

private:
    std::string text_;
};

Lines info(const Error &error) {
    Lines lines;
    lines.add("bad-attribute", error.attribute);
    if (says_element(error.tag)) {
        lines.add("bad-element", error.node.empty() ? last_name(error.path) : error.node);
    }
    lines.add("bad-namespace", error.namespace_uri);
    if (error.tag == "lock-denied") {
        lines.add("session-id", std::to_string(error.holder));
    }
    lines.indent();
    return lines;
}

} // namespace

LayerError rpc_refusal(const std::string &tag, const std::string &element, const std::string &message,
                       const std::string &attribute) {
    return {ErrorType::rpc, Error(Error::Source::input, tag, "", message).of_node(element).of_attribute(attribute)};
}

LayerError protocol_refusal(const std::string &tag, const std::string &element, const std::string &message,
                            const std::string &advice) {
    return {ErrorType::protocol, Error(Error::Source::input, tag, "", message, advice).of_node(element)};
}

std::string print(const Error &error, ErrorType layer) {
    const Model &model = Model::openconfig();
    const std::string prefix(model.prefix);
    Lines lines;
    lines.add("error-type", std::string(layers.at(static_cast<std::size_t>(layer))));
    lines.add("error-tag", error.tag.empty() ? "operation-failed" : error.tag);
    lines.add("error-severity", "error");
    lines.add("error-app-tag", error.app_tag);
    lines.add("error-path", with_prefix(error.path, prefix).value_or(""),
              " xmlns:" + prefix + "=\"" + escaped(model.namespace_uri) + "\"");
    lines.add("error-message", error.message() + (error.advice.empty() ? "" : "; " + error.advice), " xml:lang=\"en\"");
    lines.add(info(error), "error-info");
    return "  <rpc-error>\n" + lines.text() + "  </rpc-error>\n";
}

} // namespace ocpsm::netconf
