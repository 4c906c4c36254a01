#include "framework/answer/cut.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/models/models.hpp"

namespace ocpsm::framework {

namespace {

bool selects(const RequestNode &selection, const AnswerNode &node) {
    return selection.tag == name_of(node) && selection.namespace_uri == node.schema->module->ns;
}

// A leaf that is given a value: what is beside it counts only where the values are equal.
bool is_content_match(const RequestNode &selection) {
    return selection.value.has_value();
}

bool has_match(const AnswerNode &node, const RequestNode &match) {
    return std::any_of(node.children.begin(), node.children.end(), [&match](const AnswerNode &child) {
        return selects(match, child) && child.value == match.value;
    });
}

std::vector<AnswerNode> select_below(const std::vector<AnswerNode> &nodes, const std::vector<RequestNode> &selections);

// The selected children of a node, by the selections below it. None when it is not selected at all.
std::optional<std::vector<AnswerNode>> select_children(const AnswerNode &node,
                                                       const std::vector<RequestNode> &selections) {
    std::vector<RequestNode> wanted;
    for (const RequestNode &selection : selections) {
        if (!is_content_match(selection)) {
            wanted.push_back(selection);
        } else if (!has_match(node, selection)) {
            return std::nullopt;
        }
    }
    if (wanted.empty()) {
        return node.children;
    }
    const bool matched = wanted.size() < selections.size();
    std::vector<AnswerNode> children = select_below(node.children, wanted);
    if (children.empty() && !matched) {
        return std::nullopt;
    }
    for (const AnswerNode &child : node.children) {
        const bool content = std::any_of(selections.begin(), selections.end(), [&child](const RequestNode &selection) {
            return is_content_match(selection) && selects(selection, child);
        });
        if (content || lysc_is_key(child.schema)) {
            join(children, {child});
        }
    }
    return children;
}

std::vector<AnswerNode> select_below(const std::vector<AnswerNode> &nodes, const std::vector<RequestNode> &selections) {
    std::vector<AnswerNode> selected;
    for (const AnswerNode &node : nodes) {
        for (const RequestNode &selection : selections) {
            if (!selects(selection, node)) {
                continue;
            }
            if (selection.children.empty()) {
                join(selected, {node});
            } else if (auto children = select_children(node, selection.children)) {
                join(selected, {AnswerNode{node.schema, node.value, std::move(*children)}});
            }
        }
    }
    return selected;
}

struct Named {
    std::size_t state_leaves = 0;
    bool others = false;
};

void count(const RequestNode &selection, const lysc_node *parent, Named &named) {
    const lysc_node *schema = models::Schema::openconfig().child(parent, selection.tag, selection.namespace_uri);
    if (schema != nullptr && lysc_is_key(schema)) {
        return;
    }
    if (schema != nullptr && !selection.children.empty()) {
        for (const RequestNode &child : selection.children) {
            count(child, schema, named);
        }
        const bool only_keys =
            std::all_of(selection.children.begin(), selection.children.end(), [schema](const RequestNode &child) {
                const lysc_node *key = models::Schema::openconfig().child(schema, child.tag, child.namespace_uri);
                return key != nullptr && lysc_is_key(key);
            });
        named.others = named.others || only_keys;
        return;
    }
    const bool state_leaf = schema != nullptr && schema->nodetype == LYS_LEAF && (schema->flags & LYS_CONFIG_R) != 0;
    if (state_leaf) {
        ++named.state_leaves;
    } else {
        named.others = true;
    }
}

} // namespace

std::vector<AnswerNode> cut(const std::vector<AnswerNode> &tops, const std::vector<RequestNode> &selections) {
    return select_below(tops, selections);
}

std::size_t state_leaves_only(const std::vector<RequestNode> &selections) {
    Named named;
    for (const RequestNode &selection : selections) {
        count(selection, nullptr, named);
    }
    return named.others ? 0 : named.state_leaves;
}

} // namespace ocpsm::framework
