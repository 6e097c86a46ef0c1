// A run and its maps as NIfTI-1 files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <span>
#include <vector>

// All of these write .nii, or .nii.gz where the name ends so. The file appears under its name only
// when it is complete. A run with positions gets them as the matrix to the scanner; one without
// them, or whose voxel sizes are unknown, gets voxel sizes only (1 mm for an unknown one).

/// What kind of numbers a map holds, as the intent code of the header says.
enum class NiftiStatistic { None, T, F, Correlation };

struct NiftiMaps {
    std::vector<std::span<const float>> values; ///< of each map, one float per voxel
    QStringList names; ///< the first one names the file's content, all of them describe it
    NiftiStatistic statistic = NiftiStatistic::T;
    float degreesOfFreedom = 0.0f;
    float secondDegreesOfFreedom = 0.0f; ///< of F
};

/// The first volumes of the run as one 4-D file of unsigned 16-bit samples; `nrOfVolumes` are
/// measured, at least 1, and all must be in memory. `progress` may cancel. False, with `error`
/// saying why (empty when cancelled) and an old file untouched.
[[nodiscard]] bool exportSeries(const QString& path, const FMRProject& project, int nrOfVolumes,
                                ProgressReporter& progress, QString& error);
/// Maps as floats: 3-D for one, else 4-D. False, with `error` saying why and an old file untouched.
[[nodiscard]] bool exportMaps(const QString& path, const FMRProject& project, const NiftiMaps& maps,
                              QString& error);
/// The bytes of a mask, one per voxel, as they are. False as above.
[[nodiscard]] bool exportMask(const QString& path, const FMRProject& project,
                              std::span<const uint8_t> mask, QString& error);
