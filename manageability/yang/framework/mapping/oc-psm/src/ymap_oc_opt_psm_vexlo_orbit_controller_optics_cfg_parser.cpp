// The walkers of Vexlo-ORBIT-controller-optics-cfg.
#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_parser"
#define YMAP_NAMESPACE optics_cfg
#define YMAP_OPERATIONAL false
#include "native_walkers.inc"
