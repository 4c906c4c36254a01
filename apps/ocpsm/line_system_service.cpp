#include "line_system_service.hpp"

#include "framework/device.hpp"
#include "libraries.hpp"
#include "messages.hpp"
#include "open_line_system.hpp"

namespace ocpsm {

Service open_service(const RequestOptions &options) {
    return service_of(open_line_system(*options.state), options.plugin);
}

Service service_of(const SimulatedLineSystem &line_system, const std::filesystem::path &plugin) {
    if (const std::string missing = missing_database(plugin); !missing.empty()) {
        throw Error(Error::Source::input, {}, {}, missing,
                    "name the plug-in that belongs to this line system, or leave --plugin out");
    }
    return Service(plugin, line_system.device());
}

Service open_service_to_translate(const RequestOptions &options, std::ostream &errors) {
    if (const std::string missing = missing_database(options.plugin); !missing.empty()) {
        print_warning(errors, missing + ", so the plug-in reads no database: it finds no module that is not named");
        return Service(options.plugin);
    }
    if (options.state) {
        return open_service(options);
    }
    return Service(options.plugin, SimulatedLineSystem::temporary().device());
}

} // namespace ocpsm
