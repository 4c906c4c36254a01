#include "following.hpp"

#include <poll.h>
#include <unistd.h>

#include "simulator/line_system.hpp"

namespace ocpsm {

bool wait_for_a_step() {
    struct pollfd reader {
        STDOUT_FILENO, 0, 0
    };
    return poll(&reader, 1, SimulatedLineSystem::step) <= 0;
}

} // namespace ocpsm
