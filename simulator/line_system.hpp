// A line system fitted with protection switch modules, for programs that want one: a device for the framework, what
// happens to it by hand and in the course of time, and what a person sees of it.
//
// Failures are Error (framework/error.hpp): input for a slot, a power or a directory that there is not, refused for
// what cannot be done; nothing has changed then. The functions may be called on any thread.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ocpsm {

class Device;

// A measured column: what it is about, what it is, in which unit.
using LineColumn = std::array<std::string_view, 3>;

// The measured columns of a table, in their order.
const std::vector<LineColumn> &line_columns();

// One line of a module.
struct LineRow {
    bool active = false;                           // carries the traffic
    std::vector<std::optional<int>> measured = {}; // by column, hundredths of its unit; absent: not measured
    bool cut = false;                              // its fibre

    bool operator==(const LineRow &) const = default;
};

enum class Line { primary, secondary };

// By Line, as people type and read them.
inline constexpr std::array<std::string_view, 2> line_names = {"primary", "secondary"};

// What decides which line of a module is active. What is not set is absent.
struct ProtectionRow {
    std::optional<bool> revertive = {};
    std::optional<std::uint32_t> wait_to_restore = {}; // milliseconds
    std::optional<std::uint64_t> left_to_restore = {}; // milliseconds; absent: the traffic is not about to go back
    std::optional<int> hysteresis = {};                // of the primary line, hundredths of a dB
    std::optional<int> relative_threshold = {};        // hundredths of a dB
    std::optional<int> relative_offset = {};           // hundredths of a dB
    std::optional<Line> forced_to = {};

    bool operator==(const ProtectionRow &) const = default;
};

struct ModuleRow {
    int slot = 0;
    std::string name;
    std::string protection;            // what decides which line is active, in words
    std::array<LineRow, 2> lines = {}; // primary, secondary
    ProtectionRow settings = {};

    bool operator==(const ModuleRow &) const = default;
};

struct LineTable {
    std::uint64_t clock = 0;        // milliseconds
    std::vector<ModuleRow> modules; // the fitted ones, in the order of their slots

    bool operator==(const LineTable &) const = default;
};

// Copies are the same line system; it stays open for as long as one of them, or a device, lives.
class SimulatedLineSystem {
public:
    static constexpr std::uint32_t step = 100; // in which its time passes, milliseconds

    // A file of the state directory that is locked by those who let time pass.
    static constexpr char clock_lock_file[] = "clock.lock";

    // The modules of the example come with all their settings; further slots (1 to 3) are as new. An empty list is a
    // line system without modules.
    static const std::vector<int> &example_slots();

    // Makes a line system in a directory without other files, with those on the way, or opens the one that is there:
    // data-missing where there is none.
    static SimulatedLineSystem make(const std::filesystem::path &directory,
                                    const std::vector<int> &slots = example_slots());
    static SimulatedLineSystem open(const std::filesystem::path &directory);

    // In a fresh directory below TMPDIR (else /tmp), which is removed at the end.
    static SimulatedLineSystem temporary(const std::vector<int> &slots = example_slots());

    // For a service (framework/service.hpp); the database client is loaded by now.
    std::shared_ptr<Device> device() const;

    // As it stands now.
    LineTable view() const;

    // Each returns it as it stands then.
    LineTable fit(int slot) const;
    LineTable pull(int slot) const;
    LineTable cut(int slot, Line line) const;
    LineTable splice(int slot, Line line) const;
    LineTable light(int slot, Line line, int hundredths_of_dbm) const; // from -40.00 to 30.00 dBm
    LineTable tick(std::uint32_t milliseconds) const;                  // in steps; what is left over is a shorter one

    struct Parts;

private:
    explicit SimulatedLineSystem(std::shared_ptr<const Parts> parts) : parts_(std::move(parts)) {}

    std::shared_ptr<const Parts> parts_;
};

// "-12.34"
std::string hundredths(int value);

// Milliseconds as seconds, "12.3 s"; more decimals where they are needed.
std::string seconds(std::uint64_t milliseconds);

} // namespace ocpsm

#endif
