// The debug log and the trace buffer.
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "framework/host/allocation.hpp"
#include "framework/host/log_service.hpp"
#include "hvs_dt.h"
#include "yfw_map.h"

using ocpsm::framework::without_exceptions;

namespace {

constexpr uint32_t unseen_site = 0xffffffff;

std::string formatted(const char *format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) {
        return format;
    }
    // One byte more for the terminator that vsnprintf writes.
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

// Numbers a statement at its first line. Plug-ins of several threads may share the word.
uint32_t number_of_site(uint32_t &site) {
    static std::atomic<uint32_t> last{0};
    std::atomic_ref<uint32_t> word(site);
    uint32_t number = word.load();
    if (number == unseen_site) {
        const uint32_t fresh = ++last;
        number = word.compare_exchange_strong(number, fresh) ? fresh : number;
    }
    return number;
}

} // namespace

void _hvs_dt_log_filter_adv(hvs_dt_handle log, uint32_t /*zero1*/, uint32_t /*zero2*/, uint32_t /*zero3*/,
                            uint32_t /*zero4*/, uint32_t /*zero5*/, uint32_t *site, const char *format, ...) {
    if (log == nullptr || format == nullptr) {
        return;
    }
    const uint32_t number = site == nullptr ? unseen_site : number_of_site(*site);
    if (log->lines->full()) {
        log->lines->drop(1);
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    without_exceptions([&] { log->lines->add({log->error, number, formatted(format, arguments)}); });
    va_end(arguments);
}

void _lstrace(hvs_trace_handle buffer, uint64_t /*options*/, const char *text) {
    if (buffer == nullptr || text == nullptr) {
        return;
    }
    without_exceptions([&] {
        buffer->open.see(ocpsm::framework::parse_trace_line(text));
        buffer->lines.add({false, 0, text});
    });
}

int yfw_debug_should_log(const struct yfw_debug_filter *filter, uint32_t level) {
    return filter != nullptr && level < 32 && ((filter->enabled_levels >> level) & 1U) != 0 ? 1 : 0;
}

uint32_t ret_nc_yfw_trace_index_incr(void) {
    static std::atomic<uint32_t> last{0};
    return ++last;
}
