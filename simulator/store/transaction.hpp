// Transactions of the store over LMDB.
#ifndef OCPSM_SIMULATOR_STORE_TRANSACTION_HPP
#define OCPSM_SIMULATOR_STORE_TRANSACTION_HPP

#include <atomic>
#include <memory>

#include "simulator/store/environment.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

// The transactions that are alive keep a count, so that the store is not closed under them.
using LiveCount = std::atomic<int>;

std::unique_ptr<ReadTransaction> make_read_transaction(Environment &environment, LiveCount &live);
std::unique_ptr<WriteTransaction> make_write_transaction(Environment &environment, LiveCount &live);

// The youngest transaction of this thread that is alive, or null.
const ReadTransaction *youngest_transaction();

} // namespace ocpsm::sysdb

#endif
