// The exported names of the OpenConfig model's walkers, callbacks and hooks, made from a row's suffix.
#ifndef OC_PSM_OPENCONFIG_NAMES_HPP
#define OC_PSM_OPENCONFIG_NAMES_HPP

#define YMAP_WALKER(suffix) ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_##suffix
#define YMAP_CONTAINER_CALLBACK(suffix) YMAP_WALKER(cont_##suffix)
#define YMAP_LIST_CALLBACK(suffix) YMAP_WALKER(list_##suffix)
#define YMAP_LEAF_CALLBACK(suffix) YMAP_WALKER(leaf_##suffix)
#define YMAP_AUGMENT_HOOK(suffix) YMAP_WALKER(suffix##_parse_augments)

#endif
