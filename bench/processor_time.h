// Times of kernels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <ctime>
#include <functional>
#include <vector>

/// Processor time of the calling thread so far, in milliseconds.
inline double threadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
}

/// Milliseconds of processor time, so that other programs don't count.
inline double milliseconds(const std::function<void()>& work) {
    const std::clock_t start = std::clock();
    work();
    return double(std::clock() - start) * 1e3 / CLOCKS_PER_SEC;
}

inline double median(std::vector<double> times) {
    std::ranges::nth_element(times, times.begin() + ptrdiff_t(times.size() / 2));
    return times[times.size() / 2];
}

/// Median of many runs, in milliseconds.
inline double medianTime(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(milliseconds(work));
    return median(std::move(times));
}
