#include "simulator/database/client_library.hpp"

#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <unistd.h>

#include "framework/error.hpp"

namespace ocpsm::sysdb {
namespace {

bool can_be_read(const std::filesystem::path &file) {
    return access(file.c_str(), R_OK) == 0;
}

void *load(const std::filesystem::path &library) {
    void *handle = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) {
        const char *reason = dlerror();
        throw Error(Error::Source::input, "operation-failed", "",
                    "the system database client " + library.string() +
                        " cannot be loaded: " + (reason == nullptr ? "unknown reason" : reason),
                    "install it again");
    }
    return handle;
}

} // namespace

std::filesystem::path library_directory() {
    static const std::filesystem::path directory = [] {
        static constexpr char own = 0;
        Dl_info library{};
        if (dladdr(&own, &library) == 0) {
            throw std::logic_error("the simulator's library has no file");
        }
        return std::filesystem::canonical(library.dli_fname).parent_path();
    }();
    return directory;
}

std::filesystem::path client_library() {
    return library_directory() / "libsysdb_client.so";
}

std::filesystem::path absent_library() {
    return library_directory() / "libsysdb_absent.so";
}

Client::Client(const std::filesystem::path &library, const std::filesystem::path &stand_in) : library_(library) {
    if (!can_be_read(library)) {
        handle_ = load(stand_in);
        return;
    }
    handle_ = load(library);
    open_ = reinterpret_cast<decltype(open_)>(operation("sysdb_client_open"));
    if (open_ == nullptr) {
        throw Error(Error::Source::input, "operation-failed", "",
                    "the system database client " + library.string() + " gives no access to its store",
                    "install the one that belongs to this program");
    }
}

std::unique_ptr<Store> Client::open(const std::filesystem::path &directory, Store::Mode mode) const {
    if (open_ == nullptr) {
        throw Error(Error::Source::refused, "operation-failed", "",
                    "the system database client is not installed: " + library_.string() + " cannot be read",
                    "install it to work with a line system");
    }
    return std::unique_ptr<Store>(open_(directory, mode));
}

void *Client::operation(const char *name) const {
    return dlsym(handle_, name);
}

} // namespace ocpsm::sysdb
