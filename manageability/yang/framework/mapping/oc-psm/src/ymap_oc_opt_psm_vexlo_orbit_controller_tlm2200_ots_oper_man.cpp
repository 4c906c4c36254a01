// The operational values of a line controller become OpenConfig state.
#include <cstring>

#include "port_values.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

#define YMAP_OTS_OPER_MAN "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man"

struct ModuleRow {
    Function function;
    const char *primary;
    const char *secondary;
};

void write(const ModuleRow &row, yfw_map_ctx ctx, Node *destination, const char *module, const char *leaf,
           const char *value) {
    trace_module(row.function, ctx, module);
    stitch_module_leaf(ctx, destination, module, leaf, value);
}

// The status of the primary port tells the path that traffic takes.
kerrno active_path(const ModuleRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, YMAP_OTS_PORT, "name", &name);
    char module[psm_key_size] = {};
    if (check_controller_name_ots_is_good(ctx, name, module) != 1) {
        return check_controller_name_ots_is_good_by_port(ctx, name, module, 2) == 1 ? lookup : YMAP_ERR_SKIP;
    }
    if (has_value(*source)) {
        const bool active = std::strcmp(source->value, "active") == 0;
        write(row, ctx, destination, module, row.primary, active ? "PRIMARY" : "SECONDARY");
    }
    return lookup;
}

// Thresholds are told apart by the port in the controller's name alone.
kerrno threshold(const ModuleRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, YMAP_OTS_PORT, "name", &name);
    const LineController controller(name);
    char module[psm_key_size] = {};
    ots_ctrl_key_to_psm_key(name != nullptr ? name : "", module);
    YMAP_TRACE(row.function, ctx, "controller_name: %s", shown(name));
    char path[path_size] = {};
    char requested[200] = {};
    compare_path(ctx, ctx->request->request_root, "aps/aps-modules/aps-module/name", path, requested);
    YMAP_TRACE(row.function, ctx, "key: %s", requested);
    const char *secondary = controller.port == 2 ? row.secondary : nullptr;
    const char *leaf = controller.port == 1 ? row.primary : secondary;
    if (leaf != nullptr && has_value(*source)) {
        write(row, ctx, destination, module, leaf, ScaledValue(source->value, 10).text());
    }
    return lookup;
}

// The leaf is the key itself.
kerrno module_name(const ModuleRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    yfw_map_print_datatree_internal(ctx, ctx->request->request_root, "reg_dup_datatree");
    char module[psm_key_size] = {};
    const char *name = value_of(*source);
    if (check_controller_name_ots_is_good(ctx, name, module) != 1) {
        return check_controller_name_ots_is_good_by_port(ctx, name, module, 2) == 1 ? KERR_SUCCESS : YMAP_ERR_SKIP;
    }
    if (is_operational_read(ctx)) {
        write(row, ctx, destination, module, row.primary, module);
    }
    return KERR_SUCCESS;
}

} // namespace

extern "C" {

#define YMAP_PORT_TO_HIGH(...) YMAP_DEFINE_PORT_TO_HIGH(YMAP_OTS_OPER_MAN, __VA_ARGS__)
#define YMAP_MODULE_TO_HIGH(conversion, steps, primary, secondary)                                                     \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        static constexpr ModuleRow row{                                                                                \
            {#conversion, YMAP_CALLBACK_PROTOTYPE(conversion), YMAP_SOURCE(YMAP_OTS_OPER_MAN)}, primary, secondary};   \
        return convert_to_high(row.function, ctx, source, destination,                                                 \
                               [&] { return steps(row, ctx, source, destination); });                                  \
    }
#include "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man.def"
#undef YMAP_PORT_TO_HIGH
#undef YMAP_MODULE_TO_HIGH

} // extern "C"
