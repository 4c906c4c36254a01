// The optics settings of a line controller become OpenConfig configuration and state, by the controller's port.
#include <cstdio>

#include "module_writer.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

struct OpticsRow {
    Function function;
    kerrno (*write)(yfw_map_ctx, Node *, const char *module, const char *path, const char *value, kerrno lookup);
    const char *primary;
    const char *secondary;
};

// A threshold or hysteresis.
kerrno setting(yfw_map_ctx ctx, Node *destination, const char *, const char *path, const char *value, kerrno) {
    return add_module_leaf(ctx, destination, path, value);
}

// The target attenuation of a port.
kerrno attenuation(yfw_map_ctx ctx, Node *destination, const char *module, const char *port, const char *value,
                   kerrno lookup) {
    char leaf[200] = {};
    kerrno result = lookup;
    if (answers_configuration(ctx)) {
        std::snprintf(leaf, sizeof leaf, "%s/config/target-attenuation", port);
        result = add_module_leaf(ctx, destination, leaf, value);
    }
    if (is_operational_read(ctx)) {
        std::snprintf(leaf, sizeof leaf, "%s/state/target-attenuation", port);
        stitch_module_leaf(ctx, destination, module, leaf, value);
    }
    return result;
}

const char *path_of_port(const OpticsRow &row, int port) {
    if (port == 1) {
        return row.primary;
    }
    return port == 2 ? row.secondary : nullptr;
}

kerrno optics_to_high(const OpticsRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, YMAP_INTERFACE, "interface-name", &name);
    YMAP_TRACE(row.function, ctx, "controller_name: %s", shown(name));
    const LineController controller(name);
    char value[value_size] = {};
    if (has_value(*source)) {
        convert_data_to_high(source->value, value, static_cast<int>(sizeof value), 10);
    }
    YMAP_TRACE(row.function, ctx, "value: %s", value);
    char module[psm_key_size] = {};
    ots_ctrl_key_to_psm_key(name != nullptr ? name : "", module);
    trace_module(row.function, ctx, module);
    const char *path = path_of_port(row, controller.port);
    if (!has_value(*source) || path == nullptr) {
        return lookup;
    }
    return row.write(ctx, destination, module, path, value, lookup);
}

} // namespace

extern "C" {

#define YMAP_OPTICS_TO_HIGH(conversion, writes, primary, secondary)                                                    \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        static constexpr OpticsRow row{{#conversion, YMAP_CALLBACK_PROTOTYPE(conversion),                              \
                                        YMAP_SOURCE("ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man")},         \
                                       writes,                                                                         \
                                       primary,                                                                        \
                                       secondary};                                                                     \
        return convert_to_high(row.function, ctx, source, destination,                                                 \
                               [&] { return optics_to_high(row, ctx, source, destination); });                         \
    }
#include "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man.def"
#undef YMAP_OPTICS_TO_HIGH

} // extern "C"
