// Defines the node callbacks of one native model. The includer defines YMAP_NATIVE_MODULE, YMAP_NODES and YMAP_FILE as
// for the walkers. Included once per model: no guard.
#include "native_declarations.hpp"
#include "native_lists.hpp"
#include "node_callbacks.hpp"
#include "to_high.hpp"

namespace {

using namespace ymap;

// A leaf that is accepted and not translated: settings of a module that is not fitted.
[[maybe_unused]] constexpr Callback *none = nullptr;

[[maybe_unused]] kerrno accept_leaf(const Function &function, yfw_map_ctx ctx, const Node *source,
                                    const Node *destination) {
    return source == nullptr || destination == nullptr ? refuse_arguments(function, ctx) : KERR_SUCCESS;
}

} // namespace

#define YMAP_AUTO_FUNCTION(callback, prototype)                                                                        \
    static constexpr Function function {                                                                               \
        YMAP_STRING(callback), prototype(callback), YMAP_SOURCE(YMAP_FILE)                                             \
    }

extern "C" {

#define YMAP_AUGMENT(suffix)
#define YMAP_CONTAINER(suffix, parent, tag)                                                                            \
    kerrno YMAP_NATIVE_CONTAINER(suffix)(yfw_map_ctx ctx, const Node *source, unsigned int, Node *destination) {       \
        YMAP_AUTO_FUNCTION(YMAP_NATIVE_CONTAINER(suffix), YMAP_CONTAINER_CALLBACK_PROTOTYPE);                          \
        return container_callback(function, ctx, source, destination);                                                 \
    }
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    kerrno YMAP_NATIVE_LIST(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                          \
        YMAP_AUTO_FUNCTION(YMAP_NATIVE_LIST(suffix), YMAP_CALLBACK_PROTOTYPE);                                         \
        return native_list::callback(function, ctx, source, destination);                                              \
    }
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    kerrno YMAP_NATIVE_LEAF(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                          \
        YMAP_AUTO_FUNCTION(YMAP_NATIVE_LEAF(suffix), YMAP_CALLBACK_PROTOTYPE);                                         \
        constexpr Callback *convert = conversion;                                                                      \
        if constexpr (convert == nullptr) {                                                                            \
            return accept_leaf(function, ctx, source, destination);                                                    \
        } else {                                                                                                       \
            return leaf_callback(function, *convert, ctx, source, destination);                                        \
        }                                                                                                              \
    }
#include "native_table.hpp"

} // extern "C"
