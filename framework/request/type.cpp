#include "framework/request/type.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/operation.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/selection.hpp"
#include "framework/request/syntax.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

using models::NodeInfo;
using models::NodeKind;

// Whether JSON writes a type's values in quotes (RFC 7951, 6): numbers of 64 bits and decimal64 are.
bool is_quoted(std::string_view type) {
    constexpr std::array<std::string_view, 7> bare{"boolean", "int8", "int16", "int32", "uint8", "uint16", "uint32"};
    return std::find(bare.begin(), bare.end(), type) == bare.end();
}

// Whether a value is written in quotes although its type is not, or the other way round.
bool quotes_differ(ValueForm form, std::string_view type) {
    const bool bare = form == ValueForm::json_number || form == ValueForm::json_boolean;
    return (bare && is_quoted(type)) || (form == ValueForm::json_string && !is_quoted(type));
}

// What JSON calls for where a node is written as something that it is not (RFC 7951, 5); empty: it is written right.
// [null] selects any node of a read.
std::string_view right_form(ValueForm form, NodeKind kind, bool edit) {
    const bool leaf = kind == NodeKind::leaf;
    const std::string_view value = leaf                     ? "a leaf has a value"
                                   : kind == NodeKind::list ? "a list is an array of objects, [{...}]"
                                                            : "a container is an object, {...}";
    const bool fits = form == ValueForm::json_object       ? kind == NodeKind::container
                      : form == ValueForm::json_entry      ? kind == NodeKind::list
                      : form == ValueForm::json_no_entries ? kind == NodeKind::list && edit
                      : form == ValueForm::json_empty      ? leaf || !edit
                                                      : form != ValueForm::json_item && form != ValueForm::json_null;
    if (form == ValueForm::json_item && leaf) {
        return "write the value without brackets";
    }
    return fits ? std::string_view() : form == ValueForm::json_no_entries && !edit ? "[null] selects all" : value;
}

// A value as a text without context says it: a prefix in an identity becomes the name of its module, one of no module
// its namespace, which is the prefix of no identity.
std::string lexical(const RequestNode &node, const NodeInfo &info) {
    if (info.type != "identityref" || node.form != ValueForm::text) {
        return *node.value;
    }
    constexpr std::string_view blanks = " \t\r\n";
    const std::string_view value = *node.value;
    const std::size_t colon = value.find(':');
    if (colon == std::string_view::npos) {
        return *node.value;
    }
    const lys_module *module =
        ly_ctx_get_module_implemented_ns(models::Schema::openconfig().context(), node.value_namespace.str().c_str());
    std::string_view name = value.substr(colon);
    name = name.substr(0, name.find_last_not_of(blanks) + 1);
    return (module == nullptr ? node.value_namespace.str() : std::string(module->name)).append(name);
}

// A node on the way down, with those around it: where it is is said only in a refusal.
struct Place {
    const Place *above; // null: a top node
    const RequestNode &node;
    const lysc_node *schema; // null: the model does not know it
    std::size_t depth = above == nullptr ? 1 : above->depth + 1;
};

std::string path_of(const Place &place) {
    return (place.above == nullptr ? std::string() : path_of(*place.above)) + path_step(place.node, place.schema);
}

[[noreturn]] void refuse(const std::string &tag, const Place &place, const std::string &message,
                         const std::string &advice = {}) {
    throw Error(Error::Source::refused, tag, path_of(place), message, advice);
}

[[noreturn]] void refuse_attribute(const std::string &tag, const Place &place, const std::string &name,
                                   const std::string &message, const std::string &advice) {
    throw Error(Error::Source::refused, tag, path_of(place), message, advice).of_attribute(name);
}

[[noreturn]] void refuse_namespace(const Place &place, const std::string &message, const std::string &advice = {}) {
    throw Error(Error::Source::refused, "unknown-namespace", path_of(place), message, advice)
        .of_namespace(place.node.namespace_uri.str());
}

bool is_in_namespace(const RequestNode &node, const lysc_node &schema) {
    return node.namespace_uri == schema.module->ns;
}

// A ready tree has not been read from a text, of which this is known.
void check_tree(const Place &place) {
    const RequestNode &node = place.node;
    const auto holds_zero = [](std::string_view text) { return text.find('\0') != std::string_view::npos; };
    if (holds_zero(node.tag) || holds_zero(node.namespace_uri) || (node.value && holds_zero(*node.value))) {
        refuse("invalid-value", place, "a text of the request holds a byte 0", "leave it out");
    }
    if (place.depth > max_request_depth) {
        refuse("too-big", place, "the request is nested deeper than " + std::to_string(max_request_depth) + " levels",
               "the model needs eight");
    }
}

// What an edit has said below a node so far, of which nothing may be said again.
class Said {
public:
    void add(const Place &place) {
        if (place.schema == nullptr || !is_in_namespace(place.node, *place.schema) || lysc_is_key(place.schema)) {
            return;
        }
        const bool is_new = place.schema->nodetype == LYS_LIST ? is_new_entry(place.node, *place.schema)
                                                               : nodes_.insert(place.schema).second;
        if (!is_new) {
            refuse("bad-element", place, place.node.tag + " stands more than once", "say it once");
        }
    }

private:
    // An entry without a key is the plug-in's question.
    bool is_new_entry(const RequestNode &entry, const lysc_node &list) {
        std::vector<std::string> keys;
        for (const std::string_view key : models::key_names(list)) {
            const RequestNode *leaf = find_key(entry, key);
            if (leaf == nullptr) {
                return true;
            }
            keys.push_back(*leaf->value);
        }
        return entries_[&list].insert(std::move(keys)).second;
    }

    std::set<const lysc_node *> nodes_;
    std::map<const lysc_node *, std::set<std::vector<std::string>>> entries_;
};

class Typing {
public:
    Typing(Kind kind, bool check_values)
        : edit_(kind == Kind::edit), check_values_(check_values), schema_(models::Schema::openconfig()) {}

    void type(std::vector<RequestNode> &tops) const {
        for (RequestNode &top : tops) {
            check_top(top);
        }
        type_children(tops, nullptr, false);
        if (!edit_) {
            join_selections(tops);
        }
        for (RequestNode &top : tops) {
            settle_lists(top, nullptr, nullptr);
        }
    }

private:
    bool edit_;
    bool check_values_;
    const models::Schema &schema_;

    void check_top(RequestNode &top) const {
        const lysc_node *known = schema_.top_nodes().front();
        const NodeInfo info = models::describe(*known);
        take_any_namespace(top, *known);
        if (top.tag == info.name && top.namespace_uri == info.namespace_uri) {
            return;
        }
        const Place place{nullptr, top, nullptr};
        const std::string advice = "the request must hold " + std::string(info.name) + " of namespace " +
                                   std::string(info.namespace_uri) + " (JSON: " + std::string(info.module) + ":" +
                                   std::string(info.name) + ")";
        if (top.namespace_uri == info.namespace_uri) {
            refuse("unknown-element", place, "the model has no top node " + top.tag, advice);
        }
        refuse_namespace(place,
                         top.namespace_uri.empty() ? top.tag + " is in no namespace"
                                                   : top.tag + " is in the namespace " + top.namespace_uri.str(),
                         advice);
    }

    // In a read no namespace stands for any (RFC 6241, 6.2.1).
    void take_any_namespace(RequestNode &node, const lysc_node &schema) const {
        if (!edit_ && node.namespace_uri.empty()) {
            node.namespace_uri = schema.module->ns;
        }
    }

    // At and below a node: a list has not too many entries, and the keys of an entry come first.
    void settle_lists(RequestNode &node, const Place *above, const lysc_node *parent) const {
        const lysc_node *schema = schema_.child(parent, node.tag, node.namespace_uri);
        if (schema == nullptr) {
            return;
        }
        const Place place{above, node, schema};
        std::map<std::string_view, std::size_t> entries;
        for (RequestNode &child : node.children) {
            settle_lists(child, &place, schema);
            const lysc_node *below = schema_.child(schema, child.tag, child.namespace_uri);
            const bool entry = below != nullptr && below->nodetype == LYS_LIST;
            if (entry && ++entries[below->name] > max_instances) {
                refuse("too-big", place, "there are more than " + std::to_string(max_instances) + " of " + child.tag,
                       "send them in pieces");
            }
        }
        const auto keys = models::key_names(*schema);
        std::stable_partition(node.children.begin(), node.children.end(), [&keys](const RequestNode &child) {
            return std::find(keys.begin(), keys.end(), child.tag) != keys.end();
        });
    }

    // `removed`: a node around them is taken away.
    void type_children(std::vector<RequestNode> &nodes, const Place *above, bool removed) const {
        const lysc_node *parent = above == nullptr ? nullptr : above->schema;
        Said said;
        std::erase_if(nodes, [this, parent](const RequestNode &node) {
            const lysc_node *schema = schema_.child(parent, node.tag, node.namespace_uri);
            return edit_ && node.form == ValueForm::json_no_entries && schema != nullptr &&
                   schema->nodetype == LYS_LIST;
        });
        for (RequestNode &node : nodes) {
            const lysc_node *schema = schema_.child(parent, node.tag, node.namespace_uri);
            const Place place{above, node, schema};
            check_tree(place);
            if (schema == nullptr) {
                type_unknown(node, place);
                continue;
            }
            take_any_namespace(node, *schema);
            if (edit_) {
                said.add(place);
            }
            type_known(node, place, removed);
        }
    }

    void type_known(RequestNode &node, const Place &place, bool removed) const {
        const NodeInfo info = models::describe(*place.schema);
        if (!is_in_namespace(node, *place.schema)) {
            refuse_namespace(
                place, node.tag + " is in " +
                           (node.namespace_uri.empty() ? "no namespace" : "the namespace " + node.namespace_uri.str()) +
                           ", the model's is in " + std::string(info.namespace_uri));
        }
        if (const std::string_view form = right_form(node.form, info.kind, edit_); !form.empty()) {
            refuse("invalid-value", place, node.tag + " is written as something that it is not", std::string(form));
        }
        settle_operation(node, place);
        removed = removed || takes_away(node.operation);
        if (info.kind == NodeKind::leaf) {
            if (!node.children.empty()) {
                refuse("invalid-value", place, node.tag + " is a leaf and has nothing below it");
            }
            settle_value(node, info, lysc_is_key(place.schema) || removed, place);
        } else if (node.value) {
            refuse("invalid-value", place,
                   node.tag + " is no leaf and has no value, but " + quoted(*node.value) + " stands there");
        } else {
            type_children(node.children, &place, removed);
        }
        node.form = ValueForm::none;
    }

    // The model says nothing about such a node and what is below it.
    void type_unknown(RequestNode &node, const Place &place) const {
        settle_operation(node, place);
        if (!node.children.empty()) {
            node.value.reset();
        }
        node.form = ValueForm::none;
        for (RequestNode &child : node.children) {
            const Place below{&place, child, nullptr};
            check_tree(below);
            type_unknown(child, below);
        }
    }

    void settle_operation(RequestNode &node, const Place &place) const {
        for (const RequestAttribute &attribute : node.attributes) {
            if (attribute.name != "operation" || attribute.namespace_uri != netconf_namespace) {
                refuse_attribute("unknown-attribute", place, attribute.name,
                                 "the attribute " + attribute.name +
                                     (attribute.namespace_uri.empty() ? " in no namespace"
                                                                      : " of " + attribute.namespace_uri.str()) +
                                     " is not known here",
                                 "the operation attribute belongs to the namespace " + std::string(netconf_namespace) +
                                     " (JSON: ietf-netconf:operation)");
            }
            const auto named = operation_named(attribute.value);
            if (edit_ && !named) {
                refuse_attribute("bad-attribute", place, attribute.name,
                                 "there is no operation " + quoted(attribute.value),
                                 "merge, replace, create, delete or remove");
            }
            node.operation = named.value_or(node.operation);
        }
        if (!edit_ && (!node.attributes.empty() || node.operation != Operation::merge)) {
            refuse_attribute("bad-attribute", place, "operation", "a read has no operations",
                             "leave it out, or send an edit");
        }
        node.attributes = {};
    }

    // `may_be_absent`: whether a key may be empty is the plug-in's question; what is taken away needs no value.
    void settle_value(RequestNode &node, const NodeInfo &info, bool may_be_absent, const Place &place) const {
        if (!edit_) {
            if (node.value) {
                check_quotes(node, info, place);
                const std::string value = lexical(node, info);
                node.value = models::canonical(*info.node, value).value_or(value);
            }
            return;
        }
        if (!node.value && (may_be_absent || !info.config)) {
            return;
        }
        if (node.form == ValueForm::empty_element) {
            node.value = "";
        }
        if (check_values_ && info.config) {
            node.value = checked(node, info, place);
        }
    }

    static std::string expected(const NodeInfo &info) {
        return "a value of type " + std::string(info.type) + allowed(info) + " is expected";
    }

    // Where nothing but the quotes is wrong.
    void check_quotes(const RequestNode &node, const NodeInfo &info, const Place &place) const {
        if (!quotes_differ(node.form, info.type) || !models::canonical(*info.node, *node.value)) {
            return;
        }
        const bool string = node.form == ValueForm::json_string;
        const std::string shown = one_line(*node.value, 60);
        refuse("invalid-value", place,
               string ? "\"" + shown + "\" is a string"
                      : shown + " is a " + (node.form == ValueForm::json_number ? "number" : "boolean"),
               (string ? "write it without quotes; " : "write it with quotes; ") + expected(info));
    }

    std::string checked(const RequestNode &node, const NodeInfo &info, const Place &place) const {
        if (!node.value) {
            refuse("invalid-value", place, node.tag + " has no value", expected(info));
        }
        check_quotes(node, info, place);
        const auto value =
            quotes_differ(node.form, info.type) ? std::nullopt : models::canonical(*info.node, lexical(node, info));
        if (!value) {
            refuse("invalid-value", place,
                   node.value->empty() ? "an empty value is not allowed" : quoted(*node.value) + " is not allowed",
                   expected(info));
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

std::vector<std::string> leave_out_other_models(std::vector<RequestNode> &tops) {
    const NodeInfo known = models::describe(*models::Schema::openconfig().top_nodes().front());
    const auto is_other = [&known](const RequestNode &top) {
        return top.namespace_uri.empty() ? top.tag != known.name : top.namespace_uri != known.namespace_uri;
    };
    constexpr std::size_t most_named = 16;
    std::size_t count = 0;
    std::string named;
    for (const RequestNode &top : tops) {
        if (is_other(top) && ++count <= most_named) {
            named.append(named.empty() ? "/" : ", /").append(one_line(top.tag));
            named.append(top.namespace_uri.empty() ? "" : " of " + one_line(top.namespace_uri));
        }
    }
    if (count == 0 || count == tops.size()) {
        return {};
    }
    std::erase_if(tops, is_other);
    if (count > most_named) {
        named.append(" and ").append(std::to_string(count - most_named)).append(" more");
    }
    return {"other models are not served and left out: " + named};
}

std::vector<RequestNode> type_request(std::vector<RequestNode> tops, Kind kind, bool check_values) {
    Typing(kind, check_values).type(tops);
    return tops;
}

} // namespace ocpsm::framework
