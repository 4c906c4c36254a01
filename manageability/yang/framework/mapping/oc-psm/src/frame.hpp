// What every function of the plug-in shares: the two message channels, the assertion on the context, the argument
// check, the recording of a refused node.
#ifndef OC_PSM_FRAME_HPP
#define OC_PSM_FRAME_HPP

#include <cstdint>
#include <cstdio>

#ifdef OC_PSM_PLATFORM_ACCESS
#include OC_PSM_PLATFORM_ACCESS // a device's own
#else
#include "platform_access.hpp"
#endif

#define YMAP_EXPORT __attribute__((visibility("default")))

// The literal texts that identify a source file in an assertion.
#define YMAP_SOURCE(file) "manageability/yang/framework/mapping/oc-psm/src/" file
#define YMAP_OPENCONFIG_SOURCE(kind) YMAP_SOURCE("ymap_oc_opt_psm_openconfig_transport_line_protection_" kind)

#define YMAP_STRING_OF(text) #text
#define YMAP_STRING(text) YMAP_STRING_OF(text)

// The prototype texts of the callbacks; a container callback takes the child count before the destination.
#define YMAP_CALLBACK_PROTOTYPE(name)                                                                                  \
    "kerrno " YMAP_STRING(name) "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *)"
#define YMAP_CONTAINER_CALLBACK_PROTOTYPE(name)                                                                        \
    "kerrno " YMAP_STRING(                                                                                             \
        name) "(yfw_map_ctx, const struct kidl_yfw_datatree *, unsigned int, struct kidl_yfw_datatree *)"

namespace ymap {

// The exported function that is being run, as messages and assertions name it.
struct Function {
    const char *name;
    const char *prototype;
    const char *file;
};

// Stops the process: the text of the assertion is always the same.
[[noreturn]] void fail_context_assertion(const Function &function, unsigned int line);

inline constexpr std::uint32_t log_level_error = 0;
inline constexpr std::uint32_t log_level_trace = 3;
inline constexpr std::uint64_t trace_buffer_options = 0x10101000000;
inline constexpr std::size_t trace_text_size = 250;

// A text that may be absent, as "%s" of the log service and of snprintf can take it.
inline const char *shown(const char *text) {
    return text != nullptr ? text : "(null)";
}

} // namespace ymap

// Stops the process when the context is missing. A macro, because the assertion names the line of the check.
#define YMAP_ASSERT_CONTEXT(function, ctx)                                                                             \
    do {                                                                                                               \
        if ((ctx) == nullptr) {                                                                                        \
            ymap::fail_context_assertion(function, __LINE__);                                                          \
        }                                                                                                              \
    } while (false)

// Emits one message on both channels. Macros, because every statement owns a word of the log service and tells its own
// line, and because the text is part of two formats; the message's arguments are evaluated only for a channel that
// wants them.
#define YMAP_EMIT(function, ctx, level, log, word, text, ...)                                                          \
    do {                                                                                                               \
        if (yfw_debug_should_log(ymap::log_filter_of(ctx), level) != 0) {                                              \
            static std::uint32_t site = 0xffffffff;                                                                    \
            _hvs_dt_log_filter_adv(ymap::log(ctx), 0, 0, 0, 0, 0, &site, word ": YFW: ctx=%p," text,                   \
                                   static_cast<void *>(ctx) __VA_OPT__(, ) __VA_ARGS__);                               \
        }                                                                                                              \
        if (ymap::is_traced(ctx)) {                                                                                    \
            char line[ymap::trace_text_size];                                                                          \
            std::snprintf(line, sizeof line, "#%u: " word ": %s:%d ctx=%p," text, ret_nc_yfw_trace_index_incr(),       \
                          (function).name, __LINE__, static_cast<void *>(ctx) __VA_OPT__(, ) __VA_ARGS__);             \
            _lstrace(ymap::trace_buffer_of(ctx), ymap::trace_buffer_options, line);                                    \
        }                                                                                                              \
    } while (false)

#define YMAP_ERROR(function, ctx, ...) YMAP_EMIT(function, ctx, ymap::log_level_error, error_log_of, "ERR", __VA_ARGS__)
#define YMAP_TRACE(function, ctx, ...) YMAP_EMIT(function, ctx, ymap::log_level_trace, trace_log_of, "TRC", __VA_ARGS__)

namespace ymap {

// The answer to a missing node: asserts the context, reports, records the location, gives YMAP_ERR_INVALID_ARGS.
kerrno refuse_arguments(const Function &function, yfw_map_ctx ctx);

// The opening of a walker, a container or list callback and a conversion: asserts the context, traces "Start".
void start(const Function &function, yfw_map_ctx ctx);

// Their close: traces "End", gives the result.
kerrno end(const Function &function, yfw_map_ctx ctx, kerrno result);

inline constexpr char allocation_tag[] = "YFW MAP";

// Makes a copy of `tag` the request's error-node name, in place of the one it had; a null tag leaves it cleared.
// Without a context or request state nothing is recorded.
void record_error_node(yfw_map_ctx ctx, const char *tag, const char *allocation);

inline std::uint32_t operation_kind(yfw_map_ctx ctx) {
    return operation_kind_of(*request_of(ctx));
}

// A request of kind 0 or 10.
inline bool is_read(yfw_map_ctx ctx) {
    const std::uint32_t kind = operation_kind(ctx);
    return kind == kind_get_config || kind == kind_get;
}

// The read that includes operational state.
inline bool is_operational_read(yfw_map_ctx ctx) {
    return operation_kind(ctx) == kind_get;
}

inline bool is_delete(const Node *node) {
    return yfw_map_is_request_delete(node) != 0;
}

inline bool match(const char *first, const char *second) {
    return yfw_map_do_these_match(first, second) != 0;
}

inline bool has_value(const Node &node) {
    return has_flag(node, flag_has_value) && held_value_of(node) != nullptr;
}

// The value of a leaf, null when it has none.
inline const char *value_of(const Node &leaf) {
    return has_value(leaf) ? held_value_of(leaf) : nullptr;
}

// The framework's trees are writable: a walk leaves its marks in the nodes that callbacks get as const.
inline Node &writable(const Node &node) {
    return const_cast<Node &>(node);
}

} // namespace ymap

#endif
