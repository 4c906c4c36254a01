// The service of a line system, for the subcommands that make requests.
#ifndef OCPSM_LINE_SYSTEM_SERVICE_HPP
#define OCPSM_LINE_SYSTEM_SERVICE_HPP

#include <filesystem>
#include <iosfwd>
#include <optional>

#include "commands.hpp"
#include "framework/service.hpp"
#include "simulator/line_system.hpp"

namespace ocpsm {

// Throws Error for a directory without a line system, and where the database client is not installed.
Service open_service(const RequestOptions &options);

// That of a line system which is open already.
Service service_of(const SimulatedLineSystem &line_system, const std::filesystem::path &plugin);

// For translations: the line system of a directory, or the built-in example for the life of the service. Where the
// database client is not installed it warns, and goes on without a device.
Service open_service_to_translate(const RequestOptions &options, std::ostream &errors);

} // namespace ocpsm

#endif
