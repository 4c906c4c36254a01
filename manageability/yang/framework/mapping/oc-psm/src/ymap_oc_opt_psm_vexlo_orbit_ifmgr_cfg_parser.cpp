// The walkers of Vexlo-ORBIT-ifmgr-cfg.
#define YMAP_NATIVE_MODULE vexloorbitifmgrcfg
#define YMAP_NATIVE_STEM vexlo_orbit_ifmgr_cfg
#include "native_walkers.inc"
