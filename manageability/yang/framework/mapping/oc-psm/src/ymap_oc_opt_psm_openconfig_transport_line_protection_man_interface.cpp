// The groups of native nodes that several conversions add: the interface entry of a controller, and the selections of
// everything that is asked about a controller or a slot.
#include <cstdio>
#include <initializer_list>

#include "to_low.hpp"
#include "utility_bounded.hpp"
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

using namespace ymap;

extern "C" {

int build_interface_key(yfw_map_ctx ctx, const char *format, char *out) {
    char path[path_size] = {};
    char key[text_size] = {};
    int slot = -1;
    compare_path(ctx, list_node_of(*request_of(ctx)), "aps-module/name", path, key);
    std::sscanf(key, "0/%d-PSM-OM", &slot);
    format_number(out, text_size, format, slot);
    return slot != -1 ? 1 : 0;
}

void add_interface_key(yfw_map_ctx ctx, const Node *source, Node *destination, const char *controller) {
    static constexpr Function function{
        "add_interface_key",
        "void add_interface_key(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *, "
        "const char *)",
        YMAP_OPENCONFIG_SOURCE("man")};
    start(function, ctx);
    Node &node = writable(*source);
    const std::uint32_t operation = operation_of(node);
    if (is_delete(source)) {
        set_operation(node, operation_merge);
        add_flag(node, flag_operation_rewritten);
    }
    Adds add(ctx, destination);
    add(ifmgr_cfg, YMAP_INTERFACE, nullptr, source, opens);
    add(ifmgr_cfg, YMAP_INTERFACE "/interface-name", controller, source, belongs);
    add(ifmgr_cfg, YMAP_INTERFACE "/active", active, nullptr, belongs);
    add(optics_cfg, YMAP_OPTICS, nullptr, source, belongs);
    set_operation(node, operation);
    add_flag(node, flag_operation_rewritten);
    end(function, ctx, add.result());
}

kerrno add_ots_select_field(yfw_map_ctx ctx, const Node *source, Node *destination, const char *controller) {
    Adds add(ctx, destination);
    add(ots_oper, YMAP_OTS_PORT, nullptr, nullptr, opens);
    add(ots_oper, YMAP_OTS_PORT "/name", controller, source, belongs);
    for (const char *path :
         {YMAP_OTS_INFO "/lane-data/transmit-power", YMAP_OTS_INFO "/lane-data/receive-power",
          YMAP_OTS_INFO "/lane-data/transmit-power-dbm", YMAP_OTS_INFO "/lane-data/receive-power-dbm",
          YMAP_OTS_INFO "/tx-voa-attenuation", YMAP_OTS_INFO "/rx-voa-attenuation", YMAP_OTS_INFO "/port-status",
          YMAP_OTS_INFO "/rx-low-threshold", YMAP_OTS_INFO "/rx-thr-fail-low-delta-val"}) {
        add(ots_oper, path, nullptr, nullptr, belongs);
    }
    return add.result();
}

// History 1 and time-line instance 1: the last full interval of 30 seconds.
kerrno add_pm_select_field(yfw_map_ctx ctx, const Node *source, Node *destination, const char *controller) {
    Adds add(ctx, destination);
    add(pmengine_oper, YMAP_HISTORY, nullptr, nullptr, opens);
    add(pmengine_oper, YMAP_SECOND30, nullptr, nullptr, opens);
    add(pmengine_oper, YMAP_SECOND30 "/number", "1", nullptr, plain);
    add(pmengine_oper, YMAP_TIME_LINE, nullptr, nullptr, {1, 1});
    add(pmengine_oper, YMAP_TIME_LINE "/number", "1", nullptr, belongs);
    for (const char *path :
         {YMAP_TIME_LINE "/opr/average", YMAP_TIME_LINE "/opr/minimum", YMAP_TIME_LINE "/opr/maximum",
          YMAP_TIME_LINE "/opt/average", YMAP_TIME_LINE "/opt/minimum", YMAP_TIME_LINE "/opt/maximum"}) {
        add(pmengine_oper, path, nullptr, nullptr, plain);
    }
    add(pmengine_oper, YMAP_HISTORY "/name", controller, source, belongs);
    return add.result();
}

// No slot key is added: the whole slot list of the node is selected.
void add_hwmodule_select_field(yfw_map_ctx ctx, const Node *, Node *destination, int) {
    Adds add(ctx, destination);
    add(mda_cfg, YMAP_NODE "/node-name", node_name, nullptr, opens);
    for (const char *path :
         {YMAP_SLOT "/psm/revertive/enable", YMAP_SLOT "/psm/revertive/wtr", YMAP_SLOT "/psm/lockout-from",
          YMAP_SLOT "/psm/relative-switch-threshold/psm-relative-switch-threshold",
          YMAP_SLOT "/psm/relative-switch-threshold/psm-relative-switch-threshold-offset"}) {
        add(ots_cfg, path, nullptr, nullptr, opens);
    }
}

} // extern "C"
