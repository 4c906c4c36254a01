// The walkers of Vexlo-ORBIT-config-mda-cfg.
#define YMAP_NATIVE_MODULE vexloorbitconfigmdacfg
#define YMAP_NATIVE_STEM vexlo_orbit_config_mda_cfg
#include "native_walkers.inc"
