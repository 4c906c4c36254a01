#include "framework/answer/tree.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "framework/library.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

struct FreeText {
    void operator()(char *text) const noexcept {
        std::free(text); // NOLINT(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
    }
};

bool is_leaf(const lyd_node &node) {
    return node.schema->nodetype == LYS_LEAF;
}

// The entries of the only list of the model.
std::vector<lyd_node *> entries_of(const lyd_node *top) {
    std::vector<lyd_node *> entries;
    const lyd_node *container = top == nullptr ? nullptr : lyd_child(top);
    for (lyd_node *entry = container == nullptr ? nullptr : lyd_child(container); entry != nullptr;
         entry = entry->next) {
        entries.push_back(entry);
    }
    return entries;
}

std::string_view key_of(const lyd_node &entry) {
    return leaf_value(*lyd_child(&entry));
}

bool has_lower_key(const lyd_node *one, const lyd_node *other) {
    return key_of(*one) < key_of(*other);
}

// Entries that libyang has put behind the others go to their places.
void sort_entries(lyd_node &top) {
    std::vector<lyd_node *> entries = entries_of(&top);
    if (std::is_sorted(entries.begin(), entries.end(), has_lower_key)) {
        return;
    }
    std::sort(entries.begin(), entries.end(), has_lower_key);
    lyd_node *container = lyd_child(&top);
    for (lyd_node *entry : entries) {
        require(lyd_insert_child(container, entry)); // takes it out first
    }
}

// An instance path that grows and shrinks with a walk.
class Path {
public:
    void enter(const lyd_node &node) { text_ += answer_step(node); }
    void leave(std::size_t length) { text_.resize(length); }
    std::size_t length() const { return text_.size(); }
    const std::string &text() const { return text_; }

private:
    std::string text_;
};

template <typename Visit>
void visit_leaves(const lyd_node *first, Path &path, const Visit &visit) {
    for (const lyd_node *node = first; node != nullptr; node = node->next) {
        const std::size_t length = path.length();
        path.enter(*node);
        if (is_leaf(*node)) {
            visit(path.text(), *node);
        } else {
            visit_leaves(lyd_child(node), path, visit);
        }
        path.leave(length);
    }
}

// Below zero when one of two siblings stands before the other, zero when they are the same node in two answers.
int document_order(const lyd_node &one, const lyd_node &other) {
    if (one.schema == other.schema) {
        return one.schema->nodetype == LYS_LIST ? key_of(one).compare(key_of(other)) : 0;
    }
    for (const lysc_node *later = one.schema->next; later != nullptr; later = later->next) {
        if (later == other.schema) {
            return -1;
        }
    }
    return 1;
}

class Comparison {
public:
    // Siblings of one node in both answers; null where there are none, or no more.
    void compare(const lyd_node *before, const lyd_node *after) {
        while (before != nullptr || after != nullptr) {
            const int order = before == nullptr ? 1 : after == nullptr ? -1 : document_order(*before, *after);
            compare_one(order <= 0 ? before : nullptr, order >= 0 ? after : nullptr);
            before = order <= 0 ? before->next : before;
            after = order >= 0 ? after->next : after;
        }
    }

    std::vector<Change> take_changes() { return std::move(changes_); }

private:
    // One node, which stands in at least one of them.
    void compare_one(const lyd_node *before, const lyd_node *after) {
        const lyd_node &node = before != nullptr ? *before : *after;
        const std::size_t length = path_.length();
        path_.enter(node);
        if (is_leaf(node)) {
            const auto value = [](const lyd_node *leaf) {
                return leaf == nullptr ? std::nullopt : std::optional(std::string(leaf_value(*leaf)));
            };
            Change change{path_.text(), value(before), value(after)};
            if (change.before != change.after) {
                changes_.push_back(std::move(change));
            }
        } else {
            compare(before == nullptr ? nullptr : lyd_child(before), after == nullptr ? nullptr : lyd_child(after));
        }
        path_.leave(length);
    }

    Path path_;
    std::vector<Change> changes_;
};

} // namespace

AnswerTree::AnswerTree(OwnedNode top) : top_(std::move(top)) {
    const std::vector<lyd_node *> entries = entries_of(top_.get());
    entries_.assign(entries.begin(), entries.end());
    // libyang makes some canonical texts when they are first asked for; readers of several threads must not.
    Path path;
    visit_leaves(top_.get(), path, [](const std::string & /*path*/, const lyd_node &leaf) { leaf_value(leaf); });
}

std::string AnswerTree::print(Format format) const {
    if (empty()) {
        return format == Format::json ? "{}\n" : "";
    }
    const QuietLibrary quiet;
    char *printed = nullptr;
    const LY_ERR result = lyd_print_mem(&printed, top_.get(), format == Format::json ? LYD_JSON : LYD_XML, 0);
    const std::unique_ptr<char, FreeText> text(printed);
    require(result);
    return text.get();
}

void AnswerTree::for_each_leaf(
    const std::function<void(const std::string &path, std::string_view value)> &visit) const {
    Path path;
    visit_leaves(top_.get(), path,
                 [&visit](const std::string &text, const lyd_node &leaf) { visit(text, leaf_value(leaf)); });
}

std::vector<std::string> AnswerTree::entry_names() const {
    std::vector<std::string> names;
    for (const lyd_node *entry : entries_) {
        names.emplace_back(key_of(*entry));
    }
    return names;
}

const lyd_node *AnswerTree::find_entry(std::string_view key) const {
    const auto found =
        std::lower_bound(entries_.begin(), entries_.end(), key,
                         [](const lyd_node *entry, std::string_view wanted) { return key_of(*entry) < wanted; });
    return found != entries_.end() && key_of(**found) == key ? *found : nullptr;
}

OwnedNode AnswerTree::release() noexcept {
    entries_.clear();
    return std::move(top_);
}

AnswerTree join(std::vector<AnswerTree> parts) {
    const QuietLibrary quiet;
    lyd_node *joined = nullptr;
    // Merging gives the leaves of the source: the first part comes last.
    OwnedNode owner;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (!part->empty()) {
            joined = owner.release();
            const LY_ERR result = lyd_merge_tree(&joined, part->release().release(), LYD_MERGE_DESTRUCT);
            owner.reset(joined);
            require(result);
        }
    }
    if (owner) {
        sort_entries(*owner);
    }
    return AnswerTree(std::move(owner));
}

std::vector<Change> changes_between(const AnswerTree &before, const AnswerTree &after) {
    Comparison comparison;
    comparison.compare(before.top(), after.top());
    return comparison.take_changes();
}

const lyd_node *find_sibling(const lyd_node *first, const lysc_node &schema) {
    while (first != nullptr && first->schema != &schema) {
        first = first->next;
    }
    return first;
}

std::string_view leaf_value(const lyd_node &leaf) {
    return lyd_get_value(&leaf);
}

std::string answer_step(const lyd_node &node) {
    std::string step = "/" + std::string(node.schema->name);
    if (node.schema->nodetype == LYS_LIST) {
        for (const lyd_node *key = lyd_child(&node); key != nullptr && lysc_is_key(key->schema); key = key->next) {
            step += key_predicate(key->schema->name, leaf_value(*key));
        }
    }
    return step;
}

} // namespace ocpsm::framework
