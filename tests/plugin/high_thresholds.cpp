// Thresholds and the name of a module in state: the first by the port of the controller, without a look whether there
// is a module; the second from the key of the list that is walked.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char list_path[] = "/ots-oper/ots-ports/ots-port";
constexpr kerrno no_entry = 0x00ba5e00;

// ---- thresholds ----

struct Row {
    const char *conversion;
    const char *port_1;
    const char *port_2; // null: dropped
};

const std::vector<Row> rows = {
    {"oc_opt_psm_state_th_to_high", "state/primary-switch-threshold", "state/secondary-switch-threshold"},
    {"oc_opt_psm_state_th_hyst_to_high", "state/primary-switch-hysteresis", nullptr},
};

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
        {"Ots0/2/0/2", "0/2-PSM-OM", 2},
        {"Ots0/3/0/2", "0/3-PSM-OM", 2},
        {"Ots0/2/0/0", "0/2-PSM-OM", 0},
        {"Ots0/2/0/3", "0/2-PSM-OM", 0},
        {"Ots0/2/0/-1", "0/2-PSM-OM", 0},
        {"Ots0/2", "0/2-PSM-OM", 0},
        {"Ots0/2/1/1", "0/2-PSM-OM", 0},
        {"Ots0/4/0/1", "0/4-PSM-OM", 1}, // no look whether there is a module
        {"Ots0/-2147483648/0/2", "0/-2147483648-PSM-O", 2},
        {"Ots0_2_0_1", "0/-1-PSM-OM", 0},
        {"abc", "0/-1-PSM-OM", 0},
        {"", "0/-1-PSM-OM", 0},
        {"%s%n", "0/-1-PSM-OM", 0},
        {Text(), "0/-1-PSM-OM", 0},
        {"Ots0/2/0/1" + repeated(5000, 'x'), "0/2-PSM-OM", 1},
        {repeated(100000, '/'), "0/-1-PSM-OM", 0},
    };
    return all;
}

const Controller primary = {"Ots0/2/0/1", "0/2-PSM-OM", 1};
const Controller secondary = {"Ots0/2/0/2", "0/2-PSM-OM", 2};

fake::Node request_for(const std::string &name) {
    return fake::container(
        "aps", {fake::container("aps-modules", {fake::container("aps-module", {fake::leaf("name", name)})})});
}

class Thresholds : public HighTest {
protected:
    Lines looked_up(const Controller &controller, const std::string &requested = "") {
        platform.node_info["name"] = controller.name;
        return {node_info(list_path, "name"), "@ controller_name: " + controller.name.value_or("(null)"),
                "@ key: " + requested};
    }

    void expect_written(const Row &row, const Controller &controller, const Value &value, std::uint32_t kind,
                        const std::string &requested = "") {
        SCOPED_TRACE(controller.name.value_or("null").substr(0, 40) + ", \"" + value.given.substr(0, 40) + "\", kind " +
                     std::to_string(kind));
        request.set_kind(kind);
        Lines expected = looked_up(controller, requested);
        const char *const leaf = controller.port == 1 ? row.port_1 : controller.port == 2 ? row.port_2 : nullptr;
        if (leaf != nullptr) {
            append(expected, told_stitch(controller.module, leaf, value.written));
        }
        expect_run(row.conversion, leaf_with(value.given), KERR_SUCCESS, expected);
        drop_trees();
    }
};

TEST_F(Thresholds, AreWrittenByThePort) {
    for (const Row &row : rows) {
        for (const Controller &controller : controllers()) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                expect_written(row, controller, {"-305", "-30.50"}, kind);
            }
        }
    }
}

TEST_F(Thresholds, ScaleByTen) {
    for (const Row &row : rows) {
        for (const Value &value : tenths()) {
            for (const std::uint32_t kind : {0u, 10u}) {
                expect_written(row, primary, value, kind);
                expect_written(row, secondary, value, kind);
            }
        }
    }
}

TEST_F(Thresholds, OfTheSecondaryController) {
    platform.node_info["name"] = "Ots0/2/0/2";
    expect_run("oc_opt_psm_state_th_to_high", leaf_with("-305"), KERR_SUCCESS,
               {"get_node_info(ctx, \"/ots-oper/ots-ports/ots-port\", \"name\")", "@ controller_name: Ots0/2/0/2",
                "@ key: ", "@ psm_key:  0/2-PSM-OM ",
                "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"-30.50\", "
                "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/state/secondary-switch-threshold\", "
                "\"/aps/aps-modules/aps-module/state/secondary-switch-threshold\")"});
    expect_run("oc_opt_psm_state_th_hyst_to_high", leaf_with("20"), KERR_SUCCESS, looked_up(secondary));
}

// State is state: the selection has no say, whatever it is.
TEST_F(Thresholds, DoNotFollowTheSelection) {
    for (const Selection &selection : selections()) {
        set_selection(selection);
        for (const Row &row : rows) {
            expect_written(row, primary, {"-305", "-30.50"}, YFW_KIND_GET);
            expect_written(row, secondary, {"-305", "-30.50"}, YFW_KIND_GET);
        }
    }
}

// The module that was requested is told, and filters nothing. A name is cut to 199 characters.
TEST_F(Thresholds, TellTheRequestedModule) {
    for (const auto &[requested, told] :
         std::vector<std::pair<std::string, std::string>>{{"0/2-PSM-OM", "0/2-PSM-OM"},
                                                          {"0/1-PSM-OM", "0/1-PSM-OM"},
                                                          {"", ""},
                                                          {"%s%n", "%s%n"},
                                                          {repeated(5000, 'k'), repeated(199, 'k')}}) {
        fake::Tree asked(request_for(requested));
        request.state.request_root = asked.root();
        for (const Row &row : rows) {
            for (const Controller &controller : {primary, secondary, Controller{"abc", "0/-1-PSM-OM", 0}}) {
                expect_written(row, controller, {"-305", "-30.50"}, YFW_KIND_GET, told);
            }
        }
    }
    request.state.request_root = nullptr;
    expect_written(rows[0], primary, {"-305", "-30.50"}, YFW_KIND_GET);
}

TEST_F(Thresholds, WithoutAValueAreLookedUpAndTracedOnly) {
    for (const Row &row : rows) {
        for (const Controller &controller : controllers()) {
            request.set_kind(YFW_KIND_GET);
            expect_run(row.conversion, leaf_with({}), KERR_SUCCESS, looked_up(controller));
            expect_run(row.conversion, build(fake::leaf("leaf").with_flags(YFW_NODE_HAS_VALUE), "source").root(),
                       KERR_SUCCESS, looked_up(controller));
            expect_run(row.conversion,
                       build(fake::leaf("leaf", "5").without_flags(YFW_NODE_HAS_VALUE), "source").root(), KERR_SUCCESS,
                       looked_up(controller));
            drop_trees();
        }
    }
}

TEST_F(Thresholds, GiveTheLookUpsResult) {
    platform.answer("get_node_info", no_entry);
    const Controller none = {Text(), "0/-1-PSM-OM", 0};
    for (const Row &row : rows) {
        for (const Text &value : std::vector<Text>{"-305", Text()}) {
            expect_run(row.conversion, leaf_with(value), no_entry, looked_up(none));
        }
    }
}

TEST_F(Thresholds, DoWithoutTheDatabase) {
    without_client_library([this] {
        for (const Row &row : rows) {
            expect_written(row, primary, {"-305", "-30.50"}, YFW_KIND_GET);
            expect_written(row, secondary, {"-305", "-30.50"}, YFW_KIND_GET);
        }
    });
}

// ---- the name in state ----

constexpr char key_conversion[] = "oc_opt_psm_state_get_psm_key_to_high";

class NameInState : public HighTest {
protected:
    // Neither the list nor its key is asked for: the name is the leaf's own value.
    void expect_name(const Text &name, std::uint32_t kind, kerrno result, const Lines &expected) {
        SCOPED_TRACE(name.value_or("null").substr(0, 40) + ", kind " + std::to_string(kind));
        platform.node_info["name"] = "Ots0/3/0/1";
        request.set_kind(kind);
        expect_run(key_conversion, leaf_with(name), result,
                   lines("print_datatree(ctx, registered, \"reg_dup_datatree\")", expected));
        drop_trees();
    }
};

TEST_F(NameInState, IsWrittenInAReadOfState) {
    for (const char *slot : {"0", "1", "2", "3"}) {
        const std::string name = std::string("Ots0/") + slot + "/0/1";
        const std::string module = std::string("0/") + slot + "-PSM-OM";
        expect_name(name, YFW_KIND_GET, KERR_SUCCESS,
                    lines(check_passes(name, slot), told_stitch(module, "state/name", module)));
        for (const std::uint32_t kind : {0u, 1u, 8u}) {
            expect_name(name, kind, KERR_SUCCESS, check_passes(name, slot));
        }
    }
}

TEST_F(NameInState, DoesNotFollowTheSelection) {
    for (const Selection &selection : selections()) {
        set_selection(selection);
        expect_name("Ots0/2/0/1", YFW_KIND_GET, KERR_SUCCESS,
                    lines(check_passes("Ots0/2/0/1", "2"), told_stitch("0/2-PSM-OM", "state/name", "0/2-PSM-OM")));
    }
}

TEST_F(NameInState, OfTheSecondPortIsPassedOver) {
    for (const std::uint32_t kind : {0u, 10u, 1u}) {
        expect_name("Ots0/2/0/2", kind, KERR_SUCCESS,
                    lines(check_refuses_port("Ots0/2/0/2", "2"), check_passes("Ots0/2/0/2", "2")));
    }
}

TEST_F(NameInState, OfAnotherControllerIsSkipped) {
    for (const std::uint32_t kind : {0u, 10u, 1u}) {
        for (const auto &[name, port] : std::vector<std::pair<std::string, std::string>>{{"Ots0/2/0/0", "0"},
                                                                                         {"Ots0/2/0/3", "3"},
                                                                                         {"Ots0/2", "-1"},
                                                                                         {"Ots0/2/1/1", "-1"},
                                                                                         {"0/2-PSM-OM", "-1"},
                                                                                         {"abc", "-1"},
                                                                                         {"", "-1"},
                                                                                         {"%s%n", "-1"},
                                                                                         {repeated(5000, 'x'), "-1"}}) {
            expect_name(name, kind, skip, lines(check_refuses_port(name, port), check_refuses_port(name, port)));
        }
        expect_name("Ots0/5/0/1", kind, skip,
                    lines(check_refuses_slot("Ots0/5/0/1", "5"), check_refuses_port("Ots0/5/0/1", "1")));
        expect_name("Ots0/5/0/2", kind, skip,
                    lines(check_refuses_port("Ots0/5/0/2", "2"), check_refuses_slot("Ots0/5/0/2", "5")));
    }
}

TEST_F(NameInState, OfAModuleThatIsNotInTheInventoryIsSkipped) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag");
    for (const std::uint32_t kind : {0u, 10u}) {
        expect_name("Ots0/2/0/1", kind, skip,
                    lines(check_finds_no_module("Ots0/2/0/1", "2"), check_refuses_port("Ots0/2/0/1", "1")));
        expect_name("Ots0/2/0/2", kind, skip,
                    lines(check_refuses_port("Ots0/2/0/2", "2"), check_finds_no_module("Ots0/2/0/2", "2")));
    }
}

TEST_F(NameInState, WithoutAValueIsSkipped) {
    for (const std::uint32_t kind : {0u, 10u, 1u}) {
        expect_name({}, kind, skip, lines(check_refuses_null(), check_refuses_null()));
    }
}

TEST_F(NameInState, MayBeFollowedByAnyText) {
    const std::string name = "Ots0/2/0/1" + repeated(5000, 'x');
    expect_name(name, YFW_KIND_GET, KERR_SUCCESS,
                lines(check_passes(name, "2"), told_stitch("0/2-PSM-OM", "state/name", "0/2-PSM-OM")));
}

TEST_F(NameInState, PrintsARequestThatIsNotThere) {
    request.state.request_root = nullptr;
    request.set_kind(YFW_KIND_GET);
    expect_run(key_conversion, leaf_with("Ots0/2/0/1"), KERR_SUCCESS,
               lines("print_datatree(ctx, null, \"reg_dup_datatree\")", check_passes("Ots0/2/0/1", "2"),
                     told_stitch("0/2-PSM-OM", "state/name", "0/2-PSM-OM")));
}

TEST_F(NameInState, IsSkippedWithoutTheClientLibrary) {
    without_client_library([this] {
        expect_name("Ots0/2/0/1", YFW_KIND_GET, skip,
                    lines("check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
                          "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM", "access(client library)",
                          "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in sysdb "
                          "inventory, discard it!",
                          check_refuses_port("Ots0/2/0/1", "1")));
    });
}

} // namespace
