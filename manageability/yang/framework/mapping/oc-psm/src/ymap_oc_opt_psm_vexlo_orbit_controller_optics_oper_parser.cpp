// The walkers of Vexlo-ORBIT-controller-optics-oper.
#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticsoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_optics_oper_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_controller_optics_oper_parser"
#define YMAP_NAMESPACE optics_oper
#define YMAP_OPERATIONAL true
#include "native_walkers.inc"
