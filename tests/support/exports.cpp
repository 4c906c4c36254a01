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

} // namespace fake
