// What of an edit may cost its traffic, said before it is committed.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_RISKS_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_RISKS_HPP

#include <string>
#include <vector>

#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

// A line for each setting of a fitted module that has changed to something that endangers the traffic with the light
// that there is now, and one where it moves at the next evaluation. Settings that stay as they were are not looked at.
std::vector<std::string> risks(const LineSystem &before, const LineSystem &after);

} // namespace ocpsm::line_system

#endif
