// The node callbacks of Vexlo-ORBIT-tlm2200-ots-cfg.
#define YMAP_NATIVE_MODULE vexloorbittlm2200otscfg
#define YMAP_NATIVE_STEM vexlo_orbit_tlm2200_ots_cfg
#include "native_callbacks.inc"
