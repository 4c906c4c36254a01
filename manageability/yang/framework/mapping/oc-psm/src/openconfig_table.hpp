// Expands the OpenConfig node table with the five row macros that the includer has defined, and forgets them. Included
// once per use: no guard.
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_nodes.def"

#undef YMAP_CONTAINER
#undef YMAP_LIST
#undef YMAP_KEY
#undef YMAP_LEAF
#undef YMAP_REFUSED
