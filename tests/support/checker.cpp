#include "checker.hpp"

#include <algorithm>
#include <string_view>

namespace fake {
namespace {

constexpr char optics[] = "\"/interface-configurations/interface-configuration/optics\", ns=optics-cfg";

bool tagged(const kidl_yfw_datatree &node, std::string_view tag) {
    return node.tag != nullptr && tag == node.tag;
}

template <class Value>
void compare(const std::string &what, Value was, Value is, std::vector<std::string> &found) {
    if (was == is) {
        return;
    }
    std::string line = what;
    if constexpr (std::is_pointer_v<Value>) {
        line += " is another";
    } else {
        line += " " + std::to_string(was) + " -> " + std::to_string(is);
    }
    found.push_back(line);
}

// Only the kinds that the walk gives to this sort of node, and only with the bit that makes them count.
bool is_allowed_kind(const kidl_yfw_datatree &was, const kidl_yfw_datatree &is, bool is_entry) {
    if (was.hierarchy_kind == is.hierarchy_kind && was.second_flags == is.second_flags) {
        return true;
    }
    if (is.second_flags != (was.second_flags | YFW_NODE2_KIND_SET)) {
        return false;
    }
    if (is_entry) {
        return is.hierarchy_kind == YFW_KIND_LIST;
    }
    return is.hierarchy_kind == YFW_KIND_CONTAINER || is.hierarchy_kind == YFW_KIND_LEAF ||
           is.hierarchy_kind == YFW_KIND_CONTENT_MATCH;
}

} // namespace

Checker::Checker(const Platform &platform, yfw_map_ctx ctx, Tolerance tolerance)
    : platform_(platform), ctx_(ctx), tolerance_(tolerance), before_(take()) {}

std::vector<std::string> Checker::differences() const {
    std::vector<std::string> found;
    const Picture now = take();
    compare_nodes(now, found);
    if (now.hierarchy != before_.hierarchy) {
        found.emplace_back("the node hierarchy");
    }
    if (now.itree != before_.itree) {
        found.emplace_back("the instance-tree stack");
    }
#define COMPARE(record, member) compare(#member, before_.record.member, now.record.member, found)
    COMPARE(request, registration);
    COMPARE(request, whole_subtree_walk);
    COMPARE(request, delete_walk);
    COMPARE(request, replace_flags);
    COMPARE(request, replace_marker);
    if (!is_read() || tolerance_ != Tolerance::walk) {
        COMPARE(request, read_selection);
    }
    COMPARE(request, selection_mode);
    COMPARE(request, leaf_selection);
    COMPARE(request, xpath_error);
    COMPARE(request, hierarchy_length);
    COMPARE(request, output_depth);
    COMPARE(request, request_root);
    COMPARE(request, answer_root);
    COMPARE(request, module_list);
    COMPARE(context, request);
    COMPARE(context, debug_log_filter.enabled_levels);
    COMPARE(context, trace_enabled);
    COMPARE(context, output_count);
    COMPARE(context, output);
    if (tolerance_ != Tolerance::walk) {
        compare_unlooked(now, found);
    }
    return found;
}

// What a walk may change: the dump's mark, the operation of the entry, the name of a refused node.
void Checker::compare_unlooked(const Picture &now, std::vector<std::string> &found) const {
    COMPARE(context, list_operation);
    COMPARE(context, data_printed);
    compare("operation_kind", before_.kind, now.kind, found);
    COMPARE(context, root_node);
    COMPARE(context, parent_node);
    COMPARE(context, pending_list);
    COMPARE(context, xpath_count);
    COMPARE(context, xpaths);
    COMPARE(context, error_log);
    COMPARE(context, trace_log);
    COMPARE(context, trace_buffer);
    if (before_.error_node != now.error_node) {
        found.push_back("error node " + before_.error_node + " -> " + now.error_node);
    }
}

Checker::Picture Checker::take() const {
    Picture picture;
    std::size_t number = 0;
    for (const Tree *tree : platform_.trees()) {
        ++number;
        std::string path = tree->path_of(tree->root());
        if (picture.nodes.contains(path)) { // another tree of the same name
            path += "#" + std::to_string(number);
        }
        visit(picture.nodes, *tree->root(), path, false);
    }
    for (const yfw_map_hierarchy_level &level : platform_.hierarchy) {
        picture.hierarchy.push_back(platform_.name_of(level.node) + " " + std::to_string(level.kind));
    }
    for (const Platform::StackEntry &entry : platform_.itree_stack) {
        picture.itree.push_back(platform_.array_name_of(entry.children) + " " + std::to_string(entry.count));
    }
    picture.context = *ctx_;
    if (ctx_->request != nullptr) {
        picture.request = *ctx_->request;
        picture.kind = ctx_->request->registration->operation_kind;
        if (ctx_->request->error_node_name != nullptr) {
            picture.error_node = ctx_->request->error_node_name;
        }
    }
    return picture;
}

void Checker::visit(Nodes &nodes, const kidl_yfw_datatree &node, const std::string &path, bool in_entry) const {
    NodeState &state = nodes[path];
    state.node = &node;
    state.content = node;
    state.is_entry = tagged(node, "aps-module");
    state.is_key = in_entry && tagged(node, "name");
    if (node.children == nullptr) {
        return;
    }
    for (std::int32_t i = 0; i < node.child_count; ++i) {
        const kidl_yfw_datatree &child = node.children[i];
        const bool is_key = state.is_entry && tagged(child, "name");
        visit(nodes, child, path + "/" + std::to_string(i) + ":" + (child.tag == nullptr ? "untagged" : child.tag),
              state.is_entry);
        nodes[path].has_key = nodes[path].has_key || is_key;
    }
}

void Checker::compare_nodes(const Picture &now, std::vector<std::string> &found) const {
    for (const auto &[path, was] : before_.nodes) {
        const auto is = now.nodes.find(path);
        if (is == now.nodes.end()) {
            found.push_back(path + ": gone");
        } else {
            compare_node(path, was, is->second, found);
        }
    }
    for (const auto &[path, is] : now.nodes) {
        if (before_.nodes.contains(path)) {
            continue;
        }
        const auto parent = before_.nodes.find(path.substr(0, path.rfind('/')));
        const auto parent_now = now.nodes.find(path.substr(0, path.rfind('/')));
        if (parent == before_.nodes.end() || !got_its_key(parent->second, parent_now->second)) {
            found.push_back(path + ": new");
        }
    }
}

void Checker::compare_node(const std::string &path, const NodeState &was, const NodeState &is,
                           std::vector<std::string> &found) const {
    const kidl_yfw_datatree &old = was.content;
    const kidl_yfw_datatree &now = is.content;
    compare(path + ": tag", old.tag, now.tag, found);
    compare(path + ": namespace", old.namespace_uri, now.namespace_uri, found);
    compare(path + ": value", old.value, now.value, found);
    compare(path + ": operation", old.operation, now.operation, found);
    const std::uint32_t allowed = allowed_flags(was);
    if ((now.flags & ~allowed) != (old.flags & ~allowed) || (old.flags & allowed & ~now.flags) != 0) {
        compare(path + ": flags", old.flags, now.flags, found);
    }
    const bool kind_may_change = tolerance_ == Tolerance::walk && is_allowed_kind(old, now, was.is_entry);
    if (!kind_may_change && (old.hierarchy_kind != now.hierarchy_kind || old.second_flags != now.second_flags)) {
        found.push_back(path + ": hierarchy kind " + std::to_string(old.hierarchy_kind) + " -> " +
                        std::to_string(now.hierarchy_kind) + ", second flags " + std::to_string(old.second_flags) +
                        " -> " + std::to_string(now.second_flags));
    }
    const bool mark_may_come = tolerance_ == Tolerance::walk ? was.is_key : tolerance_ == Tolerance::keys;
    if (now.consumed_mark != old.consumed_mark && !(mark_may_come && now.consumed_mark == 1)) {
        compare(path + ": consumed mark", static_cast<int>(old.consumed_mark), static_cast<int>(now.consumed_mark),
                found);
    }
    if (!got_its_key(was, is)) {
        compare(path + ": child count", old.child_count, now.child_count, found);
        compare(path + ": children", old.children, now.children, found);
    }
}

// Flags that the walk may have set; none may have gone.
std::uint32_t Checker::allowed_flags(const NodeState &was) const {
    if (tolerance_ != Tolerance::walk) {
        return tolerance_ == Tolerance::keys ? YFW_NODE_KEY_CONSUMED : 0;
    }
    std::uint32_t allowed = was.is_key ? YFW_NODE_KEY_CONSUMED : 0;
    if (was.content.operation == YFW_OPERATION_REPLACE) {
        allowed |= YFW_NODE_OPERATION_REWRITTEN;
    }
    const std::string source = "src=" + platform_.name_of(was.node) + ",";
    for (const std::string &line : platform_.calls(Output)) {
        if (line.find(optics) != std::string::npos && line.find(source) != std::string::npos) {
            allowed |= YFW_NODE_OPERATION_REWRITTEN;
        }
    }
    return allowed;
}

bool Checker::got_its_key(const NodeState &was, const NodeState &is) const {
    if (!was.is_entry || was.has_key || !is_read() || is.content.child_count != was.content.child_count + 1) {
        return false;
    }
    const kidl_yfw_datatree &added = is.content.children[was.content.child_count];
    return tagged(added, "name") && added.value == nullptr && added.consumed_mark == 1 &&
           added.flags == (YFW_NODE_IN_USE | YFW_NODE_KEY_CONSUMED);
}

bool Checker::is_read() const {
    if (tolerance_ != Tolerance::walk) {
        return false;
    }
    const std::uint32_t kind = ctx_->request->registration->operation_kind;
    return kind == YFW_KIND_GET_CONFIG || kind == YFW_KIND_GET;
}

} // namespace fake
