// Scaling of values and small text functions.
#include "utility_bounded.hpp"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "hvs_libc.h"

namespace ymap {

// The format is the caller's contract: one "%d".
int format_number(char *out, std::size_t size, const char *format, int number) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    return std::snprintf(out, size, format, number);
#pragma GCC diagnostic pop
}

} // namespace ymap

namespace {

// Reads the number at the head of a text by way of the output buffer, which cuts a text that is too long, and leaves
// the buffer cleared.
double take_number(const char *in, char *out, std::size_t size) {
    double number = 0.0;
    yfw_strcpy_s(out, size, in);
    std::sscanf(out, "%lf", &number);
    memset_s(out, size, 0, size);
    return number;
}

// Toward zero; a conversion of anything else than a 32-bit number is undefined, so it gets the value that the
// processor gives.
std::int32_t truncate(double number) {
    constexpr double below = -2147483649.0;
    constexpr double above = 2147483648.0;
    return number > below && number < above ? static_cast<std::int32_t>(number) : INT32_MIN;
}

} // namespace

extern "C" {

int convert_data_to_high(const char *in, char *out, int size, int divisor) {
    const auto room = static_cast<std::size_t>(size);
    const double number = take_number(in, out, room) / static_cast<double>(divisor);
    return std::snprintf(out, room, "%.2f", number);
}

int convert_data_to_low(const char *in, char *out, int size, int multiplier) {
    const auto room = static_cast<std::size_t>(size);
    const double number = take_number(in, out, room) * static_cast<double>(multiplier);
    return std::snprintf(out, room, "%d", truncate(number));
}

char *strstrip(char *text) {
    const auto is_blank = [](char character) { return std::isspace(static_cast<unsigned char>(character)) != 0; };
    char *end = text + std::strlen(text);
    while (end != text && is_blank(end[-1])) {
        --end;
    }
    *end = '\0';
    while (is_blank(*text)) {
        ++text;
    }
    return text;
}

const char *replace_str(const char *text, const char *pattern, const char *replacement) {
    static char result[4096];
    const char *found = std::strstr(text, pattern);
    if (found == nullptr) {
        return text;
    }
    yfw_strncpy_s(result, sizeof result, text, static_cast<std::size_t>(found - text));
    const std::size_t head = std::strlen(result);
    std::snprintf(result + head, sizeof result - head, "%s%s", replacement, found + std::strlen(pattern));
    return result;
}

} // extern "C"
