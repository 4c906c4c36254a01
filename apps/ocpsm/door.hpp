// A way for other programs to reach the line system while it is served.
#ifndef OCPSM_DOOR_HPP
#define OCPSM_DOOR_HPP

#include <string>

namespace ocpsm {

// Its functions are called on the program's main thread. Threads that it starts take none of the signals of StopSignals
// (stop_signals.hpp): these are blocked by then.
class Door {
public:
    Door() = default;
    Door(const Door &) = delete;
    Door &operator=(const Door &) = delete;
    virtual ~Door() = default;

    // Lets clients come in. Throws Error where that cannot be.
    virtual void start() = 0;

    // Of one that has started: a line with what to type to use it.
    virtual std::string usage() const = 0;

    // Ends the sessions and whatever runs for them; when it returns, nothing of it is left. One that has not started
    // has nothing to stop.
    virtual void stop() noexcept = 0;
};

} // namespace ocpsm

#endif
