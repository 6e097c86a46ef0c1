// How a single trial is estimated.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/hrf.h"

/// The predictor that stands for the response to a trial.
enum class TrialResponse {
    StandardTwoGamma, ///< the trial's box convolved with the two-gamma response
    AdjustedTwoGamma, ///< likewise, with constants that were fitted to a person
    MeanResponse      ///< the mean of all trials of a run
};

/// What is stored of a trial in each voxel.
enum class TrialEstimate { TValue, Beta, PercentBeta };

/// The most volumes that a field of a window takes: pre-onset, post-onset, delay and the like.
inline constexpr int mostWindowVolumes = 999;

/// The choices for the estimation of single trials. Offline and during a run the same ones count,
/// but for the intensity limit, which a run does not apply.
struct TrialOptions {
    int preOnset = 2; ///< volumes before the onset, 0 to mostWindowVolumes
    /// Volumes after the onset, or after the trial's end if the window follows its length; 0 to
    /// mostWindowVolumes.
    int postOnset = 5;
    bool useTrialDuration = false; ///< the window follows the length of each trial
    TrialResponse response = TrialResponse::StandardTwoGamma;
    TwoGammaHRFParams adjustedHRF{}; ///< of AdjustedTwoGamma
    bool linearTrend = false;        ///< as a third predictor; see maximumPredictors
    TrialEstimate estimate = TrialEstimate::TValue;
    bool zNormalization = false; ///< of each window; without effect on percent changes
    int intensityLimit = 0;      ///< voxels that are darker in the first volume are left out

    bool operator==(const TrialOptions&) const = default;
};

/// Takes the choice with the post value that it begins with: 6 volumes after the trial's end, or 22
/// after its onset.
inline void chooseTrialDuration(TrialOptions& options, bool useTrialDuration) {
    options.useTrialDuration = useTrialDuration;
    options.postOnset = useTrialDuration ? 6 : 22;
}

/// Whether the operator may choose z normalization. It can't change a t value, and a percent change
/// needs the mean of the window.
[[nodiscard]] inline bool canBeNormalized(TrialEstimate estimate) {
    return estimate == TrialEstimate::Beta;
}

/// Takes the choice; z normalization goes off where it can't be chosen.
inline void chooseEstimate(TrialOptions& options, TrialEstimate estimate) {
    options.estimate = estimate;
    options.zNormalization = options.zNormalization && canBeNormalized(estimate);
}
