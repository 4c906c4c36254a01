#include "line_system_service.hpp"

#include "framework/device.hpp"
#include "libraries.hpp"
#include "messages.hpp"
#include "open_line_system.hpp"
#include "simulator/line_system.hpp"

namespace ocpsm {
Service open_service(const RequestOptions &options) {
    return Service(options.plugin, open_line_system(*options.state).device());
}

Service open_service_to_translate(const RequestOptions &options, std::ostream &errors) {
    const sysdb::Client client = load_database_client();
    if (!client.installed()) {
        print_warning(errors,
                      "the system database's client library " + sysdb::client_library().string() +
                          " is not there, so the plug-in reads no database: it finds no module that is not named");
        return Service(options.plugin);
    }
    if (options.state) {
        return open_service(options);
    }
    const SimulatedLineSystem example =
        SimulatedLineSystem::temporary(SimulatedLineSystem::example_slots(), database_stand_in());
    return Service(options.plugin, example.device());
}

} // namespace ocpsm
