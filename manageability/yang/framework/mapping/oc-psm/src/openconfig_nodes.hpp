// The rows of the OpenConfig node table as data, for the walk, the program and the documentation.
#ifndef OC_PSM_OPENCONFIG_NODES_HPP
#define OC_PSM_OPENCONFIG_NODES_HPP

#include <cstddef>
#include <iterator>

namespace ymap {

enum class NodeKind { container, list, key, leaf, refused };
enum class Access { configuration, state };

// A node's place in the table, named by its suffix.
enum class NodeId {
    none = -1,
#define YMAP_CONTAINER(suffix, parent, tag, access) suffix,
#define YMAP_LIST(suffix, parent, tag, access, conversion) suffix,
#define YMAP_KEY(suffix, parent, tag, access, conversion) suffix,
#define YMAP_LEAF(suffix, parent, tag, access, conversion) suffix,
#define YMAP_REFUSED(suffix, parent, tag, access) suffix,
#include "openconfig_table.inc"
};

struct NodeRow {
    NodeId id;
    NodeId parent;
    NodeKind kind;
    Access access;
    const char *suffix;     // ends the names of walker, callback and hook
    const char *tag;        // schema name
    const char *conversion; // exported name; null for a container and for a leaf that is refused
};

inline constexpr NodeRow node_rows[] = {
#define YMAP_CONTAINER(suffix, parent, tag, access)                                                                    \
    {NodeId::suffix, NodeId::parent, NodeKind::container, Access::access, #suffix, tag, nullptr},
#define YMAP_LIST(suffix, parent, tag, access, conversion)                                                             \
    {NodeId::suffix, NodeId::parent, NodeKind::list, Access::access, #suffix, tag, #conversion},
#define YMAP_KEY(suffix, parent, tag, access, conversion)                                                              \
    {NodeId::suffix, NodeId::parent, NodeKind::key, Access::access, #suffix, tag, #conversion},
#define YMAP_LEAF(suffix, parent, tag, access, conversion)                                                             \
    {NodeId::suffix, NodeId::parent, NodeKind::leaf, Access::access, #suffix, tag, #conversion},
#define YMAP_REFUSED(suffix, parent, tag, access)                                                                      \
    {NodeId::suffix, NodeId::parent, NodeKind::refused, Access::access, #suffix, tag, nullptr},
#include "openconfig_table.inc"
};

inline constexpr std::size_t node_count = std::size(node_rows);

constexpr const NodeRow &row_of(NodeId id) {
    return node_rows[static_cast<std::size_t>(id)];
}

} // namespace ymap

#endif
