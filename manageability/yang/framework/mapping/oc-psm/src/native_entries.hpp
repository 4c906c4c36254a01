// Where the framework enters the plug-in with a native answer, made from the node tables.
#ifndef OC_PSM_NATIVE_ENTRIES_HPP
#define OC_PSM_NATIVE_ENTRIES_HPP

#include <array>
#include <cstddef>
#include <string_view>

#include "frame.hpp"
#include "native_models.hpp"
#include "native_names.hpp"

namespace ymap {

// A walker that is called from outside: for a whole answer, or for a subtree with which its model augments the entries
// of another model's list. The texts are literals.
struct NativeEntry {
    std::string_view module; // YANG module
    std::string_view walker; // exported name
    std::string_view tag;    // of the node that the walker is called with
    std::string_view list;   // schema path of the list that is augmented; empty: the node is the top of an answer
};

namespace native_entry {

// A node table's row as far as it tells an entry.
struct Row {
    std::string_view module;
    std::string_view suffix;
    std::string_view parent;
    std::string_view walker;
    std::string_view tag;
    std::string_view list;
};

inline constexpr Row rows[] = {
#define YMAP_ENTRY_ROW(suffix, parent, tag, list)                                                                      \
    {native_model(YMAP_STRING(YMAP_NATIVE_MODULE)).module,                                                             \
     #suffix,                                                                                                          \
     parent,                                                                                                           \
     YMAP_STRING(YMAP_NATIVE_WALKER(suffix)),                                                                          \
     tag,                                                                                                              \
     list},
#define YMAP_AUGMENT(suffix, list) YMAP_ENTRY_ROW(suffix, "", "", list)
#define YMAP_CONTAINER(suffix, parent, tag) YMAP_ENTRY_ROW(suffix, #parent, tag, "")
#define YMAP_LIST(suffix, parent, tag, callback, keys, path) YMAP_ENTRY_ROW(suffix, #parent, tag, "")
#define YMAP_LEAF(suffix, parent, tag, conversion)
#include "native_nodes.inc"
#undef YMAP_ENTRY_ROW
};

// Calls `visit(entry)` for the tops of the models, then for the subtrees, each in the order of the tables.
template <typename Visit>
constexpr void for_each(Visit visit) {
    for (const Row &row : rows) {
        if (row.parent == "none") {
            visit(NativeEntry{row.module, row.walker, row.tag, {}});
        }
    }
    for (const Row &augment : rows) {
        for (const Row &row : rows) {
            if (!augment.list.empty() && row.module == augment.module && row.parent == augment.suffix) {
                visit(NativeEntry{row.module, augment.walker, row.tag, augment.list});
            }
        }
    }
}

constexpr std::size_t count() {
    std::size_t entries = 0;
    for_each([&](const NativeEntry &) { ++entries; });
    return entries;
}

} // namespace native_entry

// The entries, in the order in which an answer is to be walked.
inline constexpr auto native_entries = [] {
    std::array<NativeEntry, native_entry::count()> entries{};
    std::size_t next = 0;
    native_entry::for_each([&](const NativeEntry &entry) { entries[next++] = entry; });
    return entries;
}();

} // namespace ymap

#endif
