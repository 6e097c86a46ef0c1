// The model of a run: its names and contrasts, its design, the fit to volumes in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"
#include "stats/thresholds.h"

#include <functional>

inline constexpr int brainMaskThreshold = 100; // sample value

/// What the design of this run is built from.
[[nodiscard]] DesignSource designSource(const QtCortivoDoc& document, const RunSettings& settings);

/// Predictor names and contrasts of a run that is prepared or reloaded. Contrasts are those of
/// `contrastFile`, if it is not empty and fits; else those that an arriving protocol asks for in
/// its header; else generated. A real-time protocol says itself whether the file is of use.
void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings,
                    const QString& contrastFile);

/// Builds the design columns and the schedule, and allocates model and maps. Without conditions the
/// program ends after a message; false also after a message when memory runs out.
[[nodiscard]] bool prepareModel(QtCortivoDoc& document, const RunSettings& settings);

/// The design of a run that is over, with its columns and onsets: the document's own has lost its
/// columns. False when memory runs out, which ends the program after a message.
[[nodiscard]] bool rebuildDesign(DesignMatrix& design, const QtCortivoDoc& document,
                                 const RunSettings& settings);

/// What the model of a planned run will not give, by names of predictors.
struct ModelLimits {
    QStringList conditionsThatNeverEnter; ///< see conditionsWithoutModel()
    QStringList dependentPredictors;      ///< see predictorsThatDependOnOthers()
};
/// For a complete protocol, over all planned volumes. Nothing for a protocol that arrives during
/// the run, and for a run of fewer than 12 volumes, which gets no model.
[[nodiscard]] ModelLimits limitsOfPlannedModel(const QtCortivoDoc& document,
                                               const RunSettings& settings);

/// Called after each volume, with its index; false ends the fit.
using AfterVolume = std::function<bool(int volume)>;

/// Makes the brain mask and fits the model volume by volume, as during a run, so that the maps are
/// those of the run's end; then finds the clusters. The design must have its names and the
/// contrasts their definitions. False after a message, or when `afterVolume` ends it: mask, maps
/// and finished model are then what they were.
[[nodiscard]] bool fitModelToVolumes(QtCortivoDoc& document, const RunSettings& settings,
                                     OverlayThresholds& thresholds, int nrOfVolumes,
                                     const AfterVolume& afterVolume);
