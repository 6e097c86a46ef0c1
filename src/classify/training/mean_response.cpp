// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/mean_response.h"

#include "base/worker_tasks.h"
#include "classify/trial_design.h"

#include <cmath>

namespace {

std::vector<size_t> brightPlaces(std::span<const int16_t> firstVolume, int intensityLimit) {
    std::vector<size_t> places;
    for (size_t i = 0; i < firstVolume.size(); ++i)
        if (firstVolume[i] >= intensityLimit)
            places.push_back(i);
    return places;
}

double meanOf(std::span<const int16_t> volume, const std::vector<size_t>& places) {
    int64_t sum = 0;
    for (const size_t place : places)
        sum += volume[place];
    return places.empty() ? 0.0 : double(sum) / double(places.size());
}

} // namespace

std::optional<std::vector<double>> meanCurve(const RunVolumes& volumes,
                                             const std::vector<size_t>& places, int intensityLimit,
                                             ProgressReporter& progress) {
    const std::vector<size_t> used =
        places.empty() ? brightPlaces(volumes[0], intensityLimit) : places;
    std::vector<double> curve(volumes.size());
    const bool done = doTasks(
        int(curve.size()),
        [&](int volume, const std::stop_token&) {
            curve[size_t(volume)] = meanOf(volumes[size_t(volume)], used);
        },
        progress);
    return done ? std::optional(std::move(curve)) : std::nullopt;
}

std::vector<double> measuredResponse(const std::vector<double>& curve,
                                     const std::vector<Trial>& trials, int duration,
                                     const TrialOptions& options) {
    const int points = pointsOfWindow(options, duration);
    std::vector<double> response(size_t(points), 0.0);
    int count = 0;
    for (const Trial& trial : trials) {
        if (trial.duration() != duration)
            continue;
        const std::vector<int> window =
            windowVolumes(trial.start - options.preOnset, points, int(curve.size()));
        for (size_t i = 0; i < response.size(); ++i)
            response[i] += curve[size_t(window[i])];
        ++count;
    }
    const double first = response.empty() ? 0.0 : response.front();
    double largest = 0.0;
    for (double& value : response) {
        value -= first;
        largest = std::max(largest, std::fabs(value));
    }
    if (count == 0 || largest <= 1e-6 * std::max(std::fabs(first), 1.0))
        return {};
    for (double& value : response)
        value /= largest;
    return response;
}
