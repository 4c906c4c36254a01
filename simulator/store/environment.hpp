// An LMDB environment that holds a store.
#ifndef OCPSM_SIMULATOR_STORE_ENVIRONMENT_HPP
#define OCPSM_SIMULATOR_STORE_ENVIRONMENT_HPP

#include <array>
#include <filesystem>
#include <memory>

#include <lmdb.h>

#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

struct CloseEnvironment {
    void operator()(MDB_env *environment) const { mdb_env_close(environment); }
};

struct AbortTransaction {
    void operator()(MDB_txn *transaction) const { mdb_txn_abort(transaction); }
};

struct CloseCursor {
    void operator()(MDB_cursor *cursor) const { mdb_cursor_close(cursor); }
};

using TransactionHandle = std::unique_ptr<MDB_txn, AbortTransaction>;
using CursorHandle = std::unique_ptr<MDB_cursor, CloseCursor>;

class Environment {
public:
    Environment(const std::filesystem::path &directory, Store::Mode mode);

    TransactionHandle begin_read();
    TransactionHandle begin_write();
    void commit(TransactionHandle transaction);

    MDB_dbi table(Table table) const { return tables_.at(static_cast<std::size_t>(table)); }

    // Throws the ocpsm::Error that belongs to a result of LMDB other than zero.
    void check(int result) const;

private:
    TransactionHandle begin(unsigned flags);
    void prepare_directory(Store::Mode mode) const;
    void open_tables(Store::Mode mode);
    bool file_is_shorter_than_its_pages() const;
    void extend_file();

    std::filesystem::path directory_;
    std::unique_ptr<MDB_env, CloseEnvironment> environment_;
    std::array<MDB_dbi, table_count> tables_{};
};

} // namespace ocpsm::sysdb

#endif
