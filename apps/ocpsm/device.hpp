// Where the libraries are that come with the program.
#ifndef OCPSM_DEVICE_HPP
#define OCPSM_DEVICE_HPP

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/temporary_state.hpp"

namespace ocpsm {

// The directory with the plug-in and the libraries that come with the program: "lib" beside the program's own one.
std::filesystem::path library_directory();

// The system database client, or its stand-in where it is not installed.
ocpsm::sysdb::Client load_database_client();

// The system database client. Throws Error where it is not installed.
ocpsm::sysdb::Client load_installed_client();

} // namespace ocpsm

#endif
