#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "open_store.hpp"

namespace {

using ocpsm::sysdb::ReadTransaction;
using ocpsm::sysdb::Store;
using ocpsm::sysdb::Table;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Records = std::vector<std::pair<std::string, std::string>>;

Records records(const ReadTransaction &transaction, Table table, std::string_view prefix = "") {
    Records result;
    transaction.for_each(table, prefix, [&](std::string_view key, std::string_view value) {
        result.emplace_back(key, value);
        return true;
    });
    return result;
}

class StoreTest : public OpenStore {
protected:
    void put(Table table, const Records &changes) {
        const auto transaction = store.write();
        for (const auto &[key, value] : changes) {
            transaction->put(table, key, value);
        }
        transaction->commit();
    }
};

TEST_F(StoreTest, IsEmptyAtFirst) {
    const auto transaction = store.read();
    for (const Table table :
         {Table::items, Table::native_configuration, Table::native_operational, Table::line_system}) {
        EXPECT_THAT(records(*transaction, table), IsEmpty());
    }
    EXPECT_EQ(transaction->get(Table::items, "a"), std::nullopt);
    EXPECT_EQ(transaction->lower_bound(Table::items, ""), std::nullopt);
}

TEST_F(StoreTest, KeepsRecordsPerTableInTheOrderOfTheirKeys) {
    using namespace std::string_literals;
    put(Table::items, {{"b", "2"}, {"a/x", "1"}, {"a", "0"}, {"\xff", "last"}});
    put(Table::native_configuration, {{"a", "\0\n"s}, {"e", ""}});
    const auto transaction = store.read();
    EXPECT_THAT(records(*transaction, Table::items),
                ElementsAre(Pair("a", "0"), Pair("a/x", "1"), Pair("b", "2"), Pair("\xff", "last")));
    EXPECT_THAT(records(*transaction, Table::native_configuration), ElementsAre(Pair("a", "\0\n"s), Pair("e", "")));
    EXPECT_THAT(records(*transaction, Table::native_operational), IsEmpty());
    EXPECT_EQ(transaction->get(Table::items, "a/x"), "1");
    EXPECT_EQ(transaction->get(Table::native_configuration, "e"), "");
}

TEST_F(StoreTest, VisitsWhatBeginsWithAPrefixUntilTheVisitorHasEnough) {
    put(Table::items, {{"a", "0"}, {"ab", "1"}, {"ab/c", "2"}, {"ac", "3"}});
    const auto transaction = store.read();
    EXPECT_THAT(records(*transaction, Table::items, "ab"), ElementsAre(Pair("ab", "1"), Pair("ab/c", "2")));
    EXPECT_THAT(records(*transaction, Table::items, "b"), IsEmpty());
    int visits = 0;
    transaction->for_each(Table::items, "", [&](std::string_view, std::string_view) { return ++visits < 2; });
    EXPECT_EQ(visits, 2);
    EXPECT_EQ(transaction->lower_bound(Table::items, "aa"), "ab");
    EXPECT_EQ(transaction->lower_bound(Table::items, "ac"), "ac");
    EXPECT_EQ(transaction->lower_bound(Table::items, "ad"), std::nullopt);
}

TEST_F(StoreTest, ReplacesAndErases) {
    put(Table::items, {{"a", "0"}, {"b", "1"}, {"ba", "2"}, {"c", "3"}});
    const auto transaction = store.write();
    transaction->put(Table::items, "a", "new");
    EXPECT_TRUE(transaction->erase(Table::items, "c"));
    EXPECT_FALSE(transaction->erase(Table::items, "c"));
    EXPECT_EQ(transaction->erase_all(Table::items, "b"), 2U);
    EXPECT_EQ(transaction->erase_all(Table::items, "b"), 0U);
    EXPECT_THAT(records(*transaction, Table::items), ElementsAre(Pair("a", "new")));
    transaction->commit();
    EXPECT_THAT(records(*store.read(), Table::items), ElementsAre(Pair("a", "new")));
}

TEST_F(StoreTest, LosesChangesThatAreNotCommitted) {
    put(Table::items, {{"a", "0"}});
    {
        const auto transaction = store.write();
        transaction->put(Table::items, "a", "1");
        EXPECT_EQ(transaction->get(Table::items, "a"), "1");
    }
    EXPECT_EQ(store.read()->get(Table::items, "a"), "0");
}

TEST_F(StoreTest, KeepsASnapshotWhileOthersCommit) {
    put(Table::items, {{"a", "0"}});
    const auto snapshot = store.read();
    std::thread([&] { put(Table::items, {{"a", "1"}, {"b", "1"}}); }).join();
    EXPECT_THAT(records(*snapshot, Table::items), ElementsAre(Pair("a", "0")));
    EXPECT_THAT(records(*store.read(), Table::items), ElementsAre(Pair("a", "1"), Pair("b", "1")));
}

TEST_F(StoreTest, KeepsRecordsWhenItIsOpenedAgain) {
    put(Table::line_system, {{"a", std::string(100000, 'x')}});
    store.close();
    EXPECT_FALSE(store.is_open());
    store.open(directory.path / "state", Store::Mode::existing);
    EXPECT_TRUE(store.is_open());
    EXPECT_THAT(records(*store.read(), Table::line_system), ElementsAre(Pair("a", std::string(100000, 'x'))));
}

// LMDB leaves such pages out of the file, which must not look as if it had been cut.
TEST_F(StoreTest, OpensAgainAfterATransactionThatGavePagesBack) {
    for (int round = 0; round < 5; ++round) {
        const auto transaction = store.write();
        for (int i = 0; i < 200; ++i) {
            transaction->put(Table::items, std::string("k").append(std::to_string(i)), std::string(900, 'x'));
        }
        transaction->commit();
    }
    const auto transaction = store.write();
    transaction->erase_all(Table::items, "k1");
    transaction->put(Table::items, "big", std::string(1000000, 'x'));
    transaction->erase(Table::items, "big");
    transaction->commit();
    store.close();
    store.open(directory.path / "state", Store::Mode::existing);
    EXPECT_EQ(records(*store.read(), Table::items).size(), 89U); // 200 without 1, 10 to 19 and 100 to 199
}

TEST_F(StoreTest, TakesKeysOfUpTo511Bytes) {
    const std::string longest(511, 'k');
    put(Table::items, {{longest, "value"}});
    const auto transaction = store.write();
    EXPECT_EQ(transaction->get(Table::items, longest), "value");
    EXPECT_EQ(error_of([&] { transaction->put(Table::items, longest + "k", ""); }),
              "refused|invalid-value||a path is too long for the store: " + longest + "k|");
    EXPECT_EQ(transaction->get(Table::items, longest + "k"), std::nullopt);
    EXPECT_FALSE(transaction->erase(Table::items, longest + "k"));
    EXPECT_EQ(transaction->lower_bound(Table::items, longest + "k"), std::nullopt);
    EXPECT_EQ(transaction->get(Table::items, ""), std::nullopt);
    EXPECT_FALSE(transaction->erase(Table::items, ""));
}

template <class Operation>
std::string misuse(Operation operation) {
    try {
        operation();
    } catch (const std::logic_error &error) {
        return error.what();
    }
    return "nothing";
}

TEST_F(StoreTest, NamesItsMisuse) {
    EXPECT_EQ(misuse([&] { store.open(directory.path / "other", Store::Mode::create); }),
              "a store is opened that is open");
    {
        const auto snapshot = store.read();
        EXPECT_EQ(misuse([&] { store.close(); }), "a store is closed under a transaction");
        const auto transaction = store.write();
        EXPECT_EQ(misuse([&] { static_cast<void>(store.write()); }), "a thread begins a second write transaction");
        transaction->commit();
        EXPECT_EQ(misuse([&] { transaction->commit(); }), "a transaction is used that has been committed");
        EXPECT_EQ(misuse([&] { static_cast<void>(transaction->get(Table::items, "a")); }),
                  "a transaction is used that has been committed");
        EXPECT_NE(store.write(), nullptr); // while the committed one is still there
    }
    store.close();
    store.close();
    EXPECT_EQ(misuse([&] { static_cast<void>(store.read()); }), "a store is used that is not open");
    EXPECT_EQ(misuse([&] { static_cast<void>(store.write()); }), "a store is used that is not open");
}

} // namespace
