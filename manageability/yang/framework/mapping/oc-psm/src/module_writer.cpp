#include "module_writer.hpp"

#include <cstdio>

namespace ymap {

LineController::LineController(const char *name) {
    if (name != nullptr) {
        std::sscanf(name, "Ots0/%d/0/%d", &slot, &port);
    }
}

kerrno add_module_leaf(yfw_map_ctx ctx, Node *destination, const char *leaf, const char *value) {
    char path[stitch_path_size] = {};
    std::snprintf(path, sizeof path, YMAP_MODULE "%s", leaf);
    return yfw_map_datatree_add_path_flagged(ctx, destination, path, openconfig, value, nullptr, nullptr, 0, 0);
}

void stitch_module_leaf(yfw_map_ctx ctx, Node *destination, const char *module, const char *leaf, const char *value) {
    StitchEntry entry{};
    set_in_use(entry, 1);
    set_destination(entry, destination);
    set_value_kind(entry, stitch_value_text);
    std::snprintf(namespace_of(entry).data(), namespace_of(entry).size(), "%s", openconfig);
    std::snprintf(value_of(entry).data(), value_of(entry).size(), "%s", value);
    std::snprintf(instance_path_of(entry).data(), instance_path_of(entry).size(), YMAP_MODULE "[name=%s]%s", module,
                  leaf);
    std::snprintf(schema_path_of(entry).data(), schema_path_of(entry).size(), YMAP_MODULE "%s", leaf);
    yfw_map_stitch_list_to_list(ctx, &entry);
}

void trace_module(const Function &function, yfw_map_ctx ctx, const char *module) {
    YMAP_TRACE(function, ctx, "psm_key:  %s ", module);
}

} // namespace ymap
