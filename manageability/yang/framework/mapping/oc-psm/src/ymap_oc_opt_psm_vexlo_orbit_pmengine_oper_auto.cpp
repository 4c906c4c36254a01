// The node callbacks of Vexlo-ORBIT-pmengine-oper.
#define YMAP_NATIVE_MODULE vexloorbitpmengineoper
#define YMAP_NATIVE_STEM vexlo_orbit_pmengine_oper
#include "native_callbacks.inc"
