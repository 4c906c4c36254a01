// What a management client does with a line system: reads and edits in OpenConfig. Exit codes and errors as in
// commands.hpp.
#ifndef OCPSM_CLIENT_COMMAND_HPP
#define OCPSM_CLIENT_COMMAND_HPP

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"

namespace ocpsm {

struct ClientOptions {
    std::filesystem::path state;
    std::filesystem::path plugin;
    std::optional<Format> format;
    bool log = false;   // the plug-in's debug log to `errors`
    bool trace = false; // its trace buffer to `errors`

    bool configuration_only = false; // of a read
    std::vector<std::string> paths;  // of a read: instance paths, none: everything
    std::string filter;              // of a read: a file with a subtree filter in place of the paths

    std::string file;     // of an edit; "-": standard input
    std::string path;     // of set and delete: an instance path
    std::string value;    // of set
    bool dry_run = false; // of the three: show what would be done, and do not do it
};

// Prints the answer to a read, in JSON unless a format is named or the filter is XML.
int get_command(const ClientOptions &options, std::ostream &output, std::ostream &errors);

// Each carries an edit out, whole or not at all, and prints what has changed.
int edit_command(const ClientOptions &options, std::ostream &output, std::ostream &errors);
int set_command(const ClientOptions &options, std::ostream &output, std::ostream &errors);
int delete_command(const ClientOptions &options, std::ostream &output, std::ostream &errors);

} // namespace ocpsm

#endif
