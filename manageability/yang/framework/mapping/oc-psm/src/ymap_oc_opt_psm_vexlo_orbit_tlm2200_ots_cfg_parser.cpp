// The walkers of Vexlo-ORBIT-tlm2200-ots-cfg.
#define YMAP_NATIVE_MODULE vexloorbittlm2200otscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_parser"
#define YMAP_NAMESPACE ots_cfg
#define YMAP_OPERATIONAL false
#include "native_walkers.inc"
