// The plug-in's exported functions, found by name as the framework finds them.
#ifndef TESTS_SUPPORT_EXPORTS_HPP
#define TESTS_SUPPORT_EXPORTS_HPP

#include <string>

#include <yfw_map.h>

namespace fake {

// Walkers, leaf and list callbacks, augment hooks and conversions; and container callbacks.
using Callback = kerrno (*)(yfw_map_ctx, const kidl_yfw_datatree *, kidl_yfw_datatree *);
using ContainerCallback = kerrno (*)(yfw_map_ctx, const kidl_yfw_datatree *, unsigned int, kidl_yfw_datatree *);

inline constexpr char callback_prefix[] = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";

// An exported function or data object by its whole name. Ends the process with the name when it is not there.
[[nodiscard]] void *exported(const std::string &name);

template <class Function>
[[nodiscard]] Function function(const std::string &name) {
    return reinterpret_cast<Function>(exported(name));
}

} // namespace fake

#endif
