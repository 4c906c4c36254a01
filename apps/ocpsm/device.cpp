#include "device.hpp"

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

Device::Device(const std::filesystem::path &state, std::ostream &errors) : client_(load_database_client()) {
    if (!client_.installed()) {
        print_warning(errors,
                      "the system database's client library " + sysdb::client_library().string() +
                          " is not there, so the plug-in reads no database: it finds no module that is not named");
        return;
    }
    line_system::LineSystem system = line_system::example();
    if (state.empty()) {
        example_.emplace(client_.store(), system);
    } else {
        system = line_system::open(client_.store(), state);
    }
    for (const int slot : line_system::fitted_slots(system)) {
        fitted_modules_.push_back(line_system::module_name(slot));
    }
}

Device::~Device() {
    if (client_.installed() && !example_) {
        client_.store().close();
    }
}

} // namespace ocpsm
