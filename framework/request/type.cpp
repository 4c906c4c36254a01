#include "framework/request/type.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/operation.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

using models::NodeInfo;
using models::NodeKind;

[[noreturn]] void refuse(const std::string &tag, const std::string &path, const std::string &message,
                         const std::string &advice = {}) {
    throw Error(Error::Source::refused, tag, path, message, advice);
}

bool takes_away(uint32_t operation) {
    return operation == YFW_OPERATION_DELETE || operation == YFW_OPERATION_REMOVE;
}

// A value in quotes as a message shows it: on one line, and not at any length.
std::string quoted(std::string_view value) {
    constexpr std::size_t longest = 60;
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = std::min(value.find_first_not_of(blanks), value.size());
    std::string text(value.substr(first, value.find_last_not_of(blanks) + 1 - first));
    if (text.size() > longest) {
        text.resize(longest);
        text += "...";
    }
    const auto control = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    std::replace_if(text.begin(), text.end(), control, ' ');
    return "\"" + text + "\"";
}

// What a kind of JSON value may stand for (RFC 7951, 6). A number for a decimal64 is what people write; it is accepted.
bool json_form_fits(ValueForm form, std::string_view type) {
    const bool number =
        type == "int8" || type == "int16" || type == "int32" || type == "uint8" || type == "uint16" || type == "uint32";
    switch (form) {
    case ValueForm::json_boolean:
        return type == "boolean";
    case ValueForm::json_number:
        return number || type == "int64" || type == "uint64" || type == "decimal64";
    case ValueForm::json_string:
        return !number && type != "boolean";
    default:
        return true;
    }
}

class Typing {
public:
    Typing(Kind kind, bool check_values)
        : edit_(kind == Kind::edit), check_values_(check_values), schema_(models::Schema::openconfig()) {}

    std::vector<RequestNode> type(const std::vector<WrittenNode> &tops) const {
        for (const WrittenNode &top : tops) {
            check_top(top);
        }
        return type_children(tops, nullptr, "", false);
    }

private:
    bool edit_;
    bool check_values_;
    const models::Schema &schema_;

    void check_top(const WrittenNode &top) const {
        const lysc_node *known = schema_.top_nodes().front();
        const NodeInfo info = models::describe(*known);
        if (top.tag == info.name && top.namespace_uri == info.namespace_uri) {
            return;
        }
        const std::string path = "/" + top.tag;
        const std::string advice = "the request must hold " + std::string(info.name) + " of namespace " +
                                   std::string(info.namespace_uri) + " (JSON: " + std::string(info.module) + ":" +
                                   std::string(info.name) + ")";
        if (top.namespace_uri == info.namespace_uri) {
            refuse("unknown-element", path, "the model has no top node " + top.tag, advice);
        }
        const bool none = top.namespace_uri.empty() || top.namespace_uri == netconf_namespace;
        refuse("unknown-namespace", path,
               none ? top.tag + " is in no namespace" : top.tag + " is in the namespace " + top.namespace_uri, advice);
    }

    // A node's step of the instance path: an entry of a list shows its keys.
    static std::string step(const WrittenNode &node, const std::optional<NodeInfo> &info) {
        std::string text = "/" + node.tag;
        if (!info || info->kind != NodeKind::list) {
            return text;
        }
        for (const std::string_view key : info->keys) {
            const auto is_key = [key](const WrittenNode &child) { return child.tag == key && !child.value.empty(); };
            const auto leaf = std::find_if(node.children.begin(), node.children.end(), is_key);
            if (leaf != node.children.end()) {
                text += key_predicate(key, leaf->value);
            }
        }
        return text;
    }

    std::vector<RequestNode> type_children(const std::vector<WrittenNode> &nodes, const lysc_node *parent,
                                           const std::string &parent_path, bool removed) const {
        std::vector<RequestNode> typed;
        const std::vector<std::string_view> keys =
            parent == nullptr ? std::vector<std::string_view>() : models::key_names(*parent);
        for (const WrittenNode &node : nodes) {
            const lysc_node *schema = schema_.child(parent, node.tag, node.namespace_uri);
            const auto info = schema == nullptr ? std::nullopt : std::optional(models::describe(*schema));
            const std::string path = parent_path + step(node, info);
            const bool key = std::find(keys.begin(), keys.end(), node.tag) != keys.end();
            if (edit_ && info && info->kind != NodeKind::list && !key) {
                check_single(typed, node, path);
            }
            typed.push_back(info ? type_known(node, *info, key, path, removed) : type_unknown(node, path));
        }
        const auto is_key = [&keys](const RequestNode &node) {
            return std::find(keys.begin(), keys.end(), node.tag) != keys.end();
        };
        std::stable_partition(typed.begin(), typed.end(), is_key);
        return typed;
    }

    static void check_single(const std::vector<RequestNode> &before, const WrittenNode &node, const std::string &path) {
        const auto same = [&node](const RequestNode &other) {
            return other.tag == node.tag && other.namespace_uri == node.namespace_uri;
        };
        if (std::any_of(before.begin(), before.end(), same)) {
            refuse("bad-element", path, node.tag + " stands more than once", "say it once");
        }
    }

    // `removed`: a node around it is taken away.
    RequestNode type_known(const WrittenNode &node, const NodeInfo &info, bool key, const std::string &path,
                           bool removed) const {
        if (node.namespace_uri != info.namespace_uri) {
            refuse("unknown-namespace", path,
                   node.tag + " is in " +
                       (node.namespace_uri.empty() ? "no namespace" : "the namespace " + node.namespace_uri) +
                       ", the model's is in " + std::string(info.namespace_uri));
        }
        RequestNode typed{node.tag, node.namespace_uri, std::nullopt, operation_of(node, path), {}};
        removed = removed || takes_away(typed.operation);
        if (info.kind == NodeKind::leaf) {
            if (!node.children.empty()) {
                refuse("invalid-value", path, node.tag + " is a leaf and has nothing below it");
            }
            typed.value = leaf_value(node, info, key || removed, path);
            return typed;
        }
        if (node.form != ValueForm::none && node.form != ValueForm::empty_element) {
            refuse("invalid-value", path,
                   node.tag + " is no leaf and has no value, but " + quoted(node.value) + " stands there");
        }
        typed.children = type_children(node.children, info.node, path, removed);
        return typed;
    }

    // The model says nothing about such a node and what is below it.
    RequestNode type_unknown(const WrittenNode &node, const std::string &path) const {
        RequestNode typed{node.tag, node.namespace_uri, std::nullopt, operation_of(node, path), {}};
        for (const WrittenNode &child : node.children) {
            typed.children.push_back(type_unknown(child, path + "/" + child.tag));
        }
        if (node.children.empty() && node.form != ValueForm::none && node.form != ValueForm::empty_element) {
            typed.value = node.value;
        }
        return typed;
    }

    uint32_t operation_of(const WrittenNode &node, const std::string &path) const {
        uint32_t operation = YFW_OPERATION_MERGE;
        for (const Attribute &attribute : node.attributes) {
            if (attribute.name != "operation" || attribute.namespace_uri != netconf_namespace) {
                refuse("unknown-attribute", path, "the attribute " + attribute.name + " is not known here",
                       "the operation attribute belongs to the namespace " + std::string(netconf_namespace) +
                           " (JSON: ietf-netconf:operation)");
            }
            if (!edit_) {
                refuse("bad-attribute", path, "a read has no operations", "leave it out, or send an edit");
            }
            const auto named = operation_named(attribute.value);
            if (!named) {
                refuse("bad-attribute", path, "there is no operation " + quoted(attribute.value),
                       "merge, replace, create, delete or remove");
            }
            operation = static_cast<uint32_t>(*named);
        }
        return operation;
    }

    // `may_be_absent`: whether a key may be empty is the plug-in's question; what is taken away needs no value.
    std::optional<std::string> leaf_value(const WrittenNode &node, const NodeInfo &info, bool may_be_absent,
                                          const std::string &path) const {
        const bool written = node.form != ValueForm::none && node.form != ValueForm::empty_element;
        if (!edit_) {
            return written ? std::optional(models::canonical(*info.node, node.value).value_or(node.value))
                           : std::nullopt;
        }
        if (!written && (may_be_absent || !info.config)) {
            return std::nullopt;
        }
        if (!check_values_ || !info.config) {
            return node.form == ValueForm::none ? std::nullopt : std::optional(node.value);
        }
        return checked(node, info, path);
    }

    std::string checked(const WrittenNode &node, const NodeInfo &info, const std::string &path) const {
        const std::string expected = "a value of type " + std::string(info.type) + allowed(info) + " is expected";
        if (node.form == ValueForm::none) {
            refuse("invalid-value", path, node.tag + " has no value", expected);
        }
        std::optional<std::string> value;
        if (json_form_fits(node.form, info.type)) {
            value = models::canonical(*info.node, node.value);
        }
        if (!value) {
            refuse("invalid-value", path,
                   node.value.empty() ? "an empty value is not allowed" : quoted(node.value) + " is not allowed",
                   expected);
        }
        return *value;
    }

    static std::string allowed(const NodeInfo &info) {
        std::string text;
        for (const std::string_view choice : info.choices) {
            text.append(text.empty() ? " (" : ", ").append(choice);
        }
        if (!text.empty()) {
            text += ")";
        }
        if (!info.units.empty()) {
            text.append(" in ").append(info.units);
        }
        if (info.fraction_digits != 0) {
            text.append(" with at most ").append(std::to_string(info.fraction_digits)).append(" fraction digits");
        }
        return text;
    }
};

} // namespace

std::vector<RequestNode> type_request(const std::vector<WrittenNode> &tops, Kind kind, bool check_values) {
    return Typing(kind, check_values).type(tops);
}

} // namespace ocpsm::framework
