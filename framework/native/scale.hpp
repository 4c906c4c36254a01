// The numbers of the native models, which count steps of a unit: "0.1 dBm" are tenths of a dBm.
#ifndef OCPSM_FRAMEWORK_NATIVE_SCALE_HPP
#define OCPSM_FRAMEWORK_NATIVE_SCALE_HPP

#include <cstdint>
#include <string>
#include <string_view>

struct lysc_node;

namespace ocpsm::native {

// What one of a leaf's numbers stands for.
struct Scale {
    unsigned places;       // decimal places of a number in the whole unit; 0: it counts that unit itself
    std::string_view step; // in words, "tenths of a "; empty for the unit itself
    std::string_view unit; // empty when it has none
};

Scale scale_of(const lysc_node &leaf);

// A leaf's number in the whole unit: -205 tenths are "-20.5".
std::string decimal(std::int64_t number, const Scale &scale);

// What a leaf may be set to, in the whole unit: "-40.0 to 30.0 dBm". Empty where its model restricts nothing.
std::string allowed(const lysc_node &leaf);

} // namespace ocpsm::native

#endif
