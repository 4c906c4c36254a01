// The node callbacks of Vexlo-ORBIT-controller-tlm2200-ots-oper.
#define YMAP_NATIVE_MODULE vexloorbitcontrollertlm2200otsoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_nodes.def"
#define YMAP_FILE "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_auto"
#include "native_callbacks.inc"
