// The exported utilities: controller names and keys, scaling, tree searches, the system database.
//
// Where a signature has no size, the caller's buffer must hold the result: keys 20 bytes, values of trees 200, database
// values as long as the text that is stored. Inside the plug-in the bounded forms of utility_bounded.hpp are used.
#ifndef OC_PSM_UTILITY_HPP
#define OC_PSM_UTILITY_HPP

#include "bag_generic.h"
#include "frame.hpp"
#include "sysdb_client.h"

namespace ymap {

inline constexpr std::size_t path_size = 200;   // the tag path of a tree search
inline constexpr std::size_t psm_key_size = 20; // a module key or a system database key

// Levels below its start node that a tree search goes down. A path that fits its buffer has 200 levels at the most; a
// tree may have any number, and the stack has an end.
inline constexpr int search_depth = 1000;

} // namespace ymap

extern "C" {

// ---- names and keys ----

// The line controllers of all modules, slot by slot, ended by null: "Ots0/<slot>/0/<port>", slots 1 to 3, ports 1
// and 2.
extern YMAP_EXPORT const char *const controller_psm_ots_list[7];

// Writes the key of the module that a controller belongs to, "0/<slot>-PSM-OM", into `psm_key` of 20 bytes; slot -1
// when the name does not scan. Returns the length before cutting.
YMAP_EXPORT int ots_ctrl_key_to_psm_key(const char *controller, char *psm_key);

// Writes `format`, a text with one "%d", with the slot of a module key into `sysdb_key` of 20 bytes; slot -1 when the
// key does not scan. Returns the length before cutting.
YMAP_EXPORT int psm_key_to_sysdb_key(const char *psm_key, const char *format, char *sysdb_key);

// 1 when the controller is port `port` of slot 0 to 3 and the inventory holds its module, whose key then stands in
// `psm_key` of 20 bytes; else 0, with the reason on the error log. `controller` may be null.
YMAP_EXPORT int check_controller_name_ots_is_good_by_port(yfw_map_ctx ctx, const char *controller, char *psm_key,
                                                          int port);

// The same for port 1, the primary line port.
YMAP_EXPORT int check_controller_name_ots_is_good(yfw_map_ctx ctx, const char *controller, char *psm_key);

// ---- values ----

// Native integer to OpenConfig decimal: the number divided by `divisor`, with two decimal places, in `out` of `size`
// bytes; 0.00 when the input does not scan. Returns the length before cutting.
YMAP_EXPORT int convert_data_to_high(const char *in, char *out, int size, int divisor);

// OpenConfig decimal to native integer: the number times `multiplier`, truncated toward zero, in `out` of `size` bytes;
// 0 when the input does not scan, -2147483648 when the product is no 32-bit number. Returns the length before cutting.
YMAP_EXPORT int convert_data_to_low(const char *in, char *out, int size, int multiplier);

// Cuts trailing white space in place and returns the first character of `text` that is none.
YMAP_EXPORT char *strstrip(char *text);

// `text` with the first occurrence of `pattern` replaced: `text` itself when there is none, else a static buffer of
// 4096 bytes (cut) that the next call overwrites.
YMAP_EXPORT const char *replace_str(const char *text, const char *pattern, const char *replacement);

// ---- tree searches ----
// Depth first, by the tags from the start node down, joined by slashes. A node that is not in use hides what is below;
// what is more than 1000 levels below the start node is not looked at. `path` is a buffer of 200 bytes, empty at the
// start.

// Copies the value of the first node with this path into `value` of 200 bytes and returns 1; 0 when there is none.
YMAP_EXPORT int compare_path(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *path_to_find, char *path,
                             char *value);

// 1 when a node with this path has exactly this value, else 0.
YMAP_EXPORT int search_data_in_response(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *path_to_find,
                                        char *path, const char *value_to_find);

// 1 when a node with this path is there, with or without a value, else 0.
YMAP_EXPORT int check_request_type(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *path_to_find);
YMAP_EXPORT int check_request_type_3(yfw_map_ctx ctx, const kidl_yfw_datatree *node, const char *path_to_find,
                                     char *path);

// Dumps the context to the trace and marks it as printed.
YMAP_EXPORT void print_data(yfw_map_ctx ctx);

// ---- system database ----

// Fetches one item below a bind path. On success `*data` (null when there is none) belongs to the caller, to be
// released with free. 0x8081c200 when the database client is not installed; else the client's codes.
YMAP_EXPORT kerrno sysdb_get_data(yfw_map_ctx ctx, const char *bind_path, const char *item_path, void **data,
                                  std::uint32_t *length, sysdb_item_datatype_td type);

// 1 when `key` (18 characters count) with a slash is an item directly below "/oper/ots/if/", else 0.
YMAP_EXPORT int sysdb_key_is_defined(yfw_map_ctx ctx, const char *key);

// Finds a field of a bag by the names of tokens in order, at most ten, joined by dots, and writes it as text. An array
// that ends the path gives its first element of the wanted type. Success with `out` untouched when the field is not
// there; 0xffffffff without a bag or with more names; else the decoder's codes.
YMAP_EXPORT kerrno get_value_in_bag(yfw_map_ctx ctx, const char *path, bag_token_type_td wanted, const void *bag,
                                    std::uint32_t length, char *out);

// Writes the value of a token as text; leaves `out` untouched for a type that has none.
YMAP_EXPORT void convert_bag_value_to_str(yfw_map_ctx ctx, const bag_token_td *token, char *out);

// The direct reads. `key` is a database key, "Ots0_<slot>_0_<port>", or the key of a module for the inventory. Powers
// are texts of hundredths of a dBm, operational attenuations of hundredths of a dB, configured values of tenths; the
// history holds the device's own texts in dBm. A failure leaves `out` untouched, as does a field that is not there.
#define YMAP_BAG_READER(reader, bind_path, item, field, type)                                                          \
    YMAP_EXPORT kerrno reader(yfw_map_ctx ctx, const char *key, char *out);
#define YMAP_INTEGER_READER(reader, bind_path, item)                                                                   \
    YMAP_EXPORT kerrno reader(yfw_map_ctx ctx, const char *key, char *out);
#define YMAP_HISTORY_READER(reader, field) YMAP_EXPORT kerrno reader(yfw_map_ctx ctx, const char *key, char *out);
#include "utility_readers.inc"
YMAP_EXPORT kerrno sysdb_get_pm_30sec_power(yfw_map_ctx ctx, const char *field, bag_token_type_td type, const char *key,
                                            char *out);
YMAP_EXPORT kerrno sysdb_get_psm_name_from_inventory(yfw_map_ctx ctx, const char *psm_key, char *out);

} // extern "C"

#endif
