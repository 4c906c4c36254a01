#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "decoded_bag.hpp"
#include "framework/host/service_codes.hpp"
#include "simulator/bag/encoder.hpp"

namespace {

using ocpsm::bag::Encoder;

class Random {
public:
    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(engine_); }

    std::string bytes(int size, int smallest) {
        std::string result;
        for (int i = 0; i < size; ++i) {
            result.push_back(static_cast<char>(smallest + below(256 - smallest)));
        }
        return result;
    }

private:
    std::mt19937 engine_{20181121};
};

// Encodes random tokens and keeps what should come back.
class RandomBag {
public:
    explicit RandomBag(Random &random) : random_(random) { fill(4); }

    std::string finish() {
        expected.push_back({BAG_TOKEN_END, {}, 0, {}});
        return encoder_.finish();
    }

    std::vector<Token> expected;

private:
    void fill(int depth) {
        for (int count = random_.below(6); count > 0; --count) {
            const int choice = random_.below(depth > 0 ? 6 : 4);
            if (choice < 4) {
                value(choice);
            } else {
                nested(choice == 4, depth - 1);
            }
        }
    }

    std::optional<std::string> name() {
        return random_.below(4) == 0 ? std::nullopt : std::optional(random_.bytes(random_.below(20), 1));
    }

    void value(int choice) {
        const auto its_name = name();
        switch (choice) {
        case 0: {
            const auto number = static_cast<std::int32_t>(random_.below(2000) - 1000);
            encoder_.int32(its_name, number);
            expected.push_back({BAG_TOKEN_INT32, its_name, number, {}});
            break;
        }
        case 1: {
            const auto number = static_cast<std::int8_t>(random_.below(256) - 128);
            encoder_.int8(its_name, number);
            expected.push_back({BAG_TOKEN_INT8, its_name, number, {}});
            break;
        }
        case 2: {
            const std::string text = random_.bytes(random_.below(300), 1);
            encoder_.text(its_name, text);
            expected.push_back({BAG_TOKEN_TEXT, its_name, 0, text});
            break;
        }
        default: {
            const int type = 19 + random_.below(1000);
            encoder_.opaque(static_cast<bag_token_type_td>(type), its_name, random_.bytes(random_.below(30), 0));
            expected.push_back({static_cast<bag_token_type_td>(type), its_name, 0, {}});
            break;
        }
        }
    }

    void nested(bool array, int depth) {
        const auto its_name = name();
        if (array) {
            encoder_.begin_array(its_name);
            expected.push_back({BAG_TOKEN_ARRAY_START, its_name, 0, {}});
            fill(depth);
            encoder_.end_array();
            expected.push_back({BAG_TOKEN_ARRAY_END, {}, 0, {}});
            return;
        }
        encoder_.begin_struct(its_name);
        expected.push_back({BAG_TOKEN_STRUCT_START, its_name, 0, {}});
        fill(depth);
        encoder_.end_struct();
        expected.push_back({BAG_TOKEN_STRUCT_END, {}, 0, {}});
    }

    Random &random_;
    Encoder encoder_{"random", 1, 0};
};

TEST(RandomBag, ComesBackAsItWas) {
    Random random;
    std::size_t tokens = 0;
    for (int i = 0; i < 2000; ++i) {
        RandomBag bag(random);
        const Decoded decoded = decode(bag.finish());
        ASSERT_EQ(decoded.init, KERR_SUCCESS);
        ASSERT_EQ(decoded.last, KERR_SUCCESS);
        ASSERT_EQ(decoded.tokens, bag.expected);
        tokens += decoded.tokens.size();
    }
    EXPECT_GT(tokens, 10000U);
}

TEST(RandomBytes, AreNoBag) {
    Random random;
    for (int i = 0; i < 20000; ++i) {
        const kerrno result = decode(random.bytes(random.below(400), 0)).init;
        ASSERT_TRUE(result == ocpsm::bag::error_not_a_bag || result == ocpsm::bag::error_truncated);
    }
}

TEST(RandomBytes, BehindAHeaderEndWithACodeOrTheEnd) {
    using namespace std::string_literals;
    Random random;
    std::size_t tokens = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string bytes = "BAG1\0\0\0\0\x01\0\0\0\0\0\0\0\0"s;
        // Half of the tokens have a likely head, so that the run gets beyond the first one.
        for (int count = random.below(8); count > 0; --count) {
            const auto length = static_cast<char>(random.below(9));
            bytes += std::string{static_cast<char>(random.below(20)), 0, '\1', 0, length, 0, 0, 0, 'n'};
            bytes += random.bytes(random.below(2) == 0 ? length : random.below(20), 0);
        }
        const Decoded decoded = decode(with_total_length(bytes, bytes.size()));
        ASSERT_EQ(decoded.init, KERR_SUCCESS);
        ASSERT_TRUE(decoded.last != KERR_SUCCESS || decoded.tokens.back().type == BAG_TOKEN_END);
        tokens += decoded.tokens.size();
    }
    EXPECT_GT(tokens, 5000U);
}

} // namespace
