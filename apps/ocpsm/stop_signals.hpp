// The signals that ask a program to end or to stop, taken note of while it has something to tidy up.
#ifndef OCPSM_STOP_SIGNALS_HPP
#define OCPSM_STOP_SIGNALS_HPP

#include <array>
#include <chrono>
#include <csignal>

namespace ocpsm {

// While this lives, SIGINT, SIGTERM, SIGHUP and SIGTSTP arrive only in the functions that wait, and neither end nor
// stop anything. One object at a time, made while the program has one thread; threads that are started later take none
// of these signals. Its end gives everything back; it does not deliver a signal that has come.
class StopSignals {
public:
    StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;
    ~StopSignals();

    // Waits until standard input has something or has ended, a signal has come, or this long has passed. False when it
    // has ended: the terminal is gone.
    bool wait_for_input(std::chrono::milliseconds longest) const;

    // The same without standard input.
    void wait(std::chrono::milliseconds longest) const;

    // The signal that has come and asks for the end, 0 when none has.
    static int received();

    // Whether somebody wants the process stopped for a while.
    static bool suspension_wanted();

    // Stops it, and returns when it goes on.
    static void suspend();

private:
    static constexpr std::array<int, 4> signals = {SIGINT, SIGTERM, SIGHUP, SIGTSTP};

    sigset_t mask_before_{};
    std::array<struct sigaction, signals.size()> actions_before_{};
};

} // namespace ocpsm

#endif
