// What the conversions from OpenConfig to the native models share.
#ifndef OC_PSM_TO_LOW_HPP
#define OC_PSM_TO_LOW_HPP

#include "frame.hpp"
#include "native_models.hpp"

namespace ymap {

// The node of the hardware module entry and the activity of an interface entry: the only ones a module stands under.
inline constexpr char node_name[] = "0/RP0/CPU0";
inline constexpr char active[] = "act";

inline constexpr std::size_t text_size = 200;

// The frame of a conversion: context, "Start", arguments, the steps, "End".
template <typename Steps>
kerrno convert_to_low(const Function &function, yfw_map_ctx ctx, const Node *source, Node *destination, Steps steps) {
    start(function, ctx);
    if (source == nullptr || destination == nullptr) {
        return refuse_arguments(function, ctx);
    }
    return end(function, ctx, steps());
}

// The framework's two flags of an add.
struct AddFlags {
    std::uint32_t first;
    std::uint32_t second;
};

inline constexpr AddFlags opens{1, 0};
inline constexpr AddFlags belongs{0, 1};
inline constexpr AddFlags plain{0, 0};

// The adds of one function to one destination; remembers the result of the last.
class Adds {
public:
    Adds(yfw_map_ctx ctx, Node *destination) : ctx_(ctx), destination_(destination) {}

    void operator()(const char *model, const char *path, const char *value, const Node *source, AddFlags flags) {
        result_ = yfw_map_datatree_add_path_flagged(ctx_, destination_, path, model, value, source, nullptr,
                                                    flags.first, flags.second);
    }

    kerrno result() const { return result_; }

private:
    yfw_map_ctx ctx_;
    Node *destination_;
    kerrno result_ = KERR_SUCCESS;
};

} // namespace ymap

// The function record of a hand-written conversion.
#define YMAP_MAN_FUNCTION(name)                                                                                        \
    static constexpr ymap::Function function {                                                                         \
#name, YMAP_CALLBACK_PROTOTYPE(name), YMAP_OPENCONFIG_SOURCE("man")                                            \
    }

#endif
