// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_choices.h"

#include <algorithm>
#include <cmath>

ROIsOfMode roisOfMode(int roiMode) {
    switch (roiMode) {
    case useROI1:
        return {{0}, 1};
    case useROI2:
        return {{1}, 1};
    case useROI3:
        return {{2}, 1};
    case useROI1And2:
        return {{0, 1}, 2};
    case useROI1And3:
        return {{0, 2}, 2};
    case useROI2And3:
        return {{1, 2}, 2};
    case useROI1And2And3:
        return {{0, 1, 2}, 3};
    default:
        return {};
    }
}

bool isModeAvailable(int roiMode, int nrOfRegions) {
    const ROIsOfMode rois = roisOfMode(roiMode);
    return rois.count > 0 && rois.region[size_t(rois.count) - 1] < nrOfRegions;
}

bool showsPair(const FeedbackChoices& choices) {
    return choices.VisualizeROIs && roisOfMode(choices.roiMode).count == 2;
}

void settleROIMode(FeedbackChoices& choices, int nrOfRegions) {
    if (!isModeAvailable(choices.roiMode, nrOfRegions))
        choices.roiMode = noROIMode;
    if (choices.roiMode == noROIMode && !choices.UseSVMOutput && nrOfRegions > 0)
        choices.roiMode = useROI1;
}

void chooseClassifierOutput(FeedbackChoices& choices) {
    choices.UseSVMOutput = true;
    choices.roiMode = noROIMode;
    choices.DisplayBaseLevel = thermometerSteps / 2;
}

void chooseDelayedFeedback(FeedbackChoices& choices) {
    choices.type = FeedbackType::Delayed;
    choices.BlockOutput = false;
}

void giveUpClassifierOutput(FeedbackChoices& choices, int nrOfRegions) {
    choices.UseSVMOutput = false;
    choices.roiMode = noROIMode;
    settleROIMode(choices, nrOfRegions);
}

ShownMaxima shownMaxima(const FeedbackChoices& choices) {
    if (choices.UseSVMOutput)
        return {maximumOfClassifier, 0.0};
    const ROIsOfMode rois = roisOfMode(choices.roiMode);
    const auto maximum = [&](int region) { return double(choices.MaxPSC[size_t(region)]); };
    if (rois.count == 1)
        return {asShown(maximum(rois.region[0])), 0.0};
    if (rois.count == 2)
        return {asShown(maximum(rois.region[0])), asShown(maximum(rois.region[1]))};
    return {asShown((maximum(0) + maximum(1) + maximum(2)) / 3.0), 0.0};
}

double asShown(double maximum) {
    if (!(maximum > smallestMaxPSC))
        return smallestMaxPSC;
    return std::round(std::min(maximum, largestMaxPSC) * 100.0) / 100.0;
}

void storeMaxima(FeedbackChoices& choices, const ShownMaxima& maxima) {
    const ROIsOfMode rois = roisOfMode(choices.roiMode);
    for (size_t i = 0; i < size_t(rois.count); ++i) {
        const bool second = rois.count == 2 && i == 1;
        choices.MaxPSC[size_t(rois.region[i])] =
            float(asShown(second ? maxima.second : maxima.first));
    }
}

void setShiftsForTR(FeedbackChoices& choices, float TR) {
    if (!(TR > 0.0f) || !std::isfinite(TR))
        return;
    const double volumes = 6000.0 / double(TR);
    choices.BaselineStartShift = choices.NoFbStartShift = roundedLevel(volumes);
    choices.BaselineEndShift = choices.NoFbStopShift = roundedLevel(volumes / 3.0);
}

int roundedLevel(double value) {
    constexpr double most = 1e9;
    if (!std::isfinite(value))
        return 0;
    const double limited = std::clamp(value, -most, most);
    const double shift = limited < 0.0 ? std::trunc(limited - 1.0) : 0.0;
    return int(std::trunc(limited - shift + 0.5) + shift);
}
