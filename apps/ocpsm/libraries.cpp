#include "libraries.hpp"

#include <unistd.h>

#include <fstream>
#include <iterator>

#include "messages.hpp"
#include "simulator/database/client_library.hpp"

namespace ocpsm {
namespace {

// As manageability/yang/framework/mapping/oc-psm/src/version.cpp writes it.
constexpr std::string_view version_mark = "@(#) oc-psm ";
constexpr std::string_view client_mark = ", database client ";
constexpr std::uintmax_t largest_plugin = std::uintmax_t{64} << 20;

} // namespace

std::filesystem::path own_plugin() {
    return sysdb::library_directory() / "oc-psm.so";
}

std::optional<PluginText> read_plugin_text(const std::filesystem::path &plugin) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(plugin, failure) ||
        std::filesystem::file_size(plugin, failure) > largest_plugin) {
        return std::nullopt;
    }
    std::ifstream file(plugin, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::size_t start = content.find(version_mark);
    if (start == std::string::npos) {
        return std::nullopt;
    }
    const std::string text = content.substr(start, content.find('\0', start) - start);
    const std::size_t end = text.find(client_mark);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    return PluginText{text.substr(version_mark.size(), end - version_mark.size()),
                      std::filesystem::absolute(plugin).parent_path() / text.substr(end + client_mark.size())};
}

std::string missing_database(const std::filesystem::path &plugin) {
    if (!sysdb::Client().installed()) {
        return "the system database's client library " + sysdb::client_library().string() + " is not there";
    }
    const auto text = read_plugin_text(plugin);
    if (text && access(text->database_client.c_str(), R_OK) != 0) {
        return "the plug-in " + plugin.string() + " is built for the system database's client library " +
               text->database_client.string() + ", which is not there";
    }
    return {};
}

std::string version_text(const std::filesystem::path &plugin) {
    const auto text = read_plugin_text(plugin);
    return "ocpsm " OC_PSM_VERSION "\noc-psm " +
           (text ? on_one_line(text->version) : std::string("of no known version")) + " in " +
           on_one_line(plugin.string());
}

} // namespace ocpsm
