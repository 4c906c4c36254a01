// The node callbacks and hooks of the OpenConfig line protection model, written out by hand.
#ifndef TESTS_PLUGIN_CALLBACK_NAMES_HPP
#define TESTS_PLUGIN_CALLBACK_NAMES_HPP

#include <array>

namespace callback_test {

// What follows the common prefix of all names.
inline constexpr std::array<const char *, 24> containers = {
    "cont_lvla_aps",
    "cont_lvla_aps_apsmodules",
    "cont_lvla_aps_apsmodule_config",
    "cont_lvla_aps_apsmodule_state",
    "cont_lvla_aps_apsmodule_ports",
    "cont_lvla_aps_ports_lineprimaryin",
    "cont_lvla_aps_lineprimaryin_config",
    "cont_lvla_aps_lineprimaryin_state",
    "cont_lvla_aps_state_opticalpower",
    "cont_lvla_aps_ports_lineprimaryout",
    "cont_lvla_aps_lineprimaryout_config",
    "cont_lvla_aps_lineprimaryout_state",
    "cont_lvlb_aps_state_opticalpower",
    "cont_lvla_aps_ports_linesecondaryin",
    "cont_lvla_aps_linesecondaryin_config",
    "cont_lvla_aps_linesecondaryin_state",
    "cont_lvlc_aps_state_opticalpower",
    "cont_lvla_aps_ports_linesecondaryout",
    "cont_lvla_aps_linesecondaryout_config",
    "cont_lvla_aps_linesecondaryout_state",
    "cont_lvld_aps_state_opticalpower",
    "cont_lvla_aps_ports_commonoutput",
    "cont_lvla_aps_commonoutput_state",
    "cont_lvle_aps_state_opticalpower",
};

inline constexpr char list[] = "list_lvla_aps_apsmodules_apsmodule";

struct MappedLeaf {
    const char *callback;
    const char *conversion;
};

inline constexpr std::array<MappedLeaf, 49> mapped_leaves = {{
    {"leaf_lvla_aps_apsmodule_name", "op_cfg_psm_key_to_low"},
    {"leaf_lvla_aps_config_name", "oc_psm_cfg_get_psm_key_to_low"},
    {"leaf_lvla_aps_config_revertive", "oc_opt_psm_cfg_revertive_to_low"},
    {"leaf_lvla_aps_config_waittorestoretime", "oc_opt_psm_cfg_wtr_to_low"},
    {"leaf_lvla_aps_config_primaryswitchthreshold", "oc_opt_psm_cfg_primary_th_to_low"},
    {"leaf_lvla_aps_config_primaryswitchhysteresis", "oc_opt_psm_cfg_primary_th_hyst_to_low"},
    {"leaf_lvla_aps_config_secondaryswitchthreshold", "oc_opt_psm_cfg_secondary_th_to_low"},
    {"leaf_lvla_aps_config_relativeswitchthreshold", "oc_opt_psm_cfg_relative_switch_th_to_low"},
    {"leaf_lvla_aps_config_relativeswitchthresholdoffset", "oc_opt_psm_cfg_relative_switch_th_offset_to_low"},
    {"leaf_lvla_aps_config_forcetoport", "oc_opt_psm_cfg_force_to_port_to_low"},
    {"leaf_lvla_aps_state_name", "oc_opt_psm_state_get_psm_key_to_low"},
    {"leaf_lvla_aps_state_revertive", "oc_opt_psm_state_revertive_to_low"},
    {"leaf_lvla_aps_state_waittorestoretime", "oc_opt_psm_state_wtr_to_low"},
    {"leaf_lvla_aps_state_primaryswitchthreshold", "oc_opt_psm_state_primary_th_to_low"},
    {"leaf_lvla_aps_state_primaryswitchhysteresis", "oc_opt_psm_state_primary_th_hyst_to_low"},
    {"leaf_lvla_aps_state_secondaryswitchthreshold", "oc_opt_psm_state_secondary_th_to_low"},
    {"leaf_lvla_aps_state_relativeswitchthreshold", "oc_opt_psm_state_relative_switch_th_to_low"},
    {"leaf_lvla_aps_state_relativeswitchthresholdoffset", "oc_opt_psm_state_relative_switch_th_offset_to_low"},
    {"leaf_lvla_aps_state_forcetoport", "oc_opt_psm_state_force_to_port_to_low"},
    {"leaf_lvla_aps_state_activepath", "oc_opt_psm_state_active_path_to_low"},

    {"leaf_lvla_aps_config_targetattenuation", "oc_opt_psm_cfg_primary_rx_attenuation_to_low"},
    {"leaf_lvla_aps_state_targetattenuation", "oc_opt_psm_state_primary_rx_tagret_attenuation_to_low"},
    {"leaf_lvla_aps_state_attenuation", "oc_opt_psm_state_primary_rx_attenuation_to_low"},
    {"leaf_lvla_aps_opticalpower_instant", "oc_opt_psm_state_primary_rx_instant_power_to_low"},
    {"leaf_lvla_aps_opticalpower_avg", "oc_opt_psm_state_primary_rx_avg_power_to_low"},
    {"leaf_lvla_aps_opticalpower_min", "oc_opt_psm_state_primary_rx_min_power_to_low"},
    {"leaf_lvla_aps_opticalpower_max", "oc_opt_psm_state_primary_rx_max_power_to_low"},

    {"leaf_lvlb_aps_config_targetattenuation", "oc_opt_psm_cfg_primary_tx_attenuation_to_low"},
    {"leaf_lvlb_aps_state_targetattenuation", "oc_opt_psm_state_secondary_tx_target_attenuation_to_low"},
    {"leaf_lvlb_aps_state_attenuation", "oc_opt_psm_state_primary_tx_attenuation_to_low"},
    {"leaf_lvlb_aps_opticalpower_instant", "oc_opt_psm_state_primary_tx_instant_power_to_low"},
    {"leaf_lvlb_aps_opticalpower_avg", "oc_opt_psm_state_primary_tx_avg_power_to_low"},
    {"leaf_lvlb_aps_opticalpower_min", "oc_opt_psm_state_primary_tx_min_power_to_low"},
    {"leaf_lvlb_aps_opticalpower_max", "oc_opt_psm_state_primary_tx_max_power_to_low"},

    {"leaf_lvlc_aps_config_targetattenuation", "oc_opt_psm_cfg_secondary_rx_attenuation_to_low"},
    {"leaf_lvlc_aps_opticalpower_instant", "oc_opt_psm_state_secondary_rx_instant_power_to_low"},
    {"leaf_lvlc_aps_opticalpower_avg", "oc_opt_psm_state_secondary_rx_avg_power_to_low"},
    {"leaf_lvlc_aps_opticalpower_min", "oc_opt_psm_state_secondary_rx_min_power_to_low"},
    {"leaf_lvlc_aps_opticalpower_max", "oc_opt_psm_state_secondary_rx_max_power_to_low"},

    {"leaf_lvld_aps_config_targetattenuation", "oc_opt_psm_cfg_secondary_tx_attenuation_to_low"},
    {"leaf_lvld_aps_state_attenuation", "oc_opt_psm_state_secondary_tx_attenuation_to_low"},
    {"leaf_lvld_aps_opticalpower_instant", "oc_opt_psm_state_secondary_tx_instant_power_to_low"},
    {"leaf_lvld_aps_opticalpower_avg", "oc_opt_psm_state_secondary_tx_avg_power_to_low"},
    {"leaf_lvld_aps_opticalpower_min", "oc_opt_psm_state_secondary_tx_min_power_to_low"},
    {"leaf_lvld_aps_opticalpower_max", "oc_opt_psm_state_secondary_tx_max_power_to_low"},

    {"leaf_lvle_aps_opticalpower_instant", "oc_opt_psm_state_com_tx_instant_power_to_low"},
    {"leaf_lvle_aps_opticalpower_avg", "oc_opt_psm_state_common_tx_avg_power_to_low"},
    {"leaf_lvle_aps_opticalpower_min", "oc_opt_psm_state_common_tx_min_power_to_low"},
    {"leaf_lvle_aps_opticalpower_max", "oc_opt_psm_state_common_tx_max_power_to_low"},
}};

inline constexpr std::array<const char *, 5> refused_leaves = {
    "leaf_lvlc_aps_state_targetattenuation", "leaf_lvlc_aps_state_attenuation", "leaf_lvld_aps_state_targetattenuation",
    "leaf_lvle_aps_state_targetattenuation", "leaf_lvle_aps_state_attenuation",
};

inline constexpr std::array<const char *, 25> hooks = {
    "lvla_aps_parse_augments",
    "lvla_aps_apsmodules_parse_augments",
    "lvla_aps_apsmodules_apsmodule_parse_augments",
    "lvla_aps_apsmodule_config_parse_augments",
    "lvla_aps_apsmodule_state_parse_augments",
    "lvla_aps_apsmodule_ports_parse_augments",
    "lvla_aps_ports_lineprimaryin_parse_augments",
    "lvla_aps_lineprimaryin_config_parse_augments",
    "lvla_aps_lineprimaryin_state_parse_augments",
    "lvla_aps_state_opticalpower_parse_augments",
    "lvla_aps_ports_lineprimaryout_parse_augments",
    "lvla_aps_lineprimaryout_config_parse_augments",
    "lvla_aps_lineprimaryout_state_parse_augments",
    "lvlb_aps_state_opticalpower_parse_augments",
    "lvla_aps_ports_linesecondaryin_parse_augments",
    "lvla_aps_linesecondaryin_config_parse_augments",
    "lvla_aps_linesecondaryin_state_parse_augments",
    "lvlc_aps_state_opticalpower_parse_augments",
    "lvla_aps_ports_linesecondaryout_parse_augments",
    "lvla_aps_linesecondaryout_config_parse_augments",
    "lvla_aps_linesecondaryout_state_parse_augments",
    "lvld_aps_state_opticalpower_parse_augments",
    "lvla_aps_ports_commonoutput_parse_augments",
    "lvla_aps_commonoutput_state_parse_augments",
    "lvle_aps_state_opticalpower_parse_augments",
};

} // namespace callback_test

#endif
