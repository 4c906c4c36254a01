// A request, as it was written and as the model sees it.
#ifndef OCPSM_FRAMEWORK_REQUEST_NODE_HPP
#define OCPSM_FRAMEWORK_REQUEST_NODE_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "yfw_map.h"

namespace ocpsm::framework {

inline constexpr std::string_view netconf_namespace = "urn:ietf:params:xml:ns:netconf:base:1.0";

// An XML attribute, or a JSON metadata annotation (RFC 7952).
struct Attribute {
    std::string namespace_uri; // empty: none
    std::string name;
    std::string value;
};

// How a node's value was written.
enum class ValueForm {
    none,          // JSON [null], null or {}
    empty_element, // XML <leaf/>
    text,          // XML
    json_string,
    json_number,
    json_boolean,
};

struct WrittenNode {
    std::string tag;
    std::string namespace_uri; // empty: none
    ValueForm form = ValueForm::none;
    std::string value; // of the forms that have one
    std::vector<Attribute> attributes;
    std::vector<WrittenNode> children;
};

// A node of a request as the model sees it, and as it is handed over.
struct RequestNode {
    std::string tag;
    std::string namespace_uri; // empty: none
    std::optional<std::string> value = std::nullopt;
    uint32_t operation = YFW_OPERATION_MERGE;
    std::vector<RequestNode> children = {};
};

} // namespace ocpsm::framework

#endif
