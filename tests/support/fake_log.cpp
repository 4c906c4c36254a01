// The log and trace services, recorded, with their contracts checked.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <hvs_dt.h>
#include <yfw_map.h>

#include "fake_platform.hpp"
#include "request.hpp"

namespace {

using fake::Platform;

constexpr std::uint32_t untouched = 0xffffffff;
constexpr std::uint64_t trace_options = 0x10101000000;
constexpr std::size_t trace_text_size = 249;

// What the process knows about a statement: the log service owns the statement's word after its first line.
struct Site {
    std::uint32_t owned_value;
    std::string format;
};

void check_site(std::uint32_t *site, const std::string &format) {
    static std::map<const std::uint32_t *, Site> known;
    Platform &platform = Platform::current();
    const auto [found, is_new] = known.try_emplace(site, Site{static_cast<std::uint32_t>(known.size()), format});
    if (is_new) {
        if (*site != untouched) {
            platform.fault("the slot of a statement did not begin as all ones: " + format);
        }
        *site = found->second.owned_value;
    } else if (*site != found->second.owned_value) {
        platform.fault("the slot of a statement was written by someone else: " + format);
    }
    if (found->second.format != format) {
        platform.fault("one slot serves two messages: " + found->second.format + " | " + format);
    }
}

std::string context_text(yfw_map_ctx ctx) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "ctx=%p,", static_cast<void *>(ctx));
    return text.data();
}

bool take(std::string &rest, const std::string &prefix) {
    if (rest.compare(0, prefix.size(), prefix) != 0) {
        return false;
    }
    rest.erase(0, prefix.size());
    return true;
}

// The level of a log line by its prefix; the line is left without prefix and context.
std::string log_level_of(std::string &text, hvs_dt_handle handle) {
    Platform &platform = Platform::current();
    const std::string whole = text;
    std::string level = text.substr(0, 3);
    const yfw_map_ctx ctx = fake::current_context();
    if ((level != "ERR" && level != "TRC") || !take(text, level + ": YFW: ") || !take(text, context_text(ctx))) {
        platform.fault("a log line without its prefix or with another context: " + whole);
        return "???";
    }
    if (ctx != nullptr && handle != (level == "ERR" ? ctx->error_log : ctx->trace_log)) {
        platform.fault("a log line on another handle than its level's: " + whole);
    }
    return level;
}

fake::TraceRecord parsed_trace(const std::string &whole) {
    fake::TraceRecord record;
    record.whole = whole;
    std::array<char, 4> level{};
    std::array<char, 250> function{};
    int used = 0;
    if (std::sscanf(whole.c_str(), "#%u: %3[A-Z]: %249[^:]:%u %n", &record.sequence, level.data(), function.data(),
                    &record.line, &used) < 4) {
        Platform::current().fault("a trace line of another form: " + whole);
        return record;
    }
    if (record.line == 0) {
        Platform::current().fault("a trace line without the number of its line: " + whole);
    }
    record.level = level.data();
    record.function = function.data();
    record.text = whole.substr(static_cast<std::size_t>(used));
    if (!take(record.text, context_text(fake::current_context()))) {
        Platform::current().fault("a trace line with another context: " + whole);
    }
    return record;
}

} // namespace

extern "C" {

int yfw_debug_should_log(const yfw_debug_filter *filter, uint32_t level) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Filter, "should_log", std::to_string(level));
    const yfw_map_ctx ctx = fake::current_context();
    if (ctx != nullptr && filter != &ctx->debug_log_filter) {
        platform.fault("yfw_debug_should_log was asked with another filter than the context's");
    }
    if (level != 0 && level != 3) {
        platform.fault("yfw_debug_should_log was asked for level " + std::to_string(level));
    }
    return static_cast<int>(scripted.value_or((filter->enabled_levels >> level) & 1u));
}

uint32_t ret_nc_yfw_trace_index_incr(void) {
    Platform &platform = Platform::current();
    platform.record(fake::Filter, "trace_index", "");
    return platform.draw_sequence_number();
}

void _hvs_dt_log_filter_adv(hvs_dt_handle log, uint32_t zero1, uint32_t zero2, uint32_t zero3, uint32_t zero4,
                            uint32_t zero5, uint32_t *site, const char *format, ...) {
    Platform &platform = Platform::current();
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::vector<char> buffer(static_cast<std::size_t>(std::max(length, 0)) + 1);
    va_start(arguments, format);
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);

    if ((zero1 | zero2 | zero3 | zero4 | zero5) != 0) {
        platform.fault(std::string("a log line whose five numbers are not zero: ") + format);
    }
    std::string text = buffer.data();
    check_site(site, format);
    platform.add_log({log, site, format, text});
    const std::string level = log_level_of(text, log);
    platform.record_message(fake::Log, "log " + level + " " + text);
}

void _lstrace(hvs_trace_handle buffer, uint64_t options, const char *text) {
    Platform &platform = Platform::current();
    const yfw_map_ctx ctx = fake::current_context();
    if (options != trace_options || (ctx != nullptr && buffer != ctx->trace_buffer)) {
        platform.fault(std::string("a trace line with other options or another buffer: ") + text);
    }
    if (std::strlen(text) > trace_text_size) {
        platform.fault(std::string("a trace line of more than 249 characters: ") + text);
    }
    fake::TraceRecord record = parsed_trace(text);
    if (record.sequence != platform.last_sequence_number()) {
        platform.fault("a trace line with a sequence number that was not the last one drawn: " + record.whole);
    }
    platform.record_message(fake::Trace, "trace " + record.level + " #" + std::to_string(record.sequence) + " " +
                                             record.function + " " + record.text);
    platform.add_trace(std::move(record));
}

} // extern "C"
