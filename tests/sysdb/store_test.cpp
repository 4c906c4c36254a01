#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "framework/measure.hpp"
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
        const auto transaction = store->write();
        for (const auto &[key, value] : changes) {
            transaction->put(table, key, value);
        }
        transaction->commit();
    }
};

TEST_F(StoreTest, IsEmptyAtFirst) {
    const auto transaction = store->read();
    for (const Table table : {Table::items, Table::line_system, Table::journal}) {
        EXPECT_THAT(records(*transaction, table), IsEmpty());
    }
    EXPECT_EQ(transaction->get(Table::items, "a"), std::nullopt);
    EXPECT_EQ(transaction->lower_bound(Table::items, ""), std::nullopt);
}

TEST_F(StoreTest, KeepsRecordsPerTableInTheOrderOfTheirKeys) {
    using namespace std::string_literals;
    put(Table::items, {{"b", "2"}, {"a/x", "1"}, {"a", "0"}, {"\xff", "last"}});
    put(Table::line_system, {{"a", "\0\n"s}, {"e", ""}});
    const auto transaction = store->read();
    EXPECT_THAT(records(*transaction, Table::items),
                ElementsAre(Pair("a", "0"), Pair("a/x", "1"), Pair("b", "2"), Pair("\xff", "last")));
    EXPECT_THAT(records(*transaction, Table::line_system), ElementsAre(Pair("a", "\0\n"s), Pair("e", "")));
    EXPECT_EQ(transaction->get(Table::items, "a/x"), "1");
    EXPECT_EQ(transaction->get(Table::line_system, "e"), "");
}

TEST_F(StoreTest, VisitsWhatBeginsWithAPrefixUntilTheVisitorHasEnough) {
    put(Table::items, {{"a", "0"}, {"ab", "1"}, {"ab/c", "2"}, {"ac", "3"}});
    const auto transaction = store->read();
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
    const auto transaction = store->write();
    transaction->put(Table::items, "a", "new");
    EXPECT_TRUE(transaction->erase(Table::items, "c"));
    EXPECT_FALSE(transaction->erase(Table::items, "c"));
    EXPECT_EQ(transaction->erase_all(Table::items, "b"), 2U);
    EXPECT_EQ(transaction->erase_all(Table::items, "b"), 0U);
    EXPECT_THAT(records(*transaction, Table::items), ElementsAre(Pair("a", "new")));
    transaction->commit();
    EXPECT_THAT(records(*store->read(), Table::items), ElementsAre(Pair("a", "new")));
}

// Records are kept in blocks, which are begun, divided and given up: at each moment as a plain map would have it.
TEST_F(StoreTest, KeepsManyRecordsInWhicheverOrderTheyComeAndGo) {
    std::map<std::string, std::string> expected;
    unsigned random = 20240117;
    const auto next = [&random](unsigned below) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % below;
    };
    for (int round = 0; round < 60; ++round) {
        const auto snapshot = store->read();
        const Records before(expected.begin(), expected.end());
        const auto transaction = store->write();
        for (unsigned left = next(200); left > 0; --left) {
            const std::string key = std::to_string(next(700));
            if (next(round / 20 % 2 == 0 ? 4 : 2) == 0) {
                EXPECT_EQ(transaction->erase(Table::journal, key), expected.erase(key) == 1);
            } else {
                transaction->put(Table::journal, key, std::to_string(left));
                expected[key] = std::to_string(left);
            }
        }
        const std::string from = std::to_string(next(700));
        const auto found = expected.lower_bound(from);
        EXPECT_EQ(transaction->lower_bound(Table::journal, from),
                  found == expected.end() ? std::nullopt : std::optional<std::string_view>(found->first));
        transaction->commit();
        ASSERT_EQ(records(*store->read(), Table::journal), Records(expected.begin(), expected.end()));
        ASSERT_EQ(records(*snapshot, Table::journal), before);
    }
    open_again();
    EXPECT_EQ(records(*store->read(), Table::journal), Records(expected.begin(), expected.end()));
    const auto transaction = store->write();
    EXPECT_EQ(transaction->erase_all(Table::journal, ""), expected.size());
    EXPECT_THAT(records(*transaction, Table::journal), IsEmpty());
}

// A commit is not to take the longer the more there is beside what it changes.
TEST_F(StoreTest, CommitsAtTheSamePriceBesideMuch) {
    const auto key = [](int number) { return std::to_string(1'000'000 + number); };
    const auto change_a_hundred = [&] {
        for (int round = 0; round < 100; ++round) {
            const auto transaction = store->write();
            transaction->put(Table::journal, key(20'000 + round), "value");
            transaction->erase(Table::journal, key(round));
        }
    };
    const double little = measure::seconds(change_a_hundred);
    const auto transaction = store->write();
    for (int number = 0; number < 10'000; ++number) {
        transaction->put(Table::journal, key(number),
                         "as long as an entry of a journal may be, more or less, or longer");
    }
    transaction->commit();
    double much = 1e9;
    for (int round = 0; round < 3; ++round) {
        much = std::min(much, measure::seconds(change_a_hundred));
    }
    EXPECT_LT(much, 10 * little);
}

TEST_F(StoreTest, LosesChangesThatAreNotCommitted) {
    put(Table::items, {{"a", "0"}});
    {
        const auto transaction = store->write();
        transaction->put(Table::items, "a", "1");
        EXPECT_EQ(transaction->get(Table::items, "a"), "1");
    }
    EXPECT_EQ(store->read()->get(Table::items, "a"), "0");
}

TEST_F(StoreTest, KeepsASnapshotWhileOthersCommit) {
    put(Table::items, {{"a", "0"}});
    const auto snapshot = store->read();
    std::thread([&] { put(Table::items, {{"a", "1"}, {"b", "1"}}); }).join();
    EXPECT_THAT(records(*snapshot, Table::items), ElementsAre(Pair("a", "0")));
    EXPECT_THAT(records(*store->read(), Table::items), ElementsAre(Pair("a", "1"), Pair("b", "1")));
}

TEST_F(StoreTest, KeepsRecordsWhenItIsOpenedAgain) {
    put(Table::line_system, {{"a", std::string(100000, 'x')}});
    open_again();
    EXPECT_THAT(records(*store->read(), Table::line_system), ElementsAre(Pair("a", std::string(100000, 'x'))));
}

TEST_F(StoreTest, TakesKeysOfUpTo511Bytes) {
    const std::string longest(511, 'k');
    put(Table::items, {{longest, "value"}});
    const auto transaction = store->write();
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
    const auto snapshot = store->read();
    const auto transaction = store->write();
    EXPECT_EQ(misuse([&] { static_cast<void>(store->write()); }), "a thread begins a second write transaction");
    // It would wait for itself behind the other store, too.
    const auto other = open_store(state / ".", Store::Mode::existing);
    EXPECT_EQ(misuse([&] { static_cast<void>(other->write()); }), "a thread begins a second write transaction");
    transaction->commit();
    for (const auto &use : std::vector<std::function<void()>>{
             [&] { transaction->commit(); },
             [&] { static_cast<void>(transaction->get(Table::items, "a")); },
             [&] { transaction->put(Table::items, "a", "b"); },
             [&] { transaction->erase(Table::items, "a"); },
         }) {
        EXPECT_EQ(misuse(use), "a transaction is used that has been committed");
    }
    EXPECT_NE(store->write(), nullptr); // while the committed one is still there
}

TEST_F(StoreTest, MayEndBeforeItsTransactions) {
    put(Table::items, {{"a", "0"}});
    const auto snapshot = store->read();
    const auto transaction = store->write();
    transaction->put(Table::items, "a", "1");
    store.reset();
    EXPECT_EQ(snapshot->get(Table::items, "a"), "0");
    transaction->commit();
    open_again();
    EXPECT_EQ(store->read()->get(Table::items, "a"), "1");
}

// Whichever comes first, the second one sees what the first one has made of it.
TEST_F(StoreTest, TakesOneWriterAtATimeInADirectory) {
    constexpr int rounds = 50;
    const auto count_up = [&](Store &counter) {
        for (int round = 0; round < rounds; ++round) {
            const auto transaction = counter.write();
            const std::string before(transaction->get(Table::items, "count").value_or("0"));
            transaction->put(Table::items, "count", std::to_string(std::stoi(before) + 1));
            transaction->commit();
        }
    };
    const auto other = open_store(state, Store::Mode::existing);
    std::thread same_store([&] { count_up(*store); });
    std::thread other_store([&] { count_up(*other); });
    count_up(*store);
    same_store.join();
    other_store.join();
    EXPECT_EQ(store->read()->get(Table::items, "count"), std::to_string(3 * rounds));
    EXPECT_EQ(other->read()->get(Table::items, "count"), std::to_string(3 * rounds));
}

// What has been changed and changed back takes no room; what has been changed takes some for a while.
TEST_F(StoreTest, StaysAsLongAsItsRecords) {
    const auto length = [&] { return std::filesystem::file_size(state / ocpsm::sysdb::store_file); };
    put(Table::items, {{"a", "0"}});
    const auto before = length();
    put(Table::items, {{"a", "0"}});
    EXPECT_EQ(length(), before);
    put(Table::items, {{"a", "1"}});
    EXPECT_GT(length(), before);
    const std::string kilobyte(1024, 'x');
    const auto other = open_store(state, Store::Mode::existing);
    for (int round = 0; round < 300; ++round) {
        put(Table::items, {{"b", kilobyte + std::to_string(round)}});
        EXPECT_LT(length(), 70U << 10);
        EXPECT_EQ(other->read()->get(Table::items, "b"), kilobyte + std::to_string(round));
    }
    open_again();
    EXPECT_EQ(records(*store->read(), Table::items), (Records{{"a", "1"}, {"b", kilobyte + "299"}}));
}

} // namespace
