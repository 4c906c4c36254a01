// What happens to a line system in the course of time and by hand. Each of these returns the system as it is
// afterwards; one that cannot be done is a ocpsm::Error, in one line for the user: a slot or a power that there is not
// is bad input, anything else is refused. What has happened is added to `events`, without sequence number and time of
// day, when there is such a list.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_OPERATIONS_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_OPERATIONS_HPP

#include <cstdint>
#include <vector>

#include "framework/journal.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm::line_system {

inline constexpr std::uint64_t tick_step = 100;           // milliseconds
inline constexpr std::uint64_t history_interval = 30'000; // milliseconds of the clock
inline constexpr int brightest = 3000;                    // hundredths of a dBm

using Events = std::vector<JournalEntry>;

// Fits a module into an empty slot. It starts on its primary line, with the slot's settings; a slot that is used for
// the first time gets fibres that deliver light.
LineSystem fit(const LineSystem &system, int number, Events *events = nullptr);

// Pulls a slot's module. The slot keeps its settings and its fibres.
LineSystem pull(const LineSystem &system, int number, Events *events = nullptr);

// Cuts or splices the fibre of a line whose module is fitted. Cutting what is cut changes nothing, nor does splicing
// what is whole.
LineSystem cut(const LineSystem &system, int number, Path line, Events *events = nullptr);
LineSystem splice(const LineSystem &system, int number, Path line, Events *events = nullptr);

// Sets the light that the fibre of a line delivers, from `dark` to `brightest`, hundredths of a dBm. A fibre that is
// cut delivers it once it is spliced.
LineSystem light(const LineSystem &system, int number, Path line, int hundredths_of_dbm, Events *events = nullptr);

// Lets time pass, in steps of tick_step; what is left over is a last, shorter step. Each step ends in a sample of all
// powers and an evaluation of every switch; a sample belongs to the history interval in which its step ends. As the
// light stays as it is, a switch moves twice at most.
LineSystem tick(const LineSystem &system, std::uint32_t milliseconds, Events *events = nullptr);

} // namespace ocpsm::line_system

#endif
