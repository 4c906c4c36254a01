// Preloaded into a program: its nth allocation fails, OCPSM_FAILING_ALLOCATION says which. Without that nothing fails;
// a file that OCPSM_ALLOCATIONS names receives the number of allocations when the program ends. What the C library and
// the model library allocate for themselves does not count: the latter does not survive a failure while it compiles a
// model.
#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

} // extern "C"

namespace {

std::atomic<unsigned long> allocations{0};

unsigned long number_that_fails() {
    const char *text = std::getenv("OCPSM_FAILING_ALLOCATION"); // NOLINT(concurrency-mt-unsafe)
    return text == nullptr ? 0 : std::strtoul(text, nullptr, 10);
}

bool counts(const void *caller) {
    Dl_info info{};
    const bool known = dladdr(caller, &info) != 0 && info.dli_fname != nullptr;
    return known && std::strstr(info.dli_fname, "libyang") == nullptr &&
           std::strstr(info.dli_fname, "libc.so") == nullptr;
}

bool fails(const void *caller) {
    static const unsigned long failing = number_that_fails();
    if (!counts(caller)) {
        return false;
    }
    const bool now = ++allocations == failing;
    errno = now ? ENOMEM : errno;
    return now;
}

struct Report {
    Report() = default;
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;
    ~Report() {
        const char *name = std::getenv("OCPSM_ALLOCATIONS"); // NOLINT(concurrency-mt-unsafe)
        std::FILE *file = name == nullptr ? nullptr : std::fopen(name, "w");
        if (file != nullptr) {
            static_cast<void>(std::fprintf(file, "%lu\n", allocations.load()));
            static_cast<void>(std::fclose(file));
        }
    }
};

const Report report;

} // namespace

extern "C" {

__attribute__((visibility("default"))) void *malloc(std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(std::size_t count, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *memory, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}

} // extern "C"
