#include "framework/host/data_tree.hpp"

#include <algorithm>
#include <utility>

namespace ocpsm::framework {

DataTree::DataTree(const RequestNode &root) {
    Kept kept;
    blocks_.emplace_back().push_back(build(root, kept));
}

DataTree::DataTree(const kidl_yfw_datatree &root) {
    Kept kept;
    blocks_.emplace_back().push_back(copy(root, kept));
}

char *DataTree::keep(std::string_view text) {
    return texts_.emplace_back(text).data();
}

char *DataTree::keep_namespace(std::string_view text, Kept &kept) {
    const auto [place, is_new] = kept.try_emplace(text.data());
    if (is_new) {
        place->second = keep(text);
    }
    return place->second;
}

void DataTree::give_children(kidl_yfw_datatree &node, Block &block) {
    node.children = block.data();
    node.child_count = static_cast<int32_t>(block.size());
    node.flags |= YFW_NODE_CHILDREN_VALID;
}

kidl_yfw_datatree DataTree::build(const RequestNode &node, Kept &kept) {
    kidl_yfw_datatree made{};
    made.tag = keep(node.tag);
    made.namespace_uri = node.namespace_uri.empty() ? nullptr : keep_namespace(node.namespace_uri, kept);
    made.operation = static_cast<uint32_t>(node.operation);
    made.flags = YFW_NODE_IN_USE;
    if (node.value) {
        made.value = keep(*node.value);
        made.flags |= YFW_NODE_HAS_VALUE;
    }
    if (!node.children.empty()) {
        Block children;
        children.reserve(node.children.size());
        for (const RequestNode &child : node.children) {
            children.push_back(build(child, kept));
        }
        give_children(made, blocks_.emplace_back(std::move(children)));
    }
    return made;
}

kidl_yfw_datatree DataTree::copy(const kidl_yfw_datatree &node, Kept &kept) {
    kidl_yfw_datatree made = node;
    made.tag = node.tag == nullptr ? nullptr : keep(node.tag);
    made.namespace_uri = node.namespace_uri == nullptr ? nullptr : keep_namespace(node.namespace_uri, kept);
    made.value = node.value == nullptr ? nullptr : keep(node.value);
    made.children = nullptr;
    made.child_count = 0;
    const auto visible = children_of(node);
    if (!visible.empty()) {
        Block children;
        children.reserve(visible.size());
        for (const kidl_yfw_datatree &child : visible) {
            children.push_back(copy(child, kept));
        }
        Block &block = blocks_.emplace_back(std::move(children));
        made.children = block.data();
        made.child_count = static_cast<int32_t>(block.size());
    }
    return made;
}

kidl_yfw_datatree &DataTree::add_child(kidl_yfw_datatree &parent, const RequestNode &leaf) {
    const auto grown = grown_.extract(parent.children);
    // The first time the children move to an array that has room.
    Block &block = grown.empty() ? blocks_.emplace_back() : *grown.mapped();
    if (grown.empty() && parent.children != nullptr && parent.child_count > 0) {
        block.assign(parent.children, parent.children + parent.child_count);
    }
    Kept kept;
    block.push_back(build(leaf, kept));
    give_children(parent, block);
    grown_.emplace(parent.children, &block);
    return block.back();
}

std::span<const kidl_yfw_datatree> children_of(const kidl_yfw_datatree &node) {
    if (node.children == nullptr || node.child_count <= 0) {
        return {};
    }
    return {node.children, static_cast<std::size_t>(node.child_count)};
}

const kidl_yfw_datatree *find_child(const kidl_yfw_datatree &node, std::string_view tag) {
    for (const kidl_yfw_datatree &child : children_of(node)) {
        if (child.tag != nullptr && child.tag == tag) {
            return &child;
        }
    }
    return nullptr;
}

std::optional<std::string_view> value_of(const kidl_yfw_datatree &node) {
    if ((node.flags & YFW_NODE_HAS_VALUE) == 0 || node.value == nullptr) {
        return std::nullopt;
    }
    return node.value;
}

namespace {

void print_below(const kidl_yfw_datatree &node, std::size_t depth, std::vector<std::string> &lines) {
    std::string line(depth * 2, ' ');
    line += node.tag == nullptr ? "(no tag)" : node.tag;
    if ((node.flags & YFW_NODE_IN_USE) == 0) {
        lines.push_back(line + " (not in use)");
        return;
    }
    if (const auto value = value_of(node)) {
        line.append(" = \"").append(*value).append("\"");
    }
    if (node.namespace_uri != nullptr) {
        line.append(" [").append(node.namespace_uri).append("]");
    }
    if (node.operation != YFW_OPERATION_MERGE) {
        line.append(" operation ").append(std::to_string(node.operation));
    }
    lines.push_back(std::move(line));
    for (const kidl_yfw_datatree &child : children_of(node)) {
        print_below(child, depth + 1, lines);
    }
}

} // namespace

std::size_t line_count(const kidl_yfw_datatree &node) {
    std::size_t lines = 1;
    if ((node.flags & YFW_NODE_IN_USE) != 0) {
        for (const kidl_yfw_datatree &child : children_of(node)) {
            lines += line_count(child);
        }
    }
    return lines;
}

std::vector<std::string> print(const kidl_yfw_datatree &node) {
    std::vector<std::string> lines;
    print_below(node, 0, lines);
    return lines;
}

} // namespace ocpsm::framework
