#include "random_systems.hpp"

#include <limits>

namespace line_system = ocpsm::line_system;

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
    history.running = {number<std::uint32_t>(), number<std::int64_t>(), number<int>(), number<int>()};
    if (one_in(2)) {
        history.last = {number<int>(), number<int>(), number<int>()};
    }
    return history;
}

line_system::Module RandomSystems::module() {
    line_system::Module module;
    module.protection.active = one_in(2) ? line_system::Path::primary : line_system::Path::secondary;
    if (one_in(2)) {
        module.protection.restorable_since = number<std::uint64_t>();
    }
    for (line_system::Attenuators &attenuators : module.attenuators) {
        attenuators = {number<int>(), number<int>()};
    }
    for (line_system::PortHistory &port : module.histories) {
        port = {history(), history()};
    }
    module.fitted_at = number<std::uint64_t>();
    return module;
}

line_system::LineSettings RandomSystems::line_settings() {
    line_system::LineSettings settings{{}, maybe_number(), maybe_number(), maybe_number()};
    while (!one_in(3)) {
        settings.rx_thresholds[one_in(3) ? line_system::low_threshold : text()] = maybe_number();
    }
    return settings;
}

line_system::SlotSettings RandomSystems::slot_settings() {
    line_system::SlotSettings settings;
    if (one_in(2)) {
        settings.revertive = one_in(2);
    }
    if (one_in(2)) {
        settings.wait_to_restore = number<std::uint32_t>();
    }
    settings.relative_threshold = maybe_number();
    settings.relative_offset = maybe_number();
    if (one_in(2)) {
        settings.lockout_from = text();
    }
    return settings;
}

line_system::Cabling RandomSystems::cabling() {
    line_system::Cabling cabling;
    cabling.client_light = number<int>();
    for (line_system::Fibre &fibre : cabling.fibres) {
        fibre = {number<int>(), one_in(2)};
    }
    for (int &offset : cabling.transmit_offsets) {
        offset = number<int>();
    }
    return cabling;
}

line_system::Slot RandomSystems::slot() {
    line_system::Slot slot;
    slot.provisioned = one_in(2);
    if (one_in(2)) {
        slot.module = module();
    }
    slot.settings = slot_settings();
    slot.lines = {line_settings(), line_settings()};
    slot.cabling = cabling();
    return slot;
}

line_system::LineSystem RandomSystems::next() {
    line_system::LineSystem system;
    for (line_system::Slot &each : system.slots) {
        each = slot();
    }
    system.clock = number<std::uint64_t>();
    return system;
}
