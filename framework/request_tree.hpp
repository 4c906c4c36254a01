// A request as a tree: what a client's text says, and what a server hands over that has read it itself.
#ifndef OCPSM_FRAMEWORK_REQUEST_TREE_HPP
#define OCPSM_FRAMEWORK_REQUEST_TREE_HPP

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/operation.hpp"

namespace ocpsm {

inline constexpr std::string_view netconf_namespace = "urn:ietf:params:xml:ns:netconf:base:1.0";

// The name of a namespace; empty: none. A copy shares the text, which is never changed and may be used by any thread.
class NamespaceName {
public:
    NamespaceName() = default;
    template <std::convertible_to<std::string_view> Text>
    requires(!std::same_as<Text, NamespaceName>)
        NamespaceName(const Text &text) // NOLINT(google-explicit-constructor): a text is a name
        : text_(std::string_view(text).empty() ? nullptr : std::make_shared<const std::string>(text)) {}

    operator std::string_view() const noexcept { // NOLINT(google-explicit-constructor): a name is a text
        return text_ == nullptr ? std::string_view() : std::string_view(*text_);
    }
    std::string str() const { return std::string(std::string_view(*this)); }
    bool empty() const noexcept { return text_ == nullptr; }

    friend bool operator==(const NamespaceName &one, const NamespaceName &other) noexcept {
        return one.text_ == other.text_ || std::string_view(one) == std::string_view(other);
    }
    template <std::convertible_to<std::string_view> Text>
    requires(!std::same_as<Text, NamespaceName>) friend bool operator==(const NamespaceName &one, const Text &other) {
        return std::string_view(one) == std::string_view(other);
    }

private:
    std::shared_ptr<const std::string> text_;
};

// An XML attribute, or a JSON metadata annotation (RFC 7952), that has not been read yet.
struct RequestAttribute {
    NamespaceName namespace_uri;
    std::string name;
    std::string value;
    std::vector<std::pair<std::string, NamespaceName>> prefixes = {}; // XML: those that stand before a : in the value
};

// How a node was written; it decides what it may stand for (RFC 7951, 5 and 6) and whether an empty value was meant.
enum class ValueForm : std::uint8_t {
    none,          // a ready tree's node, or JSON metadata without the node that it is about
    empty_element, // XML <leaf/>
    text,          // XML
    json_string,
    json_number, // the value is its text
    json_boolean,
    json_null,
    json_empty,      // [null]
    json_object,     // a member's value
    json_entry,      // an object in an array
    json_item,       // anything else in an array
    json_no_entries, // []
};

/*
 * A node with what is below it. A ready tree leaves out what stands behind `children`: a leaf that is given has a
 * value, one that is selected or taken away has none, and `operation` is what the edit says of the node; it is not
 * inherited (RFC 6241, 7.2). Values are the lexical representations of the model (RFC 7950, 9), a prefix in them the
 * name of a module; no text may hold a byte 0. In a read no namespace stands for any (RFC 6241, 6.2.1).
 */
struct RequestNode {
    std::string tag; // without prefix
    NamespaceName namespace_uri;
    std::optional<std::string> value = std::nullopt;
    Operation operation = Operation::merge; // of an edit
    std::vector<RequestNode> children = {};

    ValueForm form = ValueForm::none;
    NamespaceName value_namespace = {};            // XML: what the prefix that the value begins with stands for
    std::vector<RequestAttribute> attributes = {}; // what the text says beside the value; empty once they are read
};

} // namespace ocpsm

#endif
