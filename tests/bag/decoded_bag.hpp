// A bag decoded to its end through the platform's operations, every rule of theirs checked on the way.
#ifndef TESTS_BAG_DECODED_BAG_HPP
#define TESTS_BAG_DECODED_BAG_HPP

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "bag_generic.h"

struct Token {
    bag_token_type_td type = 0;
    std::optional<std::string> name;
    std::int64_t number = 0;         // of the integers, enumerations, booleans
    std::optional<std::string> text; // of the two texts, and of addresses their bytes

    bool operator==(const Token &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Token &token);

struct Decoded {
    kerrno init = KERR_SUCCESS;
    std::vector<Token> tokens;
    kerrno last = KERR_SUCCESS; // of the token operation that ended the run
};

// Decodes from memory of exactly the size of `bytes`, up to the end token or the first failure.
Decoded decode(std::string_view bytes);

// Reads the header from memory padded to the size that a reader of headers may rely on.
kerrno header_of(std::string_view bytes, bag_header_td &header);

// The bytes with another total length in the header.
std::string with_total_length(std::string bytes, std::size_t length);

// The size of the largest allocation with new since the last reset.
void reset_largest_allocation();
std::size_t largest_allocation();

#endif
