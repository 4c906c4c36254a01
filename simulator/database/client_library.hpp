// The system database client as a host loads it: the library, or where it is not installed a stand-in that says so.
#ifndef OCPSM_SIMULATOR_DATABASE_CLIENT_LIBRARY_HPP
#define OCPSM_SIMULATOR_DATABASE_CLIENT_LIBRARY_HPP

#include <filesystem>
#include <memory>

#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

// Where the simulator's library is, and beside it all that comes with it.
std::filesystem::path library_directory();

// The file whose presence says that the client is installed, and the stand-in's.
std::filesystem::path client_library();
std::filesystem::path absent_library();

// Loads the library for the whole process (RTLD_GLOBAL), so that a plug-in which is loaded afterwards binds to its
// operations. It stays loaded: a plug-in may outlive this object.
class Client {
public:
    // `library` counts as installed when its file can be read. Throws ocpsm::Error when a library cannot be loaded.
    explicit Client(const std::filesystem::path &library = client_library(),
                    const std::filesystem::path &stand_in = absent_library());

    bool installed() const { return open_ != nullptr; }

    // Opens the store of a directory. Throws ocpsm::Error, when the client is not installed too.
    std::unique_ptr<Store> open(const std::filesystem::path &directory, Store::Mode mode) const;

    // An operation of the loaded library by its name, or null.
    void *operation(const char *name) const;

private:
    std::filesystem::path library_;
    void *handle_;
    decltype(&sysdb_client_open) open_ = nullptr;
};

} // namespace ocpsm::sysdb

#endif
