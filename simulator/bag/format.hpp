// The encoding of bags. All numbers are little-endian.
//
//   header   magic "BAG1" | total length u32 | major i32 | minor i32 | name length u8 | name
//   token    type u16 | name length u16 | value length u32 | name | value          (any number, the last one an end)
//
// The total length counts the header; a bag that ends elsewhere is truncated. Every token carries its length, so that a
// reader passes over types that it does not know. Texts are stored without terminator and hold no zero byte.
#ifndef OCPSM_SIMULATOR_BAG_FORMAT_HPP
#define OCPSM_SIMULATOR_BAG_FORMAT_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ocpsm::bag {

inline constexpr std::string_view magic = "BAG1";
inline constexpr std::size_t fixed_header_size = 17;
inline constexpr std::size_t token_header_size = 8;
inline constexpr std::size_t max_type_name = 239;

// Bytes that bag_header_info may read, whatever they hold: who hands out bags pads shorter data to this size.
inline constexpr std::size_t max_header_size = fixed_header_size + max_type_name;
static_assert(max_header_size == 256);

inline constexpr std::uint16_t no_name = 0xffff;     // name length of a token without a name
inline constexpr std::uint32_t no_text = 0xffffffff; // value length of a text that is null
inline constexpr std::size_t max_depth = 32;         // arrays and structs in one another

} // namespace ocpsm::bag

#endif
