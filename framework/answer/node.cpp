#include "framework/answer/node.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

bool is_list(const AnswerNode &node) {
    return node.schema->nodetype == LYS_LIST;
}

// The values of an entry's keys; empty for any other node.
std::vector<std::optional<std::string>> keys_of(const AnswerNode &node) {
    std::vector<std::optional<std::string>> keys;
    for (const AnswerNode &child : node.children) {
        if (lysc_is_key(child.schema)) {
            keys.push_back(child.value);
        }
    }
    return keys;
}

bool is_same(const AnswerNode &one, const AnswerNode &other) {
    return one.schema == other.schema && (!is_list(one) || keys_of(one) == keys_of(other));
}

std::size_t position(const lysc_node &node) {
    std::size_t index = 0;
    for (const lysc_node *before = node.prev; before->next != nullptr; before = before->prev) {
        ++index;
    }
    return index;
}

bool stands_before(const AnswerNode &one, const AnswerNode &other) {
    if (one.schema != other.schema) {
        return position(*one.schema) < position(*other.schema);
    }
    return is_list(one) && keys_of(one) < keys_of(other);
}

void visit_leaves(const std::vector<AnswerNode> &nodes, const std::string &above,
                  const std::function<void(const std::string &path, const AnswerNode &leaf)> &visit) {
    for (const AnswerNode &node : nodes) {
        const std::string path = above + answer_step(node);
        if (node.schema->nodetype == LYS_LEAF) {
            visit(path, node);
        }
        visit_leaves(node.children, path, visit);
    }
}

} // namespace

std::string_view name_of(const AnswerNode &node) {
    return node.schema->name;
}

const AnswerNode *find_child(const AnswerNode &parent, const lysc_node &schema) {
    const auto found = std::find_if(parent.children.begin(), parent.children.end(),
                                    [&schema](const AnswerNode &child) { return child.schema == &schema; });
    return found == parent.children.end() ? nullptr : &*found;
}

const AnswerNode *find_child(const AnswerNode &parent, std::string_view name) {
    const auto found = std::find_if(parent.children.begin(), parent.children.end(),
                                    [name](const AnswerNode &child) { return name_of(child) == name; });
    return found == parent.children.end() ? nullptr : &*found;
}

std::string answer_step(const AnswerNode &node) {
    std::string step = "/" + std::string(name_of(node));
    for (const AnswerNode &child : node.children) {
        if (lysc_is_key(child.schema)) {
            step += key_predicate(name_of(child), child.value.value_or(""));
        }
    }
    return step;
}

void for_each_leaf(const std::vector<AnswerNode> &tops,
                   const std::function<void(const std::string &path, const AnswerNode &leaf)> &visit) {
    visit_leaves(tops, "", visit);
}

void join(std::vector<AnswerNode> &nodes, const std::vector<AnswerNode> &more) {
    for (const AnswerNode &node : more) {
        const auto same = std::find_if(nodes.begin(), nodes.end(),
                                       [&node](const AnswerNode &candidate) { return is_same(candidate, node); });
        if (same != nodes.end()) {
            join(same->children, node.children);
            continue;
        }
        const auto behind = std::find_if(nodes.begin(), nodes.end(), [&node](const AnswerNode &candidate) {
            return stands_before(node, candidate);
        });
        nodes.insert(behind, node);
    }
}

} // namespace ocpsm::framework
