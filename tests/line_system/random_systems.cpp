#include "random_systems.hpp"

#include <limits>

namespace line_system = ocpsm::line_system;

// Each structure is filled by its bindings: one that gets a new member does not compile here until it is filled too.

// Small numbers and the ends of the range are as likely as all the others.
template <class Number>
Number RandomSystems::number() {
    switch (std::uniform_int_distribution(0, 3)(engine_)) {
    case 0:
        return static_cast<Number>(std::uniform_int_distribution(0, 3)(engine_));
    case 1:
        return std::numeric_limits<Number>::max();
    case 2:
        return std::numeric_limits<Number>::min();
    default:
        return std::uniform_int_distribution<Number>(std::numeric_limits<Number>::min(),
                                                     std::numeric_limits<Number>::max())(engine_);
    }
}

bool RandomSystems::one_in(unsigned count) {
    return std::uniform_int_distribution(1U, count)(engine_) == 1;
}

std::string RandomSystems::text() {
    std::string text(one_in(20) ? 5000U : std::uniform_int_distribution(0U, 6U)(engine_), ' ');
    for (char &character : text) {
        character = static_cast<char>(std::uniform_int_distribution(0, 255)(engine_));
    }
    return text;
}

std::optional<int> RandomSystems::maybe_number() {
    return one_in(2) ? std::optional(number<int>()) : std::nullopt;
}

line_system::PowerHistory RandomSystems::history() {
    line_system::PowerHistory history;
    auto &[running, last] = history;
    auto &[count, sum, minimum, maximum] = running;
    count = number<std::uint32_t>();
    sum = number<std::int64_t>();
    minimum = number<int>();
    maximum = number<int>();
    if (one_in(2)) {
        auto &[average, lowest, highest] = last.emplace();
        average = number<int>();
        lowest = number<int>();
        highest = number<int>();
    }
    return history;
}

line_system::Module RandomSystems::module() {
    line_system::Module module;
    auto &[protection, all_attenuators, histories, fitted_at] = module;
    auto &[active, restorable_since] = protection;
    active = one_in(2) ? line_system::Path::primary : line_system::Path::secondary;
    if (one_in(2)) {
        restorable_since = number<std::uint64_t>();
    }
    for (auto &[rx, tx] : all_attenuators) {
        rx = number<int>();
        tx = number<int>();
    }
    for (auto &[received, transmitted] : histories) {
        received = history();
        transmitted = history();
    }
    fitted_at = number<std::uint64_t>();
    return module;
}

line_system::LineSettings RandomSystems::line_settings() {
    line_system::LineSettings settings;
    auto &[rx_thresholds, rx_low_threshold_delta, rx_attenuation, tx_attenuation] = settings;
    rx_low_threshold_delta = maybe_number();
    rx_attenuation = maybe_number();
    tx_attenuation = maybe_number();
    while (!one_in(3)) {
        rx_thresholds[one_in(3) ? line_system::low_threshold : text()] = maybe_number();
    }
    return settings;
}

line_system::SlotSettings RandomSystems::slot_settings() {
    line_system::SlotSettings settings;
    auto &[revertive, wait_to_restore, relative_threshold, relative_offset, lockout_from] = settings;
    if (one_in(2)) {
        revertive = one_in(2);
    }
    if (one_in(2)) {
        wait_to_restore = number<std::uint32_t>();
    }
    relative_threshold = maybe_number();
    relative_offset = maybe_number();
    if (one_in(2)) {
        lockout_from = text();
    }
    return settings;
}

line_system::Cabling RandomSystems::cabling() {
    line_system::Cabling cabling;
    auto &[client_light, fibres, transmit_offsets] = cabling;
    client_light = number<int>();
    for (auto &[light, cut] : fibres) {
        light = number<int>();
        cut = one_in(2);
    }
    for (int &offset : transmit_offsets) {
        offset = number<int>();
    }
    return cabling;
}

line_system::Slot RandomSystems::slot() {
    line_system::Slot slot;
    auto &[provisioned, fitted, settings, lines, cabled] = slot;
    provisioned = one_in(2);
    if (one_in(2)) {
        fitted = module();
    }
    settings = slot_settings();
    lines = {line_settings(), line_settings()};
    cabled = cabling();
    return slot;
}

line_system::LineSystem RandomSystems::next() {
    line_system::LineSystem system;
    auto &[slots, clock] = system;
    for (line_system::Slot &each : slots) {
        each = slot();
    }
    clock = number<std::uint64_t>();
    return system;
}
