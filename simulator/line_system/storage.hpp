// A line system in a store. Failures are ocpsm::Error.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_STORAGE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_STORAGE_HPP

#include <filesystem>

#include "simulator/line_system/line_system.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Makes a new line system in a directory that holds none, and leaves the store open.
void create(sysdb::Store &store, const std::filesystem::path &directory, const LineSystem &system);

// Opens the line system of a directory and leaves the store open; when there is none, the store stays closed.
LineSystem open(sysdb::Store &store, const std::filesystem::path &directory);

// The line system as a transaction sees it.
LineSystem load(const sysdb::ReadTransaction &transaction);

// Replaces the line system and its database items. Native data is left alone.
void save(sysdb::WriteTransaction &transaction, const LineSystem &system);

} // namespace ocpsm::line_system

#endif
