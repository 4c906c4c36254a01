// From a line system to the table that a person looks at.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_VIEW_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_VIEW_HPP

#include "simulator/line_system.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

LineTable view(const LineSystem &system);

} // namespace ocpsm::line_system

#endif
