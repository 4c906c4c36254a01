// The models as they are embedded: every node with its access, type, unit and default, written by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <regex>
#include <thread>

#include "framework/models/models.hpp"

namespace {

using ocpsm::models::describe;
using ocpsm::models::NodeInfo;
using ocpsm::models::NodeKind;
using ocpsm::models::Schema;

// A line per node: path, access, then "container", "list" with its keys, or a leaf's type, units, range and default.
void print_nodes(const Schema &schema, const lysc_node *parent, std::string &out) {
    for (const lysc_node *node : schema.children(parent)) {
        const NodeInfo info = describe(*node);
        out.append(ocpsm::models::schema_path(*node)).append(info.config ? " rw" : " ro");
        if (info.kind == NodeKind::container) {
            out += " container";
        } else if (info.kind == NodeKind::list) {
            out += " list";
            for (const std::string_view key : info.keys) {
                out.append(" ").append(key);
            }
        } else {
            out.append(" ").append(info.type);
            out.append(info.fraction_digits == 0 ? "" : std::to_string(info.fraction_digits));
            out.append(info.units.empty() ? "" : " [" + std::string(info.units) + "]");
            if (info.range) {
                out += " " + std::to_string(info.range->minimum) + ".." + std::to_string(info.range->maximum);
            }
            out.append(info.default_value ? " =" + std::string(*info.default_value) : "");
            for (const std::string_view choice : info.choices) {
                out.append(" ").append(choice);
            }
        }
        out += '\n';
        print_nodes(schema, node, out);
    }
}

std::string nodes_of(const Schema &schema) {
    std::string out;
    print_nodes(schema, nullptr, out);
    return out;
}

std::string below(const std::string &prefix, const std::string &lines) {
    std::string out;
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = lines.find('\n', start);
        out.append(prefix).append(lines, start, end + 1 - start);
        start = end + 1;
    }
    return out;
}

// What config and state of a module have in common, which differ in access.
constexpr char settings[] = R"(/name $ string
/revertive $ boolean
/wait-to-restore-time $ uint32 [milliseconds]
/hold-off-time $ uint32 [milliseconds]
/primary-switch-threshold $ decimal642 [dBm]
/primary-switch-hysteresis $ decimal642 [dB] =0.0
/secondary-switch-threshold $ decimal642 [dBm]
/relative-switch-threshold $ decimal642 [dB] =0.0
/relative-switch-threshold-offset $ decimal642 [dB] =0.0
/force-to-port $ enumeration =NONE NONE PRIMARY SECONDARY
)";

constexpr char enabled[] = "/enabled $ boolean =true\n";
constexpr char target[] = "/target-attenuation $ decimal642 [dB]\n";

constexpr char readings[] = R"(/state/attenuation ro decimal642 [dB]
/state/optical-power ro container
/state/optical-power/instant ro decimal642 [dBm]
/state/optical-power/avg ro decimal642 [dBm]
/state/optical-power/min ro decimal642 [dBm]
/state/optical-power/max ro decimal642 [dBm]
/state/optical-power/interval ro uint64 [nanoseconds]
/state/optical-power/min-time ro uint64 [nanoseconds]
/state/optical-power/max-time ro uint64 [nanoseconds]
)";

std::string config_and_state(const std::string &both) {
    const auto with = [&both](const std::string &name, const std::string &access) {
        return "/" + name + " " + access + " container\n" +
               below("/" + name, std::regex_replace(both, std::regex("[$]"), access));
    };
    return with("config", "rw") + with("state", "ro");
}

TEST(OpenConfigModel, HasEveryPublishedNode) {
    std::string module = config_and_state(settings);
    module += "/state/active-path ro identityref PRIMARY SECONDARY\n/ports rw container\n";
    for (const char *port : {"line-primary-in", "line-primary-out", "line-secondary-in", "line-secondary-out",
                             "common-in", "common-output"}) {
        const std::string settings_of_port =
            std::string(port).ends_with("-in") ? std::string(enabled) + target : target;
        module +=
            below(std::string("/ports/") + port, " rw container\n" + config_and_state(settings_of_port) + readings);
    }
    EXPECT_EQ(nodes_of(Schema::openconfig()),
              "/aps rw container\n/aps/aps-modules rw container\n" +
                  below("/aps/aps-modules/aps-module", " rw list name\n/name rw leafref\n" + module));
}

TEST(OpenConfigModel, IsThePublishedRevisionAndDerivesBothPathsFromOneIdentity) {
    const lys_module *module =
        ly_ctx_get_module_implemented(Schema::openconfig().context(), "openconfig-transport-line-protection");
    ASSERT_NE(module, nullptr);
    EXPECT_STREQ(module->revision, "2018-11-21");
    EXPECT_STREQ(module->prefix, "oc-line-protect");
    EXPECT_STREQ(module->ns, "http://openconfig.net/yang/optical-transport-line-protection");
    EXPECT_EQ(module->parsed->version, LYS_VERSION_1_0);
    ASSERT_EQ(LY_ARRAY_COUNT(module->identities), 3u);
    EXPECT_STREQ(module->identities[0].name, "APS_PATHS");
    ASSERT_EQ(LY_ARRAY_COUNT(module->identities[0].derived), 2u);
    EXPECT_STREQ(module->identities[0].derived[0]->name, "PRIMARY");
    EXPECT_STREQ(module->identities[0].derived[1]->name, "SECONDARY");
}

std::string nodes_of_kind(const std::string &kind) {
    return " rw container\n" + below("/" + kind + "-node", R"( rw list node-name
/node-name rw string
/slot rw list slot-id
/slot/slot-id rw uint32
/slot/psm rw container
/slot/psm/relative-switch-threshold rw container
/slot/psm/relative-switch-threshold/psm-relative-switch-threshold rw int32 [0.1 dB] -400..400
/slot/psm/relative-switch-threshold/psm-relative-switch-threshold-offset rw int32 [0.1 dB] -400..400
/slot/psm/revertive rw container
/slot/psm/revertive/enable rw boolean
/slot/psm/revertive/wtr rw uint32 [milliseconds]
/slot/psm/lockout-from rw string
)");
}

TEST(NativeModels, HaveEveryNode) {
    EXPECT_EQ(nodes_of(Schema::native()),
              R"(/interface-configurations rw container
/interface-configurations/interface-configuration rw list active interface-name
/interface-configurations/interface-configuration/active rw string
/interface-configurations/interface-configuration/interface-name rw string
/interface-configurations/interface-configuration/optics rw container
/interface-configurations/interface-configuration/optics/rx-thresholds rw container
/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold rw list rx-threshold-type
/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold/rx-threshold-type rw string
/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold/rx-threshold rw int32 [0.1 dBm] -400..300
/interface-configurations/interface-configuration/optics/optics-ots-rx-voa-attenuation rw int32 [0.1 dB] 0..300
/interface-configurations/interface-configuration/optics/optics-ots-rx-low-threshold-delta rw int32 [0.1 dB] 0..300
/interface-configurations/interface-configuration/optics/optics-ots-tx-voa-attenuation rw int32 [0.1 dB] 0..300
)" + below("/active-nodes", nodes_of_kind("active")) +
                  below("/preconfigured-nodes", nodes_of_kind("preconfigured")) + R"(/ots-oper ro container
/ots-oper/ots-ports ro container
/ots-oper/ots-ports/ots-port ro list name
/ots-oper/ots-ports/ots-port/name ro string
/ots-oper/ots-ports/ots-port/ots-info ro container
/ots-oper/ots-ports/ots-port/ots-info/lane-data ro container
/ots-oper/ots-ports/ots-port/ots-info/lane-data/transmit-power ro int32 [0.01 dBm]
/ots-oper/ots-ports/ots-port/ots-info/lane-data/receive-power ro int32 [0.01 dBm]
/ots-oper/ots-ports/ots-port/ots-info/lane-data/transmit-power-dbm ro int32 [0.01 dBm]
/ots-oper/ots-ports/ots-port/ots-info/lane-data/receive-power-dbm ro int32 [0.01 dBm]
/ots-oper/ots-ports/ots-port/ots-info/tx-voa-attenuation ro int32 [0.01 dB]
/ots-oper/ots-ports/ots-port/ots-info/rx-voa-attenuation ro int32 [0.01 dB]
/ots-oper/ots-ports/ots-port/ots-info/port-status ro string
/ots-oper/ots-ports/ots-port/ots-info/rx-low-threshold ro int32 [0.1 dBm]
/ots-oper/ots-ports/ots-port/ots-info/rx-thr-fail-low-delta-val ro int32 [0.1 dB]
/optics-oper ro container
/optics-oper/optics-ports ro container
/optics-oper/optics-ports/optics-port ro list name
/optics-oper/optics-ports/optics-port/name ro string
)" + below("/performance-management-history", R"( ro container
/global ro container
/global/periodic ro container
/global/periodic/optics-history ro container
/global/periodic/optics-history/optics-port-histories ro container
)") +
                  below("/performance-management-history/global/periodic/optics-history/optics-port-histories/"
                        "optics-port-history",
                        R"( ro list name
/name ro string
/optics-second30-history ro container
/optics-second30-history/optics-second30-optics-histories ro container
)") +
                  below("/performance-management-history/global/periodic/optics-history/optics-port-histories/"
                        "optics-port-history"
                        "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history",
                        R"( ro list number
/number ro uint32
/optics-second30-optics-time-line-instances ro container
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance ro list number
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/number ro uint32
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opt ro container
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opt/minimum ro string [dBm]
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opt/average ro string [dBm]
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opt/maximum ro string [dBm]
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opr ro container
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opr/minimum ro string [dBm]
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opr/average ro string [dBm]
/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance/opr/maximum ro string [dBm]
)"));
}

TEST(NativeModels, EveryNodeBelongsToItsModule) {
    const std::pair<const char *, std::string> rows[] = {
        {"/interface-configurations/interface-configuration/interface-name", "ifmgr-cfg"},
        {"/interface-configurations/interface-configuration/optics", "controller-optics-cfg"},
        {"/active-nodes/active-node/node-name", "config-mda-cfg"},
        {"/preconfigured-nodes/preconfigured-node", "config-mda-cfg"},
        {"/active-nodes/active-node/slot", "tlm2200-ots-cfg"},
        {"/preconfigured-nodes/preconfigured-node/slot", "tlm2200-ots-cfg"},
        {"/ots-oper/ots-ports/ots-port", "controller-tlm2200-ots-oper"},
        {"/optics-oper", "controller-optics-oper"},
        {"/performance-management-history", "pmengine-oper"},
    };
    for (const auto &[path, module] : rows) {
        const std::optional<NodeInfo> info = Schema::native().describe(path);
        ASSERT_TRUE(info) << path;
        EXPECT_EQ(info->module, "Vexlo-ORBIT-" + module) << path;
        EXPECT_EQ(info->namespace_uri, "http://vexlo.example/ns/yang/Vexlo-ORBIT-" + module) << path;
    }
}

TEST(Models, PathsThatNoModelHasAreNotFound) {
    for (const char *path :
         {"", "/", "aps", "/aps/", "//aps", "/aps/aps-module", "/active-nodes", "/aps/aps-modules/"}) {
        EXPECT_EQ(Schema::openconfig().find(path), nullptr) << path;
        EXPECT_FALSE(Schema::openconfig().describe(path)) << path;
    }
}

TEST(Models, OfTwoChildrenWithOneNameThePreferredNamespaceCounts) {
    const ocpsm::models::ModuleText modules[] = {
        {"one", "module one { namespace 'urn:one'; prefix one; container box { leaf size { type string; } } }"},
        {"two", "module two { namespace 'urn:two'; prefix two; import one { prefix one; }"
                " augment '/one:box' { leaf size { type string; } } }"}};
    const Schema schema(modules);
    const lysc_node *box = schema.child(nullptr, "box");
    ASSERT_NE(box, nullptr);
    EXPECT_STREQ(schema.child(box, "size")->module->ns, "urn:one");
    EXPECT_STREQ(schema.child(box, "size", "urn:two")->module->ns, "urn:two");
    EXPECT_STREQ(schema.child(box, "size", "urn:three")->module->ns, "urn:one");
}

TEST(Models, AModuleThatDoesNotCompileIsNamed) {
    const ocpsm::models::ModuleText modules[] = {
        {"broken", "module broken { namespace 'urn:b'; prefix b; leaf size { type strange; } }"}};
    try {
        const Schema schema(modules);
        FAIL() << "compiled";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), testing::StartsWith("module broken: "));
        EXPECT_THAT(error.what(), testing::HasSubstr("strange"));
    }
}

TEST(Models, AreSharedByThreads) {
    std::vector<const Schema *> seen(4);
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (const Schema *&slot : seen) {
        threads.emplace_back([&slot] { slot = &Schema::native(); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_THAT(seen, testing::Each(&Schema::native()));
}

} // namespace
