// The platform's decoder of bags. Every byte string is taken for hostile: nothing is read beyond its length, nothing is
// allocated that the length does not justify, and every failure is final, so that a caller's loop ends.
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>

#include "framework/host/service_codes.hpp"
#include "simulator/bag/format.hpp"

#pragma GCC visibility push(default)
#include "bag_generic.h"
#pragma GCC visibility pop

using namespace ocpsm::bag;

struct bag_generic_state {
    std::string_view rest; // behind the last token
    std::array<bag_token_type_td, max_depth> open{};
    std::size_t depth = 0;
    kerrno ended = KERR_SUCCESS; // what every further token fails with
};

namespace {

template <class Integer>
Integer little_endian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Integer); i-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return static_cast<Integer>(value);
}

// Cuts `length` bytes off the front, or says that they are not there.
bool take(std::string_view &rest, std::size_t length, std::string_view &bytes) {
    if (length > rest.size()) {
        return false;
    }
    bytes = rest.substr(0, length);
    rest.remove_prefix(length);
    return true;
}

struct Header {
    std::string_view type_name;
    std::uint32_t total_length = 0;
    std::int32_t version_major = 0;
    std::int32_t version_minor = 0;
};

kerrno read_header(std::string_view &rest, Header &header) {
    std::string_view fixed;
    if (!take(rest, fixed_header_size, fixed)) {
        return error_truncated;
    }
    if (!fixed.starts_with(magic)) {
        return error_not_a_bag;
    }
    fixed.remove_prefix(magic.size());
    header.total_length = little_endian<std::uint32_t>(fixed);
    header.version_major = little_endian<std::int32_t>(fixed.substr(4));
    header.version_minor = little_endian<std::int32_t>(fixed.substr(8));
    const auto name_length = little_endian<std::uint8_t>(fixed.substr(12));
    if (name_length > max_type_name) {
        return error_not_a_bag;
    }
    return take(rest, name_length, header.type_name) ? KERR_SUCCESS : error_truncated;
}

struct EncodedToken {
    bag_token_type_td type = 0;
    bool named = false;
    bool null_text = false;
    std::string_view name;
    std::string_view value;
};

bool is_text(bag_token_type_td type) {
    return type == BAG_TOKEN_TEXT || type == BAG_TOKEN_TEXT2;
}

kerrno read_token(std::string_view &rest, EncodedToken &token) {
    std::string_view head;
    if (!take(rest, token_header_size, head)) {
        return error_truncated;
    }
    token.type = little_endian<std::uint16_t>(head);
    const auto name_length = little_endian<std::uint16_t>(head.substr(2));
    const auto value_length = little_endian<std::uint32_t>(head.substr(4));
    token.named = name_length != no_name;
    token.null_text = is_text(token.type) && value_length == no_text;
    if (!take(rest, token.named ? name_length : 0, token.name) ||
        !take(rest, token.null_text ? 0 : value_length, token.value)) {
        return error_truncated;
    }
    return KERR_SUCCESS;
}

// Keeps the nesting. An end token has to be that of the innermost array or struct, the bag's end has to be outside of
// all and behind everything.
kerrno nest(bag_generic_state &state, const EncodedToken &token) {
    switch (token.type) {
    case BAG_TOKEN_ARRAY_START:
    case BAG_TOKEN_STRUCT_START:
        if (state.depth == state.open.size()) {
            return error_too_deep;
        }
        state.open[state.depth++] = token.type == BAG_TOKEN_ARRAY_START ? BAG_TOKEN_ARRAY_END : BAG_TOKEN_STRUCT_END;
        break;
    case BAG_TOKEN_ARRAY_END:
    case BAG_TOKEN_STRUCT_END:
        if (state.depth == 0 || state.open[state.depth - 1] != token.type) {
            return error_malformed;
        }
        --state.depth;
        break;
    case BAG_TOKEN_END:
        if (state.depth != 0 || !state.rest.empty()) {
            return error_malformed;
        }
        state.ended = error_past_the_end;
        break;
    default:
        break;
    }
    return KERR_SUCCESS;
}

// A terminated copy, or null for bytes that are no text.
std::unique_ptr<char[]> copy_text(std::string_view bytes) {
    if (bytes.find('\0') != std::string_view::npos) {
        return nullptr;
    }
    auto text = std::make_unique<char[]>(bytes.size() + 1);
    bytes.copy(text.get(), bytes.size());
    return text;
}

template <class Integer>
bool read_integer(std::string_view bytes, Integer &value) {
    if (bytes.size() != sizeof(Integer)) {
        return false;
    }
    value = little_endian<Integer>(bytes);
    return true;
}

// The values of all types but the texts. What stands behind a type that is not known is passed over.
bool read_plain_value(const EncodedToken &token, bag_token_td &result) {
    switch (token.type) {
    case BAG_TOKEN_INT8:
        return read_integer(token.value, result.value.int8);
    case BAG_TOKEN_UINT8:
        return read_integer(token.value, result.value.uint8);
    case BAG_TOKEN_INT16:
        return read_integer(token.value, result.value.int16);
    case BAG_TOKEN_UINT16:
        return read_integer(token.value, result.value.uint16);
    case BAG_TOKEN_INT32:
        return read_integer(token.value, result.value.int32);
    case BAG_TOKEN_UINT32:
        return read_integer(token.value, result.value.uint32);
    case BAG_TOKEN_INT64:
        return read_integer(token.value, result.value.int64);
    case BAG_TOKEN_UINT64:
        return read_integer(token.value, result.value.uint64);
    case BAG_TOKEN_ENUM:
        return read_integer(token.value, result.value.enumeration);
    case BAG_TOKEN_BOOL:
        return read_integer(token.value, result.value.boolean);
    case BAG_TOKEN_IPV4: // in network byte order already
        if (token.value.size() != sizeof result.value.ipv4) {
            return false;
        }
        std::memcpy(&result.value.ipv4, token.value.data(), token.value.size());
        return true;
    case BAG_TOKEN_ARRAY_START:
    case BAG_TOKEN_ARRAY_END:
    case BAG_TOKEN_STRUCT_START:
    case BAG_TOKEN_STRUCT_END:
    case BAG_TOKEN_END:
        return token.value.empty();
    default:
        return true;
    }
}

kerrno make_token(const EncodedToken &encoded, bag_token_td &token) {
    bag_token_td result{};
    result.type = encoded.type;
    std::unique_ptr<char[]> name;
    if (encoded.named && (name = copy_text(encoded.name)) == nullptr) {
        return error_malformed;
    }
    if (!is_text(encoded.type)) {
        if (!read_plain_value(encoded, result)) {
            return error_malformed;
        }
    } else if (!encoded.null_text) {
        auto text = copy_text(encoded.value);
        if (!text) {
            return error_malformed;
        }
        (encoded.type == BAG_TOKEN_TEXT ? result.value.text : result.second_text) = text.release();
    }
    result.name = name.release();
    token = result;
    return KERR_SUCCESS;
}

kerrno next_token(bag_generic_state &state, bag_token_td &token) {
    EncodedToken encoded;
    if (const kerrno result = read_token(state.rest, encoded); result != KERR_SUCCESS) {
        return result;
    }
    if (const kerrno result = nest(state, encoded); result != KERR_SUCCESS) {
        return result;
    }
    return make_token(encoded, token);
}

void release(char *&text) {
    const std::unique_ptr<char[]> owner(text);
    text = nullptr;
}

} // namespace

kerrno bag_header_info(const void *bag, bag_header_td *header) {
    if (bag == nullptr || header == nullptr) {
        return error_invalid_argument;
    }
    *header = {};
    std::string_view rest(static_cast<const char *>(bag), max_header_size);
    Header encoded;
    if (const kerrno result = read_header(rest, encoded); result != KERR_SUCCESS) {
        return result;
    }
    const std::string_view name = encoded.type_name.substr(0, encoded.type_name.find('\0'));
    name.copy(header->type_name, BAG_TYPE_NAME_SIZE - 1);
    header->version_major = encoded.version_major;
    header->version_minor = encoded.version_minor;
    return KERR_SUCCESS;
}

kerrno bag_generic_init(const void *bag, uint32_t length, bag_generic_state_td *state) {
    if (state == nullptr) {
        return error_invalid_argument;
    }
    *state = nullptr;
    if (bag == nullptr) {
        return error_invalid_argument;
    }
    std::string_view rest(static_cast<const char *>(bag), length);
    Header header;
    if (const kerrno result = read_header(rest, header); result != KERR_SUCCESS) {
        return result;
    }
    if (header.total_length != length) {
        return header.total_length > length ? error_truncated : error_malformed;
    }
    try {
        auto decoder = std::make_unique<bag_generic_state>();
        decoder->rest = rest;
        *state = decoder.release();
        return KERR_SUCCESS;
    } catch (const std::bad_alloc &) {
        return error_no_memory;
    }
}

kerrno bag_generic_token(bag_generic_state_td state, bag_token_td *token) {
    if (token == nullptr) {
        return error_invalid_argument;
    }
    *token = {};
    if (state == nullptr) {
        return error_invalid_argument;
    }
    if (state->ended != KERR_SUCCESS) {
        return state->ended;
    }
    kerrno result = error_no_memory;
    try {
        result = next_token(*state, *token);
    } catch (const std::bad_alloc &) {
        // The code says so.
    }
    if (result != KERR_SUCCESS) {
        state->ended = result;
    }
    return result;
}

void bag_generic_free_token_allocations(bag_token_td *token) {
    if (token == nullptr) {
        return;
    }
    release(token->name);
    release(token->second_text);
    if (token->type == BAG_TOKEN_TEXT) {
        release(token->value.text);
    }
}

void bag_generic_destroy(bag_generic_state_td state) {
    const std::unique_ptr<bag_generic_state> owner(state);
}
