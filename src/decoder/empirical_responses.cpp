// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/empirical_responses.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int nrOfConditions = 1 + LetterCode::nrOfTasks * LetterCode::nrOfDurations;

struct ROIRange {
    size_t first = 0;
    size_t count = 0;
};

ROIRange rangeOf(ResponseROIs rois) {
    constexpr ROIRange tasks{0, nrOfTaskROIs};
    constexpr ROIRange helpers{nrOfTaskROIs, nrOfDecoderROIs - nrOfTaskROIs};
    if (rois == ResponseROIs::All)
        return {tasks.first, tasks.count + helpers.count};
    return rois == ResponseROIs::Tasks ? tasks : helpers;
}

bool areInRange(const EmpiricalOptions& options) {
    const auto isIn = [](int value, int minimum) {
        return value >= minimum && value <= EmpiricalOptions::mostPoints;
    };
    return isIn(options.WindowTimePoints, 1) && isIn(options.PreTrialBeginDataPoints, 0) &&
           isIn(options.PostTrialDataPoints, 0) && isIn(options.ShortestTaskDuration, 1);
}

/// The volume, from 0, at which an interval begins; the nearest one for milliseconds. -1 for none.
int onsetVolume(const StimulationProtocol& protocol, int from, double TR) {
    if (protocol.resolutionOfTime == ResolutionOfTime::Volumes)
        return std::max(from, 0) - 1;
    const double volume = std::floor(double(from) / TR + 0.5);
    return TR > 0.0 && volume >= 0.0 && volume < 1e9 ? int(volume) : -1;
}

/// The mean response to a duration, point by point from those before the onset.
class ResponseAverage {
public:
    ResponseAverage(const EmpiricalOptions& options, int duration)
        : pre_(options.PreTrialBeginDataPoints),
          sums_(size_t(options.ShortestTaskDuration * (duration + 1) + pre_ +
                       options.PostTrialDataPoints)),
          counts_(sums_.size()) {}

    void addTrial(const std::vector<float>& curve, int onset) {
        if (onset < 0 || size_t(onset) >= curve.size())
            return;
        const int first = std::max(onset - pre_, 0);
        const double mean = meanOf(curve, first, std::max(onset, first + 1));
        if (!std::isfinite(mean) || mean == 0.0)
            return;
        hasTrial_ = true;
        const int begin = onset - pre_; // of the response, perhaps before the data
        const int end = std::min(begin + int(sums_.size()), int(curve.size()));
        for (int volume = first; volume < end; ++volume) {
            const auto point = size_t(volume - begin);
            sums_[point] += double(curve[size_t(volume)]) / mean * fullPercent;
            ++counts_[point];
        }
    }
    [[nodiscard]] bool hasTrial() const { return hasTrial_; }
    /// With the task's start at the point `onset`.
    [[nodiscard]] std::vector<float> response(int nrOfPoints, double onset) const {
        constexpr auto full = float(fullPercent);
        std::vector<float> response(size_t(nrOfPoints), full);
        for (size_t i = 0; i < response.size(); ++i) {
            const double gathered = double(i) - onset + pre_;
            if (gathered < 0.0 || gathered >= double(sums_.size()))
                continue;
            const auto point = size_t(gathered);
            if (counts_[point] > 0)
                response[i] = float(sums_[point] / counts_[point]);
        }
        return response;
    }

private:
    static double meanOf(const std::vector<float>& curve, int from, int to) {
        double sum = 0.0;
        for (int volume = from; volume < to; ++volume)
            sum += double(curve[size_t(volume)]);
        return sum / (to - from);
    }

    int pre_;
    std::vector<double> sums_;
    std::vector<int> counts_;
    bool hasTrial_ = false;
};

} // namespace

QString empiricalFault(const EmpiricalOptions& options, int nrOfROIs,
                       const StimulationProtocol& protocol) {
    const ROIRange rois = rangeOf(options.rois);
    if (nrOfROIs < int(rois.first + rois.count))
        return QStringLiteral("WARNING - Can not create reference file: not enough ROIs.");
    if (protocol.nrOfConditions() != nrOfConditions)
        return QStringLiteral("WARNING - Can not create reference file: protocol needs to have 10 "
                              "conditions (rest + 3 tasks with 3 durations).");
    return {};
}

std::optional<ReferenceCurves> empiricalResponses(const EmpiricalOptions& options,
                                                  std::span<const std::vector<float>> curves,
                                                  const StimulationProtocol& protocol, double TR) {
    if (!areInRange(options) || !empiricalFault(options, int(curves.size()), protocol).isEmpty())
        return std::nullopt;
    const ROIRange rois = rangeOf(options.rois);
    const double onsetStep = TR > 0.0 ? std::floor(LetterCode::timeStep / TR + 0.5)
                                      : double(options.ShortestTaskDuration);
    ReferenceCurves references;
    for (int duration = 0; duration < LetterCode::nrOfDurations; ++duration) {
        ResponseAverage average(options, duration);
        for (int index = 1 + duration; index < nrOfConditions; index += LetterCode::nrOfDurations) {
            const ProtocolCondition& condition = protocol.conditions[size_t(index)];
            for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
                for (const std::vector<float>& curve : curves.subspan(rois.first, rois.count))
                    average.addTrial(curve, onsetVolume(protocol, condition.from[i], TR));
        }
        if (!average.hasTrial())
            return std::nullopt;
        for (int onset = 0; onset < LetterCode::nrOfOnsets; ++onset)
            references[size_t(onset * LetterCode::nrOfDurations + duration)] =
                average.response(options.WindowTimePoints, onset * onsetStep);
    }
    return references;
}
