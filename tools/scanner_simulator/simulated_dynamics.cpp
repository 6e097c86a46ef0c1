// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulated_dynamics.h"

#include "mental_tasks.h"
#include "random_numbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double fullTurn = 2.0 * std::numbers::pi;

/// Integral of the gamma density with an integer shape and scale 1, from 0 to t.
double gammaIntegral(int shape, double t) {
    double term = 1.0;
    double sum = 1.0;
    for (int k = 1; k < shape; ++k) {
        term *= t / k;
        sum += term;
    }
    return 1.0 - std::exp(-t) * sum;
}

/// From 0 to 0.7 over the run, with a wave on top; `part` is the elapsed fraction of the run.
double driftCourse(double part, double turns) {
    return 0.7 * part + 0.3 * std::sin(fullTurn * turns * part);
}

std::vector<RespondingRegion> regionsOf(const SimulationOptions& options) {
    if (!options.hasTasks())
        return {{"Faces", {1, 0}}, {"Houses", {0, 1}}};
    return {{"Task 1", {1, 0.2, 0.2}}, {"Task 2", {0.2, 1, 0.2}}, {"Task 3", {0.2, 0.2, 1}},
            {"Helper 1", {1, 0, 0}},   {"Helper 2", {0, 1, 0}},   {"Helper 3", {0, 0, 1}}};
}

} // namespace

std::vector<StimulusTime> timesOf(const SimulatedCondition& condition, int repetitionTime) {
    std::vector<StimulusTime> times;
    for (const ProtocolInterval& interval : condition.intervals)
        times.push_back(
            {(interval.from - 1) * repetitionTime / 1000.0, interval.to * repetitionTime / 1000.0});
    return times;
}

std::vector<SimulatedCondition> blockProtocol(const SimulationOptions& options) {
    std::vector<SimulatedCondition> conditions = {{"Fixation", {120, 120, 120}, {}},
                                                  {"Faces", {255, 130, 50}, {}},
                                                  {"Houses", {70, 150, 255}, {}}};
    const int sequence[] = {0, 1, 0, 2};
    const int analysed = options.nrOfVolumes - options.nrOfVolumesToSkip;
    int block = 0;
    for (int from = 1; from <= analysed; from += options.blockLength, ++block)
        conditions[size_t(sequence[block % 4])].intervals.push_back(
            {from, std::min(from + options.blockLength - 1, analysed)});
    return conditions;
}

double stepResponse(double seconds) {
    if (seconds <= 0.0)
        return 0.0;
    // From here on the exponential underflows and both integrals are 1.
    const double t = std::min(seconds, 500.0);
    constexpr double ratio = 6.0;
    return (gammaIntegral(6, t) - gammaIntegral(16, t) / ratio) / (1.0 - 1.0 / ratio);
}

SimulatedDynamics::SimulatedDynamics(const SimulationOptions& options)
    : options_(options),
      conditions_(options.hasTasks() ? taskProtocol(options) : blockProtocol(options)),
      regions_(regionsOf(options)), secondsPerVolume_(options.repetitionTime / 1000.0) {
    if (options.hasTasks())
        stimuli_ = taskTimes(options);
    else
        for (size_t condition = 1; condition < conditions_.size(); ++condition)
            stimuli_.push_back(timesOf(conditions_[condition], options.repetitionTime));
    RandomNumbers random(options.seed * 1000003u + uint64_t(options.run));
    heartPhase_ = fullTurn * random.uniform();
    breathPhase_ = fullTurn * random.uniform();
}

double SimulatedDynamics::response(size_t region, double seconds) const {
    const double analysed =
        seconds - options_.nrOfVolumesToSkip * secondsPerVolume_ - options_.responseDelay;
    double sum = 0.0;
    for (size_t stimulus = 0; stimulus < stimuli_.size(); ++stimulus)
        if (const double weight = regions_[region].weights[stimulus]; weight > 0.0)
            sum += weight * responseTo(stimuli_[stimulus], analysed);
    return sum;
}

double SimulatedDynamics::responseTo(const std::vector<StimulusTime>& times, double seconds) const {
    // Stimuli longer ago than this have no effect any more.
    constexpr double memory = 60.0;
    double sum = 0.0;
    for (const StimulusTime& time : times)
        if (seconds > time.start && seconds < time.end + memory)
            sum += stepResponse(seconds - time.start) - stepResponse(seconds - time.end);
    return sum;
}

double SimulatedDynamics::drift(double seconds) const {
    const double part = seconds / (options_.nrOfVolumes * secondsPerVolume_);
    return 0.01 * part + 0.001 * std::sin(fullTurn * part / 1.5);
}

double SimulatedDynamics::pulsation(double seconds) const {
    return 0.003 * std::sin(fullTurn * 1.17 * seconds + heartPhase_) +
           0.003 * std::sin(fullTurn * 0.27 * seconds + breathPhase_);
}

double SimulatedDynamics::saturation(int volume) const {
    return volume < options_.nrOfVolumesToSkip ? 1.0 + 0.3 * std::exp(-2.0 * volume) : 1.0;
}

HeadPose SimulatedDynamics::pose(int volume) const {
    if (volume <= options_.nrOfVolumesToSkip)
        return {};
    switch (options_.motion) {
    case HeadMotion::None:
        return {};
    case HeadMotion::Drift:
        return driftPose(volume);
    case HeadMotion::Jumps:
        return jumpPose(volume);
    }
    return {};
}

HeadPose SimulatedDynamics::driftPose(int volume) const {
    const double part = double(volume - options_.nrOfVolumesToSkip) /
                        std::max(1, options_.nrOfVolumes - options_.nrOfVolumesToSkip);
    HeadPose pose;
    pose.translation[0] = 0.5 * driftCourse(part, 2.0);
    pose.translation[1] = -0.8 * driftCourse(part, 1.0);
    pose.translation[2] = 1.2 * driftCourse(part, 1.5);
    pose.rotation[0] = 1.0 * driftCourse(part, 1.0);
    pose.rotation[1] = 0.4 * driftCourse(part, 2.5);
    pose.rotation[2] = -0.6 * driftCourse(part, 2.0);
    return pose;
}

HeadPose SimulatedDynamics::jumpPose(int volume) const {
    const int analysed = options_.nrOfVolumes - options_.nrOfVolumesToSkip;
    const int quarter = 4 * (volume - options_.nrOfVolumesToSkip) / analysed;
    HeadPose pose;
    if (quarter >= 1)
        pose.translation[0] = 1.0;
    if (quarter >= 2)
        pose.rotation[2] = 1.0;
    if (quarter >= 3) {
        pose.translation[2] = -1.0;
        pose.rotation[0] = 1.0;
    }
    return pose;
}
