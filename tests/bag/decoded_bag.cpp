#include "decoded_bag.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include <gtest/gtest.h>

#include "framework/host/service_codes.hpp"
#include "simulator/bag/format.hpp"

namespace {

std::size_t largest = 0;

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): what stands in for new cannot use it.
void *allocate(std::size_t size) {
    largest = std::max(largest, size);
    void *memory = std::malloc(size == 0 ? 1 : size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

std::optional<std::string> copy(const char *text) {
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

// Of the integers, enumerations and booleans.
std::int64_t number_of(const bag_token_td &raw) {
    switch (raw.type) {
    case BAG_TOKEN_INT8:
        return raw.value.int8; // NOLINT(bugprone-signed-char-misuse): a number, no character
    case BAG_TOKEN_UINT8:
        return raw.value.uint8;
    case BAG_TOKEN_INT16:
        return raw.value.int16;
    case BAG_TOKEN_UINT16:
        return raw.value.uint16;
    case BAG_TOKEN_INT32:
        return raw.value.int32;
    case BAG_TOKEN_UINT32:
        return raw.value.uint32;
    case BAG_TOKEN_INT64:
        return raw.value.int64;
    case BAG_TOKEN_UINT64:
        return static_cast<std::int64_t>(raw.value.uint64);
    case BAG_TOKEN_ENUM:
        return raw.value.enumeration;
    case BAG_TOKEN_BOOL:
        return raw.value.boolean;
    default:
        return 0;
    }
}

std::optional<std::string> text_of(const bag_token_td &raw) {
    if (raw.type == BAG_TOKEN_IPV4) {
        return std::string(reinterpret_cast<const char *>(&raw.value.ipv4), 4);
    }
    return raw.type == BAG_TOKEN_TEXT    ? copy(raw.value.text)
           : raw.type == BAG_TOKEN_TEXT2 ? copy(raw.second_text)
                                         : std::nullopt;
}

// No failure gives anything to release, and every failure is final.
void expect_final(bag_generic_state_td state, kerrno expected) {
    bag_token_td token{};
    EXPECT_EQ(bag_generic_token(state, &token), expected);
    EXPECT_EQ(token.name, nullptr);
    EXPECT_EQ(token.second_text, nullptr);
    EXPECT_EQ(token.value.text, nullptr);
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
void *operator new(std::size_t size) {
    return allocate(size);
}
void *operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete[](void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void *memory, std::size_t) noexcept {
    std::free(memory);
}

// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

void reset_largest_allocation() {
    largest = 0;
}

std::size_t largest_allocation() {
    return largest;
}

std::ostream &operator<<(std::ostream &out, const Token &token) {
    out << "type " << token.type << " name " << token.name.value_or("(none)") << " number " << token.number << " text ";
    const std::string text = token.text.value_or("(none)");
    return text.size() < 100 ? out << text : out << "of " << text.size() << " characters";
}

Decoded decode(std::string_view bytes) {
    const auto exact = std::make_unique<char[]>(bytes.size());
    bytes.copy(exact.get(), bytes.size());
    Decoded decoded;
    bag_generic_state_td state = nullptr;
    reset_largest_allocation();
    decoded.init = bag_generic_init(exact.get(), static_cast<std::uint32_t>(bytes.size()), &state);
    EXPECT_EQ(state == nullptr, decoded.init != KERR_SUCCESS);
    if (state == nullptr) {
        return decoded;
    }
    std::size_t largest_in_decoder = largest_allocation();
    bool ended = false;
    while (!ended && decoded.tokens.size() <= bytes.size()) {
        bag_token_td token{};
        reset_largest_allocation();
        decoded.last = bag_generic_token(state, &token);
        largest_in_decoder = std::max(largest_in_decoder, largest_allocation());
        if (decoded.last != KERR_SUCCESS) {
            expect_final(state, decoded.last);
            break;
        }
        decoded.tokens.push_back({token.type, copy(token.name), number_of(token), text_of(token)});
        ended = token.type == BAG_TOKEN_END;
        bag_generic_free_token_allocations(&token);
    }
    if (ended) {
        expect_final(state, ocpsm::bag::error_past_the_end);
    }
    EXPECT_LE(decoded.tokens.size(), bytes.size() / ocpsm::bag::token_header_size);
    EXPECT_LE(largest_in_decoder, std::max<std::size_t>(bytes.size(), 512));
    bag_generic_destroy(state);
    return decoded;
}

kerrno header_of(std::string_view bytes, bag_header_td &header) {
    const std::size_t size = std::max(bytes.size(), ocpsm::bag::max_header_size);
    const auto padded = std::make_unique<char[]>(size);
    bytes.copy(padded.get(), bytes.size());
    return bag_header_info(padded.get(), &header);
}

std::string with_total_length(std::string bytes, std::size_t length) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(4 + i) = static_cast<char>(length >> 8 * i & 0xffu);
    }
    return bytes;
}
