#include "native/native_test.hpp"

#include <gtest/gtest.h>

#include "framework/error.hpp"
#include "framework/text.hpp"

namespace native_test {

void Request::put(const std::string &path, const char *namespace_uri, Value value, std::uint32_t operation, bool first,
                  ocpsm::native::Origin origin) {
    EXPECT_EQ(add(path, namespace_uri, value, operation, first, origin), KERR_SUCCESS) << path;
}

std::string error_of(const std::function<void()> &call) {
    try {
        call();
    } catch (const ocpsm::Error &error) {
        const char *source = error.source == ocpsm::Error::Source::refused ? "refused" : "input";
        return std::string(source) + " " + error.tag + (error.path.empty() ? "" : " of " + error.path) + " at " +
               ocpsm::one_line(error.native_path, 1'000'000) + ": " + error.what() +
               (error.advice.empty() ? "" : " | " + error.advice);
    }
    return "none";
}

std::string steps(const ocpsm::native::NativeRequest &request) {
    std::string out;
    for (const ocpsm::native::NativeOperation &step : request.net().operations()) {
        out.append(ocpsm::operation_name(step.operation)).append(" ").append(step.path);
        out.append(step.value ? " = " + *step.value : "").append("\n");
    }
    return out;
}

} // namespace native_test
