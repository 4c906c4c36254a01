// The key of a protection module becomes the keys of the native lists: the module in slot s stands under the hardware
// module slot s and has the line controllers Ots0/s/0/1 (primary) and Ots0/s/0/2 (secondary).
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

#include <array>
#include <cstdio>
#include <utility>

#include "to_low.hpp"
#include "utility.hpp"

namespace {

using namespace ymap;

// The names that a module's key leads to. A key that does not scan leaves slot -1, which flows into the names.
struct ModuleNames {
    int slot = -1;
    char primary[text_size] = {};
    char secondary[text_size] = {};
    char slot_text[text_size] = {};

    explicit ModuleNames(const char *key) {
        std::sscanf(key, "0/%d-PSM-OM", &slot);
        std::snprintf(primary, sizeof primary, "Ots0/%d/0/1", slot);
        std::snprintf(secondary, sizeof secondary, "Ots0/%d/0/2", slot);
        std::snprintf(slot_text, sizeof slot_text, "%d", slot);
    }
};

// ---- the list entry ----

// One flag per slot: the hardware module entry has been added for it.
using SlotsDone = std::array<bool, 3>;

// Calls `add(controller, slot)` for every controller of a module in place.
template <typename Add>
void for_each_good_controller(yfw_map_ctx ctx, Add add) {
    for (const char *const *controller = controller_psm_ots_list; *controller != nullptr; ++controller) {
        int slot = -1;
        int port = -1;
        char module[psm_key_size] = {};
        std::sscanf(*controller, "Ots0/%d/0/%d", &slot, &port);
        if (check_controller_name_ots_is_good_by_port(ctx, *controller, module, port) == 1) {
            add(*controller, slot);
        }
    }
}

bool first_of_slot(SlotsDone &done, int slot) {
    return !std::exchange(done[static_cast<std::size_t>(slot) - 1], true);
}

void add_interfaces_of_all(const Function &function, yfw_map_ctx ctx, const Node *source, Adds &add, SlotsDone &done) {
    for_each_good_controller(ctx, [&](const char *controller, int slot) {
        add(ifmgr_cfg, YMAP_INTERFACE, nullptr, source, opens);
        add(ifmgr_cfg, YMAP_INTERFACE "/interface-name", controller, source, belongs);
        add(ifmgr_cfg, YMAP_INTERFACE "/active", active, source, belongs);
        if (first_of_slot(done, slot)) {
            YMAP_TRACE(function, ctx, "strlen(key) == 0, set /active-nodes/active-node/node-name");
            add(mda_cfg, YMAP_NODE "/node-name", node_name, nullptr, opens);
        }
    });
}

// The slots whose node entry stands already get no hardware module selection beside it.
void add_selections_of_all(yfw_map_ctx ctx, const Node *source, Node *destination, SlotsDone &done) {
    for_each_good_controller(ctx, [&](const char *controller, int slot) {
        add_ots_select_field(ctx, source, destination, controller);
        add_pm_select_field(ctx, source, destination, controller);
        if (first_of_slot(done, slot)) {
            add_hwmodule_select_field(ctx, source, destination, slot);
        }
    });
}

kerrno list_to_low(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination) {
    char path[path_size] = {};
    char key[text_size] = {};
    SlotsDone done{};
    Adds add(ctx, destination);
    compare_path(ctx, source, "aps-module/name", path, key);
    YMAP_TRACE(function, ctx, "key %s", key);
    const bool named = key[0] != '\0';
    if (!is_delete(source)) {
        YMAP_TRACE(function, ctx, "merge request");
        if (!named) {
            add_interfaces_of_all(function, ctx, source, add, done);
        }
    }
    if (is_operational_read(ctx)) {
        YMAP_TRACE(function, ctx, "IS_REQUEST_GET");
        if (named) {
            add(ots_oper, YMAP_OTS_PORT, nullptr, nullptr, opens);
            add(pmengine_oper, YMAP_HISTORY, nullptr, nullptr, opens);
            add(pmengine_oper, YMAP_TIME_LINE "/number", "1", nullptr, plain);
        } else {
            add_selections_of_all(ctx, source, destination, done);
        }
    }
    return add.result();
}

// ---- the leaves that name a module ----

// One call of the conversion of such a leaf.
struct NamedModule {
    const Function &function;
    yfw_map_ctx ctx;
    const Node *source;
    const ModuleNames names;
    Adds add;
};

// A leaf without a value names nothing, which is no failure.
kerrno name_to_low(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination,
                   void (*steps)(NamedModule &)) {
    if (!has_value(*source)) {
        return KERR_SUCCESS;
    }
    NamedModule module{function, ctx, source, ModuleNames(held_value_of(*source)), Adds(ctx, destination)};
    YMAP_TRACE(function, ctx, "psm_name = %s", held_value_of(*source));
    steps(module);
    return module.add.result();
}

void add_interface_keys(NamedModule &module, const char *controller) {
    module.add(ifmgr_cfg, YMAP_INTERFACE "/interface-name", controller, module.source, belongs);
    module.add(ifmgr_cfg, YMAP_INTERFACE "/active", active, module.source, belongs);
}

void add_merged_module(NamedModule &module) {
    Adds &add = module.add;
    YMAP_TRACE(module.function, module.ctx, "merge request");
    add(ifmgr_cfg, YMAP_INTERFACE, nullptr, module.source, opens);
    add_interface_keys(module, module.names.primary);
    YMAP_TRACE(module.function, module.ctx, "set /active-nodes/active-node/node-name");
    add(mda_cfg, YMAP_NODE, nullptr, module.source, opens);
    add(mda_cfg, YMAP_NODE "/node-name", node_name, module.source, plain);
    add(ots_cfg, YMAP_SLOT, nullptr, module.source, {1, 1});
    add(ots_cfg, YMAP_SLOT "/slot-id", module.names.slot_text, module.source, belongs);
}

void add_read_module(NamedModule &module) {
    Adds &add = module.add;
    YMAP_TRACE(module.function, module.ctx, "YFW_MAP_IS_GET");
    add(ifmgr_cfg, YMAP_INTERFACE, nullptr, nullptr, opens);
    add_interface_keys(module, module.names.primary);
    YMAP_TRACE(module.function, module.ctx, "set /active-nodes/active-node/node-name");
    add(mda_cfg, YMAP_NODE "/node-name", node_name, nullptr, opens);
    add(ots_cfg, YMAP_SLOT "/slot-id", module.names.slot_text, nullptr, opens);
    if (is_operational_read(module.ctx)) {
        add(ots_oper, YMAP_OTS_PORT "/name", module.names.primary, nullptr, opens);
        add(pmengine_oper, YMAP_HISTORY "/name", module.names.primary, nullptr, opens);
    }
}

// The secondary controller has entries of its own; its history is read from the system database.
void add_read_secondary(NamedModule &module) {
    Adds &add = module.add;
    YMAP_TRACE(module.function, module.ctx, "YFW_MAP_IS_GET");
    add(ifmgr_cfg, YMAP_INTERFACE, nullptr, module.source, opens);
    add_interface_keys(module, module.names.secondary);
    if (is_operational_read(module.ctx)) {
        add(ots_oper, YMAP_OTS_PORT, nullptr, nullptr, opens);
        add(ots_oper, YMAP_OTS_PORT "/name", module.names.secondary, nullptr, opens);
    }
}

// The list's key.
void key_steps(NamedModule &module) {
    YMAP_TRACE(module.function, module.ctx, "controller_name_primary = %s", module.names.primary);
    YMAP_TRACE(module.function, module.ctx, "controller_name_secondary = %s", module.names.secondary);
    if (is_read(module.ctx)) {
        add_read_module(module);
    } else if (is_delete(module.source)) {
        YMAP_TRACE(module.function, module.ctx, "delete request"); // the module's leaves carry the delete themselves
    } else {
        add_merged_module(module);
    }
    if (is_read(module.ctx)) {
        add_read_secondary(module);
    }
}

void trace_controller(const NamedModule &module) {
    YMAP_TRACE(module.function, module.ctx, "controller_name = %s", module.names.primary);
}

// config/name.
void config_name_steps(NamedModule &module) {
    trace_controller(module);
    if (is_read(module.ctx)) {
        add_interface_keys(module, module.names.primary);
        module.add(ots_cfg, YMAP_SLOT "/slot-id", module.names.slot_text, module.source, belongs);
    } else {
        is_delete(module.source); // the framework counts on the question, not on its answer
    }
    if (is_operational_read(module.ctx)) {
        module.add(ots_oper, YMAP_OTS_PORT "/name", module.names.primary, nullptr, plain);
        module.add(pmengine_oper, YMAP_HISTORY "/name", module.names.primary, nullptr, plain);
    }
}

// state/name.
void state_name_steps(NamedModule &module) {
    trace_controller(module);
    if (is_read(module.ctx)) {
        module.add(ots_oper, YMAP_OTS_PORT "/name", module.names.primary, nullptr, belongs);
    } else {
        is_delete(module.source); // likewise
    }
}

} // namespace

extern "C" {

kerrno oc_aps_cfg_psm_list_to_low(yfw_map_ctx ctx, const Node *source, Node *destination) {
    YMAP_MAN_FUNCTION(oc_aps_cfg_psm_list_to_low);
    return convert_to_low(function, ctx, source, destination,
                          [&] { return list_to_low(function, ctx, source, destination); });
}

#define YMAP_NAME_TO_LOW(conversion, steps)                                                                            \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        YMAP_MAN_FUNCTION(conversion);                                                                                 \
        return convert_to_low(function, ctx, source, destination,                                                      \
                              [&] { return name_to_low(function, ctx, source, destination, steps); });                 \
    }

YMAP_NAME_TO_LOW(op_cfg_psm_key_to_low, key_steps)
YMAP_NAME_TO_LOW(oc_psm_cfg_get_psm_key_to_low, config_name_steps)
YMAP_NAME_TO_LOW(oc_opt_psm_state_get_psm_key_to_low, state_name_steps)

} // extern "C"
