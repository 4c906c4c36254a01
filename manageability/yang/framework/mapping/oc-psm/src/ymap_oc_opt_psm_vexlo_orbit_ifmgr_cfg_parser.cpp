// The walkers of Vexlo-ORBIT-ifmgr-cfg.
#define YMAP_NATIVE_MODULE vexloorbitifmgrcfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_parser"
#define YMAP_NAMESPACE ifmgr_cfg
#define YMAP_OPERATIONAL false
#include "native_walkers.inc"
