#ifndef QRA_BENCH_MEASURE_H
#define QRA_BENCH_MEASURE_H

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// Times are in seconds.
namespace bench {

[[noreturn]] inline void give_up(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(1);
}

using Clock = std::chrono::steady_clock;

inline double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double seconds_on(clockid_t clock) {
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// What this process has used of the processor.
inline double processor_seconds() {
    return seconds_on(CLOCK_PROCESS_CPUTIME_ID);
}

/// What one run took, on the clock and of the processor.
struct Cost {
    double wall = 0;
    double processor = 0;
};

template <class Work>
Cost cost_of(const Work& work) {
    const double processor = processor_seconds();
    const Clock::time_point start = Clock::now();
    work();
    const double wall = seconds_since(start);
    return {wall, processor_seconds() - processor};
}

/// Of at least one value.
inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace bench

#endif
