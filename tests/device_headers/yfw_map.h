/*
 * The mapping framework as another device declares it: the same operations, but structures, members and constants with
 * names, an order and widths of their own. NAMED(here, elsewhere) is such a name and that of platform/include: the
 * plug-in is compiled with the names of this edition, the recording platform, on the same layout, with the others.
 */
#ifndef DEVICE_YFW_MAP_H
#define DEVICE_YFW_MAP_H

#include <stddef.h>
#include <stdint.h>

#include "hvs_dt.h"
#include "kerr.h"

#ifdef RECORDING_PLATFORM
#define NAMED(here, elsewhere) elsewhere
#else
#define NAMED(here, elsewhere) here
#endif
#define CONSTANT(here, elsewhere, value) static const uint32_t NAMED(here, elsewhere) = value;

extern "C" {

/* ---- data trees ---- */

CONSTANT(DT_LIVE, YFW_NODE_IN_USE, 1)
CONSTANT(DT_WITH_CONTENT, YFW_NODE_HAS_VALUE, 2)
CONSTANT(DT_REWRITTEN, YFW_NODE_OPERATION_REWRITTEN, 16)
CONSTANT(DT_WITH_SUBTREES, YFW_NODE_CHILDREN_VALID, 64)
CONSTANT(DT_KEY_TAKEN, YFW_NODE_KEY_CONSUMED, 512)
CONSTANT(DT_SORT_KNOWN, YFW_NODE2_KIND_SET, 4)
CONSTANT(DT_SORT_LEAF, YFW_KIND_LEAF, 1)
CONSTANT(DT_SORT_CONTAINER, YFW_KIND_CONTAINER, 3)
CONSTANT(DT_SORT_LIST, YFW_KIND_LIST, 4)
CONSTANT(DT_SORT_ERROR, YFW_KIND_XPATH_ERROR, 5)
CONSTANT(DT_SORT_MATCH, YFW_KIND_CONTENT_MATCH, 6)
CONSTANT(NC_MERGE, YFW_OPERATION_MERGE, 0)
CONSTANT(NC_REPLACE, YFW_OPERATION_REPLACE, 1)
CONSTANT(NC_DELETE, YFW_OPERATION_DELETE, 3)
CONSTANT(NC_REMOVE, YFW_OPERATION_REMOVE, 4)

struct kidl_yfw_datatree {
    kidl_yfw_datatree *NAMED(subtrees, children);
    int64_t NAMED(subtree_count, child_count);
    uint64_t NAMED(state_bits, flags);
    uint8_t NAMED(nc_operation, operation);
    uint16_t NAMED(sort, hierarchy_kind);
    uint32_t NAMED(taken, consumed_mark);
    uint8_t NAMED(more_bits, second_flags);
    char *NAMED(content, value);
    char *NAMED(xmlns, namespace_uri);
    char *NAMED(label, tag);
};

/* ---- the request ---- */

CONSTANT(RPC_GET_CONFIG, YFW_KIND_GET_CONFIG, 0)
CONSTANT(RPC_GET, YFW_KIND_GET, 10)
CONSTANT(SELECT_MATCHES, YFW_READ_CONTENT_MATCH_ONLY, 1)
CONSTANT(SELECT_LEAF, YFW_READ_SELECTION_LEAF, 2)
CONSTANT(SELECT_MATCH, YFW_READ_CONTENT_MATCH_LEAF, 4)
CONSTANT(SELECT_MATCH_SEEN, YFW_READ_CONTENT_MATCH_ANYWHERE, 0x10000)
CONSTANT(PASS_REMOVES, YFW_REPLACE_REMOVE_PASS, 64)
CONSTANT(PASS_MERGES, YFW_REPLACE_MERGE_PASS, 128)

struct NAMED(ym_client, yfw_map_registration) {
    uint16_t NAMED(rpc, operation_kind);
};

struct NAMED(ym_level, yfw_map_hierarchy_level) {
    uint8_t NAMED(role, kind);
    const kidl_yfw_datatree *NAMED(at, node);
};

struct NAMED(ym_output, yfw_map_output_entry) {
    const kidl_yfw_datatree *NAMED(key_leaf, key);
    const kidl_yfw_datatree *NAMED(entry, node);
};

struct NAMED(ym_entries, yfw_map_module_list);

struct NAMED(ym_request, yfw_map_request) {
    const NAMED(ym_client, yfw_map_registration) *NAMED(client, registration);
    kidl_yfw_datatree *NAMED(native_answer, answer_root);
    kidl_yfw_datatree *NAMED(whole_request, request_root);
    kidl_yfw_datatree *NAMED(entry, list_node);
    NAMED(ym_entries, yfw_map_module_list) *NAMED(entries, module_list);
    uint64_t NAMED(selection_bits, read_selection);
    uint64_t NAMED(selected_leaves, leaf_selection);
    uint32_t NAMED(replace_bits, replace_flags);
    uint16_t NAMED(open_outputs, output_depth);
    uint16_t NAMED(level_count, hierarchy_length);
    NAMED(ym_level, yfw_map_hierarchy_level) *NAMED(levels, hierarchy);
    uint8_t NAMED(spreads, whole_subtree_walk);
    uint8_t NAMED(deletes, delete_walk);
    uint8_t NAMED(replaces, replace_marker);
    uint8_t NAMED(selects, selection_mode);
    uint8_t NAMED(holds_error, xpath_error);
    char *NAMED(refused, error_node_name);
};

/* ---- the context ---- */

struct yfw_debug_filter {
    uint64_t NAMED(levels, enabled_levels);
};

struct NAMED(ym_ctx, yfw_map_context) {
    uint64_t NAMED(dumped, data_printed);
    uint8_t NAMED(entry_operation, list_operation);
    uint64_t NAMED(traces, trace_enabled);
    hvs_trace_handle NAMED(trace, trace_buffer);
    hvs_dt_handle NAMED(traces_to, trace_log);
    hvs_dt_handle NAMED(errors_to, error_log);
    yfw_debug_filter NAMED(filter, debug_log_filter);
    const char **NAMED(schema_paths, xpaths);
    uint16_t NAMED(schema_path_count, xpath_count);
    kidl_yfw_datatree *NAMED(waiting, pending_list);
    kidl_yfw_datatree *NAMED(inner, current_node);
    kidl_yfw_datatree *NAMED(above, parent_node);
    kidl_yfw_datatree *NAMED(top, root_node);
    NAMED(ym_output, yfw_map_output_entry) *NAMED(outputs, output);
    uint64_t NAMED(output_total, output_count);
    NAMED(ym_request, yfw_map_request) *NAMED(current, request);
};

typedef NAMED(ym_ctx, yfw_map_context) *yfw_map_ctx;

/* ---- records ---- */

struct NAMED(ym_saved, yfw_map_itree_entry) {
    int64_t NAMED(total, child_count);
    kidl_yfw_datatree *NAMED(array, children);
};

CONSTANT(STITCH_PATH, YFW_STITCH_PATH_SIZE, 1000)
CONSTANT(STITCH_IS_TEXT, YFW_STITCH_VALUE_TEXT, 3)

struct NAMED(ym_stitch, yfw_map_stitch_entry) {
    char NAMED(schema, schema_path)[1000];
    char NAMED(instance, instance_path)[1000];
    char NAMED(text, value)[300];
    char NAMED(xmlns, namespace_uri)[250];
    uint8_t NAMED(text_kind, value_kind);
    uint64_t NAMED(valid, in_use);
    kidl_yfw_datatree *NAMED(into, destination);
};

/* ---- operations ---- */

int yfw_map_do_these_match(const char *first, const char *second);
int yfw_map_is_request_delete(const kidl_yfw_datatree *node);
int yfw_map_is_request_add(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const kidl_yfw_datatree *destination);
void yfw_map_add_to_node_hierarchy(yfw_map_ctx ctx, const kidl_yfw_datatree *node, uint32_t kind);
void yfw_map_remove_from_node_hierarchy(yfw_map_ctx ctx, const kidl_yfw_datatree *node);
kerrno yfw_map_update_current_list_node(yfw_map_ctx ctx, const char *list_path);
kerrno yfw_map_check_oc_leafref(yfw_map_ctx ctx, const char *list_path, const char *container,
                                const kidl_yfw_datatree *key, const kidl_yfw_datatree *entry);
uint16_t yfw_map_util_itree_stack_size(yfw_map_ctx ctx);
void yfw_map_util_itree_stack_push(yfw_map_ctx ctx, kidl_yfw_datatree *children, int32_t child_count,
                                   uint32_t reserved);
void yfw_map_util_itree_stack_pop(yfw_map_ctx ctx);
void yfw_map_util_itree_stack_peak(yfw_map_ctx ctx, NAMED(ym_saved, yfw_map_itree_entry) * top);
void yfw_oc_error_path(yfw_map_ctx ctx);
kerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx ctx, kidl_yfw_datatree *tree, const char *path,
                                         const char *namespace_uri, const char *value, const kidl_yfw_datatree *source,
                                         kidl_yfw_datatree **result, uint32_t first_flag, uint32_t second_flag);
kerrno yfw_map_get_node_info(yfw_map_ctx ctx, const char *list_path, const char *key_name, const char **text);
kerrno yfw_map_search_or_add_list(yfw_map_ctx ctx, kidl_yfw_datatree *destination,
                                  NAMED(ym_entries, yfw_map_module_list) * list, const char *list_path,
                                  const char *key_value, const char *key_name, const char *namespace_uri);
kerrno yfw_map_stitch_list_to_list(yfw_map_ctx ctx, NAMED(ym_stitch, yfw_map_stitch_entry) * entry);
void yfw_add_to_output_list_ctx(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);
void yfw_remove_from_output_list_ctx(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);
void yfw_map_print_datatree_internal(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *label);
int yfw_debug_should_log(const yfw_debug_filter *filter, uint32_t level);
uint32_t ret_nc_yfw_trace_index_incr(void);
char *yfw_strdup(const char *text, const char *allocation_tag);
int yfw_strcpy_s(char *dest, size_t size, const char *source);
int yfw_strcat_s(char *dest, size_t size, const char *source);
int yfw_strncpy_s(char *dest, size_t size, const char *source, size_t count);

} /* extern "C" */

#endif
