#include "watch_command.hpp"

#include <algorithm>
#include <chrono>
#include <functional>

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

class Watch {
public:
    Watch(const SimulatedLineSystem &system, const std::filesystem::path &state, const StopSignals &signals)
        : system_(system), state_(state), lock_(std::in_place, state), signals_(signals) {
        screen_.update(system_.view());
    }

    // Until the user or a signal ends it.
    void run() {
        start_waiting();
        while (!quit_ && StopSignals::received() == 0) {
            terminal_.show(screen_.lines(terminal_.size()));
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now());
            quit_ = !signals_.wait_for_input(std::max(left, std::chrono::milliseconds(0)));
            if (StopSignals::suspension_wanted()) {
                suspend();
                start_waiting();
            }
            for (KeyPress press = terminal_.key(); press.key != Key::none && !quit_; press = terminal_.key()) {
                screen_.asks() ? answer(press) : command(press);
            }
            if (Clock::now() >= next_) {
                pass_time();
                // A process that was stopped for a while does not catch up.
                next_ = std::max(next_ + interval(), Clock::now());
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

    std::chrono::milliseconds interval() const { return std::chrono::milliseconds(screen_.speed().every); }
    void start_waiting() { next_ = Clock::now() + interval(); }

    void command(const KeyPress &press) {
        if (press.key == Key::up || press.character == 'k') {
            screen_.choose_previous();
        } else if (press.key == Key::down || press.character == 'j') {
            screen_.choose_next();
        }
        switch (press.character) {
        case 'q':
        case 'Q':
            quit_ = true;
            break;
        case 'c':
            change_line([this](int slot, Line line) { return system_.cut(slot, line); });
            break;
        case 's':
            change_line([this](int slot, Line line) { return system_.splice(slot, line); });
            break;
        case 'l':
            screen_.ask("the light that the fibre delivers, in dBm:");
            break;
        case 'p':
            screen_.pause_or_go_on();
            start_waiting();
            break;
        case '<':
            screen_.go_slower();
            start_waiting();
            break;
        case '>':
            screen_.go_faster();
            start_waiting();
            break;
        default:
            break;
        }
    }

    void answer(const KeyPress &press) {
        if (press.key == Key::character) {
            screen_.type(press.character);
        } else if (press.key == Key::erase) {
            screen_.erase();
        } else if (press.key == Key::escape) {
            screen_.take_answer();
        } else if (press.key == Key::enter) {
            set_light(screen_.take_answer());
        }
    }

    void set_light(const std::string &text) {
        const std::optional<int> light = parse_hundredths(text);
        if (!light) {
            screen_.note(not_a_power(text));
            return;
        }
        change_line([this, &light](int slot, Line line) { return system_.light(slot, line, *light); });
    }

    // Another process may have pulled the module in the meantime, and not every light is one that a fibre delivers:
    // that is for the user to see, not the end.
    void change_line(const std::function<LineTable(int slot, Line line)> &change) {
        const std::optional<ChosenLine> chosen = screen_.chosen();
        if (!chosen) {
            screen_.note("no module is fitted");
            return;
        }
        try {
            screen_.update(change(chosen->slot, chosen->line == 0 ? Line::primary : Line::secondary));
            screen_.note({});
        } catch (const Error &error) {
            if (error.source != Error::Source::refused && error.tag != "invalid-value") {
                throw;
            }
            screen_.update(system_.view());
            screen_.note(error.what());
        }
    }

    void pass_time() { screen_.update(screen_.paused() ? system_.view() : system_.tick(screen_.speed().passes)); }

    const SimulatedLineSystem &system_;
    const std::filesystem::path &state_;
    std::optional<ClockLock> lock_;
    const StopSignals &signals_;
    Terminal terminal_;
    WatchScreen screen_;
    Clock::time_point next_; // when time is to pass
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
