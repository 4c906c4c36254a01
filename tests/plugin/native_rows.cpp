#include "native_rows.hpp"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace native_test {
namespace {

const std::vector<Model> &models() {
    static const std::vector<Model> all{
        {"vexloorbittlm2200otscfg", "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg",
         "ymap_oc_opt_psm_vexlo_orbit_tlm2200_ots_cfg_", false},
        {"vexloorbitcontrolleropticscfg", "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg",
         "ymap_oc_opt_psm_vexlo_orbit_controller_optics_cfg_", false},
        {"vexloorbitpmengineoper", "http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper",
         "ymap_oc_opt_psm_vexlo_orbit_pmengine_oper_", true},
        {"vexloorbitcontrolleropticsoper", "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-oper",
         "ymap_oc_opt_psm_vexlo_orbit_controller_optics_oper_", true},
        {"vexloorbitcontrollertlm2200otsoper", "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper",
         "ymap_oc_opt_psm_vexlo_orbit_controller_tlm2200_ots_oper_", true},
        {"vexloorbitconfigmdacfg", "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg",
         "ymap_oc_opt_psm_vexlo_orbit_config_mda_cfg_", false},
        {"vexloorbitifmgrcfg", "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg",
         "ymap_oc_opt_psm_vexlo_orbit_ifmgr_cfg_", false},
    };
    return all;
}

// The nodes with children and the augment entries; a leaf's node is told by its parent.
const std::vector<Row> &rows() {
    static const std::vector<Row> all{
        // ---- Vexlo-ORBIT-tlm2200-ots-cfg, at active nodes ----
        {"augment_lvla_active_node", "slot", {{"slot", "lvla_slot"}}, "", {}},
        {"lvla_slot", "slot", {{"psm", "lvla_slot_psm"}}, "/node:active-nodes/node:active-node/slot", {"slot-id"}},
        {"lvla_slot_psm",
         "psm",
         {{"relative-switch-threshold", "lvla_slot_psm_relativeswitchthreshold"},
          {"revertive", "lvla_slot_psm_revertive"},
          {"lockout-from", "lvla_slot_psm_lockoutfrom"}},
         "",
         {}},
        {"lvla_slot_psm_relativeswitchthreshold",
         "relative-switch-threshold",
         {{"psm-relative-switch-threshold", "lvla_slot_relativeswitchthreshold_psmrelativeswitchthreshold"},
          {"psm-relative-switch-threshold-offset",
           "lvla_slot_relativeswitchthreshold_psmrelativeswitchthresholdoffset"}},
         "",
         {}},
        {"lvla_slot_psm_revertive",
         "revertive",
         {{"enable", "lvla_slot_revertive_enable"}, {"wtr", "lvla_slot_revertive_wtr"}},
         "",
         {}},

        // ---- the same at preconfigured nodes ----
        {"augment_lvla_preconfigured_node", "slot", {{"slot", "lvlb_slot"}}, "", {}},
        {"lvlb_slot",
         "slot",
         {{"psm", "lvlb_slot_psm"}},
         "/node:preconfigured-nodes/node:preconfigured-node/slot",
         {"slot-id"}},
        {"lvlb_slot_psm",
         "psm",
         {{"relative-switch-threshold", "lvlb_slot_psm_relativeswitchthreshold"},
          {"revertive", "lvlb_slot_psm_revertive"},
          {"lockout-from", "lvlb_slot_psm_lockoutfrom"}},
         "",
         {}},
        {"lvlb_slot_psm_relativeswitchthreshold",
         "relative-switch-threshold",
         {{"psm-relative-switch-threshold", "lvlb_slot_relativeswitchthreshold_psmrelativeswitchthreshold"},
          {"psm-relative-switch-threshold-offset",
           "lvlb_slot_relativeswitchthreshold_psmrelativeswitchthresholdoffset"}},
         "",
         {}},
        {"lvlb_slot_psm_revertive",
         "revertive",
         {{"enable", "lvlb_slot_revertive_enable"}, {"wtr", "lvlb_slot_revertive_wtr"}},
         "",
         {}},

        // ---- Vexlo-ORBIT-controller-optics-cfg ----
        {"augment_lvla_interface_configuration", "optics", {{"optics", "lvla_optics"}}, "", {}},
        {"lvla_optics",
         "optics",
         {{"rx-thresholds", "lvla_optics_rxthresholds"},
          {"optics-ots-rx-voa-attenuation", "lvla_optics_opticsotsrxvoaattenuation"},
          {"optics-ots-rx-low-threshold-delta", "lvla_optics_opticsotsrxlowthresholddelta"},
          {"optics-ots-tx-voa-attenuation", "lvla_optics_opticsotstxvoaattenuation"}},
         "",
         {}},
        {"lvla_optics_rxthresholds",
         "rx-thresholds",
         {{"rx-threshold", "lvla_optics_rxthresholds_rxthreshold"}},
         "",
         {}},
        {"lvla_optics_rxthresholds_rxthreshold",
         "rx-threshold",
         {{"rx-threshold", "lvla_optics_rxthreshold_rxthreshold"}},
         "/a1:interface-configurations/a1:interface-configuration/optics/rx-thresholds/rx-threshold",
         {"rx-threshold-type"}},

        // ---- Vexlo-ORBIT-pmengine-oper ----
        {"lvla_performancemanagementhistory",
         "performance-management-history",
         {{"global", "lvla_performancemanagementhistory_global"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_global",
         "global",
         {{"periodic", "lvla_performancemanagementhistory_global_periodic"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_global_periodic",
         "periodic",
         {{"optics-history", "lvla_performancemanagementhistory_periodic_opticshistory"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_periodic_opticshistory",
         "optics-history",
         {{"optics-port-histories", "lvla_performancemanagementhistory_opticshistory_opticsporthistories"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opticshistory_opticsporthistories",
         "optics-port-histories",
         {{"optics-port-history", "lvla_performancemanagementhistory_opticsporthistories_opticsporthistory"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opticsporthistories_opticsporthistory",
         "optics-port-history",
         {{"optics-second30-history", "lvla_performancemanagementhistory_opticsporthistory_opticssecond30history"}},
         "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history",
         {"name"}},
        {"lvla_performancemanagementhistory_opticsporthistory_opticssecond30history",
         "optics-second30-history",
         {{"optics-second30-optics-histories",
           "lvla_performancemanagementhistory_opticssecond30history_opticssecond30opticshistories"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opticssecond30history_opticssecond30opticshistories",
         "optics-second30-optics-histories",
         {{"optics-second30-optics-history",
           "lvla_performancemanagementhistory_opticssecond30opticshistories_opticssecond30opticshistory"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opticssecond30opticshistories_opticssecond30opticshistory",
         "optics-second30-optics-history",
         {{"optics-second30-optics-time-line-instances",
           "lvla_performancemanagementhistory_opticssecond30opticshistory_opticssecond30opticstimelineinstances"}},
         "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
         "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history",
         {"number"}},
        {"lvla_performancemanagementhistory_opticssecond30opticshistory_opticssecond30opticstimelineinstances",
         "optics-second30-optics-time-line-instances",
         {{"optics-second30-optics-time-line-instance",
           "lvla_performancemanagementhistory_opticssecond30opticstimelineinstances_"
           "opticssecond30opticstimelineinstance"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opticssecond30opticstimelineinstances_"
         "opticssecond30opticstimelineinstance",
         "optics-second30-optics-time-line-instance",
         {{"opt", "lvla_performancemanagementhistory_opticssecond30opticstimelineinstance_opt"},
          {"opr", "lvla_performancemanagementhistory_opr"}},
         "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
         "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
         "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance",
         {"number"}},
        {"lvla_performancemanagementhistory_opticssecond30opticstimelineinstance_opt",
         "opt",
         {{"minimum", "lvla_performancemanagementhistory_opt_minimum"},
          {"average", "lvla_performancemanagementhistory_opt_average"},
          {"maximum", "lvla_performancemanagementhistory_opt_maximum"}},
         "",
         {}},
        {"lvla_performancemanagementhistory_opr",
         "opr",
         {{"minimum", "lvla_performancemanagementhistory_opr_minimum"},
          {"average", "lvla_performancemanagementhistory_opr_average"},
          {"maximum", "lvla_performancemanagementhistory_opr_maximum"}},
         "",
         {}},

        // ---- Vexlo-ORBIT-controller-optics-oper ----
        {"lvla_opticsoper", "optics-oper", {{"optics-ports", "lvla_opticsoper_opticsports"}}, "", {}},
        {"lvla_opticsoper_opticsports",
         "optics-ports",
         {{"optics-port", "lvla_opticsoper_opticsports_opticsport"}},
         "",
         {}},
        {"lvla_opticsoper_opticsports_opticsport",
         "optics-port",
         {{"name", "lvla_opticsoper_opticsport_name"}},
         "/optics-oper/optics-ports/optics-port",
         {"name"}},

        // ---- Vexlo-ORBIT-controller-tlm2200-ots-oper ----
        {"lvla_otsoper", "ots-oper", {{"ots-ports", "lvla_otsoper_otsports"}}, "", {}},
        {"lvla_otsoper_otsports", "ots-ports", {{"ots-port", "lvla_otsoper_otsports_otsport"}}, "", {}},
        {"lvla_otsoper_otsports_otsport",
         "ots-port",
         {{"ots-info", "lvla_otsoper_otsport_otsinfo"}, {"name", "lvla_otsoper_otsport_name"}},
         "/ots-oper/ots-ports/ots-port",
         {"name"}},
        {"lvla_otsoper_otsport_otsinfo",
         "ots-info",
         {{"lane-data", "lvla_otsoper_otsinfo_lanedata"},
          {"rx-voa-attenuation", "lvla_otsoper_otsinfo_rxvoaattenuation"},
          {"tx-voa-attenuation", "lvla_otsoper_otsinfo_txvoaattenuation"},
          {"port-status", "lvla_otsoper_otsinfo_portstatus"},
          {"rx-low-threshold", "lvla_otsoper_otsinfo_rxlowthreshold"},
          {"rx-thr-fail-low-delta-val", "lvla_otsoper_otsinfo_rxthrfaillowdeltaval"}},
         "",
         {}},
        {"lvla_otsoper_otsinfo_lanedata",
         "lane-data",
         {{"receive-power", "lvla_otsoper_lanedata_receivepower"},
          {"transmit-power", "lvla_otsoper_lanedata_transmitpower"}},
         "",
         {}},

        // ---- Vexlo-ORBIT-config-mda-cfg ----
        {"lvla_activenodes", "active-nodes", {{"active-node", "lvla_activenodes_activenode"}}, "", {}},
        {"lvla_activenodes_activenode", "active-node", {}, "/active-nodes/active-node", {"node-name"}},

        // ---- Vexlo-ORBIT-ifmgr-cfg ----
        {"lvla_interfaceconfigurations",
         "interface-configurations",
         {{"interface-configuration", "lvla_interfaceconfigurations_interfaceconfiguration"}},
         "",
         {}},
        {"lvla_interfaceconfigurations_interfaceconfiguration",
         "interface-configuration",
         {{"interface-name", "lvla_interfaceconfigurations_interfaceconfiguration_interfacename"}},
         "/interface-configurations/interface-configuration",
         {"active", "interface-name"}},
    };
    return all;
}

const Model &model_of(const std::string &module) {
    return *std::find_if(models().begin(), models().end(), [&](const Model &model) { return model.module == module; });
}

Row row_of(const std::string &suffix, Kind kind) {
    for (const Row &row : rows()) {
        if (row.walker == suffix) {
            return row;
        }
        for (const Child &child : row.children) {
            if (kind == Kind::leaf && child.walker == suffix) {
                return {suffix, child.tag, {}, "", {}};
            }
        }
    }
    throw std::out_of_range("no row " + suffix);
}

Walker made(const char *module, const char *suffix, Kind kind) {
    return {&model_of(module), kind, row_of(suffix, kind)};
}

} // namespace

std::string Walker::short_callback() const {
    static const std::map<Kind, std::string> words{
        {Kind::container, "cont_"}, {Kind::list, "list_"}, {Kind::leaf, "leaf_"}};
    return words.at(kind) + row.walker;
}

const std::vector<Walker> &walkers() {
    static const std::vector<Walker> all{
#define YMAP_TEST_AUGMENT(module, suffix) made(#module, #suffix, Kind::augment),
#define YMAP_TEST_CONT(module, suffix) made(#module, #suffix, Kind::container),
#define YMAP_TEST_LIST(module, suffix) made(#module, #suffix, Kind::list),
#define YMAP_TEST_LEAF(module, suffix) made(#module, #suffix, Kind::leaf),
#include "native_names.def"
#undef YMAP_TEST_AUGMENT
#undef YMAP_TEST_CONT
#undef YMAP_TEST_LIST
#undef YMAP_TEST_LEAF
    };
    return all;
}

std::vector<const Walker *> walkers_of(Kind kind) {
    std::vector<const Walker *> chosen;
    for (const Walker &walker : walkers()) {
        if (walker.kind == kind) {
            chosen.push_back(&walker);
        }
    }
    return chosen;
}

const Walker &walker(const std::string &suffix) {
    for (const Walker &walker : walkers()) {
        if (walker.suffix() == suffix) {
            return walker;
        }
    }
    throw std::out_of_range("no walker " + suffix);
}

const Lines &list_parents() {
    static const Lines all{
        "lvla_optics_rxthresholds",
        "lvla_opticsoper_opticsports",
        "lvla_performancemanagementhistory_opticshistory_opticsporthistories",
        "lvla_performancemanagementhistory_opticssecond30history_opticssecond30opticshistories",
        "lvla_performancemanagementhistory_opticssecond30opticshistory_opticssecond30opticstimelineinstances",
        "lvla_activenodes",
        "lvla_interfaceconfigurations",
        "lvla_otsoper_otsports",
    };
    return all;
}

} // namespace native_test
