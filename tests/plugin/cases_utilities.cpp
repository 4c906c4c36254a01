// The exported utilities, as the cases call them.
#include "arguments.hpp"
#include "utility.hpp"
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

namespace cases {

#define UTILITY(name)                                                                                                  \
    { #name, utility(name) }
#define YMAP_BAG_READER(name, ...) UTILITY(name),
#define YMAP_INTEGER_READER(name, ...) UTILITY(name),
#define YMAP_HISTORY_READER(name, ...) UTILITY(name),

const std::map<std::string, Utility> &utilities() {
    static const std::map<std::string, Utility> all{
        UTILITY(ots_ctrl_key_to_psm_key),
        UTILITY(psm_key_to_sysdb_key),
        UTILITY(check_controller_name_ots_is_good_by_port),
        UTILITY(check_controller_name_ots_is_good),
        UTILITY(convert_data_to_high),
        UTILITY(convert_data_to_low),
        UTILITY(compare_path),
        UTILITY(search_data_in_response),
        UTILITY(check_request_type),
        UTILITY(check_request_type_3),
        UTILITY(print_data),
        UTILITY(sysdb_get_data),
        UTILITY(sysdb_key_is_defined),
        UTILITY(get_value_in_bag),
        UTILITY(convert_bag_value_to_str),
        UTILITY(sysdb_get_pm_30sec_power),
        UTILITY(sysdb_get_psm_name_from_inventory),
        UTILITY(build_interface_key),
        UTILITY(add_interface_key),
        UTILITY(add_ots_select_field),
        UTILITY(add_pm_select_field),
        UTILITY(add_hwmodule_select_field),
#include "utility_readers.inc"
    };
    return all;
}

} // namespace cases
