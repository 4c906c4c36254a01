// The walk of a native answer: one engine for the walkers of all native models.
#ifndef OC_PSM_NATIVE_WALK_HPP
#define OC_PSM_NATIVE_WALK_HPP

#include <span>

#include "walk.hpp"

namespace ymap {

enum class NativeKind { augment, container, list, leaf };

// A row of a native node table with the functions that belong to it.
struct NativeWalker {
    NativeKind kind;
    int parent;                            // index in the model's rows, -1 for its top
    const char *tag;                       // null for an augment entry
    Function function;                     // the walker, as messages name it
    Callback *walker;                      // the walker itself
    ContainerCallback *container_callback; // of a container, else null
    Callback *callback;                    // of a list or leaf, else null
    Callback *hook;
    const char *list_path; // schema path of a list, else null
    const char *keys[2];   // of a list
};

struct NativeModel {
    std::span<const NativeWalker> rows;
    const char *namespace_uri;
    bool operational; // its nodes are known only in the read that includes operational state
};

// The walker of row `index`, whatever its kind.
kerrno walk_native(const NativeModel &model, int index, yfw_map_ctx ctx, const Node *source, Node *destination);

} // namespace ymap

#endif
