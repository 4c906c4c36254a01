// The node callbacks of Vexlo-ORBIT-controller-tlm2200-ots-oper.
#define YMAP_NATIVE_MODULE vexloorbitcontrollertlm2200otsoper
#define YMAP_NATIVE_STEM vexlo_orbit_controller_tlm2200_ots_oper
#include "native_callbacks.inc"
