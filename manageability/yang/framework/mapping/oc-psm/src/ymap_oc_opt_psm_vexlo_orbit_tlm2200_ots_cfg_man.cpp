// The settings of a module's slot become OpenConfig configuration and state.
#include "answer_rows.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

kerrno slot_setting(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *slot = nullptr;
    const kerrno result = yfw_map_get_node_info(ctx, row.key_list, "slot-id", &slot);
    YMAP_TRACE(row.function, ctx, "slot_id: %s, input data %s", shown(slot), shown(value_of(*source)));
    if (!has_value(*source)) {
        return result;
    }
    return write_native({row, ctx, destination, nullptr, ModuleTrace::none}, row.leaves, held_value_of(*source),
                        result);
}

} // namespace

extern "C" {

#define YMAP_TO_HIGH(...) YMAP_DEFINE_TO_HIGH("ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man", __VA_ARGS__)
#include "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man.def"
#undef YMAP_TO_HIGH

} // extern "C"
