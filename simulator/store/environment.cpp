#include "simulator/store/environment.hpp"

#include <cerrno>
#include <string>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "framework/error.hpp"

namespace ocpsm::sysdb {
namespace {

constexpr char data_file[] = "data.mdb";

// Address space, not disk; it cannot grow while the environment is open.
constexpr std::size_t map_size = std::size_t{256} << 20;

constexpr mdb_mode_t file_mode = 0644;

// In the order of enum Table.
constexpr std::array<const char *, table_count> table_names{"items", "native-configuration", "native-operational",
                                                            "line-system"};

[[noreturn]] void refuse(const std::string &message, const std::string &advice) {
    throw Error(Error::Source::input, "operation-failed", "", message, advice);
}

[[noreturn]] void refuse_no_line_system(const std::filesystem::path &directory) {
    refuse("the directory " + directory.string() + " holds no line system", "create one there first");
}

[[noreturn]] void refuse_damaged(const std::filesystem::path &directory, const std::string &reason) {
    refuse("the line system in " + directory.string() + " is damaged: " + reason,
           "restore the directory from a copy or create a new line system");
}

} // namespace

Environment::Environment(const std::filesystem::path &directory, Store::Mode mode) : directory_(directory) {
    prepare_directory(mode);
    MDB_env *environment = nullptr;
    check(mdb_env_create(&environment));
    environment_.reset(environment);
    check(mdb_env_set_maxdbs(environment, table_count));
    check(mdb_env_set_mapsize(environment, map_size));
    // A request's snapshot and another one may live on one thread.
    check(mdb_env_open(environment, directory_.c_str(), MDB_NOTLS, file_mode));
    // A page that the file does not hold would end the process when it is touched.
    if (file_is_shorter_than_its_pages()) {
        refuse_damaged(directory_, "the file is cut");
    }
    int dead_readers = 0;
    check(mdb_reader_check(environment, &dead_readers));
    open_tables(mode);
}

void Environment::prepare_directory(Store::Mode mode) const {
    std::error_code failure;
    if (mode == Store::Mode::create) {
        std::filesystem::create_directory(directory_, failure);
        if (failure) {
            refuse("the directory " + directory_.string() + " cannot be created: " + failure.message(), "");
        }
        if (std::filesystem::exists(directory_ / data_file, failure)) {
            refuse("the directory " + directory_.string() + " already holds a line system",
                   "name another directory or remove this one");
        }
        return;
    }
    const auto directory_status = std::filesystem::status(directory_, failure);
    if (directory_status.type() == std::filesystem::file_type::not_found) {
        refuse("the directory " + directory_.string() + " does not exist", "");
    }
    if (!std::filesystem::is_directory(directory_status)) {
        refuse(directory_.string() + " is no directory", "");
    }
    const auto file_status = std::filesystem::status(directory_ / data_file, failure);
    if (file_status.type() == std::filesystem::file_type::none) {
        refuse("the directory " + directory_.string() + " cannot be read: " + failure.message(), "");
    }
    // LMDB would make a new database of a file without content.
    if (!std::filesystem::is_regular_file(file_status) ||
        std::filesystem::file_size(directory_ / data_file, failure) == 0) {
        refuse_no_line_system(directory_);
    }
}

void Environment::open_tables(Store::Mode mode) {
    const bool create = mode == Store::Mode::create;
    auto transaction = create ? begin_write() : begin_read();
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        const int result = mdb_dbi_open(transaction.get(), table_names.at(i), create ? MDB_CREATE : 0, &tables_.at(i));
        if (result == MDB_NOTFOUND || result == MDB_INCOMPATIBLE) {
            refuse_no_line_system(directory_);
        }
        check(result);
    }
    commit(std::move(transaction));
}

TransactionHandle Environment::begin(unsigned flags) {
    MDB_txn *transaction = nullptr;
    int result = mdb_txn_begin(environment_.get(), nullptr, flags, &transaction);
    if (result == MDB_READERS_FULL) {
        // Readers that were killed keep their slots until somebody looks.
        int dead_readers = 0;
        check(mdb_reader_check(environment_.get(), &dead_readers));
        result = mdb_txn_begin(environment_.get(), nullptr, flags, &transaction);
    }
    check(result);
    return TransactionHandle(transaction);
}

TransactionHandle Environment::begin_read() {
    return begin(MDB_RDONLY);
}

TransactionHandle Environment::begin_write() {
    return begin(0);
}

void Environment::commit(TransactionHandle transaction) {
    check(mdb_txn_commit(transaction.release()));
    if (file_is_shorter_than_its_pages()) {
        extend_file();
    }
}

bool Environment::file_is_shorter_than_its_pages() const {
    MDB_envinfo info{};
    MDB_stat statistics{};
    mdb_filehandle_t file{};
    struct stat status {};
    check(mdb_env_info(environment_.get(), &info));
    check(mdb_env_stat(environment_.get(), &statistics));
    check(mdb_env_get_fd(environment_.get(), &file));
    check(fstat(file, &status) == 0 ? 0 : errno);
    return static_cast<std::size_t>(status.st_size) < (info.me_last_pgno + 1) * statistics.ms_psize;
}

// LMDB does not write pages at the end that a transaction took and gave back. The next opening could not tell such a
// file from a cut one. The write lock keeps other writers from making the file longer at the same time.
void Environment::extend_file() {
    const auto lock = begin_write();
    if (!file_is_shorter_than_its_pages()) {
        return;
    }
    MDB_envinfo info{};
    MDB_stat statistics{};
    mdb_filehandle_t file{};
    check(mdb_env_info(environment_.get(), &info));
    check(mdb_env_stat(environment_.get(), &statistics));
    check(mdb_env_get_fd(environment_.get(), &file));
    const auto size = static_cast<off_t>((info.me_last_pgno + 1) * statistics.ms_psize);
    check(ftruncate(file, size) == 0 ? 0 : errno);
}

void Environment::check(int result) const {
    const std::string reason = result == 0 ? "" : mdb_strerror(result);
    switch (result) {
    case 0:
        return;
    case MDB_INVALID:
    case MDB_VERSION_MISMATCH:
    case MDB_CORRUPTED:
    case MDB_PAGE_NOTFOUND:
    case MDB_PANIC:
        refuse_damaged(directory_, reason);
    case EACCES:
    case EPERM:
    case EROFS:
        refuse("the line system in " + directory_.string() + " cannot be written: " + reason,
               "give this user the right to write there");
    case MDB_MAP_FULL:
    case MDB_READERS_FULL:
    case ENOSPC:
        throw Error(Error::Source::refused, "resource-denied", "",
                    "the line system in " + directory_.string() + " has no room: " + reason);
    default:
        refuse("the line system in " + directory_.string() + " cannot be used: " + reason, "");
    }
}

} // namespace ocpsm::sysdb
