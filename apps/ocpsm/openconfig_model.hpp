// The OpenConfig model as its YANG text has it, flattened.
#ifndef OCPSM_OPENCONFIG_MODEL_HPP
#define OCPSM_OPENCONFIG_MODEL_HPP

#include <vector>

#include "coverage.hpp"

namespace ocpsm {

// Every container, list and leaf, parents first, in the order of the text.
std::vector<SchemaNode> read_openconfig_model();

// Whether a native module has a node of this kind with this path.
bool is_native_node(std::string_view module, std::string_view path, NodeKind kind);

} // namespace ocpsm

#endif
