// The exported callbacks of the OpenConfig model, declared from the node table.
//
// Walkers, list and leaf callbacks and augment hooks take the mapping context, the source node (for a whole-subtree
// walk: the node above it) and the destination tree; container callbacks take the number of children that the walker
// found before the destination. They return KERR_SUCCESS, a code of their own (kerr.h) or, unchanged, a callee's.
#ifndef OC_PSM_OPENCONFIG_CALLBACKS_HPP
#define OC_PSM_OPENCONFIG_CALLBACKS_HPP

#include "openconfig_names.hpp"
#include "walk.hpp"

extern "C" {

#define YMAP_CONTAINER(suffix, parent, tag, access)                                                                    \
    YMAP_EXPORT ymap::Callback YMAP_WALKER(suffix);                                                                    \
    YMAP_EXPORT ymap::ContainerCallback YMAP_CONTAINER_CALLBACK(suffix);                                               \
    YMAP_EXPORT ymap::Callback YMAP_AUGMENT_HOOK(suffix);
#define YMAP_LIST(suffix, parent, tag, access, conversion)                                                             \
    YMAP_EXPORT ymap::Callback YMAP_WALKER(suffix);                                                                    \
    YMAP_EXPORT ymap::Callback YMAP_LIST_CALLBACK(suffix);                                                             \
    YMAP_EXPORT ymap::Callback YMAP_AUGMENT_HOOK(suffix);
#define YMAP_KEY(suffix, parent, tag, access, conversion) YMAP_REFUSED(suffix, parent, tag, access)
#define YMAP_LEAF(suffix, parent, tag, access, conversion) YMAP_REFUSED(suffix, parent, tag, access)
#define YMAP_REFUSED(suffix, parent, tag, access)                                                                      \
    YMAP_EXPORT ymap::Callback YMAP_WALKER(suffix);                                                                    \
    YMAP_EXPORT ymap::Callback YMAP_LEAF_CALLBACK(suffix);
#include "openconfig_table.inc"

} // extern "C"

#endif
