#include "framework/request/parse.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "framework/error.hpp"
#include "framework/library.hpp"
#include "framework/models/models.hpp"
#include "framework/request/syntax.hpp"
#include "framework/text.hpp"

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

// The text is released with the call: the tree has texts of its own.
Parsed parse(std::string text, LYD_FORMAT format) {
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
bool holds_annotations(const RequestNode &node) {
    const auto foreign = [](const RequestNode &child) { return child.namespace_uri != netconf_namespace; };
    return node.form == ValueForm::none && !node.children.empty() &&
           std::none_of(node.children.begin(), node.children.end(), foreign);
}

void add_annotations(RequestNode &node, RequestNode &&holder) {
    std::move(holder.attributes.begin(), holder.attributes.end(), std::back_inserter(node.attributes));
    for (RequestNode &child : holder.children) {
        node.attributes.push_back({child.namespace_uri, std::move(child.tag), child.value.value_or("")});
    }
}

// Puts annotations on the nodes that they were written for, the first of that name.
void settle_annotations(std::vector<RequestNode> &siblings) {
    const auto first_holder = std::stable_partition(siblings.begin(), siblings.end(),
                                                    [](const RequestNode &node) { return !holds_annotations(node); });
    std::vector<RequestNode> holders(std::make_move_iterator(first_holder), std::make_move_iterator(siblings.end()));
    siblings.erase(first_holder, siblings.end());
    std::unordered_map<std::string, std::size_t> positions;
    const auto name_of = [](const RequestNode &node) { return node.namespace_uri.str() + ":" + node.tag; };
    for (std::size_t index = 0; index < siblings.size() && !holders.empty(); ++index) {
        positions.try_emplace(name_of(siblings[index]), index);
    }
    for (RequestNode &holder : holders) {
        const auto [position, alone] = positions.try_emplace(name_of(holder), siblings.size());
        if (alone) {
            siblings.push_back({holder.tag, holder.namespace_uri});
        }
        add_annotations(siblings[position->second], std::move(holder));
    }
}

// Makes a request's tree of the parser's, which is released on the way: there is no moment that has both.
class TreeBuilder {
public:
    std::vector<RequestNode> build(Parsed parsed) {
        const bool json = parsed != nullptr && is_json(*parsed);
        std::vector<RequestNode> tops;
        while (parsed != nullptr) {
            lyd_node *top = parsed.release();
            parsed.reset(top->next);
            tops.push_back(node_of(top, {}));
        }
        if (json) {
            settle_annotations(tops);
        }
        return tops;
    }

private:
    // The namespace of a name, by what the format says about it; empty when it says nothing.
    NamespaceName namespace_of(const ly_opaq_name &name, LY_VALUE_FORMAT format) {
        if (name.module_ns == nullptr) {
            return {};
        }
        const auto [known, is_new] = namespaces_.try_emplace(name.module_ns);
        if (is_new) {
            known->second = format == LY_VALUE_JSON ? namespace_of_module(name.module_name) : name.module_ns;
        }
        return known->second;
    }

    static NamespaceName namespace_of_module(const char *name) {
        if (name == netconf_module) {
            return netconf_namespace;
        }
        const lys_module *module = ly_ctx_get_module_implemented(models::Schema::openconfig().context(), name);
        return module == nullptr ? name : module->ns;
    }

    static bool is_json(const lyd_node &node) {
        return reinterpret_cast<const lyd_node_opaq &>(node).format == LY_VALUE_JSON;
    }

    std::vector<RequestNode> children_of(const lyd_node_opaq &parent, const NamespaceName &inherited) {
        std::size_t count = 0;
        for (const lyd_node *child = parent.child; child != nullptr; child = child->next) {
            ++count;
        }
        std::vector<RequestNode> children;
        children.reserve(count);
        while (parent.child != nullptr) {
            children.push_back(node_of(parent.child, inherited));
        }
        if (parent.format == LY_VALUE_JSON) {
            settle_annotations(children);
        }
        return children;
    }

    // Releases the node, which takes it out of its parent.
    RequestNode node_of(lyd_node *taken, const NamespaceName &inherited) {
        const OwnedNode held(taken);
        const auto &opaque = *reinterpret_cast<const lyd_node_opaq *>(taken);
        RequestNode node;
        node.tag = opaque.name.name;
        node.namespace_uri = namespace_of(opaque.name, opaque.format);
        if (node.namespace_uri.empty() && opaque.format == LY_VALUE_JSON) {
            node.namespace_uri = inherited;
        }
        node.form = form_of(opaque);
        if (node.form != ValueForm::none && node.form != ValueForm::empty_element) {
            node.value = opaque.value == nullptr ? "" : opaque.value;
        }
        for (const lyd_attr *attribute = opaque.attr; attribute != nullptr; attribute = attribute->next) {
            node.attributes.push_back({namespace_of(attribute->name, attribute->format), attribute->name.name,
                                       attribute->value == nullptr ? "" : attribute->value});
        }
        node.children = children_of(opaque, node.namespace_uri);
        return node;
    }

    std::unordered_map<const char *, NamespaceName> namespaces_; // by the parser's own texts, which it keeps once each
};

// An element around the whole text takes several top elements, and gives those without a namespace NETCONF's own,
// without which the XML parser refuses them.
std::vector<RequestNode> parse_xml(std::string_view body) {
    std::string text = "<request xmlns=\"";
    text.append(netconf_namespace).append("\">").append(body).append(wrapper_end);
    std::vector<RequestNode> wrapper = TreeBuilder().build(parse(std::move(text), LYD_XML));
    if (wrapper.size() != 1 || wrapper.front().form == ValueForm::text) {
        refuse("malformed-message", "the request has text outside of its elements", "check the request with a parser");
    }
    return std::move(wrapper.front().children);
}

void check_filter(const RequestNode &filter) {
    for (const RequestAttribute &attribute : filter.attributes) {
        if (attribute.name == "type" && attribute.value == "subtree") {
            continue;
        }
        refuse("operation-not-supported",
               "a filter with " + attribute.name + " " + quoted(attribute.value) + " is not supported",
               "use a subtree filter");
    }
}

// The content of <filter> and <config>, in place of them.
std::vector<RequestNode> unwrap(std::vector<RequestNode> tops, Kind kind) {
    const auto wraps = [](const RequestNode &top) {
        return top.namespace_uri == netconf_namespace && (top.tag == "filter" || top.tag == "config");
    };
    if (std::none_of(tops.begin(), tops.end(), wraps)) {
        return tops;
    }
    std::vector<RequestNode> content;
    for (RequestNode &top : tops) {
        const bool filter = top.tag == "filter";
        if (!wraps(top)) {
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

std::vector<RequestNode> parse_request(std::string_view text, Kind kind) {
    const RequestText request = inspect(text);
    if (request.syntax == Syntax::xml) {
        return unwrap(parse_xml(request.body), kind);
    }
    return unwrap(TreeBuilder().build(parse(std::string(request.body), LYD_JSON)), kind);
}

} // namespace ocpsm::framework
