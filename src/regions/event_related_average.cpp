// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/event_related_average.h"

#include "regions/time_course_statistics.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

struct Trial {
    size_t condition = 0;
    int onset = 0; ///< a volume of the curve
    double baseline = 0.0;
};

/// The part of a curve between two volumes, both included, that exists.
std::span<const float> piece(std::span<const float> values, int64_t first, int64_t last) {
    const int64_t from = std::max<int64_t>(first, 0);
    const int64_t to = std::min(last, int64_t(values.size()) - 1);
    return from > to ? std::span<const float>()
                     : values.subspan(size_t(from), size_t(to - from + 1));
}

bool isBaselineName(const QString& name) {
    return name.compare(QLatin1String("baseline"), Qt::CaseInsensitive) == 0 ||
           name.compare(QLatin1String("rest"), Qt::CaseInsensitive) == 0;
}

/// The first volume below nrOfVolumes that lies in the interval.
std::optional<int> onsetOf(const ProtocolCondition& condition, size_t interval,
                           const StimulationProtocol& protocol, float TR, size_t nrOfVolumes) {
    const bool inVolumes = protocol.resolutionOfTime == ResolutionOfTime::Volumes;
    if (!inVolumes && !(TR > 0.0f))
        return std::nullopt;
    const double length = inVolumes ? 1.0 : double(TR);
    const double origin = inVolumes ? 1.0 : 0.0; // time of volume 0
    const double first = std::max(std::ceil((condition.from[interval] - origin) / length), 0.0);
    if (first * length + origin > condition.to[interval] || first >= double(nrOfVolumes))
        return std::nullopt;
    return int(first);
}

std::vector<Trial> trialsOf(std::span<const float> values, const StimulationProtocol& protocol,
                            float TR, const AveragingWindow& window) {
    std::vector<Trial> trials;
    for (size_t c = 0; c < protocol.conditions.size(); ++c) {
        const ProtocolCondition& condition = protocol.conditions[c];
        if (isBaselineName(condition.name))
            continue;
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i) {
            const std::optional<int> onset = onsetOf(condition, i, protocol, TR, values.size());
            if (!onset)
                continue;
            const auto before = piece(values, int64_t(*onset) + window.baselineFrom,
                                      int64_t(*onset) + window.baselineTo);
            if (!before.empty())
                trials.push_back({c, *onset, meanOf(before)});
        }
    }
    return trials;
}

void useCommonBaseline(std::vector<Trial>& trials) {
    double sum = 0.0;
    for (const Trial& trial : trials)
        sum += trial.baseline;
    for (Trial& trial : trials)
        trial.baseline = sum / double(trials.size());
}

/// The changes of all trials at one volume of the window.
std::vector<double> changesAt(std::span<const Trial> trials, int64_t offset,
                              std::span<const float> values, bool percent) {
    std::vector<double> changes;
    for (const Trial& trial : trials)
        for (const float value : piece(values, trial.onset + offset, trial.onset + offset))
            changes.push_back((double(value) - trial.baseline) *
                              (percent ? 100.0 / trial.baseline : 1.0));
    return changes;
}

void appendPoint(ConditionAverage& average, const std::vector<double>& changes) {
    const auto n = double(changes.size());
    double mean = 0.0;
    for (const double change : changes)
        mean += change / n;
    double squareSum = 0.0;
    for (const double change : changes)
        squareSum += (change - mean) * (change - mean);
    average.mean.push_back(float(mean));
    average.standardError.push_back(n < 2 ? 0.0f : float(std::sqrt(squareSum / (n - 1) / n)));
    average.trials.push_back(int(changes.size()));
}

} // namespace

AveragingResult averageTrials(std::span<const float> values, const StimulationProtocol& protocol,
                              float TR, const AveragingWindow& window,
                              std::vector<ConditionAverage>& averages) {
    averages.clear();
    std::vector<Trial> trials = trialsOf(values, protocol, TR, window);
    if (!window.epochBased)
        useCommonBaseline(trials);
    if (window.percent)
        std::erase_if(trials, [](const Trial& trial) { return trial.baseline == 0.0; });
    if (trials.size() > size_t(maximumTrials))
        return AveragingResult::TooManyTrials;
    for (auto first = trials.begin(); first != trials.end();) {
        const size_t condition = first->condition;
        const auto last = std::find_if(
            first, trials.end(), [&](const Trial& trial) { return trial.condition != condition; });
        ConditionAverage& average = averages.emplace_back();
        average.name = protocol.conditions[condition].name;
        average.color = protocol.conditions[condition].color;
        for (int offset = -window.before; offset <= window.after; ++offset)
            appendPoint(average, changesAt({first, last}, offset, values, window.percent));
        first = last;
    }
    return AveragingResult::Ok;
}
