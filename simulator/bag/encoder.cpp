#include "simulator/bag/encoder.hpp"

#include <array>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "simulator/bag/format.hpp"

namespace ocpsm::bag {
namespace {

constexpr std::size_t total_length_position = magic.size();

template <class Integer>
std::array<char, sizeof(Integer)> little_endian(Integer value) {
    std::array<char, sizeof(Integer)> bytes{};
    auto rest = static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<Integer>>(value));
    for (char &byte : bytes) {
        byte = static_cast<char>(rest & 0xffu);
        rest >>= 8;
    }
    return bytes;
}

template <class Integer>
void append(std::string &bytes, Integer value) {
    const auto encoded = little_endian(value);
    bytes.append(encoded.data(), encoded.size());
}

// A reader hands texts out terminated, so a zero byte inside would cut them.
void require_no_zero(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        throw std::invalid_argument("a text of a bag holds a zero byte");
    }
}

} // namespace

Encoder::Encoder(std::string_view type_name, std::int32_t version_major, std::int32_t version_minor) : bytes_(magic) {
    require_no_zero(type_name);
    if (type_name.size() > max_type_name) {
        throw std::invalid_argument("the type name of a bag is too long");
    }
    append(bytes_, std::uint32_t{0});
    append(bytes_, version_major);
    append(bytes_, version_minor);
    append(bytes_, static_cast<std::uint8_t>(type_name.size()));
    bytes_.append(type_name);
}

void Encoder::token(bag_token_type_td type, Name name, std::uint32_t value_length, std::string_view value) {
    require_no_zero(name.value_or(""));
    if (name && name->size() >= no_name) {
        throw std::invalid_argument("a name of a bag is too long");
    }
    if (type > std::numeric_limits<std::uint16_t>::max()) {
        throw std::invalid_argument("a token type of a bag has at most 16 bits");
    }
    append(bytes_, static_cast<std::uint16_t>(type));
    append(bytes_, name ? static_cast<std::uint16_t>(name->size()) : no_name);
    append(bytes_, value_length);
    bytes_.append(name.value_or(""));
    bytes_.append(value);
}

template <class Integer>
Encoder &Encoder::integer(bag_token_type_td type, Name name, Integer value) {
    const auto encoded = little_endian(value);
    return opaque(type, name, {encoded.data(), encoded.size()});
}

Encoder &Encoder::opaque(bag_token_type_td type, Name name, std::string_view value) {
    if (value.size() >= no_text) {
        throw std::invalid_argument("a value of a bag is too long");
    }
    token(type, name, static_cast<std::uint32_t>(value.size()), value);
    return *this;
}

Encoder &Encoder::some_text(bag_token_type_td type, Name name, std::optional<std::string_view> value) {
    if (!value) {
        token(type, name, no_text, {});
        return *this;
    }
    require_no_zero(*value);
    return opaque(type, name, *value);
}

Encoder &Encoder::begin(bag_token_type_td start, bag_token_type_td end, Name name) {
    if (open_.size() == max_depth) {
        throw std::invalid_argument("a bag is nested too deeply");
    }
    opaque(start, name, {});
    open_.push_back(end);
    return *this;
}

Encoder &Encoder::end(bag_token_type_td end) {
    if (open_.empty() || open_.back() != end) {
        throw std::invalid_argument("an array or struct of a bag ends that is not the innermost one");
    }
    open_.pop_back();
    return opaque(end, unnamed, {});
}

Encoder &Encoder::int8(Name name, std::int8_t value) {
    return integer(BAG_TOKEN_INT8, name, value);
}
Encoder &Encoder::uint8(Name name, std::uint8_t value) {
    return integer(BAG_TOKEN_UINT8, name, value);
}
Encoder &Encoder::int16(Name name, std::int16_t value) {
    return integer(BAG_TOKEN_INT16, name, value);
}
Encoder &Encoder::uint16(Name name, std::uint16_t value) {
    return integer(BAG_TOKEN_UINT16, name, value);
}
Encoder &Encoder::int32(Name name, std::int32_t value) {
    return integer(BAG_TOKEN_INT32, name, value);
}
Encoder &Encoder::uint32(Name name, std::uint32_t value) {
    return integer(BAG_TOKEN_UINT32, name, value);
}
Encoder &Encoder::int64(Name name, std::int64_t value) {
    return integer(BAG_TOKEN_INT64, name, value);
}
Encoder &Encoder::uint64(Name name, std::uint64_t value) {
    return integer(BAG_TOKEN_UINT64, name, value);
}
Encoder &Encoder::enumeration(Name name, std::int32_t value) {
    return integer(BAG_TOKEN_ENUM, name, value);
}
Encoder &Encoder::boolean(Name name, std::uint32_t value) {
    return integer(BAG_TOKEN_BOOL, name, value);
}

Encoder &Encoder::ipv4(Name name, std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    const std::array address{static_cast<char>(a), static_cast<char>(b), static_cast<char>(c), static_cast<char>(d)};
    return opaque(BAG_TOKEN_IPV4, name, {address.data(), address.size()});
}

Encoder &Encoder::text(Name name, std::optional<std::string_view> value) {
    return some_text(BAG_TOKEN_TEXT, name, value);
}

Encoder &Encoder::second_text(Name name, std::optional<std::string_view> value) {
    return some_text(BAG_TOKEN_TEXT2, name, value);
}

Encoder &Encoder::begin_array(Name name) {
    return begin(BAG_TOKEN_ARRAY_START, BAG_TOKEN_ARRAY_END, name);
}
Encoder &Encoder::end_array() {
    return end(BAG_TOKEN_ARRAY_END);
}
Encoder &Encoder::begin_struct(Name name) {
    return begin(BAG_TOKEN_STRUCT_START, BAG_TOKEN_STRUCT_END, name);
}
Encoder &Encoder::end_struct() {
    return end(BAG_TOKEN_STRUCT_END);
}

std::string Encoder::finish() {
    if (!open_.empty()) {
        throw std::invalid_argument("a bag ends inside an array or struct");
    }
    opaque(BAG_TOKEN_END, unnamed, {});
    if (bytes_.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::invalid_argument("a bag is too long");
    }
    const auto length = little_endian(static_cast<std::uint32_t>(bytes_.size()));
    bytes_.replace(total_length_position, length.size(), length.data(), length.size());
    return std::move(bytes_);
}

} // namespace ocpsm::bag
