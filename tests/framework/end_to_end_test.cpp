// Requests through the real plug-in, to what they are natively. The cases stand in translations/ and, beside the adds
// that the mapping makes, in native/modules/.
//
// Input: sections whose name begins with "get", "get-config" or "edit": a request as XML, JSON or dump() writes it.
// What is expected is expected of each of them; of each of their lines, when the name goes on with "each". Section
// "fitted": the modules that are fitted, one per line.
//
// Expected sections:
//   net, check   the net requests, and what their check says, a line "--" between two
//   refused      result|tag|location|offending node
//   warnings     what the answer comes with
#include <gmock/gmock.h>

#include <optional>
#include <sstream>

#include "cases/runner.hpp"
#include "dump.hpp"
#include "framework/host/codes.hpp"
#include "native/native_test.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/temporary_state.hpp"
#include "translate.hpp"

namespace {

using case_runner::Case;
using case_runner::Section;
using ocpsm::Kind;
using ocpsm::Options;
using ocpsm::framework::name_of;
using ocpsm::framework::Plugin;
using ocpsm::framework::Translation;
using testing::ElementsAre;
using testing::IsEmpty;

struct Database {
    ocpsm::sysdb::Client client;
    std::optional<ocpsm::line_system::TemporaryState> state{std::in_place, client};
};

Translation translated(const std::string &text, Kind kind, const Options &options = {},
                       const std::vector<std::string> &fitted = {}) {
    static const Plugin plugin(PLUGIN);
    return translate(plugin.callback(ocpsm::framework::openconfig_root_walker), text, kind, options, fitted);
}

std::vector<std::string> lines_of(const Section *section) {
    std::vector<std::string> lines;
    for (const case_runner::Line &line : section == nullptr ? std::vector<case_runner::Line>() : section->lines) {
        if (!line.text.empty()) {
            lines.push_back(line.text);
        }
    }
    return lines;
}

std::string shown(const Translation &translation, const std::string &wanted) {
    std::string text;
    if (wanted == "refused") {
        const ocpsm::Error none(ocpsm::Error::Source::refused, "", "", "");
        const ocpsm::Error &error = translation.error.value_or(none);
        return name_of(translation.result) + "|" + error.tag + "|" + error.path + "|" + error.node + "\n";
    }
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    if (wanted == "warnings") {
        for (const std::string &warning : translation.warnings) {
            text += warning + "\n";
        }
        return text;
    }
    for (const auto &handed : translation.handed_over) {
        const ocpsm::native::NetRequest net = handed.native.net();
        text += &handed == &translation.handed_over.front() ? "" : "--\n";
        text += wanted == "net" ? native_test::net_text(net.roots)
                                : native_test::text_or_error([&] { return net.check(), "fine\n"; });
    }
    return text;
}

std::string answer(const Case &test, const std::string &wanted) {
    const Database database;
    const std::vector<std::string> fitted = lines_of(test.find_input("fitted"));
    std::optional<std::string> first;
    for (const Section &section : test.input) {
        const bool read = section.name.starts_with("get");
        const Kind kind = section.name.starts_with("get-config") ? Kind::get_config : read ? Kind::get : Kind::edit;
        if (!read && !section.name.starts_with("edit")) {
            continue;
        }
        std::string text;
        for (const std::string &request :
             section.name.ends_with("each") ? lines_of(&section) : std::vector{section.text()}) {
            text += shown(translated(request, kind, {}, fitted), wanted);
        }
        EXPECT_EQ(text, first.value_or(text)) << section.name;
        first = text;
    }
    return first.value_or("no request\n");
}

[[maybe_unused]] const bool registered =
    case_runner::register_cases(CASES_DIRECTORY, answer) && case_runner::register_cases(MODULE_CASES, answer);

const std::string module = "aps/aps-modules/aps-module[0/1-PSM-OM]/config/";

TEST(EndToEnd, AReadWithoutKeyIsGivenOneByTheWalk) {
    const Database database;
    const Translation translation = translated("aps/aps-modules/aps-module/config/revertive", Kind::get_config);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    const auto &adds = translation.handed_over.at(0).adds;
    ASSERT_FALSE(adds.empty());
    EXPECT_TRUE(adds.back().relative);
    EXPECT_EQ(adds.back().path, "name");
    EXPECT_EQ(adds.back().value, std::nullopt);
}

// ---- channels ----

TEST(EndToEnd, EveryAddBearsTheNamesOfItsFunctions) {
    const Database database;
    const Translation translation =
        translated(module + "force-to-port = SECONDARY", Kind::edit, {.log = false, .trace = true});
    const std::string walker = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps_";
    std::vector<std::string> lines;
    for (const auto &add : translation.handed_over.at(0).adds) {
        lines.push_back(add.walker + ">" + add.conversion + ">" + add.path + "=" + add.value.value_or("-"));
    }
    const std::string key = walker + "apsmodule_name>op_cfg_psm_key_to_low>";
    EXPECT_THAT(lines,
                ElementsAre(key + "/interface-configurations/interface-configuration=-",
                            key + "/interface-configurations/interface-configuration/interface-name=Ots0/1/0/1",
                            key + "/interface-configurations/interface-configuration/active=act",
                            key + "/active-nodes/active-node=-", key + "/active-nodes/active-node/node-name=0/RP0/CPU0",
                            key + "/active-nodes/active-node/slot=-", key + "/active-nodes/active-node/slot/slot-id=1",
                            walker + "config_forcetoport>oc_opt_psm_cfg_force_to_port_to_low>"
                                     "/active-nodes/active-node/slot/psm/lockout-from=working"));
}

TEST(EndToEnd, TheLogHoldsThePluginsErrors) {
    const Database database;
    const Translation translation = translated(module + "colour = 1", Kind::edit, {.log = true, .trace = false});
    std::vector<std::string> errors;
    for (const auto &line : translation.log) {
        if (line.error) {
            errors.push_back(line.text.substr(line.text.find(',') + 1));
        }
    }
    EXPECT_THAT(errors, ElementsAre("Unsupported tag `colour` is specified in the request."));
    EXPECT_THAT(translation.trace, IsEmpty());
}

// ---- the database ----

TEST(EndToEnd, WithoutAnOpenDatabaseNoModuleIsFound) {
    Database database;
    database.state.reset();
    EXPECT_THAT(shown(translated("aps/aps-modules/aps-module", Kind::get), "net"),
                testing::Not(testing::HasSubstr("Ots0")));
}

} // namespace
