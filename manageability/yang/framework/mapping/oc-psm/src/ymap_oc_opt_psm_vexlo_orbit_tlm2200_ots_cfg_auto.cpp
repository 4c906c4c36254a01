// The node callbacks of Vexlo-ORBIT-tlm2200-ots-cfg.
#define YMAP_NATIVE_MODULE vexloorbittlm2200otscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_auto"
#include "native_callbacks.inc"
