// A tree in the native models while it grows node by node: what has been added to a request, and what an edit's adds
// come to. Private to this directory; what leaves it is a NativeNode.
#ifndef OCPSM_FRAMEWORK_NATIVE_DRAFT_TREE_HPP
#define OCPSM_FRAMEWORK_NATIVE_DRAFT_TREE_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "framework/native/native_node.hpp"

namespace ocpsm::native {

// Names a node of a tree for as long as the tree lives.
using DraftId = std::uint32_t;
inline constexpr DraftId draft_root = 0;

struct Draft {
    const lysc_node *schema = nullptr; // null: the root
    DraftId parent = draft_root;
    std::vector<DraftId> singles; // containers and leaves right below
    std::vector<DraftId> entries; // of the lists right below, in the order in which they came; also what is gone since
    std::optional<std::string> value;
    Operation operation = Operation::merge; // the last one asked for
    Origin origin = no_origin;              // of the add that came last: at the node or, unless `added`, below it
    bool added = false;                     // false: made on the way to another
    bool gone = false;                      // taken away, with all that was below it
    // What the adds of an edit come to.
    bool made = false;              // something was set here or below since it was taken away
    std::optional<Operation> taken; // delete, remove or replace: what stood here before is gone
};

class DraftTree {
public:
    DraftTree() : nodes_(1) {}

    Draft &at(DraftId id) { return nodes_[id]; }
    const Draft &at(DraftId id) const { return nodes_[id]; }
    std::size_t size() const { return nodes_.size(); }

    // Adds a node behind its siblings.
    DraftId make(DraftId parent, const lysc_node *schema);

    // The container or leaf right below a node; the root when there is none.
    DraftId single(DraftId parent, const lysc_node *schema) const;

    // The value of a key of an entry; none when it has no such key or the key has no value.
    const std::optional<std::string> &key_value(DraftId entry, const lysc_node *key) const;

    // Takes away what is below a node. The keys of a list entry stay: they say which entry it is.
    void clear(DraftId id);

    // Takes a node away.
    void drop(DraftId id);

    // Notes that an add came to a node; the nodes on the way to it that no add was for come from there as well.
    void came_from(DraftId id, Origin origin);

    // Entries are found by what names them: under `name`, which belongs to `schema` (a list or a key of it), and below
    // one parent. Of those that `is_it` takes the one that was made last; the root when there is none.
    void index(DraftId entry, const lysc_node *schema, std::size_t name);
    DraftId find(DraftId parent, const lysc_node *schema, std::size_t name,
                 const std::function<bool(DraftId entry)> &is_it);

private:
    struct Name {
        DraftId parent;
        const lysc_node *schema;
        std::size_t name;
        DraftId entry;
        bool operator<(const Name &other) const {
            return std::tie(parent, schema, name, entry) <
                   std::tie(other.parent, other.schema, other.name, other.entry);
        }
    };

    void mark_gone(DraftId id);

    std::deque<Draft> nodes_;
    std::set<Name> names_;
};

// A name for `find`, made of a key's value and the name made of the keys before it.
std::size_t name_of(const std::optional<std::string> &key_value, std::size_t before = 0);

} // namespace ocpsm::native

#endif
