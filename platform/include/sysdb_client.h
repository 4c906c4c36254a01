/* The client of the system database: typed items in a tree of paths, read below a bound subtree. */
#ifndef PLATFORM_SYSDB_CLIENT_H
#define PLATFORM_SYSDB_CLIENT_H

#include <stdint.h>

#include "kerr.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct sysdb_handle *sysdb_handle_td; /* one bound subtree */
typedef struct sysdb_names *sysdb_list_td;    /* one listing of item names */

/* The type of an item's data. */
typedef uint32_t sysdb_item_datatype_td;
#define SYSDB_ITEM_INT32 1u /* a bare signed 32-bit integer in host byte order */
#define SYSDB_ITEM_BAG 7u   /* an encoded, self-describing record, see bag_generic.h */

/*
 * Binds a subtree, e.g. "/oper/ots/if/", and gives a handle on it, to be released with _sysdb_unbind. `flags` is zero.
 * It may succeed and give no handle (null): then there is nothing to read and nothing to unbind.
 */
kerrno _sysdb_bind(sysdb_handle_td *handle, const char *bind_path, uint32_t flags);

/* Releases a handle. Data that was fetched through it stays valid. */
kerrno _sysdb_unbind(sysdb_handle_td handle);

/*
 * Fetches one item below the bound subtree. `type` names the expected type and may be updated to the item's own.
 * On success `*data` is memory of the system's allocator, to be released by the caller with free, and `*length` its
 * size in bytes; an item without data gives null and zero. Data is padded behind `*length` so that a bag header can
 * always be read from it. `flags` is zero.
 */
kerrno sysdb_item_get(sysdb_handle_td handle, const char *item_path, sysdb_item_datatype_td *type, void **data,
                      uint32_t *length, uint32_t flags);

/*
 * Lists the names directly below `path` of the bound subtree (empty: the subtree itself) that begin with `pattern`;
 * the name of a subtree ends in a slash. `*count` receives their number, `*list` the listing, to be released with
 * sysdb_list_free. `flags` is zero.
 */
kerrno sysdb_list(sysdb_handle_td handle, const char *path, const char *pattern, int32_t *count, sysdb_list_td *list,
                  uint32_t flags);

/* The next name of a listing, valid until the listing is freed, and its type; a null name or a failure ends it. */
kerrno sysdb_list_next(sysdb_list_td list, const char **name, sysdb_item_datatype_td *type, uint32_t flags);

void sysdb_list_free(sysdb_list_td list);

#ifdef __cplusplus
}
#endif

#endif
