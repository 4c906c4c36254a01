// The store of one line system: tables of records in a directory, read and written in transactions. The client library
// of the system database implements it, and everything else reaches it through this interface.
//
// The functions of a store may be called on any thread, and several stores may be open in a process, on the same
// directory too. A transaction is used and ends on the thread that began it; it may outlive its store.
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
    items,       // the system database: full path -> item, see item.hpp
    line_system, // what the line system keeps about itself
    journal,     // what has happened to it
};

inline constexpr std::size_t table_count = 3;
inline constexpr std::size_t max_key_size = 511;                     // bytes; a key has at least one
inline constexpr std::size_t max_store_size = std::size_t{64} << 20; // bytes of all keys and values together

// The file in the directory that a store is kept in.
inline constexpr char store_file[] = "line-system.store";

// Sees one state of the store for as long as it lives. On the thread that made it, the direct reads of the system
// database go through the youngest transaction that is alive.
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

// Sees its own changes. Without a commit it leaves the store as it was. There is one at a time in a directory: another
// thread or process waits for its end, a second one on the same thread is a std::logic_error.
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

// Failures of the directory, its files and their storage are ocpsm::Error, with one line for the user. Of their tags,
// data-missing is for a directory that holds no store, resource-denied for one without room.
class Store {
public:
    enum class Mode {
        existing, // the directory holds a store
        create    // the directory holds none yet; it is made when it is missing, the store by the first commit
    };

    Store() = default;
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;
    virtual ~Store() = default;

    // The state of the last commit, of whichever process. Waits for nobody.
    virtual std::unique_ptr<ReadTransaction> read() = 0;
    virtual std::unique_ptr<WriteTransaction> write() = 0;
};

} // namespace ocpsm::sysdb

// Opens the store of a directory, for the caller to delete; exported by the client library beside the platform's
// operations. Those read in the youngest transaction of their thread. Without one they read in the only store that is
// open, if there is only one.
extern "C" ocpsm::sysdb::Store *sysdb_client_open(const std::filesystem::path &directory,
                                                  ocpsm::sysdb::Store::Mode mode);

#endif
