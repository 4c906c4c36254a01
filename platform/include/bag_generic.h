/* The generic decoder of bags, the self-describing records of the system database: a header, then a run of tokens. */
#ifndef PLATFORM_BAG_GENERIC_H
#define PLATFORM_BAG_GENERIC_H

#include <stdint.h>

#include "kerr.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The type of a token. Values that are not listed may occur. */
typedef uint32_t bag_token_type_td;
#define BAG_TOKEN_INT8 0u
#define BAG_TOKEN_UINT8 1u
#define BAG_TOKEN_INT16 2u
#define BAG_TOKEN_UINT16 3u
#define BAG_TOKEN_INT32 4u
#define BAG_TOKEN_UINT32 5u
#define BAG_TOKEN_INT64 6u
#define BAG_TOKEN_UINT64 7u
#define BAG_TOKEN_IPV4 8u
#define BAG_TOKEN_ENUM 9u
#define BAG_TOKEN_BOOL 10u
#define BAG_TOKEN_TEXT 12u
#define BAG_TOKEN_TEXT2 13u /* a text in the second text slot */
#define BAG_TOKEN_ARRAY_START 14u
#define BAG_TOKEN_ARRAY_END 15u
#define BAG_TOKEN_STRUCT_START 16u
#define BAG_TOKEN_STRUCT_END 17u
#define BAG_TOKEN_END 18u /* the end of the bag */

#define BAG_TYPE_NAME_SIZE 64

typedef struct bag_header_td {
    char type_name[BAG_TYPE_NAME_SIZE]; /* the record's type, always terminated */
    int32_t version_major;
    int32_t version_minor;
} bag_header_td;

typedef struct bag_token_td {
    bag_token_type_td type;
    char *name; /* the field's name; null when it has none */
    union {
        int8_t int8;
        uint8_t uint8;
        int16_t int16;
        uint16_t uint16;
        int32_t int32;
        uint32_t uint32;
        int64_t int64;
        uint64_t uint64;
        uint32_t ipv4; /* network byte order */
        int32_t enumeration;
        uint32_t boolean; /* non-zero is true */
        char *text;       /* BAG_TOKEN_TEXT; may be null */
    } value;
    char *second_text; /* BAG_TOKEN_TEXT2; may be null */
} bag_token_td;

typedef struct bag_generic_state *bag_generic_state_td;

/* Reads the header of a bag. `bag` has at least the size of an encoded header, as sysdb_item_get guarantees. */
kerrno bag_header_info(const void *bag, bag_header_td *header);

/* Begins to decode `length` bytes. On success `*state` is to be released with bag_generic_destroy. */
kerrno bag_generic_init(const void *bag, uint32_t length, bag_generic_state_td *state);

/*
 * Gives the next token. Its texts belong to the token and are released by bag_generic_free_token_allocations, once per
 * token. A failure gives no token: there is nothing to release.
 */
kerrno bag_generic_token(bag_generic_state_td state, bag_token_td *token);

void bag_generic_free_token_allocations(bag_token_td *token);

void bag_generic_destroy(bag_generic_state_td state);

#ifdef __cplusplus
}
#endif

#endif
