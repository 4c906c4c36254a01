#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "open_store.hpp"

namespace {

using ocpsm::sysdb::Store;
using ocpsm::sysdb::store_file;
using ocpsm::sysdb::Table;

// FNV-1a, 64 bits, of the first three members.
std::uint64_t hash_of_header(const std::string &file) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : file.substr(0, 24)) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    return hash;
}

class StoreFailure : public testing::Test {
protected:
    std::string open_error(Store::Mode mode = Store::Mode::existing) const {
        return error_of([&] { static_cast<void>(open_store(state, mode)); });
    }

    std::filesystem::path file() const { return state / store_file; }

    void write_file(const std::string &content) const {
        std::filesystem::create_directory(state);
        std::ofstream(file()) << content;
    }

    std::string read_file() const {
        std::ifstream in(file());
        return {std::istreambuf_iterator<char>(in), {}};
    }

    void make_store() const {
        const auto store = open_store(state, Store::Mode::create);
        const auto transaction = store->write();
        for (int i = 0; i < 100; ++i) {
            transaction->put(Table::items, std::string("key").append(std::to_string(i)), std::string(1000, 'x'));
        }
        transaction->commit();
    }

    std::string no_line_system() const {
        return "input|data-missing||the directory " + state.string() + " holds no line system|create one there first";
    }

    std::string damage(const std::string &reason) const {
        return "input|operation-failed||the line system in " + state.string() + " is damaged: " + reason +
               "|restore the directory from a copy or create a new line system";
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
};

TEST_F(StoreFailure, NamesAMissingDirectory) {
    EXPECT_EQ(open_error(), "input|data-missing||the directory " + state.string() + " does not exist|");
    EXPECT_FALSE(std::filesystem::exists(state));
}

TEST_F(StoreFailure, NamesAFileThatIsNoDirectory) {
    std::ofstream(state) << "x";
    EXPECT_EQ(open_error(), "input|operation-failed||" + state.string() + " is no directory|");
}

TEST_F(StoreFailure, NamesADirectoryWithoutAStoreAndLeavesItAsItWas) {
    std::filesystem::create_directory(state);
    EXPECT_EQ(open_error(), no_line_system());
    EXPECT_TRUE(std::filesystem::is_empty(state));
}

TEST_F(StoreFailure, NamesADirectoryInTheFilesPlace) {
    std::filesystem::create_directories(file());
    EXPECT_EQ(open_error(), no_line_system());
}

TEST_F(StoreFailure, NamesAPipeInTheFilesPlace) {
    std::filesystem::create_directory(state);
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    EXPECT_EQ(open_error(), no_line_system());
}

TEST_F(StoreFailure, NamesAFileThatIsNoStore) {
    write_file(std::string(100000, 'x'));
    EXPECT_EQ(open_error(), damage("it does not begin as it was written"));
}

TEST_F(StoreFailure, NamesAFileThatIsCutWhereverItIs) {
    make_store();
    const auto whole = std::filesystem::file_size(file());
    for (const auto size : {whole - 1, whole - 4096, whole / 2, std::uintmax_t{32}, std::uintmax_t{31},
                            std::uintmax_t{1}, std::uintmax_t{0}}) {
        std::filesystem::resize_file(file(), size);
        EXPECT_EQ(open_error(), damage("the file is cut")) << size;
        EXPECT_EQ(std::filesystem::file_size(file()), size);
    }
}

TEST_F(StoreFailure, NamesARecordThatHasChanged) {
    make_store();
    const std::string whole = read_file();
    std::string bytes = whole;
    bytes[bytes.size() / 2] ^= 1;
    write_file(bytes);
    EXPECT_EQ(open_error(), damage("its records are not what was written"));
    write_file(whole);
    EXPECT_EQ(open_error(), "no error");
}

// The first format had no journal: its files are read, and written in the present one.
TEST_F(StoreFailure, NamesAFormatThatItDoesNotKnow) {
    make_store();
    const auto write_format = [&, whole = read_file()](char format) {
        std::string bytes = whole;
        bytes[7] = format;
        const std::uint64_t check = hash_of_header(bytes);
        std::memcpy(bytes.data() + 24, &check, sizeof check);
        write_file(bytes);
    };
    EXPECT_EQ(read_file().substr(0, 8), "linesto2");
    for (const char format : {'0', '3', '9', '\0'}) {
        write_format(format);
        EXPECT_EQ(open_error(),
                  "input|operation-failed||the line system was made by another version of this program|use "
                  "that version, or create a new line system");
    }
    write_format('1');
    const auto store = open_store(state, Store::Mode::existing);
    EXPECT_EQ(store->read()->get(Table::items, "key7"), std::string(1000, 'x'));
    const auto transaction = store->write();
    transaction->put(Table::journal, "key", "value");
    transaction->commit();
    EXPECT_EQ(read_file().substr(0, 8), "linesto2");
    EXPECT_EQ(open_store(state, Store::Mode::existing)->read()->get(Table::journal, "key"), "value");
}

// It is what a writer that was killed leaves, and does not count.
TEST_F(StoreFailure, IsNoneForWhatStandsBehindTheEnd) {
    make_store();
    std::ofstream(file(), std::ios::app) << std::string(5000, 'z');
    const auto store = open_store(state, Store::Mode::existing);
    const auto transaction = store->write();
    transaction->put(Table::items, "key7", "new");
    transaction->commit();
    EXPECT_EQ(open_store(state, Store::Mode::existing)->read()->get(Table::items, "key7"), "new");
}

// A store that is open goes on from a copy that has been put in its place, a shorter or a longer one.
TEST_F(StoreFailure, IsNoneForAStoreThatIsRestored) {
    make_store();
    const std::string copy = read_file();
    const auto store = open_store(state, Store::Mode::existing);
    const auto put = [&](Store &target, const std::string &value) {
        const auto transaction = target.write();
        transaction->put(Table::items, "key7", value);
        transaction->commit();
    };
    put(*store, "short");
    write_file(copy);
    EXPECT_EQ(store->read()->get(Table::items, "key7"), std::string(1000, 'x'));
    put(*open_store(state, Store::Mode::existing), "other");
    put(*open_store(state, Store::Mode::existing), "other again");
    const std::string longer = read_file();
    write_file(copy);
    put(*store, "short");
    write_file(longer);
    EXPECT_EQ(store->read()->get(Table::items, "key7"), "other again");
}

TEST_F(StoreFailure, NamesDamageThatComesWhileItIsOpen) {
    make_store();
    const auto store = open_store(state, Store::Mode::existing);
    write_file(std::string(100000, 'x'));
    EXPECT_EQ(error_of([&] { static_cast<void>(store->read()); }), damage("it does not begin as it was written"));
    EXPECT_EQ(error_of([&] { static_cast<void>(store->write()); }), damage("it does not begin as it was written"));
    std::filesystem::remove(file());
    EXPECT_EQ(error_of([&] { static_cast<void>(store->read()); }), no_line_system());
}

TEST_F(StoreFailure, CreatesNoStoreWhereThereIsOne) {
    make_store();
    EXPECT_EQ(open_error(Store::Mode::create),
              "input|operation-failed||the directory " + state.string() +
                  " already holds a line system|name another directory or remove this one");
    EXPECT_EQ(open_store(state, Store::Mode::existing)->read()->get(Table::items, "key7"), std::string(1000, 'x'));
}

TEST_F(StoreFailure, CreatesNoStoreWhereAnotherHasBeenFaster) {
    const auto slow = open_store(state, Store::Mode::create);
    EXPECT_EQ(slow->read()->get(Table::items, "key7"), std::nullopt);
    make_store();
    EXPECT_EQ(error_of([&] { static_cast<void>(slow->write()); }),
              "input|operation-failed||the directory " + state.string() +
                  " already holds a line system|name another directory or remove this one");
}

TEST_F(StoreFailure, CreatesNoFileBeforeTheFirstCommit) {
    {
        const auto store = open_store(state, Store::Mode::create);
        store->write()->put(Table::items, "a", "b");
    }
    EXPECT_TRUE(std::filesystem::is_empty(state));
}

TEST_F(StoreFailure, CreatesNoStoreBelowAMissingDirectory) {
    state = directory.path / "missing" / "state";
    EXPECT_EQ(open_error(Store::Mode::create), "input|operation-failed||the directory " + state.string() +
                                                   " cannot be created: No such file or directory|");
}

// Gives up the rights of the superuser, whom no file mode stops.
class OrdinaryUser {
public:
    OrdinaryUser() : changed_(geteuid() == 0 && seteuid(65534) == 0) {}
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;
    ~OrdinaryUser() {
        if (changed_ && seteuid(0) != 0) {
            ADD_FAILURE() << "the test stays an ordinary user";
        }
    }

private:
    bool changed_;
};

class ForOthers : public StoreFailure {
protected:
    ForOthers() {
        make_store();
        set_mode(directory.path, 0755);
    }
    ~ForOthers() override { set_mode(state, 0755); }

    static void set_mode(const std::filesystem::path &path, unsigned mode) {
        std::filesystem::permissions(path, std::filesystem::perms{mode});
    }
};

TEST_F(ForOthers, IsReadWhereItCannotBeWritten) {
    set_mode(state, 0555);
    set_mode(file(), 0444);
    const OrdinaryUser user;
    const auto store = open_store(state, Store::Mode::existing);
    EXPECT_EQ(store->read()->get(Table::items, "key7"), std::string(1000, 'x'));
    const auto transaction = store->write();
    transaction->put(Table::items, "key7", "new");
    EXPECT_EQ(error_of([&] { transaction->commit(); }),
              "input|operation-failed||the line system in " + state.string() +
                  " cannot be written: Permission denied|give this user the right to write there");
    EXPECT_EQ(store->read()->get(Table::items, "key7"), std::string(1000, 'x'));
}

TEST_F(ForOthers, SaysThatItCannotBeRead) {
    const std::string refusal = "input|operation-failed||the line system in " + state.string() +
                                " cannot be read: Permission denied|give this user the right to read it";
    set_mode(file(), 0);
    {
        const OrdinaryUser user;
        EXPECT_EQ(open_error(), refusal);
    }
    set_mode(state, 0);
    const OrdinaryUser user;
    EXPECT_EQ(open_error(), refusal);
}

TEST_F(ForOthers, SaysThatTheDirectoryAboveCannotBeRead) {
    set_mode(directory.path, 0);
    {
        const OrdinaryUser user;
        EXPECT_EQ(open_error(),
                  "input|operation-failed||the directory " + state.string() + " cannot be read: Permission denied|");
    }
    set_mode(directory.path, 0755);
}

TEST_F(StoreFailure, NamesAFullStoreAndKeepsWhatWasThere) {
    make_store();
    const auto store = open_store(state, Store::Mode::existing);
    const std::string quarter(ocpsm::sysdb::max_store_size / 4, 'x');
    {
        const auto transaction = store->write();
        for (const char *key : {"first", "second", "third"}) {
            transaction->put(Table::items, key, quarter);
        }
        EXPECT_EQ(error_of([&] { transaction->put(Table::items, "fourth", quarter); }),
                  "refused|resource-denied||the line system in " + state.string() +
                      " has no room: a line system has at most 64 MB|");
    }
    EXPECT_EQ(store->read()->get(Table::items, "first"), std::nullopt);
    EXPECT_EQ(store->read()->get(Table::items, "key7"), std::string(1000, 'x'));
}

// Files of this process can only grow so long: to a store, the disk is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        set({bytes, before_.rlim_max});
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;
    ~FullDisk() {
        set(before_);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }

private:
    static void set(const rlimit &limit) { EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0); }

    rlimit before_{};
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

// Wherever the disk is full, the store has either the whole change or none of it.
TEST_F(StoreFailure, NamesAFullDiskAndKeepsWhatWasThere) {
    make_store();
    const std::string before = read_file();
    const std::string full =
        "refused|resource-denied||the line system in " + state.string() + " has no room: File too large|";
    int kept = 0;
    int refused = 0;
    for (const std::size_t value_size : {std::size_t{10}, std::size_t{300000}}) { // appended, rewritten
        for (std::size_t room = 0; room <= before.size() + 100;
             room = room < before.size() ? std::min(room + 20000, before.size()) : room + 5) {
            const auto store = open_store(state, Store::Mode::existing);
            const auto transaction = store->write();
            transaction->put(Table::items, "key7", std::string(value_size, 'y'));
            std::string said;
            {
                const FullDisk disk(room);
                said = error_of([&] { transaction->commit(); });
            }
            const std::string now = said == "no error" ? std::string(value_size, 'y') : std::string(1000, 'x');
            EXPECT_EQ(store->read()->get(Table::items, "key7"), now);
            EXPECT_EQ(open_store(state, Store::Mode::existing)->read()->get(Table::items, "key7"), now);
            if (said == "no error") {
                ++kept;
            } else {
                ++refused;
                ASSERT_EQ(said, full);
                EXPECT_FALSE(std::filesystem::exists(state / "line-system.store.new"));
            }
            write_file(before);
        }
    }
    EXPECT_GT(kept, 10);
    EXPECT_GT(refused, 10);
}

TEST_F(StoreFailure, LeavesNothingOfAStoreThatFindsNoRoom) {
    const auto fill = [&] {
        const auto store = open_store(state, Store::Mode::create);
        const auto transaction = store->write();
        transaction->put(Table::items, "key", std::string(100000, 'x'));
        transaction->commit();
    };
    for (const rlim_t room : {0U, 10U, 32U, 4096U, 100000U}) {
        const FullDisk disk(room);
        EXPECT_EQ(error_of(fill),
                  "refused|resource-denied||the line system in " + state.string() + " has no room: File too large|");
        EXPECT_TRUE(std::filesystem::is_empty(state)) << room;
    }
    EXPECT_EQ(error_of(fill), "no error");
    EXPECT_EQ(open_store(state, Store::Mode::existing)->read()->get(Table::items, "key"), std::string(100000, 'x'));
}

} // namespace
