#include <cstddef>
#include <fstream>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "open_store.hpp"

namespace {

using ocpsm::sysdb::Store;
using ocpsm::sysdb::Table;

class StoreFailure : public testing::Test {
public:
    ~StoreFailure() override { store.close(); }

protected:
    std::string open_error(Store::Mode mode = Store::Mode::existing) {
        return error_of([&] { store.open(state, mode); });
    }

    void write_file(const std::string &content) {
        std::filesystem::create_directory(state);
        std::ofstream(state / "data.mdb") << content;
    }

    void make_store() {
        store.open(state, Store::Mode::create);
        const auto transaction = store.write();
        for (int i = 0; i < 100; ++i) {
            transaction->put(Table::items, std::string("key").append(std::to_string(i)), std::string(1000, 'x'));
        }
        transaction->commit();
        store.close();
    }

    std::string no_line_system() const {
        return "input|operation-failed||the directory " + state.string() +
               " holds no line system|create one there first";
    }

    static std::string damage(const std::filesystem::path &state, const std::string &reason) {
        return "input|operation-failed||the line system in " + state.string() + " is damaged: " + reason +
               "|restore the directory from a copy or create a new line system";
    }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    Store &store = *sysdb_client_store();
};

TEST_F(StoreFailure, NamesAMissingDirectory) {
    EXPECT_EQ(open_error(), "input|operation-failed||the directory " + state.string() + " does not exist|");
    EXPECT_FALSE(store.is_open());
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

TEST_F(StoreFailure, NamesAnEmptyFile) {
    write_file("");
    EXPECT_EQ(open_error(), no_line_system());
}

TEST_F(StoreFailure, NamesADirectoryInTheFilesPlace) {
    std::filesystem::create_directories(state / "data.mdb");
    EXPECT_EQ(open_error(), no_line_system());
}

TEST_F(StoreFailure, NamesAFileThatIsNoDatabase) {
    write_file(std::string(100000, 'x'));
    EXPECT_EQ(open_error(), damage(state, "MDB_INVALID: File is not an LMDB file"));
    EXPECT_FALSE(store.is_open());
}

TEST_F(StoreFailure, NamesADatabaseWithoutTheTables) {
    make_store();
    std::string bytes(std::filesystem::file_size(state / "data.mdb"), '\0');
    std::ifstream(state / "data.mdb").read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    // As another program's database would be: the table goes by another name.
    for (std::size_t at = bytes.find("line-system"); at != std::string::npos; at = bytes.find("line-system", at + 1)) {
        bytes.replace(at, 11, "fine-system");
    }
    write_file(bytes);
    EXPECT_EQ(open_error(), no_line_system());
    EXPECT_FALSE(store.is_open());
}

TEST_F(StoreFailure, NamesAFileThatIsCutWhereverItIs) {
    make_store();
    const auto whole = std::filesystem::file_size(state / "data.mdb");
    for (const auto size : {whole - 1, whole - 4096, whole / 2, std::uintmax_t{8192}}) {
        std::filesystem::resize_file(state / "data.mdb", size);
        EXPECT_EQ(open_error(), damage(state, "the file is cut")) << size;
        EXPECT_EQ(std::filesystem::file_size(state / "data.mdb"), size);
    }
    for (const auto size : {4096U, 100U, 1U}) {
        std::filesystem::resize_file(state / "data.mdb", size);
        EXPECT_EQ(open_error(), damage(state, "MDB_INVALID: File is not an LMDB file")) << size;
    }
}

TEST_F(StoreFailure, CreatesNoStoreWhereThereIsOne) {
    make_store();
    EXPECT_EQ(open_error(Store::Mode::create),
              "input|operation-failed||the directory " + state.string() +
                  " already holds a line system|name another directory or remove this one");
    store.open(state, Store::Mode::existing);
    EXPECT_EQ(store.read()->get(Table::items, "key7"), std::string(1000, 'x'));
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

TEST_F(StoreFailure, NamesADirectoryThatCannotBeWritten) {
    using std::filesystem::perms;
    make_store();
    std::filesystem::permissions(directory.path, perms{0755});
    std::filesystem::permissions(state, perms{0555});
    std::filesystem::permissions(state / "data.mdb", perms{0444});
    {
        const OrdinaryUser user;
        EXPECT_EQ(open_error(), "input|operation-failed||the line system in " + state.string() +
                                    " cannot be written: Permission denied|give this user the right to write there");
    }
    std::filesystem::permissions(state, perms{0755});
}

TEST_F(StoreFailure, NamesADirectoryThatCannotBeRead) {
    using std::filesystem::perms;
    make_store();
    std::filesystem::permissions(directory.path, perms{0755});
    std::filesystem::permissions(state, perms{0});
    {
        const OrdinaryUser user;
        EXPECT_EQ(open_error(),
                  "input|operation-failed||the directory " + state.string() + " cannot be read: Permission denied|");
    }
    std::filesystem::permissions(state, perms{0755});
}

TEST_F(StoreFailure, NamesAFullStoreAndKeepsWhatWasThere) {
    make_store();
    store.open(state, Store::Mode::existing);
    const std::string quarter(std::size_t{64} << 20, 'x'); // of what a store has room for
    {
        const auto transaction = store.write();
        for (const char *key : {"first", "second", "third"}) {
            transaction->put(Table::items, key, quarter);
        }
        EXPECT_EQ(error_of([&] { transaction->put(Table::items, "fourth", quarter); }),
                  "refused|resource-denied||the line system in " + state.string() +
                      " has no room: MDB_MAP_FULL: Environment mapsize limit reached|");
    }
    EXPECT_EQ(store.read()->get(Table::items, "first"), std::nullopt);
    EXPECT_EQ(store.read()->get(Table::items, "key7"), std::string(1000, 'x'));
}

} // namespace
