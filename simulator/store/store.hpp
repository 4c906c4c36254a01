// The store of one line system: tables of records in a directory, read and written in transactions. The client library
// of the system database owns it, and everything else reaches it through this interface.
#ifndef OCPSM_SIMULATOR_STORE_STORE_HPP
#define OCPSM_SIMULATOR_STORE_STORE_HPP

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace ocpsm::sysdb {

enum class Table {
    items,                // the system database: full path -> item, see item.hpp
    native_configuration, // configuration of the native models
    native_operational,   // operational data of the native models
    line_system,          // what the line system keeps about itself
};

inline constexpr std::size_t table_count = 4;
inline constexpr std::size_t max_key_size = 511; // bytes; a key has at least one

// Sees one state of the store for as long as it lives. On the thread that made it, the direct reads of the system
// database go through the youngest transaction that is alive. It ends on that thread.
class ReadTransaction {
public:
    ReadTransaction() = default;
    ReadTransaction(const ReadTransaction &) = delete;
    ReadTransaction &operator=(const ReadTransaction &) = delete;
    virtual ~ReadTransaction() = default;

    // A record, or nothing. The bytes stay valid until the next change in this transaction or its end.
    virtual std::optional<std::string_view> get(Table table, std::string_view key) const = 0;

    // Visits the records whose keys begin with `prefix`, in the order of the bytes of their keys, until the visitor
    // returns false. The visitor changes nothing.
    using Visitor = std::function<bool(std::string_view key, std::string_view value)>;
    virtual void for_each(Table table, std::string_view prefix, const Visitor &visit) const = 0;

    // The first key that is not below `key`, or nothing.
    virtual std::optional<std::string_view> lower_bound(Table table, std::string_view key) const = 0;
};

// Sees its own changes. Without a commit it leaves the store as it was. There is one at a time: another thread or
// process waits for its end, a second one on the same thread is a std::logic_error.
class WriteTransaction : public ReadTransaction {
public:
    virtual void put(Table table, std::string_view key, std::string_view value) = 0;

    // Whether there was such a record.
    virtual bool erase(Table table, std::string_view key) = 0;

    // Erases every record whose key begins with `prefix` and says how many there were.
    virtual std::size_t erase_all(Table table, std::string_view prefix) = 0;

    // Makes the changes last and ends the transaction: it must not be used any more.
    virtual void commit() = 0;
};

// Failures of the directory, its files and their storage are ocpsm::Error, with one line for the user.
class Store {
public:
    enum class Mode {
        existing, // the directory holds a store
        create    // the directory holds none yet; it is made when it is missing
    };

    Store() = default;
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;
    virtual ~Store() = default;

    // A store that is open has to be closed first (std::logic_error).
    virtual void open(const std::filesystem::path &directory, Mode mode) = 0;

    // No transaction may be alive (std::logic_error). Closing what is closed does nothing.
    virtual void close() = 0;

    virtual bool is_open() const = 0;

    // The store must be open (std::logic_error).
    virtual std::unique_ptr<ReadTransaction> read() = 0;
    virtual std::unique_ptr<WriteTransaction> write() = 0;
};

} // namespace ocpsm::sysdb

// The one store of the process, closed at first; exported by the client library beside the platform's operations. The
// operations read from it, whoever opened it.
extern "C" ocpsm::sysdb::Store *sysdb_client_store();

#endif
