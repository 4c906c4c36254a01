// The models that the plug-in translates between: namespaces and the native paths that recur.
#ifndef OC_PSM_NATIVE_MODELS_HPP
#define OC_PSM_NATIVE_MODELS_HPP

#include <string_view>

// Macros, because the tables join them with the rest of a path.
#define YMAP_NODE "/active-nodes/active-node"
#define YMAP_SLOT YMAP_NODE "/slot"
#define YMAP_INTERFACE "/interface-configurations/interface-configuration"
#define YMAP_OPTICS YMAP_INTERFACE "/optics"
#define YMAP_OTS_PORT "/ots-oper/ots-ports/ots-port"
#define YMAP_OTS_INFO YMAP_OTS_PORT "/ots-info"
#define YMAP_HISTORY                                                                                                   \
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
#define YMAP_SECOND30                                                                                                  \
    YMAP_HISTORY "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
#define YMAP_TIME_LINE                                                                                                 \
    YMAP_SECOND30 "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance"

// The OpenConfig list of protection modules.
#define YMAP_MODULE "/aps/aps-modules/aps-module"

namespace ymap {

// The namespaces.
inline constexpr char openconfig[] = "http://openconfig.net/yang/optical-transport-line-protection";
#define YMAP_NATIVE_MODEL(model, module, names, stem, access)                                                          \
    inline constexpr char model[] = "http://vexlo.example/ns/yang/" module;
#include "native_models.def"
#undef YMAP_NATIVE_MODEL

enum class NativeAccess { configuration, operational };

// A row of the table of native models.
struct NativeModelRow {
    std::string_view module; // YANG module
    std::string_view names;  // its part of the exported names
    std::string_view stem;   // of its node table and its sources
    const char *namespace_uri;
    NativeAccess access;
};

inline constexpr NativeModelRow native_models[] = {
#define YMAP_NATIVE_MODEL(model, module, names, stem, access) {module, #names, #stem, model, NativeAccess::access},
#include "native_models.def"
#undef YMAP_NATIVE_MODEL
};

// The model with this part of the exported names; there must be one.
consteval const NativeModelRow &native_model(std::string_view names) {
    const NativeModelRow *row = native_models;
    while (row->names != names) {
        ++row;
    }
    return *row;
}

} // namespace ymap

#endif
