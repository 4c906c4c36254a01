// The libraries that come with the program, and whether they fit together.
#ifndef OCPSM_LIBRARIES_HPP
#define OCPSM_LIBRARIES_HPP

#include <filesystem>
#include <optional>
#include <string>

namespace ocpsm {

// The plug-in that is used where none is named: the one beside the program's libraries.
std::filesystem::path own_plugin();

// What a plug-in's file says of itself, without being loaded.
struct PluginText {
    std::string version;
    std::filesystem::path database_client; // the file without which it reads no database
};

// Nothing for a file that cannot be read, has more than 64 MB, or says nothing.
std::optional<PluginText> read_plugin_text(const std::filesystem::path &plugin);

// Loads the system database client, or its stand-in. For want of which file a plug-in reads no database, in words that
// name it; empty where nothing is missing.
std::string missing_database(const std::filesystem::path &plugin);

// A line for the program and one for the plug-in.
std::string version_text(const std::filesystem::path &plugin);

} // namespace ocpsm

#endif
