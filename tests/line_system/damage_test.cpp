// A line system whose file is damaged: it says so, or it is as if nothing had happened. Never does it end the process,
// hold it up, or come to another line system.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace {

using ocpsm::line_system::change;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::load;
using ocpsm::line_system::tick;

constexpr std::size_t page = 4096;

class Damage : public testing::Test {
protected:
    enum Result { as_before = 10, damaged, another_error, wrong };

    // A line system whose file holds an image and some changes, too.
    void make(int ticks) {
        const auto store = create(client, state, ocpsm::line_system::example());
        for (int i = 0; i < ticks; ++i) {
            change(*store, [](const LineSystem &before) { return tick(before, 100); });
        }
        system = load(*store->read());
        std::ifstream in(file(), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }

    std::filesystem::path file() const { return state / ocpsm::sysdb::store_file; }

    // Everything is read, and then the next moment comes.
    Result use() const {
        try {
            const auto store = ocpsm::line_system::open(client, state);
            const auto next = [](const LineSystem &before) { return tick(before, 100); };
            const bool same = load(*store->read()) == system && change(*store, next) == next(system) &&
                              load(*store->read()) == next(system);
            return same ? as_before : wrong;
        } catch (const ocpsm::Error &error) {
            const bool says_so = error.source == ocpsm::Error::Source::input &&
                                 error.message().find(" is damaged: ") != std::string::npos;
            return says_so ? damaged : another_error;
        }
    }

    // What a process of its own comes to within two seconds; the number of a signal that ends it.
    int use_with(const std::string &content) const {
        std::ofstream(file(), std::ios::binary) << content;
        const pid_t child = fork();
        if (child == 0) {
            alarm(2);
            _exit(use());
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    const ocpsm::sysdb::Client client;
    LineSystem system;
    std::string bytes;
};

class DamageAfter : public Damage, public testing::WithParamInterface<int> {
protected:
    DamageAfter() { make(GetParam()); }
};

TEST_P(DamageAfter, OfNothingIsNone) {
    EXPECT_EQ(use_with(bytes), as_before);
    EXPECT_GT(bytes.size(), 2 * page);
}

TEST_P(DamageAfter, OfAnyPageIsNoticed) {
    for (std::size_t begin = 0; begin < bytes.size(); begin += page) {
        std::string zeroed = bytes;
        const std::size_t size = std::min(page, bytes.size() - begin);
        zeroed.replace(begin, size, size, '\0');
        EXPECT_EQ(use_with(zeroed), damaged) << begin / page;
    }
}

// Also those in the header, each of which says how far the file counts.
TEST_P(DamageAfter, OfAnyBitIsNoticed) {
    const auto expect_damage = [&](std::size_t bit) {
        std::string flipped = bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        EXPECT_EQ(use_with(flipped), damaged) << "byte " << bit / 8 << " bit " << bit % 8;
    };
    for (std::size_t bit = 0; bit < 32 * std::size_t{8}; ++bit) {
        expect_damage(bit);
    }
    std::mt19937 random(6);
    for (int i = 0; i < 500; ++i) {
        expect_damage(std::uniform_int_distribution<std::size_t>(0, bytes.size() * 8 - 1)(random));
    }
}

TEST_P(DamageAfter, OfManyBitsIsNoticed) {
    std::mt19937 random(7);
    for (int i = 0; i < 100; ++i) {
        std::string noisy = bytes;
        for (std::size_t left = 2 + random() % 50; left > 0; --left) {
            noisy[random() % noisy.size()] = static_cast<char>(random());
        }
        EXPECT_EQ(use_with(noisy), noisy == bytes ? as_before : damaged) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Ticks, DamageAfter, testing::Values(0, 60));

} // namespace
