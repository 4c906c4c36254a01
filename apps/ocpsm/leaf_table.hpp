// An answer as a table for people.
#ifndef OCPSM_LEAF_TABLE_HPP
#define OCPSM_LEAF_TABLE_HPP

#include <string>
#include <vector>

#include "framework/service.hpp"

namespace ocpsm {

// A row for each leaf, with its unit, and a column for each module; the leaves of one container stand together below
// its path. What a module does not have is "-". Nothing is no text. `leaves` are in document order.
std::string leaf_table(const std::vector<Leaf> &leaves);

} // namespace ocpsm

#endif
