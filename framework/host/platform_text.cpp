// Bounded texts, named allocations and the additions to the C library.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "framework/host/allocation.hpp"
#include "hvs_dt.h"
#include "hvs_libc.h"
#include "yfw_map.h"

namespace {

constexpr int cut = 1;

// Writes `length` bytes of `source` at `dest`, as far as `size` allows, and the end. The two may overlap.
int put(char *dest, size_t size, const char *source, size_t length) {
    const size_t fits = std::min(length, size - 1);
    std::memmove(dest, source, fits);
    dest[fits] = '\0';
    return fits == length ? 0 : cut;
}

} // namespace

char *yfw_strdup(const char *text, const char * /*allocation_tag*/) {
    char *copy = text == nullptr ? nullptr : strdup(text);
    if (text != nullptr && copy == nullptr) {
        ocpsm::framework::note_failed_allocation();
    }
    return copy;
}

void hvs_named_free(void *allocation) {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory,cppcoreguidelines-no-malloc): the memory is that of yfw_strdup
    std::free(allocation);
}

int yfw_strcpy_s(char *dest, size_t size, const char *source) {
    return yfw_strncpy_s(dest, size, source, source == nullptr ? 0 : std::strlen(source));
}

int yfw_strcat_s(char *dest, size_t size, const char *source) {
    if (dest == nullptr || size == 0) {
        return cut;
    }
    const size_t used = strnlen(dest, size);
    if (used == size) {
        dest[size - 1] = '\0';
        return cut;
    }
    return yfw_strcpy_s(dest + used, size - used, source);
}

int yfw_strncpy_s(char *dest, size_t size, const char *source, size_t count) {
    if (dest == nullptr || size == 0) {
        return cut;
    }
    if (source == nullptr) {
        dest[0] = '\0';
        return cut;
    }
    return put(dest, size, source, strnlen(source, count));
}

int memset_s(void *dest, size_t room, int byte, size_t count) {
    if (dest == nullptr) {
        return cut;
    }
    std::memset(dest, byte, std::min(room, count));
    return count > room ? cut : 0;
}

char *inet_ntoa_r(uint32_t address, char *buffer, size_t size) {
    if (buffer != nullptr && size != 0) {
        unsigned char bytes[sizeof address];
        std::memcpy(bytes, &address, sizeof address);
        (void)std::snprintf(buffer, size, "%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
    }
    return buffer;
}
