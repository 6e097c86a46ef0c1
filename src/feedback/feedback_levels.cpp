// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_levels.h"

#include "feedback/feedback_baseline.h"

#include <algorithm>
#include <cmath>

namespace {

/// Steps between the base line and the farther end of the scale.
int stepsOfScale(const FeedbackChoices& choices) {
    const int base = std::clamp(choices.DisplayBaseLevel, 0, thermometerSteps);
    return std::max(base, thermometerSteps - base);
}

bool isSuppressed(const FeedbackSignals& signals, const FeedbackChoices& choices, int volume) {
    if (choices.NoFbCondition == -1 ||
        std::max(choices.NoFbStartShift, choices.NoFbStopShift) >= volume)
        return false;
    const auto isQuiet = [&](int at) {
        return signals.tables.condition(at) == choices.NoFbCondition;
    };
    return isQuiet(volume - (isQuiet(volume) ? choices.NoFbStartShift : choices.NoFbStopShift));
}

/// Fractional change against a baseline above 0. No change for what is out of all bounds.
double fractionalChange(float signal, float baseline) {
    constexpr double most = 1e30;
    const double change = double(signal) / double(baseline) - 1.0;
    return std::abs(change) < most ? change : 0.0;
}

/// Mean of the newest entries that are not exactly 0, without that of volume 0; `newest` when there
/// are less than two.
double runningMean(const std::vector<float>& history, int volume, int nrOfPastValues,
                   double newest) {
    double sum = 0.0;
    int count = 0;
    for (int i = std::max(1, volume - nrOfPastValues + 1); i <= volume; ++i) {
        const float entry = history[size_t(i)];
        sum += double(entry);
        count += entry != 0.0f;
    }
    return nrOfPastValues >= 2 && count > 1 ? sum / count : newest;
}

/// Raises the maxima of the mode's regions, all three without a mode, when `percent` exceeds their
/// mean.
void followSignal(FeedbackChoices& choices, double percent) {
    ROIsOfMode rois = roisOfMode(choices.roiMode);
    if (rois.count == 0)
        rois = roisOfMode(useROI1And2And3);
    const std::span<const int> regions(rois.region.data(), size_t(rois.count));
    double sum = 0.0;
    for (const int region : regions)
        sum += double(choices.MaxPSC[size_t(region)]);
    if (percent > sum / rois.count)
        for (const int region : regions)
            choices.MaxPSC[size_t(region)] = float(percent);
}

} // namespace

void FeedbackLevels::restart() {
    *this = {};
}

void FeedbackLevels::forgetBaselines() {
    values_.Baseline1 = values_.Baseline2 = 0.0f;
    values_.source = BaselineSource::None;
}

const FeedbackValues& FeedbackLevels::update(const FeedbackSignals& signals,
                                             FeedbackChoices& choices) {
    const int volume = std::min(signals.nrOfVolumes - 1, signals.currentVolume);
    values_.classifier = values_.computed = values_.noFeedback = false;
    values_.live =
        !signals.curves.empty() && signals.currentVolume >= firstLiveVolume && volume >= 0;
    if (!values_.live)
        return values_;
    // Maxima that followed are no new choice: a repeat starts from the same ones.
    if (volume == values_.volume && choices == choicesAfter_)
        choices = choicesBefore_;
    choicesBefore_ = choices;
    values_.volume = volume;
    updateVolume(signals, choices);
    choicesAfter_ = choices;
    return values_;
}

void FeedbackLevels::updateVolume(const FeedbackSignals& signals, FeedbackChoices& choices) {
    const auto count = size_t(signals.nrOfVolumes);
    if (PSCHistory1_.size() != count) {
        PSCHistory1_.assign(count, 0.0f);
        PSCHistory2_.assign(count, 0.0f);
    }
    const bool modeChanged = choices.roiMode != lastROIMode_;
    lastROIMode_ = choices.roiMode;
    values_.noFeedback = isSuppressed(signals, choices, values_.volume);
    values_.pair = showsPair(choices);
    const SignalPair signal = signalAt(signals, choices, values_.volume);
    values_.CurValue1 = float(signal.first);
    values_.CurValue2 = float(signal.second);
    if (choices.type == FeedbackType::TimeCourse)
        return;
    values_.computed = true;
    findBaseline(signals, choices, modeChanged);
    values_.TargetLevel = signals.tables.target1(values_.volume);
    values_.TargetLevel2 = values_.pair && signals.tables.NrOfTargetLevels == 2
                               ? signals.tables.target2(values_.volume)
                               : 0;
    if (values_.pair)
        findPairOfLevels(choices);
    else
        findLevel(choices);
}

void FeedbackLevels::findBaseline(const FeedbackSignals& signals, const FeedbackChoices& choices,
                                  bool modeChanged) {
    const auto set = [this](const SignalPair& baseline, BaselineSource source) {
        values_.Baseline1 = std::isfinite(baseline.first) ? float(baseline.first) : 0.0f;
        values_.Baseline2 = std::isfinite(baseline.second) ? float(baseline.second) : 0.0f;
        const bool found = values_.Baseline1 > 0.0f || values_.Baseline2 > 0.0f;
        values_.source = found ? source : BaselineSource::None;
    };
    const int volume = values_.volume;
    if (choices.UseTCGLMB0ForBaseline)
        return set(modelBaseline(signals, choices, volume), BaselineSource::Model);
    if (modeChanged)
        forgetBaselines();
    if (volume - choices.BaselineEndShift < firstBaselineVolume)
        set(signalAt(signals, choices, volume), BaselineSource::Current);
    else if (baselineBlockEnds(signals, choices, volume))
        set(blockBaseline(signals, choices, volume), BaselineSource::Block);
}

void FeedbackLevels::findLevel(FeedbackChoices& choices) {
    if (!(values_.Baseline1 > 0.0f)) {
        values_.FbLevel1 = values_.FbLevel2 = 0;
        values_.RelativeLevel = 0.0f;
        return;
    }
    const double percent =
        percentChange(PSCHistory1_, values_.CurValue1, values_.Baseline1, choices.NrOfPastValues);
    if (choices.SetToMaxValue)
        followSignal(choices, percent);
    const double relative = percent / shownMaxima(choices).first;
    values_.RelativeLevel = float(relative);
    values_.FbLevel1 = roundedLevel(stepsOfScale(choices) * relative);
}

// The maxima that follow are those of ROI 1 and 2 whatever the pair. Without a running mean both
// regions use one history. Existing studies rest on both.
void FeedbackLevels::findPairOfLevels(FeedbackChoices& choices) {
    const ShownMaxima shown = shownMaxima(choices);
    const auto levelOf = [&](double percent, double maximum, float& following) {
        if (choices.SetToMaxValue && percent > double(following)) {
            following = float(percent);
            maximum = asShown(double(following));
        }
        return roundedLevel(percent / maximum * stepsOfScale(choices));
    };
    const int pastValues = choices.NrOfPastValues;
    if (values_.Baseline1 > 0.0f)
        values_.FbLevel1 =
            levelOf(percentChange(PSCHistory1_, values_.CurValue1, values_.Baseline1, pastValues),
                    shown.first, choices.MaxPSC[0]);
    if (values_.Baseline2 > 0.0f)
        values_.FbLevel2 = levelOf(percentChange(pastValues < 2 ? PSCHistory1_ : PSCHistory2_,
                                                 values_.CurValue2, values_.Baseline2, pastValues),
                                   shown.second, choices.MaxPSC[1]);
}

double FeedbackLevels::percentChange(std::vector<float>& history, float signal, float baseline,
                                     int nrOfPastValues) const {
    const double change = fractionalChange(signal, baseline);
    history[size_t(values_.volume)] = float(change);
    return 100.0 * runningMean(history, values_.volume, nrOfPastValues, change);
}

const FeedbackValues& FeedbackLevels::update(const ClassifierOutput* classifier,
                                             const FeedbackChoices& choices, int volume) {
    constexpr int mostClasses = 1000;
    const int classes = classifier ? classifier->nrOfClasses() : 0;
    float value = 0.0f;
    if (classes > 1 && classes <= mostClasses) {
        std::vector<float> output(size_t(classes) * size_t(classes - 1) / 2);
        if (classifier->currentOutput(output))
            value = output.front();
    }
    values_.live = values_.classifier = values_.computed = true;
    values_.noFeedback = values_.pair = false;
    values_.volume = volume;
    choicesAfter_ = choices; // a return to the regions is no repeat
    values_.CurValue1 = value;
    values_.FbLevel1 = roundedLevel(double(value) / maximumOfClassifier * stepsOfScale(choices));
    return values_;
}
