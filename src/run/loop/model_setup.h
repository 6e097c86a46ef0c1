// The design and the memory of a run's model, before its first volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"

inline constexpr int brainMaskThreshold = 100; // sample value

/// What the design of this run is built from.
[[nodiscard]] DesignSource designSource(const QtCortivoDoc& document, const RunSettings& settings);

/// The name lists of the design, and the numbers of its predictors.
void buildPredictorNames(QtCortivoDoc& document, const RunSettings& settings);

/// Predictor names and contrasts: from `contrastFile` if it is not empty and fits; else those that
/// the protocol has brought, fitted to the design; else generated.
void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings,
                    const QString& contrastFile);

/// Builds the design columns and the schedule, and allocates model and maps. Without conditions the
/// program ends after a message; false also after a message when memory runs out.
[[nodiscard]] bool prepareModel(QtCortivoDoc& document, const RunSettings& settings);
