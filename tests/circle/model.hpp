// What a client must see of a line system with protection switch modules, worked out a second time: from the rules
// alone (docs/bench.md, "The line system"), with nothing of the simulator's. Powers and attenuations are hundredths of
// a dBm and a dB, times milliseconds.
#ifndef TESTS_CIRCLE_MODEL_HPP
#define TESTS_CIRCLE_MODEL_HPP

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "answers.hpp"
#include "line_system.hpp"

namespace circle {

enum class Type { truth, milliseconds, decimal, line };

// A setting of a module, as OpenConfig has it. Decimals are kept in tenths, the others as what they are.
struct Setting {
    std::string_view leaf;
    Type type;
    int minimum = 0; // of a decimal, tenths; what a controller takes
    int maximum = 0;
};

inline constexpr std::array settings{
    // clang-format off
    Setting{"config/revertive",                                    Type::truth},
    Setting{"config/wait-to-restore-time",                         Type::milliseconds},
    Setting{"config/primary-switch-threshold",                     Type::decimal, -400, 300},
    Setting{"config/primary-switch-hysteresis",                    Type::decimal, 0, 300},
    Setting{"config/secondary-switch-threshold",                   Type::decimal, -400, 300},
    Setting{"config/relative-switch-threshold",                    Type::decimal, -400, 400},
    Setting{"config/relative-switch-threshold-offset",             Type::decimal, -400, 400},
    Setting{"config/force-to-port",                                Type::line},
    Setting{"ports/line-primary-in/config/target-attenuation",     Type::decimal, 0, 300},
    Setting{"ports/line-primary-out/config/target-attenuation",    Type::decimal, 0, 300},
    Setting{"ports/line-secondary-in/config/target-attenuation",   Type::decimal, 0, 300},
    Setting{"ports/line-secondary-out/config/target-attenuation",  Type::decimal, 0, 300},
    // clang-format on
};
inline constexpr std::size_t first_attenuation = 8; // those before it stand in config, and in state

using Settings = std::array<std::optional<int>, settings.size()>; // a line: 0 none, 1 primary, 2 secondary

// What happens to one setting in an edit.
struct SettingEdit {
    int slot = 0;
    std::size_t setting = 0;
    ocpsm::Operation operation = ocpsm::Operation::merge;
    std::string text = {};        // as the client writes it; empty when it is taken away
    std::optional<int> value = 0; // what that is, decimals cut towards zero to tenths; none: no value of its type
    int uncut = 0;                // of a decimal: what it was, hundredths
};

struct Statistics {
    int average;
    int minimum;
    int maximum;
};

// A meter, and the samples of the interval of 30 seconds that is running.
struct Meter {
    std::vector<int> samples = {};
    std::optional<Statistics> last = {};
};

struct PlugIn {
    bool on_secondary = false;
    std::optional<std::uint64_t> good_since = {}; // since when the primary line could have the traffic back
    std::array<int, 4> attenuators = {};          // in the order of their settings
    std::array<Meter, 6> meters = {};             // received and transmitted: common port, primary and secondary line
    std::uint64_t fitted_at = 0;
};

struct ModelSlot {
    bool used = false; // has held a module
    std::optional<PlugIn> module = {};
    Settings settings = {};
    int client = 0;
    std::array<int, 2> light = {};
    std::array<bool, 2> cut = {};
    std::array<int, 3> offsets = {}; // of what a port transmits: common port, primary and secondary line
};

// What has happened meanwhile.
struct Passed {
    unsigned switched = 0; // times that a module went to its other line
    unsigned measured = 0; // history intervals that ended
};

class Model {
public:
    static Model example();
    static Model bare(const std::vector<int> &slots);

    // False for what is refused.
    bool fit(int slot);
    bool pull(int slot);
    bool cut(int slot, Line line, bool is_cut);
    bool light(int slot, Line line, int power);
    Passed tick(std::uint32_t milliseconds);

    // Why an edit is refused, each reason by its error-tag; without any it is carried out, else nothing happens.
    std::set<std::string> edit(const std::vector<SettingEdit> &edits);

    // The settings before `end` are taken away: those of config, or of the whole module.
    std::set<std::string> clear(int slot, std::size_t end);

    // The answer to a read of everything, and the part of it that is configuration.
    Lines answer() const;
    Lines configuration() const;

    // What the settings of the fitted modules have become since: "1/config/revertive: true -> -", in document order.
    Lines changes_since(const Model &before) const;

private:
    ModelSlot *fitted(int slot);
    void step(std::uint64_t length, Passed &passed);
    std::set<std::string> faults(const SettingEdit &edit) const;

    std::array<ModelSlot, 3> slots_ = {};
    std::uint64_t clock_ = 0;
};

} // namespace circle

#endif
