#include "simulator/line_system/line_system_device.hpp"

#include <map>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "native/native_test.hpp"
#include "native/shown_data.hpp"
#include "simulator/line_system/native_side.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm::line_system {
namespace {

using native_test::edit;
using native_test::mda;
using native_test::merge;
using native_test::ots;
using native_test::Request;
using sysdb::Table;

class LineSystemDeviceTest : public OpenStore {
public:
    LineSystemDeviceTest() {
        const auto transaction = store->write();
        save(*transaction, example());
        transaction->commit();
    }

protected:
    // Every record, with its table.
    std::map<std::string, std::string> records() {
        std::map<std::string, std::string> all;
        const auto snapshot = store->read();
        for (const Table table : {Table::items, Table::line_system, Table::journal}) {
            snapshot->for_each(table, "", [&](std::string_view key, std::string_view value) {
                all.emplace(std::to_string(static_cast<int>(table)) + std::string(key), value);
                return true;
            });
        }
        return all;
    }
};

// The wait-to-restore time of a slot.
Request waiting(const char *slot, const char *milliseconds) {
    Request request = edit();
    request.put(native_test::node_path + "/node-name", mda, "0/RP0/CPU0", merge, true, 0);
    request.put(native_test::slot_path + "/slot-id", ots, slot, merge, true, 0);
    request.put(native_test::psm_path + "/revertive/wtr", ots, milliseconds, merge, false, 0);
    return request;
}

Request read_of_waiting(const char *slot) {
    Request request = native_test::read();
    request.put(native_test::slot_path + "/slot-id", ots, slot, merge, true, 0);
    request.put(native_test::psm_path + "/revertive/wtr", ots, "", merge, false, 0);
    return request;
}

std::string answered(const char *slot, const char *milliseconds) {
    return std::string("active-nodes\n  active-node\n    node-name=|0/RP0/CPU0|\n    slot\n      slot-id=|") + slot +
           "|\n      psm\n        revertive\n          wtr=|" + milliseconds + "|\n";
}

TEST_F(LineSystemDeviceTest, AnswersFromTheSnapshotOfTheCaller) {
    const auto snapshot = store->read();
    LineSystemDevice device(*snapshot);
    change(*store, [](const LineSystem &system, Events &) { return pull(system, 1); });
    EXPECT_EQ(native_test::shown(device.answer(read_of_waiting("1").net())), answered("1", "10000"));
    EXPECT_THROW(device.apply(waiting("1", "7").net()), std::logic_error);
    const auto later = store->read();
    EXPECT_EQ(native_test::shown(LineSystemDevice(*later).answer(read_of_waiting("1").net())),
              "active-nodes\n  active-node\n    node-name=|0/RP0/CPU0|\n");
}

TEST_F(LineSystemDeviceTest, EditsInTheTransactionOfTheCaller) {
    {
        const auto transaction = store->write();
        LineSystemDevice device(*transaction);
        device.apply(waiting("1", "7").net());
        EXPECT_EQ(native_test::shown(device.answer(read_of_waiting("1").net())), answered("1", "7"));
        device.apply(waiting("3", "8").net());
        EXPECT_EQ(native_test::shown(device.answer(read_of_waiting("1").net())), answered("1", "7"));
    }
    EXPECT_TRUE(load(*store->read()) == example()); // not committed
    const auto transaction = store->write();
    LineSystemDevice(*transaction).apply(waiting("1", "7").net());
    transaction->commit();
    LineSystem expected = example();
    slot(expected, 1).settings.wait_to_restore = 7;
    EXPECT_TRUE(load(*store->read()) == expected);
}

TEST_F(LineSystemDeviceTest, LeavesTheTransactionAloneWhenItRefuses) {
    const auto before = records();
    const auto transaction = store->write();
    LineSystemDevice device(*transaction);
    Request request = waiting("1", "7");
    request.put(native_test::slot_path + "/slot-id", ots, "2", merge, true, 0);
    try {
        device.apply(request.net());
        ADD_FAILURE() << "slot 2 is empty";
    } catch (const Error &refusal) {
        EXPECT_EQ(refusal.tag, "data-missing");
        EXPECT_EQ(refusal.native_path, "/active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='2']");
        EXPECT_EQ(refusal.message(), "the hardware is not fitted");
    }
    transaction->commit();
    EXPECT_EQ(records(), before);
}

// A store that loses the records with this key.
class ForgetfulTransaction : public sysdb::WriteTransaction {
public:
    ForgetfulTransaction(sysdb::WriteTransaction &kept, std::string lost) : kept_(kept), lost_(std::move(lost)) {}

    std::optional<std::string_view> get(Table table, std::string_view key) const override {
        return kept_.get(table, key);
    }
    void for_each(Table table, std::string_view prefix, const Visitor &visit) const override {
        kept_.for_each(table, prefix, visit);
    }
    std::optional<std::string_view> lower_bound(Table table, std::string_view key) const override {
        return kept_.lower_bound(table, key);
    }
    void put(Table table, std::string_view key, std::string_view value) override {
        if (key != lost_) {
            kept_.put(table, key, value);
        }
    }
    bool erase(Table table, std::string_view key) override { return kept_.erase(table, key); }
    std::size_t erase_all(Table table, std::string_view prefix) override { return kept_.erase_all(table, prefix); }
    void commit() override { kept_.commit(); }

private:
    sysdb::WriteTransaction &kept_;
    std::string lost_;
};

// Otherwise the answer to the client would be that nothing has changed.
TEST_F(LineSystemDeviceTest, RefusesAnEditThatTheStoreDoesNotKeep) {
    const auto refusal_when_losing = [&](const char *record) -> std::string {
        const auto transaction = store->write();
        ForgetfulTransaction forgetful(*transaction, record);
        try {
            LineSystemDevice(forgetful).apply(waiting("1", "7").net());
        } catch (const Error &refusal) {
            return refusal.tag + " at " + refusal.native_path + ": " + refusal.message();
        }
        return "none";
    };
    EXPECT_EQ(refusal_when_losing("slot/1/settings/wait-to-restore"),
              "operation-failed at /active-nodes/active-node[node-name='0/RP0/CPU0']/slot[slot-id='1']/psm/revertive/"
              "wtr: the device has not kept the value");
    EXPECT_EQ(refusal_when_losing("slot/3/settings/wait-to-restore"),
              "operation-failed at : the device has not kept the edit");
    EXPECT_EQ(refusal_when_losing("no such record"), "none");
}

TEST_F(LineSystemDeviceTest, KeepsItemsInStepWithTheLineSystem) {
    const auto transaction = store->write();
    Request request = edit();
    request.put(native_test::interface_path, native_test::ifmgr, native_test::none, merge, true, 0);
    request.put(native_test::interface_path + "/interface-name", native_test::ifmgr, "Ots0/1/0/2", merge, false, 0);
    request.put(native_test::interface_path + "/active", native_test::ifmgr, "act", merge, false, 0);
    request.put(native_test::optics_path + "/optics-ots-rx-voa-attenuation", native_test::optics, native_test::none,
                native_test::erase, false, 0);
    LineSystemDevice(*transaction).apply(request.net());
    EXPECT_EQ(transaction->get(Table::items, "/cfg/if/act/Ots0_1_0_2/Optics/rx_attenuation"), std::nullopt);
    const auto kept = transaction->get(Table::items, "/cfg/if/act/Ots0_1_0_2/Optics/tx_attenuation");
    EXPECT_TRUE(kept.has_value());
}

TEST_F(LineSystemDeviceTest, ChangesByCommandsInOneTransaction) {
    const LineSystem expected = tick(cut(example(), 1, Path::primary), 100);
    EXPECT_TRUE(change(*store, [](const LineSystem &system, Events &) {
                    return tick(cut(system, 1, Path::primary), 100);
                }) == expected);
    EXPECT_TRUE(load(*store->read()) == expected);
}

TEST_F(LineSystemDeviceTest, ChangesNothingWhenACommandIsRefused) {
    const auto before = records();
    EXPECT_EQ(error_of([&] { change(*store, [](const LineSystem &system, Events &) { return pull(system, 2); }); }),
              "refused|data-missing||slot 2 holds no module|fit one first");
    EXPECT_EQ(records(), before);
    EXPECT_THROW(
        change(*store,
               [](const LineSystem &, Events &) -> LineSystem { throw std::runtime_error("in the midst of it"); }),
        std::runtime_error);
    EXPECT_EQ(records(), before);
}

} // namespace
} // namespace ocpsm::line_system
