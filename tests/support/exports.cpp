#include "exports.hpp"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace fake {

void *exported(const std::string &name) {
    void *const found = ::dlsym(RTLD_DEFAULT, name.c_str());
    if (found == nullptr) {
        std::fprintf(stderr, "the plug-in does not export %s\n", name.c_str());
        std::abort();
    }
    return found;
}

Callback walker(const std::string &suffix) {
    return function<Callback>(callback_prefix + suffix);
}

Callback callback(const std::string &suffix) {
    return function<Callback>(callback_prefix + suffix);
}

ContainerCallback container_callback(const std::string &suffix) {
    return function<ContainerCallback>(callback_prefix + suffix);
}

Callback conversion(const std::string &name) {
    return function<Callback>(name);
}

} // namespace fake
