// The exported names of the native model that YMAP_NATIVE_MODULE and YMAP_NODES name. Included once per model: no
// guard.
#define YMAP_AUGMENT(suffix)                                                                                           \
    YMAP_NATIVE_WALKER(suffix);                                                                                        \
    YMAP_NATIVE_HOOK(suffix);
#define YMAP_CONTAINER(suffix, parent, tag)                                                                            \
    YMAP_NATIVE_WALKER(suffix);                                                                                        \
    YMAP_NATIVE_HOOK(suffix);                                                                                          \
    YMAP_NATIVE_CONTAINER(suffix);
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    YMAP_NATIVE_WALKER(suffix);                                                                                        \
    YMAP_NATIVE_HOOK(suffix);                                                                                          \
    YMAP_NATIVE_LIST(suffix);
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    YMAP_NATIVE_WALKER(suffix);                                                                                        \
    YMAP_NATIVE_HOOK(suffix);                                                                                          \
    YMAP_NATIVE_LEAF(suffix);
#include "native_table.hpp"
