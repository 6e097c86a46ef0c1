// From the signal of regions, or the output of a classifier, to the level that the subject sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/classifier_output.h"
#include "feedback/feedback_choices.h"
#include "run/protocol/volume_tables.h"

#include <span>
#include <vector>

/// What a run says at one moment. Volumes count from 0.
struct FeedbackSignals {
    int currentVolume = -1;
    int nrOfVolumes = 0;
    /// One for each region, in their order, in the units of the data; valid up to the current
    /// volume.
    std::vector<std::span<const float>> curves{};
    /// The constant of each region's model, its betas' b0; 0 until there is a fit.
    std::vector<float> constants{};
    bool hasConfounds = false;
    const VolumeTables& tables;
};

/// Where a baseline comes from.
enum class BaselineSource {
    None,    ///< no block has ended yet, or its window is too short: level 0
    Current, ///< so early in the run that the signal is its own baseline
    Block,   ///< the mean over a window after a block of the baseline condition
    Model,   ///< the constant of the regions' models
};

/// The volumes before this one never show feedback.
inline constexpr int firstLiveVolume = 10;

/// The outcome of one volume. The second of two is used for a pair of thermometers only.
struct FeedbackValues {
    bool live = false;       ///< else the idle picture is shown
    bool noFeedback = false; ///< the no-feedback condition holds, after its shifts
    bool pair = false;       ///< two thermometers
    bool classifier = false;
    /// Levels were computed: not for the idle picture and a curve.
    bool computed = false;
    int volume = -1; ///< that the values are of
    /// Floats, as the baselines: at a baseline that is the signal itself the change is exactly 0.
    float CurValue1 = 0.0f, CurValue2 = 0.0f;
    float Baseline1 = 0.0f, Baseline2 = 0.0f;
    float RelativeLevel = 0.0f;     ///< 1 fills the scale; not computed for a pair, which keeps it
    int FbLevel1 = 4, FbLevel2 = 4; ///< in steps, negative below the base line
    int TargetLevel = 0, TargetLevel2 = 0;
    BaselineSource source = BaselineSource::None;

    /// Only a single thermometer is suppressed: a pair goes on, and the classifier knows no
    /// conditions.
    [[nodiscard]] bool hidesLevel() const { return noFeedback && !pair && !classifier; }
};

/// Computes the level volume by volume. Fed with numbers only: a recorded run can be passed
/// through it. Histories, maxima and baselines are floats, everything between is double. A repeat
/// at the same volume, with the same choices, changes nothing.
class FeedbackLevels {
public:
    /// A new run: no histories, no baseline, levels as at first.
    void restart();
    /// The display was opened: the baselines are 0 until a block ends.
    void forgetBaselines();

    /// The values at the current volume, at most the last one of the run. With SetToMaxValue the
    /// maxima of the choices follow. Before firstLiveVolume, and without regions, the values are
    /// not live and the others stay. For a curve the current value alone is found.
    const FeedbackValues& update(const FeedbackSignals& signals, FeedbackChoices& choices);
    /// The values from the first pair of classes; a null classifier, or one that gives nothing,
    /// counts as 0. Always live, and without baseline, target and suppression.
    const FeedbackValues& update(const ClassifierOutput* classifier, const FeedbackChoices& choices,
                                 int volume);
    [[nodiscard]] const FeedbackValues& values() const { return values_; }

private:
    void updateVolume(const FeedbackSignals& signals, FeedbackChoices& choices);
    void findBaseline(const FeedbackSignals& signals, const FeedbackChoices& choices,
                      bool modeChanged);
    void findLevel(FeedbackChoices& choices);
    void findPairOfLevels(FeedbackChoices& choices);
    /// Enters the change of the signal into the history; its running mean.
    [[nodiscard]] double percentChange(std::vector<float>& history, float signal, float baseline,
                                       int nrOfPastValues) const;

    FeedbackValues values_;
    FeedbackChoices choicesBefore_; ///< of the last update, before its maxima followed
    FeedbackChoices choicesAfter_;
    int lastROIMode_ = noROIMode;
    std::vector<float> PSCHistory1_; ///< fractional signal change of each volume
    std::vector<float> PSCHistory2_;
};
