#include "framework/request/parse.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/quiet_library.hpp"
#include "framework/request/syntax.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view netconf_module = "ietf-netconf";
constexpr std::string_view wrapper_end = "</request>";

[[noreturn]] void refuse(const std::string &tag, const std::string &message, const std::string &advice) {
    throw Error(Error::Source::input, tag, "", message, advice);
}

struct DestroyContext {
    void operator()(ly_ctx *context) const noexcept { ly_ctx_destroy(context); }
};

struct FreeTree {
    void operator()(lyd_node *tree) const noexcept { lyd_free_all(tree); }
};
using Parsed = std::unique_ptr<lyd_node, FreeTree>;

// A context without any model keeps everything as it was written.
ly_ctx &modelless_context() {
    static const std::unique_ptr<ly_ctx, DestroyContext> context = [] {
        ly_ctx *made = nullptr;
        if (ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY, &made) != LY_SUCCESS) {
            throw Error(Error::Source::input, "operation-failed", "", "the request parser cannot start");
        }
        return std::unique_ptr<ly_ctx, DestroyContext>(made);
    }();
    return *context;
}

Parsed parse(const std::string &text, LYD_FORMAT format) {
    const QuietLibrary quiet;
    lyd_node *tree = nullptr;
    ly_ctx &context = modelless_context();
    const LY_ERR result = lyd_parse_data_mem(&context, text.c_str(), format, LYD_PARSE_ONLY | LYD_PARSE_OPAQ, 0, &tree);
    Parsed parsed(tree);
    if (result != LY_SUCCESS) {
        const char *message = ly_errmsg(&context);
        std::string reason = message == nullptr ? "not well formed" : message;
        ly_err_clean(&context, nullptr);
        if (const auto at = reason.find(wrapper_end); at != std::string::npos) {
            reason.erase(at, wrapper_end.size());
        }
        std::replace(reason.begin(), reason.end(), '\n', ' ');
        refuse("malformed-message", "the request cannot be parsed: " + reason, "check the request with a parser");
    }
    return parsed;
}

// The namespace of a name, by what the format says about it; empty when it says nothing.
std::string namespace_of(const ly_opaq_name &name, LY_VALUE_FORMAT format) {
    if (name.module_ns == nullptr) {
        return {};
    }
    if (format != LY_VALUE_JSON) {
        return name.module_ns;
    }
    if (name.module_name == netconf_module) {
        return std::string(netconf_namespace);
    }
    const lys_module *module = ly_ctx_get_module_implemented(models::Schema::openconfig().context(), name.module_name);
    return module == nullptr ? name.module_name : module->ns;
}

ValueForm form_of(const lyd_node_opaq &node) {
    const bool empty = node.value == nullptr || *node.value == '\0';
    if (node.format != LY_VALUE_JSON) {
        return empty ? ValueForm::empty_element : ValueForm::text;
    }
    if ((node.hints & LYD_VALHINT_STRING) != 0) {
        return ValueForm::json_string;
    }
    if ((node.hints & LYD_VALHINT_BOOLEAN) != 0) {
        return ValueForm::json_boolean;
    }
    return (node.hints & LYD_VALHINT_DECNUM) != 0 ? ValueForm::json_number : ValueForm::none;
}

/*
 * Without a model the JSON parser takes the annotations of a leaf for a node of the leaf's name whose children are the
 * annotations. No model has nodes in NETCONF's own namespace, so they can be told apart.
 */
bool holds_annotations(const WrittenNode &node) {
    const auto foreign = [](const WrittenNode &child) { return child.namespace_uri != netconf_namespace; };
    return node.form == ValueForm::none && !node.children.empty() &&
           std::none_of(node.children.begin(), node.children.end(), foreign);
}

std::vector<Attribute> annotations_in(const WrittenNode &holder) {
    std::vector<Attribute> annotations = holder.attributes;
    for (const WrittenNode &child : holder.children) {
        annotations.push_back({child.namespace_uri, child.tag, child.value});
    }
    return annotations;
}

// Puts annotations on the nodes that they were written for.
void settle_annotations(std::vector<WrittenNode> &siblings) {
    std::vector<WrittenNode> settled;
    std::vector<WrittenNode> holders;
    for (WrittenNode &node : siblings) {
        (holds_annotations(node) ? holders : settled).push_back(std::move(node));
    }
    for (const WrittenNode &holder : holders) {
        const auto annotated = [&holder](const WrittenNode &node) {
            return node.tag == holder.tag && node.namespace_uri == holder.namespace_uri;
        };
        auto target = std::find_if(settled.begin(), settled.end(), annotated);
        if (target == settled.end()) {
            target = settled.insert(settled.end(), {holder.tag, holder.namespace_uri, ValueForm::none, "", {}, {}});
        }
        const std::vector<Attribute> annotations = annotations_in(holder);
        target->attributes.insert(target->attributes.end(), annotations.begin(), annotations.end());
    }
    siblings = std::move(settled);
}

std::vector<WrittenNode> nodes_of(const lyd_node *first, const std::string &inherited) {
    std::vector<WrittenNode> nodes;
    for (const lyd_node *sibling = first; sibling != nullptr; sibling = sibling->next) {
        const auto &opaque = *reinterpret_cast<const lyd_node_opaq *>(sibling);
        WrittenNode node;
        node.tag = opaque.name.name;
        node.namespace_uri = namespace_of(opaque.name, opaque.format);
        if (node.namespace_uri.empty() && opaque.format == LY_VALUE_JSON) {
            node.namespace_uri = inherited;
        }
        node.form = form_of(opaque);
        node.value = opaque.value == nullptr ? "" : opaque.value;
        for (const lyd_attr *attribute = opaque.attr; attribute != nullptr; attribute = attribute->next) {
            node.attributes.push_back({namespace_of(attribute->name, attribute->format), attribute->name.name,
                                       attribute->value == nullptr ? "" : attribute->value});
        }
        node.children = nodes_of(opaque.child, node.namespace_uri);
        nodes.push_back(std::move(node));
    }
    if (first != nullptr && reinterpret_cast<const lyd_node_opaq *>(first)->format == LY_VALUE_JSON) {
        settle_annotations(nodes);
    }
    return nodes;
}

// An element around the whole text takes several top elements, and gives those without a namespace NETCONF's own,
// without which the XML parser refuses them.
std::vector<WrittenNode> parse_xml(std::string_view body) {
    std::string text = "<request xmlns=\"";
    text.append(netconf_namespace).append("\">").append(body).append(wrapper_end);
    const Parsed parsed = parse(text, LYD_XML);
    std::vector<WrittenNode> wrapper = nodes_of(parsed.get(), "");
    if (wrapper.size() != 1 || wrapper.front().form == ValueForm::text) {
        refuse("malformed-message", "the request has text outside of its elements", "check the request with a parser");
    }
    return std::move(wrapper.front().children);
}

void check_filter(const WrittenNode &filter) {
    for (const Attribute &attribute : filter.attributes) {
        if (attribute.name == "type" && attribute.value == "subtree") {
            continue;
        }
        refuse("operation-not-supported",
               "a filter with " + attribute.name + " \"" + attribute.value + "\" is not supported",
               "use a subtree filter");
    }
}

// The content of <filter> and <config>, in place of them.
std::vector<WrittenNode> unwrap(std::vector<WrittenNode> tops, Kind kind) {
    std::vector<WrittenNode> content;
    for (WrittenNode &top : tops) {
        const bool netconf = top.namespace_uri == netconf_namespace;
        const bool filter = netconf && top.tag == "filter";
        const bool config = netconf && top.tag == "config";
        if (!filter && !config) {
            content.push_back(std::move(top));
            continue;
        }
        if (filter == (kind == Kind::edit)) {
            refuse("bad-element", filter ? "a <filter> is no edit" : "a <config> is no read",
                   filter ? "read with it, or send a <config>" : "edit with it, or send a <filter>");
        }
        if (filter) {
            check_filter(top);
        } else if (!top.attributes.empty()) {
            refuse("unknown-attribute", "<config> has no attribute " + top.attributes.front().name,
                   "put an operation on the element that it is meant for");
        }
        if (top.form == ValueForm::text) {
            refuse("malformed-message", "<" + top.tag + "> holds text", "check the request with a parser");
        }
        std::move(top.children.begin(), top.children.end(), std::back_inserter(content));
    }
    return content;
}

} // namespace

std::vector<WrittenNode> parse_request(std::string_view text, Kind kind) {
    const RequestText request = inspect(text);
    if (request.syntax == Syntax::xml) {
        return unwrap(parse_xml(request.body), kind);
    }
    const Parsed parsed = parse(std::string(request.body), LYD_JSON);
    return unwrap(nodes_of(parsed.get(), ""), kind);
}

} // namespace ocpsm::framework
