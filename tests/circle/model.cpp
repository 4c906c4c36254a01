#include "model.hpp"

#include <algorithm>
#include <numeric>

namespace circle {
namespace {

constexpr int dark = -4000;
constexpr std::uint64_t interval = 30'000;

enum Index : std::size_t { // of the settings
    revertive,
    wait_to_restore,
    primary_threshold,
    hysteresis,
    secondary_threshold,
    relative_threshold,
    relative_offset,
    forced_line
};

// 12.3, -0.05, 0.0: no more digits than needed, one at least.
std::string decimal(int hundredths) {
    const int size = std::abs(hundredths);
    std::string text = std::to_string(size / 100) + "." + std::to_string(size / 10 % 10);
    if (size % 10 != 0) {
        text += std::to_string(size % 10);
    }
    return (hundredths < 0 ? "-" : "") + text;
}

std::string text_of(const Setting &setting, int value) {
    switch (setting.type) {
    case Type::truth:
        return value != 0 ? "true" : "false";
    case Type::milliseconds:
        return std::to_string(value);
    case Type::line:
        return std::array{"NONE", "PRIMARY", "SECONDARY"}.at(static_cast<std::size_t>(value));
    case Type::decimal:
        break;
    }
    return decimal(value * 10);
}

// ---- light ----

// Received and transmitted by the common port, the primary and the secondary line.
std::array<int, 6> powers(const ModelSlot &slot) {
    const PlugIn &module = *slot.module;
    const auto passed_on = [](int source, int attenuation, int offset) {
        return source <= dark ? dark : std::max(dark, source - attenuation + offset);
    };
    const int primary = slot.cut[0] ? dark : slot.light[0];
    const int secondary = slot.cut[1] ? dark : slot.light[1];
    const int to_client = module.on_secondary ? passed_on(secondary, module.attenuators[2], slot.offsets[0])
                                              : passed_on(primary, module.attenuators[0], slot.offsets[0]);
    return {slot.client, to_client,
            primary,     passed_on(slot.client, module.attenuators[1], slot.offsets[1]),
            secondary,   passed_on(slot.client, module.attenuators[3], slot.offsets[2])};
}

// ---- the switch: the rows of the table, from the top ----

// Whether it may go back for having waited; what it has waited for begins anew with every break.
bool has_waited(const ModelSlot &slot, int primary, std::optional<std::uint64_t> &since, std::uint64_t now) {
    const Settings &set = slot.settings;
    const bool good = set[revertive] == 1 && set[primary_threshold] &&
                      primary >= *set[primary_threshold] * 10 + set[hysteresis].value_or(0) * 10;
    if (!good) {
        since.reset();
        return false;
    }
    since = since.value_or(now);
    return now - *since >= static_cast<std::uint64_t>(set[wait_to_restore].value_or(0));
}

bool is_on_secondary(ModelSlot &slot, int primary, int secondary, std::uint64_t now) {
    const Settings &set = slot.settings;
    const bool was = slot.module->on_secondary;
    const auto below = [&](int power, Index threshold) { return set[threshold] && power < *set[threshold] * 10; };
    if (const int forced = set[forced_line].value_or(0); forced != 0) {
        return forced == 2;
    }
    if (const int r = set[relative_threshold].value_or(0) * 10; r != 0) {
        const int d = primary - secondary - set[relative_offset].value_or(0) * 10;
        const int target = d < -r ? secondary : primary;
        const bool never = target <= dark && std::min(primary, secondary) == target;
        return never ? was : d < -r || (was && d <= r);
    }
    const bool primary_bad = below(primary, primary_threshold);
    const bool secondary_bad = below(secondary, secondary_threshold);
    if (!was) {
        return primary_bad && !secondary_bad;
    }
    if (secondary_bad && !primary_bad) {
        return false;
    }
    return !has_waited(slot, primary, slot.module->good_since, now);
}

void evaluate(ModelSlot &slot, int primary, int secondary, std::uint64_t now) {
    const Settings &set = slot.settings;
    const bool on_secondary = is_on_secondary(slot, primary, secondary, now);
    const bool may_wait = on_secondary && slot.module->on_secondary && set[forced_line].value_or(0) == 0 &&
                          set[relative_threshold].value_or(0) == 0;
    slot.module->on_secondary = on_secondary;
    if (!may_wait) {
        slot.module->good_since.reset();
    }
}

// ---- history ----

// The mean is rounded to the nearest hundredth, halves away from zero.
Statistics summary(const std::vector<int> &samples) {
    const long long sum = std::accumulate(samples.begin(), samples.end(), 0LL);
    const auto count = static_cast<long long>(samples.size());
    const long long rounded = (std::abs(sum) * 2 + count) / (count * 2);
    const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
    return {static_cast<int>(sum < 0 ? -rounded : rounded), *low, *high};
}

// An interval that began before the module was there says nothing.
void end_interval(PlugIn &module, std::uint64_t start) {
    for (Meter &meter : module.meters) {
        if (module.fitted_at <= start && !meter.samples.empty()) {
            meter.last = summary(meter.samples);
        }
        meter.samples.clear();
    }
}

// ---- answers ----

using Texts = std::vector<std::pair<std::string, std::string>>;

void add_port(Texts &leaves, const std::string &port, const std::optional<int> &target, int attenuation, int power,
              const Meter &meter) {
    if (target) {
        leaves.emplace_back(port + "/config/target-attenuation", decimal(*target * 10));
        leaves.emplace_back(port + "/state/target-attenuation", decimal(*target * 10));
    }
    leaves.emplace_back(port + "/state/attenuation", decimal(attenuation));
    leaves.emplace_back(port + "/state/optical-power/instant", decimal(power));
    if (meter.last) {
        leaves.emplace_back(port + "/state/optical-power/avg", decimal(meter.last->average));
        leaves.emplace_back(port + "/state/optical-power/min", decimal(meter.last->minimum));
        leaves.emplace_back(port + "/state/optical-power/max", decimal(meter.last->maximum));
    }
}

Texts leaves_of(const ModelSlot &slot, const std::string &name) {
    const PlugIn &module = *slot.module;
    Texts leaves{{"name", name}};
    for (const std::string container : {"config", "state"}) {
        leaves.emplace_back(container + "/name", name);
        for (std::size_t index = 0; index < first_attenuation; ++index) {
            const Setting &setting = settings.at(index);
            if (slot.settings.at(index)) {
                leaves.emplace_back(container + std::string(setting.leaf.substr(setting.leaf.find('/'))),
                                    text_of(setting, *slot.settings.at(index)));
            }
        }
    }
    leaves.emplace_back("state/active-path", std::string("openconfig-transport-line-protection:") +
                                                 (module.on_secondary ? "SECONDARY" : "PRIMARY"));
    const std::array<int, 6> now = powers(slot);
    const Settings &set = slot.settings;
    const auto &meters = module.meters;
    add_port(leaves, "ports/line-primary-in", set[8], module.attenuators[0], now[2], meters[2]);
    add_port(leaves, "ports/line-primary-out", set[9], module.attenuators[1], now[3], meters[3]);
    add_port(leaves, "ports/line-secondary-in", set[10], module.attenuators[2], now[4], meters[4]);
    add_port(leaves, "ports/line-secondary-out", set[11], module.attenuators[3], now[5], meters[5]);
    Texts common;
    add_port(common, "ports/common-output", std::nullopt, 0, now[1], meters[1]);
    leaves.insert(leaves.end(), common.begin() + 1, common.end()); // it has no attenuator
    return leaves;
}

} // namespace

// ---- how it begins ----

// Settings are in tenths here, all else in hundredths.
Model Model::example() {
    Model model;
    ModelSlot &first = model.slots_[0];
    first = {.used = true,
             .module = PlugIn{.attenuators = {250, 100, 150, 100}},
             .settings = {1, 10'000, -250, 10, -280, 0, 0, 0, 25, 10, 15, 10},
             .client = 405,
             .light = {-1234, -1587},
             .offsets = {2, -520, -528}};
    const auto measured = [](PlugIn &module, const std::array<Statistics, 6> &values) {
        for (std::size_t index = 0; index < values.size(); ++index) {
            module.meters.at(index).last = values.at(index);
        }
    };
    measured(*first.module, {{{404, 398, 411},
                              {-1480, -1495, -1471},
                              {-1230, -1251, -1218},
                              {-214, -220, -209},
                              {-1590, -1612, -1577},
                              {-222, -231, -217}}});
    ModelSlot &third = model.slots_[2];
    third = {.used = true,
             .module = PlugIn{.on_secondary = true, .attenuators = {0, 0, 75, 0}},
             .settings = {0, 300'000, -265, 15, -300, 30, 5, 0, 0, 0, 8, 0},
             .client = 88,
             .light = {-1612, -1659},
             .cut = {true, false},
             .offsets = {-27, -339, -336}};
    measured(*third.module, {{{87, 80, 93},
                              {-1760, -1774, -1752},
                              {-4000, -4000, -4000},
                              {-250, -256, -244},
                              {-1661, -1683, -1640},
                              {-247, -255, -240}}});
    return model;
}

Model Model::bare(const std::vector<int> &slots) {
    Model model;
    for (const int slot : slots) {
        model.fit(slot);
    }
    return model;
}

// ---- by hand and in time ----

ModelSlot *Model::fitted(int slot) {
    ModelSlot &found = slots_.at(static_cast<std::size_t>(slot) - 1);
    return found.module ? &found : nullptr;
}

bool Model::fit(int slot) {
    if (fitted(slot) != nullptr) {
        return false;
    }
    ModelSlot &place = slots_.at(static_cast<std::size_t>(slot) - 1);
    if (!place.used) {
        place.used = true;
        place.client = 100;
        place.light = {-1250, -1450};
        place.offsets = {-30, -340, -340};
    }
    place.module = PlugIn{.fitted_at = clock_};
    for (std::size_t index = 0; index < place.module->attenuators.size(); ++index) {
        place.module->attenuators.at(index) = place.settings.at(first_attenuation + index).value_or(0) * 10;
    }
    return true;
}

bool Model::pull(int slot) {
    ModelSlot *place = fitted(slot);
    if (place == nullptr) {
        return false;
    }
    place->module.reset();
    return true;
}

bool Model::cut(int slot, Line line, bool is_cut) {
    ModelSlot *place = fitted(slot);
    if (place == nullptr) {
        return false;
    }
    place->cut.at(line == Line::primary ? 0 : 1) = is_cut;
    return true;
}

bool Model::light(int slot, Line line, int power) {
    ModelSlot *place = fitted(slot);
    if (place == nullptr || power < dark || power > 3000) {
        return false;
    }
    place->light.at(line == Line::primary ? 0 : 1) = power;
    return true;
}

Passed Model::tick(std::uint32_t milliseconds) {
    Passed passed;
    for (std::uint32_t left = milliseconds; left != 0;) {
        const std::uint32_t length = std::min(left, 100U);
        step(length, passed);
        left -= length;
    }
    return passed;
}

// A step's sample belongs to the interval in which the step ends. The switch sees the light of the sample.
void Model::step(std::uint64_t length, Passed &passed) {
    const std::uint64_t begun = clock_ / interval * interval;
    clock_ += length;
    const bool into_the_next = clock_ > begun + interval;
    passed.measured += clock_ >= begun + interval ? 1U : 0U;
    for (ModelSlot &slot : slots_) {
        if (!slot.module) {
            continue;
        }
        if (into_the_next) {
            end_interval(*slot.module, begun);
        }
        const std::array<int, 6> seen = powers(slot);
        for (std::size_t index = 0; index < seen.size(); ++index) {
            slot.module->meters.at(index).samples.push_back(seen.at(index));
        }
        const bool was = slot.module->on_secondary;
        evaluate(slot, seen[2], seen[4], clock_);
        passed.switched += slot.module->on_secondary == was ? 0U : 1U;
        if (clock_ % interval == 0) {
            end_interval(*slot.module, begun);
        }
    }
}

// ---- edits ----

std::set<std::string> Model::faults(const SettingEdit &edit) const {
    using ocpsm::Operation;
    const ModelSlot &slot = slots_.at(static_cast<std::size_t>(edit.slot) - 1);
    const Setting &setting = settings.at(edit.setting);
    const bool is_set = slot.settings.at(edit.setting).has_value();
    std::set<std::string> tags;
    if (!slot.module || (edit.operation == Operation::delete_existing && !is_set)) {
        tags.insert("data-missing");
    }
    if (edit.operation == Operation::create && is_set) {
        tags.insert("data-exists");
    }
    const bool in_range =
        setting.type != Type::decimal || (edit.uncut >= setting.minimum * 10 && edit.uncut <= setting.maximum * 10);
    if (!takes_away(edit.operation) && (!edit.value || !in_range)) {
        tags.insert("invalid-value");
    }
    return tags;
}

std::set<std::string> Model::edit(const std::vector<SettingEdit> &edits) {
    std::set<std::string> tags;
    for (const SettingEdit &edit : edits) {
        tags.merge(faults(edit));
    }
    if (!tags.empty()) {
        return tags;
    }
    for (const SettingEdit &edit : edits) {
        ModelSlot &slot = slots_.at(static_cast<std::size_t>(edit.slot) - 1);
        const std::optional<int> after = takes_away(edit.operation) ? std::nullopt : edit.value;
        // An attenuator moves when its setting has changed.
        if (edit.setting >= first_attenuation && slot.settings.at(edit.setting) != after) {
            slot.module->attenuators.at(edit.setting - first_attenuation) = after.value_or(0) * 10;
        }
        slot.settings.at(edit.setting) = after;
    }
    return {};
}

std::set<std::string> Model::clear(int slot, std::size_t end) {
    std::vector<SettingEdit> edits;
    for (std::size_t index = 0; index < end; ++index) {
        edits.push_back({.slot = slot, .setting = index, .operation = ocpsm::Operation::remove});
    }
    return edit(edits);
}

// ---- what is seen ----

Lines Model::answer() const {
    Lines lines;
    for (std::size_t index = 0; index < slots_.size(); ++index) {
        if (!slots_.at(index).module) {
            continue;
        }
        const std::string slot = std::to_string(index + 1);
        for (const auto &[leaf, value] : leaves_of(slots_.at(index), "0/" + slot + "-PSM-OM")) {
            lines.push_back(slot + "/" + leaf + " = " + value);
        }
    }
    return lines;
}

Lines Model::configuration() const {
    Lines lines = answer();
    std::erase_if(lines, [](const std::string &line) { return line.find("/state/") != std::string::npos; });
    return lines;
}

Lines Model::changes_since(const Model &before) const {
    Lines lines;
    for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
        for (std::size_t index = 0; index < settings.size(); ++index) {
            const auto text = [&](const std::optional<int> &value) {
                return value ? text_of(settings.at(index), *value) : "-";
            };
            const std::optional<int> &now = slots_.at(slot).settings.at(index);
            const std::optional<int> &then = before.slots_.at(slot).settings.at(index);
            if (now != then) {
                lines.push_back(std::to_string(slot + 1) + "/" + std::string(settings.at(index).leaf) + ": " +
                                text(then) + " -> " + text(now));
            }
        }
    }
    return lines;
}

} // namespace circle
