#include "libraries.hpp"

namespace ocpsm {

std::filesystem::path library_directory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib";
}

std::filesystem::path database_stand_in() {
    return library_directory() / "libsysdb_absent.so";
}

sysdb::Client load_database_client() {
    return sysdb::Client(sysdb::client_library(), database_stand_in());
}

} // namespace ocpsm
