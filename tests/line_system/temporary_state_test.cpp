#include "simulator/line_system/temporary_state.hpp"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm::line_system {
namespace {

// TMPDIR names a directory of the test's own.
class TemporaryStateTest : public testing::Test {
public:
    TemporaryStateTest() { set_parent(directory.path.string()); }
    ~TemporaryStateTest() override {
        if (before) {
            set_parent(*before);
        } else {
            unsetenv("TMPDIR");
        }
    }

protected:
    static void set_parent(const std::string &parent) { ASSERT_EQ(setenv("TMPDIR", parent.c_str(), 1), 0); }

    static std::optional<std::string> current_parent() {
        const char *value = std::getenv("TMPDIR");
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }

    std::optional<std::string> before = current_parent();
    TemporaryDirectory directory;
    const sysdb::Client client;
};

TEST_F(TemporaryStateTest, HoldsTheExampleUntilItsEnd) {
    {
        const TemporaryState state(client);
        EXPECT_EQ(state.directory().parent_path(), directory.path);
        EXPECT_TRUE(load(*state.store().read()) == example());
    }
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, HoldsAnotherLineSystem) {
    const TemporaryState state(client, LineSystem{});
    EXPECT_TRUE(load(*state.store().read()) == LineSystem{});
}

TEST_F(TemporaryStateTest, IsRemovedWhenAnExceptionFlies) {
    try {
        const TemporaryState state(client);
        const auto transaction = state.store().write();
        save(*transaction, LineSystem{});
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "on its way");
    }
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, IsRemovedWhenItCannotBeMade) {
    LineSystem system;
    system.slots[0].lines[0].rx_thresholds[std::string(sysdb::max_store_size, 'x')] = 1;
    EXPECT_THROW(const TemporaryState state(client, system), Error);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, NamesAParentThatIsNotThere) {
    const std::string parent = (directory.path / "missing").string();
    set_parent(parent);
    EXPECT_EQ(error_of([&] { const TemporaryState state(client); }),
              "input|operation-failed||no temporary directory can be made in " + parent +
                  ": No such file or directory|set TMPDIR to a directory that can be written");
}

} // namespace
} // namespace ocpsm::line_system
