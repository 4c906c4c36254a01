// Stands between the walkers and the callbacks that these call: the program is linked with --wrap for each. Where a
// test wants it (Platform::callbacks), every call is recorded with its node, a container's with the count of its
// children, and returns what the test has scripted, a container's included, which the plug-in's own never makes fail.
#include <yfw_map.h>

#include "exports.hpp"
#include "fake_platform.hpp"
#include "request.hpp"

namespace {

using fake::Platform;

// Nothing when the plug-in's own is to be called.
std::optional<kerrno> scripted(const char *name, bool replaceable, yfw_map_ctx ctx, const std::string &arguments,
                               const kidl_yfw_datatree *dest) {
    Platform &platform = Platform::current();
    if (platform.callbacks == Platform::Callbacks::unseen) {
        return std::nullopt;
    }
    if (ctx != fake::current_context() || platform.name_of(dest) != "dest") {
        platform.fault("a callback was called with another context or destination than its walker");
    }
    const auto result = platform.record(fake::Callbacks, name, arguments);
    if (!result && replaceable && platform.callbacks == Platform::Callbacks::scripted) {
        return KERR_SUCCESS;
    }
    return result;
}

kerrno call(const char *name, bool replaceable, fake::Callback real, yfw_map_ctx ctx, const kidl_yfw_datatree *node,
            kidl_yfw_datatree *dest) {
    const auto result = scripted(name, replaceable, ctx, Platform::current().name_of(node), dest);
    return result ? *result : real(ctx, node, dest);
}

kerrno call(const char *name, fake::ContainerCallback real, yfw_map_ctx ctx, const kidl_yfw_datatree *node,
            unsigned int count, kidl_yfw_datatree *dest) {
    const std::string arguments = Platform::current().name_of(node) + ", " + std::to_string(count);
    const auto result = scripted(name, false, ctx, arguments, dest);
    return result ? *result : real(ctx, node, count, dest);
}

} // namespace

// callbacks.def has a row for each: its name, and what stands behind the prefix of its model.
#define WRAPPED(name, short_name, replaceable)                                                                         \
    kerrno __real_##name(yfw_map_ctx, const kidl_yfw_datatree *, kidl_yfw_datatree *);                                 \
    kerrno __wrap_##name(yfw_map_ctx ctx, const kidl_yfw_datatree *node, kidl_yfw_datatree *dest) {                    \
        return call(#short_name, replaceable, __real_##name, ctx, node, dest);                                         \
    }
#define CALLBACK(name, short_name) WRAPPED(name, short_name, true)
#define HOOK(name, short_name) WRAPPED(name, short_name, false)
#define CONTAINER(name, short_name)                                                                                    \
    kerrno __real_##name(yfw_map_ctx, const kidl_yfw_datatree *, unsigned int, kidl_yfw_datatree *);                   \
    kerrno __wrap_##name(yfw_map_ctx ctx, const kidl_yfw_datatree *node, unsigned int count,                           \
                         kidl_yfw_datatree *dest) {                                                                    \
        return call(#short_name, __real_##name, ctx, node, count, dest);                                               \
    }

extern "C" {
#include "callbacks.def"
}
