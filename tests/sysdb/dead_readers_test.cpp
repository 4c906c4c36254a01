#include <memory>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "open_store.hpp"

namespace {

using ocpsm::sysdb::ReadTransaction;
using ocpsm::sysdb::Store;
using ocpsm::sysdb::Table;

// The slots for readers that an environment has.
constexpr int reader_slots = 126;

class DeadReaders : public testing::Test {
public:
    ~DeadReaders() override { store.close(); }

protected:
    void create() {
        store.open(state, Store::Mode::create);
        const auto transaction = store.write();
        transaction->put(Table::items, "key", "value");
        transaction->commit();
        store.close();
    }

    // Another process that begins, after the go-ahead, as many reads as there are slots and dies in them.
    static void die_reading(const std::filesystem::path &state, int go_ahead) {
        char byte = 0;
        if (read(go_ahead, &byte, 1) != 1) {
            _exit(2);
        }
        Store &its_store = *sysdb_client_store();
        its_store.open(state, Store::Mode::existing);
        std::vector<std::unique_ptr<ReadTransaction>> transactions;
        transactions.reserve(reader_slots);
        for (int i = 0; i < reader_slots; ++i) {
            transactions.push_back(its_store.read());
        }
        _exit(0);
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    Store &store = *sysdb_client_store();
};

TEST_F(DeadReaders, GiveTheirSlotsBackWhenThereAreNoOthers) {
    create();
    int go_ahead[2]{};
    ASSERT_EQ(pipe(go_ahead), 0);
    const pid_t child = fork(); // before the store is open: an environment does not survive a fork
    ASSERT_NE(child, -1);
    if (child == 0) {
        die_reading(state, go_ahead[0]);
    }
    store.open(state, Store::Mode::existing);
    ASSERT_EQ(write(go_ahead[1], "x", 1), 1);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(store.read()->get(Table::items, "key"), "value");
    close(go_ahead[0]);
    close(go_ahead[1]);
}

TEST_F(DeadReaders, AreToldFromLivingOnes) {
    create();
    store.open(state, Store::Mode::existing);
    std::vector<std::unique_ptr<ReadTransaction>> transactions;
    transactions.reserve(reader_slots);
    for (int i = 0; i < reader_slots; ++i) {
        transactions.push_back(store.read());
    }
    EXPECT_EQ(error_of([&] { static_cast<void>(store.read()); }),
              "refused|resource-denied||the line system in " + state.string() +
                  " has no room: MDB_READERS_FULL: Environment maxreaders limit reached|");
    transactions.pop_back();
    EXPECT_EQ(store.read()->get(Table::items, "key"), "value");
}

} // namespace
