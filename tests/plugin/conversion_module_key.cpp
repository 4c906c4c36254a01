// The key of a module: what its name becomes in the native models, for one named module.
#include "conversion_support.hpp"

namespace {

using namespace conversion_test;

constexpr char list_conversion[] = "oc_aps_cfg_psm_list_to_low";
constexpr char key_conversion[] = "op_cfg_psm_key_to_low";
constexpr char config_name[] = "oc_psm_cfg_get_psm_key_to_low";
constexpr char state_name[] = "oc_opt_psm_state_get_psm_key_to_low";

constexpr Value name_2 = {"0/2-PSM-OM", "2"};

// What a name gives: its slot as text, and the controllers.
struct Name {
    const char *given;
    const char *slot;
    const char *primary;
    const char *secondary;
};

// A name is scanned as far as its form goes; what does not scan leaves -1.
const std::vector<Name> names = {
    {"0/1-PSM-OM", "1", "Ots0/1/0/1", "Ots0/1/0/2"},    {"0/2-PSM-OM", "2", "Ots0/2/0/1", "Ots0/2/0/2"},
    {"0/3-PSM-OM", "3", "Ots0/3/0/1", "Ots0/3/0/2"},    {"0/12-PSM-OM", "12", "Ots0/12/0/1", "Ots0/12/0/2"},
    {"0/0-PSM-OM", "0", "Ots0/0/0/1", "Ots0/0/0/2"},    {"0/-7-PSM-OM", "-7", "Ots0/-7/0/1", "Ots0/-7/0/2"},
    {"0/ 3", "3", "Ots0/3/0/1", "Ots0/3/0/2"},          {"0/2-PSM-OM-and-more", "2", "Ots0/2/0/1", "Ots0/2/0/2"},
    {"PSM-1", "-1", "Ots0/-1/0/1", "Ots0/-1/0/2"},      {"0/x-PSM-OM", "-1", "Ots0/-1/0/1", "Ots0/-1/0/2"},
    {"1/2-PSM-OM", "-1", "Ots0/-1/0/1", "Ots0/-1/0/2"}, {"", "-1", "Ots0/-1/0/1", "Ots0/-1/0/2"},
    {"%s%n", "-1", "Ots0/-1/0/1", "Ots0/-1/0/2"},
};

Lines interface(const char *controller, const char *source) {
    return {add(interface_entry, "ifmgr-cfg", nullptr, source, 1, 0),
            add(interface_name, "ifmgr-cfg", controller, src, 0, 1),
            add(interface_active, "ifmgr-cfg", "act", src, 0, 1)};
}

class ModuleKey : public ConversionTest {
protected:
    void expect_reads_and_edits(const std::string &conversion, const Value &value, const Lines &get_config,
                                const Lines &get, const Lines &merge, const Lines &remove) {
        expect_run(conversion, {"get-config", 0, 0}, value, get_config);
        expect_run(conversion, {"get-config of a deleted leaf", 0, 3}, value, get_config);
        expect_run(conversion, {"get", 10, 0}, value, get);
        expect_run(conversion, {"get of a removed leaf", 10, 4}, value, get);
        for (const Situation &situation : merges()) {
            expect_run(conversion, situation, value, merge);
        }
        for (const Situation &situation : deletes()) {
            expect_run(conversion, situation, value, remove);
        }
    }

    void expect_nothing(const std::string &conversion, kidl_yfw_datatree *source) {
        for (const std::uint32_t kind : {0u, 10u, 1u}) {
            request.set_kind(kind);
            const Outcome outcome = run(conversion, source);
            EXPECT_EQ(outcome.lines, (Lines{conversion + " Start", conversion + " End"}));
            EXPECT_EQ(outcome.result, KERR_SUCCESS);
        }
    }

    void expect_nothing_without_value(const std::string &conversion) {
        SCOPED_TRACE(conversion);
        expect_nothing(conversion, leaf_with(nullptr, 0));
        expect_nothing(conversion, leaf_with(nullptr, 3));
        expect_nothing(conversion, build(fake::leaf("name").with_flags(YFW_NODE_HAS_VALUE), src).root());
    }

    // Of a request that is not a read: asked for its operation once, whatever the answer.
    void expect_operation_asked(const std::string &conversion) {
        platform.answer("is_request_delete", 1);
        request.set_kind(YFW_KIND_EDIT_CONFIG);
        EXPECT_EQ(run(conversion, leaf_with("0/2-PSM-OM", 0)).result, KERR_SUCCESS);
        EXPECT_EQ(platform.calls(fake::Questions), Lines{"is_request_delete(source)"});
        EXPECT_EQ(platform.count("add"), 0u);
    }
};

// ---- the key leaf ----

TEST_F(ModuleKey, TheKeyOpensTheNativeEntries) {
    for (const Name &name : names) {
        const Lines scanned =
            lines("@ Start", "@ psm_name = ^", std::string("@ controller_name_primary = ") + name.primary,
                  std::string("@ controller_name_secondary = ") + name.secondary);
        const Lines primary_read =
            lines("@ YFW_MAP_IS_GET", interface(name.primary, none), "@ set /active-nodes/active-node/node-name",
                  add(node_name, "mda-cfg", "0/RP0/CPU0", none, 1, 0), add(slot_id, "ots-cfg", name.slot, none, 1, 0));
        const Lines secondary_read = lines("@ YFW_MAP_IS_GET", interface(name.secondary, src));
        expect_reads_and_edits(
            key_conversion, {name.given, nullptr}, lines(scanned, primary_read, secondary_read, "@ End"),
            lines(scanned, primary_read, add(port_name, "ots-oper", name.primary, none, 1, 0),
                  add(history_name, "pmengine-oper", name.primary, none, 1, 0), secondary_read,
                  add(port_entry, "ots-oper", nullptr, none, 1, 0),
                  add(port_name, "ots-oper", name.secondary, none, 1, 0), "@ End"),
            lines(scanned, "@ merge request", interface(name.primary, src), "@ set /active-nodes/active-node/node-name",
                  add("/active-nodes/active-node", "mda-cfg", nullptr, src, 1, 0),
                  add(node_name, "mda-cfg", "0/RP0/CPU0", src, 0, 0),
                  add("/active-nodes/active-node/slot", "ots-cfg", nullptr, src, 1, 1),
                  add(slot_id, "ots-cfg", name.slot, src, 0, 1), "@ End"),
            lines(scanned, "@ delete request", "@ End"));
    }
}

TEST_F(ModuleKey, AKeyWithoutValueAddsNothing) {
    expect_nothing_without_value(key_conversion);
}

TEST_F(ModuleKey, TheKeyTakesANameOfAnyLength) {
    const std::string name = "0/2-PSM-OM" + std::string(5000, 'x');
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    const Outcome outcome = run(key_conversion, leaf_with(name.c_str(), 0));
    EXPECT_EQ(outcome.result, add_result(7));
    EXPECT_EQ(outcome.lines.at(outcome.lines.size() - 2), add(slot_id, "ots-cfg", "2", src, 0, 1));
    const std::string &logged = platform.logged().at(1).text;
    EXPECT_EQ(logged.substr(logged.find(',') + 1), "psm_name = " + name);
    EXPECT_EQ(platform.traced().at(1).whole.size(), 249u);
}

// What a number beyond all integers scans as is the C library's to say; the entries are opened all the same.
TEST_F(ModuleKey, TheKeyTakesANumberOfAnyLength) {
    const std::string name = "0/" + std::string(5000, '9') + "-PSM-OM";
    request.set_kind(YFW_KIND_EDIT_CONFIG);
    EXPECT_EQ(run(key_conversion, leaf_with(name.c_str(), 0)).result, add_result(7));
}

// ---- config/name and state/name ----

TEST_F(ModuleKey, TheConfiguredNameSelectsThePrimaryController) {
    for (const Name &name : names) {
        const Lines scanned = lines("@ Start", "@ psm_name = ^", std::string("@ controller_name = ") + name.primary);
        const Lines read =
            lines(scanned, add(interface_name, "ifmgr-cfg", name.primary, src, 0, 1),
                  add(interface_active, "ifmgr-cfg", "act", src, 0, 1), add(slot_id, "ots-cfg", name.slot, src, 0, 1));
        const Lines edit = lines(scanned, "@ End");
        expect_reads_and_edits(config_name, {name.given, nullptr}, lines(read, "@ End"),
                               lines(read, add(port_name, "ots-oper", name.primary, none, 0, 0),
                                     add(history_name, "pmengine-oper", name.primary, none, 0, 0), "@ End"),
                               edit, edit);
    }
}

TEST_F(ModuleKey, AConfiguredNameWithoutValueAddsNothing) {
    expect_nothing_without_value(config_name);
}

TEST_F(ModuleKey, AConfiguredNameInAnEditIsAskedForItsOperation) {
    expect_operation_asked(config_name);
}

TEST_F(ModuleKey, TheNameInStateSelectsThePrimaryPort) {
    for (const Name &name : names) {
        const Lines scanned = lines("@ Start", "@ psm_name = ^", std::string("@ controller_name = ") + name.primary);
        const Lines read = lines(scanned, add(port_name, "ots-oper", name.primary, none, 0, 1), "@ End");
        const Lines edit = lines(scanned, "@ End");
        expect_reads_and_edits(state_name, {name.given, nullptr}, read, read, edit, edit);
    }
}

TEST_F(ModuleKey, ANameInStateWithoutValueAddsNothing) {
    expect_nothing_without_value(state_name);
}

TEST_F(ModuleKey, ANameInStateInAnEditIsAskedForItsOperation) {
    expect_operation_asked(state_name);
}

TEST_F(ModuleKey, NamesInConfigAndStateTakeAnyLength) {
    const std::string name = std::string(5000, '/');
    request.set_kind(YFW_KIND_GET);
    EXPECT_EQ(run(config_name, leaf_with(name.c_str(), 0)).lines.at(3),
              add(interface_name, "ifmgr-cfg", "Ots0/-1/0/1", src, 0, 1));
    EXPECT_EQ(platform.traced().at(1).whole.size(), 249u);
    EXPECT_EQ(run(state_name, leaf_with(name.c_str(), 0)).lines.at(3),
              add(port_name, "ots-oper", "Ots0/-1/0/1", none, 0, 1));
    EXPECT_EQ(platform.traced().at(1).whole.size(), 249u);
}

// ---- the list entry with a key ----

class ModuleEntry : public ConversionTest {
protected:
    Outcome run_entry(const fake::Node &entry, std::uint32_t kind) {
        request.set_kind(kind);
        return run(list_conversion, build(entry, src).root());
    }

    static fake::Node entry(const std::string &name) {
        return fake::container("aps-module", {fake::leaf("name", name), fake::container("config")});
    }
};

const Lines operational_adds = {
    add(port_entry, "ots-oper", nullptr, none, 1, 0),
    add(history_entry, "pmengine-oper", nullptr, none, 1, 0),
    add(time_line("/number"), "pmengine-oper", "1", none, 0, 0),
};

TEST_F(ModuleEntry, ANamedEntryAddsNothingItself) {
    for (const Situation &situation : {Situation{"get-config", 0, 0}, Situation{"merge", 1, 0},
                                       Situation{"replace", 1, 1}, Situation{"create", 1, 2}}) {
        const Outcome outcome = run_entry(entry("0/2-PSM-OM").with_operation(situation.operation), situation.kind);
        EXPECT_EQ(outcome.lines,
                  filled(lines("@ Start", "@ key 0/2-PSM-OM", "@ merge request", "@ End"), list_conversion, name_2))
            << situation;
        EXPECT_EQ(outcome.result, KERR_SUCCESS);
    }
}

TEST_F(ModuleEntry, ADeletedEntryAddsNothing) {
    for (const fake::Node &deleted : {entry("0/2-PSM-OM"), fake::container("aps-module")}) {
        for (const std::uint32_t operation : {3u, 4u}) {
            const Outcome outcome = run_entry(deleted.with_operation(operation), YFW_KIND_EDIT_CONFIG);
            EXPECT_EQ(outcome.lines,
                      filled(lines("@ Start", deleted.children.empty() ? "@ key " : "@ key 0/2-PSM-OM", "@ End"),
                             list_conversion, name_2));
            EXPECT_EQ(outcome.result, KERR_SUCCESS);
            EXPECT_EQ(platform.count("sysdb_bind"), 0u);
        }
    }
}

TEST_F(ModuleEntry, ANamedEntryOpensTheOperationalEntriesInAGet) {
    const Outcome outcome = run_entry(entry("0/1-PSM-OM"), YFW_KIND_GET);
    EXPECT_EQ(outcome.lines, filled(lines("@ Start", "@ key 0/1-PSM-OM", "@ merge request", "@ IS_REQUEST_GET",
                                          operational_adds, "@ End"),
                                    list_conversion, name_2));
    EXPECT_EQ(outcome.result, add_result(3));
}

TEST_F(ModuleEntry, ADeletedNamedEntryOpensTheOperationalEntriesInAGetToo) {
    const Outcome outcome = run_entry(entry("0/1-PSM-OM").with_operation(3), YFW_KIND_GET);
    EXPECT_EQ(outcome.lines, filled(lines("@ Start", "@ key 0/1-PSM-OM", "@ IS_REQUEST_GET", operational_adds, "@ End"),
                                    list_conversion, name_2));
    EXPECT_EQ(outcome.result, add_result(3));
}

// Any key is a key here; no module is looked for.
TEST_F(ModuleEntry, AKeyOfAnotherFormIsAKey) {
    const Outcome outcome = run_entry(entry("PSM-1"), YFW_KIND_GET);
    EXPECT_EQ(outcome.lines,
              filled(lines("@ Start", "@ key PSM-1", "@ merge request", "@ IS_REQUEST_GET", operational_adds, "@ End"),
                     list_conversion, name_2));
    EXPECT_EQ(platform.count("sysdb_bind"), 0u);
}

TEST_F(ModuleEntry, ALongKeyIsCutToItsBuffer) {
    const std::string name = "0/2-PSM-OM" + std::string(5000, 'x');
    const Outcome outcome = run_entry(entry(name), YFW_KIND_GET);
    EXPECT_EQ(outcome.lines.at(0), "oc_aps_cfg_psm_list_to_low Start");
    const std::string &logged = platform.logged().at(1).text;
    EXPECT_EQ(logged.substr(logged.find(',') + 1), "key " + name.substr(0, 199));
    EXPECT_EQ(outcome.result, add_result(3));
}

// The entry's own key is searched, wherever it stands among the children, and only below the entry.
TEST_F(ModuleEntry, TheKeyIsFoundAmongTheChildren) {
    const Outcome outcome =
        run_entry(fake::container("aps-module", {fake::container("config", {fake::leaf("name", "0/3-PSM-OM")}),
                                                 fake::leaf("name", "0/1-PSM-OM")}),
                  YFW_KIND_EDIT_CONFIG);
    EXPECT_EQ(outcome.lines.at(1), "oc_aps_cfg_psm_list_to_low key 0/1-PSM-OM");
}

TEST_F(ModuleEntry, NothingOutlivesACall) {
    run_entry(entry("0/1-PSM-OM"), YFW_KIND_GET);
    const Lines first = told();
    run_entry(entry("0/1-PSM-OM"), YFW_KIND_GET);
    EXPECT_EQ(told(), first);
}

} // namespace
