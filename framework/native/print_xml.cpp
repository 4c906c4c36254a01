// A native request as XML: a NETCONF filter (RFC 6241, 6) or configuration (7.2).
#include <libyang/libyang.h>

#include <algorithm>

#include "framework/native/native_path.hpp"
#include "framework/native/refuse.hpp"
#include "framework/text.hpp"

namespace ocpsm::native {
namespace {

class Printer {
public:
    explicit Printer(std::string &out) : out_(out) {}

    void print(const NativeNode &node, const lysc_node *parent, std::size_t depth);

private:
    void open(const NativeNode &node, const lysc_node *parent, std::size_t depth);
    void leaf(const NativeNode &node);

    std::string &out_;
};

// The start of a start tag, up to its attributes.
void Printer::open(const NativeNode &node, const lysc_node *parent, std::size_t depth) {
    const lysc_node &schema = *node.schema;
    out_.append(2 * depth, ' ').append("<").append(schema.name);
    if (parent == nullptr || parent->module != schema.module) {
        out_.append(" xmlns=\"").append(schema.module->ns).append("\"");
    }
    if (node.operation != Operation::merge) {
        out_.append(" nc:operation=\"").append(operation_name(node.operation)).append("\"");
    }
}

void Printer::leaf(const NativeNode &node) {
    if (!node.value || node.value->empty()) {
        out_.append("/>\n");
        return;
    }
    out_.append(">");
    append_xml(out_, *node.value);
    out_.append("</").append(node.schema->name).append(">\n");
}

void Printer::print(const NativeNode &node, const lysc_node *parent, std::size_t depth) {
    if (says_nothing(node)) {
        return;
    }
    open(node, parent, depth);
    if (std::all_of(node.children.begin(), node.children.end(), says_nothing)) {
        leaf(node);
        return;
    }
    out_.append(">\n");
    for (const NativeNode &child : node.children) {
        print(child, node.schema, depth + 1);
    }
    out_.append(2 * depth, ' ').append("</").append(node.schema->name).append(">\n");
}

} // namespace

std::string NetRequest::to_xml() const {
    for_each_text(*this, [](const std::string &path, const lysc_node &, const std::string &text) {
        if (!is_xml_text(text)) {
            refuse("invalid-value", path, "'" + one_line(text) + "' holds characters that XML cannot carry");
        }
    });
    const std::string element = kind == RequestKind::read ? "nc:filter" : "nc:config";
    std::string out = "<" + element + " xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"";
    out.append(kind == RequestKind::read ? " type=\"subtree\"" : "");
    if (roots.empty()) {
        return out.append("/>\n");
    }
    out.append(">\n");
    Printer printer(out);
    for (const NativeNode &node : roots) {
        printer.print(node, nullptr, 1);
    }
    return out.append("</").append(element).append(">\n");
}

} // namespace ocpsm::native
