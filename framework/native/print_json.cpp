// A native request as JSON (RFC 7951), operations as metadata (RFC 7952).
#include <libyang/libyang.h>

#include <algorithm>
#include <functional>

#include "framework/native/native_path.hpp"
#include "framework/native/refuse.hpp"
#include "framework/text.hpp"

namespace ocpsm::native {
namespace {

void append_string(std::string &out, std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    out += '"';
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            out.append(1, '\\').append(1, character);
        } else if (character == '\n') {
            out += "\\n";
        } else if (byte < 0x20 || byte == 0x7f) {
            out.append("\\u00").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        } else {
            out += character;
        }
    }
    out += '"';
}

// A number as JSON writes it; YANG also takes a sign, leading zeros and other bases.
bool is_json_integer(std::string_view text) {
    if (!text.empty() && text.front() == '-') {
        text.remove_prefix(1);
    }
    const bool digits = std::all_of(text.begin(), text.end(), [](char digit) { return digit >= '0' && digit <= '9'; });
    return digits && !text.empty() && (text.size() == 1 || text.front() != '0');
}

// A value that its leaf cannot hold is shown as the text that it is.
void append_value(std::string &out, const lysc_node &schema, const std::string &value) {
    const LY_DATA_TYPE type = reinterpret_cast<const lysc_node_leaf &>(schema).type->basetype;
    const bool number = (type == LY_TYPE_INT32 || type == LY_TYPE_UINT32) && is_json_integer(value);
    const bool boolean = type == LY_TYPE_BOOL;
    if ((number || boolean) &&
        lyd_value_validate(nullptr, &schema, value.data(), value.size(), nullptr, nullptr, nullptr) == LY_SUCCESS) {
        out += value;
    } else {
        append_string(out, value);
    }
}

std::string member_name(const lysc_node &schema, const lysc_node *parent) {
    const bool qualified = parent == nullptr || parent->module != schema.module;
    return (qualified ? std::string(schema.module->name) + ":" : std::string()) + schema.name;
}

// Writes objects and arrays with one member or element per line.
class Printer {
public:
    explicit Printer(std::string &out) : out_(out) {}

    void object(const std::vector<std::function<void()>> &members, std::size_t depth) {
        list('{', members, '}', depth);
    }
    void nodes(std::vector<std::function<void()>> &members, std::span<const NativeNode> nodes, const lysc_node *parent,
               std::size_t depth);

private:
    using Members = std::vector<std::function<void()>>;

    void list(char open, const Members &members, char close, std::size_t depth);
    void member(const std::string &name) { out_.append("\"").append(name).append("\": "); }
    void metadata(const std::string &name, Operation operation, std::size_t depth);
    void leaf(Members &members, const NativeNode &node, const lysc_node *parent, std::size_t depth);
    void inner(const NativeNode &node, std::size_t depth);
    void value(const lysc_node &schema, const std::optional<std::string> &text);

    std::string &out_;
};

void Printer::list(char open, const Members &members, char close, std::size_t depth) {
    out_ += open;
    for (std::size_t index = 0; index < members.size(); ++index) {
        out_.append(index == 0 ? "\n" : ",\n").append(2 * (depth + 1), ' ');
        members[index]();
    }
    if (!members.empty()) {
        out_.append("\n").append(2 * depth, ' ');
    }
    out_ += close;
}

void Printer::metadata(const std::string &name, Operation operation, std::size_t depth) {
    member("@" + name);
    object({[&] {
               member("ietf-netconf:operation");
               append_string(out_, operation_name(operation));
           }},
           depth);
}

void Printer::value(const lysc_node &schema, const std::optional<std::string> &text) {
    if (text) {
        append_value(out_, schema, *text);
    } else {
        out_ += "[null]";
    }
}

void Printer::leaf(Members &members, const NativeNode &node, const lysc_node *parent, std::size_t depth) {
    const std::string name = member_name(*node.schema, parent);
    members.emplace_back([this, &node, name] {
        member(name);
        value(*node.schema, node.value);
    });
    if (node.operation != Operation::merge) {
        members.emplace_back([this, &node, name, depth] { metadata(name, node.operation, depth + 1); });
    }
}

// The object of a container or of a list entry.
void Printer::inner(const NativeNode &node, std::size_t depth) {
    Members members;
    if (node.operation != Operation::merge) {
        members.emplace_back([this, &node, depth] { metadata("", node.operation, depth + 1); });
    }
    nodes(members, node.children, node.schema, depth);
    object(members, depth);
}

// The members for nodes that are siblings; the entries of a list are one array.
void Printer::nodes(Members &members, std::span<const NativeNode> nodes, const lysc_node *parent, std::size_t depth) {
    for (std::size_t first = 0; first < nodes.size();) {
        const lysc_node &schema = *nodes[first].schema;
        std::size_t end = first + 1;
        while (end < nodes.size() && nodes[end].schema == &schema) {
            ++end;
        }
        if (says_nothing(nodes[first])) {
            // An unnamed key.
        } else if (schema.nodetype == LYS_LEAF) {
            leaf(members, nodes[first], parent, depth);
        } else if (schema.nodetype == LYS_CONTAINER) {
            members.emplace_back([this, &node = nodes[first], parent, depth] {
                member(member_name(*node.schema, parent));
                inner(node, depth + 1);
            });
        } else {
            members.emplace_back([this, entries = nodes.subspan(first, end - first), parent, depth] {
                member(member_name(*entries.front().schema, parent));
                Members objects;
                for (const NativeNode &entry : entries) {
                    objects.emplace_back([this, &entry, depth] { inner(entry, depth + 2); });
                }
                list('[', objects, ']', depth + 1);
            });
        }
        first = end;
    }
}

} // namespace

std::string NetRequest::to_json() const {
    for_each_text(*this, [](const std::string &path, const lysc_node &, const std::string &text) {
        if (!is_utf8(text)) {
            refuse("invalid-value", path, "'" + one_line(text) + "' is not UTF-8");
        }
    });
    std::string out;
    Printer printer(out);
    std::vector<std::function<void()>> members;
    printer.nodes(members, roots, nullptr, 0);
    printer.object(members, 0);
    return out.append("\n");
}

} // namespace ocpsm::native
