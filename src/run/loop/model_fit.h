// The model of a run whose volumes are all in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"
#include "stats/thresholds.h"

#include <functional>

/// Called after each volume, with its index; false ends the fit.
using AfterVolume = std::function<bool(int volume)>;

/// Makes the brain mask and fits the model, volume by volume as it is fitted while a run is
/// measured, so that the maps are those of the run's end, and
/// finds the clusters by the thresholds (computeClusterSizes). The design must have its names and
/// the contrasts their definitions. False after a message, or when `afterVolume` ends it: mask,
/// maps and finished model are then what they were.
[[nodiscard]] bool fitModelToVolumes(QtCortivoDoc& document, const RunSettings& settings,
                                     OverlayThresholds& thresholds, int nrOfVolumes,
                                     const AfterVolume& afterVolume);
