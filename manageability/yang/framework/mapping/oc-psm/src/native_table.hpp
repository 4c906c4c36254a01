// Expands the node table that YMAP_NODES names with the four row macros that the includer has defined, and forgets
// them. Included once per use: no guard.
#include YMAP_NODES

#undef YMAP_AUGMENT
#undef YMAP_CONTAINER
#undef YMAP_LIST
#undef YMAP_LEAF
