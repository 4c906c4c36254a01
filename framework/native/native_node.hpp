// The one tree in the native models: a request as it is sent, and data as a device holds and answers it.
#ifndef OCPSM_FRAMEWORK_NATIVE_NATIVE_NODE_HPP
#define OCPSM_FRAMEWORK_NATIVE_NATIVE_NODE_HPP

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "framework/operation.hpp"

struct lysc_node;

namespace ocpsm::native {

// Where a node came from: a number that whoever adds it chooses; nothing here looks into it.
using Origin = std::uint32_t;
inline constexpr Origin no_origin = 0xffffffff;

// A node with what is below it. The children of a list entry begin with all of its keys, in the order of the key
// statement; the others follow in the order of the models, the entries of a list in the order in which they first came.
struct NativeNode {
    const lysc_node *schema = nullptr;
    std::optional<std::string> value = {}; // of a leaf: canonical in data; none on a selection and on an unnamed key
    std::vector<NativeNode> children = {};

    // Of requests only.
    Operation operation = Operation::merge; // its own; a read has only merge
    bool made = false;                      // in an edit, a list entry that is there afterwards
    bool selected = false;                  // in a read, a key that is not named but to be answered
    bool added = false;                     // false: it only stands on the way to nodes that were added
    Origin origin = no_origin;              // of the add that came last: at the node or, unless `added`, below it
};

// The two parts of the children; a node that is no list entry has no keys.
std::span<const NativeNode> keys(const NativeNode &node);
std::span<const NativeNode> others(const NativeNode &node);

// Whether a node is a key that a request neither names nor selects: nothing is to be sent for it.
bool says_nothing(const NativeNode &node);

} // namespace ocpsm::native

#endif
