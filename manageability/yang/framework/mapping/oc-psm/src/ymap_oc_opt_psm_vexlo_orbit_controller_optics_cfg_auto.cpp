// The node callbacks of Vexlo-ORBIT-controller-optics-cfg.
#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_auto"
#include "native_callbacks.inc"
