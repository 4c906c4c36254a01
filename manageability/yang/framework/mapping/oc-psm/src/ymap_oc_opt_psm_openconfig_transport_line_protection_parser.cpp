// The walkers of the OpenConfig model, made from the node table. The steps of a visit stand in openconfig_visit.hpp;
// here they are put in order, once for all containers, once for the list, once for all leaves.
#include "openconfig_visit.hpp"

namespace {

using namespace ymap;

// ---- containers ----

bool has_content_in_delete(const Visit &visit) {
    return visit.self.access == Access::configuration && !visit.whole && visit.has_children() &&
           delete_walk_of(visit.request) == 0 && is_delete(&visit.node);
}

// A container stands for its whole subtree when nothing below it is named, or nothing but content matches; in an edit
// only a delete does. State is never deleted.
bool selects_whole_subtree(const Visit &visit) {
    if (visit.has_children() && !visit.only_content_matches()) {
        return false;
    }
    return is_read(visit.ctx) || (visit.self.access == Access::configuration && is_delete(&visit.node));
}

Outcome container_pass(Visit &visit) {
    const bool stands_in = whole_subtree_walk_of(visit.request) && visit.only_content_matches();
    const kerrno called = visit.self.container_callback(
        visit.ctx, &visit.node, stands_in ? 0 : static_cast<unsigned int>(visit.children().size()), visit.destination);
    if (called != KERR_SUCCESS) {
        return called == YMAP_ERR_SKIP ? Outcome::skip() : Outcome{called};
    }
    kerrno result = KERR_SUCCESS;
    for (Node &child : visit.children()) {
        result = visit.dispatch(child);
        if (result != KERR_SUCCESS) {
            break;
        }
    }
    visit.settle_content_matches();
    if (selects_whole_subtree(visit)) {
        const bool removes = is_delete(&visit.node);
        const WholeSubtree whole(visit.request);
        const RemoveOperation remove(visit.node, removes);
        for (const NodeId child : children_of(visit.self.id)) {
            visit.spread_to(child);
        }
        visit.self.hook(visit.ctx, &visit.node, visit.destination);
        visit.forget_read_selection();
    }
    return {result};
}

kerrno walk_container(const Walker &self, yfw_map_ctx ctx, const Node *source, Node *destination) {
    start(self.function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(self.function, ctx);
    }
    Visit visit(self, ctx, *source, destination);
    if (lacks_children(visit.node) && child_count_of(visit.node) > 0) {
        return end(self.function, ctx, refuse_malformed(self.function, ctx));
    }
    if (has_content_in_delete(visit)) {
        YMAP_TRACE(self.function, ctx, "Delete request with subtree present");
        return end(self.function, ctx, YMAP_ERR_INVALID_ARGS);
    }
    if (!visit.whole) {
        visit.enter();
    }
    const Outcome outcome = in_passes(visit, Hiding::children, [&visit](Pass) { return container_pass(visit); });
    if (!visit.whole) {
        visit.leave();
    }
    // A container that is passed over leaves no "End" behind.
    return outcome.skipped ? KERR_SUCCESS : end(self.function, ctx, outcome.result);
}

// ---- the list ----

// What the children of an entry say about its key.
struct EntryKeys {
    int count = 0;
    int valued = 0;
    bool other_children = false;

    bool stand_alone() const { return count > 0 && !other_children; }
};

bool checks_keys(yfw_map_ctx ctx) {
    const std::uint32_t kind = operation_kind(ctx);
    return kind == 1 || kind == 8 || kind == 15;
}

// Fills `keys`; fails with the framework's code when a key breaks its leafref.
kerrno scan_keys(const Visit &visit, EntryKeys &keys) {
    for (Node &child : visit.children()) {
        if (!match(tag_of(child), "name")) {
            keys.other_children = true;
            continue;
        }
        if (checks_keys(visit.ctx)) {
            const kerrno checked = yfw_map_check_oc_leafref(visit.ctx, YMAP_MODULE, "config", &child, &visit.node);
            if (checked != KERR_SUCCESS) {
                return checked;
            }
        }
        ++keys.count;
        keys.valued += has_flag(child, flag_has_value) ? 1 : 0;
        consume(child);
    }
    return KERR_SUCCESS;
}

bool is_key_count_right(yfw_map_ctx ctx, const EntryKeys &keys) {
    return checks_keys(ctx) ? keys.count == 1 && keys.valued == 1 : keys.count <= 1;
}

kerrno refuse_key_count(const Visit &visit) {
    YMAP_ERROR(visit.self.function, visit.ctx, "List key node error.");
    record_error_node(visit.ctx, "name", allocation_tag);
    yfw_oc_error_path(visit.ctx);
    return YMAP_ERR_LIST_KEY;
}

// Calls the list callback and keeps what it has pushed on the instance-tree stack in `pushed`.
kerrno call_list_callback(const Visit &visit, StackEntry &pushed) {
    const std::uint16_t before = yfw_map_util_itree_stack_size(visit.ctx);
    const kerrno result = visit.self.callback(visit.ctx, &visit.node, visit.destination);
    if (yfw_map_util_itree_stack_size(visit.ctx) > before) {
        yfw_map_util_itree_stack_peak(visit.ctx, &pushed);
    }
    if (result == KERR_SUCCESS) {
        const bool rewritten = has_flag(visit.node, flag_operation_rewritten);
        set_list_operation(visit.ctx, rewritten ? operation_of(visit.node) : 0);
    }
    return result;
}

kerrno walk_key(const Visit &visit, Node &key) {
    if (checks_keys(visit.ctx)) {
        if (!has_flag(key, flag_has_value)) {
            YMAP_ERROR(visit.self.function, visit.ctx, "Empty list key specified.");
            record_error_node(visit.ctx, tag_of(key), allocation_tag);
            yfw_oc_error_path(visit.ctx);
            return YMAP_ERR_LIST_KEY;
        }
        if (is_delete(&key)) {
            YMAP_ERROR(visit.self.function, visit.ctx, "The key node should not have delete operation.");
            yfw_oc_error_path(visit.ctx);
            return YMAP_ERR_KEY_DELETE;
        }
    }
    const kerrno result = walker_of(NodeId::lvla_aps_apsmodule_name).walker(visit.ctx, &key, visit.destination);
    consume(key);
    return result;
}

kerrno walk_entry_children(Visit &visit, Pass pass) {
    for (Node &child : visit.children()) {
        const Walker *known = tag_of(child) != nullptr ? visit.known_child(tag_of(child)) : nullptr;
        kerrno result = KERR_SUCCESS;
        if (known == nullptr) {
            result = visit.dispatch_unknown(child);
        } else if (known->kind == RowKind::key) {
            result = walk_key(visit, child);
        } else if (pass != Pass::remove) {
            // The remove pass takes the entry's own content away; what the request holds comes in the merge pass.
            result = known->walker(visit.ctx, &child, visit.destination);
        }
        if (result != KERR_SUCCESS) {
            return result;
        }
    }
    return KERR_SUCCESS;
}

// An entry that carries nothing but its key stands for its whole content. Its children are out of sight meanwhile, so
// that the walkers below do not take the key for a child of theirs.
void spread_keyed_entry(Visit &visit, bool removes) {
    const WholeSubtree whole(visit.request);
    const RemoveOperation remove(visit.node, removes);
    yfw_map_util_itree_stack_push(visit.ctx, held_children_of(visit.node), child_count_of(visit.node), 0);
    {
        const HiddenChildren hidden(visit.node);
        for (const NodeId child : children_of(visit.self.id)) {
            if (walker_of(child).kind != RowKind::key) {
                visit.spread_to(child);
            }
        }
        visit.self.hook(visit.ctx, &visit.node, visit.destination);
    }
    yfw_map_util_itree_stack_pop(visit.ctx);
}

// An entry without children stands for every entry of the list: state comes last.
void spread_bare_entry(Visit &visit, bool removes) {
    const WholeSubtree whole(visit.request);
    const RemoveOperation remove(visit.node, removes);
    const bool begins_delete = removes && delete_walk_of(visit.request) == 0;
    if (begins_delete) {
        set_delete_walk(visit.request, 1);
    }
    for (const Access access : {Access::configuration, Access::state}) {
        for (const NodeId child : children_of(visit.self.id)) {
            if (walker_of(child).access == access) {
                visit.spread_to(child);
            }
        }
    }
    visit.self.hook(visit.ctx, &visit.node, visit.destination);
    if (begins_delete) {
        set_delete_walk(visit.request, 0);
    }
}

Outcome entry_pass(Visit &visit, Pass pass, const EntryKeys &keys, StackEntry &pushed) {
    Request &request = visit.request;
    const bool removes = is_delete(&visit.node);
    const bool keyed_delete = removes && keys.stand_alone() && delete_walk_of(request) == 0;
    const bool bare_delete = removes && visit.whole && !visit.has_children() && delete_walk_of(request) == 0;
    if (keyed_delete) {
        set_delete_walk(request, 2);
    } else if (bare_delete) {
        set_delete_walk(request, 1);
    }
    const kerrno called = call_list_callback(visit, pushed);
    if (keyed_delete) {
        set_delete_walk(request, 0);
    }
    kerrno result = called == YMAP_ERR_SKIP ? KERR_SUCCESS : called;
    if (called == KERR_SUCCESS) {
        result = walk_entry_children(visit, pass);
        const bool stands_for_content = is_read(visit.ctx) || removes;
        if (result == KERR_SUCCESS && keys.stand_alone() && keys.valued == keys.count && stands_for_content) {
            set_delete_walk(request, keyed_delete ? 1 : delete_walk_of(request));
            spread_keyed_entry(visit, removes);
            set_delete_walk(request, keyed_delete ? 0 : delete_walk_of(request));
        }
        if (!visit.has_children() && stands_for_content) {
            spread_bare_entry(visit, removes);
        }
    }
    if (bare_delete) {
        set_delete_walk(request, 0);
    }
    return {result};
}

// A read that names leaves of an entry but not its key gets the key added, so that it is part of the answer.
kerrno add_missing_key(const Visit &visit) {
    Node *key = nullptr;
    const kerrno result = yfw_map_datatree_add_path_flagged(visit.ctx, &visit.node, "name", namespace_of(visit.node),
                                                            nullptr, nullptr, &key, 0, 0);
    if (key != nullptr) {
        consume(*key);
    }
    return result;
}

// The entry of a request of key-checked kind, or of a read, once it is on the hierarchy.
kerrno walk_entry(Visit &visit, const EntryKeys &keys, bool scanned, StackEntry &pushed) {
    if (scanned && !is_key_count_right(visit.ctx, keys)) {
        return refuse_key_count(visit);
    }
    const Outcome outcome = in_passes(
        visit, Hiding::nothing, [&visit, &keys, &pushed](Pass pass) { return entry_pass(visit, pass, keys, pushed); });
    kerrno result = outcome.result;
    if (is_read(visit.ctx) && scanned && keys.count == 0 && keys.other_children) {
        const kerrno added = add_missing_key(visit);
        result = result == KERR_SUCCESS ? added : result;
    }
    return result;
}

kerrno walk_list(const Walker &self, yfw_map_ctx ctx, const Node *source, Node *destination) {
    start(self.function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(self.function, ctx);
    }
    Visit visit(self, ctx, *source, destination);
    if (lacks_children(visit.node) && child_count_of(visit.node) > 0) {
        return end(self.function, ctx, refuse_malformed(self.function, ctx));
    }
    if (!visit.has_children()) {
        YMAP_ERROR(self.function, ctx, "No keys specified with a list node.");
        if (!visit.whole && checks_keys(ctx) && delete_walk_of(visit.request) == 0) {
            YMAP_ERROR(self.function, ctx, "No keys specified with a list node.");
            return end(self.function, ctx, YMAP_ERR_BAD_TREE);
        }
    }
    if (!visit.whole) {
        visit.enter();
    }
    StackEntry pushed{};
    kerrno result = yfw_map_update_current_list_node(ctx, YMAP_MODULE);
    if (result == KERR_SUCCESS) {
        EntryKeys keys;
        const bool scanned = visit.has_children() && !visit.whole && delete_walk_of(visit.request) == 0;
        const kerrno checked = scanned ? scan_keys(visit, keys) : KERR_SUCCESS;
        if (checked != KERR_SUCCESS) {
            YMAP_TRACE(self.function, ctx, "leafref value check fail");
            visit.leave();
            return end(self.function, ctx, checked);
        }
        result = walk_entry(visit, keys, scanned, pushed);
    }
    if (held_children_of(pushed) != nullptr) {
        yfw_map_util_itree_stack_pop(ctx);
    }
    if (!visit.whole) {
        visit.leave();
    }
    return end(self.function, ctx, result);
}

// ---- leaves ----

// What a leaf of a read asks for: a value is a content match, no value a selection.
void note_read_selection(Visit &visit) {
    if (has_flag(visit.node, flag_has_value)) {
        set_hierarchy_kind(visit.node, kind_content_match);
        add_read_selection(visit.request, read_content_match_leaf | read_content_match_anywhere);
    } else {
        add_read_selection(visit.request, read_selection_leaf);
    }
}

kerrno walk_leaf(const Walker &self, yfw_map_ctx ctx, const Node *source, Node *destination) {
    start(self.function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(self.function, ctx);
    }
    const kerrno result = self.callback(ctx, source, destination);
    Visit visit(self, ctx, *source, destination);
    if (!visit.whole && delete_walk_of(visit.request) == 0) {
        visit.set_hierarchy_kind(kind_leaf);
        if (self.kind != RowKind::key && is_read(ctx)) {
            note_read_selection(visit);
        }
    }
    return end(self.function, ctx, result);
}

} // namespace

extern "C" {

#define YMAP_DEFINE_WALKER(suffix, walk)                                                                               \
    kerrno YMAP_WALKER(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                               \
        return walk(walker_of(NodeId::suffix), ctx, source, destination);                                              \
    }
#define YMAP_CONTAINER(suffix, parent, tag, access) YMAP_DEFINE_WALKER(suffix, walk_container)
#define YMAP_LIST(suffix, parent, tag, access, conversion) YMAP_DEFINE_WALKER(suffix, walk_list)
#define YMAP_KEY(suffix, parent, tag, access, conversion) YMAP_DEFINE_WALKER(suffix, walk_leaf)
#define YMAP_LEAF(suffix, parent, tag, access, conversion) YMAP_DEFINE_WALKER(suffix, walk_leaf)
#define YMAP_REFUSED(suffix, parent, tag, access) YMAP_DEFINE_WALKER(suffix, walk_leaf)
#include "openconfig_table.inc"

} // extern "C"
