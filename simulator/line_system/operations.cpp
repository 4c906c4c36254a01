#include "simulator/line_system/operations.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "simulator/line_system.hpp"
#include "simulator/line_system/controllers.hpp"

namespace ocpsm::line_system {
namespace {

// What a slot sees when its first module is fitted.
constexpr Cabling first_cabling{.client_light = 100,
                                .fibres = {Fibre{.light = -1250}, Fibre{.light = -1450}},
                                .transmit_offsets = {-30, -340, -340}};

void require_slot(int number) {
    if (number < 1 || number > slot_count) {
        throw Error(Error::Source::input, "invalid-value", "", "there is no slot " + std::to_string(number),
                    "the slots are 1 to " + std::to_string(slot_count));
    }
}

Slot &fitted_slot(LineSystem &system, int number) {
    require_slot(number);
    Slot &found = slot(system, number);
    if (!found.module) {
        throw Error(Error::Source::refused, "data-missing", "", "slot " + std::to_string(number) + " holds no module",
                    "fit one first");
    }
    return found;
}

// ---- what has happened ----

JournalEntry event(JournalKind kind, const LineSystem &system, int number) {
    return {.clock = system.clock, .kind = kind, .module = module_name(number)};
}

void add(Events *events, JournalEntry &&entry) {
    if (events != nullptr) {
        events->push_back(std::move(entry));
    }
}

std::string active_path(Path path) {
    return path == Path::primary ? "PRIMARY" : "SECONDARY";
}

void add_switched(Events *events, const LineSystem &system, int number, Path to, const std::string &reason) {
    JournalEntry entry = event(JournalKind::switched, system, number);
    entry.before = active_path(to == Path::primary ? Path::secondary : Path::primary);
    entry.after = active_path(to);
    entry.reason = reason;
    add(events, std::move(entry));
}

// ---- fibres ----

JournalEntry fibre_event(JournalKind kind, const LineSystem &system, int number, Path line) {
    JournalEntry entry = event(kind, system, number);
    entry.line = line_names.at(line_of(line));
    return entry;
}

Fibre &fibre_of(LineSystem &system, int number, Path line) {
    return fitted_slot(system, number).cabling.fibres.at(line_of(line));
}

LineSystem with_fibre(const LineSystem &system, int number, Path line, bool is_cut, Events *events) {
    LineSystem after = system;
    bool &cut = fibre_of(after, number, line).cut;
    if (cut != is_cut) {
        add(events, fibre_event(is_cut ? JournalKind::cut : JournalKind::spliced, system, number, line));
    }
    cut = is_cut;
    return after;
}

// ---- time ----

void take_sample(Samples &samples, int value) {
    samples.minimum = samples.count == 0 ? value : std::min(samples.minimum, value);
    samples.maximum = samples.count == 0 ? value : std::max(samples.maximum, value);
    samples.sum += value;
    ++samples.count;
}

// The mean of the samples, rounded to the nearest hundredth, halves away from zero.
Statistics summary(const Samples &samples) {
    const std::int64_t count = samples.count;
    const std::int64_t half = samples.sum < 0 ? -(count / 2) : count / 2;
    return {static_cast<int>((samples.sum + half) / count), samples.minimum, samples.maximum};
}

void end_interval(PowerHistory &history, bool whole) {
    if (whole && history.running.count != 0) {
        history.last = summary(history.running);
    }
    history.running = {};
}

// What has been seen of an interval in the midst of which the module was fitted says nothing about it.
void end_interval(Module &module, std::uint64_t start) {
    for (PortHistory &history : module.histories) {
        end_interval(history.received, module.fitted_at <= start);
        end_interval(history.transmitted, module.fitted_at <= start);
    }
}

void end_interval(LineSystem &system, std::uint64_t end) {
    for (Slot &slot : system.slots) {
        if (slot.module) {
            end_interval(*slot.module, end - history_interval);
        }
    }
}

// The switch sees the same light as the sample; what it changes shows in the next one.
void end_step(LineSystem &system, int number, Events *events) {
    Slot &ending = slot(system, number);
    if (!ending.module) {
        return;
    }
    const std::array<Power, port_count> seen = powers(ending);
    for (std::size_t port = 0; port < port_count; ++port) {
        PortHistory &history = ending.module->histories.at(port);
        take_sample(history.received.running, seen.at(port).received);
        take_sample(history.transmitted.running, seen.at(port).transmitted);
    }
    SwitchState &protection = ending.module->protection;
    const SwitchSettings settings = switch_settings(ending);
    const LineLight light{seen[1].received, seen[2].received};
    const Decision decision = evaluate(protection, settings, light, system.clock);
    protection = decision.state;
    if (decision.reason) {
        const Path to = protection.active;
        add_switched(events, system, number, to, in_words(*decision.reason, to, settings, light));
    }
}

void step(LineSystem &system, std::uint64_t length, Events *events) {
    const std::uint64_t before = system.clock;
    system.clock += length;
    const std::uint64_t boundary = system.clock - system.clock % history_interval;
    if (before < boundary && boundary < system.clock) {
        end_interval(system, boundary);
    }
    for (int number = 1; number <= slot_count; ++number) {
        end_step(system, number, events);
    }
    if (boundary == system.clock) {
        end_interval(system, boundary);
    }
}

} // namespace

LineSystem fit(const LineSystem &system, int number, Events *events) {
    require_slot(number);
    LineSystem after = system;
    Slot &fitted = slot(after, number);
    if (fitted.module) {
        throw Error(Error::Source::refused, "data-exists", "",
                    "slot " + std::to_string(number) + " holds a module already", "pull it first");
    }
    if (!fitted.provisioned) {
        fitted.cabling = first_cabling;
        fitted.provisioned = true;
    }
    fitted.module = Module{.fitted_at = system.clock};
    for (std::size_t line = 0; line < line_count; ++line) {
        const LineSettings &settings = fitted.lines.at(line);
        fitted.module->attenuators.at(line) = {attenuation(settings.rx_attenuation),
                                               attenuation(settings.tx_attenuation)};
    }
    add(events, event(JournalKind::fitted, system, number));
    return after;
}

LineSystem pull(const LineSystem &system, int number, Events *events) {
    LineSystem after = system;
    fitted_slot(after, number).module.reset();
    add(events, event(JournalKind::pulled, system, number));
    return after;
}

LineSystem cut(const LineSystem &system, int number, Path line, Events *events) {
    return with_fibre(system, number, line, true, events);
}

LineSystem splice(const LineSystem &system, int number, Path line, Events *events) {
    return with_fibre(system, number, line, false, events);
}

LineSystem light(const LineSystem &system, int number, Path line, int hundredths_of_dbm, Events *events) {
    LineSystem after = system;
    int &light = fibre_of(after, number, line).light;
    if (hundredths_of_dbm < dark || hundredths_of_dbm > brightest) {
        throw Error(Error::Source::input, "invalid-value", "", "no fibre delivers such a light",
                    "name a power from -40.00 to 30.00 dBm");
    }
    if (light != hundredths_of_dbm) {
        JournalEntry entry = fibre_event(JournalKind::lit, system, number, line);
        entry.before = hundredths(light);
        entry.after = hundredths(hundredths_of_dbm);
        add(events, std::move(entry));
    }
    light = hundredths_of_dbm;
    return after;
}

LineSystem tick(const LineSystem &system, std::uint32_t milliseconds, Events *events) {
    LineSystem after = system;
    for (std::uint64_t left = milliseconds; left != 0;) {
        const std::uint64_t length = std::min(left, tick_step);
        step(after, length, events);
        left -= length;
    }
    return after;
}

} // namespace ocpsm::line_system
