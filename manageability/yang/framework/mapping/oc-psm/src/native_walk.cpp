#include "native_walk.hpp"

#include <algorithm>

namespace ymap {

namespace {

struct NativeVisit {
    const NativeModel &model;
    const int index;
    yfw_map_ctx ctx;
    Node &node;
    Node *destination;

    const NativeWalker &self() const { return model.rows[static_cast<std::size_t>(index)]; }
    const Function &function() const { return self().function; }
};

const NativeWalker *known_child(const NativeVisit &visit, const char *tag) {
    for (const NativeWalker &row : visit.model.rows) {
        if (row.parent == visit.index && match(tag, row.tag)) {
            const bool served = !visit.model.operational || is_operational_read(visit.ctx);
            return served ? &row : nullptr;
        }
    }
    return nullptr;
}

// Hands a node to the walker of its tag, passes over what the model has but nobody asks for.
kerrno dispatch(const NativeVisit &visit, Node &child) {
    if (const NativeWalker *known = known_child(visit, tag_of(child)); known != nullptr) {
        const kerrno result = known->walker(visit.ctx, &child, visit.destination);
        // One entry that is rejected does not hide its siblings.
        const bool absorbed = visit.self().kind == NativeKind::container && known->kind == NativeKind::list;
        return absorbed && result == YMAP_ERR_SKIP ? KERR_SUCCESS : result;
    }
    if (match(namespace_of(child), visit.model.namespace_uri)) {
        YMAP_TRACE(visit.function(), visit.ctx, "Unsupported tag `%s`. Ignoring.", tag_of(child));
        return KERR_SUCCESS;
    }
    return visit.self().hook(visit.ctx, &child, visit.destination);
}

kerrno refuse_untagged(const NativeVisit &visit) {
    YMAP_ERROR(visit.function(), visit.ctx, "Tag name is not available!");
    return YMAP_ERR_BAD_TREE;
}

kerrno dispatch_children(const NativeVisit &visit) {
    for (Node &child : children_of(visit.node)) {
        const kerrno result = tag_of(child) != nullptr ? dispatch(visit, child) : refuse_untagged(visit);
        if (result != KERR_SUCCESS) {
            return result;
        }
    }
    return KERR_SUCCESS;
}

kerrno walk_container(const NativeVisit &visit) {
    yfw_map_add_to_node_hierarchy(visit.ctx, &visit.node, 1);
    const auto count = static_cast<unsigned int>(children_of(visit.node).size());
    kerrno result = visit.self().container_callback(visit.ctx, &visit.node, count, visit.destination);
    if (result == KERR_SUCCESS) {
        result = dispatch_children(visit);
    }
    yfw_map_remove_from_node_hierarchy(visit.ctx, &visit.node);
    return result;
}

void consume_keys(const NativeVisit &visit) {
    for (Node &child : children_of(visit.node)) {
        const auto &keys = visit.self().keys;
        if (std::any_of(std::begin(keys), std::end(keys),
                        [&child](const char *key) { return match(tag_of(child), key); })) {
            consume(child);
        }
    }
}

kerrno walk_list(const NativeVisit &visit) {
    if (children_of(visit.node).empty()) {
        YMAP_ERROR(visit.function(), visit.ctx, "No keys specified with a list node.");
    }
    yfw_map_add_to_node_hierarchy(visit.ctx, &visit.node, 2);
    kerrno result = yfw_map_update_current_list_node(visit.ctx, visit.self().list_path);
    if (result == KERR_SUCCESS) {
        consume_keys(visit);
        result = visit.self().callback(visit.ctx, &visit.node, visit.destination);
        if (result == YMAP_ERR_SKIP) {
            yfw_map_remove_from_node_hierarchy(visit.ctx, &visit.node);
            return result;
        }
    }
    const std::uint32_t depth = output_depth_of(*request_of(visit.ctx));
    yfw_add_to_output_list_ctx(visit.ctx, &visit.node, visit.destination);
    const bool opened = output_depth_of(*request_of(visit.ctx)) > depth;
    if (result == KERR_SUCCESS) {
        result = dispatch_children(visit);
    }
    yfw_map_remove_from_node_hierarchy(visit.ctx, &visit.node);
    if (opened) {
        yfw_remove_from_output_list_ctx(visit.ctx, &visit.node, visit.destination);
    }
    return result;
}

kerrno walk_leaf(const NativeVisit &visit) {
    const Node &leaf = visit.node;
    if (hierarchy_kind_of(leaf) == kind_xpath_error && has_second_flag(leaf, second_flag_kind_set)) {
        YMAP_TRACE(visit.function(), visit.ctx, "got xpath error node ");
        set_xpath_error(*request_of(visit.ctx), 1);
    }
    return visit.self().callback(visit.ctx, &leaf, visit.destination);
}

// An augment entry gets the augmenting node itself, not the list entry above it.
kerrno walk_augment(const NativeVisit &visit) {
    if (tag_of(visit.node) == nullptr) {
        return refuse_untagged(visit);
    }
    YMAP_TRACE(visit.function(), visit.ctx, "Processing tag '%s'", tag_of(visit.node));
    return dispatch(visit, visit.node);
}

kerrno walk(const NativeVisit &visit) {
    if (visit.self().kind == NativeKind::leaf) {
        return walk_leaf(visit);
    }
    if (lacks_children(visit.node) && child_count_of(visit.node) != 0) {
        return refuse_malformed(visit.function(), visit.ctx);
    }
    switch (visit.self().kind) {
    case NativeKind::container:
        return walk_container(visit);
    case NativeKind::list:
        return walk_list(visit);
    default:
        return walk_augment(visit);
    }
}

} // namespace

kerrno walk_native(const NativeModel &model, int index, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const Function &function = model.rows[static_cast<std::size_t>(index)].function;
    start(function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return end(function, ctx, walk({model, index, ctx, writable(*source), destination}));
}

} // namespace ymap
