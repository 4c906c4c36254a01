#include "service_manager.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <optional>

#include "state_directory.hpp"

namespace ocpsm {

// The name of a socket begins with a slash, or with an @ in place of the zero of one that has no file.
void tell_service_manager(std::string_view state) {
    const std::optional<std::string> name = process_environment("NOTIFY_SOCKET");
    struct sockaddr_un address {};
    if (!name || name->size() < 2 || name->size() >= sizeof address.sun_path ||
        (name->front() != '/' && name->front() != '@')) {
        return;
    }
    address.sun_family = AF_UNIX;
    std::copy(name->begin(), name->end(), std::begin(address.sun_path));
    address.sun_path[0] = name->front() == '@' ? '\0' : '/';
    const auto size = static_cast<socklen_t>(offsetof(struct sockaddr_un, sun_path) + name->size());
    const int manager = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (manager >= 0) {
        static_cast<void>(sendto(manager, state.data(), state.size(), MSG_NOSIGNAL,
                                 reinterpret_cast<const struct sockaddr *>(&address), size) < 0); // NOLINT
        close(manager);
    }
}

} // namespace ocpsm
