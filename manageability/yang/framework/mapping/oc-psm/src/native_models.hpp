// The models that the plug-in translates between: namespaces and the native paths that recur.
#ifndef OC_PSM_NATIVE_MODELS_HPP
#define OC_PSM_NATIVE_MODELS_HPP

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

#define YMAP_NATIVE_NAMESPACE "http://vexlo.example/ns/yang/Vexlo-ORBIT-"

inline constexpr char openconfig[] = "http://openconfig.net/yang/optical-transport-line-protection";
inline constexpr char ots_cfg[] = YMAP_NATIVE_NAMESPACE "tlm2200-ots-cfg";
inline constexpr char mda_cfg[] = YMAP_NATIVE_NAMESPACE "config-mda-cfg";
inline constexpr char ifmgr_cfg[] = YMAP_NATIVE_NAMESPACE "ifmgr-cfg";
inline constexpr char optics_cfg[] = YMAP_NATIVE_NAMESPACE "controller-optics-cfg";
inline constexpr char ots_oper[] = YMAP_NATIVE_NAMESPACE "controller-tlm2200-ots-oper";
inline constexpr char optics_oper[] = YMAP_NATIVE_NAMESPACE "controller-optics-oper";
inline constexpr char pmengine_oper[] = YMAP_NATIVE_NAMESPACE "pmengine-oper";

#undef YMAP_NATIVE_NAMESPACE

} // namespace ymap

#endif
