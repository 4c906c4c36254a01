// The history of powers on its way to OpenConfig: texts as the device stores them, blanks included.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char list_path[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
constexpr char bind_path[] = "/oper/perfmgmt/gl/periodic/optics/interface/";
constexpr char secondary_item[] = "Ots0_2_0_2/30sec/optics/1/timeline_rev/0x1";
constexpr char common_item[] = "Ots0_2_0_0/30sec/optics/1/timeline_rev/0x1";
constexpr kerrno no_entry = 0x00ba5e00;

// The record of another port, and the leaf that one of its fields becomes.
struct Record {
    const char *item;
    const char *leaf;
    const char *written;
};

struct Row {
    const char *conversion;
    const char *leaf;
    std::vector<Record> records;
    const char *direction; // of the field
    const char *field;
};

const std::vector<Row> rows = {
    {"oc_opt_psm_state_tx_min_power_to_high",
     "ports/line-primary-out/state/optical-power/min",
     {{secondary_item, "ports/line-secondary-out/state/optical-power/min", "3.00"},
      {common_item, "ports/common-output/state/optical-power/min", "-1.50"}},
     "OPT",
     "Minimum"},
    {"oc_opt_psm_state_tx_avg_power_to_high",
     "ports/line-primary-out/state/optical-power/avg",
     {{secondary_item, "ports/line-secondary-out/state/optical-power/avg", "3.10"},
      {common_item, "ports/common-output/state/optical-power/avg", "-1.25"}},
     "OPT",
     "Average"},
    {"oc_opt_psm_state_tx_max_power_to_high",
     "ports/line-primary-out/state/optical-power/max",
     {{secondary_item, "ports/line-secondary-out/state/optical-power/max", "3.25"},
      {common_item, "ports/common-output/state/optical-power/max", "-1.00"}},
     "OPT",
     "Maximum"},
    {"oc_opt_psm_state_rx_min_power_to_high",
     "ports/line-primary-in/state/optical-power/min",
     {{secondary_item, "ports/line-secondary-in/state/optical-power/min", "-18.30"}},
     "OPR",
     "Minimum"},
    {"oc_opt_psm_state_rx_avg_power_to_high",
     "ports/line-primary-in/state/optical-power/avg",
     {{secondary_item, "ports/line-secondary-in/state/optical-power/avg", "-18.20"}},
     "OPR",
     "Average"},
    {"oc_opt_psm_state_rx_max_power_to_high",
     "ports/line-primary-in/state/optical-power/max",
     {{secondary_item, "ports/line-secondary-in/state/optical-power/max", "-18.10"}},
     "OPR",
     "Maximum"},
};

class History : public HighTest {
protected:
    History() { platform.node_info["name"] = "Ots0/2/0/1"; }

    static Lines looked_up() { return {node_info(list_path, "name")}; }

    // What the history of a good controller of slot 2 gives; `record` is what the records give.
    static Lines written(const Row &row, const std::string &value, const std::function<Text(const char *)> &record) {
        const std::string module = "0/2-PSM-OM";
        Lines all = lines(looked_up(), check_passes("Ots0/2/0/1", "2"), told_stitch(module, row.leaf, value));
        for (const Record &twin : row.records) {
            append(all, database_read(bind_path, twin.item, 7));
            if (const Text text = record(twin.written)) {
                append(all, told_stitch(module, twin.leaf, *text));
            }
        }
        return all;
    }

    static Text as_stored(const char *value) { return value; }

    void expect_records(const Row &row, const std::function<Text(const char *)> &record) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            expect_run(row.conversion, leaf_with("-2.5"), KERR_SUCCESS, written(row, "-2.50", record));
        }
        drop_trees();
    }

    void put_records(const fake::Bag &bag) {
        for (const char *item : {secondary_item, common_item}) {
            platform.items[std::string(bind_path) + item] = fake::bag_item(bag);
        }
    }

    static fake::Bag bag_of(const Row &row, const fake::Token &token) {
        fake::Bag bag;
        bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "pm_optics_paras"),
                      fake::mark_token(BAG_TOKEN_STRUCT_START, row.direction), token, fake::mark_token(BAG_TOKEN_END)};
        return bag;
    }

    void expect_rejected(const Text &name, kerrno result, const Lines &checks) {
        platform.node_info["name"] = name;
        for (const Row &row : rows) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                request.set_kind(kind);
                for (const Text &value : std::vector<Text>{"-2.5", repeated(5000, '1'), Text()}) {
                    expect_run(row.conversion, leaf_with(value), result, lines(looked_up(), checks));
                }
            }
            drop_trees();
        }
    }
};

TEST_F(History, IsWrittenUnscaledForEveryPort) {
    for (const Row &row : rows) {
        for (const Value &value : units()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                SCOPED_TRACE("\"" + value.given.substr(0, 40) + "\", kind " + std::to_string(kind));
                request.set_kind(kind);
                expect_run(row.conversion, leaf_with(value.given), KERR_SUCCESS,
                           written(row, value.written, as_stored));
            }
            drop_trees();
        }
    }
}

TEST_F(History, DoesNotFollowTheSelection) {
    for (const Selection &selection : selections()) {
        set_selection(selection);
        for (const Row &row : rows) {
            expect_records(row, as_stored);
        }
    }
}

TEST_F(History, TheAverageOfTheTransmittedPower) {
    request.set_kind(YFW_KIND_GET);
    expect_run(
        "oc_opt_psm_state_tx_avg_power_to_high", leaf_with(" 2.75"), KERR_SUCCESS,
        lines("get_node_info(ctx, \"/performance-management-history/global/periodic/optics-history/"
              "optics-port-histories/optics-port-history\", \"name\")",
              check_passes("Ots0/2/0/1", "2"), "@ psm_key:  0/2-PSM-OM ",
              "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"2.75\", "
              "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/ports/line-primary-out/state/optical-power/avg\", "
              "\"/aps/aps-modules/aps-module/ports/line-primary-out/state/optical-power/avg\")",
              "sysdb_bind(\"/oper/perfmgmt/gl/periodic/optics/interface/\", 0)",
              "sysdb_item_get(handle, \"Ots0_2_0_2/30sec/optics/1/timeline_rev/0x1\", type 7, 0)",
              "sysdb_unbind(handle)", "@ psm_key:  0/2-PSM-OM ",
              "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"3.10\", "
              "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/ports/line-secondary-out/state/optical-power/avg\", "
              "\"/aps/aps-modules/aps-module/ports/line-secondary-out/state/optical-power/avg\")",
              "sysdb_bind(\"/oper/perfmgmt/gl/periodic/optics/interface/\", 0)",
              "sysdb_item_get(handle, \"Ots0_2_0_0/30sec/optics/1/timeline_rev/0x1\", type 7, 0)",
              "sysdb_unbind(handle)", "@ psm_key:  0/2-PSM-OM ",
              "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"-1.25\", "
              "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/ports/common-output/state/optical-power/avg\", "
              "\"/aps/aps-modules/aps-module/ports/common-output/state/optical-power/avg\")"));
}

// ---- texts of the database ----

TEST_F(History, StoredTextsAreStrippedWhateverTheirLength) {
    for (const Value &value : std::vector<Value>{{"  -18.30  ", "-18.30"},
                                                 {"\t\n\v\f\r-18.3\r\n", "-18.30"},
                                                 {"-18.30", "-18.30"},
                                                 {repeated(150, ' ') + "-18.30" + repeated(20, ' '), "-18.30"},
                                                 {"", "0.00"},
                                                 {" ", "0.00"},
                                                 {repeated(199, ' '), "0.00"},
                                                 {"n/a", "0.00"},
                                                 {"%s%n", "0.00"},
                                                 {"-18.30" + repeated(5000, ' '), "-18.30"},
                                                 {"  -18.30" + repeated(100000, ' '), "-18.30"},
                                                 {repeated(5000, ' '), "0.00"},
                                                 {repeated(194, ' ') + "-18.3", "-18.30"},
                                                 {repeated(5000, ' ') + "-18.3", "0.00"}, // beyond 199 characters
                                                 {repeated(100000, ' '), "0.00"},
                                                 {repeated(5000, 'x'), "0.00"},
                                                 {repeated(100000, 'x'), "0.00"},
                                                 {repeated(5000, '1'), "1111111111111111168"},
                                                 {repeated(100000, '1'), "1111111111111111168"}}) {
        SCOPED_TRACE("\"" + value.given.substr(0, 40) + "\"");
        for (const Row &row : rows) {
            put_records(bag_of(row, fake::text_token(row.field, value.given)));
            expect_records(row, [&](const char *) { return Text(value.written); });
            put_records(bag_of(row, fake::second_text_token(row.field, value.given)));
            expect_records(row, [&](const char *) { return Text(value.written); });
        }
    }
}

TEST_F(History, AFieldOfAnotherTypeIsTaken) {
    for (const Row &row : rows) {
        put_records(bag_of(row, fake::number_token(BAG_TOKEN_INT32, row.field, -7)));
        expect_records(row, [](const char *) { return Text("-7.00"); });
        put_records(bag_of(row, fake::text_token(row.field, std::nullopt)));
        expect_records(row, [](const char *) { return Text("0.00"); });
    }
}

TEST_F(History, ARecordThatIsMissingWritesNothing) {
    platform.items.erase(std::string(bind_path) + secondary_item);
    for (const Row &row : rows) { // the common port's is still there
        const std::string secondary_value = row.records.front().written;
        expect_records(row, [&](const char *value) { return value == secondary_value ? Text() : Text(value); });
    }
    platform.items.erase(std::string(bind_path) + common_item);
    for (const Row &row : rows) {
        expect_records(row, [](const char *) { return Text(); });
    }
}

TEST_F(History, ARecordWithoutTheFieldCountsAsZero) {
    for (const Row &row : rows) {
        put_records(bag_of(row, fake::text_token("Unrelated", "5")));
        expect_records(row, [](const char *) { return Text("0.00"); });
    }
}

TEST_F(History, ARecordThatDoesNotDecodeWritesNothing) {
    std::vector<fake::Bag> broken(3);
    broken[0].header_result = 0x51;
    broken[1].init_result = 0x52;
    broken[2].token_results[0] = 0x53;
    fake::Item empty;
    empty.no_data = true;
    for (const Row &row : rows) {
        for (const fake::Bag &bag : broken) {
            put_records(bag);
            expect_records(row, [](const char *) { return Text(); });
        }
        for (const char *item : {secondary_item, common_item}) {
            platform.items[std::string(bind_path) + item] = empty;
        }
        expect_records(row, [](const char *) { return Text(); });
    }
}

// ---- no value, other controllers ----

TEST_F(History, WithoutAValueNothingIsReadOrWritten) {
    for (const Row &row : rows) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            const Lines expected = lines(looked_up(), check_passes("Ots0/2/0/1", "2"));
            expect_run(row.conversion, leaf_with({}), KERR_SUCCESS, expected);
            expect_run(row.conversion, build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), "source").root(),
                       KERR_SUCCESS, expected);
            expect_run(row.conversion,
                       build(fake::leaf("leaf", "1").without_flags(YFW_NODE_HAS_VALUE), "source").root(), KERR_SUCCESS,
                       expected);
        }
    }
}

// The list callback lets only port 1 come here; any other is skipped without a second look.
TEST_F(History, OfAnyOtherControllerIsSkipped) {
    for (const auto &[name, port] : std::vector<std::pair<std::string, std::string>>{{"Ots0/2/0/2", "2"},
                                                                                     {"Ots0/2/0/0", "0"},
                                                                                     {"Ots0/2/0/3", "3"},
                                                                                     {"Ots0/2", "-1"},
                                                                                     {"Ots0/2/1/1", "-1"},
                                                                                     {"abc", "-1"},
                                                                                     {"", "-1"},
                                                                                     {"%s%n", "-1"},
                                                                                     {repeated(5000, 'x'), "-1"}}) {
        expect_rejected(name, skip, check_refuses_port(name, port));
    }
    expect_rejected("Ots0/4/0/1", skip, check_refuses_slot("Ots0/4/0/1", "4"));
    expect_rejected({}, skip, check_refuses_null());
}

TEST_F(History, OfAModuleThatIsNotInTheInventoryIsSkipped) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag");
    expect_rejected("Ots0/2/0/1", skip, check_finds_no_module("Ots0/2/0/1", "2"));
}

TEST_F(History, IsSkippedWhenTheLookUpFails) {
    platform.answer("get_node_info", no_entry);
    expect_rejected("Ots0/2/0/1", skip, check_refuses_null());
}

TEST_F(History, IsSkippedWithoutTheClientLibrary) {
    without_client_library([this] {
        expect_rejected(
            "Ots0/2/0/1", skip,
            {"check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
             "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM", "access(client library)",
             "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in sysdb inventory, "
             "discard it!"});
    });
}

} // namespace
