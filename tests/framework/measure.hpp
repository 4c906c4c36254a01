// What a call costs: time in proportion to another's, memory at its peak.
#ifndef TESTS_FRAMEWORK_MEASURE_HPP
#define TESTS_FRAMEWORK_MEASURE_HPP

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>

namespace measure {

// Processor time of this thread.
inline double seconds(const std::function<void()> &call) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double begin = now();
    call();
    return now() - begin;
}

// How many times longer the greater of two calls takes, both at the best of some rounds. Of four times the work that
// is about four; where it grows with the square, sixteen.
inline double growth(const std::function<void()> &small, const std::function<void()> &great, int rounds = 3) {
    double least_small = 1e9;
    double least_great = 1e9;
    for (int round = 0; round < rounds; ++round) {
        least_small = std::min(least_small, seconds(small));
        least_great = std::min(least_great, seconds(great));
    }
    return least_great / least_small;
}

// A line of /proc/self/status, in bytes.
inline std::size_t memory(const std::string &what) {
    std::ifstream status("/proc/self/status");
    std::string name;
    std::size_t kib = 0;
    while (status >> name && name != what) {
        status.ignore(1000, '\n');
    }
    status >> kib;
    return kib << 10U;
}

// How much memory a call takes at its peak, in bytes. The call is what `prepare` makes in a process of its own.
inline std::size_t peak_of(const std::function<std::function<void()>()> &prepare) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const std::function<void()> call = prepare();
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
        const std::size_t before = memory("VmRSS:");
        call();
        const std::size_t taken = memory("VmHWM:") - before;
        _exit(write(ends[1], &taken, sizeof taken) == sizeof taken ? 0 : 1);
    }
    close(ends[1]);
    std::size_t taken = 0;
    EXPECT_EQ(read(ends[0], &taken, sizeof taken), static_cast<ssize_t>(sizeof taken));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return taken;
}

// What a request may take.
inline std::size_t allowed(const std::string &request) {
    return 64 * request.size() + (32U << 20U);
}

// A sanitizer takes memory of its own, and keeps what is released.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool counts_memory = false;
#else
inline constexpr bool counts_memory = true;
#endif

} // namespace measure

#endif
