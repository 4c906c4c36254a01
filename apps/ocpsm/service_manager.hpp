// What a service tells the service manager that has started it.
#ifndef OCPSM_SERVICE_MANAGER_HPP
#define OCPSM_SERVICE_MANAGER_HPP

#include <string>
#include <string_view>

namespace ocpsm {

// Tells "READY=1" or "STOPPING=1" to the socket that NOTIFY_SOCKET names (sd_notify(3)). Without a manager, or when it
// does not listen, nothing happens.
void tell_service_manager(std::string_view state);

} // namespace ocpsm

#endif
