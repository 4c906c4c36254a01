// A line system as its device shows it in the native models.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_SIDE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_SIDE_HPP

#include <string>
#include <vector>

#include "framework/native/native_data.hpp"
#include "framework/native/net_request.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/line_system/native_table.hpp"

namespace ocpsm::line_system {

// Configuration and operational data, all of it.
native::NativeData native_data(const LineSystem &system);

// The line system after an edit that NetRequest::check has passed. Throws Error, with the native path, for the first
// node in document order that cannot be carried out:
//   data-missing    hardware that is not fitted, or a delete of what is not there
//   data-exists     a create of what is there
//   invalid-value   a value that no controller can be set to
// Powers and database items follow at once, the switches at the next tick.
LineSystem apply(const LineSystem &system, const native::NetRequest &edit);

// A leaf that an edit has set, to a canonical value.
struct SetLeaf {
    std::string path; // native instance path
    Field field;
    Place place;
    std::string value;
};

// The same, with the leaves that the edit has set.
struct Edited {
    LineSystem system;
    std::vector<SetLeaf> set;
};
Edited carry_out(const LineSystem &system, const native::NetRequest &edit);

// Throws Error (operation-failed), with the native path of the first leaf that is lost, unless a line system that was
// stored and read again is the edited one and shows every value that was set.
void require_kept(const Edited &edited, const LineSystem &stored);

} // namespace ocpsm::line_system

#endif
