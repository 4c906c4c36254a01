// Stores in files, and the transactions of a thread.
#ifndef OCPSM_SIMULATOR_STORE_FILE_STORE_HPP
#define OCPSM_SIMULATOR_STORE_FILE_STORE_HPP

#include <filesystem>
#include <memory>

#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

std::unique_ptr<Store> open_store(const std::filesystem::path &directory, Store::Mode mode);

// The youngest transaction of this thread that is alive, or null.
const ReadTransaction *youngest_transaction();

// A transaction of the only store of this process that is open, or null.
std::unique_ptr<ReadTransaction> read_the_only_store();

// Whether one of the two above is there.
bool can_read();

} // namespace ocpsm::sysdb

#endif
