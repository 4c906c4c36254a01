#include "serve_command.hpp"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "clock_lock.hpp"
#include "commands.hpp"
#include "door.hpp"
#include "line_system_service.hpp"
#include "open_line_system.hpp"
#include "service_manager.hpp"
#include "stop_signals.hpp"

namespace ocpsm {
namespace {

using Clock = std::chrono::steady_clock;

// Lets the time of the line system pass, step by step.
class RunningClock {
public:
    RunningClock(const SimulatedLineSystem &system, const ServeOptions &options, std::ostream &errors)
        : system_(system), passes_(SimulatedLineSystem::step * options.speed), errors_(errors),
          lock_(std::in_place, options.state) {}

    std::chrono::milliseconds left() const {
        return std::max(std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now()),
                        std::chrono::milliseconds(0));
    }

    // A step, when it is time for it. What has been missed meanwhile is not made up for.
    void run() {
        if (Clock::now() < next_) {
            return;
        }
        try {
            system_.tick(passes_);
            said_.clear();
        } catch (const Error &error) {
            // A disk that is full may have room again.
            if (error.message() != said_) {
                said_ = error.message();
                print_error(errors_, error);
            }
        }
        next_ = std::max(next_ + interval, Clock::now());
    }

private:
    static constexpr std::chrono::milliseconds interval{SimulatedLineSystem::step};

    const SimulatedLineSystem &system_;
    const std::uint32_t passes_; // in a step, milliseconds
    std::ostream &errors_;
    std::string said_; // of an error that goes on
    std::optional<ClockLock> lock_;
    Clock::time_point next_ = Clock::now() + interval;
};

// The doors in the order in which they have been opened; they are closed in the opposite one.
class Doors {
public:
    Doors() = default;
    Doors(const Doors &) = delete;
    Doors &operator=(const Doors &) = delete;
    ~Doors() {
        while (!open_.empty()) {
            open_.back()->stop();
            open_.pop_back();
        }
    }

    void open(std::unique_ptr<Door> door, std::ostream &output) {
        door->start();
        open_.push_back(std::move(door));
        output << open_.back()->usage() << '\n';
    }

private:
    std::vector<std::unique_ptr<Door>> open_;
};

// The line system of the directory. One that is missing is made, unless another process is faster.
SimulatedLineSystem open_or_make(const std::filesystem::path &state, std::ostream &output) {
    try {
        return SimulatedLineSystem::open(state);
    } catch (const Error &error) {
        if (error.tag != "data-missing") {
            throw;
        }
    }
    try {
        SimulatedLineSystem made = make_line_system(state, SimulatedLineSystem::example_slots());
        output << "made the example line system in " << on_one_line(state.string()) << '\n';
        return made;
    } catch (const Error &failure) {
        try {
            return SimulatedLineSystem::open(state);
        } catch (const Error &) {
            throw failure; // NOLINT(cert-err09-cpp,cert-err61-cpp)
        }
    }
}

// None where it is left to others, or another process has it.
std::unique_ptr<RunningClock> start_clock(const SimulatedLineSystem &system, const ServeOptions &options,
                                          std::ostream &errors) {
    if (options.stopped) {
        return nullptr;
    }
    try {
        return std::make_unique<RunningClock>(system, options, errors);
    } catch (const Error &error) {
        if (error.tag != "in-use") {
            throw;
        }
        print_warning(errors, error.message() + "; this service leaves it alone");
        return nullptr;
    }
}

std::string speed_in_words(const ServeOptions &options, bool runs) {
    if (!runs) {
        return options.stopped ? "its time is left to ocpsm device tick" : "its time is moved by another process";
    }
    return options.speed == 1 ? "its time passes"
                              : "its time passes " + std::to_string(options.speed) + " times as fast";
}

void wait_for_the_end(RunningClock *clock, const StopSignals &signals) {
    constexpr std::chrono::milliseconds longest = std::chrono::hours(1);
    while (StopSignals::received() == 0) {
        signals.wait(clock == nullptr ? longest : clock->left());
        if (StopSignals::suspension_wanted()) {
            StopSignals::suspend();
        }
        if (clock != nullptr && StopSignals::received() == 0) {
            clock->run();
        }
    }
}

} // namespace

int serve_command(const ServeOptions &options, std::ostream &output, std::ostream &errors) {
    const StopSignals signals; // before there is a thread that could take them
    const SimulatedLineSystem system = open_or_make(options.state, output);
    const Service service = service_of(system, options.plugin);
    const std::unique_ptr<RunningClock> clock = start_clock(system, options, errors);
    Doors doors;
    output << "serving the line system in " << on_one_line(options.state.string()) << ", "
           << speed_in_words(options, clock != nullptr) << '\n';
    if (options.gnmi) {
        doors.open(gnmi_door(service, *options.gnmi), output);
    }
    if (options.netconf) {
        doors.open(netconf_door(*options.netconf), output);
    }
    output.flush();
    tell_service_manager("READY=1");
    wait_for_the_end(clock.get(), signals);
    tell_service_manager("STOPPING=1");
    return exit_done;
}

} // namespace ocpsm
