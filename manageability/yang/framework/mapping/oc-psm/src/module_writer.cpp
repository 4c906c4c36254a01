#include "module_writer.hpp"

#include <cstdio>

namespace ymap {

LineController::LineController(const char *name) {
    if (name != nullptr) {
        std::sscanf(name, "Ots0/%d/0/%d", &slot, &port);
    }
}

kerrno add_module_leaf(yfw_map_ctx ctx, Node *destination, const char *leaf, const char *value) {
    char path[YFW_STITCH_PATH_SIZE] = {};
    std::snprintf(path, sizeof path, YMAP_MODULE "%s", leaf);
    return yfw_map_datatree_add_path_flagged(ctx, destination, path, openconfig, value, nullptr, nullptr, 0, 0);
}

void stitch_module_leaf(yfw_map_ctx ctx, Node *destination, const char *module, const char *leaf, const char *value) {
    yfw_map_stitch_entry entry{};
    entry.in_use = 1;
    entry.destination = destination;
    entry.value_kind = YFW_STITCH_VALUE_TEXT;
    std::snprintf(entry.namespace_uri, sizeof entry.namespace_uri, "%s", openconfig);
    std::snprintf(entry.value, sizeof entry.value, "%s", value);
    std::snprintf(entry.instance_path, sizeof entry.instance_path, YMAP_MODULE "[name=%s]%s", module, leaf);
    std::snprintf(entry.schema_path, sizeof entry.schema_path, YMAP_MODULE "%s", leaf);
    yfw_map_stitch_list_to_list(ctx, &entry);
}

void trace_module(const Function &function, yfw_map_ctx ctx, const char *module) {
    YMAP_TRACE(function, ctx, "psm_key:  %s ", module);
}

} // namespace ymap
