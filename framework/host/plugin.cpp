#include "framework/host/plugin.hpp"

#include <dlfcn.h>

#include <bit>

#include "framework/error.hpp"

namespace ocpsm::framework {

namespace {

std::string loader_message() {
    const char *message = dlerror(); // NOLINT(concurrency-mt-unsafe): glibc keeps it per thread
    return message == nullptr ? "unknown reason" : message;
}

} // namespace

void Plugin::Unload::operator()(void *handle) const {
    dlclose(handle);
}

Plugin::Plugin(const std::filesystem::path &library) : library_(library) {
    // The loader searches its own directories for a name without a slash; a plug-in is always a file.
    const std::string file = std::filesystem::absolute(library).string();
    handle_.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!handle_) {
        throw Error(Error::Source::input, "operation-failed", "",
                    "cannot load the plug-in " + library.string() + ": " + loader_message(),
                    "build it, or name the plug-in's file");
    }
}

void *Plugin::find(const std::string &name) const {
    return dlsym(handle_.get(), name.c_str());
}

Callback Plugin::callback(const std::string &name) const {
    void *symbol = find(name);
    if (symbol == nullptr) {
        throw Error(Error::Source::input, "operation-failed", "",
                    "the plug-in " + library_.string() + " does not export " + name,
                    "is this the mapping plug-in for protection switch modules?");
    }
    return std::bit_cast<Callback>(symbol);
}

} // namespace ocpsm::framework
