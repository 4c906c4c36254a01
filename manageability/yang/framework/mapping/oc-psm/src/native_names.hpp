// The exported names of a native model's walkers, callbacks and hooks, made from YMAP_NATIVE_MODULE and a row's
// suffix, and the names of its files.
#ifndef OC_PSM_NATIVE_NAMES_HPP
#define OC_PSM_NATIVE_NAMES_HPP

#define YMAP_NATIVE_JOIN(module, rest) ymap_n2o_oc_opt_psm_##module##_##rest
#define YMAP_NATIVE_NAME(module, rest) YMAP_NATIVE_JOIN(module, rest)

#define YMAP_NATIVE_WALKER(suffix) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, suffix)
#define YMAP_NATIVE_CONTAINER(suffix) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, cont_##suffix)
#define YMAP_NATIVE_LIST(suffix) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, list_##suffix)
#define YMAP_NATIVE_LEAF(suffix) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, leaf_##suffix)
#define YMAP_NATIVE_HOOK(suffix) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, suffix##_parse_augments)

// The name of a file of the model that YMAP_NATIVE_STEM names.
#define YMAP_NATIVE_FILE_TEXT(name) #name
#define YMAP_NATIVE_FILE_OF(stem, ending) YMAP_NATIVE_FILE_TEXT(ymap_oc_opt_psm_##stem##_##ending)
#define YMAP_NATIVE_FILE_JOIN(stem, ending) YMAP_NATIVE_FILE_OF(stem, ending)
#define YMAP_NATIVE_FILE(ending) YMAP_NATIVE_FILE_JOIN(YMAP_NATIVE_STEM, ending)

// A leaf callback that is written by hand, in front of a conversion.
#define YMAP_MAN_LEAF(suffix, conversion) YMAP_NATIVE_NAME(YMAP_NATIVE_MODULE, man_leaf_##suffix)

#endif
