#include "watch_command.hpp"

#include <algorithm>
#include <chrono>

#include "clock_lock.hpp"
#include "commands.hpp"
#include "framework/error.hpp"
#include "open_line_system.hpp"
#include "stop_signals.hpp"
#include "terminal.hpp"
#include "watch_screen.hpp"

namespace ocpsm {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds step{SimulatedLineSystem::step};

class Watch {
public:
    Watch(const SimulatedLineSystem &system, const std::filesystem::path &state, const StopSignals &signals)
        : system_(system), state_(state), lock_(std::in_place, state), signals_(signals) {
        screen_.update(system_.view());
    }

    // Until the user or a signal ends it.
    void run() {
        Clock::time_point next = Clock::now() + step;
        while (!quit_ && StopSignals::received() == 0) {
            terminal_.show(screen_.lines(terminal_.size()));
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
            quit_ = !signals_.wait_for_input(std::max(left, std::chrono::milliseconds(0)));
            if (StopSignals::suspension_wanted()) {
                suspend();
                next = Clock::now() + step;
            }
            for (Key key = terminal_.key(); key != Key::none && !quit_; key = terminal_.key()) {
                press(key);
            }
            if (Clock::now() >= next) {
                pass_time();
                // A process that was stopped for a while does not catch up.
                next = std::max(next + step, Clock::now());
            }
        }
    }

private:
    // While it is stopped, another process may let the time pass; when it is to go on, that one must have ended.
    void suspend() {
        Terminal::leave();
        lock_.reset();
        StopSignals::suspend();
        lock_.emplace(state_);
    }

    void press(Key key) {
        switch (key) {
        case Key::up:
            screen_.choose_previous();
            break;
        case Key::down:
            screen_.choose_next();
            break;
        case Key::quit:
            quit_ = true;
            break;
        case Key::cut:
        case Key::splice:
            change_fibre(key);
            break;
        case Key::none:
        case Key::other:
            break;
        }
    }

    // Another process may have pulled the module in the meantime: that is for the user to see, not the end.
    void change_fibre(Key key) {
        const std::optional<ChosenLine> chosen = screen_.chosen();
        if (!chosen) {
            screen_.note("no module is fitted");
            return;
        }
        const Line line = chosen->line == 0 ? Line::primary : Line::secondary;
        try {
            screen_.update(key == Key::cut ? system_.cut(chosen->slot, line) : system_.splice(chosen->slot, line));
            screen_.note({});
        } catch (const Error &error) {
            if (error.source != Error::Source::refused) {
                throw;
            }
            screen_.update(system_.view());
            screen_.note(error.what());
        }
    }

    void pass_time() { screen_.update(system_.tick(SimulatedLineSystem::step)); }

    const SimulatedLineSystem &system_;
    const std::filesystem::path &state_;
    std::optional<ClockLock> lock_;
    const StopSignals &signals_;
    Terminal terminal_;
    WatchScreen screen_;
    bool quit_ = false;
};

} // namespace

int watch_command(const std::filesystem::path &state) {
    int signal = 0;
    {
        const SimulatedLineSystem system = open_line_system(state);
        // Before the screen library, which leaves alone what is taken care of already.
        const StopSignals signals;
        Watch(system, state, signals).run();
        signal = StopSignals::received();
    }
    if (signal != 0) {
        std::raise(signal); // with its own effect again: who waits for this process is to see it
    }
    return exit_done;
}

} // namespace ocpsm
