// The walkers of Vexlo-ORBIT-pmengine-oper.
#define YMAP_NATIVE_MODULE vexloorbitpmengineoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_parser"
#define YMAP_NAMESPACE pmengine_oper
#define YMAP_OPERATIONAL true
#include "native_walkers.inc"
