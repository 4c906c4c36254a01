// What the controllers of a line system keep in the system database.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_DATABASE_ITEMS_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_DATABASE_ITEMS_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "simulator/database/item.hpp"
#include "simulator/line_system/controllers.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

// The items of all fitted modules: per port those of its readings, per line what is configured, per module its
// inventory.
std::vector<sysdb::Item> database_items(const LineSystem &system);

// The items of one port's readings: the operational records and the history of the last 30 seconds. A value that is
// absent has no field, a record without fields no item.
std::vector<sysdb::Item> port_items(int slot, std::size_t port, const Readings &readings);

// A power of the history as a device stores it: two places, padded with blanks on both sides, e.g. "   -12.30 ".
std::string history_text(int hundredths_of_dbm);

} // namespace ocpsm::line_system

#endif
