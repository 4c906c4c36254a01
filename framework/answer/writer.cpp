#include "framework/answer/writer.hpp"

#include <libyang/libyang.h>

#include <new>
#include <utility>

#include "framework/error.hpp"
#include "framework/host/codes.hpp"
#include "framework/library.hpp"
#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/instance_read.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

using openconfig::list_path;
constexpr std::string_view predicate_begin = "[name=";

// Whether libyang has taken a value for a leaf.
bool is_taken(LY_ERR result) {
    if (result == LY_EMEM) {
        throw std::bad_alloc();
    }
    return result == LY_SUCCESS || result == LY_EEXIST || result == LY_ENOT;
}

// The first leaf below a node, in document order, that has a refused value.
const lysc_node *first_refused(const lysc_node &parent, const std::map<const lysc_node *, std::string> &refused) {
    for (const lysc_node *child : models::Schema::openconfig().children(&parent)) {
        if (refused.contains(child)) {
            return child;
        }
        if (const lysc_node *found = first_refused(*child, refused)) {
            return found;
        }
    }
    return nullptr;
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

AnswerWriter::AnswerWriter() : list_{this}, list_schema_(models::Schema::openconfig().find(list_path)) {
    const lysc_node &container = *list_schema_->parent;
    lyd_node *node = nullptr;
    require(lyd_new_inner(nullptr, container.module, container.parent->name, 0, &node));
    bench_.reset(node);
    require(lyd_new_inner(bench_.get(), container.module, container.name, 0, nullptr));
}

AnswerWriter::Index AnswerWriter::entry(std::string_view name) {
    const auto found = by_name_.find(std::string(name));
    return found != by_name_.end() ? found->second : add_entry(std::string(name));
}

AnswerWriter::Index AnswerWriter::add_entry(std::optional<std::string> name) {
    entries_.push_back({std::move(name), false, {}, {}});
    const std::size_t index = entries_.size() - 1;
    if (entries_.back().name) {
        by_name_.emplace(*entries_.back().name, index);
    }
    return index;
}

lyd_node &AnswerWriter::node_of(Entry &entry) const {
    if (!entry.node) {
        lyd_node *node = nullptr;
        require(lyd_new_list(lyd_child(bench_.get()), list_schema_->module, list_schema_->name, 0, &node, ""));
        lyd_unlink_tree(node);
        entry.node.reset(node);
    }
    return *entry.node;
}

// The container with this schema in an entry, made where it is missing; the entry itself for the list.
lyd_node &AnswerWriter::place(lyd_node &entry, const lysc_node &schema) const {
    if (&schema == list_schema_) {
        return entry;
    }
    lyd_node &parent = place(entry, *schema.parent);
    lyd_node *node = nullptr;
    if (lyd_find_sibling_val(lyd_child(&parent), &schema, nullptr, 0, &node) != LY_SUCCESS) {
        require(lyd_new_inner(&parent, schema.module, schema.name, 0, &node));
    }
    return *node;
}

void AnswerWriter::write(const lysc_node &leaf, const std::string &value) {
    const QuietLibrary quiet;
    Entry &entry = entries_[*current_];
    lyd_node &parent = place(node_of(entry), *leaf.parent);
    lyd_node *node = nullptr;
    const bool stands = lyd_find_sibling_val(lyd_child(&parent), &leaf, nullptr, 0, &node) == LY_SUCCESS;
    if (value.empty() && (stands || entry.refused.contains(&leaf))) {
        return;
    }
    const LY_ERR result = stands ? lyd_change_term(node, value.c_str())
                                 : lyd_new_term(&parent, leaf.module, leaf.name, value.c_str(), 0, nullptr);
    if (is_taken(result)) {
        entry.refused.erase(&leaf);
    } else {
        entry.refused[&leaf] = value;
    }
}

// An entry without a name takes it, unless another one has it; an entry is never given a second one.
kerrno AnswerWriter::write_key(std::string_view value) {
    if (!current_) {
        return KERR_SUCCESS;
    }
    Entry &current = entries_[*current_];
    if (!current.name && by_name_.try_emplace(std::string(value), *current_).second) {
        current.name = value;
    }
    current_ = entry(value);
    entries_[*current_].part_of_answer = true;
    return KERR_SUCCESS;
}

kerrno AnswerWriter::add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
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
            current_ = add_entry(std::nullopt);
        }
        return KERR_SUCCESS;
    }
    if (!value || !current_) {
        return KERR_SUCCESS;
    }
    if (lysc_is_key(node)) {
        return write_key(*value);
    }
    write(*node, std::string(*value));
    return KERR_SUCCESS;
}

kerrno AnswerWriter::search_or_add(std::string_view path, std::string_view key_name, std::string_view key,
                                   std::string_view namespace_uri) {
    if (without_prefixes(path) != list_path || key_name != models::key_names(*list_schema_).front() ||
        namespace_uri != list_schema_->module->ns) {
        return unknown_answer_node;
    }
    current_ = entry(key);
    entries_[*current_].part_of_answer = true;
    return KERR_SUCCESS;
}

kerrno AnswerWriter::stitch(const yfw_map_stitch_entry &stitched) {
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

void AnswerWriter::note_failure(kerrno result) {
    if (failure_ == KERR_SUCCESS) {
        failure_ = result;
    }
}

void AnswerWriter::point_to(const std::optional<std::string> &name) {
    current_ = name ? entry(*name) : std::nullopt;
}

void AnswerWriter::open_scope() {
    scopes_.push_back(current_);
}

void AnswerWriter::close_scope() {
    if (!scopes_.empty()) {
        scopes_.pop_back();
    }
    current_ = scopes_.empty() ? std::nullopt : scopes_.back();
}

std::vector<std::string> AnswerWriter::names() const {
    std::vector<std::string> names;
    for (const Entry &entry : entries_) {
        if (entry.part_of_answer) {
            names.push_back(*entry.name);
        }
    }
    return names;
}

void AnswerWriter::refuse(const Entry &entry, const lysc_node &leaf, const std::string &value) const {
    const std::string below = models::schema_path(leaf).substr(list_path.size());
    throw Error(Error::Source::refused, "operation-failed", instance_path(*entry.name) + below,
                "the device's value '" + one_line(value) + "' is none that the model allows");
}

void AnswerWriter::check(const Entry &entry) const {
    if (const lysc_node *leaf = first_refused(*list_schema_, entry.refused)) {
        refuse(entry, *leaf, entry.refused.at(leaf));
    }
}

AnswerTree AnswerWriter::finish() && {
    std::map<std::string, Entry *> sorted;
    for (Entry &entry : entries_) {
        if (entry.part_of_answer) {
            sorted.emplace(*entry.name, &entry);
        }
    }
    for (const auto &[name, entry] : sorted) {
        check(*entry);
    }
    if (sorted.empty()) {
        return {};
    }
    const QuietLibrary quiet;
    for (const auto &[name, entry] : sorted) {
        node_of(*entry);
        lyd_node *key = lyd_child(entry->node.get());
        if (!is_taken(lyd_change_term(key, name.c_str()))) {
            refuse(*entry, *key->schema, name);
        }
        require(lyd_insert_child(lyd_child(bench_.get()), entry->node.get()));
        (void)entry->node.release();
    }
    return AnswerTree(std::move(bench_));
}

} // namespace ocpsm::framework
