// The list of the OpenConfig model that the plug-in serves: its path, its key, and the containers around and in it.
#ifndef OCPSM_FRAMEWORK_OPENCONFIG_HPP
#define OCPSM_FRAMEWORK_OPENCONFIG_HPP

#include <cstddef>
#include <string_view>

namespace ocpsm::openconfig {

// The schema path of the list of modules; the names below are read out of it.
inline constexpr std::string_view list_path = "/aps/aps-modules/aps-module";

// The name of a step of the list's path, the top node's being 0.
consteval std::string_view list_step(std::size_t number) {
    std::string_view rest = list_path.substr(1);
    for (; number > 0; --number) {
        rest.remove_prefix(rest.find('/') + 1);
    }
    return rest.substr(0, rest.find('/'));
}

inline constexpr std::string_view top_name = list_step(0);
inline constexpr std::string_view container_name = list_step(1);
inline constexpr std::string_view list_name = list_step(2);

// The list's only key, and the container of an entry whose leaf of the same name it refers to.
inline constexpr std::string_view key_name = "name";
inline constexpr std::string_view referred_container = "config";

// The schema paths of the top node and of the container around the list.
inline constexpr std::string_view top_path = list_path.substr(0, 1 + top_name.size());
inline constexpr std::string_view container_path = list_path.substr(0, top_path.size() + 1 + container_name.size());

} // namespace ocpsm::openconfig

#endif
