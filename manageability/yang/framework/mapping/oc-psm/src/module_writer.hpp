// How a value is written into the OpenConfig module that a native entry belongs to.
#ifndef OC_PSM_MODULE_WRITER_HPP
#define OC_PSM_MODULE_WRITER_HPP

#include "native_models.hpp"
#include "utility_bounded.hpp"

namespace ymap {

inline constexpr std::size_t value_size = 20; // a scaled value

// The frame of a conversion to OpenConfig: context, arguments, the steps.
template <typename Steps>
kerrno convert_to_high(const Function &function, yfw_map_ctx ctx, const Node *source, const Node *destination,
                       Steps steps) {
    YMAP_ASSERT_CONTEXT(function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return steps();
}

// A line controller's name, taken apart; -1 where it does not scan.
struct LineController {
    int slot = -1;
    int port = -1;

    explicit LineController(const char *name);
};

// Adds a leaf of the current module; `leaf` is its path below the module. The result is the framework's.
kerrno add_module_leaf(yfw_map_ctx ctx, Node *destination, const char *leaf, const char *value);

// Writes a leaf of the module with this key by its instance path.
void stitch_module_leaf(yfw_map_ctx ctx, Node *destination, const char *module, const char *leaf, const char *value);

// Tells the module for which a leaf is about to be written.
void trace_module(const Function &function, yfw_map_ctx ctx, const char *module);

} // namespace ymap

#endif
