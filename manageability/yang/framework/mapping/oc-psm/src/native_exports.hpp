// The exported names of all native models, for the version script.
#include "native_names.hpp"

#define YMAP_NATIVE_MODULE vexloorbittlm2200otscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitconfigmdacfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_config_mda_cfg_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitifmgrcfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticscfg
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitcontrollertlm2200otsoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitcontrolleropticsoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_controller_optics_oper_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES

#define YMAP_NATIVE_MODULE vexloorbitpmengineoper
#define YMAP_NODES "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_nodes.def"
#include "native_export.hpp"
#undef YMAP_NATIVE_MODULE
#undef YMAP_NODES
