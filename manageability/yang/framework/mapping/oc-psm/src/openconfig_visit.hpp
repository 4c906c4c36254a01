// One walker's visit to one node of an OpenConfig request: the steps that container and list walkers share.
#ifndef OC_PSM_OPENCONFIG_VISIT_HPP
#define OC_PSM_OPENCONFIG_VISIT_HPP

#include <span>

#include "native_models.hpp"
#include "openconfig_callbacks.hpp"

namespace ymap {

enum class RowKind { container, list, key, leaf };
enum class Access { configuration, state };

// A node's place in the table, named by its suffix.
enum class NodeId {
    none = -1,
#define YMAP_CONTAINER(suffix, parent, tag, access) suffix,
#define YMAP_LIST(suffix, parent, tag, access, conversion) suffix,
#define YMAP_KEY(suffix, parent, tag, access, conversion) suffix,
#define YMAP_LEAF(suffix, parent, tag, access, conversion) suffix,
#define YMAP_REFUSED(suffix, parent, tag, access) suffix,
#include "openconfig_table.inc"
};

// A row of the node table with the functions that belong to it.
struct Walker {
    NodeId id;
    NodeId parent;
    RowKind kind;
    Access access;
    const char *tag;                       // schema name
    Function function;                     // the walker, as messages name it
    Callback *walker;                      // the walker itself
    ContainerCallback *container_callback; // of a container, else null
    Callback *callback;                    // of a list or leaf, else null
    Callback *hook;                        // of a container or list, else null
};

const Walker &walker_of(NodeId id);

// The children of a node in the order in which their tags are tested.
std::span<const NodeId> children_of(NodeId id);

// What a pass over a node gave.
struct Outcome {
    kerrno result;
    bool skipped = false; // the node is to be passed over, which is no failure

    static Outcome skip() { return {KERR_SUCCESS, true}; }
};

class Visit {
public:
    Visit(const Walker &walker, yfw_map_ctx context, const Node &source, Node *target)
        : self(walker), ctx(context), request(*request_of(context)), node(writable(source)), destination(target),
          whole(whole_subtree_walk_of(request)) {}

    const Walker &self;
    const yfw_map_ctx ctx;
    Request &request;
    Node &node;
    Node *const destination;
    const bool whole; // the visit is part of a whole-subtree walk: `node` is then the node above

    // The node's children as they are now; a replace hides them for a pass.
    std::span<Node> children() const { return children_of(node); }
    bool has_children() const { return !children().empty(); }

    // Push the node on the hierarchy and pop it.
    void enter();
    void leave();
    void set_hierarchy_kind(std::uint32_t kind);

    // Hands a child to its walker, or to the hook when it belongs to another model.
    kerrno dispatch(Node &child);
    kerrno dispatch_unknown(Node &child);

    // The walker of a child's tag; state is known only in the read that includes it.
    const Walker *known_child(const char *tag) const;

    // Calls the walker of a child with the node itself; its result does not count.
    void spread_to(NodeId child);

    bool only_content_matches() const { return has_read_selection(request, read_content_match_only); }

    // A container in which content matches were seen but no selection selects all of its leaves (RFC 6241, 6.2.5).
    void settle_content_matches();

    void forget_read_selection();
};

// ---- changes of state that end with a scope ----

// The whole-subtree flag, set unless a walk above has set it.
class WholeSubtree {
public:
    explicit WholeSubtree(Request &request) : request_(request), began_(!whole_subtree_walk_of(request)) {
        set_whole_subtree_walk(request_, true);
    }
    ~WholeSubtree() {
        if (began_) {
            set_whole_subtree_walk(request_, false);
        }
    }
    WholeSubtree(const WholeSubtree &) = delete;
    WholeSubtree &operator=(const WholeSubtree &) = delete;

private:
    Request &request_;
    const bool began_;
};

// Operation delete turned into remove: not everything below a deleted node needs to be there.
class RemoveOperation {
public:
    RemoveOperation(Node &node, bool removes)
        : node_(node), turned_(removes && operation_of(node) == operation_delete) {
        if (turned_) {
            set_operation(node_, operation_remove);
        }
    }
    ~RemoveOperation() {
        if (turned_) {
            set_operation(node_, operation_delete);
        }
    }
    RemoveOperation(const RemoveOperation &) = delete;
    RemoveOperation &operator=(const RemoveOperation &) = delete;

private:
    Node &node_;
    const bool turned_;
};

// A node's children taken out of sight.
class HiddenChildren {
public:
    explicit HiddenChildren(Node &node)
        : node_(node), children_(held_children_of(node)), count_(child_count_of(node)),
          valid_(has_flag(node, flag_children_valid)) {
        hold_children(node_, nullptr);
        set_child_count(node_, 0);
        clear_flag(node_, flag_children_valid);
    }
    ~HiddenChildren() {
        hold_children(node_, children_);
        set_child_count(node_, count_);
        if (valid_) {
            add_flag(node_, flag_children_valid);
        }
    }
    HiddenChildren(const HiddenChildren &) = delete;
    HiddenChildren &operator=(const HiddenChildren &) = delete;

private:
    Node &node_;
    Node *const children_;
    const std::int32_t count_;
    const bool valid_;
};

// ---- replace ----

// A replace is walked twice: what stands is removed, then what the request holds is merged.
enum class Pass { only, remove, merge };

// Operation, replace bits and marker of a node that is replaced.
class Replacement {
public:
    explicit Replacement(const Visit &visit);
    ~Replacement();
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    void begin_merge();

private:
    void rewrite_operation(std::uint32_t operation);

    Node &node_;
    Request &request_;
    const std::uint32_t operation_;
    const ReplaceFlags flags_;
    const std::uint32_t marker_;
};

enum class Hiding { nothing, children };

// Runs the passes of a visit. A failing remove pass ends it; one that is passed over does not.
template <typename Run>
Outcome in_passes(Visit &visit, Hiding hiding, Run run) {
    if (operation_of(visit.node) != operation_replace) {
        return run(Pass::only);
    }
    Replacement replacement(visit);
    Outcome removed{KERR_SUCCESS};
    if (hiding == Hiding::children) {
        const HiddenChildren hidden(visit.node);
        removed = run(Pass::remove);
    } else {
        removed = run(Pass::remove);
    }
    if (removed.result != KERR_SUCCESS) {
        return removed;
    }
    replacement.begin_merge();
    return run(Pass::merge);
}

} // namespace ymap

#endif
