#include "framework/native/scale.hpp"

#include "framework/models/models.hpp"

namespace ocpsm::native {
namespace {

constexpr struct {
    std::string_view start; // of the units of a leaf
    unsigned places;
    std::string_view step;
} steps[] = {{"0.1 ", 1, "tenths of a "}, {"0.01 ", 2, "hundredths of a "}};

} // namespace

Scale scale_of(const lysc_node &leaf) {
    const std::string_view units = models::describe(leaf).units;
    for (const auto &step : steps) {
        if (units.starts_with(step.start)) {
            return {step.places, step.step, units.substr(step.start.size())};
        }
    }
    return {0, {}, units};
}

std::string decimal(std::int64_t number, const Scale &scale) {
    const bool negative = number < 0;
    std::string text = std::to_string(number).substr(negative ? 1 : 0);
    if (scale.places != 0) {
        text.insert(0, text.size() > scale.places ? 0 : scale.places + 1 - text.size(), '0');
        text.insert(text.size() - scale.places, ".");
    }
    return (negative ? "-" : "") + text;
}

std::string allowed(const lysc_node &leaf) {
    const std::optional<models::Range> range = models::describe(leaf).range;
    if (!range) {
        return {};
    }
    const Scale scale = scale_of(leaf);
    std::string text = decimal(range->minimum, scale) + " to " + decimal(range->maximum, scale);
    return scale.unit.empty() ? text : text.append(" ").append(scale.unit);
}

} // namespace ocpsm::native
