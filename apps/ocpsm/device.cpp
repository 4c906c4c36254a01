#include "device.hpp"

#include "framework/error.hpp"

#include "messages.hpp"
#include "simulator/line_system/storage.hpp"

namespace ocpsm {

namespace line_system = ocpsm::line_system;
namespace sysdb = ocpsm::sysdb;

std::filesystem::path library_directory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib";
}

sysdb::Client load_database_client() {
    return sysdb::Client(sysdb::client_library(), library_directory() / "libsysdb_absent.so");
}

sysdb::Client load_installed_client() {
    sysdb::Client client = load_database_client();
    if (!client.installed()) {
        throw Error(Error::Source::input, {}, {},
                    "the system database's client library " + sysdb::client_library().string() +
                        " is not there, so no line system can be opened",
                    "install it or build it again");
    }
    return client;
}

} // namespace ocpsm
