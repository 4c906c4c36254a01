// Expands the table of direct reads with the three row macros that the includer has defined, and forgets them. Included
// once per use: no guard.
#include "utility_readers.def"

#undef YMAP_BAG_READER
#undef YMAP_INTEGER_READER
#undef YMAP_HISTORY_READER
