#include "walk.hpp"

namespace ymap {

kerrno refuse_malformed(const Function &function, yfw_map_ctx ctx) {
    YMAP_ERROR(function, ctx, "Failed to get subtrees!");
    return YMAP_ERR_BAD_TREE;
}

} // namespace ymap
