#include "simulator/line_system/line_system.hpp"

#include <utility>

#include "simulator/line_system/operations.hpp"

namespace ocpsm::line_system {
namespace {

PortHistory history(const Statistics &received, const Statistics &transmitted) {
    return {.received = {.last = received}, .transmitted = {.last = transmitted}};
}

// A margin counts on the primary line only.
LineSettings line_settings(int low, std::optional<int> delta, int rx_attenuation, int tx_attenuation) {
    return {.rx_thresholds = {{low_threshold, low}},
            .rx_low_threshold_delta = delta,
            .rx_attenuation = rx_attenuation,
            .tx_attenuation = tx_attenuation};
}

// On its primary line, both lines well above their thresholds; it goes back there ten seconds after a failure.
Slot first_slot() {
    const Module module{.attenuators = {Attenuators{250, 100}, Attenuators{150, 100}},
                        .histories = {history({404, 398, 411}, {-1480, -1495, -1471}),
                                      history({-1230, -1251, -1218}, {-214, -220, -209}),
                                      history({-1590, -1612, -1577}, {-222, -231, -217})}};
    return {.provisioned = true,
            .module = module,
            .settings = {.revertive = true,
                         .wait_to_restore = 10'000,
                         .relative_threshold = 0,
                         .relative_offset = 0,
                         .lockout_from = ""},
            .lines = {line_settings(-250, 10, 25, 10), line_settings(-280, std::nullopt, 15, 10)},
            .cabling = {.client_light = 405,
                        .fibres = {Fibre{.light = -1234}, Fibre{.light = -1587}},
                        .transmit_offsets = {2, -520, -528}}};
}

// Its primary fibre is cut; it compares the two lines, and would stay where it is were the fibre spliced. The receiving
// attenuator of the secondary line has come to rest beside what it is set to.
Slot third_slot() {
    const Module module{.protection = {.active = Path::secondary},
                        .attenuators = {Attenuators{0, 0}, Attenuators{75, 0}},
                        .histories = {history({87, 80, 93}, {-1760, -1774, -1752}),
                                      history({-4000, -4000, -4000}, {-250, -256, -244}),
                                      history({-1661, -1683, -1640}, {-247, -255, -240})}};
    return {.provisioned = true,
            .module = module,
            .settings = {.revertive = false,
                         .wait_to_restore = 300'000,
                         .relative_threshold = 30,
                         .relative_offset = 5,
                         .lockout_from = ""},
            .lines = {line_settings(-265, 15, 0, 0), line_settings(-300, std::nullopt, 8, 0)},
            .cabling = {.client_light = 88,
                        .fibres = {Fibre{.light = -1612, .cut = true}, Fibre{.light = -1659}},
                        .transmit_offsets = {-27, -339, -336}}};
}

} // namespace

const Slot &slot(const LineSystem &system, int number) {
    return system.slots.at(static_cast<std::size_t>(number) - 1);
}

Slot &slot(LineSystem &system, int number) {
    return system.slots.at(static_cast<std::size_t>(number) - 1);
}

Slot slot(LineSystem &&system, int number) {
    return std::move(slot(system, number));
}

std::string module_name(int slot) {
    return "0/" + std::to_string(slot) + "-PSM-OM";
}

std::string controller_name(int slot, std::size_t port) {
    return "Ots0/" + std::to_string(slot) + "/0/" + std::to_string(port);
}

std::vector<int> fitted_slots(const LineSystem &system) {
    std::vector<int> slots;
    for (int number = 1; number <= slot_count; ++number) {
        if (slot(system, number).module) {
            slots.push_back(number);
        }
    }
    return slots;
}

LineSystem with_modules(std::span<const int> slots) {
    LineSystem system;
    for (const int number : slots) {
        const bool fitted = number >= 1 && number <= slot_count && slot(system, number).module;
        system = fitted ? system : fit(system, number);
    }
    return system;
}

LineSystem example() {
    return {.slots = {first_slot(), Slot{}, third_slot()}};
}

LineSystem example_in(std::span<const int> slots) {
    const LineSystem complete = example();
    LineSystem system = with_modules(slots);
    for (const int number : fitted_slots(system)) {
        if (slot(complete, number).module) {
            slot(system, number) = slot(complete, number);
        }
    }
    return system;
}

} // namespace ocpsm::line_system
