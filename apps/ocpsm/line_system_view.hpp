// From the line system's own state to the table that a person looks at.
#ifndef OCPSM_LINE_SYSTEM_VIEW_HPP
#define OCPSM_LINE_SYSTEM_VIEW_HPP

#include "line_table.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm {

LineTable view(const ocpsm::line_system::LineSystem &system);

} // namespace ocpsm

#endif
