// Where the libraries are that come with the program.
#ifndef OCPSM_LIBRARIES_HPP
#define OCPSM_LIBRARIES_HPP

#include <filesystem>

#include "simulator/database/client_library.hpp"

namespace ocpsm {

// The directory with the plug-in and the libraries that come with the program: "lib" beside the program's own one.
std::filesystem::path library_directory();

// What stands in for the system database client where that is not installed.
std::filesystem::path database_stand_in();

// The system database client, or its stand-in.
sysdb::Client load_database_client();

} // namespace ocpsm

#endif
