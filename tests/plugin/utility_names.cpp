// Controller names and module keys, and the check that a controller belongs to a module in place.
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::bag_item;
using fake::text_token;
using utility::bag_of;
using utility::Buffer;
using utility::call;
using utility::error;
using utility::Lines;
using utility::lines_of;
using utility::repeated;
using utility::Steps;
using utility::trace;

TEST(ControllerList, HoldsEveryControllerSlotBySlotAndEndsWithNull) {
    const std::vector<std::string> expected = {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1",
                                               "Ots0/2/0/2", "Ots0/3/0/1", "Ots0/3/0/2"};
    std::vector<std::string> listed;
    for (const char *const *entry = controller_psm_ots_list; *entry != nullptr; ++entry) {
        listed.emplace_back(*entry);
    }
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(sizeof controller_psm_ots_list, 7 * sizeof(const char *));
}

struct Name {
    std::string text;
    std::string result;
    int length;
};

TEST(PsmKey, CarriesTheSlotOfTheController) {
    for (const Name &name : std::vector<Name>{
             {"Ots0/1/0/1", "0/1-PSM-OM", 10},
             {"Ots0/2/0/2", "0/2-PSM-OM", 10},
             {"Ots0/12/0/7", "0/12-PSM-OM", 11},
             {"Ots0/3", "0/3-PSM-OM", 10}, // the port does not matter
             {"Ots0/3/0/2/and/more", "0/3-PSM-OM", 10},
             {"Ots0/-4/0/2", "0/-4-PSM-OM", 11},
             {"abc", "0/-1-PSM-OM", 11},
             {"", "0/-1-PSM-OM", 11},
             {"O", "0/-1-PSM-OM", 11},
             {"Ots1/2/0/1", "0/-1-PSM-OM", 11},
             {"Ots0_2_0_1", "0/-1-PSM-OM", 11},
             {"0/2-PSM-OM", "0/-1-PSM-OM", 11},
             {"Ots0/2147483647/0/1", "0/2147483647-PSM-OM", 19},
             {"Ots0/-2147483648/0/1", "0/-2147483648-PSM-O", 20}, // 19 characters and the terminator
             {"Ots0/2/0/1" + repeated(100000, 'x'), "0/2-PSM-OM", 10},
             {repeated(100000, 'x'), "0/-1-PSM-OM", 11},
         }) {
        SCOPED_TRACE(name.text.substr(0, 40));
        Buffer key(20);
        EXPECT_EQ(ots_ctrl_key_to_psm_key(name.text.c_str(), key.data()), name.length);
        EXPECT_EQ(key.text(), name.result);
    }
}

struct DatabaseKey {
    std::string psm_key;
    std::string format;
    std::string result;
    int length;
};

TEST(DatabaseKey, CarriesTheSlotOfTheModule) {
    for (const DatabaseKey &expected : std::vector<DatabaseKey>{
             {"0/2-PSM-OM", "Ots0_%d_0_2", "Ots0_2_0_2", 10},
             {"0/2-PSM-OM", "Ots0_%d_0_0", "Ots0_2_0_0", 10},
             {"0/3", "Ots0_%d_0_2", "Ots0_3_0_2", 10},
             {"0/1-PSM-OM and more", "Ots0_%d_0_2", "Ots0_1_0_2", 10},
             {"PSM-1", "Ots0_%d_0_2", "Ots0_-1_0_2", 11},
             {"", "Ots0_%d_0_0", "Ots0_-1_0_0", 11},
             {"0", "Ots0_%d_0_0", "Ots0_-1_0_0", 11},
             {"1/2-PSM-OM", "Ots0_%d_0_0", "Ots0_-1_0_0", 11},
             {"0/-2147483648-PSM-OM", "Ots0_%d_0_2", "Ots0_-2147483648_0_", 20}, // 19 characters and the terminator
             {"0/2147483647-PSM-OM", "Ots0_%d_0_2", "Ots0_2147483647_0_2", 19},
             {"0/2-PSM-OM", "the slot is number %d", "the slot is number ", 20},
             {"0/2" + repeated(100000, 'x'), "Ots0_%d_0_2", "Ots0_2_0_2", 10},
             {repeated(100000, 'x'), "Ots0_%d_0_2", "Ots0_-1_0_2", 11},
         }) {
        SCOPED_TRACE(expected.psm_key.substr(0, 40) + " in " + expected.format);
        Buffer key(20);
        EXPECT_EQ(psm_key_to_sysdb_key(expected.psm_key.c_str(), expected.format.c_str(), key.data()), expected.length);
        EXPECT_EQ(key.text(), expected.result);
    }
}

// ---- the check of a controller ----

constexpr char by_port[] = "check_controller_name_ots_is_good_by_port";

class ControllerTest : public utility::UtilityTest {
protected:
    // Puts a module into the inventory: `item_key` is its key as the database writes it.
    void put_in_inventory(const std::string &item_key, const std::string &name) {
        platform.items["/oper/inventory/gl/entity/" + item_key + "/attrib/inv_basic_bag"] =
            bag_item(bag_of({fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                             text_token("Name", name), fake::mark_token(BAG_TOKEN_END)}));
    }

    // What a look into the inventory does when the module is there.
    static Steps inventory_read(const std::string &psm_key, const std::string &item_key) {
        const std::string item = item_key + "/attrib/inv_basic_bag";
        return {trace("sysdb_get_psm_name_from_inventory", "psm_name_key " + psm_key),
                trace("sysdb_get_data", "path " + item),
                call("sysdb_bind(\"/oper/inventory/gl/entity/\", 0)"),
                call("sysdb_item_get(handle 1, \"" + item + "\", type 7, 0)"),
                trace("sysdb_get_data", "sysdb_unbind"),
                call("sysdb_unbind(handle 1)"),
                trace("sysdb_get_data", "return"),
                trace("get_value_in_bag", "Start"),
                call("bag_header_info(bag \"record\")"),
                trace("get_value_in_bag", "[bag (len 3)] \t (record v1.0)"),
                call("bag_init(bag \"record\", 3)"),
                call("bag_token(#1)"),
                call("bag_free_token(#1)"),
                call("bag_token(#2)"),
                call("bag_free_token(#2)"),
                trace("get_value_in_bag", "bag_generic_destroy"),
                call("bag_destroy()"),
                call("free(item)")};
    }
};

TEST_F(ControllerTest, AGoodControllerIsLookedUpInTheInventory) {
    put_in_inventory("0%2f3-PSM-OM", "0/3-PSM-OM");
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/3/0/2", key.data(), 2), 1);
    EXPECT_EQ(key.text(), "0/3-PSM-OM");
    EXPECT_EQ(happened(),
              lines_of(Steps{trace(by_port, "controller_name = Ots0/3/0/2"), trace(by_port, "psm_name = 0/3-PSM-OM")} +
                       inventory_read("0/3-PSM-OM", "0%2f3-PSM-OM") +
                       Steps{trace(by_port, "psm_name = 0/3-PSM-OM"), trace(by_port, "sys_psm_name = 0/3-PSM-OM")}));
    EXPECT_EQ(platform.count("error_path"), 0u);
}

TEST_F(ControllerTest, TheInventoryNameIsNotComparedWithTheKey) {
    put_in_inventory("0%2f1-PSM-OM", "something else");
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/1/0/1", key.data(), 1), 1);
    EXPECT_EQ(key.text(), "0/1-PSM-OM");
    EXPECT_EQ(messages().back(), "log TRC sys_psm_name = something else");
}

TEST_F(ControllerTest, AnInventoryEntryWithoutANameIsEnough) {
    platform.items["/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag"] =
        bag_item(bag_of({fake::mark_token(BAG_TOKEN_END)}));
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/1/0/1", key.data(), 1), 1);
    EXPECT_EQ(messages().back(), "log TRC sys_psm_name = ");
}

TEST_F(ControllerTest, WithoutAPortTheExpectedOneIsOne) {
    put_in_inventory("0%2f2-PSM-OM", "0/2-PSM-OM");
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), "Ots0/2/0/1", key.data()), 1);
    EXPECT_EQ(key.text(), "0/2-PSM-OM");
    EXPECT_EQ(happened(),
              lines_of(Steps{trace(by_port, "controller_name = Ots0/2/0/1"), trace(by_port, "psm_name = 0/2-PSM-OM")} +
                       inventory_read("0/2-PSM-OM", "0%2f2-PSM-OM") +
                       Steps{trace(by_port, "psm_name = 0/2-PSM-OM"), trace(by_port, "sys_psm_name = 0/2-PSM-OM")}));
}

TEST_F(ControllerTest, WithoutAPortPortTwoIsRefused) {
    put_in_inventory("0%2f3-PSM-OM", "0/3-PSM-OM");
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), "Ots0/3/0/2", key.data()), 0);
    EXPECT_TRUE(key.untouched());
    EXPECT_EQ(happened(),
              lines_of({trace(by_port, "controller_name = Ots0/3/0/2"),
                        error(by_port, "Invalid controller_name [Ots0/3/0/2] and port id [2], discard it!")}));
}

struct Refusal {
    const char *name;
    int port;
    std::string message;
};

TEST_F(ControllerTest, AnotherPortOrSlotIsRefusedWithItsNumber) {
    for (const Refusal &refusal : std::vector<Refusal>{
             {"Ots0/3/0/2", 1, "Invalid controller_name [Ots0/3/0/2] and port id [2], discard it!"},
             {"Ots0/3/0/1", 2, "Invalid controller_name [Ots0/3/0/1] and port id [1], discard it!"},
             {"Ots0/4/0/1", 1, "Invalid controller_name [Ots0/4/0/1] and slot id [4], discard it!"},
             {"Ots0/-1/0/1", 1, "Invalid controller_name [Ots0/-1/0/1] and slot id [-1], discard it!"},
             {"Ots0/-2147483648/0/1", 1,
              "Invalid controller_name [Ots0/-2147483648/0/1] and slot id [-2147483648], discard it!"},
             // The port comes first.
             {"Ots0/4/0/2", 1, "Invalid controller_name [Ots0/4/0/2] and port id [2], discard it!"},
             {"abc", 1, "Invalid controller_name [abc] and port id [-1], discard it!"},
             {"", 2, "Invalid controller_name [] and port id [-1], discard it!"},
             {"Ots0/2", 1, "Invalid controller_name [Ots0/2] and port id [-1], discard it!"},
             // Nothing scanned: the port is the expected one, the slot is not.
             {"abc", -1, "Invalid controller_name [abc] and slot id [-1], discard it!"},
             {"%s%n%2f", 1, "Invalid controller_name [%s%n%2f] and port id [-1], discard it!"},
         }) {
        SCOPED_TRACE(refusal.message);
        platform.forget();
        Buffer key(20);
        EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), refusal.name, key.data(), refusal.port), 0);
        EXPECT_TRUE(key.untouched());
        EXPECT_EQ(platform.calls(fake::Log | fake::Database | fake::Bags | fake::Walk),
                  (Lines{std::string("log TRC controller_name = ") + refusal.name, "log ERR " + refusal.message}));
    }
}

TEST_F(ControllerTest, SlotZeroDependsOnTheInventoryAlone) {
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/0/0/1", key.data(), 1), 0);
    EXPECT_EQ(key.text(), "0/0-PSM-OM");
    EXPECT_EQ(messages().back(), "log ERR Psm_name [0/0-PSM-OM] not present in sysdb inventory, discard it!");

    put_in_inventory("0%2f0-PSM-OM", "0/0-PSM-OM");
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/0/0/1", key.data(), 1), 1);
}

TEST_F(ControllerTest, AModuleThatIsNotInTheInventoryIsRefused) {
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/3/0/2", key.data(), 2), 0);
    EXPECT_EQ(key.text(), "0/3-PSM-OM");
    const std::string item = "0%2f3-PSM-OM/attrib/inv_basic_bag";
    EXPECT_EQ(
        happened(),
        lines_of({trace(by_port, "controller_name = Ots0/3/0/2"), trace(by_port, "psm_name = 0/3-PSM-OM"),
                  trace("sysdb_get_psm_name_from_inventory", "psm_name_key 0/3-PSM-OM"),
                  trace("sysdb_get_data", "path " + item), call("sysdb_bind(\"/oper/inventory/gl/entity/\", 0)"),
                  call("sysdb_item_get(handle 1, \"" + item + "\", type 7, 0)"),
                  trace("sysdb_get_data", "sysdb_item_get failed: error 0x0a0b0c00"),
                  trace("sysdb_get_data", "sysdb_unbind"), call("sysdb_unbind(handle 1)"),
                  trace("sysdb_get_data", "return"), trace("sysdb_get_psm_name_from_inventory", "rc != KERR_SUCCESS"),
                  error(by_port, "Psm_name [0/3-PSM-OM] not present in sysdb inventory, discard it!")}));
    EXPECT_EQ(platform.count("error_path"), 0u);
}

TEST_F(ControllerTest, AnInventoryThatCannotBeReadRefusesToo) {
    const std::string item = "/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag";
    Buffer key(20);

    platform.bind_gives_handle = false; // no database behind the path
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/1/0/1", key.data(), 1), 0);
    EXPECT_EQ(messages().back(), "log ERR Psm_name [0/1-PSM-OM] not present in sysdb inventory, discard it!");
    platform.bind_gives_handle = true;

    fake::Bag broken = bag_of({});
    broken.header_result = 5;
    platform.items[item] = bag_item(broken);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/1/0/1", key.data(), 1), 0);
    EXPECT_EQ(messages().back(), "log ERR Psm_name [0/1-PSM-OM] not present in sysdb inventory, discard it!");

    platform.items[item] = bag_item(bag_of({})); // a bag without an end
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/1/0/1", key.data(), 1), 0);
    EXPECT_EQ(messages().back(), "log ERR Psm_name [0/1-PSM-OM] not present in sysdb inventory, discard it!");
}

TEST_F(ControllerTest, NoNameIsAnErrorOfItsOwn) {
    Buffer key(20);
    EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), nullptr, key.data(), 1), 0);
    EXPECT_TRUE(key.untouched());
    EXPECT_EQ(happened(), lines_of({error(by_port, "controller_name is NULL !")}));

    platform.forget();
    EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), nullptr, key.data()), 0);
    EXPECT_EQ(messages(), (Lines{"log ERR controller_name is NULL !"}));
    EXPECT_EQ(platform.count("error_path"), 0u);
}

// The device's texts may have any length; the room for the inventory name is 200 bytes.
TEST_F(ControllerTest, AnInventoryNameOfAnyLengthStaysWithinItsBuffer) {
    for (const std::size_t length : {0u, 1u, 198u, 199u, 200u, 201u, 4096u, 100000u}) {
        SCOPED_TRACE(length);
        put_in_inventory("0%2f2-PSM-OM", repeated(length, 'n'));
        Buffer key(20);
        EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), "Ots0/2/0/1", key.data(), 1), 1);
        EXPECT_EQ(key.text(), "0/2-PSM-OM");
        EXPECT_EQ(messages().back(), "log TRC sys_psm_name = " + repeated(std::min<std::size_t>(length, 199), 'n'));
    }
}

TEST_F(ControllerTest, AControllerNameOfAnyLengthIsTaken) {
    put_in_inventory("0%2f2-PSM-OM", "0/2-PSM-OM");
    for (const std::size_t length : {200u, 250u, 100000u}) {
        const std::string good = "Ots0/2/0/1/" + repeated(length, 'c');
        Buffer key(20);
        EXPECT_EQ(check_controller_name_ots_is_good_by_port(request.ctx(), good.c_str(), key.data(), 1), 1);
        EXPECT_EQ(
            check_controller_name_ots_is_good_by_port(request.ctx(), repeated(length, 'c').c_str(), key.data(), 1), 0);
        EXPECT_EQ(messages().back(),
                  "log ERR Invalid controller_name [" + repeated(length, 'c') + "] and port id [-1], discard it!");
    }
}

class ControllerDeathTest : public ControllerTest {};

TEST_F(ControllerDeathTest, NeedsAContext) {
    const std::string assertion =
        utility::context_assertion("utility", "int check_controller_name_ots_is_good_by_port(yfw_map_ctx, const char "
                                              "*, char *, int)");
    Buffer key(20);
    EXPECT_DEATH(static_cast<void>(check_controller_name_ots_is_good_by_port(nullptr, "Ots0/1/0/1", key.data(), 1)),
                 assertion);
    EXPECT_DEATH(static_cast<void>(check_controller_name_ots_is_good_by_port(nullptr, nullptr, key.data(), 1)),
                 assertion);
    EXPECT_DEATH(static_cast<void>(check_controller_name_ots_is_good(nullptr, "abc", key.data())), assertion);
}

} // namespace
