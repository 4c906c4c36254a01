#include "fake_plugin_answers.hpp"

#include <cstdio>

#include "yfw_map.h"

extern "C" FakeAnswers fake_answers;
FakeAnswers fake_answers; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

namespace {

constexpr char openconfig[] = "http://openconfig.net/yang/optical-transport-line-protection";
constexpr char slots[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
constexpr char nodes[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg";

std::string hierarchy_of(const yfw_map_request &request) {
    std::string text;
    for (uint32_t level = 0; level < request.hierarchy_length; ++level) {
        text.append("/").append(request.hierarchy[level].node->tag);
    }
    return text;
}

kerrno finish(const std::string &walker) {
    return walker == fake_answers.failing ? fake_answers.code : KERR_SUCCESS;
}

kerrno called(const std::string &walker, yfw_map_ctx ctx, const kidl_yfw_datatree *source) {
    const yfw_map_request &request = *ctx->request;
    const kidl_yfw_datatree *root = request.answer_root;
    fake_answers.calls.push_back(
        walker + " " + source->tag + " of " + (root == nullptr ? "-" : root->tag) + " below '" + hierarchy_of(request) +
        "' depth " + std::to_string(request.output_depth) + " kind " +
        std::to_string(request.registration->operation_kind) + " mode " + std::to_string(request.selection_mode) + "/" +
        std::to_string(request.leaf_selection) + (ctx->trace_enabled != 0 ? " traced" : "") +
        (ctx->debug_log_filter.enabled_levels != 0 ? " logged" : ""));
    return finish(walker);
}

void stitch(yfw_map_ctx ctx, kidl_yfw_datatree *destination, const std::string &leaf) {
    yfw_map_stitch_entry entry{};
    entry.in_use = 1;
    entry.destination = destination;
    entry.value_kind = YFW_STITCH_VALUE_TEXT;
    std::snprintf(entry.namespace_uri, sizeof entry.namespace_uri, "%s", openconfig);
    std::snprintf(entry.value, sizeof entry.value, "0/1-PSM-OM");
    std::snprintf(entry.instance_path, sizeof entry.instance_path, "/aps/aps-modules/aps-module[name=0/1-PSM-OM]%s",
                  leaf.c_str());
    std::snprintf(entry.schema_path, sizeof entry.schema_path, "/aps/aps-modules/aps-module%s", leaf.c_str());
    yfw_map_stitch_list_to_list(ctx, &entry);
}

const kidl_yfw_datatree *child(const kidl_yfw_datatree *node, const char *tag) {
    for (int32_t index = 0; node != nullptr && index < node->child_count; ++index) {
        if (yfw_map_do_these_match(node->children[index].tag, tag) != 0) {
            return node->children + index;
        }
    }
    return nullptr;
}

// Every node has been walked.
void mark(kidl_yfw_datatree &node) {
    node.second_flags |= YFW_NODE2_KIND_SET;
    for (int32_t index = 0; index < node.child_count; ++index) {
        mark(node.children[index]);
    }
}

} // namespace

#define WALKER(name)                                                                                                   \
    extern "C" kerrno name(yfw_map_ctx ctx, const struct kidl_yfw_datatree *source,                                    \
                           struct kidl_yfw_datatree *destination);                                                     \
    kerrno name(yfw_map_ctx ctx, const struct kidl_yfw_datatree *source,                                               \
                [[maybe_unused]] struct kidl_yfw_datatree *destination)

WALKER(ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps) {
    // The read for the map is the one that names a whole module and nothing else.
    const kidl_yfw_datatree *module = child(child(source, "aps-modules"), "aps-module");
    const bool map = module != nullptr && module->child_count == 1 && child(module, "name") != nullptr;
    yfw_map_datatree_add_path_flagged(ctx, destination, "/active-nodes/active-node/node-name", nodes, "0/RP0/CPU0",
                                      nullptr, nullptr, 0, 0);
    yfw_map_datatree_add_path_flagged(ctx, destination, "/active-nodes/active-node/slot/slot-id", slots, "1", nullptr,
                                      nullptr, 0, 0);
    mark(*const_cast<kidl_yfw_datatree *>(source)); // the tree is writable
    return called(map ? "map" : "request", ctx, source);
}

WALKER(ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_lvla_interfaceconfigurations) {
    stitch(ctx, destination, fake_answers.stitch_leaf.empty() ? "/name" : fake_answers.stitch_leaf);
    const kerrno result = called("interfaces", ctx, source);
    if (fake_answers.stays) {
        yfw_map_add_to_node_hierarchy(ctx, source, 1);
    }
    return result;
}

WALKER(ymap_n2o_oc_opt_psm_vexloorbittlm2200otscfg_augment_lvla_active_node) {
    yfw_map_add_to_node_hierarchy(ctx, source, 2);
    yfw_map_update_current_list_node(ctx, "/node:active-nodes/node:active-node/slot");
    if (!fake_answers.revertive.empty()) {
        yfw_map_datatree_add_path_flagged(ctx, destination, "/aps/aps-modules/aps-module/config/revertive", openconfig,
                                          fake_answers.revertive.c_str(), nullptr, nullptr, 0, 0);
    }
    if (fake_answers.failing == "slot") {
        yfw_oc_error_path(ctx);
    }
    yfw_map_remove_from_node_hierarchy(ctx, source);
    return called("slot", ctx, source);
}

// The other walkers only tell.
#define TELLING(name, label)                                                                                           \
    WALKER(name) {                                                                                                     \
        return called(label, ctx, source);                                                                             \
    }

TELLING(ymap_n2o_oc_opt_psm_vexloorbitconfigmdacfg_lvla_activenodes, "nodes")
TELLING(ymap_n2o_oc_opt_psm_vexloorbitcontrollertlm2200otsoper_lvla_otsoper, "ports")
TELLING(ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticsoper_lvla_opticsoper, "optics ports")
TELLING(ymap_n2o_oc_opt_psm_vexloorbitpmengineoper_lvla_performancemanagementhistory, "histories")
TELLING(ymap_n2o_oc_opt_psm_vexloorbittlm2200otscfg_augment_lvla_preconfigured_node, "preconfigured slot")
TELLING(ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticscfg_augment_lvla_interface_configuration, "optics")
