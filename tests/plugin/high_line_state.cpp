// Powers, attenuations and the active path of a module on their way to OpenConfig: the answer of the port-1 controller,
// and what the database holds of the other ports.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char list_path[] = "/ots-oper/ots-ports/ots-port";
constexpr char if_oper[] = "/oper/ots/if/";
constexpr char if_config[] = "/cfg/if/act/";
constexpr char secondary_info[] = "Ots0_2_0_2/ots_info";
constexpr char common_info[] = "Ots0_2_0_0/ots_info";
constexpr kerrno no_entry = 0x00ba5e00;

// A record of another port, and the leaf that one of its fields becomes.
struct Record {
    const char *item;
    const char *leaf;
    const char *written;
};

// A configured attenuation of the secondary port: the item, the leaves in config and in state, the value.
struct Configured {
    const char *item;
    const char *config;
    const char *state;
    const char *written;
};

struct Row {
    const char *conversion;
    const char *leaf;
    Value value;
    std::vector<Record> records;
    std::optional<Configured> configured;
    bool knows_port_2; // takes another controller than those of ports 1 and 2 for one to be skipped
};

const Row rx_power = {"oc_opt_psm_state_rx_instant_power_to_high",
                      "ports/line-primary-in/state/optical-power/instant",
                      {"-1234", "-12.34"},
                      {{secondary_info, "ports/line-secondary-in/state/optical-power/instant", "-18.11"}},
                      std::nullopt,
                      false};
const Row tx_power = {"oc_opt_psm_state_tx_instant_power_to_high",
                      "ports/line-primary-out/state/optical-power/instant",
                      {"305", "3.05"},
                      {{secondary_info, "ports/line-secondary-out/state/optical-power/instant", "3.22"},
                       {common_info, "ports/common-output/state/optical-power/instant", "-0.95"}},
                      std::nullopt,
                      false};
const Row rx_attenuation = {"oc_opt_psm_state_rx_attenuation_to_high",
                            "ports/line-primary-in/state/attenuation",
                            {"1250", "12.50"},
                            {{secondary_info, "ports/line-secondary-in/state/attenuation", "3.50"}},
                            Configured{"Ots0_2_0_2/Optics/rx_attenuation",
                                       "ports/line-secondary-in/config/target-attenuation",
                                       "ports/line-secondary-in/state/target-attenuation", "4.70"},
                            true};
const Row tx_attenuation = {"oc_opt_psm_state_tx_attenuation_to_high",
                            "ports/line-primary-out/state/attenuation",
                            {"-7", "-0.07"},
                            {{secondary_info, "ports/line-secondary-out/state/attenuation", "4.25"}},
                            Configured{"Ots0_2_0_2/Optics/tx_attenuation",
                                       "ports/line-secondary-out/config/target-attenuation",
                                       "ports/line-secondary-out/state/target-attenuation", "-0.30"},
                            true};
const Row active_path = {
    "oc_opt_psm_state_active_path_to_high", "state/active-path", {"active", "PRIMARY"}, {}, std::nullopt, true};

const std::vector<Row> &rows() {
    static const std::vector<Row> all = {rx_power, tx_power, rx_attenuation, tx_attenuation, active_path};
    return all;
}

std::vector<Row> scaled_rows() {
    return {rx_power, tx_power, rx_attenuation, tx_attenuation};
}

class LineState : public HighTest {
protected:
    LineState() { set_name("Ots0/2/0/1"); }

    void set_name(const Text &name) { platform.node_info["name"] = name; }

    static Lines looked_up() { return {node_info(list_path, "name")}; }

    // What a good controller of slot 2 gives. `record` is what the records give, or null when they give nothing.
    [[nodiscard]] static Lines written(const Row &row, const std::string &value, std::uint32_t kind,
                                       bool without_config, const std::function<Text(const char *)> &record,
                                       bool configured = true) {
        const std::string module = "0/2-PSM-OM";
        Lines all = lines(looked_up(), check_passes("Ots0/2/0/1", "2"), told_stitch(module, row.leaf, value));
        for (const Record &twin : row.records) {
            append(all, database_read(if_oper, twin.item, 7));
            if (const Text text = record(twin.written)) {
                append(all, told_stitch(module, twin.leaf, *text));
            }
        }
        if (!row.configured) {
            return all;
        }
        append(all, database_read(if_config, row.configured->item, 1));
        if (configured && !without_config) {
            append(all, told_add(module, row.configured->config, row.configured->written));
        }
        if (configured && kind == YFW_KIND_GET) {
            append(all, told_stitch(module, row.configured->state, row.configured->written));
        }
        return all;
    }

    static Text as_stored(const char *value) { return value; }
    static Text nothing(const char *) { return {}; }
    static Text zero(const char *) { return "0.00"; }

    void expect_written(const Row &row, const Value &value, std::uint32_t kind, const Selection &selection) {
        SCOPED_TRACE("\"" + value.given.substr(0, 40) + "\", kind " + std::to_string(kind) + ", mode " +
                     std::to_string(selection.mode) + ", bits " + std::to_string(selection.bits));
        request.set_kind(kind);
        set_selection(selection);
        expect_run(row.conversion, leaf_with(value.given), KERR_SUCCESS,
                   written(row, value.written, kind, selection.suppresses, as_stored));
        drop_trees();
    }

    // With the database as it has been prepared.
    void expect_written_in_all_kinds(const Row &row, const std::function<Text(const char *)> &record, bool configured) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            expect_run(row.conversion, leaf_with(row.value.given), KERR_SUCCESS,
                       written(row, row.value.written, kind, false, record, configured));
        }
    }

    void put_record(const fake::Bag &bag) {
        for (const char *item : {secondary_info, common_info}) {
            platform.items[std::string(if_oper) + item] = fake::bag_item(bag);
        }
    }

    void put_configured(const fake::Item &item) {
        for (const char *name : {"Ots0_2_0_2/Optics/rx_attenuation", "Ots0_2_0_2/Optics/tx_attenuation"}) {
            platform.items[std::string(if_config) + name] = item;
        }
    }

    // A controller that is none of a module's port 1, whatever the kind and the value.
    void expect_rejected(const Text &name, kerrno result, const Row &row, const Lines &checks) {
        set_name(name);
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            for (const Text &value : std::vector<Text>{row.value.given, "abc", repeated(5000, '1'), Text()}) {
                expect_run(row.conversion, leaf_with(value), result, lines(looked_up(), checks));
            }
        }
        drop_trees();
    }
};

TEST_F(LineState, TheFirstPortsValueIsScaledAndTheOthersComeFromTheDatabase) {
    for (const Row &row : scaled_rows()) {
        for (const Value &value : hundredths()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, value, kind, nothing_selected);
            }
        }
    }
}

TEST_F(LineState, OnlyTheExactWordIsThePrimaryPath) {
    for (const Value &value : std::vector<Value>{{"active", "PRIMARY"},
                                                 {"ACTIVE", "SECONDARY"},
                                                 {"Active", "SECONDARY"},
                                                 {"active ", "SECONDARY"},
                                                 {" active", "SECONDARY"},
                                                 {"activeactive", "SECONDARY"},
                                                 {"standby", "SECONDARY"},
                                                 {"inactive", "SECONDARY"},
                                                 {"", "SECONDARY"},
                                                 {"%s%n", "SECONDARY"},
                                                 {"-25", "SECONDARY"},
                                                 {"active" + repeated(5000, 'x'), "SECONDARY"},
                                                 {repeated(100000, 'x'), "SECONDARY"}}) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            expect_written(active_path, value, kind, nothing_selected);
            expect_written(active_path, value, kind, state_selected);
        }
    }
}

// Only the configured attenuation goes by the selection; its twin in state and all others do not.
TEST_F(LineState, TheConfiguredAttenuationFollowsTheSelection) {
    for (const Row &row : rows()) {
        for (const Selection &selection : selections()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, row.value, kind, selection);
            }
        }
    }
}

TEST_F(LineState, APowerOfThePrimaryPort) {
    platform.items.erase("/oper/ots/if/Ots0_2_0_2/ots_info");
    expect_run(
        "oc_opt_psm_state_rx_instant_power_to_high", leaf_with("-1234"), KERR_SUCCESS,
        lines("get_node_info(ctx, \"/ots-oper/ots-ports/ots-port\", \"name\")", check_passes("Ots0/2/0/1", "2"),
              "@ psm_key:  0/2-PSM-OM ",
              "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"-12.34\", "
              "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/ports/line-primary-in/state/optical-power/instant\", "
              "\"/aps/aps-modules/aps-module/ports/line-primary-in/state/optical-power/instant\")",
              "sysdb_bind(\"/oper/ots/if/\", 0)", "sysdb_item_get(handle, \"Ots0_2_0_2/ots_info\", type 7, 0)",
              "sysdb_unbind(handle)"));
}

// The keys in the database follow the slot of the controller.
TEST_F(LineState, OtherSlotsHaveTheirOwnRecords) {
    struct Slot {
        const char *name;
        const char *slot;
        const char *module;
        const char *secondary;
        const char *common;
    };
    for (const Slot &slot : {Slot{"Ots0/1/0/1", "1", "0/1-PSM-OM", "Ots0_1_0_2/ots_info", "Ots0_1_0_0/ots_info"},
                             Slot{"Ots0/3/0/1", "3", "0/3-PSM-OM", "Ots0_3_0_2/ots_info", "Ots0_3_0_0/ots_info"},
                             Slot{"Ots0/0/0/1", "0", "0/0-PSM-OM", "Ots0_0_0_2/ots_info", "Ots0_0_0_0/ots_info"}}) {
        set_name(slot.name);
        expect_run(tx_power.conversion, leaf_with("305"), KERR_SUCCESS,
                   lines(looked_up(), check_passes(slot.name, slot.slot),
                         told_stitch(slot.module, tx_power.leaf, "3.05"), database_read(if_oper, slot.secondary, 7),
                         database_read(if_oper, slot.common, 7)));
        expect_run(rx_attenuation.conversion, leaf_with("100"), KERR_SUCCESS,
                   lines(looked_up(), check_passes(slot.name, slot.slot),
                         told_stitch(slot.module, rx_attenuation.leaf, "1.00"),
                         database_read(if_oper, slot.secondary, 7),
                         database_read(if_config, std::string("Ots0_") + slot.slot + "_0_2/Optics/rx_attenuation", 1)));
    }
}

// ---- what the database does not hold ----

TEST_F(LineState, ARecordThatIsMissingWritesNothing) {
    for (const char *item : {secondary_info, common_info}) {
        platform.items.erase(std::string(if_oper) + item);
    }
    for (const Row &row : rows()) {
        expect_written_in_all_kinds(row, nothing, true);
    }
}

TEST_F(LineState, ARecordWithoutTheFieldCountsAsZero) {
    fake::Bag bag;
    bag.tokens = {fake::number_token(BAG_TOKEN_INT32, "Unrelated", 5), fake::mark_token(BAG_TOKEN_END)};
    put_record(bag);
    for (const Row &row : rows()) {
        expect_written_in_all_kinds(row, zero, true);
    }
}

TEST_F(LineState, ARecordThatDoesNotDecodeWritesNothing) {
    std::vector<fake::Bag> broken(3);
    broken[0].header_result = 0x51;
    broken[1].init_result = 0x52;
    broken[2].token_results[0] = 0x53;
    for (const fake::Bag &bag : broken) {
        put_record(bag);
        for (const Row &row : rows()) {
            expect_written_in_all_kinds(row, nothing, true);
        }
    }
}

TEST_F(LineState, ARecordWithoutDataWritesNothing) {
    fake::Item empty;
    empty.no_data = true;
    for (const char *item : {secondary_info, common_info}) {
        platform.items[std::string(if_oper) + item] = empty;
    }
    put_configured(empty);
    for (const Row &row : rows()) {
        expect_written_in_all_kinds(row, nothing, false);
    }
}

TEST_F(LineState, AConfiguredAttenuationThatIsMissingWritesNothing) {
    fake::Item missing;
    missing.result = 0x0a0b0c00;
    fake::Item half = missing;
    half.bytes = "half";
    half.data_on_failure = true;
    fake::Item shorter;
    shorter.bytes = "abc";
    for (const fake::Item &item : {missing, half, shorter}) {
        put_configured(item);
        for (const Row &row : rows()) {
            expect_written_in_all_kinds(row, as_stored, false);
        }
    }
}

// The second bind of a run is the first for another port than port 1.
TEST_F(LineState, ABindThatFailsTouchesOnlyItsOwnValue) {
    platform.answer("sysdb_bind", 0x61, 2);
    const Row &row = rx_attenuation;
    expect_run(row.conversion, leaf_with("1250"), KERR_SUCCESS,
               lines(looked_up(), check_passes("Ots0/2/0/1", "2"), told_stitch("0/2-PSM-OM", row.leaf, "12.50"),
                     "sysdb_bind(\"/oper/ots/if/\", 0)", database_read(if_config, row.configured->item, 1),
                     told_add("0/2-PSM-OM", row.configured->config, "4.70")));
    expect_run(tx_power.conversion, leaf_with("305"), KERR_SUCCESS,
               lines(looked_up(), check_passes("Ots0/2/0/1", "2"), told_stitch("0/2-PSM-OM", tx_power.leaf, "3.05"),
                     "sysdb_bind(\"/oper/ots/if/\", 0)", database_read(if_oper, common_info, 7),
                     told_stitch("0/2-PSM-OM", tx_power.records[1].leaf, "-0.95")));
}

// A field is taken as it is stored, whatever its type; a text may be of any length.
TEST_F(LineState, AFieldOfAnotherTypeIsTaken) {
    for (const Value &value : hundredths()) {
        if (value.given.empty()) {
            continue;
        }
        SCOPED_TRACE(value.given.substr(0, 40));
        fake::Bag bag;
        bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "Ots_edm_info"),
                      fake::text_token("RxVoaAttenuation", value.given), fake::mark_token(BAG_TOKEN_END)};
        put_record(bag);
        expect_written_in_all_kinds(
            rx_attenuation, [&](const char *) { return Text(value.written); }, true);
    }
}

TEST_F(LineState, TheWidestNumbersAreWritten) {
    fake::Bag bag;
    bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "Ots_edm_info"),
                  fake::number_token(BAG_TOKEN_INT32, "RxVoaAttenuation", INT32_MIN),
                  fake::number_token(BAG_TOKEN_INT32, "TxVoaAttenuation", INT32_MAX),
                  fake::mark_token(BAG_TOKEN_STRUCT_START, "ots_edm_info"),
                  fake::mark_token(BAG_TOKEN_ARRAY_START, "LaneData"),
                  fake::number_token(BAG_TOKEN_INT32, "ReceivePower", INT32_MIN),
                  fake::number_token(BAG_TOKEN_INT32, "TransmitPower", INT32_MAX),
                  fake::mark_token(BAG_TOKEN_END)};
    put_record(bag);
    expect_written_in_all_kinds(
        rx_power, [](const char *) { return Text("-21474836.48"); }, true);
    expect_written_in_all_kinds(
        tx_power, [](const char *) { return Text("21474836.47"); }, true);
    put_configured(fake::integer_item(INT32_MIN));
    Row row = rx_attenuation;
    row.configured->written = "-214748364.80";
    expect_written_in_all_kinds(
        row, [](const char *) { return Text("-21474836.48"); }, true);
    put_configured(fake::integer_item(INT32_MAX));
    row = tx_attenuation;
    row.configured->written = "214748364.70";
    expect_written_in_all_kinds(
        row, [](const char *) { return Text("21474836.47"); }, true);
}

// ---- leaves without a value ----

TEST_F(LineState, WithoutAValueNothingIsReadOrWritten) {
    for (const Row &row : rows()) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            const Lines expected = lines(looked_up(), check_passes("Ots0/2/0/1", "2"));
            expect_run(row.conversion, leaf_with({}), KERR_SUCCESS, expected);
            expect_run(row.conversion, build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), "source").root(),
                       KERR_SUCCESS, expected);
            expect_run(row.conversion,
                       build(fake::leaf("leaf", "active").without_flags(YFW_NODE_HAS_VALUE), "source").root(),
                       KERR_SUCCESS, expected);
        }
    }
}

// ---- other controllers ----

TEST_F(LineState, ASecondPortWritesNothing) {
    for (const Row &row : rows()) {
        Lines checks = check_refuses_port("Ots0/2/0/2", "2");
        if (row.knows_port_2) {
            append(checks, check_passes("Ots0/2/0/2", "2"));
        }
        expect_rejected("Ots0/2/0/2", KERR_SUCCESS, row, checks);
    }
}

struct OtherName {
    std::string name;
    std::string port;
};

TEST_F(LineState, AnotherPortIsSkippedOrPassedOver) {
    for (const OtherName &other : std::vector<OtherName>{{"Ots0/2/0/0", "0"},
                                                         {"Ots0/2/0/3", "3"},
                                                         {"Ots0/2/0/-1", "-1"},
                                                         {"Ots0/2", "-1"},
                                                         {"Ots0/2/1/1", "-1"},
                                                         {"Optics0/2/0/1", "-1"},
                                                         {"abc", "-1"},
                                                         {"", "-1"},
                                                         {"%s%n", "-1"},
                                                         {repeated(5000, 'x'), "-1"}}) {
        for (const Row &row : rows()) {
            Lines checks = check_refuses_port(other.name, other.port);
            if (row.knows_port_2) {
                append(checks, check_refuses_port(other.name, other.port));
            }
            expect_rejected(other.name, row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
        }
    }
}

TEST_F(LineState, AnotherSlotIsSkippedOrPassedOver) {
    for (const Row &row : rows()) {
        Lines checks = check_refuses_slot("Ots0/4/0/1", "4");
        if (row.knows_port_2) {
            append(checks, check_refuses_port("Ots0/4/0/1", "1"));
        }
        expect_rejected("Ots0/4/0/1", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);

        checks = check_refuses_port("Ots0/4/0/2", "2");
        if (row.knows_port_2) {
            append(checks, check_refuses_slot("Ots0/4/0/2", "4"));
        }
        expect_rejected("Ots0/4/0/2", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
    }
}

TEST_F(LineState, AModuleThatIsNotInTheInventoryIsSkippedOrPassedOver) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag");
    for (const Row &row : rows()) {
        Lines checks = check_finds_no_module("Ots0/2/0/1", "2");
        if (row.knows_port_2) {
            append(checks, check_refuses_port("Ots0/2/0/1", "1"));
        }
        expect_rejected("Ots0/2/0/1", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);

        checks = check_refuses_port("Ots0/2/0/2", "2");
        if (row.knows_port_2) {
            append(checks, check_finds_no_module("Ots0/2/0/2", "2"));
        }
        expect_rejected("Ots0/2/0/2", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
    }
}

TEST_F(LineState, AnEntryWithoutANameIsSkippedOrPassedOver) {
    for (const Row &row : rows()) {
        Lines checks = check_refuses_null();
        if (row.knows_port_2) {
            append(checks, check_refuses_null());
        }
        expect_rejected({}, row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
    }
}

TEST_F(LineState, ALookUpThatFailsIsTheResultUnlessTheEntryIsSkipped) {
    platform.answer("get_node_info", no_entry);
    for (const Row &row : rows()) {
        Lines checks = check_refuses_null();
        if (row.knows_port_2) {
            append(checks, check_refuses_null());
        }
        expect_rejected({}, row.knows_port_2 ? skip : no_entry, row, checks);
    }
}

// A name goes on behind what was scanned, and the module is that of the numbers.
TEST_F(LineState, ALongNameOfAModuleIsGood) {
    const std::string name = "Ots0/2/0/1" + repeated(5000, 'x');
    set_name(name);
    expect_run(active_path.conversion, leaf_with("active"), KERR_SUCCESS,
               lines(looked_up(), check_passes(name, "2"), told_stitch("0/2-PSM-OM", "state/active-path", "PRIMARY")));
}

TEST_F(LineState, AnInventoryNameMayBeOfAnyLength) {
    fake::Bag bag;
    bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                  fake::text_token("Name", repeated(100000, 'n')), fake::mark_token(BAG_TOKEN_END)};
    platform.items["/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag"] = fake::bag_item(bag);
    EXPECT_EQ(run(active_path.conversion, leaf_with("active")).result, KERR_SUCCESS);
    EXPECT_EQ(platform.calls(fake::Output), lines(looked_up(), stitch("0/2-PSM-OM", "state/active-path", "PRIMARY")));
}

TEST_F(LineState, WithoutTheClientLibraryThereIsNoModule) {
    without_client_library([this] {
        const std::string look = "access(client library)";
        for (const Row &row : rows()) {
            Lines checks = {
                "check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
                "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM", look,
                "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in sysdb "
                "inventory, discard it!"};
            if (row.knows_port_2) {
                append(checks, check_refuses_port("Ots0/2/0/1", "1"));
            }
            expect_rejected("Ots0/2/0/1", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
        }
    });
}

TEST_F(LineState, WithoutADatabaseHandleThereIsNoModule) {
    platform.bind_gives_handle = false;
    for (const Row &row : rows()) {
        Lines checks = {"check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
                        "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM",
                        "sysdb_bind(\"/oper/inventory/gl/entity/\", 0)",
                        "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in sysdb "
                        "inventory, discard it!"};
        if (row.knows_port_2) {
            append(checks, check_refuses_port("Ots0/2/0/1", "1"));
        }
        expect_rejected("Ots0/2/0/1", row.knows_port_2 ? skip : KERR_SUCCESS, row, checks);
    }
}

} // namespace
