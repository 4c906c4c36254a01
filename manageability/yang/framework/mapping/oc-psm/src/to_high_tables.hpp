// Expands the tables of the leaf conversions to OpenConfig with the four row macros that the includer has defined, and
// forgets them. Included once per use: no guard.
#include "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_man.def"
#include "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_man.def"
#include "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_man.def"
#include "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_man.def"

#undef YMAP_SLOT_TO_HIGH
#undef YMAP_OPTICS_TO_HIGH
#undef YMAP_PORT_TO_HIGH
#undef YMAP_MODULE_TO_HIGH
