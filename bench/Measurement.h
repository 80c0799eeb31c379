#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
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

/// What this process and those that it started have by now, shared pages by their shares. 0 where the system doesn't
/// tell.
inline double familyMegabytes() {
    std::vector<std::string> family{"self"};
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (std::string child; children >> child;)
            family.push_back(child);
    }
    double kilobytes = 0;
    for (const std::string& member : family) {
        std::ifstream summary("/proc/" + member + "/smaps_rollup");
        for (std::string word; summary >> word;)
            if (double size = 0; word == "Pss:" && summary >> size)
                kilobytes += size;
    }
    return kilobytes / 1024;
}

} // namespace Measurement
