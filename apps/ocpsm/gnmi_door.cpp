#include "gnmi_door.hpp"

#include <dlfcn.h>

#include "simulator/database/client_library.hpp"

namespace ocpsm {

// It stays loaded: gRPC has threads that outlive its servers.
std::unique_ptr<Door> gnmi_door(const Service &service, const GnmiDoorOptions &options) {
    const std::string file = sysdb::library_directory() / "ocpsm-gnmi.so";
    void *const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    auto *const make =
        library == nullptr ? nullptr : reinterpret_cast<MakeGnmiDoor *>(dlsym(library, make_gnmi_door_name));
    if (make == nullptr) {
        const char *const reason = dlerror();
        throw Error(Error::Source::input, {}, {},
                    "gNMI cannot be served: " + std::string(reason == nullptr ? "unknown reason" : reason),
                    "install it again");
    }
    return std::unique_ptr<Door>(make(service, options));
}

} // namespace ocpsm
