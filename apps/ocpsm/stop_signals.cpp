#include "stop_signals.hpp"

#include <poll.h>
#include <unistd.h>

namespace ocpsm {
namespace {

volatile std::sig_atomic_t received_signal = 0;
volatile std::sig_atomic_t wanted_suspension = 0;

void take_note(int signal) {
    if (signal == SIGTSTP) {
        wanted_suspension = 1;
    } else {
        received_signal = signal;
    }
}

struct timespec time_of(std::chrono::milliseconds duration) {
    return {duration.count() / 1000, std::chrono::nanoseconds(duration % std::chrono::seconds(1)).count()};
}

} // namespace

StopSignals::StopSignals() {
    received_signal = 0;
    wanted_suspension = 0;
    sigset_t mask{};
    sigemptyset(&mask);
    for (const int signal : signals) {
        sigaddset(&mask, signal);
    }
    sigprocmask(SIG_BLOCK, &mask, &mask_before_);
    struct sigaction action {};
    action.sa_handler = take_note;
    action.sa_mask = mask;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        sigaction(signals.at(i), nullptr, &actions_before_.at(i));
        // What the caller has chosen to survive, as behind nohup, goes on to be survived.
        if (actions_before_.at(i).sa_handler != SIG_IGN) {
            sigaction(signals.at(i), &action, nullptr);
        }
    }
}

StopSignals::~StopSignals() {
    for (std::size_t i = 0; i < signals.size(); ++i) {
        sigaction(signals.at(i), &actions_before_.at(i), nullptr);
    }
    sigprocmask(SIG_SETMASK, &mask_before_, nullptr);
}

bool StopSignals::wait_for_input(std::chrono::milliseconds longest) const {
    struct pollfd input {
        STDIN_FILENO, POLLIN, 0
    };
    const struct timespec timeout = time_of(longest);
    const bool ready = ppoll(&input, 1, &timeout, &mask_before_) > 0;
    return !ready || (input.revents & POLLIN) != 0;
}

void StopSignals::wait(std::chrono::milliseconds longest) const {
    const struct timespec timeout = time_of(longest);
    ppoll(nullptr, 0, &timeout, &mask_before_);
}

int StopSignals::received() {
    return received_signal;
}

bool StopSignals::suspension_wanted() {
    return wanted_suspension != 0;
}

// With the signal's own effect, which is none where nobody could let the process go on.
void StopSignals::suspend() {
    wanted_suspension = 0;
    struct sigaction noted {};
    struct sigaction effective {};
    effective.sa_handler = SIG_DFL; // NOLINT(cppcoreguidelines-pro-type-cstyle-cast)
    sigset_t arriving{};
    sigemptyset(&arriving);
    sigaddset(&arriving, SIGTSTP);
    sigaction(SIGTSTP, &effective, &noted);
    std::raise(SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &arriving, nullptr);
    sigprocmask(SIG_BLOCK, &arriving, nullptr);
    sigaction(SIGTSTP, &noted, nullptr);
}

} // namespace ocpsm
