#include "frame.hpp"

// The C library's, which its header declares in some builds only.
extern "C" [[noreturn]] void __assert_fail(const char *text, const char *file, unsigned int line,
                                           const char *prototype) noexcept;

namespace ymap {

void fail_context_assertion(const Function &function, unsigned int line) {
    __assert_fail("((void *)0) != ctx", function.file, line, function.prototype);
}

kerrno refuse_arguments(const Function &function, yfw_map_ctx ctx) {
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_ERROR(function, ctx, "Invalid arguments passed!");
    yfw_oc_error_path(ctx);
    return YMAP_ERR_INVALID_ARGS;
}

void start(const Function &function, yfw_map_ctx ctx) {
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "Start");
}

kerrno end(const Function &function, yfw_map_ctx ctx, kerrno result) {
    YMAP_TRACE(function, ctx, "End");
    return result;
}

void record_error_node(yfw_map_ctx ctx, const char *tag, const char *allocation) {
    if (ctx == nullptr || request_of(ctx) == nullptr) {
        return;
    }
    Request &request = *request_of(ctx);
    if (char *const name = error_node_name_of(request); name != nullptr) {
        hvs_named_free(name);
        set_error_node_name(request, nullptr);
    }
    if (tag != nullptr) {
        set_error_node_name(request, yfw_strdup(tag, allocation));
    }
}

} // namespace ymap
