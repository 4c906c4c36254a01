// The conversions from the native models to OpenConfig. All take the mapping context, the native node and the
// OpenConfig destination; YMAP_ERR_INVALID_ARGS without a node or destination; they assert the context.
#ifndef OC_PSM_TO_HIGH_HPP
#define OC_PSM_TO_HIGH_HPP

#include "frame.hpp"

extern "C" {

// The leaves: see the tables for what each writes. The result is that of the lookup of the entry's key, or of the last
// leaf added below the current module; YMAP_ERR_SKIP for a controller that belongs to no module, where the row says so.
#define YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf)                                                          \
    YMAP_EXPORT kerrno conversion(yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);
#define YMAP_OPTICS_TO_HIGH(conversion, writes, primary, secondary)                                                    \
    YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf)
#define YMAP_PORT_TO_HIGH(conversion, entry, direction, divisor, leaf, reader, ports, config_reader, others)           \
    YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf)
#define YMAP_MODULE_TO_HIGH(conversion, steps, primary, secondary) YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf)
#include "to_high_tables.inc"

// The interface entry of a controller: opens the module that it belongs to, once per module.
YMAP_EXPORT kerrno oc_opt_psm_if_list_cfg_to_high(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                                  kidl_yfw_datatree *destination);

// The interface name of a primary line controller: writes the names of its module.
YMAP_EXPORT kerrno interface_psm_key_to_high(yfw_map_ctx ctx, const kidl_yfw_datatree *source,
                                             kidl_yfw_datatree *destination);

// The callback of the interface name, written by hand.
YMAP_EXPORT kerrno
ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_man_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    yfw_map_ctx ctx, const kidl_yfw_datatree *source, kidl_yfw_datatree *destination);

} // extern "C"

#endif
