#include "framework/answer/defaults.hpp"

#include <libyang/libyang.h>

#include <optional>
#include <string>
#include <utility>

#include "framework/library.hpp"
#include "framework/models/models.hpp"

namespace ocpsm::framework {

namespace {

bool has_children(const lysc_node &schema) {
    return (schema.nodetype & (LYS_CONTAINER | LYS_LIST)) != 0;
}

void add_defaults(lyd_node &parent);

// The default of a leaf, or those below a container, of a node that is not there.
void add_missing(lyd_node &parent, const lysc_node &schema) {
    lyd_node *made = nullptr;
    if (schema.nodetype == LYS_CONTAINER) {
        require(lyd_new_inner(&parent, schema.module, schema.name, 0, &made));
        add_defaults(*made);
        if (lyd_child(made) == nullptr) {
            lyd_free_tree(made);
        }
    } else if (schema.nodetype == LYS_LEAF) {
        if (const auto value = models::describe(schema).default_value) {
            require(lyd_new_term(&parent, schema.module, schema.name, std::string(*value).c_str(), 0, &made));
        }
    }
}

void add_defaults(lyd_node &parent) {
    for (lyd_node *child = lyd_child(&parent); child != nullptr; child = child->next) {
        if (has_children(*child->schema)) {
            add_defaults(*child);
        }
    }
    for (const lysc_node *schema : models::Schema::openconfig().children(parent.schema)) {
        if ((schema->flags & LYS_CONFIG_W) != 0 && find_sibling(lyd_child(&parent), *schema) == nullptr) {
            add_missing(parent, *schema);
        }
    }
}

bool says_default(const lyd_node &leaf) {
    const auto value = models::describe(*leaf.schema).default_value;
    return !lysc_is_key(leaf.schema) && value && *value == leaf_value(leaf);
}

void take_defaults(lyd_node &parent) {
    lyd_node *next = nullptr;
    for (lyd_node *child = lyd_child(&parent); child != nullptr; child = next) {
        next = child->next;
        const bool inner = has_children(*child->schema);
        if (inner) {
            take_defaults(*child);
        }
        if (inner ? lyd_child(child) == nullptr : says_default(*child)) {
            lyd_free_tree(child);
        }
    }
}

} // namespace

AnswerTree with_defaults(AnswerTree answer) {
    const QuietLibrary quiet;
    OwnedNode top = answer.release();
    if (top) {
        add_defaults(*top);
    }
    return AnswerTree(std::move(top));
}

AnswerTree without_defaults(AnswerTree answer) {
    OwnedNode top = answer.release();
    if (top) {
        take_defaults(*top);
        if (lyd_child(top.get()) == nullptr) {
            top.reset();
        }
    }
    return AnswerTree(std::move(top));
}

} // namespace ocpsm::framework
