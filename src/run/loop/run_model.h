// The model of a run: its names and contrasts, its design.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"

inline constexpr int brainMaskThreshold = 100; // sample value

/// What the design of this run is built from.
[[nodiscard]] DesignSource designSource(const QtCortivoDoc& document);

/// Predictor names and contrasts of a run that is prepared or reloaded. Contrasts are those of
/// `contrastFile`, if it is not empty and fits; else those that an arriving protocol asks for in
/// its header; else generated. A real-time protocol says itself whether the file is of use.
void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings,
                    const QString& contrastFile);

/// False, after a message that ends the program, for a run without conditions: it has no model.
[[nodiscard]] bool hasConditions(const QtCortivoDoc& document);

/// Builds the design columns and the schedule, and allocates model and maps. Without conditions the
/// program ends after a message; false also after a message when memory runs out.
[[nodiscard]] bool prepareModel(QtCortivoDoc& document);

/// The design of a run that is over, with its columns and onsets: the document's own has lost its
/// columns. False when memory runs out, which ends the program after a message.
[[nodiscard]] bool rebuildDesign(DesignMatrix& design, const QtCortivoDoc& document);

/// What the model of a planned run will not give, by names of predictors.
struct ModelLimits {
    QStringList conditionsThatNeverEnter; ///< see conditionsWithoutModel()
    QStringList dependentPredictors;      ///< see predictorsThatDependOnOthers()
};
/// For a complete protocol, over all planned volumes. Nothing for a protocol that arrives during
/// the run, and for a run of fewer than fewestModelVolumes.
[[nodiscard]] ModelLimits limitsOfPlannedModel(const QtCortivoDoc& document,
                                               const RunSettings& settings);

/// How large the model of a planned run will be, as far as settings and protocol tell: a contrast
/// file may be refused, and contrasts be generated in its place, so the larger number counts.
struct PlannedModelSize {
    int nrOfPredictors = 0;
    int nrOfContrasts = 0;
};
[[nodiscard]] PlannedModelSize plannedModelSize(const QtCortivoDoc& document,
                                                const RunSettings& settings);

/// Warns of predictors that no data of this run tell apart, unless there are none.
void tellOfDependentPredictors(const QStringList& predictors);
