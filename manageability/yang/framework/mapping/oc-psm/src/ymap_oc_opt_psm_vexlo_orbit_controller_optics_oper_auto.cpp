// The node callbacks of Vexlo-ORBIT-controller-optics-oper.
#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticsoper
#define YMAP_NATIVE_STEM vexlo_orbit_controller_optics_oper
#include "native_callbacks.inc"
