// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_curve.h"

#include <algorithm>

namespace {

double meanAt(const FeedbackSignals& signals, const ROIsOfMode& regions, size_t volume) {
    double sum = 0.0;
    for (size_t i = 0; i < size_t(regions.count); ++i)
        sum += double(signals.curves[size_t(regions.region[i])][volume]);
    return sum / regions.count;
}

/// Of the values up to the current volume, those that all regions of the mode have.
size_t nrOfCommonValues(const FeedbackSignals& signals, const ROIsOfMode& regions) {
    auto count = size_t(std::clamp(signals.currentVolume + 1, 0, std::max(signals.nrOfVolumes, 0)));
    for (size_t i = 0; i < size_t(regions.count); ++i)
        count = std::min(count, signals.curves[size_t(regions.region[i])].size());
    return count;
}

} // namespace

FeedbackCurve feedbackCurve(const FeedbackSignals& signals, const FeedbackChoices& choices) {
    const ROIsOfMode regions = roisOfMode(choices.roiMode);
    if (regions.count == 0 || !isModeAvailable(choices.roiMode, int(signals.curves.size())))
        return {};
    FeedbackCurve curve;
    // A mean is drawn by the plot of the first region, whichever regions it is of.
    curve.region = regions.count == 1 ? regions.region[0] : 0;
    if (choices.BlockOutput)
        return curve;
    curve.values.resize(nrOfCommonValues(signals, regions));
    for (size_t volume = 0; volume < curve.values.size(); ++volume)
        curve.values[volume] = float(meanAt(signals, regions, volume));
    return curve;
}
