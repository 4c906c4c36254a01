// Settings of a controller on their way to OpenConfig: the port tells which leaf they are.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char list_path[] = "/interface-configurations/interface-configuration";
constexpr kerrno no_entry = 0x00ba5e00;

// What a controller's leaf becomes: one leaf in config, and its twin in state where it has one.
struct Target {
    const char *config;
    const char *state;
};

struct Row {
    const char *conversion;
    Target port_1;
    Target port_2;
    bool follows_selection; // the leaf in config is left out when only state was selected
};

constexpr Target nowhere = {nullptr, nullptr};

const std::vector<Row> rows = {
    {"oc_opt_psm_cfg_th_to_high",
     {"config/primary-switch-threshold", nullptr},
     {"config/secondary-switch-threshold", nullptr},
     false},
    {"oc_opt_psm_cfg_th_hyst_to_high", {"config/primary-switch-hysteresis", nullptr}, nowhere, false},
    {"oc_opt_psm_cfg_rx_attenuation_to_high",
     {"ports/line-primary-in/config/target-attenuation", "ports/line-primary-in/state/target-attenuation"},
     {"ports/line-secondary-in/config/target-attenuation", "ports/line-secondary-in/state/target-attenuation"},
     true},
    {"oc_opt_psm_cfg_tx_attenuation_to_high",
     {"ports/line-primary-out/config/target-attenuation", "ports/line-primary-out/state/target-attenuation"},
     {"ports/line-secondary-out/config/target-attenuation", "ports/line-secondary-out/state/target-attenuation"},
     true},
};

// A controller's name, the key of the module that is made of it, and the port that it is.
struct Controller {
    Text name;
    std::string module;
    int port; // 0: of no interest
};

const std::vector<Controller> &controllers() {
    static const std::vector<Controller> all = {
        {"Ots0/1/0/1", "0/1-PSM-OM", 1},
        {"Ots0/2/0/1", "0/2-PSM-OM", 1},
        {"Ots0/3/0/1", "0/3-PSM-OM", 1},
        {"Ots0/1/0/2", "0/1-PSM-OM", 2},
        {"Ots0/2/0/2", "0/2-PSM-OM", 2},
        {"Ots0/2/0/0", "0/2-PSM-OM", 0},
        {"Ots0/2/0/3", "0/2-PSM-OM", 0},
        {"Ots0/2/0/-1", "0/2-PSM-OM", 0},
        {"Ots0/2/0/11", "0/2-PSM-OM", 0},
        {"Ots0/2/0/12", "0/2-PSM-OM", 0},
        {"Ots0/2/0/", "0/2-PSM-OM", 0},
        {"Ots0/2", "0/2-PSM-OM", 0},
        {"Ots0/2/1/1", "0/2-PSM-OM", 0},
        {"Ots0/7/0/1", "0/7-PSM-OM", 1}, // no look whether there is a module
        {"Ots0/0/0/2", "0/0-PSM-OM", 2},
        {"Ots0/-2147483648/0/1", "0/-2147483648-PSM-O", 1}, // a key has 19 characters
        {"Ots0/x/0/1", "0/-1-PSM-OM", 0},
        {"Ots1/2/0/1", "0/-1-PSM-OM", 0},
        {"Ots0_2_0_1", "0/-1-PSM-OM", 0},
        {"abc", "0/-1-PSM-OM", 0},
        {"", "0/-1-PSM-OM", 0},
        {"%s%n", "0/-1-PSM-OM", 0},
        {Text(), "0/-1-PSM-OM", 0},
        {"Ots0/3/0/2" + repeated(5000, 'x'), "0/3-PSM-OM", 2},
        {repeated(100000, '/'), "0/-1-PSM-OM", 0},
    };
    return all;
}

const Controller secondary = {"Ots0/1/0/2", "0/1-PSM-OM", 2};

const Target &target_of(const Row &row, const Controller &controller) {
    return controller.port == 1 ? row.port_1 : controller.port == 2 ? row.port_2 : nowhere;
}

class OpticsSettings : public HighTest {
protected:
    // Look-up and traces, which come for every port.
    Lines looked_up(const Controller &controller, const std::string &value) {
        platform.node_info["interface-name"] = controller.name;
        return {node_info(list_path, "interface-name"), "@ controller_name: " + controller.name.value_or("(null)"),
                "@ value: " + value, "@ psm_key:  " + controller.module + " "};
    }

    void expect_written(const Row &row, const Controller &controller, const Value &value, std::uint32_t kind,
                        const Selection &selection) {
        SCOPED_TRACE(std::string(row.conversion) + ", " + controller.name.value_or("null").substr(0, 40) + ", \"" +
                     value.given.substr(0, 40) + "\", kind " + std::to_string(kind) + ", mode " +
                     std::to_string(selection.mode) + ", bits " + std::to_string(selection.bits));
        request.set_kind(kind);
        set_selection(selection);
        Lines expected = looked_up(controller, value.written);
        const Target &target = target_of(row, controller);
        kerrno result = KERR_SUCCESS;
        if (target.config != nullptr && !(row.follows_selection && selection.suppresses)) {
            expected.push_back(add(target.config, value.written));
            result = add_result(1);
        }
        if (target.state != nullptr && kind == YFW_KIND_GET) {
            expected.push_back(stitch(controller.module, target.state, value.written));
        }
        expect_run(row.conversion, leaf_with(value.given), result, expected);
        drop_trees();
    }
};

TEST_F(OpticsSettings, AreWrittenByThePort) {
    for (const Row &row : rows) {
        for (const Controller &controller : controllers()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, controller, {"-25", "-2.50"}, kind, nothing_selected);
            }
        }
    }
}

TEST_F(OpticsSettings, ScaleByTen) {
    for (const Row &row : rows) {
        for (const Value &value : tenths()) {
            for (const std::uint32_t kind : {0u, 10u}) {
                expect_written(row, {"Ots0/2/0/1", "0/2-PSM-OM", 1}, value, kind, nothing_selected);
                expect_written(row, secondary, value, kind, nothing_selected);
                expect_written(row, {"Ots0/1/0/0", "0/1-PSM-OM", 0}, value, kind, nothing_selected);
            }
        }
    }
}

// Thresholds come whatever was selected; attenuations stay out of config when only state was.
TEST_F(OpticsSettings, FollowTheSelectionOrNot) {
    for (const Row &row : rows) {
        for (const Selection &selection : selections()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, {"Ots0/2/0/1", "0/2-PSM-OM", 1}, {"35", "3.50"}, kind, selection);
                expect_written(row, secondary, {"35", "3.50"}, kind, selection);
            }
        }
    }
}

TEST_F(OpticsSettings, AnAttenuationOfTheSecondaryPort) {
    platform.node_info["interface-name"] = "Ots0/1/0/2";
    request.set_kind(YFW_KIND_GET);
    expect_run("oc_opt_psm_cfg_rx_attenuation_to_high", leaf_with("35"), add_result(1),
               {"get_node_info(ctx, \"/interface-configurations/interface-configuration\", \"interface-name\")",
                "@ controller_name: Ots0/1/0/2", "@ value: 3.50", "@ psm_key:  0/1-PSM-OM ",
                "add(ctx, dest, \"/aps/aps-modules/aps-module/ports/line-secondary-in/config/target-attenuation\", "
                "ns=openconfig, value=\"3.50\", src=none, result=none, 0, 0)",
                "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"3.50\", "
                "\"/aps/aps-modules/aps-module[name=0/1-PSM-OM]/ports/line-secondary-in/state/target-attenuation\", "
                "\"/aps/aps-modules/aps-module/ports/line-secondary-in/state/target-attenuation\")"});
}

TEST_F(OpticsSettings, TheHysteresisOfTheSecondaryPortIsDropped) {
    expect_run("oc_opt_psm_cfg_th_hyst_to_high", leaf_with("20"), KERR_SUCCESS, looked_up(secondary, "2.00"));
}

TEST_F(OpticsSettings, WithoutAValueAreLookedUpAndTracedOnly) {
    for (const Row &row : rows) {
        for (const Controller &controller : controllers()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                request.set_kind(kind);
                expect_run(row.conversion, leaf_with({}), KERR_SUCCESS, looked_up(controller, ""));
                expect_run(row.conversion, build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), "source").root(),
                           KERR_SUCCESS, looked_up(controller, ""));
                expect_run(row.conversion,
                           build(fake::leaf("leaf", "5").without_flags(YFW_NODE_HAS_VALUE), "source").root(),
                           KERR_SUCCESS, looked_up(controller, ""));
                drop_trees();
            }
        }
    }
}

TEST_F(OpticsSettings, GiveTheLookUpsResultWhenNothingIsAdded) {
    platform.answer("get_node_info", no_entry);
    for (const Row &row : rows) {
        expect_run(row.conversion, leaf_with("-25"), no_entry, looked_up({Text(), "0/-1-PSM-OM", 0}, "-2.50"));
        expect_run(row.conversion, leaf_with({}), no_entry, looked_up({Text(), "0/-1-PSM-OM", 0}, ""));
    }
}

// A twin in state is no add: its result does not count.
TEST_F(OpticsSettings, GiveTheLookUpsResultWhenOnlyTheTwinIsWritten) {
    request.set_kind(YFW_KIND_GET);
    set_selection(state_selected);
    for (const Row &row : {rows[2], rows[3]}) {
        expect_run(row.conversion, leaf_with("35"), KERR_SUCCESS,
                   lines(looked_up(secondary, "3.50"), stitch("0/1-PSM-OM", row.port_2.state, "3.50")));
    }
}

TEST_F(OpticsSettings, DoWithoutTheDatabase) {
    without_client_library([this] {
        for (const Row &row : rows) {
            expect_written(row, secondary, {"35", "3.50"}, YFW_KIND_GET, nothing_selected);
        }
    });
}

} // namespace
