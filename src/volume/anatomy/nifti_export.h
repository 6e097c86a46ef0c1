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

/// What kind of numbers a map holds, as the intent code of the header says.
enum class NiftiStatistic { None, T, F, Correlation };

struct NiftiMaps {
    std::vector<std::span<const float>> values; ///< of each map, one float per voxel
    QStringList names;
    NiftiStatistic statistic = NiftiStatistic::T;
    float degreesOfFreedom = 0.0f;
    float secondDegreesOfFreedom = 0.0f; ///< of F
};

/// The measured volumes as one 4-D file (.nii, or .nii.gz by the name). `progress` may cancel.
/// False, with `error` saying why (empty when cancelled) and an old file untouched.
[[nodiscard]] bool exportSeries(const QString& path, const FMRProject& project, int nrOfVolumes,
                                ProgressReporter& progress, QString& error);
[[nodiscard]] bool exportMaps(const QString& path, const FMRProject& project, const NiftiMaps& maps,
                              QString& error);
[[nodiscard]] bool exportMask(const QString& path, const FMRProject& project,
                              std::span<const uint8_t> mask, QString& error);
