/* The bag decoder as another device declares it; names as in yfw_map.h. */
#ifndef DEVICE_BAG_GENERIC_H
#define DEVICE_BAG_GENERIC_H

#include "yfw_map.h"

extern "C" {

typedef uint64_t bag_token_type_td;

CONSTANT(BAG_I8, BAG_TOKEN_INT8, 0)
CONSTANT(BAG_U8, BAG_TOKEN_UINT8, 1)
CONSTANT(BAG_I16, BAG_TOKEN_INT16, 2)
CONSTANT(BAG_U16, BAG_TOKEN_UINT16, 3)
CONSTANT(BAG_I32, BAG_TOKEN_INT32, 4)
CONSTANT(BAG_U32, BAG_TOKEN_UINT32, 5)
CONSTANT(BAG_I64, BAG_TOKEN_INT64, 6)
CONSTANT(BAG_U64, BAG_TOKEN_UINT64, 7)
CONSTANT(BAG_ADDRESS, BAG_TOKEN_IPV4, 8)
CONSTANT(BAG_WORD, BAG_TOKEN_ENUM, 9)
CONSTANT(BAG_TRUTH, BAG_TOKEN_BOOL, 10)
CONSTANT(BAG_STRING, BAG_TOKEN_TEXT, 12)
CONSTANT(BAG_OTHER_STRING, BAG_TOKEN_TEXT2, 13)
CONSTANT(BAG_OPEN_ARRAY, BAG_TOKEN_ARRAY_START, 14)
CONSTANT(BAG_CLOSE_ARRAY, BAG_TOKEN_ARRAY_END, 15)
CONSTANT(BAG_OPEN_RECORD, BAG_TOKEN_STRUCT_START, 16)
CONSTANT(BAG_CLOSE_RECORD, BAG_TOKEN_STRUCT_END, 17)
CONSTANT(BAG_OVER, BAG_TOKEN_END, 18)
CONSTANT(BAG_NAME_LENGTH, BAG_TYPE_NAME_SIZE, 96)

typedef struct bag_header_td {
    int64_t NAMED(minor, version_minor);
    int64_t NAMED(major, version_major);
    char NAMED(record, type_name)[96];
} bag_header_td;

typedef struct bag_token_td {
    char *NAMED(other_string, second_text);
    union {
        char *NAMED(string, text);
        uint64_t NAMED(truth, boolean);
        int64_t NAMED(word, enumeration);
        uint32_t NAMED(address, ipv4);
        uint64_t NAMED(u64, uint64);
        int64_t NAMED(i64, int64);
        uint32_t NAMED(u32, uint32);
        int32_t NAMED(i32, int32);
        uint16_t NAMED(u16, uint16);
        int16_t NAMED(i16, int16);
        uint8_t NAMED(u8, uint8);
        int8_t NAMED(i8, int8);
    } NAMED(as, value);
    bag_token_type_td NAMED(is, type);
    char *NAMED(field, name);
} bag_token_td;

typedef struct bag_generic_state *bag_generic_state_td;

kerrno bag_header_info(const void *bag, bag_header_td *header);
kerrno bag_generic_init(const void *bag, uint32_t length, bag_generic_state_td *state);
kerrno bag_generic_token(bag_generic_state_td state, bag_token_td *token);
void bag_generic_free_token_allocations(bag_token_td *token);
void bag_generic_destroy(bag_generic_state_td state);

} /* extern "C" */

#endif
