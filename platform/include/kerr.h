/* Error codes: the 32-bit results of every platform service and of every callback of a mapping plug-in. */
#ifndef PLATFORM_KERR_H
#define PLATFORM_KERR_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Zero is success; every other value names a failure of the service that returned it. */
typedef uint32_t kerrno;

#define KERR_SUCCESS 0u

/* Codes that a mapping plug-in returns and the mapping framework interprets. */
#define YMAP_ERR_BAD_TREE 0xaaf29e00u            /* a request or answer tree that is not well formed */
#define YMAP_ERR_INVALID_ARGS 0xaaf2a000u        /* a node is missing, or a delete carries content below a container */
#define YMAP_ERR_UNSUPPORTED 0xaaf2ee00u         /* the node cannot be served; it is named by the error-node name */
#define YMAP_ERR_LIST_KEY 0xaaf2f000u            /* the key leaf of a list entry is empty, missing or doubled */
#define YMAP_ERR_KEY_DELETE 0xaaf2f200u          /* the key leaf of a list entry carries a delete */
#define YMAP_ERR_SKIP 0xaaf2f600u                /* no failure: the walker is to pass the node over */
#define YMAP_ERR_AUGMENT_UNSUPPORTED 0xaaf2f800u /* an add request carries data of an augmenting model */

/* The text of a code, never null; it belongs to the library and stays valid. */
const char *kerr_strerror(kerrno code);

#ifdef __cplusplus
}
#endif

#endif
