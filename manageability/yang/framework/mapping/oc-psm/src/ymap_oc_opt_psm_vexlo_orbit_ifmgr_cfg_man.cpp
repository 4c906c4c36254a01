// The interface entries of the line controllers tell which modules there are: one module per primary controller, or per
// secondary controller that stands alone.
#include <cstdio>
#include <cstring>

#include "answer_rows.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

#define YMAP_IFMGR_MAN "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_man"

constexpr std::size_t text_size = 200;

kerrno name_to_high(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    char module[text_size] = {};
    const char *name = value_of(*source);
    if (check_controller_name_ots_is_good(ctx, name, module) == 1) {
        return write_text({row, ctx, destination, module, ModuleTrace::stitched}, row.leaves, module, KERR_SUCCESS);
    }
    return answer_for_others(row.others, ctx, name, KERR_SUCCESS);
}

// True when the answer holds the primary controller of the slot that a secondary controller belongs to.
bool is_primary_answered(yfw_map_ctx ctx, const char *secondary) {
    char primary[text_size] = {};
    char path[path_size] = {};
    std::snprintf(primary, sizeof primary, "Ots0/%d/0/1", LineController(secondary).slot);
    return search_data_in_response(ctx, answer_root_of(*request_of(ctx)),
                                   "interface-configurations/interface-configuration/interface-name", path,
                                   primary) == 1;
}

// True when the entry on top of the hierarchy makes a module, whose key then stands in `module`. A secondary controller
// makes one only in a read of configuration in which its primary controller is missing.
bool makes_module(yfw_map_ctx ctx, char *module) {
    const Request &request = *request_of(ctx);
    char path[path_size] = {};
    char name[text_size] = {};
    compare_path(ctx, node_of(hierarchy_of(request)[hierarchy_length_of(request) - 1]),
                 "interface-configuration/interface-name", path, name);
    if (check_controller_name_ots_is_good(ctx, name, module) == 1) {
        return true;
    }
    if (operation_kind(ctx) != kind_get_config ||
        check_controller_name_ots_is_good_by_port(ctx, name, module, 2) != 1) {
        return false;
    }
    return !is_primary_answered(ctx, name);
}

// True when the request names a module and it is another one.
bool is_another_requested(yfw_map_ctx ctx, const char *module) {
    char path[path_size] = {};
    char requested[text_size] = {};
    compare_path(ctx, request_root_of(*request_of(ctx)), "aps/aps-modules/aps-module/name", path, requested);
    return requested[0] != '\0' && std::strcmp(requested, module) != 0;
}

// The first row opens the module, the others tell its key.
kerrno list_to_high(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    char module[text_size] = {};
    if (hierarchy_length_of(*request_of(ctx)) >= 2 && !makes_module(ctx, module)) {
        return KERR_SUCCESS;
    }
    if (is_another_requested(ctx, module)) {
        return YMAP_ERR_SKIP;
    }
    const kerrno opened = yfw_map_datatree_add_path_flagged(ctx, destination, YMAP_MODULE, openconfig, nullptr,
                                                            is_delete(source) ? source : nullptr, nullptr, 1, 0);
    return write_text({row, ctx, destination, module, ModuleTrace::stitched}, row.leaves.subspan(1), module, opened);
}

kerrno interface_entry(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    return convert_to_high(row.function, ctx, source, destination,
                           [&] { return end(row.function, ctx, list_to_high(row, ctx, source, destination)); });
}

kerrno interface_name(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    start(row.function, ctx);
    return convert_to_high(row.function, ctx, source, destination,
                           [&] { return end(row.function, ctx, name_to_high(row, ctx, source, destination)); });
}

} // namespace

extern "C" {

#define YMAP_TO_HIGH(conversion, steps, ...)                                                                           \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        YMAP_ANSWER_ROW(YMAP_IFMGR_MAN, conversion, __VA_ARGS__);                                                      \
        return steps(row, ctx, source, destination);                                                                   \
    }
#include "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_man.def"
#undef YMAP_TO_HIGH

#define YMAP_INTERFACE_NAME_LEAF                                                                                       \
    ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename

kerrno YMAP_INTERFACE_NAME_LEAF(yfw_map_ctx ctx, const Node *source, Node *destination) {
    static constexpr Function function{YMAP_STRING(YMAP_INTERFACE_NAME_LEAF),
                                       YMAP_CALLBACK_PROTOTYPE(YMAP_INTERFACE_NAME_LEAF), YMAP_SOURCE(YMAP_IFMGR_MAN)};
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return interface_psm_key_to_high(ctx, source, destination);
}

} // extern "C"
