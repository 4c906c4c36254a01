// What answers for the device while a request is translated.
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

// The system database client with a line system behind it. Must be there before the plug-in is loaded, whose database
// operations it provides.
class Device {
public:
    // `state` is the directory of a line system; empty: the built-in example, for the life of this object. Throws
    // ocpsm::Error for a directory without one. Warns when the database client is not installed: then there is no
    // database to read.
    Device(const std::filesystem::path &state, std::ostream &errors);
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;
    ~Device();

    // Names of the modules that are fitted, in the order of their slots; none without a database.
    const std::vector<std::string> &fitted_modules() const { return fitted_modules_; }

private:
    ocpsm::sysdb::Client client_;
    std::optional<ocpsm::line_system::TemporaryState> example_;
    std::vector<std::string> fitted_modules_;
};

} // namespace ocpsm

#endif
