#include "simulator/line_system/temporary_state.hpp"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace {

using ocpsm::line_system::example;
using ocpsm::line_system::LineSystem;
using ocpsm::line_system::load;
using ocpsm::line_system::TemporaryState;
using ocpsm::sysdb::Store;

// TMPDIR names a directory of the test's own.
class TemporaryStateTest : public testing::Test {
public:
    TemporaryStateTest() { set_parent(directory.path.string()); }
    ~TemporaryStateTest() override {
        store.close();
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
    Store &store = *sysdb_client_store();
};

TEST_F(TemporaryStateTest, HoldsTheExampleUntilItsEnd) {
    {
        const TemporaryState state(store);
        EXPECT_EQ(state.directory().parent_path(), directory.path);
        EXPECT_TRUE(load(*store.read()) == example());
    }
    EXPECT_FALSE(store.is_open());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, HoldsAnotherLineSystem) {
    const TemporaryState state(store, LineSystem{});
    EXPECT_TRUE(load(*store.read()) == LineSystem{});
}

TEST_F(TemporaryStateTest, IsRemovedWhenAnExceptionFlies) {
    try {
        const TemporaryState state(store);
        const auto transaction = store.write();
        save(*transaction, LineSystem{});
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "on its way");
    }
    EXPECT_FALSE(store.is_open());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, IsRemovedWhenItCannotBeMade) {
    const TemporaryState first(store);
    EXPECT_THROW(TemporaryState second(store), std::logic_error); // the store is open
    EXPECT_TRUE(load(*store.read()) == example());
    std::filesystem::remove_all(first.directory());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path));
}

TEST_F(TemporaryStateTest, NamesAParentThatIsNotThere) {
    const std::string parent = (directory.path / "missing").string();
    set_parent(parent);
    EXPECT_EQ(error_of([&] { const TemporaryState state(store); }),
              "input|operation-failed||no temporary directory can be made in " + parent +
                  ": No such file or directory|set TMPDIR to a directory that can be written");
}

} // namespace
