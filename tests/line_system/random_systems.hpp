// Line systems of any kind, for properties that hold for all of them.
#ifndef TESTS_LINE_SYSTEM_RANDOM_SYSTEMS_HPP
#define TESTS_LINE_SYSTEM_RANDOM_SYSTEMS_HPP

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include "simulator/line_system/line_system.hpp"

class RandomSystems {
public:
    explicit RandomSystems(std::uint32_t seed) : engine_(seed) {}

    // Every field has any value of its type, or is absent.
    ocpsm::line_system::LineSystem next();

private:
    template <class Number>
    Number number();
    bool one_in(unsigned count);
    std::string text();
    std::optional<int> maybe_number();
    ocpsm::line_system::Slot slot();
    ocpsm::line_system::Module module();
    ocpsm::line_system::LineSettings line_settings();
    ocpsm::line_system::SlotSettings slot_settings();
    ocpsm::line_system::Cabling cabling();
    ocpsm::line_system::PowerHistory history();

    std::mt19937 engine_;
};

#endif
