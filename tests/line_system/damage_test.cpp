// A line system whose file is damaged: it says so, or it is as if nothing had happened. Never does it end the process,
// hold it up, or come to another line system.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm::line_system {
namespace {

constexpr std::size_t page = 4096;

class Damage : public testing::Test {
protected:
    enum Result { as_before = 10, damaged, another_error, wrong };

    // A line system whose file holds an image and some changes, too.
    void make(int ticks) {
        const auto store = create(client, state, example());
        for (int i = 0; i < ticks; ++i) {
            change(*store, [](const LineSystem &before, Events &events) { return tick(before, 100, &events); });
        }
        system = load(*store->read());
        std::ifstream in(file(), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }

    std::filesystem::path file() const { return state / sysdb::store_file; }

    // Everything is read, and then the next moment comes.
    Result use() const {
        try {
            const auto store = open(client, state);
            const auto next = [](const LineSystem &before, Events &events) { return tick(before, 100, &events); };
            const bool same = load(*store->read()) == system && change(*store, next) == tick(system, 100) &&
                              load(*store->read()) == tick(system, 100);
            return same ? as_before : wrong;
        } catch (const Error &error) {
            const bool says_so =
                error.source == Error::Source::input && error.message().find(" is damaged: ") != std::string::npos;
            return says_so ? damaged : another_error;
        }
    }

    // What a process of its own comes to with each of these contents, within two seconds each. The list ends where the
    // process does.
    std::vector<Result> use_with(const std::vector<std::string> &contents) const {
        int results[2]{};
        EXPECT_EQ(pipe(results), 0);
        const pid_t child = fork();
        if (child == 0) {
            for (const std::string &content : contents) {
                std::ofstream(file(), std::ios::binary) << content;
                alarm(2);
                const auto result = static_cast<char>(use());
                static_cast<void>(write(results[1], &result, 1) == 1);
            }
            _exit(0);
        }
        close(results[1]);
        std::vector<Result> seen;
        for (char result = 0; read(results[0], &result, 1) == 1;) {
            seen.push_back(static_cast<Result>(result));
        }
        close(results[0]);
        EXPECT_EQ(waitpid(child, nullptr, 0), child);
        return seen;
    }

    void expect_damage(const std::vector<std::string> &contents) const {
        EXPECT_EQ(use_with(contents), std::vector<Result>(contents.size(), damaged));
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    const sysdb::Client client;
    LineSystem system;
    std::string bytes;
};

class DamageAfter : public Damage, public testing::WithParamInterface<int> {
protected:
    DamageAfter() { make(GetParam()); }
};

TEST_P(DamageAfter, OfNothingIsNone) {
    EXPECT_EQ(use_with({bytes, bytes}), (std::vector<Result>{as_before, as_before}));
    EXPECT_GT(bytes.size(), 2 * page);
}

TEST_P(DamageAfter, OfAnyPageIsNoticed) {
    std::vector<std::string> contents;
    for (std::size_t begin = 0; begin < bytes.size(); begin += page) {
        const std::size_t size = std::min(page, bytes.size() - begin);
        contents.push_back(bytes);
        contents.back().replace(begin, size, size, '\0');
    }
    expect_damage(contents);
}

// Those in the header too, which says how far the file counts.
TEST_P(DamageAfter, OfAnyBitIsNoticed) {
    std::vector<std::string> contents;
    const auto flip = [&](std::size_t bit) {
        contents.push_back(bytes);
        char &byte = contents.back().at(bit / 8);
        byte = static_cast<char>(byte ^ (1 << bit % 8));
    };
    for (std::size_t bit = 0; bit < 32 * std::size_t{8}; ++bit) {
        flip(bit);
    }
    std::mt19937 random(6);
    for (int i = 0; i < 1000; ++i) {
        flip(std::uniform_int_distribution<std::size_t>(0, bytes.size() * 8 - 1)(random));
    }
    expect_damage(contents);
}

TEST_P(DamageAfter, OfManyBitsIsNoticed) {
    std::mt19937 random(7);
    std::vector<std::string> contents(200, bytes);
    for (std::string &noisy : contents) {
        for (std::size_t left = 2 + random() % 50; left > 0; --left) {
            char &byte = noisy.at(random() % noisy.size());
            byte = static_cast<char>(byte + 1 + static_cast<int>(random() % 255));
        }
    }
    std::erase(contents, bytes);
    expect_damage(contents);
}

INSTANTIATE_TEST_SUITE_P(Ticks, DamageAfter, testing::Values(0, 60));

} // namespace
} // namespace ocpsm::line_system
