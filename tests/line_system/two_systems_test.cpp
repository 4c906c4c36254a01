// Several line systems open in one process: each request reads the database of its own one.
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "shown_item.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "sysdb/temporary_directory.hpp"
#include "sysdb_client.h"

namespace ocpsm::line_system {
namespace {

LineSystem attenuated(const LineSystem &system, int tenths) {
    LineSystem after = system;
    slot(after, 1).lines[0].rx_attenuation = tenths;
    return after;
}

class TwoSystems : public testing::Test {
protected:
    // What a plug-in reads on this thread: the attenuation that is configured in slot 1.
    static std::string read_item() {
        sysdb_handle_td handle = nullptr;
        if (const kerrno refused = _sysdb_bind(&handle, "/cfg/if/act/", 0); refused != KERR_SUCCESS) {
            return refused == 0x8081c600U ? "not open" : "another error";
        }
        sysdb_item_datatype_td type = SYSDB_ITEM_INT32;
        void *data = nullptr;
        std::uint32_t length = 0;
        const kerrno got = sysdb_item_get(handle, "Ots0_1_0_1/Optics/rx_attenuation", &type, &data, &length, 0);
        EXPECT_EQ(_sysdb_unbind(handle), KERR_SUCCESS);
        const std::string text =
            got == KERR_SUCCESS ? shown_data(type, {static_cast<const char *>(data), length}) : "not found";
        std::free(data); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
        return text;
    }

    std::unique_ptr<sysdb::Store> make(const char *name, int tenths) const {
        return create(client, directory.path / name, attenuated(example(), tenths));
    }

    TemporaryDirectory directory;
    const sysdb::Client client;
    std::unique_ptr<sysdb::Store> first = make("first", 1);
    std::unique_ptr<sysdb::Store> second = make("second", 2);
};

TEST_F(TwoSystems, ReadInTheYoungestTransactionOfTheThread) {
    EXPECT_EQ(read_item(), "not open"); // which of the two?
    const auto outer = first->read();
    EXPECT_EQ(read_item(), "1");
    {
        const auto inner = second->read();
        EXPECT_EQ(read_item(), "2");
        const auto edit = first->write();
        save(*edit, attenuated(load(*edit), 3));
        EXPECT_EQ(read_item(), "3");
        std::thread([] { EXPECT_EQ(read_item(), "not open"); }).join();
        edit->commit();
        EXPECT_EQ(read_item(), "2");
    }
    EXPECT_EQ(read_item(), "1");
    second.reset();
    std::thread([] { EXPECT_EQ(read_item(), "3"); }).join(); // the only one that is left
}

TEST_F(TwoSystems, AreWrittenAtOnceOnOneThread) {
    const auto one = first->write();
    const auto other = second->write();
    save(*one, attenuated(load(*one), 10));
    save(*other, attenuated(load(*other), 20));
    other->commit();
    one->commit();
    EXPECT_EQ(load(*first->read()).slots[0].lines[0].rx_attenuation, 10);
    EXPECT_EQ(load(*second->read()).slots[0].lines[0].rx_attenuation, 20);
}

TEST_F(TwoSystems, AreReadAndWrittenOnThreadsOfTheirOwn) {
    const auto work = [](sysdb::Store &store, int base) {
        for (int round = 0; round < 100; ++round) {
            const int tenths = base + round;
            change(store, [&](const LineSystem &system, Events &) { return attenuated(system, tenths); });
            const auto snapshot = store.read();
            EXPECT_EQ(read_item(), std::to_string(tenths));
            EXPECT_EQ(load(*snapshot).slots[0].lines[0].rx_attenuation, tenths);
        }
    };
    std::thread other([&] { work(*second, 2000); });
    work(*first, 1000);
    other.join();
}

} // namespace
} // namespace ocpsm::line_system
