// A line system as its device shows it in the native models.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_SIDE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_SIDE_HPP

#include "framework/device.hpp"
#include "framework/native/native_data.hpp"
#include "framework/native/net_request.hpp"
#include "simulator/line_system/line_system.hpp"

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

} // namespace ocpsm::line_system

#endif
