#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "bag_generic.h"
#include "open_store.hpp"
#include "simulator/bag/encoder.hpp"
#include "simulator/database/item.hpp"
#include "sysdb_client.h"

namespace {

using ocpsm::sysdb::Item;
using ocpsm::sysdb::put_item;
using ocpsm::sysdb::Table;
using testing::ElementsAre;
using testing::IsEmpty;

struct FreeData {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    void operator()(void *data) const { std::free(data); }
};

struct Got {
    kerrno code = KERR_SUCCESS;
    sysdb_item_datatype_td type = 0;
    bool null = true;
    std::string data;

    bool operator==(const Got &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Got &got) {
    return out << std::hex << got.code << " type " << got.type << (got.null ? " null" : " data ") << got.data;
}

struct Name {
    std::string name;
    sysdb_item_datatype_td type = 0;

    bool operator==(const Name &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Name &name) {
    return out << name.name << " " << name.type;
}

class Bound {
public:
    explicit Bound(const char *path) { EXPECT_EQ(_sysdb_bind(&handle_, path, 0), KERR_SUCCESS); }
    Bound(const Bound &) = delete;
    Bound &operator=(const Bound &) = delete;
    ~Bound() { EXPECT_EQ(_sysdb_unbind(handle_), KERR_SUCCESS); }

    Got get(const char *item, sysdb_item_datatype_td type) const {
        void *data = &type; // the client has to write it
        std::uint32_t length = 77;
        Got got;
        got.code = sysdb_item_get(handle_, item, &type, &data, &length, 0);
        const std::unique_ptr<void, FreeData> owner(data);
        got.type = type;
        got.null = data == nullptr;
        EXPECT_TRUE(!got.null || length == 0);
        if (data != nullptr) {
            got.data.assign(static_cast<const char *>(data), length);
        }
        return got;
    }

    std::vector<Name> list(const char *path, const char *pattern) const {
        std::int32_t count = -1;
        sysdb_list_td list = nullptr;
        EXPECT_EQ(sysdb_list(handle_, path, pattern, &count, &list, 0), KERR_SUCCESS);
        std::vector<Name> names;
        const char *name = nullptr;
        sysdb_item_datatype_td type = 99;
        while (sysdb_list_next(list, &name, &type, 0) == KERR_SUCCESS && name != nullptr) {
            names.push_back({name, type});
        }
        EXPECT_EQ(sysdb_list_next(list, &name, &type, 0), KERR_SUCCESS);
        EXPECT_EQ(name, nullptr);
        EXPECT_EQ(count, static_cast<std::int32_t>(names.size()));
        sysdb_list_free(list);
        return names;
    }

    sysdb_handle_td handle() const { return handle_; }

private:
    sysdb_handle_td handle_ = nullptr;
};

class ClientTest : public OpenStore {
protected:
    void put(const std::vector<Item> &items) {
        const auto transaction = store->write();
        for (const Item &item : items) {
            put_item(*transaction, item);
        }
        transaction->commit();
    }
};

TEST_F(ClientTest, GetsItemsBelowTheBoundSubtree) {
    using namespace std::string_literals;
    put({{"/cfg/if/act/Ots0_1_0_2/Optics/rx_attenuation", 1, "\xe7\xff\xff\xff"},
         {"/oper/ots/if/Ots0_1_0_2/ots_info", 7, "b\0g"s}});
    const Bound configuration("/cfg/if/act/");
    EXPECT_EQ(configuration.get("Ots0_1_0_2/Optics/rx_attenuation", 1), (Got{0, 1, false, "\xe7\xff\xff\xff"}));
    EXPECT_EQ(configuration.get("Ots0_1_0_2/ots_info", 7), (Got{0x8081c800U, 7, true, ""}));
    const Bound operational("/oper/ots/if"); // the slash at the end may be missing
    EXPECT_EQ(operational.get("Ots0_1_0_2/ots_info", 7), (Got{0, 7, false, "b\0g"s}));
}

TEST_F(ClientTest, KeepsIntegersInHostOrder) {
    put({{"/cfg/a", 1, ocpsm::sysdb::int32_data(-25)}});
    const Got got = Bound("/cfg/").get("a", 1);
    std::int32_t value = 0;
    ASSERT_EQ(got.data.size(), sizeof value);
    std::memcpy(&value, got.data.data(), sizeof value);
    EXPECT_EQ(value, -25);
}

TEST_F(ClientTest, RefusesAnItemOfAnotherTypeAndNamesTheItemsOwn) {
    put({{"/oper/a", 7, "bag"}});
    EXPECT_EQ(Bound("/oper/").get("a", 1), (Got{0x8081ca00U, 7, true, ""}));
}

TEST_F(ClientTest, GivesNullForAnItemWithoutData) {
    put({{"/oper/a", 7, ""}});
    EXPECT_EQ(Bound("/oper/").get("a", 7), (Got{0, 7, true, ""}));
}

TEST_F(ClientTest, FindsNoItemInASubtreeOrUnderAPathNothingCanHave) {
    put({{"/oper/a/b", 7, "bag"}});
    const Bound operational("/oper/");
    EXPECT_EQ(operational.get("a", 7), (Got{0x8081c800U, 7, true, ""}));
    EXPECT_EQ(operational.get("a/", 7), (Got{0x8081c800U, 7, true, ""}));
    EXPECT_EQ(operational.get("", 7), (Got{0x8081c800U, 7, true, ""}));
    EXPECT_EQ(operational.get(std::string(100000, 'a').c_str(), 7), (Got{0x8081c800U, 7, true, ""}));
}

TEST_F(ClientTest, ReportsARecordThatIsNoItem) {
    const auto transaction = store->write();
    transaction->put(Table::items, "/oper/a", "x");
    EXPECT_EQ(Bound("/oper/").get("a", 7), (Got{0x8081cc00U, 7, true, ""}));
}

TEST_F(ClientTest, PadsDataSoThatAHeaderCanBeRead) {
    put({{"/oper/a", 7, "B"}});
    const Bound operational("/oper/");
    sysdb_item_datatype_td type = SYSDB_ITEM_BAG;
    void *data = nullptr;
    std::uint32_t length = 0;
    ASSERT_EQ(sysdb_item_get(operational.handle(), "a", &type, &data, &length, 0), KERR_SUCCESS);
    const std::unique_ptr<void, FreeData> owner(data);
    EXPECT_EQ(length, 1U);
    EXPECT_EQ(std::string(static_cast<const char *>(data) + 1, 255), std::string(255, '\0'));
    bag_header_td header{};
    EXPECT_EQ(bag_header_info(data, &header), 0x80a54600U);
}

TEST_F(ClientTest, GetsItemsOfAnySize) {
    for (const std::size_t size : {1U, 255U, 256U, 257U, 100000U, 5000000U}) {
        const std::string data(size, 'x');
        put({{"/oper/a", 7, data}});
        EXPECT_TRUE(Bound("/oper/").get("a", 7) == (Got{0, 7, false, data})) << size;
    }
}

TEST_F(ClientTest, ListsNamesDirectlyBelowEachOnceAndSubtreesWithASlash) {
    put({{"/oper/ots/if/Ots0_2_0_2/ots_info", 7, "a"},
         {"/oper/ots/if/Ots0_2_0_2/optics_info", 7, "a"},
         {"/oper/ots/if/Ots0_2_0_20", 1, "abcd"},
         {"/oper/ots/if/Ots0_2_0_2-x/y/z", 7, "a"},
         {"/oper/ots/if/Ots0_2_0_2", 7, "a"},
         {"/oper/ots/if/Ots0_2_0_20/deep/deeper", 7, "a"},
         {"/oper/ots/ifx", 7, "a"},
         {"/oper/ots/id/z", 7, "a"}});
    const Bound interfaces("/oper/ots/if/");
    // In the order of the paths' bytes: "-" comes before "/", and "/" before "0".
    EXPECT_THAT(interfaces.list("", ""),
                ElementsAre(Name{"Ots0_2_0_2", 7}, Name{"Ots0_2_0_2-x/", 0}, Name{"Ots0_2_0_2/", 0},
                            Name{"Ots0_2_0_20", 1}, Name{"Ots0_2_0_20/", 0}));
    EXPECT_THAT(interfaces.list("", "Ots0_2_0_2/"), ElementsAre(Name{"Ots0_2_0_2/", 0}));
    EXPECT_THAT(interfaces.list("", "Ots0_2_0_20"), ElementsAre(Name{"Ots0_2_0_20", 1}, Name{"Ots0_2_0_20/", 0}));
    EXPECT_THAT(interfaces.list("", "Ots0_3"), IsEmpty());
    EXPECT_THAT(interfaces.list("", "Ots0_2_0_2/ots"), IsEmpty());
    EXPECT_THAT(interfaces.list("Ots0_2_0_2", ""), ElementsAre(Name{"optics_info", 7}, Name{"ots_info", 7}));
    EXPECT_THAT(interfaces.list("Ots0_2_0_2/", "ots"), ElementsAre(Name{"ots_info", 7}));
    EXPECT_THAT(Bound("/oper/").list("ots", ""), ElementsAre(Name{"id/", 0}, Name{"if/", 0}, Name{"ifx", 7}));
    EXPECT_THAT(Bound("/nothing/").list("", ""), IsEmpty());
    EXPECT_THAT(Bound("/").list("", ""), ElementsAre(Name{"oper/", 0}));
}

TEST_F(ClientTest, ListsNamesUpToTheLengthOfAKey) {
    const std::string longest(511 - 1, 'k');
    put({{"/" + longest, 7, "a"}, {"/" + std::string(509, 'k') + "z", 7, "a"}});
    EXPECT_THAT(Bound("/").list("", "k"), ElementsAre(Name{longest, 7}, Name{std::string(509, 'k') + "z", 7}));
}

TEST_F(ClientTest, ReadsInTheTransactionOfItsThread) {
    put({{"/oper/a", 7, "old"}});
    const Bound operational("/oper/");
    const auto snapshot = store->read();
    std::thread([&] { put({{"/oper/a", 7, "new"}, {"/oper/b", 7, "new"}}); }).join();
    EXPECT_EQ(operational.get("a", 7).data, "old");
    EXPECT_THAT(operational.list("", ""), ElementsAre(Name{"a", 7}));
    std::thread([&] { EXPECT_EQ(operational.get("a", 7).data, "new"); }).join();
    {
        const auto edit = store->write();
        put_item(*edit, {"/oper/a", 7, "edited"});
        EXPECT_EQ(operational.get("a", 7).data, "edited");
    }
    EXPECT_EQ(operational.get("a", 7).data, "old");
}

TEST_F(ClientTest, ReadsTheNewestStateBetweenTransactions) {
    const Bound operational("/oper/");
    auto first = store->read();
    auto second = store->read();
    put({{"/oper/a", 7, "new"}});
    first.reset(); // not the youngest
    EXPECT_EQ(operational.get("a", 7).code, 0x8081c800U);
    second.reset();
    EXPECT_EQ(operational.get("a", 7).data, "new");
    const auto edit = store->write();
    put_item(*edit, {"/oper/a", 7, "newer"});
    edit->commit();
    EXPECT_EQ(operational.get("a", 7).data, "newer");
}

TEST_F(ClientTest, KeepsDataAndListingsBehindTheUnbind) {
    put({{"/oper/a", 7, "data"}});
    sysdb_handle_td handle = nullptr;
    ASSERT_EQ(_sysdb_bind(&handle, "/oper/", 0), KERR_SUCCESS);
    sysdb_item_datatype_td type = 7;
    void *data = nullptr;
    std::uint32_t length = 0;
    ASSERT_EQ(sysdb_item_get(handle, "a", &type, &data, &length, 0), KERR_SUCCESS);
    const std::unique_ptr<void, FreeData> owner(data);
    std::int32_t count = 0;
    sysdb_list_td list = nullptr;
    ASSERT_EQ(sysdb_list(handle, "", "", &count, &list, 0), KERR_SUCCESS);
    ASSERT_EQ(_sysdb_unbind(handle), KERR_SUCCESS);
    EXPECT_EQ(std::string(static_cast<const char *>(data), length), "data");
    const char *name = nullptr;
    EXPECT_EQ(sysdb_list_next(list, &name, &type, 0), KERR_SUCCESS);
    EXPECT_STREQ(name, "a");
    sysdb_list_free(list);
}

TEST_F(ClientTest, RefusesNullArguments) {
    const Bound operational("/oper/");
    sysdb_handle_td handle = nullptr;
    sysdb_item_datatype_td type = 7;
    void *data = nullptr;
    std::uint32_t length = 0;
    std::int32_t count = 0;
    sysdb_list_td list = nullptr;
    const char *name = nullptr;
    const kerrno expected = 0x8081c400U;
    EXPECT_EQ(_sysdb_bind(nullptr, "/oper/", 0), expected);
    EXPECT_EQ(_sysdb_bind(&handle, nullptr, 0), expected);
    EXPECT_EQ(_sysdb_bind(&handle, "", 0), expected);
    EXPECT_EQ(_sysdb_bind(&handle, "oper/", 0), expected);
    EXPECT_EQ(_sysdb_unbind(nullptr), expected);
    EXPECT_EQ(sysdb_item_get(nullptr, "a", &type, &data, &length, 0), expected);
    EXPECT_EQ(sysdb_item_get(operational.handle(), nullptr, &type, &data, &length, 0), expected);
    EXPECT_EQ(sysdb_item_get(operational.handle(), "a", nullptr, &data, &length, 0), expected);
    EXPECT_EQ(sysdb_item_get(operational.handle(), "a", &type, nullptr, &length, 0), expected);
    EXPECT_EQ(sysdb_item_get(operational.handle(), "a", &type, &data, nullptr, 0), expected);
    EXPECT_EQ(sysdb_list(nullptr, "", "", &count, &list, 0), expected);
    EXPECT_EQ(sysdb_list(operational.handle(), nullptr, "", &count, &list, 0), expected);
    EXPECT_EQ(sysdb_list(operational.handle(), "", nullptr, &count, &list, 0), expected);
    EXPECT_EQ(sysdb_list(operational.handle(), "", "", nullptr, &list, 0), expected);
    EXPECT_EQ(sysdb_list(operational.handle(), "", "", &count, nullptr, 0), expected);
    EXPECT_EQ(sysdb_list_next(nullptr, &name, &type, 0), expected);
    ASSERT_EQ(sysdb_list(operational.handle(), "", "", &count, &list, 0), KERR_SUCCESS);
    EXPECT_EQ(sysdb_list_next(list, nullptr, &type, 0), expected);
    EXPECT_EQ(sysdb_list_next(list, &name, nullptr, 0), expected);
    sysdb_list_free(list);
    sysdb_list_free(nullptr);
}

TEST_F(ClientTest, SaysThatNoDatabaseIsOpen) {
    const Bound bound("/oper/");
    store.reset();
    sysdb_handle_td handle = nullptr;
    EXPECT_EQ(_sysdb_bind(&handle, "/oper/", 0), 0x8081c600U);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(bound.get("a", 7), (Got{0x8081c600U, 7, true, ""}));
    std::int32_t count = -1;
    sysdb_list_td list = nullptr;
    EXPECT_EQ(sysdb_list(bound.handle(), "", "", &count, &list, 0), 0x8081c600U);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(list, nullptr);
}

} // namespace
