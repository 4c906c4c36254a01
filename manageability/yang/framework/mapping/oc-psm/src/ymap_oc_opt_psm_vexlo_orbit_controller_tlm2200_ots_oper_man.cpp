// The operational values of a line controller become OpenConfig state.
#include "port_values.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

// Thresholds are told apart by the port in the controller's name alone.
kerrno threshold(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, row.key_list, "name", &name);
    const LineController controller(name);
    char module[psm_key_size] = {};
    ots_ctrl_key_to_psm_key(name != nullptr ? name : "", module);
    YMAP_TRACE(row.function, ctx, "controller_name: %s", shown(name));
    char path[path_size] = {};
    char requested[200] = {};
    compare_path(ctx, request_root_of(*request_of(ctx)), "aps/aps-modules/aps-module/name", path, requested);
    YMAP_TRACE(row.function, ctx, "key: %s", requested);
    if (has_value(*source)) {
        write_native({row, ctx, destination, module, ModuleTrace::all},
                     rows_of(row.leaves, line_source(controller.port)), held_value_of(*source), KERR_SUCCESS);
    }
    return lookup;
}

// The leaf is the key itself.
kerrno module_name(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    yfw_map_print_datatree_internal(ctx, request_root_of(*request_of(ctx)), "reg_dup_datatree");
    char module[psm_key_size] = {};
    const char *name = value_of(*source);
    if (check_controller_name_ots_is_good(ctx, name, module) != 1) {
        return answer_for_others(row.others, ctx, name, KERR_SUCCESS);
    }
    write_text({row, ctx, destination, module, ModuleTrace::all}, row.leaves, module, KERR_SUCCESS);
    return KERR_SUCCESS;
}

} // namespace

extern "C" {

#define YMAP_TO_HIGH(...)                                                                                              \
    YMAP_DEFINE_TO_HIGH("ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man", __VA_ARGS__)
#include "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man.def"
#undef YMAP_TO_HIGH

} // extern "C"
