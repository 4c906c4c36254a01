// The hand-written side of the OpenConfig model: conversions from OpenConfig to the native models and the groups of
// native nodes that they share.
#ifndef OC_PSM_OPENCONFIG_MAN_HPP
#define OC_PSM_OPENCONFIG_MAN_HPP

#include "frame.hpp"

extern "C" {

// ---- conversions ----
// All take the mapping context, the OpenConfig node and the destination of the native request. The result is that of
// the last add, zero when there was none; YMAP_ERR_INVALID_ARGS without a node or destination. They assert the context.

// The list entry: in a read without a key, adds the entries and selections of every controller of a module in place.
YMAP_EXPORT kerrno oc_aps_cfg_psm_list_to_low(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                              kidl_yfw_datatree *destination);

// The key leaf: adds the native list entries and keys of the module it names; nothing for a delete.
YMAP_EXPORT kerrno op_cfg_psm_key_to_low(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                         kidl_yfw_datatree *destination);

// config/name: in a read, the native keys of the module it names.
YMAP_EXPORT kerrno oc_psm_cfg_get_psm_key_to_low(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                                 kidl_yfw_datatree *destination);

// state/name: in a read, the port key of the module it names.
YMAP_EXPORT kerrno oc_opt_psm_state_get_psm_key_to_low(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                                       kidl_yfw_datatree *destination);

// The leaves: see the table for native path and scaling.
#define YMAP_TO_LOW(conversion, steps, value, port, model, path)                                                       \
    YMAP_EXPORT kerrno conversion(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man_leaves.def"
#undef YMAP_TO_LOW

// ---- groups of native nodes ----

// Writes `format`, a text with one "%d", with the slot of the module that the request names into `out` of 200 bytes.
// Returns 1 when a slot was found, else 0; then the slot is -1.
YMAP_EXPORT int build_interface_key(yfw_map_ctx ctx, const char *format, char *out);

// Adds the interface entry of a controller with its keys and its optics container under the operation of `source`. The
// keys of a delete are added as plain nodes; `source` gets its operation back and the operation-rewritten flag.
YMAP_EXPORT void add_interface_key(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination,
                                   const char *controller);

// Add the operational, respectively history, selections of a controller. The result is that of the last add.
YMAP_EXPORT kerrno add_ots_select_field(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                        kidl_yfw_datatree *destination, const char *controller);
YMAP_EXPORT kerrno add_pm_select_field(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination,
                                       const char *controller);

// Adds the selection of the settings of every slot of the node; `source` and `slot` are not used.
YMAP_EXPORT void add_hwmodule_select_field(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                           kidl_yfw_datatree *destination, int slot);

} // extern "C"

#endif
