#include "bench/line_system/line_system.hpp"

#include <cstddef>

namespace bench::line_system {
namespace {

Module example_module(int slot, const std::array<Port, port_count> &ports) {
    return {module_name(slot), ports};
}

// On its primary line, both lines well above their thresholds.
Module first_module() {
    const Port common{.receive_power = 105,
                      .transmit_power = -1482,
                      .received = Statistics{104, 98, 111},
                      .transmitted = Statistics{-1480, -1495, -1471}};
    const Port primary{.receive_power = -1234,
                       .transmit_power = -215,
                       .rx_attenuation = 250,
                       .tx_attenuation = 100,
                       .rx_low_threshold = -250,
                       .configured_rx_attenuation = 25,
                       .configured_tx_attenuation = 10,
                       .configured_rx_threshold = -250,
                       .received = Statistics{-1230, -1251, -1218},
                       .transmitted = Statistics{-214, -220, -209}};
    const Port secondary{.receive_power = -1587,
                         .transmit_power = -223,
                         .rx_attenuation = 150,
                         .tx_attenuation = 100,
                         .rx_low_threshold = -280,
                         .configured_rx_attenuation = 15,
                         .configured_tx_attenuation = 10,
                         .configured_rx_threshold = -280,
                         .received = Statistics{-1590, -1612, -1577},
                         .transmitted = Statistics{-222, -231, -217}};
    return example_module(1, {common, primary, secondary});
}

// Its primary line is dark, its transmit attenuators are not configured.
Module third_module() {
    const Port common{.receive_power = 88,
                      .transmit_power = -1761,
                      .received = Statistics{87, 80, 93},
                      .transmitted = Statistics{-1760, -1774, -1752}};
    const Port primary{.receive_power = -4000,
                       .transmit_power = -251,
                       .rx_attenuation = 0,
                       .tx_attenuation = 0,
                       .rx_low_threshold = -265,
                       .configured_rx_attenuation = 0,
                       .configured_rx_threshold = -265,
                       .received = Statistics{-4000, -4000, -4000},
                       .transmitted = Statistics{-250, -256, -244}};
    const Port secondary{.receive_power = -1659,
                         .transmit_power = -248,
                         .rx_attenuation = 75,
                         .tx_attenuation = 0,
                         .rx_low_threshold = -300,
                         .configured_rx_attenuation = 8,
                         .configured_rx_threshold = -300,
                         .received = Statistics{-1661, -1683, -1640},
                         .transmitted = Statistics{-247, -255, -240}};
    return example_module(3, {common, primary, secondary});
}

} // namespace

std::string module_name(int slot) {
    return "0/" + std::to_string(slot) + "-PSM-OM";
}

std::vector<int> fitted_slots(const LineSystem &system) {
    std::vector<int> slots;
    for (std::size_t i = 0; i < system.slots.size(); ++i) {
        if (system.slots.at(i)) {
            slots.push_back(static_cast<int>(i) + 1);
        }
    }
    return slots;
}

LineSystem example() {
    return {{first_module(), std::nullopt, third_module()}};
}

} // namespace bench::line_system
