// The codes of the services that stand in for the device's, with the texts that kerr_strerror gives for them.
#ifndef OCPSM_FRAMEWORK_HOST_SERVICE_CODES_HPP
#define OCPSM_FRAMEWORK_HOST_SERVICE_CODES_HPP

#include <array>

#include "kerr.h"

namespace ocpsm {

namespace bag {
inline constexpr kerrno error_invalid_argument = 0x80a54200u; // a pointer that must not be null is
inline constexpr kerrno error_no_memory = 0x80a54400u;
inline constexpr kerrno error_not_a_bag = 0x80a54600u;    // the header is not that of a bag
inline constexpr kerrno error_truncated = 0x80a54800u;    // a length runs beyond the end of the data
inline constexpr kerrno error_malformed = 0x80a54a00u;    // a token whose size, text or position cannot be
inline constexpr kerrno error_too_deep = 0x80a54c00u;     // more nested arrays and structs than bag::max_depth
inline constexpr kerrno error_past_the_end = 0x80a54e00u; // a token asked for behind the end token
} // namespace bag

namespace sysdb {
inline constexpr kerrno error_not_installed = 0x8081c200u;    // there is no client library
inline constexpr kerrno error_invalid_argument = 0x8081c400u; // a pointer that must not be null is, or a bad bind path
inline constexpr kerrno error_not_open = 0x8081c600u;         // no database is open
inline constexpr kerrno error_not_found = 0x8081c800u;        // there is no such item
inline constexpr kerrno error_wrong_type = 0x8081ca00u;       // the item has another type than the expected one
inline constexpr kerrno error_storage = 0x8081cc00u;          // the database cannot be read
inline constexpr kerrno error_no_memory = 0x8081ce00u;
} // namespace sysdb

struct KerrText {
    kerrno code;
    const char *text;
};

inline constexpr std::array kerr_service_texts{
    KerrText{bag::error_invalid_argument, "bag decoder: invalid argument"},
    KerrText{bag::error_no_memory, "bag decoder: out of memory"},
    KerrText{bag::error_not_a_bag, "bag decoder: the data is not a bag"},
    KerrText{bag::error_truncated, "bag decoder: the bag is truncated"},
    KerrText{bag::error_malformed, "bag decoder: the bag is malformed"},
    KerrText{bag::error_too_deep, "bag decoder: the bag is nested too deeply"},
    KerrText{bag::error_past_the_end, "bag decoder: no token behind the end of the bag"},
    KerrText{sysdb::error_not_installed, "system database client not installed"},
    KerrText{sysdb::error_invalid_argument, "system database: invalid argument"},
    KerrText{sysdb::error_not_open, "system database: no database is open"},
    KerrText{sysdb::error_not_found, "system database: no such item"},
    KerrText{sysdb::error_wrong_type, "system database: the item has another type"},
    KerrText{sysdb::error_storage, "system database: the database cannot be read"},
    KerrText{sysdb::error_no_memory, "system database: out of memory"},
};

} // namespace ocpsm

#endif
