// What a training leaves beside its run, for the classifier of later runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_library.h"
#include "classify/trial_options.h"
#include "regions/region_of_interest.h"

#include <QString>
#include <QStringList>
#include <optional>

struct TrainingFiles {
    QString folder;                       ///< that they were read from
    QString settingsText;                 ///< as it is in the file; empty without one
    std::optional<TrialOptions> settings; ///< of the estimation
    QString voxelsPath;
    std::optional<VoxelList> voxels; ///< in the order of the features
};
/// Reads them, as far as they are there and whole, from the first of the folders that has a list of
/// voxels; where none has, from the first one. They belong together, so they come from one folder.
[[nodiscard]] TrainingFiles readTrainingFiles(const QStringList& folders);

/// A classifier, and the run that it is to be used in.
struct ClassifierUse {
    QString modelPath;
    const SVMModel& model;
    const VoxelList& voxels;
    int intensityLimit = 0;
    std::optional<VolumeSize> size{}; ///< of the run, where it is known
    bool protocolInVolumes = true;
};
/// What makes the classifier fit the run badly, in sentences for the operator.
[[nodiscard]] QStringList classifierWarnings(const ClassifierUse& use);
