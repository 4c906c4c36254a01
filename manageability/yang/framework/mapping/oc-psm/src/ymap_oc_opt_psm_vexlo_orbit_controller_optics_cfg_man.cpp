// The optics settings of a line controller become OpenConfig configuration and state, by the controller's port.
#include "answer_rows.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

kerrno optics_setting(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno result = yfw_map_get_node_info(ctx, row.key_list, "interface-name", &name);
    YMAP_TRACE(row.function, ctx, "controller_name: %s", shown(name));
    const LineController controller(name);
    const AnswerValue value(row.leaves.front().value, value_of(*source));
    YMAP_TRACE(row.function, ctx, "value: %s", value.text());
    char module[psm_key_size] = {};
    ots_ctrl_key_to_psm_key(name != nullptr ? name : "", module);
    trace_module(row.function, ctx, module);
    if (!has_value(*source)) {
        return result;
    }
    return write_text({row, ctx, destination, module, ModuleTrace::none},
                      rows_of(row.leaves, line_source(controller.port)), value.text(), result);
}

} // namespace

extern "C" {

#define YMAP_TO_HIGH(...) YMAP_DEFINE_TO_HIGH("ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man", __VA_ARGS__)
#include "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man.def"
#undef YMAP_TO_HIGH

} // extern "C"
