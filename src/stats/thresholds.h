// The thresholds of the maps: how the operator changes them and how they are shown.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/statistical_maps.h"

#include <QString>

/// What the operator lets through to the overlay.
struct OverlayThresholds {
    float Threshold = 3.0f;         ///< smallest value that is coloured
    float ColorMaxThreshold = 8.0f; ///< the colours are strongest from here on
    int ClusterSizePixels = 4;      ///< smallest cluster that is coloured; below 1 counts as 1

    bool operator==(const OverlayThresholds&) const = default;
    /// With a size of 1 every voxel passes, also in slices without cluster sizes.
    [[nodiscard]] bool looksAtClusters() const { return ClusterSizePixels > 1; }
};

/// The thresholds with which a run starts: these two of the settings, and the upper one at its
/// default, or 1.0 above the lower one where that is higher.
[[nodiscard]] OverlayThresholds thresholdsAtStart(float threshold, int clusterSizePixels);

/// Two-tailed probability of a t value: the incomplete beta function at df / (df + t * t) with
/// df / 2 and 1 / 2 (Abramowitz and Stegun, 26.7.1 and 26.5.27). 1 for a value that is no number
/// and for degrees of freedom that are not above 0 or not finite.
[[nodiscard]] float tProbability(float t, float df);
/// Probability of an F value at least as large: the incomplete beta function at
/// df2 / (df2 + df1 * F) with df2 / 2 and df1 / 2 (Abramowitz and Stegun, 26.6.2). 0 for a negative
/// F; 1 for a value that is no number and for degrees of freedom that are not above 0 or not
/// finite.
[[nodiscard]] float fProbability(float F, float df1, float df2);

/// The lower threshold with its p value, where the degrees of freedom are known, as the information
/// panel shows it.
[[nodiscard]] QString thresholdText(const StatisticalMaps& maps,
                                    const OverlayThresholds& thresholds);
/// What stands before the lower threshold in the status text of a run: "<b>t</b> > " or
/// "<b>R</b> > ".
[[nodiscard]] QString thresholdPrefix(const StatisticalMaps& maps);
/// The panel's text outside a run, for one loaded run. `volume` counts from 1.
[[nodiscard]] QString singleRunPanelText(int volume, double elapsedSeconds,
                                         const QString& thresholdText);
/// The same for a multi-run analysis.
[[nodiscard]] QString multiRunPanelText(const QString& thresholdText);

/// One step of the threshold keys. Correlations: 0.02, held within 0.1 and 0.9 after the upper
/// threshold was set by the unlimited value. Others: 0.2, at least 1.0.
void stepThreshold(OverlayThresholds& thresholds, MapKind kind, bool up);
/// The lower threshold as entered, at least 0.0001.
void changeThreshold(OverlayThresholds& thresholds, float value);
/// The upper threshold as entered; not above the lower one it becomes the lower one plus 1.0.
void changeColorMaxThreshold(OverlayThresholds& thresholds, float value);
/// The cluster size as entered, at least 1.
void changeClusterSize(OverlayThresholds& thresholds, int value);
