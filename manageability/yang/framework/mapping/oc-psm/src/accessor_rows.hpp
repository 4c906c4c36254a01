// The rows of platform_access.hpp: accessors of the platform's structures, which cost what the member costs. Numbers
// are cast to the width that the plug-in counts on, and back.
#ifndef OC_PSM_ACCESSOR_ROWS_HPP
#define OC_PSM_ACCESSOR_ROWS_HPP

#include <cstddef>
#include <cstdint>
#include <span>

// Reads: the accessor's name, what it is asked about, the type that the plug-in sees, the place of the value.
#define YMAP_GET(accessor, parameter, type, place)                                                                     \
    constexpr type accessor(parameter) {                                                                               \
        return static_cast<type>(place);                                                                               \
    }

// Writes.
#define YMAP_SET(accessor, parameter, type, place)                                                                     \
    constexpr void accessor(parameter, type value) {                                                                   \
        (place) = static_cast<decltype(place)>(value);                                                                 \
    }

// Bits of a word: has_WORD, add_WORD, clear_WORD. What else the word holds, be it wider, stays.
#define YMAP_BITS(word, parameter, place)                                                                              \
    constexpr bool has_##word(const parameter, std::uint32_t bits) {                                                   \
        return (bits & (place)) != 0;                                                                                  \
    }                                                                                                                  \
    constexpr void add_##word(parameter, std::uint32_t bits) {                                                         \
        (place) = static_cast<decltype(place)>((place) | bits);                                                        \
    }                                                                                                                  \
    constexpr void clear_##word(parameter, std::uint32_t bits) {                                                       \
        (place) = static_cast<decltype(place)>((place) & ~static_cast<decltype(place)>(bits));                         \
    }

#endif
