// The settings of a module's slot become OpenConfig configuration and state.
#include <cstring>

#include "module_writer.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

enum class Value { tenths, text, lockout };

struct SlotRow {
    Function function;
    const char *slot_list;
    Value value;
    const char *config_leaf;
    const char *state_leaf;
};

// Traffic that is locked out from one path is forced to the other.
const char *forced_port(const char *locked_out) {
    if (std::strcmp(locked_out, "working") == 0) {
        return "SECONDARY";
    }
    return std::strcmp(locked_out, "protected") == 0 ? "PRIMARY" : "NONE";
}

kerrno write(const SlotRow &row, yfw_map_ctx ctx, Node *destination, const char *value, kerrno result) {
    if (answers_configuration(ctx)) {
        result = add_module_leaf(ctx, destination, row.config_leaf, value);
    }
    if (is_operational_read(ctx)) {
        result = add_module_leaf(ctx, destination, row.state_leaf, value);
    }
    return result;
}

kerrno slot_to_high(const SlotRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *slot = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, row.slot_list, "slot-id", &slot);
    YMAP_TRACE(row.function, ctx, "slot_id: %s, input data %s", shown(slot), shown(value_of(*source)));
    if (!has_value(*source)) {
        return lookup;
    }
    switch (row.value) {
    case Value::tenths:
        return write(row, ctx, destination, ScaledValue(source->value, 10).text(), lookup);
    case Value::lockout:
        return write(row, ctx, destination, forced_port(source->value), lookup);
    default:
        return write(row, ctx, destination, source->value, lookup);
    }
}

} // namespace

extern "C" {

#define YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf)                                                          \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        static constexpr SlotRow row{{#conversion, YMAP_CALLBACK_PROTOTYPE(conversion),                                \
                                      YMAP_SOURCE("ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man")},                 \
                                     slot_list,                                                                        \
                                     Value::value,                                                                     \
                                     "/config/" leaf,                                                                  \
                                     "/state/" leaf};                                                                  \
        return convert_to_high(row.function, ctx, source, destination,                                                 \
                               [&] { return slot_to_high(row, ctx, source, destination); });                           \
    }
#include "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man.def"
#undef YMAP_SLOT_TO_HIGH

} // extern "C"
