#include "simulator/database/client_library.hpp"

#include <fstream>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "framework/host/service_codes.hpp"
#include "open_store.hpp"
#include "sysdb_client.h"

namespace {

using ocpsm::sysdb::Client;
using ocpsm::sysdb::Store;

TEST(ClientLibrary, IsWhereTheBuildPutsIt) {
    EXPECT_EQ(ocpsm::sysdb::client_library(), TEST_CLIENT_LIBRARY);
    EXPECT_EQ(ocpsm::sysdb::absent_library(), TEST_ABSENT_LIBRARY);
}

TEST(ClientLibrary, OpensStoresWhenItIsInstalled) {
    const TemporaryDirectory directory;
    const Client client(TEST_CLIENT_LIBRARY, TEST_ABSENT_LIBRARY);
    EXPECT_TRUE(client.installed());
    const auto store = client.open(directory.path / "a", Store::Mode::create);
    const auto other = client.open(directory.path / "b", Store::Mode::create);
    EXPECT_NE(store->write(), other->write());
    EXPECT_EQ(client.operation("_sysdb_bind"), reinterpret_cast<void *>(&_sysdb_bind));
    EXPECT_EQ(client.operation("no_such_operation"), nullptr);
}

TEST(ClientLibrary, IsReplacedWhenItIsNotInstalled) {
    const TemporaryDirectory directory;
    const std::string library = (directory.path / "libsysdb_client.so").string();
    const Client client(library, TEST_ABSENT_LIBRARY);
    EXPECT_FALSE(client.installed());
    EXPECT_EQ(error_of([&] { static_cast<void>(client.open(directory.path, Store::Mode::existing)); }),
              "refused|operation-failed||the system database client is not installed: " + library +
                  " cannot be read|install it to work with a line system");
    EXPECT_EQ(client.operation("sysdb_client_open"), nullptr);
}

template <class Operation>
Operation *operation(const Client &client, const char *name) {
    return reinterpret_cast<Operation *>(client.operation(name));
}

TEST(ClientLibrary, StandInSaysThatThereIsNone) {
    const TemporaryDirectory directory;
    const Client client(directory.path / "missing", TEST_ABSENT_LIBRARY);
    sysdb_handle_td handle = nullptr;
    sysdb_item_datatype_td type = 7;
    void *data = nullptr;
    std::uint32_t length = 0;
    std::int32_t count = 0;
    sysdb_list_td list = nullptr;
    const char *name = nullptr;
    const kerrno absent = 0x8081c200U;
    EXPECT_EQ(operation<decltype(_sysdb_bind)>(client, "_sysdb_bind")(&handle, "/oper/", 0), absent);
    EXPECT_EQ(operation<decltype(_sysdb_unbind)>(client, "_sysdb_unbind")(handle), absent);
    EXPECT_EQ(operation<decltype(sysdb_item_get)>(client, "sysdb_item_get")(handle, "a", &type, &data, &length, 0),
              absent);
    EXPECT_EQ(operation<decltype(sysdb_list)>(client, "sysdb_list")(handle, "", "", &count, &list, 0), absent);
    EXPECT_EQ(operation<decltype(sysdb_list_next)>(client, "sysdb_list_next")(list, &name, &type, 0), absent);
    operation<decltype(sysdb_list_free)>(client, "sysdb_list_free")(list);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(data, nullptr);
}

TEST(ClientLibrary, IsNamedWhenItIsNoLibrary) {
    const TemporaryDirectory directory;
    const std::string library = (directory.path / "libsysdb_client.so").string();
    std::ofstream(library) << "x";
    EXPECT_EQ(error_of([&] { const Client client(library, TEST_ABSENT_LIBRARY); }),
              "input|operation-failed||the system database client " + library + " cannot be loaded: " + library +
                  ": file too short|install it again");
}

TEST(ClientLibrary, IsNamedWhenItIsAnotherOne) {
    EXPECT_EQ(error_of([] { const Client client(TEST_ABSENT_LIBRARY, TEST_ABSENT_LIBRARY); }),
              "input|operation-failed||the system database client " TEST_ABSENT_LIBRARY
              " gives no access to its store|install the one that belongs to this program");
}

TEST(KerrTable, HasATextOfItsOwnForEveryCode) {
    for (const auto &entry : ocpsm::kerr_service_texts) {
        for (const auto &other : ocpsm::kerr_service_texts) {
            EXPECT_EQ(&entry == &other, entry.code == other.code);
            EXPECT_EQ(&entry == &other, std::string(entry.text) == other.text);
        }
        if (entry.code == 0x8081c200U) {
            EXPECT_STREQ(entry.text, "system database client not installed");
        }
    }
    EXPECT_EQ(ocpsm::kerr_service_texts.size(), 14U);
}

} // namespace
