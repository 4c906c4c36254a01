// What the controllers of a line system keep in the system database.
#ifndef BENCH_LINE_SYSTEM_DATABASE_ITEMS_HPP
#define BENCH_LINE_SYSTEM_DATABASE_ITEMS_HPP

#include <vector>

#include "bench/line_system/line_system.hpp"
#include "bench/sysdb/item.hpp"

namespace bench::line_system {

// The items of all fitted modules: per port the operational records, the configured values and the history of the last
// 30 seconds, per module its inventory. A value that is absent has no field, a record without fields no item.
std::vector<sysdb::Item> database_items(const LineSystem &system);

} // namespace bench::line_system

#endif
