// Access to the system database: one item, one key. Every call binds and unbinds; no handle is kept.
#include "utility_bounded.hpp"

#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

using namespace ymap;

namespace {

// Whether the client's file can be read. A relative path counts from the plug-in's own directory.
bool is_client_readable() {
    static constexpr char own = 0;
    char path[PATH_MAX] = SYSDB_CLIENT_LIBRARY;
    Dl_info plugin{};
    if (path[0] != '/' && dladdr(&own, &plugin) != 0) {
        const std::size_t directory = std::string_view(plugin.dli_fname).rfind('/') + 1;
        std::snprintf(path, sizeof path, "%.*s" SYSDB_CLIENT_LIBRARY, static_cast<int>(directory), plugin.dli_fname);
    }
    return access(path, R_OK) == 0;
}

} // namespace

namespace ymap {

bool is_sysdb_client_present() {
    static bool present = false;
    if (!present) {
        present = is_client_readable();
    }
    return present;
}

} // namespace ymap

namespace {

constexpr kerrno client_absent = 0x8081c200;
constexpr char interface_path[] = "/oper/ots/if/";

// An absent client fails like a bind.
kerrno bind(const Function &function, yfw_map_ctx ctx, const char *path, sysdb_handle_td &handle) {
    const kerrno result = is_sysdb_client_present() ? _sysdb_bind(&handle, path, 0) : client_absent;
    if (result != KERR_SUCCESS) {
        YMAP_ASSERT_CONTEXT(function, ctx);
        YMAP_TRACE(function, ctx, "sysdb_bind failed %s", kerr_strerror(result));
    }
    return result;
}

void unbind(sysdb_handle_td handle) {
    if (is_sysdb_client_present()) {
        _sysdb_unbind(handle);
    }
}

// True when a listing holds this name.
bool holds_name(const Function &function, yfw_map_ctx ctx, sysdb_list_td list, const char *wanted) {
    for (;;) {
        const char *name = nullptr;
        sysdb_item_datatype_td type = 0;
        if (sysdb_list_next(list, &name, &type, 0) != KERR_SUCCESS || name == nullptr) {
            return false;
        }
        YMAP_TRACE(function, ctx, "Item: '%s', datatype: %d", name, static_cast<int>(type));
        if (std::strcmp(name, wanted) == 0) {
            YMAP_TRACE(function, ctx, "Object %s present in sysdb", name);
            return true;
        }
    }
}

} // namespace

extern "C" {

kerrno sysdb_get_data(yfw_map_ctx ctx, const char *bind_path, const char *item_path, void **data, std::uint32_t *length,
                      sysdb_item_datatype_td type) {
    static constexpr Function function{"sysdb_get_data",
                                       "kerrno sysdb_get_data(yfw_map_ctx, const char *, const char *, void **, "
                                       "uint32_t *, sysdb_item_datatype_td)",
                                       YMAP_SOURCE("utility")};
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "path %s", item_path);
    sysdb_handle_td handle = nullptr;
    const kerrno bound = bind(function, ctx, bind_path, handle);
    if (bound != KERR_SUCCESS) {
        return bound;
    }
    kerrno result = KERR_SUCCESS;
    if (handle != nullptr) {
        result = sysdb_item_get(handle, item_path, &type, data, length, 0);
        if (result != KERR_SUCCESS) {
            YMAP_TRACE(function, ctx, "sysdb_item_get failed: %s", kerr_strerror(result));
        }
        YMAP_TRACE(function, ctx, "sysdb_unbind");
        unbind(handle);
    }
    if (result == KERR_SUCCESS && data == nullptr) {
        YMAP_TRACE(function, ctx, "bag_data == NULL");
    }
    YMAP_TRACE(function, ctx, "return");
    return result;
}

int sysdb_key_is_defined(yfw_map_ctx ctx, const char *key) {
    static constexpr Function function{"sysdb_key_is_defined", "int sysdb_key_is_defined(yfw_map_ctx, const char *)",
                                       YMAP_SOURCE("utility")};
    sysdb_handle_td handle = nullptr;
    if (bind(function, ctx, interface_path, handle) != KERR_SUCCESS || handle == nullptr) {
        return 0;
    }
    char name[20] = {};
    const int written = std::snprintf(name, sizeof name, "%s/", key);
    static_cast<void>(written); // a longer key is cut
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "key: %s", name);
    std::int32_t count = -1;
    sysdb_list_td list = nullptr;
    const kerrno listed = sysdb_list(handle, "", name, &count, &list, 0);
    YMAP_TRACE(function, ctx, "found %d object(s)", count);
    bool defined = false;
    if (listed == KERR_SUCCESS) {
        defined = holds_name(function, ctx, list, name);
        sysdb_list_free(list);
    } else {
        YMAP_TRACE(function, ctx, "sysdb_list failed %s", kerr_strerror(listed));
    }
    unbind(handle);
    return defined ? 1 : 0;
}

} // extern "C"
