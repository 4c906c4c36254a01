// The power history of a line controller becomes OpenConfig state.
#include "port_values.hpp"
#include "to_high.hpp"

using namespace ymap;

extern "C" {

#define YMAP_TO_HIGH(...) YMAP_DEFINE_TO_HIGH("ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_man", __VA_ARGS__)
#include "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_man.def"
#undef YMAP_TO_HIGH

} // extern "C"
