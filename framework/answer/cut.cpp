#include "framework/answer/cut.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "framework/error.hpp"
#include "framework/library.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/selection.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

using Selections = std::vector<const RequestNode *>;

Selections pointers_to(const std::vector<RequestNode> &nodes) {
    Selections pointers;
    for (const RequestNode &node : nodes) {
        pointers.push_back(&node);
    }
    return pointers;
}

bool selects(const RequestNode &selection, const lyd_node &node) {
    return selection.tag == node.schema->name && selection.namespace_uri == node.schema->module->ns;
}

// Finds out what is selected, then takes the rest away.
class Cut {
public:
    // True when anything among these siblings is selected.
    bool select(const lyd_node *first, const Selections &selections) {
        bool any = false;
        for (const lyd_node *node = first; node != nullptr; node = node->next) {
            for (const RequestNode *selection : selections) {
                any = (selects(*selection, *node) && select_node(*node, *selection)) || any;
            }
        }
        return any;
    }

    // True when the expression selects anything of a tree.
    bool select(const lyd_node &top, const std::string &xpath) {
        const QuietLibrary quiet;
        ly_set *found = nullptr;
        const LY_ERR result = lyd_find_xpath(&top, xpath.c_str(), &found);
        const OwnedSet nodes(found);
        if (result == LY_EMEM) {
            throw std::bad_alloc();
        }
        if (result != LY_SUCCESS) {
            throw Error(Error::Source::input, "invalid-value", one_line(xpath, 1000), "the XPath selects no nodes");
        }
        for (std::uint32_t index = 0; index < nodes->count; ++index) {
            selected_.insert(nodes->dnodes[index]);
            for (const lyd_node *around = lyd_parent(nodes->dnodes[index]); around != nullptr;
                 around = lyd_parent(around)) {
                select_keys(*around);
            }
        }
        return nodes->count != 0;
    }

    // Frees what is not selected of a node; true when nothing of it is.
    bool prune(lyd_node &node) const {
        if (selected_.contains(&node)) {
            return false;
        }
        std::vector<lyd_node *> dropped;
        bool any = false;
        for (lyd_node *child = lyd_child(&node); child != nullptr; child = child->next) {
            if (prune(*child)) {
                dropped.push_back(child);
            } else {
                any = true;
            }
        }
        if (any) { // else the node goes with all that is below it
            std::for_each(dropped.begin(), dropped.end(), lyd_free_tree);
        }
        return !any;
    }

private:
    bool select_node(const lyd_node &node, const RequestNode &selection) {
        if (!selection.children.empty()) {
            return select_children(node, selection.children);
        }
        selected_.insert(&node);
        return true;
    }

    bool select_children(const lyd_node &node, const std::vector<RequestNode> &selections) {
        Selections wanted = pointers_to(selections);
        const auto matches = std::stable_partition(wanted.begin(), wanted.end(),
                                                   [](const RequestNode *each) { return !is_content_match(*each); });
        std::vector<const lyd_node *> beside;
        for (auto match = matches; match != wanted.end(); ++match) {
            const lyd_node *leaf = find_match(node, **match);
            if (leaf == nullptr) {
                return false;
            }
            beside.push_back(leaf);
        }
        wanted.erase(matches, wanted.end());
        if (wanted.empty()) {
            selected_.insert(&node);
            return true;
        }
        if (!select(lyd_child(&node), wanted) && beside.empty()) {
            return false;
        }
        select_keys(node);
        selected_.insert(beside.begin(), beside.end());
        return true;
    }

    void select_keys(const lyd_node &entry) {
        for (const lyd_node *key = lyd_child(&entry); key != nullptr && lysc_is_key(key->schema); key = key->next) {
            selected_.insert(key);
        }
    }

    static const lyd_node *find_match(const lyd_node &node, const RequestNode &match) {
        for (const lyd_node *child = lyd_child(&node); child != nullptr; child = child->next) {
            if (selects(match, *child) && child->schema->nodetype == LYS_LEAF && leaf_value(*child) == *match.value) {
                return child;
            }
        }
        return nullptr;
    }

    std::unordered_set<const lyd_node *> selected_; // leaves, and nodes with all that is below them
};

struct Named {
    std::size_t state_leaves = 0;
    bool others = false;
};

void count(const RequestNode &selection, const lysc_node *parent, Named &named) {
    const lysc_node *schema = models::Schema::openconfig().child(parent, selection.tag, selection.namespace_uri);
    if (lysc_is_key(schema)) {
        return;
    }
    if (schema != nullptr && !selection.children.empty()) {
        for (const RequestNode &child : selection.children) {
            count(child, schema, named);
        }
        named.others = named.others || holds_only_keys(selection, schema);
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

AnswerTree cut(AnswerTree answer, const std::vector<RequestNode> &selections) {
    Cut cut;
    if (!cut.select(answer.top(), pointers_to(selections))) {
        return {};
    }
    OwnedNode top = answer.release();
    cut.prune(*top);
    return AnswerTree(std::move(top));
}

AnswerTree cut_to_xpaths(AnswerTree answer, const std::vector<std::string> &xpaths) {
    Cut cut;
    bool any = false;
    for (const std::string &xpath : xpaths) {
        any = (!answer.empty() && cut.select(*answer.top(), xpath)) || any;
    }
    if (!any) {
        return {};
    }
    OwnedNode top = answer.release();
    cut.prune(*top);
    return AnswerTree(std::move(top));
}

std::size_t state_leaves_only(const std::vector<RequestNode> &selections) {
    Named named;
    for (const RequestNode &selection : selections) {
        count(selection, nullptr, named);
    }
    return named.others ? 0 : named.state_leaves;
}

} // namespace ocpsm::framework
