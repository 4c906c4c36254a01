// Controller names, module keys, database keys.
#include "utility_bounded.hpp"

#include <cstdio>

using namespace ymap;

namespace {

struct ControllerName {
    int slot = -1;
    int port = -1;

    explicit ControllerName(const char *text) { std::sscanf(text, "Ots0/%d/0/%d", &slot, &port); }
};

constexpr int slot_limit = 4;

} // namespace

extern "C" {

const char *const controller_psm_ots_list[7] = {"Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1", "Ots0/2/0/2",
                                                "Ots0/3/0/1", "Ots0/3/0/2", nullptr};

int ots_ctrl_key_to_psm_key(const char *controller, char *psm_key) {
    return std::snprintf(psm_key, psm_key_size, "0/%d-PSM-OM", ControllerName(controller).slot);
}

int psm_key_to_sysdb_key(const char *psm_key, const char *format, char *sysdb_key) {
    int slot = -1;
    std::sscanf(psm_key, "0/%d-PSM-OM", &slot);
    return format_number(sysdb_key, psm_key_size, format, slot);
}

int check_controller_name_ots_is_good_by_port(yfw_map_ctx ctx, const char *controller, char *psm_key, int port) {
    static constexpr Function function{
        "check_controller_name_ots_is_good_by_port",
        "int check_controller_name_ots_is_good_by_port(yfw_map_ctx, const char *, char *, int)",
        YMAP_SOURCE("utility")};
    YMAP_ASSERT_CONTEXT(function, ctx);
    if (controller == nullptr) {
        YMAP_ERROR(function, ctx, "controller_name is NULL !");
        return 0;
    }
    const ControllerName name(controller);
    YMAP_TRACE(function, ctx, "controller_name = %s", controller);
    if (name.port != port) {
        YMAP_ERROR(function, ctx, "Invalid controller_name [%s] and port id [%d], discard it!", controller, name.port);
        return 0;
    }
    // Slot 0 passes: it depends on the inventory like the others.
    if (name.slot < 0 || name.slot >= slot_limit) {
        YMAP_ERROR(function, ctx, "Invalid controller_name [%s] and slot id [%d], discard it!", controller, name.slot);
        return 0;
    }
    ots_ctrl_key_to_psm_key(controller, psm_key);
    YMAP_TRACE(function, ctx, "psm_name = %s", psm_key);
    char module_name[200] = {};
    if (read_module_name(ctx, psm_key, {module_name, sizeof module_name}) != KERR_SUCCESS) {
        YMAP_ERROR(function, ctx, "Psm_name [%s] not present in sysdb inventory, discard it!", psm_key);
        return 0;
    }
    // That the inventory holds the module is the whole test; its name there is not compared.
    YMAP_TRACE(function, ctx, "psm_name = %s", psm_key);
    YMAP_TRACE(function, ctx, "sys_psm_name = %s", module_name);
    return 1;
}

int check_controller_name_ots_is_good(yfw_map_ctx ctx, const char *controller, char *psm_key) {
    return check_controller_name_ots_is_good_by_port(ctx, controller, psm_key, 1);
}

} // extern "C"
