#include "framework/request/envelope.hpp"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "framework/request/syntax.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

[[noreturn]] void refuse(const std::string &tag, const std::string &message, const std::string &advice) {
    throw Error(Error::Source::input, tag, "", message, advice);
}

// A wrapper, and the kinds of requests that it may stand around.
struct Wrapper {
    std::string_view tag;
    bool read;
    bool edit;
};

constexpr Wrapper wrappers[] = {
    {"get", true, false},    {"get-config", true, false}, {"edit-config", false, true},
    {"filter", true, false}, {"config", false, true},     {"data", true, true},
};

constexpr std::string_view test_options[] = {"test-then-set", "set"};
constexpr std::string_view error_options[] = {"stop-on-error", "rollback-on-error"};

bool is_netconf(const RequestNode &node) {
    return node.namespace_uri.empty() || node.namespace_uri == netconf_namespace;
}

const Wrapper *wrapper_of(const RequestNode &node) {
    const auto *const found = std::find_if(std::begin(wrappers), std::end(wrappers),
                                           [&node](const Wrapper &each) { return each.tag == node.tag; });
    return is_netconf(node) && found != std::end(wrappers) ? found : nullptr;
}

class Unwrapping {
public:
    explicit Unwrapping(Kind kind) : content_{{}, kind, std::nullopt} {}

    Content run(std::vector<RequestNode> tops) {
        for (RequestNode &top : tops) {
            if (is_netconf(top) && (top.tag == "rpc" || top.tag == "rpc-reply")) {
                open_message(std::move(top));
            } else {
                take(std::move(top));
            }
        }
        return std::move(content_);
    }

private:
    bool edit() const { return content_.kind == Kind::edit; }

    // A message holds one operation, or the data of an answer; its attributes are the client's own (RFC 6241, 4.1).
    void open_message(RequestNode message) {
        refuse_text(message);
        for (RequestNode &child : message.children) {
            const Wrapper *wrapper = wrapper_of(child);
            if (wrapper == nullptr || child.tag == "filter" || child.tag == "config") {
                refuse("operation-not-supported", "<" + one_line(child.tag) + "> is no read and no edit",
                       "get, get-config and edit-config are");
            }
            take(std::move(child));
        }
    }

    void take(RequestNode node) {
        const Wrapper *wrapper = wrapper_of(node);
        if (wrapper == nullptr) {
            content_.tops.push_back(std::move(node));
            return;
        }
        if (edit() ? !wrapper->edit : !wrapper->read) {
            refuse("bad-element", "a <" + node.tag + "> is no " + (edit() ? "edit" : "read"),
                   edit() ? "read with it, or send a <config>" : "edit with it, or send a <filter>");
        }
        refuse_text(node);
        if (node.tag == "get" || node.tag == "get-config" || node.tag == "edit-config") {
            open_operation(std::move(node));
        } else {
            open_content(std::move(node));
        }
    }

    void open_operation(RequestNode operation) {
        check_attributes(operation);
        if (operation.tag == "get-config") {
            content_.kind = Kind::get_config;
        }
        const std::string_view content = edit() ? "config" : "filter";
        bool selects = false;
        for (RequestNode &child : operation.children) {
            if (!is_netconf(child) || child.tag != content) {
                take_option(child, operation.tag);
                continue;
            }
            selects = true;
            take(std::move(child));
        }
        content_.whole = content_.whole || (!edit() && !selects);
    }

    void open_content(RequestNode node) {
        if (node.tag == "filter") {
            check_filter(node);
        } else {
            check_attributes(node);
        }
        std::move(node.children.begin(), node.children.end(), std::back_inserter(content_.tops));
    }

    // What an operation says beside its content.
    void take_option(const RequestNode &option, const std::string &operation) {
        const bool known = is_netconf(option);
        if (known && option.tag == (edit() ? "target" : "source") && operation != "get") {
            check_datastore(option);
        } else if (known && edit() && option.tag == "default-operation") {
            content_.default_operation = default_named(option);
        } else if (known && edit() && option.tag == "test-option") {
            check_choice(option, test_options);
        } else if (known && edit() && option.tag == "error-option") {
            check_choice(option, error_options);
        } else {
            refuse("operation-not-supported", "<" + one_line(option.tag) + "> of <" + operation + "> is not supported",
                   "leave it out");
        }
    }

    static void check_datastore(const RequestNode &holder) {
        for (const RequestNode &store : holder.children) {
            if (!is_netconf(store) || store.tag != "running") {
                refuse("operation-not-supported", "there is no datastore " + one_line(store.tag),
                       "the running one is the only one");
            }
        }
    }

    static DefaultOperation default_named(const RequestNode &option) {
        const std::string name = value_of(option);
        if (name == "merge") {
            return DefaultOperation::merge;
        }
        if (name != "replace" && name != "none") {
            refuse("bad-element", "there is no default operation " + ocpsm::quoted(name), "merge, replace or none");
        }
        return name == "replace" ? DefaultOperation::replace : DefaultOperation::none;
    }

    template <std::size_t Count>
    static void check_choice(const RequestNode &option, const std::string_view (&choices)[Count]) {
        const std::string name = value_of(option);
        if (std::find(std::begin(choices), std::end(choices), name) == std::end(choices)) {
            refuse("operation-not-supported", "the " + option.tag + " " + ocpsm::quoted(name) + " is not supported",
                   "an edit is checked, and is carried out whole or not at all");
        }
    }

    static std::string value_of(const RequestNode &option) {
        const std::string_view value = option.value ? std::string_view(*option.value) : std::string_view();
        const std::size_t begin = std::min(value.find_first_not_of(" \t\r\n"), value.size());
        return std::string(value.substr(begin, value.find_last_not_of(" \t\r\n") + 1 - begin));
    }

    static void refuse_text(const RequestNode &node) {
        if (node.value) {
            refuse("bad-element", "<" + node.tag + "> holds " + ocpsm::quoted(*node.value), "it holds elements");
        }
    }

    static void check_attributes(const RequestNode &node) {
        if (!node.attributes.empty()) {
            refuse("unknown-attribute", "<" + node.tag + "> has no attribute " + node.attributes.front().name,
                   "put an operation on the element that it is meant for");
        }
    }

    static void check_filter(const RequestNode &filter) {
        for (const RequestAttribute &attribute : filter.attributes) {
            if (attribute.name == "type" && attribute.value == "subtree") {
                continue;
            }
            refuse("operation-not-supported",
                   "a filter with " + attribute.name + " " + ocpsm::quoted(attribute.value) + " is not supported",
                   "use a subtree filter");
        }
    }

    Content content_;
};

} // namespace

Content unwrap(std::vector<RequestNode> tops, Kind kind) {
    return Unwrapping(kind).run(std::move(tops));
}

std::optional<Kind> kind_named(std::string_view text) noexcept {
    Opening opening = opening_of(text);
    if (opening.element == "rpc") {
        opening = opening_of(behind_first_tag(opening.body));
    }
    if (opening.element == "filter" || opening.element == "get") {
        return Kind::get;
    }
    if (opening.element == "config" || opening.element == "edit-config") {
        return Kind::edit;
    }
    return opening.element == "get-config" ? std::optional(Kind::get_config) : std::nullopt;
}

} // namespace ocpsm::framework
