#include "framework/journal.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace ocpsm {

std::string date_and_time(std::int64_t time) {
    constexpr std::int64_t first = -62'167'219'200'000; // of the year 0
    constexpr std::int64_t last = 253'402'300'799'999;  // of the year 9999
    const std::int64_t since_first = std::clamp(time, first, last) - first;
    const std::time_t seconds = (since_first / 1000) + first / 1000;
    struct tm parts {};
    gmtime_r(&seconds, &parts);
    std::array<char, 80> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", // NOLINT
                                     parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                                     parts.tm_sec, static_cast<int>(since_first % 1000));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::int64_t time_of_day() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace ocpsm
