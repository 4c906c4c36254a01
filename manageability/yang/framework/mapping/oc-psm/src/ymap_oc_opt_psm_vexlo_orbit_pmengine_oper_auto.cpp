// The node callbacks of Vexlo-ORBIT-pmengine-oper.
#define YMAP_NATIVE_MODULE vexloorbitpmengineoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_auto"
#include "native_callbacks.inc"
