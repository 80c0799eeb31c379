#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <ctime>
#include <sys/resource.h>

/// What benchmarks that measure themselves have in common.
namespace Measurement {

inline double milliseconds(long long nanoseconds) {
    return double(nanoseconds) / 1e6;
}

/// 0.5 for the median, 1 for the largest. 0 of nothing.
inline double percentile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * double(values.size() - 1))];
}

/// To two places.
inline double rounded(double value) {
    return std::round(value * 100) / 100;
}

/// What the calling thread took of the processor so far, in milliseconds; other programs don't lengthen it.
inline double threadCpu() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// The most memory that this process had so far.
inline double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

} // namespace Measurement
