#include "servers/netconf/xml.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace ocpsm::netconf {

namespace {

constexpr std::string_view replacement = "\xef\xbf\xbd";

struct Character {
    std::size_t size = 0; // bytes; 0: none is there
    char32_t code = 0;
};

// The first character of a text that is not empty.
Character first_character(std::string_view text) {
    const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned first = byte(0);
    if (first < 0x80) {
        return {1, first};
    }
    const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < size) {
        return {};
    }
    char32_t code = first & (0x7fU >> size);
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xc0U) != 0x80U) {
            return {};
        }
        code = code << 6U | (byte(at) & 0x3fU);
    }
    constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    return code < least.at(size) ? Character{} : Character{size, code};
}

// A character of XML 1.0.
bool is_allowed(char32_t code) {
    return code >= 0x20 ? (code < 0xd800 || (code > 0xdfff && code < 0xfffe) || (code > 0xffff && code < 0x110000))
                        : code == '\t' || code == '\n' || code == '\r';
}

void append_character(std::string &out, std::string_view character) {
    switch (character.front()) {
    case '<':
        out += "&lt;";
        break;
    case '>':
        out += "&gt;";
        break;
    case '&':
        out += "&amp;";
        break;
    case '"':
        out += "&quot;";
        break;
    case '\r':
        out += "&#13;";
        break;
    default:
        out += character;
    }
}

void append_node(std::string &out, const RequestNode &node, std::string_view around, std::size_t level) {
    out.append(level * 2, ' ').append("<").append(node.tag);
    if (node.namespace_uri != around) {
        out.append(" xmlns=\"").append(escaped(node.namespace_uri)).append("\"");
    }
    out += print(node.attributes);
    if (!node.children.empty()) {
        out += ">\n";
        out += print(node.children, node.namespace_uri, level + 1);
        out.append(level * 2, ' ').append("</").append(node.tag).append(">\n");
    } else if (node.value && !node.value->empty()) {
        out.append(">").append(escaped(*node.value)).append("</").append(node.tag).append(">\n");
    } else {
        out += "/>\n";
    }
}

} // namespace

std::string escaped(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const Character character = first_character(text);
        const bool allowed = character.size != 0 && is_allowed(character.code);
        const std::size_t size = std::max<std::size_t>(character.size, 1);
        append_character(out, allowed ? text.substr(0, size) : replacement);
        text.remove_prefix(size);
    }
    return out;
}

std::string print(const Tree &nodes, std::string_view around, std::size_t level) {
    std::string out;
    for (const RequestNode &node : nodes) {
        append_node(out, node, around, level);
    }
    return out;
}

std::string print(const std::vector<RequestAttribute> &attributes) {
    std::string out;
    std::size_t declared = 0;
    for (const RequestAttribute &attribute : attributes) {
        std::string prefix;
        if (attribute.namespace_uri == "http://www.w3.org/XML/1998/namespace") {
            prefix = "xml:";
        } else if (!attribute.namespace_uri.empty()) {
            const std::string name = "a" + std::to_string(++declared);
            out.append(" xmlns:").append(name).append("=\"").append(escaped(attribute.namespace_uri)).append("\"");
            prefix = name + ":";
        }
        out.append(" ").append(prefix).append(attribute.name).append("=\"").append(escaped(attribute.value));
        out += "\"";
    }
    return out;
}

RequestNode leaf(const NamespaceName &space, const std::string &tag, const std::string &value) {
    return {tag, space, value};
}

RequestNode inner(const NamespaceName &space, const std::string &tag, Tree children) {
    return {tag, space, std::nullopt, Operation::merge, std::move(children)};
}

} // namespace ocpsm::netconf
