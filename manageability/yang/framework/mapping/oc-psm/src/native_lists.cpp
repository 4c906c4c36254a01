#include "native_lists.hpp"

#include "native_models.hpp"
#include "utility.hpp"

namespace ymap::native_list {

namespace {

kerrno check_arguments(const Function &function, yfw_map_ctx ctx, const Node *source, const Node *destination) {
    return container_callback(function, ctx, source, destination);
}

// The controller that the entry is about, and whether it is the primary port of a module in place.
struct Controller {
    const char *name = nullptr;
    char module[psm_key_size] = {};
    kerrno lookup;
    bool primary;

    Controller(yfw_map_ctx ctx, const char *list_path)
        : lookup(yfw_map_get_node_info(ctx, list_path, "name", &name)),
          primary(check_controller_name_ots_is_good(ctx, name, module) == 1) {}
};

// One module collects the values of all controllers of its slot.
kerrno open_module(yfw_map_ctx ctx, const Controller &controller, Node *destination) {
    if (!is_operational_read(ctx)) {
        return controller.lookup;
    }
    return yfw_map_search_or_add_list(ctx, destination, module_list_of(*request_of(ctx)), YMAP_MODULE,
                                      controller.module, "name", openconfig);
}

} // namespace

kerrno empty(const Function &, yfw_map_ctx, const Node *, Node *) {
    return KERR_SUCCESS;
}

kerrno ots_port(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const kerrno checked = check_arguments(function, ctx, source, destination);
    if (checked != KERR_SUCCESS) {
        return checked;
    }
    Controller controller(ctx, YMAP_OTS_PORT);
    if (controller.primary) {
        return open_module(ctx, controller, destination);
    }
    const bool secondary = check_controller_name_ots_is_good_by_port(ctx, controller.name, controller.module, 2) == 1;
    return secondary ? controller.lookup : YMAP_ERR_SKIP;
}

kerrno optics_port_history(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const kerrno checked = check_arguments(function, ctx, source, destination);
    if (checked != KERR_SUCCESS) {
        return checked;
    }
    const Controller controller(ctx, YMAP_HISTORY);
    return controller.primary ? open_module(ctx, controller, destination) : YMAP_ERR_SKIP;
}

} // namespace ymap::native_list
