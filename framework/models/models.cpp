#include "framework/models/models.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "framework/library.hpp"

namespace ocpsm::models {
namespace {

bool is_data_node(const lysc_node &node) {
    return node.nodetype == LYS_CONTAINER || node.nodetype == LYS_LIST || node.nodetype == LYS_LEAF;
}

std::string_view text_of(const char *text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

std::string_view type_name(const lysc_type &type) {
    switch (type.basetype) {
    case LY_TYPE_BOOL:
        return "boolean";
    case LY_TYPE_DEC64:
        return "decimal64";
    case LY_TYPE_ENUM:
        return "enumeration";
    case LY_TYPE_IDENT:
        return "identityref";
    case LY_TYPE_INT32:
        return "int32";
    case LY_TYPE_LEAFREF:
        return "leafref";
    case LY_TYPE_STRING:
        return "string";
    case LY_TYPE_UINT32:
        return "uint32";
    case LY_TYPE_UINT64:
        return "uint64";
    default:
        throw std::logic_error("a model uses a type that is not known here");
    }
}

// The identities derived from `base`, in the order of the model.
void add_derived(const lysc_ident &base, std::vector<std::string_view> &names) {
    LY_ARRAY_COUNT_TYPE index = 0;
    LY_ARRAY_FOR(base.derived, index) {
        names.emplace_back(base.derived[index]->name);
        add_derived(*base.derived[index], names);
    }
}

std::vector<std::string_view> choices_of(const lysc_type &type) {
    std::vector<std::string_view> names;
    LY_ARRAY_COUNT_TYPE index = 0;
    if (type.basetype == LY_TYPE_ENUM) {
        const auto &enumeration = reinterpret_cast<const lysc_type_enum &>(type);
        LY_ARRAY_FOR(enumeration.enums, index) {
            names.emplace_back(enumeration.enums[index].name);
        }
    } else if (type.basetype == LY_TYPE_IDENT) {
        const auto &reference = reinterpret_cast<const lysc_type_identityref &>(type);
        LY_ARRAY_FOR(reference.bases, index) {
            add_derived(*reference.bases[index], names);
        }
    }
    return names;
}

// Signed and unsigned numbers share a place; no model here has one that fits only the latter.
std::optional<Range> range_of(const lysc_type &type) {
    if (type.basetype != LY_TYPE_INT32 && type.basetype != LY_TYPE_UINT32) {
        return std::nullopt;
    }
    const lysc_range *range = reinterpret_cast<const lysc_type_num &>(type).range;
    if (range == nullptr) {
        return std::nullopt;
    }
    return Range{range->parts[0].min_64, range->parts[LY_ARRAY_COUNT(range->parts) - 1].max_64};
}

void describe_leaf(const lysc_node_leaf &leaf, NodeInfo &info) {
    info.type = type_name(*leaf.type);
    info.units = text_of(leaf.units);
    info.choices = choices_of(*leaf.type);
    if (leaf.type->basetype == LY_TYPE_DEC64) {
        info.fraction_digits = reinterpret_cast<const lysc_type_dec &>(*leaf.type).fraction_digits;
    }
    info.range = range_of(*leaf.type);
    if (leaf.dflt != nullptr) {
        info.default_value = lyd_value_get_canonical(leaf.module->ctx, leaf.dflt);
    }
}

} // namespace

// libyang sorts keys to the front.
std::vector<const lysc_node *> key_leaves(const lysc_node &node) {
    std::vector<const lysc_node *> leaves;
    if (node.nodetype == LYS_LIST) {
        for (const lysc_node *child = lysc_node_child(&node); lysc_is_key(child); child = child->next) {
            leaves.push_back(child);
        }
    }
    return leaves;
}

std::vector<std::string_view> key_names(const lysc_node &node) {
    std::vector<std::string_view> names;
    for (const lysc_node *key : key_leaves(node)) {
        names.emplace_back(key->name);
    }
    return names;
}

NodeInfo describe(const lysc_node &node) {
    NodeInfo info = {};
    info.node = &node;
    info.kind = node.nodetype == LYS_CONTAINER ? NodeKind::container
                : node.nodetype == LYS_LIST    ? NodeKind::list
                                               : NodeKind::leaf;
    info.config = (node.flags & LYS_CONFIG_W) != 0;
    info.name = node.name;
    info.module = node.module->name;
    info.namespace_uri = node.module->ns;
    info.keys = key_names(node);
    if (info.kind == NodeKind::leaf) {
        describe_leaf(reinterpret_cast<const lysc_node_leaf &>(node), info);
    }
    return info;
}

std::optional<std::string> canonical(const lysc_node &leaf, std::string_view value) {
    // libyang takes a text for ended there and keeps less than it frees.
    if (value.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    // libyang takes an empty prefix for none.
    const bool identity = reinterpret_cast<const lysc_node_leaf &>(leaf).type->basetype == LY_TYPE_IDENT;
    if (identity && value.substr(std::min(value.find_first_not_of(" \t\r\n"), value.size())).starts_with(':')) {
        return std::nullopt;
    }
    const QuietLibrary quiet;
    const char *text = nullptr;
    const LY_ERR result =
        lyd_value_validate(leaf.module->ctx, &leaf, value.data(), value.size(), nullptr, nullptr, &text);
    std::optional<std::string> stored;
    // A reference to another leaf is complete only with the data around it, which is not looked at here.
    if (result == LY_SUCCESS || result == LY_EINCOMPLETE) {
        stored = text == nullptr ? value : std::string_view(text);
    }
    if (text != nullptr) {
        lydict_remove(leaf.module->ctx, text);
    }
    return stored;
}

std::string schema_path(const lysc_node &node) {
    std::string path = node.parent == nullptr ? std::string() : schema_path(*node.parent);
    return path.append("/").append(node.name);
}

void Schema::Destroy::operator()(ly_ctx *context) const noexcept {
    ly_ctx_destroy(context);
}

Schema::Schema(std::span<const ModuleText> modules) {
    const QuietLibrary quiet;
    ly_ctx *made = nullptr;
    if (ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS, &made) != LY_SUCCESS) {
        throw std::runtime_error("cannot make a libyang context");
    }
    context_.reset(made);
    std::vector<const lys_module *> compiled;
    for (const ModuleText &module : modules) {
        lys_module *parsed = nullptr;
        if (lys_parse_mem(made, std::string(module.text).c_str(), LYS_IN_YANG, &parsed) != LY_SUCCESS) {
            throw std::runtime_error("module " + std::string(module.name) + ": " +
                                     std::string(text_of(ly_errmsg(made))));
        }
        compiled.push_back(parsed);
    }
    // Only now: a later module may have made an earlier one be compiled anew, with its augments.
    for (const lys_module *module : compiled) {
        for (const lysc_node *node = module->compiled->data; node != nullptr; node = node->next) {
            top_nodes_.push_back(node);
        }
    }
}

const Schema &Schema::openconfig() {
    static const Schema schema(embedded_modules().first(1));
    return schema;
}

const Schema &Schema::native() {
    static const Schema schema(embedded_modules().subspan(1));
    return schema;
}

std::vector<const lysc_node *> Schema::children(const lysc_node *parent) const {
    if (parent == nullptr) {
        return top_nodes_;
    }
    std::vector<const lysc_node *> nodes;
    for (const lysc_node *node = lysc_node_child(parent); node != nullptr; node = node->next) {
        if (is_data_node(*node)) {
            nodes.push_back(node);
        }
    }
    return nodes;
}

const lysc_node *Schema::child(const lysc_node *parent, std::string_view name,
                               std::string_view preferred_namespace) const {
    const lysc_node *found = nullptr;
    for (const lysc_node *node : children(parent)) {
        if (node->name == name && (found == nullptr || preferred_namespace == node->module->ns)) {
            found = node;
        }
    }
    return found;
}

const lysc_node *Schema::find(std::string_view path) const {
    const lysc_node *node = nullptr;
    while (!path.empty()) {
        if (path.front() != '/') {
            return nullptr;
        }
        path.remove_prefix(1);
        const std::string_view step = path.substr(0, path.find('/'));
        node = child(node, step);
        if (node == nullptr) {
            return nullptr;
        }
        path.remove_prefix(step.size());
    }
    return node;
}

std::optional<NodeInfo> Schema::describe(std::string_view path) const {
    const lysc_node *node = find(path);
    return node == nullptr ? std::nullopt : std::optional(models::describe(*node));
}

} // namespace ocpsm::models
