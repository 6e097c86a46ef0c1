// Cutting the voxels of a region out of the maps of single trials.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "classify/pattern_set.h"
#include "classify/trial_maps.h"
#include "regions/region_of_interest.h"

#include <QStringList>

/// What patterns are made of; copies, so that nothing changes meanwhile.
struct PatternPlan {
    QStringList trialFiles;
    QStringList classes;     ///< those that take part, in the order of their labels
    bool multiClass = false; ///< labels 1, 2, ...; otherwise 1 and -1, and other trials are skipped
    VoxelList voxels;        ///< the features, in this order
    VolumeSize size;         ///< of the run that the region is in
};

/// How the creation of patterns has ended.
enum class PatternEnd {
    Done,
    Stopped,      ///< by the operator
    MessageShown, ///< by whoever read a file
    ClassMissing, ///< a file lacks a class
    OtherSize,    ///< the maps of a file have another size than the run
    UnknownClass, ///< a trial of a class that has no label
    OutOfMemory
};

struct MadePatterns {
    PatternEnd end = PatternEnd::Done;
    QString file; ///< that is at fault
    PatternSet patterns;
    std::vector<int> counts; ///< of exemplars by class
};

/// Looks at the names and sizes of all files before any of them is read.
[[nodiscard]] MadePatterns checkTrialFiles(const PatternPlan& plan);
/// Reads the files: an exemplar for each trial of a class that takes part, file after file. The run
/// of an exemplar is the number of its file.
[[nodiscard]] MadePatterns makePatterns(const PatternPlan& plan, ProgressReporter& progress);

/// The message about how it has ended; empty for Done, Stopped and MessageShown.
[[nodiscard]] QString patternFault(const MadePatterns& made);

/// "Train_ROI 1_Faces-Houses_20-20.mvp", or "Test_...". A "/" in the name of a class becomes "_".
[[nodiscard]] QString patternFileName(bool training, const QString& region,
                                      const QStringList& classes, const std::vector<int>& counts);
/// "ROI 1" for 0.
[[nodiscard]] QString regionText(int region);
