// Interface configurations on their way to OpenConfig: one module for each that is in place, from its port-1
// controller, or from the other one where only that is configured.
#include "high_support.hpp"

namespace {

using namespace high_test;

constexpr char key_conversion[] = "interface_psm_key_to_high";
constexpr char list_conversion[] = "oc_opt_psm_if_list_cfg_to_high";
constexpr char leaf_callback[] = "ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_"
                                 "interfaceconfiguration_interfacename";
constexpr char interfaces[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";

// ---- the key leaf ----

// Every row is a test of the conversion and of the callback, which hands on to it and says nothing itself.
class InterfaceKey : public HighTest {
protected:
    void expect_key(const Text &name, kerrno result, const Lines &expected) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            for (const char *function : {key_conversion, leaf_callback}) {
                SCOPED_TRACE(name.value_or("null").substr(0, 40) + ", kind " + std::to_string(kind));
                expect_run(function, leaf_with(name), result, lines("@ Start", expected, "@ End"), key_conversion);
            }
        }
        drop_trees();
    }
};

TEST_F(InterfaceKey, OfAFirstPortNamesItsModule) {
    for (const char *slot : {"0", "1", "2", "3"}) {
        const std::string name = std::string("Ots0/") + slot + "/0/1";
        const std::string module = std::string("0/") + slot + "-PSM-OM";
        expect_key(name, add_result(1),
                   lines(check_passes(name, slot), told_stitch(module, "name", module), add("config/name", module)));
    }
}

TEST_F(InterfaceKey, IsWrittenAsOneLeafOfTheNamedModuleAndOneOfTheCurrent) {
    expect_key("Ots0/2/0/1", add_result(1),
               lines(check_passes("Ots0/2/0/1", "2"), "@ psm_key:  0/2-PSM-OM ",
                     "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"0/2-PSM-OM\", "
                     "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/name\", \"/aps/aps-modules/aps-module/name\")",
                     "add(ctx, dest, \"/aps/aps-modules/aps-module/config/name\", ns=openconfig, "
                     "value=\"0/2-PSM-OM\", src=none, result=none, 0, 0)"));
}

TEST_F(InterfaceKey, StaysOutOfConfigWhenOnlyStateWasSelected) {
    for (const Selection &selection : selections()) {
        set_selection(selection);
        const Lines stitched = lines(check_passes("Ots0/1/0/1", "1"), told_stitch("0/1-PSM-OM", "name", "0/1-PSM-OM"));
        if (selection.suppresses) {
            expect_key("Ots0/1/0/1", KERR_SUCCESS, stitched);
        } else {
            expect_key("Ots0/1/0/1", add_result(1), lines(stitched, add("config/name", "0/1-PSM-OM")));
        }
    }
}

TEST_F(InterfaceKey, OfASecondPortIsPassedOver) {
    for (const char *slot : {"0", "1", "3"}) {
        const std::string name = std::string("Ots0/") + slot + "/0/2";
        expect_key(name, KERR_SUCCESS, lines(check_refuses_port(name, "2"), check_passes(name, slot)));
    }
}

TEST_F(InterfaceKey, OfAnotherInterfaceIsSkipped) {
    for (const auto &[name, port] : std::vector<std::pair<std::string, std::string>>{{"Ots0/2/0/0", "0"},
                                                                                     {"Ots0/2/0/3", "3"},
                                                                                     {"Ots0/2", "-1"},
                                                                                     {"Ots0/2/1/1", "-1"},
                                                                                     {"HundredGigE0/2/0/1", "-1"},
                                                                                     {"0/2-PSM-OM", "-1"},
                                                                                     {"abc", "-1"},
                                                                                     {"", "-1"},
                                                                                     {"%s%n", "-1"},
                                                                                     {repeated(5000, 'x'), "-1"},
                                                                                     {repeated(100000, '/'), "-1"}}) {
        expect_key(name, skip, lines(check_refuses_port(name, port), check_refuses_port(name, port)));
    }
    expect_key("Ots0/5/0/1", skip, lines(check_refuses_slot("Ots0/5/0/1", "5"), check_refuses_port("Ots0/5/0/1", "1")));
    expect_key("Ots0/-1/0/2", skip,
               lines(check_refuses_port("Ots0/-1/0/2", "2"), check_refuses_slot("Ots0/-1/0/2", "-1")));
}

TEST_F(InterfaceKey, OfAModuleThatIsNotInTheInventoryIsSkipped) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag");
    expect_key("Ots0/2/0/1", skip,
               lines(check_finds_no_module("Ots0/2/0/1", "2"), check_refuses_port("Ots0/2/0/1", "1")));
    expect_key("Ots0/2/0/2", skip,
               lines(check_refuses_port("Ots0/2/0/2", "2"), check_finds_no_module("Ots0/2/0/2", "2")));
}

TEST_F(InterfaceKey, WithoutAValueIsSkipped) {
    expect_key({}, skip, lines(check_refuses_null(), check_refuses_null()));
}

TEST_F(InterfaceKey, MayBeFollowedByAnyText) {
    const std::string name = "Ots0/2/0/1" + repeated(5000, 'x');
    expect_key(name, add_result(1),
               lines(check_passes(name, "2"), told_stitch("0/2-PSM-OM", "name", "0/2-PSM-OM"),
                     add("config/name", "0/2-PSM-OM")));
}

TEST_F(InterfaceKey, IsSkippedWithoutTheClientLibrary) {
    without_client_library([this] {
        expect_key("Ots0/2/0/1", skip,
                   lines("check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
                         "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM", "access(client library)",
                         "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in sysdb "
                         "inventory, discard it!",
                         check_refuses_port("Ots0/2/0/1", "1")));
    });
}

// ---- the list entry ----

fake::Node entry(const std::vector<fake::Node> &children) {
    return fake::container("interface-configuration", children).in_namespace(interfaces);
}

fake::Node entry(const std::string &name) {
    return entry({fake::leaf("active", "act").in_namespace(interfaces),
                  fake::leaf("interface-name", name).in_namespace(interfaces)});
}

fake::Node request_for(const std::vector<fake::Node> &modules) {
    return fake::container("aps", {fake::container("aps-modules", modules)});
}

fake::Node module(const std::string &name) {
    return fake::container("aps-module", {fake::leaf("name", name), fake::container("config")});
}

std::string add_module(const char *source) {
    return std::string("add(ctx, dest, \"/aps/aps-modules/aps-module\", ns=openconfig, value=null, src=") + source +
           ", result=none, 1, 0)";
}

// The module itself, with the leaves that a read of the configuration adds to it.
Lines module_added(const std::string &name, std::uint32_t kind, const char *source = "none") {
    Lines all = {"is_request_delete(source)", add_module(source)};
    if (kind == YFW_KIND_GET_CONFIG) {
        append(all, lines(told_stitch(name, "name", name), add("config/name", name)));
    }
    append(all, "@ End");
    return all;
}

kerrno last_add_of(std::uint32_t kind) {
    return kind == YFW_KIND_GET_CONFIG ? add_result(2) : add_result(1);
}

class InterfaceEntry : public HighTest {
protected:
    // An answer with these entries, of which the one that is walked stands on top of the hierarchy.
    kidl_yfw_datatree *walk(const std::vector<fake::Node> &entries, std::size_t walked) {
        fake::Tree &answer = build(fake::container("interface-configurations", entries).in_namespace(interfaces));
        request.state.answer_root = answer.root();
        kidl_yfw_datatree *const source = &answer.root()->children[walked];
        platform.name(source, "source");
        platform.hierarchy.clear();
        yfw_map_add_to_node_hierarchy(request.ctx(), answer.root(), 1);
        yfw_map_add_to_node_hierarchy(request.ctx(), source, 2);
        return source;
    }

    void request_modules(const std::vector<fake::Node> &modules) {
        request.state.request_root = build(request_for(modules), "registered").root();
    }

    void expect_entry(const std::vector<fake::Node> &entries, std::size_t walked, std::uint32_t kind, kerrno result,
                      const Lines &expected) {
        SCOPED_TRACE("entry " + std::to_string(walked) + ", kind " + std::to_string(kind));
        request.set_kind(kind);
        expect_run(list_conversion, walk(entries, walked), result, expected);
    }

    void expect_module(const std::string &name, const std::string &slot, std::uint32_t kind) {
        expect_entry({entry(name)}, 0, kind, last_add_of(kind),
                     lines(check_passes(name, slot), module_added("0/" + slot + "-PSM-OM", kind)));
    }
};

TEST_F(InterfaceEntry, OfAFirstPortOpensItsModule) {
    for (const char *slot : {"0", "1", "2", "3"}) {
        for (const std::uint32_t kind : {0u, 10u, 1u, 8u}) {
            expect_module(std::string("Ots0/") + slot + "/0/1", slot, kind);
        }
    }
}

TEST_F(InterfaceEntry, OpensAModuleAndNamesItInAReadOfTheConfiguration) {
    expect_entry({entry("Ots0/2/0/1")}, 0, YFW_KIND_GET_CONFIG, add_result(2),
                 lines(check_passes("Ots0/2/0/1", "2"), "is_request_delete(source)",
                       "add(ctx, dest, \"/aps/aps-modules/aps-module\", ns=openconfig, value=null, src=none, "
                       "result=none, 1, 0)",
                       "@ psm_key:  0/2-PSM-OM ",
                       "stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value=\"0/2-PSM-OM\", "
                       "\"/aps/aps-modules/aps-module[name=0/2-PSM-OM]/name\", \"/aps/aps-modules/aps-module/name\")",
                       "add(ctx, dest, \"/aps/aps-modules/aps-module/config/name\", ns=openconfig, "
                       "value=\"0/2-PSM-OM\", src=none, result=none, 0, 0)",
                       "@ End"));
}

TEST_F(InterfaceEntry, DoesNotFollowTheSelection) {
    for (const Selection &selection : selections()) {
        set_selection(selection);
        expect_module("Ots0/2/0/1", "2", YFW_KIND_GET_CONFIG);
        expect_module("Ots0/2/0/1", "2", YFW_KIND_GET);
    }
}

TEST_F(InterfaceEntry, OfBothPortsGivesOneModule) {
    const std::vector<fake::Node> both = {entry("Ots0/2/0/1"), entry("Ots0/2/0/2")};
    const std::vector<fake::Node> reversed = {entry("Ots0/2/0/2"), entry("Ots0/1/0/1"), entry("Ots0/2/0/1")};
    const Lines first_port = check_passes("Ots0/2/0/1", "2");
    const Lines refused = check_refuses_port("Ots0/2/0/2", "2");
    expect_entry(both, 0, YFW_KIND_GET_CONFIG, add_result(2), lines(first_port, module_added("0/2-PSM-OM", 0)));
    expect_entry(both, 0, YFW_KIND_GET, add_result(1), lines(first_port, module_added("0/2-PSM-OM", 10)));
    for (const auto &[entries, walked] :
         std::vector<std::pair<std::vector<fake::Node>, std::size_t>>{{both, 1}, {reversed, 0}}) {
        expect_entry(entries, walked, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                     lines(refused, check_passes("Ots0/2/0/2", "2"), "@ End"));
        expect_entry(entries, walked, YFW_KIND_GET, KERR_SUCCESS, lines(refused, "@ End"));
        expect_entry(entries, walked, YFW_KIND_EDIT_CONFIG, KERR_SUCCESS, lines(refused, "@ End"));
    }
}

// Only in a read of the configuration. Another module's first port is no sibling, nor is one that is not in use.
TEST_F(InterfaceEntry, OfASecondPortAloneGivesTheModule) {
    const fake::Node alone = entry("Ots0/2/0/2");
    const fake::Node other = entry("Ots0/1/0/1");
    const fake::Node longer = entry("Ots0/2/0/11");
    const fake::Node unused = entry("Ots0/2/0/1").without_flags(YFW_NODE_IN_USE);
    const fake::Node valueless = entry(std::vector<fake::Node>{fake::leaf("interface-name")});
    const fake::Node elsewhere = entry({fake::container("optics", {fake::leaf("interface-name", "Ots0/2/0/1")})});
    for (const std::vector<fake::Node> &entries : {std::vector{alone},
                                                   {alone, other},
                                                   {alone, longer},
                                                   {alone, unused},
                                                   {alone, valueless},
                                                   {alone, elsewhere}}) {
        const Lines refused = check_refuses_port("Ots0/2/0/2", "2");
        expect_entry(entries, 0, YFW_KIND_GET_CONFIG, add_result(2),
                     lines(refused, check_passes("Ots0/2/0/2", "2"), module_added("0/2-PSM-OM", 0)));
        expect_entry(entries, 0, YFW_KIND_GET, KERR_SUCCESS, lines(refused, "@ End"));
    }
}

TEST_F(InterfaceEntry, OfASecondPortWithoutAnAnswerToLookAtGivesTheModule) {
    kidl_yfw_datatree *const source = walk({entry("Ots0/2/0/2")}, 0);
    request.state.answer_root = nullptr;
    expect_run(list_conversion, source, add_result(2),
               lines(check_refuses_port("Ots0/2/0/2", "2"), check_passes("Ots0/2/0/2", "2"),
                     "ERROR search_data_in_response return, req is NULL", module_added("0/2-PSM-OM", 0)));
}

TEST_F(InterfaceEntry, OfAnotherInterfaceGivesNothing) {
    for (const auto &[name, port] : std::vector<std::pair<std::string, std::string>>{{"Ots0/2/0/0", "0"},
                                                                                     {"Ots0/2/0/3", "3"},
                                                                                     {"Ots0/2", "-1"},
                                                                                     {"Ots0/2/1/1", "-1"},
                                                                                     {"HundredGigE0/2/0/1", "-1"},
                                                                                     {"abc", "-1"},
                                                                                     {"", "-1"},
                                                                                     {"%s%n", "-1"}}) {
        const Lines refused = check_refuses_port(name, port);
        expect_entry({entry(name)}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS, lines(refused, refused, "@ End"));
        expect_entry({entry(name)}, 0, YFW_KIND_GET, KERR_SUCCESS, lines(refused, "@ End"));
        expect_entry({entry(name)}, 0, YFW_KIND_EDIT_CONFIG, KERR_SUCCESS, lines(refused, "@ End"));
    }
    expect_entry({entry("Ots0/5/0/1")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                 lines(check_refuses_slot("Ots0/5/0/1", "5"), check_refuses_port("Ots0/5/0/1", "1"), "@ End"));
    expect_entry({entry("Ots0/5/0/2")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                 lines(check_refuses_port("Ots0/5/0/2", "2"), check_refuses_slot("Ots0/5/0/2", "5"), "@ End"));
}

TEST_F(InterfaceEntry, OfAModuleThatIsNotInTheInventoryGivesNothing) {
    platform.items.erase("/oper/inventory/gl/entity/0%2f2-PSM-OM/attrib/inv_basic_bag");
    const Lines missing = check_finds_no_module("Ots0/2/0/1", "2");
    expect_entry({entry("Ots0/2/0/1")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                 lines(missing, check_refuses_port("Ots0/2/0/1", "1"), "@ End"));
    expect_entry({entry("Ots0/2/0/1")}, 0, YFW_KIND_GET, KERR_SUCCESS, lines(missing, "@ End"));
    expect_entry({entry("Ots0/2/0/2")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                 lines(check_refuses_port("Ots0/2/0/2", "2"), check_finds_no_module("Ots0/2/0/2", "2"), "@ End"));
}

// The name is taken from the entry on top of the hierarchy, as its direct child with a value.
TEST_F(InterfaceEntry, WithoutANameGivesNothing) {
    const Lines refused = check_refuses_port("", "-1");
    const fake::Node name = fake::leaf("interface-name", "Ots0/2/0/1").in_namespace(interfaces);
    for (const fake::Node &nameless :
         {entry(std::vector<fake::Node>{}), entry(std::vector<fake::Node>{fake::leaf("interface-name")}),
          entry({fake::leaf("active", "act")}), entry({fake::container("optics", {name})}),
          entry({name}).without_flags(YFW_NODE_IN_USE),
          fake::container("interface", {name}).in_namespace(interfaces)}) {
        expect_entry({nameless}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS, lines(refused, refused, "@ End"));
        expect_entry({nameless}, 0, YFW_KIND_GET, KERR_SUCCESS, lines(refused, "@ End"));
    }
}

TEST_F(InterfaceEntry, TakesTheNameFromTheTopOfTheHierarchy) {
    walk({entry("Ots0/3/0/1")}, 0);
    kidl_yfw_datatree *const source = build(entry("Ots0/1/0/1"), "source").root();
    expect_run(list_conversion, source, add_result(2),
               lines(check_passes("Ots0/3/0/1", "3"), module_added("0/3-PSM-OM", 0)));
}

// ---- the module that was requested ----

TEST_F(InterfaceEntry, OfTheRequestedModuleIsGiven) {
    for (const std::uint32_t kind : {0u, 10u, 1u}) {
        request_modules({module("0/2-PSM-OM")});
        expect_module("Ots0/2/0/1", "2", kind);
    }
    expect_entry(
        {entry("Ots0/2/0/2")}, 0, YFW_KIND_GET_CONFIG, add_result(2),
        lines(check_refuses_port("Ots0/2/0/2", "2"), check_passes("Ots0/2/0/2", "2"), module_added("0/2-PSM-OM", 0)));
}

TEST_F(InterfaceEntry, OfAnotherThanTheRequestedModuleIsSkipped) {
    for (const std::string &requested : {std::string("0/1-PSM-OM"), std::string("0/2-PSM-OMX"), std::string("0/2"),
                                         std::string("%s%n"), repeated(5000, 'x')}) {
        request_modules({module(requested), module("0/2-PSM-OM")}); // the first one counts
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            expect_entry({entry("Ots0/2/0/1")}, 0, kind, skip, lines(check_passes("Ots0/2/0/1", "2"), "@ End"));
        }
        expect_entry({entry("Ots0/2/0/2")}, 0, YFW_KIND_GET_CONFIG, skip,
                     lines(check_refuses_port("Ots0/2/0/2", "2"), check_passes("Ots0/2/0/2", "2"), "@ End"));
        drop_trees();
    }
}

TEST_F(InterfaceEntry, IsGivenWhenNoModuleWasNamed) {
    for (const std::vector<fake::Node> &modules :
         {std::vector<fake::Node>{},
          {fake::container("aps-module")},
          {fake::container("aps-module", {fake::leaf("name")})},
          {module("")},
          {fake::container("aps-module", {fake::container("config", {fake::leaf("name", "0/1-PSM-OM")})})},
          {module("0/1-PSM-OM").without_flags(YFW_NODE_IN_USE)}}) {
        request_modules(modules);
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            expect_module("Ots0/2/0/1", "2", kind);
        }
    }
    request.state.request_root = nullptr;
    expect_module("Ots0/2/0/1", "2", YFW_KIND_GET_CONFIG);
}

// ---- deletes ----

TEST_F(InterfaceEntry, OfADeleteHandsItsOperationOn) {
    for (const std::uint32_t operation : {3u, 4u}) {
        const std::vector<fake::Node> deleted = {entry("Ots0/2/0/1").with_operation(operation)};
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            expect_entry(deleted, 0, kind, last_add_of(kind),
                         lines(check_passes("Ots0/2/0/1", "2"), module_added("0/2-PSM-OM", kind, "source")));
        }
    }
    for (const std::uint32_t operation : {0u, 1u, 2u}) {
        expect_entry({entry("Ots0/2/0/1").with_operation(operation)}, 0, YFW_KIND_EDIT_CONFIG, add_result(1),
                     lines(check_passes("Ots0/2/0/1", "2"), module_added("0/2-PSM-OM", 1)));
    }
    platform.answer("is_request_delete", 1); // the framework's word, not the operation
    expect_entry({entry("Ots0/2/0/1")}, 0, YFW_KIND_GET, add_result(1),
                 lines(check_passes("Ots0/2/0/1", "2"), module_added("0/2-PSM-OM", 10, "source")));
}

// ---- a short hierarchy ----

class ShortHierarchy : public InterfaceEntry {
protected:
    kidl_yfw_datatree *walk_with(std::size_t levels, const std::string &name = "Ots0/2/0/1") {
        kidl_yfw_datatree *const source = build(entry(name), "source").root();
        platform.hierarchy.clear();
        request.state.hierarchy_length = 0;
        request.state.hierarchy = nullptr;
        request.context.current_node = nullptr;
        for (std::size_t i = 0; i < levels; ++i) {
            yfw_map_add_to_node_hierarchy(request.ctx(), source, 2);
        }
        return source;
    }
};

TEST_F(ShortHierarchy, LeavesTheModulesNameEmpty) {
    for (const std::size_t levels : {0u, 1u}) {
        for (const char *name : {"Ots0/2/0/1", "Ots0/2/0/2", "abc"}) {
            for (const std::uint32_t kind : {0u, 10u, 1u}) {
                request.set_kind(kind);
                expect_run(list_conversion, walk_with(levels, name), last_add_of(kind), module_added("", kind));
            }
        }
    }
    EXPECT_EQ(module_added("", 0)[2], "@ psm_key:   ");
}

TEST_F(ShortHierarchy, SkipsWhenAModuleWasNamed) {
    request_modules({module("0/2-PSM-OM")});
    for (const std::size_t levels : {0u, 1u}) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            expect_run(list_conversion, walk_with(levels), skip, {"@ End"});
        }
    }
}

TEST_F(ShortHierarchy, TwoLevelsAreEnough) {
    for (const std::size_t levels : {2u, 3u, 10u}) {
        expect_run(list_conversion, walk_with(levels), add_result(2),
                   lines(check_passes("Ots0/2/0/1", "2"), module_added("0/2-PSM-OM", 0)));
    }
}

// ---- long texts and an absent database ----

TEST_F(InterfaceEntry, ALongNameIsCutToItsBuffer) {
    for (const std::size_t length : {std::size_t{5000}, std::size_t{100000}}) {
        const std::string first = "Ots0/2/0/1" + repeated(length, 'x');
        expect_entry({entry(first)}, 0, YFW_KIND_GET_CONFIG, add_result(2),
                     lines(check_passes(first.substr(0, 199), "2"), module_added("0/2-PSM-OM", 0)));
        const std::string second = "Ots0/2/0/2" + repeated(length, 'x');
        const std::string seen = second.substr(0, 199);
        expect_entry({entry(second), entry("Ots0/2/0/1")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                     lines(check_refuses_port(seen, "2"), check_passes(seen, "2"), "@ End"));
        const Lines refused = check_refuses_port(repeated(199, 'x'), "-1");
        expect_entry({entry(repeated(length, 'x'))}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                     lines(refused, refused, "@ End"));
        drop_trees();
    }
}

TEST_F(InterfaceEntry, GivesNothingWithoutTheClientLibrary) {
    without_client_library([this] {
        expect_entry({entry("Ots0/2/0/1")}, 0, YFW_KIND_GET_CONFIG, KERR_SUCCESS,
                     lines("check_controller_name_ots_is_good_by_port controller_name = Ots0/2/0/1",
                           "check_controller_name_ots_is_good_by_port psm_name = 0/2-PSM-OM", "access(client library)",
                           "ERROR check_controller_name_ots_is_good_by_port Psm_name [0/2-PSM-OM] not present in "
                           "sysdb inventory, discard it!",
                           check_refuses_port("Ots0/2/0/1", "1"), "@ End"));
    });
}

} // namespace
