#include "tree.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace fake {

Node Node::with_operation(std::uint32_t new_operation) const {
    Node changed = *this;
    changed.operation = new_operation;
    return changed;
}

Node Node::untagged() const {
    Node changed = *this;
    changed.tag.reset();
    return changed;
}

Node Node::without_array(std::int32_t count) const {
    Node changed = *this;
    changed.with_children = true;
    changed.hide_array = true;
    changed.claimed_count = count;
    return changed;
}

Node leaf(std::string tag, std::optional<std::string> value) {
    Node node;
    node.tag = std::move(tag);
    node.value = std::move(value);
    return node;
}

Node container(std::string tag, std::vector<Node> children) {
    Node node = leaf(std::move(tag));
    node.with_children = !children.empty();
    node.children = std::move(children);
    return node;
}

Tree::Tree(const Node &description) : root_(std::make_unique<kidl_yfw_datatree>()) {
    fill(*root_, description);
    rename(description.tag.value_or("untagged"));
}

std::unique_ptr<Tree> Tree::copy_of(const kidl_yfw_datatree &node) {
    std::unique_ptr<Tree> tree(new Tree); // NOLINT(cppcoreguidelines-owning-memory): the constructor is private
    tree->root_ = std::make_unique<kidl_yfw_datatree>();
    tree->copy(*tree->root_, node);
    tree->rename(node.tag == nullptr ? "untagged" : node.tag);
    return tree;
}

kidl_yfw_datatree *Tree::at(std::string_view path) {
    const std::string wanted = path.empty() ? name_ : name_ + "/" + std::string(path);
    const auto found =
        std::find_if(paths_.begin(), paths_.end(), [&](const auto &entry) { return entry.second == wanted; });
    if (found == paths_.end()) {
        throw std::out_of_range("no node " + wanted);
    }
    // The tree owns the node; the index keeps addresses only.
    return const_cast<kidl_yfw_datatree *>(static_cast<const kidl_yfw_datatree *>(found->first));
}

std::string Tree::path_of(const void *node) const {
    const auto found = paths_.find(node);
    return found == paths_.end() ? std::string() : found->second;
}

std::string Tree::owner_of_array(const void *array) const {
    const auto found = array_owners_.find(array);
    return found == array_owners_.end() ? std::string() : found->second;
}

void Tree::rename(std::string name) {
    name_ = std::move(name);
    paths_.clear();
    array_owners_.clear();
    index(*root_, name_);
}

kidl_yfw_datatree *Tree::add_child(kidl_yfw_datatree *parent, std::string_view tag, const char *namespace_uri,
                                   const char *value, std::uint32_t operation) {
    const bool valid = (parent->flags & YFW_NODE_CHILDREN_VALID) != 0 && parent->children != nullptr;
    const auto count = valid ? static_cast<std::size_t>(parent->child_count) : 0;
    kidl_yfw_datatree *moved = new_array(count + 1);
    std::copy_n(parent->children, count, moved);
    for (std::size_t i = 0; i < count; ++i) {
        paths_.erase(&parent->children[i]);
    }
    array_owners_.erase(parent->children);
    std::erase_if(arrays_, [&](const auto &array) { return count != 0 && array.get() == parent->children; });

    kidl_yfw_datatree &added = moved[count];
    added.tag = new_text(tag);
    added.namespace_uri = namespace_uri == nullptr ? nullptr : new_text(std::string_view(namespace_uri));
    added.value = value == nullptr ? nullptr : new_text(std::string_view(value));
    added.operation = operation;
    added.flags = YFW_NODE_IN_USE | (value == nullptr ? 0 : YFW_NODE_HAS_VALUE);
    parent->children = moved;
    parent->child_count = static_cast<std::int32_t>(count + 1);
    parent->flags |= YFW_NODE_CHILDREN_VALID;
    index(*parent, path_of(parent));
    return &added;
}

void Tree::fill(kidl_yfw_datatree &node, const Node &description) {
    node.tag = new_text(description.tag);
    node.namespace_uri = new_text(description.namespace_uri);
    node.value = new_text(description.value);
    node.operation = description.operation;
    node.flags = description.flags;
    if (description.value) {
        node.flags |= YFW_NODE_HAS_VALUE;
    }
    if (description.with_children) {
        node.flags |= YFW_NODE_CHILDREN_VALID;
    }
    node.flags &= ~description.cleared_flags;
    const std::size_t count = description.children.size();
    if (count != 0 && !description.hide_array) {
        node.children = new_array(count);
        for (std::size_t i = 0; i < count; ++i) {
            fill(node.children[i], description.children[i]);
        }
    }
    node.child_count = description.claimed_count.value_or(static_cast<std::int32_t>(count));
}

void Tree::copy(kidl_yfw_datatree &to, const kidl_yfw_datatree &from) {
    to = from;
    to.tag = from.tag == nullptr ? nullptr : new_text(std::string_view(from.tag));
    to.namespace_uri = from.namespace_uri == nullptr ? nullptr : new_text(std::string_view(from.namespace_uri));
    to.value = from.value == nullptr ? nullptr : new_text(std::string_view(from.value));
    if (from.children == nullptr || from.child_count <= 0) {
        to.children = nullptr;
        return;
    }
    const auto count = static_cast<std::size_t>(from.child_count);
    to.children = new_array(count);
    for (std::size_t i = 0; i < count; ++i) {
        copy(to.children[i], from.children[i]);
    }
}

kidl_yfw_datatree *Tree::new_array(std::size_t count) {
    arrays_.push_back(std::make_unique<kidl_yfw_datatree[]>(count));
    return arrays_.back().get();
}

char *Tree::new_text(std::string_view text) {
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    texts_.push_back(std::move(copy));
    return texts_.back().get();
}

char *Tree::new_text(const std::optional<std::string> &text) {
    return text ? new_text(std::string_view(*text)) : nullptr;
}

void Tree::index(const kidl_yfw_datatree &node, const std::string &path) {
    paths_[&node] = path;
    if (node.children == nullptr || node.child_count <= 0) {
        return;
    }
    array_owners_[node.children] = path;
    std::map<std::string, int> seen;
    for (std::int32_t i = 0; i < node.child_count; ++i) {
        const kidl_yfw_datatree &child = node.children[i];
        std::string tag = child.tag == nullptr ? "untagged" : child.tag;
        const int number = ++seen[tag];
        if (number > 1) {
            tag += "[" + std::to_string(number) + "]";
        }
        index(child, std::string(path).append("/").append(tag));
    }
}

} // namespace fake
