// The real plug-in, loaded as a device loads it.
#ifndef OCPSM_FRAMEWORK_HOST_PLUGIN_HPP
#define OCPSM_FRAMEWORK_HOST_PLUGIN_HPP

#include <filesystem>
#include <memory>
#include <string>

#include "yfw_map.h"

namespace ocpsm::framework {

// Walkers, leaf callbacks and hooks, of both directions.
using Callback = kerrno (*)(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *);

inline constexpr char openconfig_root_walker[] = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps";

/*
 * A loaded plug-in. Its callbacks are found by name and are valid as long as this lives. Leak reports that are made at
 * the end of the process name no function of a plug-in that was unloaded before: a program under a leak checker keeps
 * its plug-in until it exits.
 */
class Plugin {
public:
    // Loads a shared library with every symbol bound. Throws ocpsm::Error (input) with the loader's reason.
    explicit Plugin(const std::filesystem::path &library);

    // The exported object or function of this name, null when there is none.
    void *find(const std::string &name) const;

    // The callback of this name. Throws ocpsm::Error (input) naming library and callback when it is not exported.
    Callback callback(const std::string &name) const;

    const std::filesystem::path &library() const { return library_; }

private:
    struct Unload {
        void operator()(void *handle) const;
    };

    std::filesystem::path library_;
    std::unique_ptr<void, Unload> handle_;
};

} // namespace ocpsm::framework

#endif
