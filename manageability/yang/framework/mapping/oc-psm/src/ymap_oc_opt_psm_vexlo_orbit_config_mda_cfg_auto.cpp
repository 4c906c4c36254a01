// The node callbacks of Vexlo-ORBIT-config-mda-cfg.
#define YMAP_NATIVE_MODULE vexloorbitconfigmdacfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_config_mda_cfg_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_config_mda_cfg_auto"
#include "native_callbacks.inc"
