#include "framework/host/mapping_context.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/request/instance_path.hpp"
#include "hvs_dt.h"

namespace ocpsm::framework {

namespace {

constexpr uint32_t all_levels = 0xffffffff;

thread_local const kidl_yfw_datatree *asked = nullptr; // see note_question

} // namespace

MappingContext::MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels,
                               native::NativeRequest &native)
    : MappingContext(kind, registered, channels, &native, nullptr) {}

MappingContext::MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels, AnswerWriter &answer)
    : MappingContext(kind, registered, channels, nullptr, &answer) {
    request_.module_list = answer.module_list();
}

MappingContext::MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels,
                               native::NativeRequest *native, AnswerWriter *answer)
    : yfw_map_context{}, channels_(channels), native_(native), answer_(answer),
      schema_(answer == nullptr ? models::Schema::openconfig() : models::Schema::native()), tree_(registered),
      duplicate_(tree_.root()), destination_(RequestNode{answer == nullptr ? "native" : "openconfig", ""}) {
    registration_.operation_kind = kind;
    request_.registration = &registration_;
    request_.request_root = &duplicate_.root();
    yfw_map_context::request = &request_;
    error_log = channels.error_log();
    trace_log = channels.trace_log();
    trace_buffer = channels.trace_buffer();
    root_node = &tree_.root();
    asked = nullptr;
}

MappingContext::~MappingContext() {
    hvs_named_free(request_.error_node_name);
}

void MappingContext::switch_channels(bool log, bool trace) {
    debug_log_filter.enabled_levels = log ? all_levels : 0;
    trace_enabled = trace ? 1 : 0;
}

void MappingContext::set_answer_root(kidl_yfw_datatree &root) {
    request_.answer_root = &root;
    root_node = &root;
}

void MappingContext::select_state_leaves(std::size_t count) {
    constexpr uint32_t state_leaves = 2;
    constexpr std::size_t bits = 32;
    if (count > 0) {
        request_.selection_mode = state_leaves;
        request_.leaf_selection = count < bits ? (1U << count) - 1 : all_levels;
    }
}

void MappingContext::show_hierarchy() {
    last_origin_.reset();
    asked = nullptr;
    request_.hierarchy = levels_.data();
    request_.hierarchy_length = static_cast<uint32_t>(levels_.size());
    const auto node_at = [this](std::size_t from_top) {
        // The plug-in may write to the nodes of the tree that it walks.
        return levels_.size() < from_top ? nullptr
                                         : const_cast<kidl_yfw_datatree *>(levels_[levels_.size() - from_top].node);
    };
    current_node = node_at(1);
    parent_node = node_at(2);
}

void MappingContext::push_level(const kidl_yfw_datatree &node, uint32_t kind) {
    std::string path = entries_.empty() ? "" : entries_.back().schema_path;
    path.append("/").append(node.tag == nullptr ? "" : node.tag);
    std::string step = instance_step(schema_, path, node);
    HierarchyEntry &entry = entries_.emplace_back();
    entry.schema_path = std::move(path);
    entry.step = std::move(step);
    levels_.push_back({&node, kind});
    show_hierarchy();
}

void MappingContext::pop_level(const kidl_yfw_datatree &node) {
    const auto is_it = [&node](const yfw_map_hierarchy_level &level) { return level.node == &node; };
    const auto found = std::find_if(levels_.rbegin(), levels_.rend(), is_it);
    if (found == levels_.rend()) {
        return;
    }
    levels_.erase(std::prev(found.base()), levels_.end());
    entries_.resize(levels_.size());
    if (levels_.size() <= list_depth_) {
        list_copy_.reset();
        request_.list_node = nullptr;
    }
    show_hierarchy();
}

std::string MappingContext::hierarchy_path() const {
    std::string path;
    for (const HierarchyEntry &entry : entries_) {
        path += entry.step;
    }
    return path;
}

void MappingContext::point_answer() {
    const InstanceMap::Place top = map_->top();
    const InstanceMap::Place *place = &top;
    for (std::size_t level = 0; level < levels_.size(); ++level) {
        std::optional<InstanceMap::Place> &here = entries_[level].place;
        if (!here) {
            here = map_->below(*place, *levels_[level].node);
        }
        place = &*here;
    }
    const std::string *instance = map_->instance_of(*place);
    answer_->point_to(instance == nullptr ? std::nullopt : std::optional(*instance));
}

void MappingContext::update_list_node(const std::string &list_path) {
    if (answer_ != nullptr) {
        if (map_ != nullptr) {
            point_answer();
        }
        return;
    }
    const bool current =
        !levels_.empty() && levels_.back().kind == list_level && entries_.back().schema_path == list_path;
    list_copy_.reset();
    if (current) {
        // A walk of a whole subtree pushes one node several times: the outermost of them counts.
        const kidl_yfw_datatree *node = levels_.back().node;
        const auto outermost =
            std::find_if(levels_.begin(), levels_.end(), [node](const auto &level) { return level.node == node; });
        list_depth_ = static_cast<std::size_t>(outermost - levels_.begin());
        list_copy_.emplace(*node);
    }
    request_.list_node = current ? &list_copy_->root() : nullptr;
}

const kidl_yfw_datatree *MappingContext::child_at(std::size_t level, std::string_view tag) {
    const kidl_yfw_datatree &node = *levels_[level].node;
    HierarchyEntry &entry = entries_[level];
    if (entry.children != node.children || entry.child_count != node.child_count) {
        entry.children = node.children;
        entry.child_count = node.child_count;
        entry.found.clear();
    }
    auto found = entry.found.find(tag);
    if (found == entry.found.end()) {
        found = entry.found.emplace(tag, find_child(node, tag)).first;
    }
    return found->second;
}

const char *MappingContext::innermost_key(std::string_view key) {
    for (std::size_t level = levels_.size(); level-- > 0;) {
        const kidl_yfw_datatree *leaf = levels_[level].kind == list_level ? child_at(level, key) : nullptr;
        if (leaf != nullptr && value_of(*leaf)) {
            return leaf->value;
        }
    }
    return nullptr;
}

kerrno MappingContext::add_absolute(AddRecord &add, const kidl_yfw_datatree *source) {
    const auto value = add.value ? std::optional<std::string_view>(*add.value) : std::nullopt;
    if (answer_ != nullptr) {
        return answer_->add(add.path, add.namespace_uri, value, add.first_flag != 0);
    }
    add.origin = origin(source);
    return native_->add(add.path, add.namespace_uri, value, add.source_operation.value_or(YFW_OPERATION_MERGE),
                        add.first_flag != 0, add.origin);
}

void MappingContext::note_question(const kidl_yfw_datatree *node) noexcept {
    asked = node;
}

// Leaves are not on the hierarchy; they are children of its innermost node.
std::optional<std::string> MappingContext::path_of(const kidl_yfw_datatree *node) const {
    if (node == nullptr || levels_.empty()) {
        return std::nullopt;
    }
    const auto children = children_of(*levels_.back().node);
    const std::less<> before;
    if (!children.empty() && !before(node, children.data()) && before(node, children.data() + children.size())) {
        return hierarchy_path() + "/" + (node->tag == nullptr ? "" : node->tag);
    }
    const auto is_it = [node](const yfw_map_hierarchy_level &level) { return level.node == node; };
    const auto level = std::find_if(levels_.rbegin(), levels_.rend(), is_it);
    if (level == levels_.rend()) {
        return std::nullopt;
    }
    std::string path;
    for (std::ptrdiff_t index = 0; index < level.base() - levels_.begin(); ++index) {
        path += entries_[static_cast<std::size_t>(index)].step;
    }
    return path;
}

std::uint32_t MappingContext::origin(const kidl_yfw_datatree *source) {
    const uint32_t whole = request_.whole_subtree_walk;
    if (last_origin_ && last_origin_->source == source && last_origin_->asked == asked &&
        last_origin_->whole == whole) {
        return last_origin_->number;
    }
    auto path = path_of(source);
    path = path ? path : path_of(asked);
    const std::uint32_t number = origins_.number_of({path ? *path : hierarchy_path(), whole != 0});
    last_origin_ = LastOrigin{source, asked, whole, number};
    return number;
}

kidl_yfw_datatree &MappingContext::add_below(kidl_yfw_datatree &parent, const RequestNode &leaf) {
    for (const kidl_yfw_datatree &child : children_of(parent)) {
        if (child.tag != nullptr && child.tag == leaf.tag && child.namespace_uri != nullptr &&
            child.namespace_uri == leaf.namespace_uri && value_of(child) == leaf.value) {
            return parent.children[&child - parent.children];
        }
    }
    return tree_.add_child(parent, leaf);
}

void MappingContext::record(AddRecord add) {
    const auto is_same_failure = [&add](const AddRecord &kept) { return kept.result == add.result; };
    if (!keeps_adds_ && (add.result == KERR_SUCCESS || std::any_of(adds_.begin(), adds_.end(), is_same_failure))) {
        return;
    }
    if (trace_enabled != 0) {
        const OpenFunctions &open = channels_.open_functions();
        add.walker = open.walker();
        add.conversion = open.conversion();
    }
    adds_.push_back(std::move(add));
}

void MappingContext::push_output(const kidl_yfw_datatree *source, const kidl_yfw_datatree *destination) {
    output_.push_back({destination, source});
    output = output_.data();
    output_count = static_cast<uint32_t>(output_.size());
    request_.output_depth = output_count;
    if (answer_ != nullptr) {
        answer_->open_scope();
    }
}

void MappingContext::pop_output() {
    if (answer_ != nullptr && !output_.empty()) {
        answer_->close_scope();
    }
    if (!output_.empty()) {
        output_.pop_back();
    }
    output_count = static_cast<uint32_t>(output_.size());
    request_.output_depth = output_count;
}

bool MappingContext::at_rest() const {
    return levels_.empty() && itree_stack_.empty() && output_.empty() && request_.whole_subtree_walk == 0 &&
           request_.delete_walk == 0 && request_.replace_flags == 0 && request_.replace_marker == 0;
}

} // namespace ocpsm::framework
