#include "simulator/line_system/storage.hpp"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "random_systems.hpp"
#include "shown_item.hpp"
#include "simulator/line_system/database_items.hpp"
#include "simulator/line_system/operations.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm::line_system {
namespace {

using sysdb::Store;
using sysdb::Table;

constexpr char no_line_system[] = "input|data-missing||the directory holds no line system|create one there first";

class LineSystemStorage : public testing::Test {
protected:
    void make(const LineSystem &system) { store = create(client, state, system); }

    void change(std::string_view key, std::string_view value) {
        const auto transaction = store->write();
        transaction->put(Table::line_system, key, value);
        transaction->commit();
    }

    LineSystem opened_again() {
        store = open(client, state);
        return load(*store->read());
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    const sysdb::Client client;
    std::unique_ptr<Store> store;
};

TEST_F(LineSystemStorage, KeepsTheExample) {
    make(example());
    EXPECT_TRUE(opened_again() == example());
}

TEST_F(LineSystemStorage, KeepsWhatIsAbsentAndWhatIsZeroApart) {
    LineSystem system;
    system.slots[0].settings = {.revertive = false, .wait_to_restore = 0, .relative_offset = 0, .lockout_from = ""};
    system.slots[0].lines[0].rx_thresholds = {{"low", std::nullopt}, {"", 0}};
    system.slots[0].lines[1] = {.rx_low_threshold_delta = 0, .tx_attenuation = 0};
    system.slots[0].module.emplace().histories[1].received.last = Statistics{0, 0, 0};
    system.slots[1].settings.relative_threshold = 0;
    system.slots[1].module.emplace().protection.restorable_since = 0;
    make(system);
    EXPECT_TRUE(opened_again() == system);
    EXPECT_FALSE(opened_again() == LineSystem{});
}

// Every field, each with another value.
TEST_F(LineSystemStorage, KeepsRandomSystems) {
    make(LineSystem{});
    RandomSystems random(20240117);
    for (int round = 0; round < 200; ++round) {
        const LineSystem system = random.next();
        auto transaction = store->write();
        save(*transaction, system);
        transaction->commit();
        ASSERT_TRUE(load(*store->read()) == system) << "round " << round;
    }
}

TEST_F(LineSystemStorage, KeepsAnEmptySystem) {
    make(LineSystem{});
    EXPECT_TRUE(opened_again() == LineSystem{});
}

TEST_F(LineSystemStorage, OffersTheItemsToTheDatabaseClient) {
    make(example());
    sysdb_handle_td handle = nullptr;
    ASSERT_EQ(_sysdb_bind(&handle, "/oper/ots/if/", 0), KERR_SUCCESS);
    sysdb_item_datatype_td type = SYSDB_ITEM_BAG;
    void *data = nullptr;
    std::uint32_t length = 0;
    EXPECT_EQ(sysdb_item_get(handle, "Ots0_3_0_2/optics_info", &type, &data, &length, 0), KERR_SUCCESS);
    EXPECT_EQ(shown_data(type, {static_cast<const char *>(data), length}),
              "optics_info 1.0 optics_edm_info{ RxLowThreshold=-300 }");
    std::free(data); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    EXPECT_EQ(sysdb_item_get(handle, "Ots0_2_0_2/optics_info", &type, &data, &length, 0), 0x8081c800U);
    EXPECT_EQ(_sysdb_unbind(handle), KERR_SUCCESS);
}

TEST_F(LineSystemStorage, ReplacesTheSystemAndItsItems) {
    make(example());
    const LineSystem system = pull(example(), 1);
    auto transaction = store->write();
    save(*transaction, system);
    transaction->commit();
    const auto snapshot = store->read();
    EXPECT_TRUE(load(*snapshot) == system);
    std::vector<std::string> keys;
    snapshot->for_each(Table::items, "", [&](std::string_view key, std::string_view) {
        keys.emplace_back(key);
        return true;
    });
    std::vector<std::string> paths;
    for (const sysdb::Item &item : database_items(system)) {
        paths.push_back(item.path);
    }
    EXPECT_THAT(keys, testing::UnorderedElementsAreArray(paths));
}

TEST_F(LineSystemStorage, IsLeftAloneByAChangeThatIsNotCommitted) {
    make(example());
    save(*store->write(), LineSystem{});
    EXPECT_TRUE(load(*store->read()) == example());
}

TEST_F(LineSystemStorage, RefusesADirectoryWithoutALineSystem) {
    client.open(state, Store::Mode::create)->write()->commit();
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }), no_line_system);
}

TEST_F(LineSystemStorage, RefusesAMissingDirectory) {
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }),
              "input|data-missing||the directory " + state.string() + " does not exist|");
}

TEST_F(LineSystemStorage, RefusesAnOlderAndANewerFormat) {
    make(example());
    for (const char *marker : {"optical line system 1", "optical line system 3", "optical line system 22"}) {
        change("format", marker);
        EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }),
                  "input|operation-failed||the line system was made by another version of this program|use that "
                  "version, or create a new line system")
            << marker;
    }
    change("format", "something else");
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }), no_line_system);
}

TEST_F(LineSystemStorage, RefusesRecordsThatItCannotUnderstand) {
    make(example());
    const LineSystem system = example();
    const std::vector<std::pair<std::string, std::vector<std::string>>> damages = {
        {"clock", {"", "x", "1x", "1 ", " 1", "1 2", "-1", "+1", "18446744073709551616"}},
        {"slot/1/provisioned", {"", "2", "-1", "yes", "1 1"}},
        {"slot/1/settings/revertive", {"", "2", "true"}},
        {"slot/1/settings/wait-to-restore", {"-1", "4294967296", "1.0"}},
        {"slot/1/settings/relative-threshold", {"", "2147483648", "--1"}},
        {"slot/1/line/1/rx-threshold/0", {"", "low", "-", "-low", "1low", "1", "x low"}},
        {"slot/1/cabling/fibre/1", {"1", "1 2", "1  1", "1 1 ", "1 1 1"}},
        {"slot/1/module/on-secondary", {"", "2"}},
        {"slot/1/module/attenuators/0", {"", "1", "1 2 3", "1,2"}},
        {"slot/3/module/port/0/transmitted/running", {"", "1 2 3", "1 2 3 4 5", "-1 2 3 4"}},
        {"slot/3/module/port/0/transmitted/last", {"", "1", "1 2", "1 2 3 4", "1  2 3", "1 2 3 ", "1 2 x"}},
    };
    for (const auto &[record, texts] : damages) {
        for (const std::string &text : texts) {
            change(record, text);
            EXPECT_EQ(error_of([&] { static_cast<void>(load(*store->read())); }),
                      "input|operation-failed||the line system is damaged: its record " + record +
                          " cannot be understood|restore the directory from a copy or create a new line system")
                << text;
        }
        const auto transaction = store->write();
        save(*transaction, system);
        transaction->commit();
    }
}

// No record that must be there can be missed, and none that may be missing is taken for zero.
TEST_F(LineSystemStorage, NoticesEveryRecordThatIsMissing) {
    make(example());
    std::vector<std::string> records;
    store->read()->for_each(Table::line_system, "", [&](std::string_view record, std::string_view) {
        records.emplace_back(record);
        return true;
    });
    EXPECT_GT(records.size(), 60U);
    for (const std::string &record : records) {
        const auto transaction = store->write();
        ASSERT_TRUE(transaction->erase(Table::line_system, record));
        std::string seen;
        try {
            seen = load(*transaction) == example() ? "the same" : "another";
        } catch (const Error &) {
            seen = "refused";
        }
        EXPECT_NE(seen, "the same") << record;
    }
}

TEST_F(LineSystemStorage, RefusesAThresholdThatIsThereTwice) {
    make(example());
    change("slot/1/line/0/rx-threshold/1", "7 low");
    EXPECT_EQ(error_of([&] { static_cast<void>(load(*store->read())); }),
              "input|operation-failed||the line system is damaged: its record slot/1/line/0/rx-threshold/1 cannot be "
              "understood|restore the directory from a copy or create a new line system");
}

TEST_F(LineSystemStorage, CreatesNothingWhereThereIsALineSystem) {
    make(example());
    EXPECT_EQ(error_of([&] { make(LineSystem{}); }),
              "input|operation-failed||the directory " + state.string() +
                  " already holds a line system|name another directory or remove this one");
    EXPECT_TRUE(opened_again() == example());
}

} // namespace
} // namespace ocpsm::line_system
