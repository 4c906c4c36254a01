// Which directory holds the line system that a command works on.
#ifndef OCPSM_STATE_DIRECTORY_HPP
#define OCPSM_STATE_DIRECTORY_HPP

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace ocpsm {

// The value of an environment variable, absent where it is not set.
using Environment = std::function<std::optional<std::string>(const std::string &name)>;

// That of the process.
std::optional<std::string> process_environment(const std::string &name);

// The directory that was named on the command line; else OCPSM_STATE; else ocpsm below XDG_STATE_HOME, which counts
// when it is an absolute path; else .local/state/ocpsm below HOME. An empty variable counts as one that is not set.
// Throws ocpsm::Error (input) for an empty name and where nothing says which directory it is.
std::filesystem::path state_directory(const std::optional<std::string> &named, const Environment &environment);

} // namespace ocpsm

#endif
