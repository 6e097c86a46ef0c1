// Times of work that several threads share.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>
#include <span>
#include <vector>

/// Milliseconds that pass. Processor time would add up the threads.
template<typename Work> double clockTime(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

/// The best of several runs: other programs on the machine only make it longer.
template<typename Work> double bestClockTime(int runs, const Work& work) {
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < runs; ++i)
        best = std::min(best, clockTime(work));
    return best;
}

/// Copying samples to a place where they weren't before: what the machine's memory costs.
template<typename Sample> double bestCopyTime(int runs, std::span<const Sample> samples) {
    constexpr size_t places = 4;
    std::vector<std::vector<Sample>> copies(places, std::vector<Sample>(samples.size()));
    size_t place = 0;
    return bestClockTime(runs,
                         [&] { std::ranges::copy(samples, copies[place++ % places].begin()); });
}
