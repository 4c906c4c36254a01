// Makes bags, as the controllers of a device do.
#ifndef OCPSM_SIMULATOR_BAG_ENCODER_HPP
#define OCPSM_SIMULATOR_BAG_ENCODER_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bag_generic.h"

namespace ocpsm::bag {

// A token's name; elements of an array have none.
using Name = std::optional<std::string_view>;

inline constexpr std::nullopt_t unnamed = std::nullopt;

// Appends tokens to one bag, in order. Every operation throws std::invalid_argument for what a bag cannot hold: names
// of more than 65,534 bytes, texts of 4 GiB, zero bytes in either, and more than max_depth arrays and structs in one
// another.
class Encoder {
public:
    // The record's type (at most max_type_name bytes; a reader's header has room for 63) and version.
    Encoder(std::string_view type_name, std::int32_t version_major, std::int32_t version_minor);

    Encoder &int8(Name name, std::int8_t value);
    Encoder &uint8(Name name, std::uint8_t value);
    Encoder &int16(Name name, std::int16_t value);
    Encoder &uint16(Name name, std::uint16_t value);
    Encoder &int32(Name name, std::int32_t value);
    Encoder &uint32(Name name, std::uint32_t value);
    Encoder &int64(Name name, std::int64_t value);
    Encoder &uint64(Name name, std::uint64_t value);
    Encoder &ipv4(Name name, std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d);
    Encoder &enumeration(Name name, std::int32_t value);
    Encoder &boolean(Name name, std::uint32_t value);
    // Without a value: the null text, which differs from the empty one.
    Encoder &text(Name name, std::optional<std::string_view> value);
    Encoder &second_text(Name name, std::optional<std::string_view> value);
    Encoder &begin_array(Name name);
    Encoder &end_array();
    Encoder &begin_struct(Name name);
    Encoder &end_struct();
    // A token of a type that has no operation above, its value as it stands.
    Encoder &opaque(bag_token_type_td type, Name name, std::string_view value);

    // The encoded bag. Every array and struct must have been ended. The encoder is used up.
    std::string finish();

private:
    template <class Integer>
    Encoder &integer(bag_token_type_td type, Name name, Integer value);
    Encoder &some_text(bag_token_type_td type, Name name, std::optional<std::string_view> value);
    Encoder &begin(bag_token_type_td start, bag_token_type_td end, Name name);
    Encoder &end(bag_token_type_td end);
    void token(bag_token_type_td type, Name name, std::uint32_t value_length, std::string_view value);

    std::string bytes_;
    std::vector<bag_token_type_td> open_; // the end tokens that are due, innermost last
};

} // namespace ocpsm::bag

#endif
