/*
 * The YANG mapping framework, as a mapping plug-in sees it: the context of a request, data trees, the node hierarchy,
 * the output, bounded texts. The framework allocates every structure of this file; a plug-in reads the members and
 * writes those that say so. Unless an operation says otherwise, its pointers must not be null.
 */
#ifndef PLATFORM_YFW_MAP_H
#define PLATFORM_YFW_MAP_H

#include <stddef.h>
#include <stdint.h>

#include "hvs_dt.h"
#include "kerr.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- data trees ---- */

/* Bits of a node's flags. */
#define YFW_NODE_IN_USE 1u              /* the node is part of the tree; without it the whole subtree is not */
#define YFW_NODE_HAS_VALUE 2u           /* the leaf carries a value (which may be the empty text) */
#define YFW_NODE_OPERATION_REWRITTEN 16u /* written by the walk: it has changed the operation */
#define YFW_NODE_CHILDREN_VALID 64u     /* `children` and `child_count` count */
#define YFW_NODE_KEY_CONSUMED 512u      /* written by the walk: the leaf is a list key and has been used */

/* Bits of a node's second flag word. */
#define YFW_NODE2_KIND_SET 4u /* written by the walk: `hierarchy_kind` counts */

/* A node's hierarchy kind, written by the walk. */
#define YFW_KIND_LEAF 1u
#define YFW_KIND_CONTAINER 3u
#define YFW_KIND_LIST 4u
#define YFW_KIND_XPATH_ERROR 5u    /* a leaf of an answer that stands for an error, with the kind-set bit */
#define YFW_KIND_CONTENT_MATCH 6u  /* a leaf of a read that carries a value */

/* A node's edit operation (RFC 6241, 7.2). It is not inherited: a node carries what was written on it. */
#define YFW_OPERATION_MERGE 0u
#define YFW_OPERATION_REPLACE 1u
#define YFW_OPERATION_CREATE 2u
#define YFW_OPERATION_DELETE 3u
#define YFW_OPERATION_REMOVE 4u

struct kidl_yfw_datatree {
    char *tag;                          /* the node's name without prefix; may be null */
    char *namespace_uri;                /* may be null */
    char *value;                        /* canonical text of a leaf; may be null */
    uint32_t operation;                 /* YFW_OPERATION_...; written by the walk for the time of a pass */
    uint32_t flags;                     /* YFW_NODE_...; written by the walk */
    uint32_t second_flags;              /* YFW_NODE2_...; written by the walk */
    uint32_t hierarchy_kind;            /* YFW_KIND_...; written by the walk */
    uint8_t consumed_mark;              /* 1 on a list key that has been used; written by the walk */
    int32_t child_count;                /* hidden (0) by the walk for the time of a pass */
    struct kidl_yfw_datatree *children; /* contiguous; hidden (null) by the walk for the time of a pass */
};

/* ---- the request ---- */

/* Operation kinds of a request. */
#define YFW_KIND_GET_CONFIG 0u
#define YFW_KIND_EDIT_CONFIG 1u
#define YFW_KIND_GET 10u /* the read that includes operational state */

/* Bits of the read-selection flags. */
#define YFW_READ_CONTENT_MATCH_ONLY 1u           /* the current container holds only content-match leaves */
#define YFW_READ_SELECTION_LEAF 2u               /* a leaf without value was seen */
#define YFW_READ_CONTENT_MATCH_LEAF 4u           /* a leaf with value was seen */
#define YFW_READ_CONTENT_MATCH_ANYWHERE 0x10000u /* a leaf with value was seen anywhere in the request */

/* Bits of the replace flags. */
#define YFW_REPLACE_REMOVE_PASS 64u
#define YFW_REPLACE_MERGE_PASS 128u

/* What the client registered. */
struct yfw_map_registration {
    uint32_t operation_kind; /* YFW_KIND_GET_CONFIG, ... */
};

/* One level of the node hierarchy. */
struct yfw_map_hierarchy_level {
    const struct kidl_yfw_datatree *node;
    uint32_t kind; /* 1 container, 2 list entry */
};

/* One entry of the output list. */
struct yfw_map_output_entry {
    const struct kidl_yfw_datatree *node;
    const struct kidl_yfw_datatree *key;
};

/* The entries of one OpenConfig list of a request; opaque, see yfw_map_search_or_add_list. */
struct yfw_map_module_list;

/* The framework's record of one request. */
struct yfw_map_request {
    const struct yfw_map_registration *registration;
    uint32_t whole_subtree_walk; /* 0 or 1; written by the walk: handlers are called with their parent's node */
    uint32_t delete_walk;        /* 0, 1 or 2; written by the walk: a delete is being spread over a subtree */
    uint8_t replace_flags;       /* YFW_REPLACE_...; written by the walk */
    uint32_t replace_marker;     /* 1 while a replace is walked in two passes; written by the walk */
    uint32_t read_selection;     /* YFW_READ_...; written by the walk */
    uint32_t selection_mode;     /* of a read: 2, with any bit of leaf_selection, names state leaves only */
    uint32_t leaf_selection;     /* of a read: one bit per selected leaf */
    uint32_t xpath_error;        /* set to 1 by the walk of an answer that holds an xpath error node */
    char *error_node_name;       /* tag of the refused node, by yfw_strdup; written by the plug-in; null when none */

    uint32_t hierarchy_length;                /* levels of the node hierarchy, outermost first */
    struct yfw_map_hierarchy_level *hierarchy;
    uint32_t output_depth;                    /* open output scopes */

    struct kidl_yfw_datatree *list_node;      /* copy of the current OpenConfig list entry; null when none is current */
    struct kidl_yfw_datatree *request_root;   /* duplicate of the registered request, made when it was registered */
    struct kidl_yfw_datatree *answer_root;    /* the whole native answer of the model being walked; null in requests */
    struct yfw_map_module_list *module_list;  /* the request's entries of /aps/aps-modules/aps-module */
};

/* ---- the context ---- */

/* Decides which messages are logged. */
struct yfw_debug_filter {
    uint32_t enabled_levels; /* bit n: messages of level n are logged */
};

/* The mapping context: one per request, first argument of every callback. */
struct yfw_map_context {
    struct yfw_map_request *request;
    struct yfw_debug_filter debug_log_filter;
    hvs_dt_handle error_log;
    hvs_dt_handle trace_log;
    hvs_trace_handle trace_buffer;
    uint32_t trace_enabled;  /* non-zero: every message goes to the trace buffer too */
    uint32_t list_operation; /* operation of the current list entry where the walk rewrote it, else 0; written by it */
    uint32_t data_printed;   /* set to 1 by a dump of the context */

    uint32_t output_count; /* the output list */
    struct yfw_map_output_entry *output;
    struct kidl_yfw_datatree *root_node;
    struct kidl_yfw_datatree *parent_node;
    struct kidl_yfw_datatree *current_node; /* the innermost node of the hierarchy */
    struct kidl_yfw_datatree *pending_list;
    uint32_t xpath_count;
    const char **xpaths;
};

/* Passed by value and printed with %p. */
typedef struct yfw_map_context *yfw_map_ctx;

/* ---- questions about nodes ---- */

/* Non-zero when both texts are there and equal. Either may be null, which never matches. */
int yfw_map_do_these_match(const char *first, const char *second);

/* Non-zero when the node's own operation is delete or remove. */
int yfw_map_is_request_delete(const struct kidl_yfw_datatree *node);

/* Non-zero when the request is an edit and the node's operation is merge, replace or create. The context may be null,
   which is no edit. */
int yfw_map_is_request_add(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node,
                           const struct kidl_yfw_datatree *destination);

/* ---- the walk ---- */

/* Pushes a node on the node hierarchy; `kind` is 1 for a container, 2 for a list entry. */
void yfw_map_add_to_node_hierarchy(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node, uint32_t kind);

/* Pops the node again. */
void yfw_map_remove_from_node_hierarchy(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node);

/* Says that the entry on top of the hierarchy is the current instance of the list with this schema path. Prefixes in
   the path are accepted. */
kerrno yfw_map_update_current_list_node(yfw_map_ctx ctx, const char *list_path);

/* Zero when the key of an entry satisfies its leafref to the leaf of the same name in `container` of that entry, else
   a code of the framework. */
kerrno yfw_map_check_oc_leafref(yfw_map_ctx ctx, const char *list_path, const char *container,
                                const struct kidl_yfw_datatree *key, const struct kidl_yfw_datatree *entry);

/* An entry of the instance-tree stack: a child array that was taken out of its tree. Empty when `children` is null. */
struct yfw_map_itree_entry {
    struct kidl_yfw_datatree *children;
    int32_t child_count;
};

/* The instance-tree stack. Popping or peeking at the empty stack does nothing. `reserved` is zero. */
uint16_t yfw_map_util_itree_stack_size(yfw_map_ctx ctx);
void yfw_map_util_itree_stack_push(yfw_map_ctx ctx, struct kidl_yfw_datatree *children, int32_t child_count,
                                   uint32_t reserved);
void yfw_map_util_itree_stack_pop(yfw_map_ctx ctx);
void yfw_map_util_itree_stack_peak(yfw_map_ctx ctx, struct yfw_map_itree_entry *top);

/* Records the position of the walk, as the hierarchy stands, as the error location. The context may be null. */
void yfw_oc_error_path(yfw_map_ctx ctx);

/* ---- output ---- */

/*
 * Adds a node to `tree`. A path with a leading slash is an absolute schema path of the tree's model and runs through
 * the current instance of every list on its way; a path without one is a node one step below `tree`, and may move the
 * array of its children. `value` null: none (differs from the empty text). `source` null: none; else the new node takes
 * its operation. `*result`, unless `result` is null, receives the node, or null. `first_flag` 1 opens a new instance
 * of a list, `second_flag` is kept on the node. The texts are copied.
 */
kerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx ctx, struct kidl_yfw_datatree *tree, const char *path,
                                         const char *namespace_uri, const char *value,
                                         const struct kidl_yfw_datatree *source, struct kidl_yfw_datatree **result,
                                         uint32_t first_flag, uint32_t second_flag);

/* The key `key_name` of the innermost list entry on the hierarchy that has one, whatever `list_path`. It may succeed
   without a text (null). The text belongs to the answer tree. */
kerrno yfw_map_get_node_info(yfw_map_ctx ctx, const char *list_path, const char *key_name, const char **text);

/* Finds the entry of an OpenConfig list with this key, or adds it, and makes it current. */
kerrno yfw_map_search_or_add_list(yfw_map_ctx ctx, struct kidl_yfw_datatree *destination,
                                  struct yfw_map_module_list *list, const char *list_path, const char *key_value,
                                  const char *key_name, const char *namespace_uri);

#define YFW_STITCH_NAMESPACE_SIZE 250
#define YFW_STITCH_VALUE_SIZE 300
#define YFW_STITCH_PATH_SIZE 1000
#define YFW_STITCH_VALUE_TEXT 3u

/* A leaf that is written by instance path. All texts are terminated. */
struct yfw_map_stitch_entry {
    uint32_t in_use; /* 1 */
    struct kidl_yfw_datatree *destination;
    uint32_t value_kind; /* YFW_STITCH_VALUE_TEXT */
    char namespace_uri[YFW_STITCH_NAMESPACE_SIZE];
    char value[YFW_STITCH_VALUE_SIZE];
    char instance_path[YFW_STITCH_PATH_SIZE]; /* with key predicates */
    char schema_path[YFW_STITCH_PATH_SIZE];   /* without */
};

/* Writes the leaf of a stitch entry into its destination, finding or creating the list entry of its predicate. The
   entry is copied. */
kerrno yfw_map_stitch_list_to_list(yfw_map_ctx ctx, struct yfw_map_stitch_entry *entry);

/* Open and close the output scope of a list entry. */
void yfw_add_to_output_list_ctx(yfw_map_ctx ctx, const struct kidl_yfw_datatree *source,
                                struct kidl_yfw_datatree *destination);
void yfw_remove_from_output_list_ctx(yfw_map_ctx ctx, const struct kidl_yfw_datatree *source,
                                     struct kidl_yfw_datatree *destination);

/* Prints a tree to the trace under a label. The node may be null. */
void yfw_map_print_datatree_internal(yfw_map_ctx ctx, const struct kidl_yfw_datatree *node, const char *label);

/* ---- log and trace ---- */

/* Non-zero when a message of this level (0 error, 3 trace) is to be logged. */
int yfw_debug_should_log(const struct yfw_debug_filter *filter, uint32_t level);

/* The next trace sequence number, drawn only for the trace buffer. */
uint32_t ret_nc_yfw_trace_index_incr(void);

/* ---- texts ---- */

/* A copy of a text on the heap, to be released with hvs_named_free; `allocation_tag` names it in memory statistics. */
char *yfw_strdup(const char *text, const char *allocation_tag);

/*
 * Bounded copy and append: `dest` has room for `size` bytes, is always terminated (unless `size` is zero) and cut where
 * it must be. yfw_strncpy_s takes at most `count` bytes of `source`. They return zero when nothing was cut.
 */
int yfw_strcpy_s(char *dest, size_t size, const char *source);
int yfw_strcat_s(char *dest, size_t size, const char *source);
int yfw_strncpy_s(char *dest, size_t size, const char *source, size_t count);

#ifdef __cplusplus
}
#endif

#endif
