// Fetching one item of the system database, and asking whether a key is there.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using utility::call;
using utility::item_of;
using utility::Lines;
using utility::lines_of;
using utility::repeated;
using utility::Steps;
using utility::trace;

constexpr char fetch[] = "sysdb_get_data";
constexpr char is_defined[] = "sysdb_key_is_defined";
constexpr char interfaces[] = "/oper/ots/if/";

// An item that was fetched, released as the caller has to.
struct Fetched {
    ~Fetched() {
        std::free(data); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): the client's contract
    }
    void *data = nullptr;
    std::uint32_t length = 0;
};

class FetchTest : public utility::UtilityTest {
protected:
    kerrno get(Fetched &item, const std::string &path = "Ots0_2_0_2/ots_info",
               sysdb_item_datatype_td type = SYSDB_ITEM_BAG) {
        return sysdb_get_data(request.ctx(), interfaces, path.c_str(), &item.data, &item.length, type);
    }

    void put(const std::string &path, fake::Item item) { platform.items[interfaces + path] = std::move(item); }
};

TEST_F(FetchTest, BindsReadsAndUnbinds) {
    put("Ots0_2_0_2/ots_info", item_of("five5"));
    Fetched item;
    EXPECT_EQ(get(item), KERR_SUCCESS);
    ASSERT_NE(item.data, nullptr);
    EXPECT_EQ(item.length, 5u);
    EXPECT_EQ(std::memcmp(item.data, "five5", 5), 0);
    EXPECT_EQ(happened(),
              lines_of({trace(fetch, "path Ots0_2_0_2/ots_info"), call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                        call("sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)"),
                        trace(fetch, "sysdb_unbind"), call("sysdb_unbind(handle 1)"), trace(fetch, "return")}));
}

TEST_F(FetchTest, EachFetchBindsAnew) {
    put("a", item_of("a"));
    put("b", item_of("b"));
    Fetched first;
    Fetched second;
    EXPECT_EQ(get(first, "a"), KERR_SUCCESS);
    EXPECT_EQ(get(second, "b", SYSDB_ITEM_INT32), KERR_SUCCESS);
    EXPECT_EQ(platform.calls(fake::Database),
              (Lines{"sysdb_bind(\"/oper/ots/if/\", 0)", "sysdb_item_get(handle 1, \"a\", type 7, 0)",
                     "sysdb_unbind(handle 1)", "sysdb_bind(\"/oper/ots/if/\", 0)",
                     "sysdb_item_get(handle 2, \"b\", type 1, 0)", "sysdb_unbind(handle 2)"}));
}

TEST_F(FetchTest, TheItemsOwnTypeMayDiffer) {
    fake::Item item = item_of("a");
    item.updated_type = 99;
    put("a", item);
    Fetched fetched;
    EXPECT_EQ(get(fetched, "a"), KERR_SUCCESS);
    EXPECT_EQ(fetched.length, 1u);
}

TEST_F(FetchTest, AFailingBindEndsIt) {
    platform.answer("sysdb_bind", 0x00c0ffee);
    Fetched item;
    EXPECT_EQ(get(item), 0x00c0ffeeu);
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(item.length, 0u);
    EXPECT_EQ(happened(), lines_of({trace(fetch, "path Ots0_2_0_2/ots_info"), call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                                    trace(fetch, "sysdb_bind failed error 0x00c0ffee")}));
}

TEST_F(FetchTest, WithoutAHandleThereIsNothingToReadOrToUnbind) {
    platform.bind_gives_handle = false;
    Fetched item;
    EXPECT_EQ(get(item), KERR_SUCCESS);
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(item.length, 0u);
    EXPECT_EQ(happened(), lines_of({trace(fetch, "path Ots0_2_0_2/ots_info"), call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                                    trace(fetch, "return")}));
}

TEST_F(FetchTest, AnItemThatIsNotThereGivesTheClientsCode) {
    Fetched item;
    EXPECT_EQ(get(item), 0x0a0b0c00u);
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(happened(),
              lines_of({trace(fetch, "path Ots0_2_0_2/ots_info"), call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                        call("sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)"),
                        trace(fetch, "sysdb_item_get failed: error 0x0a0b0c00"), trace(fetch, "sysdb_unbind"),
                        call("sysdb_unbind(handle 1)"), trace(fetch, "return")}));
}

TEST_F(FetchTest, AFailureLeavesTheDataAsTheClientLeftIt) {
    fake::Item broken = item_of("half", 0x77);
    broken.data_on_failure = true;
    put("Ots0_2_0_2/ots_info", broken);
    Fetched item;
    EXPECT_EQ(get(item), 0x77u);
    ASSERT_NE(item.data, nullptr);
    EXPECT_EQ(std::memcmp(item.data, "half", 4), 0);
    EXPECT_EQ(platform.calls(fake::Database),
              (Lines{"sysdb_bind(\"/oper/ots/if/\", 0)", "sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)",
                     "sysdb_unbind(handle 1)"}));
}

TEST_F(FetchTest, AnItemWithoutDataIsASuccess) {
    fake::Item empty;
    empty.no_data = true;
    put("Ots0_2_0_2/ots_info", empty);
    Fetched item;
    EXPECT_EQ(get(item), KERR_SUCCESS);
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(item.length, 0u);
}

TEST_F(FetchTest, AFailingUnbindChangesNothing) {
    platform.answer("sysdb_unbind", 0x99);
    put("Ots0_2_0_2/ots_info", item_of("x"));
    Fetched item;
    EXPECT_EQ(get(item), KERR_SUCCESS);
    EXPECT_NE(item.data, nullptr);
    Fetched missing;
    EXPECT_EQ(get(missing, "missing"), 0x0a0b0c00u);
}

TEST_F(FetchTest, NoPlaceForTheDataIsNoError) {
    put("Ots0_2_0_2/ots_info", item_of("five5"));
    std::uint32_t length = 0;
    EXPECT_EQ(sysdb_get_data(request.ctx(), interfaces, "Ots0_2_0_2/ots_info", nullptr, &length, SYSDB_ITEM_BAG),
              KERR_SUCCESS);
    EXPECT_EQ(happened(), lines_of({trace(fetch, "path Ots0_2_0_2/ots_info"), call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                                    call("sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)"),
                                    trace(fetch, "sysdb_unbind"), call("sysdb_unbind(handle 1)"),
                                    trace(fetch, "bag_data == NULL"), trace(fetch, "return")}));

    platform.forget();
    EXPECT_EQ(sysdb_get_data(request.ctx(), interfaces, "missing", nullptr, &length, SYSDB_ITEM_BAG), 0x0a0b0c00u);
    EXPECT_EQ(messages(), (Lines{"log TRC path missing", "log TRC sysdb_item_get failed: error 0x0a0b0c00",
                                 "log TRC sysdb_unbind", "log TRC return"}));

    platform.forget();
    platform.bind_gives_handle = false;
    EXPECT_EQ(sysdb_get_data(request.ctx(), interfaces, "x", nullptr, &length, SYSDB_ITEM_BAG), KERR_SUCCESS);
    EXPECT_EQ(messages(), (Lines{"log TRC path x", "log TRC bag_data == NULL", "log TRC return"}));
}

TEST_F(FetchTest, PathsOfAnyLengthAndContentReachTheClientWhole) {
    for (const std::string &path :
         {std::string(), std::string("0%2f1-PSM-OM/%s%n%d"), repeated(255, 'p'), repeated(100000, 'p')}) {
        SCOPED_TRACE(path.size());
        platform.forget();
        put(path, item_of("x"));
        Fetched item;
        EXPECT_EQ(get(item, path), KERR_SUCCESS);
        EXPECT_EQ(item.length, 1u);
        EXPECT_EQ(messages().front(), "log TRC path " + path);
    }
}

class FetchDeathTest : public FetchTest {};

TEST_F(FetchDeathTest, NeedsAContext) {
    void *data = nullptr;
    std::uint32_t length = 0;
    EXPECT_DEATH(static_cast<void>(sysdb_get_data(nullptr, interfaces, "x", &data, &length, SYSDB_ITEM_BAG)),
                 utility::context_assertion("utility", "kerrno sysdb_get_data(yfw_map_ctx, const char *, const char *, "
                                                       "void **, uint32_t *, sysdb_item_datatype_td)"));
}

// ---- keys ----

class KeyTest : public utility::UtilityTest {
protected:
    void list(const std::string &pattern, std::vector<std::string> names) {
        platform.listings[interfaces + pattern] = std::move(names);
    }
};

TEST_F(KeyTest, IsDefinedWhenTheKeyWithASlashIsListed) {
    list("Ots0_2_0_2/", {"Ots0_2_0_2/", "Ots0_2_0_2/x"});
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 1);
    EXPECT_EQ(happened(),
              lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"), trace(is_defined, "key: Ots0_2_0_2/"),
                        call("sysdb_list(handle 1, \"\", \"Ots0_2_0_2/\", 0)"), trace(is_defined, "found 2 object(s)"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'Ots0_2_0_2/', datatype: 7"),
                        trace(is_defined, "Object Ots0_2_0_2/ present in sysdb"), call("sysdb_list_free()"),
                        call("sysdb_unbind(handle 1)")}));
}

TEST_F(KeyTest, NamesAreComparedWholeSlashIncluded) {
    list("Ots0_2_0_2/", {"Ots0_2_0_2", "Ots0_2_0_2/x", "Ots0_2_0_2//", "ots0_2_0_2/", "Ots0_2_0_1/"});
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(),
              lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"), trace(is_defined, "key: Ots0_2_0_2/"),
                        call("sysdb_list(handle 1, \"\", \"Ots0_2_0_2/\", 0)"), trace(is_defined, "found 5 object(s)"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'Ots0_2_0_2', datatype: 7"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'Ots0_2_0_2/x', datatype: 7"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'Ots0_2_0_2//', datatype: 7"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'ots0_2_0_2/', datatype: 7"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'Ots0_2_0_1/', datatype: 7"),
                        call("sysdb_list_next(0)"), call("sysdb_list_free()"), call("sysdb_unbind(handle 1)")}));
}

TEST_F(KeyTest, IsFoundBehindOtherNames) {
    list("Ots0_2_0_2/", {"Ots0_2_0_2/a/", "Ots0_2_0_2/"});
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 1);
    EXPECT_EQ(platform.count("sysdb_list_next"), 2u);
}

TEST_F(KeyTest, AnEmptyListingIsNo) {
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(),
              lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"), trace(is_defined, "key: Ots0_2_0_2/"),
                        call("sysdb_list(handle 1, \"\", \"Ots0_2_0_2/\", 0)"), trace(is_defined, "found 0 object(s)"),
                        call("sysdb_list_next(0)"), call("sysdb_list_free()"), call("sysdb_unbind(handle 1)")}));
}

TEST_F(KeyTest, AFailingNextNameEndsTheSearch) {
    list("Ots0_2_0_2/", {"other/", "Ots0_2_0_2/"});
    platform.answer("sysdb_list_next", 0x55, 2);
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(),
              lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"), trace(is_defined, "key: Ots0_2_0_2/"),
                        call("sysdb_list(handle 1, \"\", \"Ots0_2_0_2/\", 0)"), trace(is_defined, "found 2 object(s)"),
                        call("sysdb_list_next(0)"), trace(is_defined, "Item: 'other/', datatype: 7"),
                        call("sysdb_list_next(0)"), call("sysdb_list_free()"), call("sysdb_unbind(handle 1)")}));
}

TEST_F(KeyTest, AFailingListingIsNo) {
    platform.answer("sysdb_list", 0x66);
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(),
              lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"), trace(is_defined, "key: Ots0_2_0_2/"),
                        call("sysdb_list(handle 1, \"\", \"Ots0_2_0_2/\", 0)"), trace(is_defined, "found -1 object(s)"),
                        trace(is_defined, "sysdb_list failed error 0x00000066"), call("sysdb_unbind(handle 1)")}));
}

TEST_F(KeyTest, AFailingBindIsNo) {
    platform.answer("sysdb_bind", 0x00c0ffee);
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(), lines_of({call("sysdb_bind(\"/oper/ots/if/\", 0)"),
                                    trace(is_defined, "sysdb_bind failed error 0x00c0ffee")}));
}

TEST_F(KeyTest, WithoutAHandleItIsNoAndNothingIsSaid) {
    platform.bind_gives_handle = false;
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
    EXPECT_EQ(happened(), (Lines{"sysdb_bind(\"/oper/ots/if/\", 0)"}));
    // Nothing is said, so no context is needed.
    EXPECT_EQ(sysdb_key_is_defined(nullptr, "Ots0_2_0_2"), 0);
}

TEST_F(KeyTest, EighteenCharactersOfTheKeyCount) {
    const std::string eighteen = repeated(18, 'k');
    list(eighteen + "/", {eighteen + "/"});
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), eighteen.c_str()), 1);

    // The slash is cut off a key of nineteen, and what is listed must be what is left.
    for (const std::size_t length : {19u, 20u, 100000u}) {
        SCOPED_TRACE(length);
        platform.forget();
        list(repeated(19, 'k'), {repeated(19, 'k') + "/", repeated(19, 'k')});
        EXPECT_EQ(sysdb_key_is_defined(request.ctx(), repeated(length, 'k').c_str()), 1);
        EXPECT_EQ(messages().front(), "log TRC key: " + repeated(19, 'k'));
        EXPECT_EQ(messages().back(), "log TRC Object " + repeated(19, 'k') + " present in sysdb");
        EXPECT_EQ(platform.count("sysdb_list_next"), 2u);
    }
}

TEST_F(KeyTest, ListedNamesMayHaveAnyLength) {
    list("k/", {repeated(100000, 'n'), "", "%s%n", "k/"});
    EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "k"), 1);
    EXPECT_EQ(messages(), (Lines{"log TRC key: k/", "log TRC found 4 object(s)",
                                 "log TRC Item: '" + repeated(100000, 'n') + "', datatype: 7",
                                 "log TRC Item: '', datatype: 7", "log TRC Item: '%s%n', datatype: 7",
                                 "log TRC Item: 'k/', datatype: 7", "log TRC Object k/ present in sysdb"}));
}

class KeyDeathTest : public KeyTest {};

TEST_F(KeyDeathTest, NeedsAContextWhenSomethingIsToBeSaid) {
    const std::string assertion =
        utility::context_assertion("utility", "int sysdb_key_is_defined(yfw_map_ctx, const char *)");
    EXPECT_DEATH(static_cast<void>(sysdb_key_is_defined(nullptr, "Ots0_2_0_2")), assertion);
    platform.answer("sysdb_bind", 1);
    EXPECT_DEATH(static_cast<void>(sysdb_key_is_defined(nullptr, "Ots0_2_0_2")), assertion);
}

} // namespace
