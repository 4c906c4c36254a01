// Line systems of any kind, for properties that hold for all of them.
#ifndef TESTS_LINE_SYSTEM_RANDOM_SYSTEMS_HPP
#define TESTS_LINE_SYSTEM_RANDOM_SYSTEMS_HPP

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include "bench/line_system/line_system.hpp"

class RandomSystems {
public:
    explicit RandomSystems(std::uint32_t seed) : engine_(seed) {}

    // Every field has any value of its type, or is absent.
    bench::line_system::LineSystem next();

private:
    template <class Number>
    Number number();
    bool one_in(unsigned count);
    std::string text();
    std::optional<int> maybe_number();
    bench::line_system::Slot slot();
    bench::line_system::Module module();
    bench::line_system::LineSettings line_settings();
    bench::line_system::SlotSettings slot_settings();
    bench::line_system::Cabling cabling();
    bench::line_system::PowerHistory history();

    std::mt19937 engine_;
};

#endif
