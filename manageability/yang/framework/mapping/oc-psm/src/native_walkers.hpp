// Defines the walkers and the augment hooks of one native model. The includer defines
//   YMAP_NATIVE_MODULE       the module's part of the exported names
//   YMAP_NODES        its node table
//   YMAP_FILE         the including source file, as assertions name it
//   YMAP_NAMESPACE    the model's namespace
//   YMAP_OPERATIONAL  whether its nodes are known only in the read that includes operational state
// Included once per model: no guard.
#include "native_declarations.hpp"
#include "native_walk.hpp"

namespace {

using namespace ymap;

// The rows' places in the table.
enum Row : int {
    none = -1,
#define YMAP_AUGMENT(suffix) suffix,
#define YMAP_CONTAINER(suffix, parent, tag) suffix,
#define YMAP_LIST(suffix, parent, tag, callback, keys, path) suffix,
#define YMAP_LEAF(suffix, parent, tag, conversion) suffix,
#include "native_table.hpp"
};

#define YMAP_UNBRACKET(...) __VA_ARGS__
#define YMAP_WALKER_FUNCTION(suffix)                                                                                   \
    {                                                                                                                  \
        YMAP_STRING(YMAP_NATIVE_WALKER(suffix)), YMAP_CALLBACK_PROTOTYPE(YMAP_NATIVE_WALKER(suffix)),                  \
            YMAP_SOURCE(YMAP_FILE)                                                                                     \
    }
#define YMAP_ROW(kind, suffix, parent, tag, container_callback, callback, path, keys)                                  \
    {NativeKind::kind,                                                                                                 \
     parent,                                                                                                           \
     tag,                                                                                                              \
     YMAP_WALKER_FUNCTION(suffix),                                                                                     \
     YMAP_NATIVE_WALKER(suffix),                                                                                       \
     container_callback,                                                                                               \
     callback,                                                                                                         \
     YMAP_NATIVE_HOOK(suffix),                                                                                         \
     path,                                                                                                             \
     {YMAP_UNBRACKET keys}},

constexpr NativeWalker walkers[] = {
#define YMAP_AUGMENT(suffix) YMAP_ROW(augment, suffix, none, nullptr, nullptr, nullptr, nullptr, ())
#define YMAP_CONTAINER(suffix, parent, tag)                                                                            \
    YMAP_ROW(container, suffix, parent, tag, YMAP_NATIVE_CONTAINER(suffix), nullptr, nullptr, ())
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    YMAP_ROW(list, suffix, parent, tag, nullptr, YMAP_NATIVE_LIST(suffix), path, keys)
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    YMAP_ROW(leaf, suffix, parent, tag, nullptr, YMAP_NATIVE_LEAF(suffix), nullptr, ())
#include "native_table.hpp"
};

constexpr NativeModel model{walkers, YMAP_NAMESPACE, YMAP_OPERATIONAL};

} // namespace

extern "C" {

// No augmentation of a native model is translated.
#define YMAP_AUGMENT(suffix)                                                                                           \
    kerrno YMAP_NATIVE_WALKER(suffix)(yfw_map_ctx ctx, const Node *source, Node *destination) {                        \
        return walk_native(model, suffix, ctx, source, destination);                                                   \
    }                                                                                                                  \
    kerrno YMAP_NATIVE_HOOK(suffix)(yfw_map_ctx, const Node *, Node *) {                                               \
        return KERR_SUCCESS;                                                                                           \
    }
#define YMAP_CONTAINER(suffix, parent, tag) YMAP_AUGMENT(suffix)
#define YMAP_LIST(suffix, parent, tag, callback, keys, path) YMAP_AUGMENT(suffix)
#define YMAP_LEAF(suffix, parent, tag, conversion) YMAP_AUGMENT(suffix)
#include "native_table.hpp"

} // extern "C"
