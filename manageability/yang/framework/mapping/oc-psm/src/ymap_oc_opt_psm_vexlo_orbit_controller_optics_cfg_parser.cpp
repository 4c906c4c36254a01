// The walkers of Vexlo-ORBIT-controller-optics-cfg.
#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticscfg
#define YMAP_NATIVE_STEM vexlo_orbit_controller_optics_cfg
#include "native_walkers.inc"
