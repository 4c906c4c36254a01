// The models as they are embedded: every node with its access, type, unit and default, written by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <thread>

#include "framework/models/models.hpp"

namespace {

using ocpsm::models::describe;
using ocpsm::models::NodeInfo;
using ocpsm::models::NodeKind;
using ocpsm::models::Schema;

// A line per node: path, access, then "container", "list" with its keys, or a leaf's type, units and default.
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

const std::string module_path = "/aps/aps-modules/aps-module";

constexpr char top[] = R"(/aps rw container
/aps/aps-modules rw container
/aps/aps-modules/aps-module rw list name
/aps/aps-modules/aps-module/name rw leafref
/aps/aps-modules/aps-module/config rw container
/aps/aps-modules/aps-module/config/name rw string
/aps/aps-modules/aps-module/config/revertive rw boolean
/aps/aps-modules/aps-module/config/wait-to-restore-time rw uint32 [milliseconds]
/aps/aps-modules/aps-module/config/hold-off-time rw uint32 [milliseconds]
/aps/aps-modules/aps-module/config/primary-switch-threshold rw decimal642 [dBm]
/aps/aps-modules/aps-module/config/primary-switch-hysteresis rw decimal642 [dB] =0.0
/aps/aps-modules/aps-module/config/secondary-switch-threshold rw decimal642 [dBm]
/aps/aps-modules/aps-module/config/relative-switch-threshold rw decimal642 [dB] =0.0
/aps/aps-modules/aps-module/config/relative-switch-threshold-offset rw decimal642 [dB] =0.0
/aps/aps-modules/aps-module/config/force-to-port rw enumeration =NONE NONE PRIMARY SECONDARY
/aps/aps-modules/aps-module/state ro container
/aps/aps-modules/aps-module/state/name ro string
/aps/aps-modules/aps-module/state/revertive ro boolean
/aps/aps-modules/aps-module/state/wait-to-restore-time ro uint32 [milliseconds]
/aps/aps-modules/aps-module/state/hold-off-time ro uint32 [milliseconds]
/aps/aps-modules/aps-module/state/primary-switch-threshold ro decimal642 [dBm]
/aps/aps-modules/aps-module/state/primary-switch-hysteresis ro decimal642 [dB] =0.0
/aps/aps-modules/aps-module/state/secondary-switch-threshold ro decimal642 [dBm]
/aps/aps-modules/aps-module/state/relative-switch-threshold ro decimal642 [dB] =0.0
/aps/aps-modules/aps-module/state/relative-switch-threshold-offset ro decimal642 [dB] =0.0
/aps/aps-modules/aps-module/state/force-to-port ro enumeration =NONE NONE PRIMARY SECONDARY
/aps/aps-modules/aps-module/state/active-path ro identityref PRIMARY SECONDARY
/aps/aps-modules/aps-module/ports rw container
)";

constexpr char input_port[] = R"( rw container
/config rw container
/config/enabled rw boolean =true
/config/target-attenuation rw decimal642 [dB]
/state ro container
/state/enabled ro boolean =true
/state/target-attenuation ro decimal642 [dB]
)";

constexpr char output_port[] = R"( rw container
/config rw container
/config/target-attenuation rw decimal642 [dB]
/state ro container
/state/target-attenuation ro decimal642 [dB]
)";

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

TEST(OpenConfigModel, HasEveryPublishedNode) {
    const std::string ports = module_path + "/ports";
    std::string expected = top;
    expected += below(ports + "/line-primary-in", std::string(input_port) + readings);
    expected += below(ports + "/line-primary-out", std::string(output_port) + readings);
    expected += below(ports + "/line-secondary-in", std::string(input_port) + readings);
    expected += below(ports + "/line-secondary-out", std::string(output_port) + readings);
    expected += below(ports + "/common-in", std::string(input_port) + readings);
    expected += below(ports + "/common-output", std::string(output_port) + readings);
    EXPECT_EQ(nodes_of(Schema::openconfig()), expected);
}

TEST(OpenConfigModel, IsThePublishedRevision) {
    const lys_module *module =
        ly_ctx_get_module_implemented(Schema::openconfig().context(), "openconfig-transport-line-protection");
    ASSERT_NE(module, nullptr);
    EXPECT_STREQ(module->revision, "2018-11-21");
    EXPECT_STREQ(module->prefix, "oc-line-protect");
    EXPECT_STREQ(module->ns, "http://openconfig.net/yang/optical-transport-line-protection");
    EXPECT_EQ(module->parsed->version, LYS_VERSION_1_0);
}

TEST(OpenConfigModel, DerivesBothPathsFromOneIdentity) {
    const lys_module *module =
        ly_ctx_get_module_implemented(Schema::openconfig().context(), "openconfig-transport-line-protection");
    ASSERT_NE(module, nullptr);
    ASSERT_EQ(LY_ARRAY_COUNT(module->identities), 3u);
    EXPECT_STREQ(module->identities[0].name, "APS_PATHS");
    ASSERT_EQ(LY_ARRAY_COUNT(module->identities[0].derived), 2u);
    EXPECT_STREQ(module->identities[0].derived[0]->name, "PRIMARY");
    EXPECT_STREQ(module->identities[0].derived[1]->name, "SECONDARY");
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
/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold/rx-threshold rw int32 [0.1 dBm]
/interface-configurations/interface-configuration/optics/optics-ots-rx-voa-attenuation rw int32 [0.1 dB]
/interface-configurations/interface-configuration/optics/optics-ots-rx-low-threshold-delta rw int32 [0.1 dB]
/interface-configurations/interface-configuration/optics/optics-ots-tx-voa-attenuation rw int32 [0.1 dB]
/active-nodes rw container
/active-nodes/active-node rw list node-name
/active-nodes/active-node/node-name rw string
/active-nodes/active-node/slot rw list slot-id
/active-nodes/active-node/slot/slot-id rw uint32
/active-nodes/active-node/slot/psm rw container
/active-nodes/active-node/slot/psm/relative-switch-threshold rw container
/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold rw int32 [0.1 dB]
/active-nodes/active-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold-offset rw int32 [0.1 dB]
/active-nodes/active-node/slot/psm/revertive rw container
/active-nodes/active-node/slot/psm/revertive/enable rw boolean
/active-nodes/active-node/slot/psm/revertive/wtr rw uint32 [milliseconds]
/active-nodes/active-node/slot/psm/lockout-from rw string
/preconfigured-nodes rw container
/preconfigured-nodes/preconfigured-node rw list node-name
/preconfigured-nodes/preconfigured-node/node-name rw string
/preconfigured-nodes/preconfigured-node/slot rw list slot-id
/preconfigured-nodes/preconfigured-node/slot/slot-id rw uint32
/preconfigured-nodes/preconfigured-node/slot/psm rw container
/preconfigured-nodes/preconfigured-node/slot/psm/relative-switch-threshold rw container
/preconfigured-nodes/preconfigured-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold rw int32 [0.1 dB]
/preconfigured-nodes/preconfigured-node/slot/psm/relative-switch-threshold/psm-relative-switch-threshold-offset rw int32 [0.1 dB]
/preconfigured-nodes/preconfigured-node/slot/psm/revertive rw container
/preconfigured-nodes/preconfigured-node/slot/psm/revertive/enable rw boolean
/preconfigured-nodes/preconfigured-node/slot/psm/revertive/wtr rw uint32 [milliseconds]
/preconfigured-nodes/preconfigured-node/slot/psm/lockout-from rw string
/ots-oper ro container
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
    const auto owner = [](std::string_view path) {
        const std::optional<NodeInfo> info = Schema::native().describe(path);
        EXPECT_TRUE(info) << path;
        return info ? std::string(info->module) + " " + std::string(info->namespace_uri) : std::string();
    };
    EXPECT_EQ(owner("/interface-configurations/interface-configuration/interface-name"),
              "Vexlo-ORBIT-ifmgr-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg");
    EXPECT_EQ(owner("/interface-configurations/interface-configuration/optics"),
              "Vexlo-ORBIT-controller-optics-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg");
    EXPECT_EQ(owner("/active-nodes/active-node/node-name"),
              "Vexlo-ORBIT-config-mda-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg");
    EXPECT_EQ(owner("/preconfigured-nodes/preconfigured-node"),
              "Vexlo-ORBIT-config-mda-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg");
    EXPECT_EQ(owner("/active-nodes/active-node/slot"),
              "Vexlo-ORBIT-tlm2200-ots-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg");
    EXPECT_EQ(owner("/preconfigured-nodes/preconfigured-node/slot"),
              "Vexlo-ORBIT-tlm2200-ots-cfg http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg");
    EXPECT_EQ(owner("/ots-oper/ots-ports/ots-port"),
              "Vexlo-ORBIT-controller-tlm2200-ots-oper "
              "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper");
    EXPECT_EQ(owner("/optics-oper"),
              "Vexlo-ORBIT-controller-optics-oper http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-oper");
    EXPECT_EQ(owner("/performance-management-history"),
              "Vexlo-ORBIT-pmengine-oper http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper");
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
