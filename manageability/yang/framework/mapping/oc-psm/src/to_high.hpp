// The conversions from the native models to OpenConfig. All take the mapping context, the native node and the
// OpenConfig destination; YMAP_ERR_INVALID_ARGS without a node or destination; they assert the context.
#ifndef OC_PSM_TO_HIGH_HPP
#define OC_PSM_TO_HIGH_HPP

#include "frame.hpp"

extern "C" {

// See the tables for what each writes. The result is that of the lookup of the entry's key, or of the last node added
// below the current module; YMAP_ERR_SKIP for a controller that belongs to no module, where the row says so.
#define YMAP_TO_HIGH(conversion, ...)                                                                                  \
    YMAP_EXPORT kerrno conversion(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);
#include "to_high_tables.inc"

// The callback of the interface name, written by hand.
YMAP_EXPORT kerrno
ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);

} // extern "C"

#endif
