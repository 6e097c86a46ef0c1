// The thresholds of the maps: the operator's controls and the texts that show them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/statistical_maps.h"

#include <QString>

struct WholeRunModel;

/// Which voxels the overlay colours.
struct OverlayThresholds {
    float Threshold = 3.0f;         ///< smallest value that is coloured
    float ColorMaxThreshold = 8.0f; ///< the colours are strongest from here on
    int ClusterSizePixels = 4;      ///< smallest cluster that is coloured; below 1 counts as 1

    bool operator==(const OverlayThresholds&) const = default;
    /// With a size of 1 every voxel passes, also in slices without cluster sizes.
    [[nodiscard]] bool filtersClusters() const { return ClusterSizePixels > 1; }
};

/// Thresholds at the start of a run: these two from the settings; the upper one is its default, or
/// the lower one plus 1.0 if that is higher.
[[nodiscard]] OverlayThresholds thresholdsAtStart(float threshold, int clusterSizePixels);

/// Two-tailed probability of a t value: the incomplete beta function at df / (df + t * t) with df /
/// 2 and 1 / 2 (Abramowitz and Stegun, 26.7.1 and 26.5.27). 1 when the value is not a number or the
/// degrees of freedom are not positive and finite. Arguments are double, so that all digits that
/// tables print are right.
[[nodiscard]] float tProbability(double t, double df);
/// Probability of an F value at least as large: the incomplete beta function at df2 / (df2 + df1 *
/// F) with df2 / 2 and df1 / 2 (Abramowitz and Stegun, 26.6.2). 0 for a negative F; 1 when the
/// value is not a number or the degrees of freedom are not positive and finite.
[[nodiscard]] float fProbability(double F, double df1, double df2);

/// The lower threshold, with its p value if the degrees of freedom are known, for the information
/// panel.
[[nodiscard]] QString thresholdText(const StatisticalMaps& maps,
                                    const OverlayThresholds& thresholds);
/// Prefix of the lower threshold in the status text of a run: "<b>t</b> > " or "<b>R</b> > ".
[[nodiscard]] QString thresholdPrefix(const StatisticalMaps& maps);
/// What the correction of serial correlations has achieved: the mean lag-one value of the residuals
/// before it and after it. Empty without the one before; without the one after, only the first is
/// stated.
[[nodiscard]] QString meanAR1Text(const WholeRunModel& model);
/// The panel's text outside a run, for one loaded run. `volume` counts from 1.
[[nodiscard]] QString singleRunPanelText(int volume, double elapsedSeconds,
                                         const QString& thresholdText);
/// The same for a multi-run analysis.
[[nodiscard]] QString multiRunPanelText(const QString& thresholdText);

/// One step of the threshold keys. Correlations: 0.02, clamped to 0.1 to 0.9; the upper threshold
/// follows the unclamped value. Others: 0.2, at least 1.0.
void stepThreshold(OverlayThresholds& thresholds, MapKind kind, bool up);
/// The lower threshold as entered, at least 0.0001.
void changeThreshold(OverlayThresholds& thresholds, float value);
/// The upper threshold as entered; if not above the lower one, the lower one plus 1.0.
void changeColorMaxThreshold(OverlayThresholds& thresholds, float value);
/// The cluster size as entered, at least 1.
void changeClusterSize(OverlayThresholds& thresholds, int value);
