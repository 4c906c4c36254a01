// Declares the exported callbacks of the native model that YMAP_NATIVE_MODULE and YMAP_NODES name; prototypes and
// results as for the OpenConfig model. Included once per source file of a model: no guard.
#include "native_models.hpp"
#include "native_names.hpp"
#include "walk.hpp"

extern "C" {

#define YMAP_AUGMENT(suffix)                                                                                           \
    YMAP_EXPORT ymap::Callback YMAP_NATIVE_WALKER(suffix);                                                             \
    YMAP_EXPORT ymap::Callback YMAP_NATIVE_HOOK(suffix);
#define YMAP_CONTAINER(suffix, parent, tag)                                                                            \
    YMAP_AUGMENT(suffix)                                                                                               \
    YMAP_EXPORT ymap::ContainerCallback YMAP_NATIVE_CONTAINER(suffix);
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    YMAP_AUGMENT(suffix)                                                                                               \
    YMAP_EXPORT ymap::Callback YMAP_NATIVE_LIST(suffix);
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    YMAP_AUGMENT(suffix)                                                                                               \
    YMAP_EXPORT ymap::Callback YMAP_NATIVE_LEAF(suffix);
#include "native_table.hpp"

} // extern "C"
