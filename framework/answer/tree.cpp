#include "framework/answer/tree.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/host/codes.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view list_path = "/aps/aps-modules/aps-module";
constexpr std::string_view predicate_begin = "[name=";

// The node below `top` that a leaf lies in, made where it is missing.
AnswerNode &place(AnswerNode &top, const lysc_node &schema) {
    if (&schema == top.schema) {
        return top;
    }
    AnswerNode &parent = place(top, *schema.parent);
    if (const AnswerNode *found = find_child(parent, schema)) {
        return parent.children[static_cast<std::size_t>(found - parent.children.data())];
    }
    join(parent.children, {AnswerNode{&schema}});
    return place(top, schema);
}

// An instance path of a stitch: the key, and the rest as a schema path.
struct StitchPath {
    std::string key;
    std::string schema_path;
};

std::optional<StitchPath> parse_stitch_path(std::string_view path) {
    if (!path.starts_with(list_path)) {
        return std::nullopt;
    }
    path.remove_prefix(list_path.size());
    if (!path.starts_with(predicate_begin)) {
        return std::nullopt;
    }
    path.remove_prefix(predicate_begin.size());
    // The key may hold slashes and brackets, the names behind it may not.
    const std::size_t end = path.rfind(']');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    return StitchPath{std::string(path.substr(0, end)), std::string(list_path) + std::string(path.substr(end + 1))};
}

} // namespace

AnswerTree::AnswerTree() : list_{this}, list_schema_(models::Schema::openconfig().find(list_path)) {}

AnswerTree::Index AnswerTree::entry(std::string_view name) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [name](const Entry &candidate) { return candidate.name == name; });
    if (found != entries_.end()) {
        return static_cast<std::size_t>(found - entries_.begin());
    }
    entries_.push_back({std::string(name), false, AnswerNode{list_schema_}});
    return entries_.size() - 1;
}

void AnswerTree::write(const lysc_node &leaf, std::string_view value) {
    AnswerNode &node = place(entries_[*current_].node, leaf);
    if (!node.value || !value.empty()) {
        node.value = value;
    }
}

// An entry without a name takes it, unless another one has it; an entry is never given a second one.
kerrno AnswerTree::write_key(std::string_view value) {
    if (!current_) {
        return KERR_SUCCESS;
    }
    const auto bears = [value](const Entry &candidate) { return candidate.name == value; };
    Entry &current = entries_[*current_];
    if (!current.name && std::none_of(entries_.begin(), entries_.end(), bears)) {
        current.name = value;
    }
    current_ = entry(value);
    entries_[*current_].part_of_answer = true;
    return KERR_SUCCESS;
}

kerrno AnswerTree::add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
                       bool opens) {
    const lysc_node *node = models::Schema::openconfig().find(without_prefixes(path));
    if (node == nullptr || namespace_uri != node->module->ns) {
        return unknown_answer_node;
    }
    if (node->nodetype != LYS_LEAF) {
        if (value) {
            return unexpected_answer_value;
        }
        if (node == list_schema_ && opens) {
            entries_.push_back({std::nullopt, false, AnswerNode{list_schema_}});
            current_ = entries_.size() - 1;
        }
        return KERR_SUCCESS;
    }
    if (!value || !current_) {
        return KERR_SUCCESS;
    }
    if (lysc_is_key(node)) {
        return write_key(*value);
    }
    write(*node, *value);
    return KERR_SUCCESS;
}

kerrno AnswerTree::search_or_add(std::string_view path, std::string_view key_name, std::string_view key,
                                 std::string_view namespace_uri) {
    if (without_prefixes(path) != list_path || key_name != models::key_names(*list_schema_).front() ||
        namespace_uri != list_schema_->module->ns) {
        return unknown_answer_node;
    }
    current_ = entry(key);
    entries_[*current_].part_of_answer = true;
    return KERR_SUCCESS;
}

kerrno AnswerTree::stitch(const yfw_map_stitch_entry &stitched) {
    const std::optional<StitchPath> path = parse_stitch_path(stitched.instance_path);
    if (stitched.in_use != 1 || stitched.value_kind != YFW_STITCH_VALUE_TEXT || !path ||
        path->schema_path != stitched.schema_path) {
        return invalid_arguments;
    }
    const lysc_node *leaf = models::Schema::openconfig().find(path->schema_path);
    if (leaf == nullptr || leaf->nodetype != LYS_LEAF || leaf->module->ns != std::string_view(stitched.namespace_uri)) {
        return unknown_answer_node;
    }
    if (lysc_is_key(leaf) && path->key != stitched.value) {
        return invalid_arguments;
    }
    current_ = entry(path->key);
    if (lysc_is_key(leaf)) {
        entries_[*current_].part_of_answer = true;
    } else {
        write(*leaf, stitched.value);
    }
    return KERR_SUCCESS;
}

void AnswerTree::note_failure(kerrno result) {
    if (failure_ == KERR_SUCCESS) {
        failure_ = result;
    }
}

void AnswerTree::point_to(const std::optional<std::string> &name) {
    current_ = name ? entry(*name) : std::nullopt;
}

void AnswerTree::open_scope() {
    scopes_.push_back(current_);
}

void AnswerTree::close_scope() {
    if (!scopes_.empty()) {
        scopes_.pop_back();
    }
    current_ = scopes_.empty() ? std::nullopt : scopes_.back();
}

std::vector<std::string> AnswerTree::names() const {
    std::vector<std::string> names;
    for (const Entry &entry : entries_) {
        if (entry.part_of_answer) {
            names.push_back(*entry.name);
        }
    }
    return names;
}

std::vector<AnswerNode> AnswerTree::answer() const {
    const lysc_node *key = models::Schema::openconfig().children(list_schema_).front();
    std::vector<AnswerNode> entries;
    for (const Entry &entry : entries_) {
        if (!entry.part_of_answer) {
            continue;
        }
        AnswerNode node = entry.node;
        node.children.insert(node.children.begin(), AnswerNode{key, entry.name});
        join(entries, {node});
    }
    if (entries.empty()) {
        return {};
    }
    const lysc_node *list_container = list_schema_->parent;
    return {AnswerNode{list_container->parent, {}, {AnswerNode{list_container, {}, std::move(entries)}}}};
}

} // namespace ocpsm::framework
