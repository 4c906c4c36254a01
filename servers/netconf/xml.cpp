#include "servers/netconf/xml.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "framework/text.hpp"

namespace ocpsm::netconf {

namespace {

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
    std::string content;
    append_xml(content, xml_text(text));
    std::string out;
    for (const char c : content) {
        c == '"' ? out.append("&quot;") : out.append(1, c);
    }
    return out;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
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
