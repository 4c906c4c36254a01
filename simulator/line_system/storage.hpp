// A line system in a store. Failures are ocpsm::Error.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_STORAGE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_STORAGE_HPP

#include <filesystem>
#include <memory>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Makes a new line system in a directory that holds none: all of it, or nothing.
std::unique_ptr<sysdb::Store> create(const sysdb::Client &client, const std::filesystem::path &directory,
                                     const LineSystem &system);

// Opens the line system of a directory.
std::unique_ptr<sysdb::Store> open(const sysdb::Client &client, const std::filesystem::path &directory);

// The line system as a transaction sees it.
LineSystem load(const sysdb::ReadTransaction &transaction);

// Replaces the line system and its database items.
void save(sysdb::WriteTransaction &transaction, const LineSystem &system);

} // namespace ocpsm::line_system

#endif
