// The design and the memory of a run's model, before its first volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"

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
