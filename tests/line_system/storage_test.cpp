#include "bench/line_system/storage.hpp"

#include <cstdlib>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "shown_item.hpp"
#include "sysdb/open_store.hpp"

namespace {

using bench::line_system::example;
using bench::line_system::LineSystem;
using bench::line_system::load;
using bench::line_system::Module;
using bench::line_system::Port;
using bench::line_system::Statistics;
using bench::sysdb::Store;
using bench::sysdb::Table;

constexpr char no_line_system[] = "input|operation-failed||the directory holds no line system|create one there first";

class LineSystemStorage : public testing::Test {
public:
    ~LineSystemStorage() override { store.close(); }

protected:
    void change(std::string_view key, std::string_view value) {
        const auto transaction = store.write();
        transaction->put(Table::line_system, key, value);
        transaction->commit();
    }

    LineSystem opened_again() {
        store.close();
        return bench::line_system::open(store, state);
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    Store &store = *sysdb_client_store();
};

TEST_F(LineSystemStorage, KeepsTheExample) {
    create(store, state, example());
    EXPECT_TRUE(opened_again() == example());
    EXPECT_TRUE(store.is_open());
}

TEST_F(LineSystemStorage, KeepsWhatIsAbsentAndWhatIsZeroApart) {
    LineSystem system;
    system.slots[0] = Module{};
    system.slots[1] = Module{"", {Port{.receive_power = 0, .received = Statistics{0, 0, 0}}, Port{}, Port{}}};
    system.slots[2] = Module{"a name\nof any kind",
                             {Port{.tx_attenuation = 2147483647}, Port{.configured_rx_threshold = -2147483647 - 1},
                              Port{.transmitted = Statistics{-2147483647 - 1, 2147483647, -1}}}};
    create(store, state, system);
    EXPECT_TRUE(opened_again() == system);
    EXPECT_FALSE(opened_again() == example());
}

TEST_F(LineSystemStorage, KeepsAnEmptySystem) {
    create(store, state, LineSystem{});
    EXPECT_TRUE(opened_again() == LineSystem{});
}

TEST_F(LineSystemStorage, OffersTheItemsToTheDatabaseClient) {
    create(store, state, example());
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

TEST_F(LineSystemStorage, ReplacesTheSystemAndItsItemsButNoNativeData) {
    create(store, state, example());
    LineSystem system;
    system.slots[1] = Module{std::nullopt, {Port{.rx_low_threshold = -1}, Port{}, Port{}}};
    auto transaction = store.write();
    transaction->put(Table::native_configuration, "a", "kept");
    transaction->put(Table::native_operational, "b", "kept");
    save(*transaction, system);
    transaction->commit();
    const auto snapshot = store.read();
    EXPECT_TRUE(load(*snapshot) == system);
    EXPECT_EQ(snapshot->get(Table::native_configuration, "a"), "kept");
    EXPECT_EQ(snapshot->get(Table::native_operational, "b"), "kept");
    int items = 0;
    snapshot->for_each(Table::items, "", [&](std::string_view key, std::string_view) {
        EXPECT_EQ(key, "/oper/ots/if/Ots0_2_0_0/optics_info");
        return ++items != 0;
    });
    EXPECT_EQ(items, 1);
}

TEST_F(LineSystemStorage, IsLeftAloneByAChangeThatIsNotCommitted) {
    create(store, state, example());
    save(*store.write(), LineSystem{});
    EXPECT_TRUE(load(*store.read()) == example());
}

TEST_F(LineSystemStorage, RefusesADirectoryWithoutALineSystem) {
    store.open(state, Store::Mode::create);
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }), no_line_system);
    EXPECT_FALSE(store.is_open());
}

TEST_F(LineSystemStorage, RefusesAMissingDirectory) {
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }),
              "input|operation-failed||the directory " + state.string() + " does not exist|");
    EXPECT_FALSE(store.is_open());
}

TEST_F(LineSystemStorage, RefusesAnotherFormat) {
    create(store, state, example());
    change("format", "optical line system 2");
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }),
              "input|operation-failed||the line system was made by another version of this program|use that version, "
              "or create a new line system");
    EXPECT_FALSE(store.is_open());
    store.open(state, Store::Mode::existing);
    change("format", "something else");
    EXPECT_EQ(error_of([&] { static_cast<void>(opened_again()); }), no_line_system);
}

TEST_F(LineSystemStorage, RefusesRecordsThatAreNoNumbers) {
    create(store, state, example());
    for (const char *text : {"", "x", "1x", "1 ", " 1", "1 2", "99999999999", "--1", "+1"}) {
        change("slot/1/port/2/receive-power", text);
        EXPECT_EQ(error_of([&] { static_cast<void>(load(*store.read())); }),
                  "input|operation-failed||the line system is damaged: its record slot/1/port/2/receive-power cannot "
                  "be understood|restore the directory from a copy or create a new line system")
            << text;
    }
    change("slot/1/port/2/receive-power", "7");
    for (const char *text : {"", "1", "1 2", "1 2 3 4", "1  2 3", "1 2 3 ", "1,2,3", "1 2 x"}) {
        change("slot/3/port/0/transmitted", text);
        EXPECT_EQ(error_of([&] { static_cast<void>(load(*store.read())); }),
                  "input|operation-failed||the line system is damaged: its record slot/3/port/0/transmitted cannot be "
                  "understood|restore the directory from a copy or create a new line system")
            << text;
    }
}

TEST_F(LineSystemStorage, CreatesNothingWhereThereIsALineSystem) {
    create(store, state, example());
    store.close();
    EXPECT_EQ(error_of([&] { create(store, state, LineSystem{}); }),
              "input|operation-failed||the directory " + state.string() +
                  " already holds a line system|name another directory or remove this one");
    EXPECT_TRUE(opened_again() == example());
}

} // namespace
